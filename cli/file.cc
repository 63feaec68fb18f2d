#include "cli/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cli/errors.h"

namespace vxcli {

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

int open_for_writing(const std::string& path) {
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) fail(ExitCode::io, "{}: {}", path, std::strerror(errno));
  return descriptor;
}

const std::string* file_named(const std::vector<std::string>& values) {
  return values.empty() || values.front() == "-" ? nullptr : &values.front();
}

}  // namespace vxcli
