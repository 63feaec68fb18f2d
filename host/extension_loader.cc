#include "host/extension_loader.h"

#include <dlfcn.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

namespace vxhost {

namespace {

bool is_extension_name(std::string_view name) {
  return !name.empty() && name.size() <= 32 &&
         name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") == std::string_view::npos;
}

std::string last_dl_error() {
  const char* const text = dlerror();
  return text != nullptr ? text : "unknown error";
}

}  // namespace

SearchPath SearchPath::of_environment() {
  const char* const folders = std::getenv("VXHOST_PATH");
  return {folders != nullptr ? folders : "", getauxval(AT_SECURE) != 0};
}

/// One shared object. Its users are the loader and the open instances; the last of them deletes this.
struct ExtensionLoader::Loaded final : VXHostExtensionOwner {
  explicit Loaded(VXHandle* handle) : VXHostExtensionOwner{handle, &Loaded::instance_closed} {}
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;

  bool is_last_user() { return users.fetch_sub(1, std::memory_order_acq_rel) == 1; }
  static void instance_closed(VXHostExtensionOwner* owner) {
    auto* const self = static_cast<Loaded*>(owner);
    count(Kind::extension, -1);
    if (self->is_last_user()) delete self;  // the code stays: this call returns into it
  }

  void* object = nullptr;
  const VXHostExtension* description = nullptr;
  std::atomic<int64_t> users{1};
};

void ExtensionLoader::GiveUp::operator()(Loaded* loaded) const {
  if (!loaded->is_last_user()) return;
  if (loaded->object != nullptr) dlclose(loaded->object);
  delete loaded;
}

ExtensionLoader::ExtensionLoader(std::string own_folder, const SearchPath& path) {
  folders_.push_back(own_folder);
  folders_.push_back(std::move(own_folder) + '/' + private_folder);
  for (std::string_view rest = path.folders; !rest.empty();) {
    const size_t end = rest.find(':');
    const std::string folder(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (folder.empty()) continue;
    if (path.privileged) {
      refused_.push_back("VXHOST_PATH: " + folder + " is refused: this process runs with raised privileges");
    } else if (folder.front() != '/') {
      refused_.push_back("VXHOST_PATH: " + folder + " is refused: it is not an absolute folder");
    } else {
      folders_.push_back(folder);
    }
  }
}

ExtensionLoader::~ExtensionLoader() = default;

ExtensionLoader::Loaded* ExtensionLoader::find_or_load(std::string_view name, VXHandle* kernel, std::string& why) {
  const auto known = loaded_.find(name);
  if (known != loaded_.end()) return known->second.get();

  std::unique_ptr<Loaded, GiveUp> loaded(new Loaded(kernel));
  const std::string file_name = '/' + std::string(name) + ".so";
  for (const std::string& folder : folders_) {
    const std::string file = folder + file_name;
    if (access(file.c_str(), F_OK) != 0) continue;  // a file that is there and does not load is an error, not a miss
    loaded->object = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (loaded->object == nullptr) {
      why = last_dl_error();
      return nullptr;
    }
    const auto* const description = static_cast<const VXHostExtension*>(dlsym(loaded->object, "vxhost_extension"));
    if (description == nullptr || description->version != VXHOST_EXTENSION_VERSION || description->open == nullptr ||
        description->name == nullptr || name != description->name) {
      why = file + " is not version " + std::to_string(VXHOST_EXTENSION_VERSION) + " of the extension " +
            std::string(name);
      return nullptr;
    }
    loaded->description = description;
    return loaded_.emplace(name, std::move(loaded)).first->second.get();
  }
  why = "no extension " + std::string(name) + " in " + folders_.front();
  return nullptr;
}

VXExtension* ExtensionLoader::open(std::string_view name, VXHandle* kernel, std::string& why) {
  if (!is_extension_name(name)) {
    why = "not the name of an extension";
    return nullptr;
  }
  Loaded* loaded = nullptr;
  {
    const std::lock_guard guard(mutex_);
    loaded = find_or_load(name, kernel, why);
  }
  if (loaded == nullptr) return nullptr;
  loaded->users.fetch_add(1, std::memory_order_relaxed);
  VXExtension* const instance = loaded->description->open(loaded);
  if (instance == nullptr) {
    loaded->users.fetch_sub(1, std::memory_order_relaxed);
    throw std::bad_alloc();
  }
  count(Kind::extension, 1);
  return instance;
}

VXExtension* ExtensionLoader::load(std::string_view name, VXHandle* kernel, std::string& why) {
  VXExtension* const instance = open(name, kernel, why);
  if (instance == nullptr) {
    const std::lock_guard guard(mutex_);
    failure_ = why;
  }
  return instance;
}

std::string ExtensionLoader::take_failure() {
  const std::lock_guard guard(mutex_);
  return std::exchange(failure_, {});
}

}  // namespace vxhost
