// One open host for the tests of the C++ face.
#ifndef VXNLS_TESTS_CPP_OPEN_HOST_H
#define VXNLS_TESTS_CPP_OPEN_HOST_H

#include "vxnls/vxnls.hpp"

namespace vxtest {

inline vxnls::host& host() {
  static vxnls::host opened = vxnls::host::open().value();
  return opened;
}
inline vxnls::locale locale(std::string_view name, std::string_view zone = "UTC") {
  return host().locale(name, zone).value();
}

}  // namespace vxtest

#endif
