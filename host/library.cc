#include "host/library.h"

#include <dlfcn.h>
#include <unistd.h>

#include <map>
#include <memory>
#include <mutex>

namespace vxhost {

namespace {

struct Registry {
  std::mutex mutex;
  std::map<void*, Library*> by_image;
};

Registry& registry() {
  static auto* const made = new Registry;  // outlives hosts that a program closes while it ends
  return *made;
}

template <class Function>
Function entry(void* image, const char* name) {
  return reinterpret_cast<Function>(dlsym(image, name));
}

Library::Image load(const std::string& folder, std::string& why) {
  // By the name that says its major version; a folder put together by hand may have only the other.
  std::string file = folder + "/libvxnlsloc.so.6";
  if (access(file.c_str(), F_OK) != 0) file = folder + "/libvxnlsloc.so";
  Library::Image image{dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)};
  if (image == nullptr) {
    const char* const reason = dlerror();
    why = reason != nullptr ? reason : file + " cannot be loaded";
  }
  return image;
}

}  // namespace

void Library::CloseImage::operator()(void* image) const { dlclose(image); }

Library::Library(Image image, const std::string& folder)
    : image_(std::move(image)), services_(folder), kernel_(services_), zones_(ZoneTable::system_folder()) {
  services_.extension_owner = &kernel_;
}

Library::~Library() {
  if (take_handle_ != nullptr) take_handle_(nullptr);
}

bool Library::start(std::string& why) {
  take_handle_ = entry<decltype(take_handle_)>(image_.get(), "vxextent");
  module_entry_ = entry<ModuleEntry>(image_.get(), "vxnlsloc");
  const auto take_handle_and_tell = entry<decltype(&::vxextver)>(image_.get(), "vxextver");
  if (take_handle_ == nullptr || module_entry_ == nullptr || take_handle_and_tell == nullptr) {
    why = "libvxnlsloc.so lacks an entry point of vxextver, vxextent and vxnlsloc";
    return false;
  }
  int64_t major = 0;
  int64_t minor = 0;
  if (take_handle_and_tell(&kernel_, &major, &minor) == 0 && major == 6 && minor == 1) return true;
  why = "libvxnlsloc.so has version " + std::to_string(major) + '.' + std::to_string(minor) + ", this host wants 6.1";
  return false;
}

Library* Library::open(const std::string& folder, VXStatus& status, std::string& why) {
  Registry& all = registry();
  const std::lock_guard guard(all.mutex);
  Image image = load(folder, why);
  if (image == nullptr) {
    status = VX_E_ROOM;
    return nullptr;
  }
  status = 0;
  if (const auto known = all.by_image.find(image.get()); known != all.by_image.end()) {
    ++known->second->hosts_;
    return known->second;
  }
  void* const key = image.get();
  auto made = std::make_unique<Library>(std::move(image), folder);
  if (!made->start(why)) {
    status = VX_E_ROOM;
    return nullptr;
  }
  all.by_image.emplace(key, made.get());
  return made.release();
}

void Library::close(Library* library) {
  Registry& all = registry();
  const std::lock_guard guard(all.mutex);
  if (--library->hosts_ > 0) return;
  all.by_image.erase(library->image_.get());
  delete library;
}

}  // namespace vxhost
