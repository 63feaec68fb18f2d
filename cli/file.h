// A file that is read, or standard input.
#ifndef VXNLS_CLI_FILE_H
#define VXNLS_CLI_FILE_H

#include <sys/types.h>

#include <string>
#include <vector>

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

/// A new or emptied file to write to. Throws Failure (ExitCode::io).
int open_for_writing(const std::string& path);

/// The file that the first of `values` names; null for standard input: there is none, or it is "-".
const std::string* file_named(const std::vector<std::string>& values);

}  // namespace vxcli

#endif
