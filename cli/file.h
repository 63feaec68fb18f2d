// A file that is read, or standard input; a file that is written.
#ifndef VXNLS_CLI_FILE_H
#define VXNLS_CLI_FILE_H

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output.h"

namespace vxcli {

/// A descriptor that is closed again unless it is standard input.
class File {
 public:
  /// Null: standard input. Throws Failure (ExitCode::io).
  explicit File(const std::string* path);
  ~File();
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  int descriptor() const { return descriptor_; }
  const std::string& name() const { return name_; }
  /// Whether it can be read from the start again.
  bool can_rewind() const { return start_ >= 0; }
  void rewind() const;

 private:
  std::string name_;
  int descriptor_ = 0;
  off_t start_ = -1;  // where reading began, of a regular file
};

/// Whether the path names an output of this process, as "/dev/stdout" does, and not a file of its own.
bool open_already(std::string_view path);

/// A file that is written: it is whole, or what was there before stays. What is put goes to a file beside it that takes
/// its place in the end. What is no regular file, or lies in a folder that takes no new file, is written where it is.
/// One at a time. All throw Failure (ExitCode::io).
class NewFile {
 public:
  explicit NewFile(const std::string& path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  Output& out() { return *out_; }
  /// Nothing can be put any more.
  void finish();

 private:
  NewFile(const std::string& path, std::string target);
  int open_beside();

  const std::string path_;
  const std::string target_;
  std::string beside_;
  std::optional<Output> out_;
};

/// Takes away what the NewFile that is open has beside its place, for a program that ends at once. Signals may call it.
void discard_unfinished_file() noexcept;

/// The file that the first of `values` names; null for standard input: there is none, or it is "-".
const std::string* file_named(const std::vector<std::string>& values);

}  // namespace vxcli

#endif
