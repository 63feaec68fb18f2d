// The loaded libvxnlsloc.so, and what all hosts over it share.
#ifndef VXNLS_HOST_LIBRARY_H
#define VXNLS_HOST_LIBRARY_H

#include <memory>
#include <string>

#include "host/kernel.h"
#include "host/zone_table.h"
#include "vxnls/module.h"

namespace vxhost {

/// One loaded image of the library. It keeps one kernel handle in the library's global for as long as any host over
/// that image is open: hosts come and go, and the library reads its global at any time. The services behind that handle
/// are therefore common to these hosts: extensions (from the folder of the first), options, loggers, character data.
class Library {
 public:
  using ModuleEntry = decltype(&::vxnlsloc);

  /// Loads the library from `folder`, or takes part in the image that is loaded. Null with the status and a line that
  /// says why. Each success wants a close.
  static Library* open(const std::string& folder, VXStatus& status, std::string& why);
  /// The last close takes the kernel handle out of the library's global and unloads the library.
  static void close(Library* library);

  struct CloseImage {
    void operator()(void* image) const;
  };
  using Image = std::unique_ptr<void, CloseImage>;  // what dlopen gives: one handle an image

  Library(Image image, const std::string& folder);
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  Services& services() { return services_; }
  const ZoneTable& zones() const { return zones_; }
  ModuleEntry module_entry() const { return module_entry_; }

 private:
  /// Hands the kernel handle over. False with the reason when the library is not the one that this host is made for.
  bool start(std::string& why);

  const Image image_;  // the first member: the code goes when everything else has gone
  int64_t hosts_ = 1;
  Services services_;
  Kernel kernel_;
  ZoneTable zones_;
  decltype(&::vxextent) take_handle_ = nullptr;
  ModuleEntry module_entry_ = nullptr;
};

}  // namespace vxhost

#endif
