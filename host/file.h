// Small files of the system.
#ifndef VXNLS_HOST_FILE_H
#define VXNLS_HOST_FILE_H

#include <string>

namespace vxhost {

/// What a file holds; nothing when it cannot be read. Throws std::bad_alloc, which the operators of streams would keep
/// to themselves: half a file would pass for the whole. Also for want of descriptors: a file that is there would pass
/// for one that is not.
std::string contents(const std::string& file);

}  // namespace vxhost

#endif
