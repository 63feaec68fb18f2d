// JSON as the command prints it.
#ifndef VXNLS_CLI_JSON_H
#define VXNLS_CLI_JSON_H

#include <nlohmann/json.hpp>
#include <string>

namespace vxcli {

/// Members in the order in which they were put in.
using Json = nlohmann::ordered_json;

/// Bytes that are not UTF-8 become U+FFFD.
inline std::string json_line(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }
inline std::string json_page(const Json& json) { return json.dump(2, ' ', false, Json::error_handler_t::replace); }

}  // namespace vxcli

#endif
