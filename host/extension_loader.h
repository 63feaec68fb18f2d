// Loading of extensions: shared objects by name, from the host's folder and the folders of VXHOST_PATH.
#ifndef VXNLS_HOST_EXTENSION_LOADER_H
#define VXNLS_HOST_EXTENSION_LOADER_H

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host/accounting.h"
#include "host/extension.h"

namespace vxhost {

/// The value of VXHOST_PATH, and whether this process runs with rights that its caller does not have.
struct SearchPath {
  std::string folders;  // separated by ':'
  bool privileged;

  static SearchPath of_environment();
};

/// Where an installed host has its extensions, below the folder of the libraries; a host of another major version has
/// its own.
inline constexpr const char* private_folder = "vxnls-6";

/// An extension is looked for in the host's own folder, in the private folder below it, then in the folders of the
/// search path. Folders of the path that are not absolute are refused, and in a privileged process all of them, because
/// there the caller's environment must not choose the code. A name is 1 to 32 characters of a-z, 0-9 and "_": it cannot
/// leave its folder.
class ExtensionLoader {
 public:
  ExtensionLoader(std::string own_folder, const SearchPath& path);
  /// Unloads what has no open instance. The rest stays in memory, and its instances stay counted until they are closed.
  ~ExtensionLoader();
  ExtensionLoader(const ExtensionLoader&) = delete;
  ExtensionLoader& operator=(const ExtensionLoader&) = delete;

  /// A new instance, which is told that it was loaded through `kernel`; that handle outlives it. Null, with the reason
  /// in `why`, when there is no such extension. Throws std::bad_alloc.
  VXExtension* load(std::string_view name, VXHandle* kernel, std::string& why);

  /// Why an extension could not be had since the last call; empty when all could.
  std::string take_failure();

  /// One line for every folder of the search path that was refused.
  const std::vector<std::string>& refused() const { return refused_; }

 private:
  struct Loaded;
  struct GiveUp {
    void operator()(Loaded* loaded) const;
  };
  Loaded* find_or_load(std::string_view name, VXHandle* kernel, std::string& why);
  VXExtension* open(std::string_view name, VXHandle* kernel, std::string& why);

  std::vector<std::string> folders_;
  std::vector<std::string> refused_;
  std::mutex mutex_;
  std::map<std::string, std::unique_ptr<Loaded, GiveUp>, std::less<>> loaded_;
  std::string failure_;
};

}  // namespace vxhost

#endif
