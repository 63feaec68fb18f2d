#include "cli/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "cli/errors.h"

namespace vxcli {

namespace {

constexpr mode_t usual_mode = 0666;
constexpr mode_t all_modes = 0777;

/// The file that another can take the place of; empty: there is none.
std::string replaceable_file(const std::string& path) {
  if (path.starts_with("/dev/") || path.starts_with("/proc/")) return "";
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return errno == ENOENT ? path : "";
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || access(path.c_str(), W_OK) != 0) return "";
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
  return real != nullptr ? real.get() : "";
}

std::atomic<const char*> unfinished = nullptr;

/// The descriptor that a path names, as "/dev/stdout" does; less than 0: it names a file.
int descriptor_named(std::string_view path) {
  if (path == "/dev/stdout") return STDOUT_FILENO;
  if (path == "/dev/stderr") return STDERR_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!path.starts_with(folder)) continue;
    int number = -1;
    const auto [end, error] = std::from_chars(path.data() + folder.size(), path.data() + path.size(), number);
    if (error == std::errc() && end == path.data() + path.size()) return number;
  }
  return -1;
}

}  // namespace

bool open_already(std::string_view path) { return descriptor_named(path) >= 0; }

File::File(const std::string* path) : name_(path == nullptr ? "standard input" : *path), descriptor_(STDIN_FILENO) {
  if (path != nullptr) descriptor_ = open(path->c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) fail(ExitCode::io, "{}: {}", name_, std::strerror(errno));
  struct stat status {};
  if (fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode)) start_ = lseek(descriptor_, 0, SEEK_CUR);
}

File::~File() {
  if (descriptor_ != STDIN_FILENO) close(descriptor_);
}

void File::rewind() const {
  if (lseek(descriptor_, start_, SEEK_SET) != start_) fail(ExitCode::io, "{}: {}", name_, std::strerror(errno));
}

NewFile::NewFile(const std::string& path, std::string target) : path_(path), target_(std::move(target)) {}

// Whatever is thrown from the body on, the destructor runs: the object is there when the other constructor has ended.
NewFile::NewFile(const std::string& path) : NewFile(path, replaceable_file(path)) {
  // Opened anew, a file that others write to would be emptied, or written over from its start.
  const int named = descriptor_named(path);
  int descriptor = named < 0 ? open_beside() : fcntl(named, F_DUPFD_CLOEXEC, 0);
  if (descriptor < 0 && named < 0)
    descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, usual_mode);
  if (descriptor < 0) fail(ExitCode::io, "{}: {}", path, std::strerror(errno));
  out_.emplace(descriptor, path);
}

NewFile::~NewFile() { discard_unfinished_file(); }

/// Less than 0 when the file has to be written where it is.
int NewFile::open_beside() {
  if (target_.empty()) return -1;
  std::string name = target_ + ".XXXXXX";
  const int descriptor = mkostemp(name.data(), O_CLOEXEC);
  if (descriptor < 0) return -1;
  beside_ = std::move(name);
  unfinished = beside_.c_str();
  struct stat old {};
  const mode_t mask = umask(0);
  umask(mask);
  const bool same = stat(target_.c_str(), &old) != 0 ? fchmod(descriptor, usual_mode & ~mask) == 0
                                                     : fchown(descriptor, old.st_uid, old.st_gid) == 0 &&
                                                           fchmod(descriptor, old.st_mode & all_modes) == 0;
  if (same) return descriptor;
  close(descriptor);
  discard_unfinished_file();
  return -1;
}

void NewFile::finish() {
  out_->finish();
  if (unfinished == nullptr) return;
  if (rename(beside_.c_str(), target_.c_str()) != 0) {
    fail(ExitCode::io, "cannot write {}: {}", path_, std::strerror(errno));
  }
  unfinished = nullptr;
}

void discard_unfinished_file() noexcept {
  if (const char* const name = unfinished.exchange(nullptr)) unlink(name);
}

const std::string* file_named(const std::vector<std::string>& values) {
  return values.empty() || values.front() == "-" ? nullptr : &values.front();
}

}  // namespace vxcli
