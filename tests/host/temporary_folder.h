// A folder that goes with its object.
#ifndef VXNLS_TESTS_HOST_TEMPORARY_FOLDER_H
#define VXNLS_TESTS_HOST_TEMPORARY_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace vxtest {

class TemporaryFolder {
 public:
  TemporaryFolder() : path_(mkdtemp((std::filesystem::temp_directory_path() / "vxnls.XXXXXX").string().data())) {}
  ~TemporaryFolder() { std::filesystem::remove_all(path_, ignored_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + '/' + name; }
  void write(const std::string& name, const std::string& text) const { std::ofstream(file(name)) << text; }
  void link(const std::string& target, const std::string& name) const {
    std::filesystem::create_symlink(target, file(name));
  }

 private:
  std::string path_;
  std::error_code ignored_;
};

}  // namespace vxtest

#endif
