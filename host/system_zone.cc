#include "host/system_zone.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "host/file.h"

namespace vxhost {

namespace {

namespace fs = std::filesystem;

/// The identifier in a path into a tz database, "/usr/share/zoneinfo/posix/Asia/Tokyo"; nothing for other paths.
std::optional<std::string> identifier_in(std::string_view path) {
  static constexpr std::string_view folder = "zoneinfo/";
  const size_t at = path.rfind(folder);
  if (at == std::string_view::npos) return std::nullopt;
  return std::string(path.substr(at + folder.size()));
}

/// The database has a copy of itself with leap seconds and one without; the zones have the same names in them.
std::string without_variant(std::string name) {
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (name.starts_with(variant)) return name.substr(variant.size());
  }
  return name;
}

std::optional<std::string> zone_of_link(const std::string& link) {
  std::error_code error;
  const fs::path target = fs::read_symlink(link, error);
  if (!error) {
    if (auto name = identifier_in(target.native())) return name;
  }
  const fs::path end = fs::canonical(link, error);
  return error ? std::nullopt : identifier_in(end.native());
}

std::string first_word(const std::string& text) {
  static constexpr std::string_view blanks = " \t\n\v\f\r";
  const size_t begin = std::min(text.find_first_not_of(blanks), text.size());
  return text.substr(begin, text.find_first_of(blanks, begin) - begin);
}

}  // namespace

std::optional<std::string> system_zone_name(const SystemZoneSources& sources) {
  if (sources.tz != nullptr) {
    std::string_view tz = sources.tz;
    if (tz.starts_with(':')) tz.remove_prefix(1);
    if (tz.empty()) return "UTC";
    if (tz != sources.local_time) {
      auto name = tz.starts_with('/') ? identifier_in(tz) : std::string(tz);
      return name ? std::optional(without_variant(*name)) : std::nullopt;
    }
  }
  if (auto name = zone_of_link(sources.local_time)) return without_variant(*name);
  if (const std::string name = first_word(contents(sources.time_zone)); !name.empty()) return without_variant(name);
  std::error_code error;
  if (!fs::exists(fs::symlink_status(sources.local_time, error))) return "UTC";
  return std::nullopt;
}

}  // namespace vxhost
