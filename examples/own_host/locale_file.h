// Locales and zones out of a text file, for the host of own_host.h.
#ifndef LOCALE_FILE_H
#define LOCALE_FILE_H

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include "vxnls/vxnls.h"

namespace own {

/// How many names there are in an entry of a record; 0 for a single character.
template <class Entry>
constexpr size_t names_in = std::is_integral_v<Entry> ? 0 : std::max<size_t>(std::extent_v<Entry>, 1);
/// The entries of a locale by the names that they have in locale.h.
#define ENTRY(member) \
  { #member, offsetof(VXLocaleData, member), names_in < decltype(VXLocaleData::member)> }
constexpr struct {
  std::string_view key;
  size_t offset, names;
} entries[] = {ENTRY(dayNames),          ENTRY(altDayNames),     ENTRY(monthNames),      ENTRY(altMonthNames),
               ENTRY(datePattern),       ENTRY(datePattern1),    ENTRY(datePattern2),    ENTRY(datetimePattern),
               ENTRY(timePattern),       ENTRY(timePattern1),    ENTRY(amMarker),        ENTRY(pmMarker),
               ENTRY(quarterNames),      ENTRY(quarterPattern1), ENTRY(quarterPattern2), ENTRY(monthYearPattern1),
               ENTRY(monthYearPattern2), ENTRY(weekPattern1),    ENTRY(weekPattern2),    ENTRY(groupingPattern),
               ENTRY(decimalPoint),      ENTRY(groupSeparator),  ENTRY(currencySymbol)};
#undef ENTRY
using Text = std::basic_string<VXChar>;
inline Text text_of(const VXChar* units, int64_t length) { return {units, units + std::clamp<int64_t>(length, 0, 62)}; }
inline Text decoded(std::string_view text) {
  Text units(text.size(), 0);
  int64_t bytes = 0;
  ConvertToUTF32(reinterpret_cast<const uint8_t*>(text.data()), static_cast<int64_t>(text.size()),
                 reinterpret_cast<uint8_t*>(units.data()), static_cast<int64_t>(4 * text.size()), &bytes, &UTF8_UTF32,
                 &COPY_UTF32_SWAP);
  return units.substr(0, static_cast<size_t>(bytes / 4));
}

/// The text file: "[en_US]" begins a locale, "dayNames = Sunday | Monday | ..." is an entry of it; "[zones]" begins the
/// zones, of which "Asia/Tokyo = 32400" is one: seconds east of UTC.
struct Data {
  std::map<Text, VXLocaleData> locales;
  std::map<Text, int32_t> zones;
  explicit Data(const std::string& file) {
    VXLocaleData* data = nullptr;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
      const size_t equals = line.find(" = ");
      const std::string key = line.substr(0, equals);
      if (line.starts_with("["))
        data = line == "[zones]" ? nullptr : &locales[decoded(line.substr(1, line.size() - 2))];
      if (equals == std::string::npos) continue;
      std::string_view left = std::string_view(line).substr(equals + 3);
      if (data == nullptr) zones[decoded(key)] = std::stoi(std::string(left));
      for (const auto& entry : entries) {
        if (data == nullptr || key != entry.key) continue;
        uint8_t* place = reinterpret_cast<uint8_t*>(data) + entry.offset;
        if (entry.names == 0) std::memcpy(place, decoded(left).c_str(), sizeof(VXChar));
        for (size_t i = 0; i < entry.names; ++i, place += sizeof(NLSName)) {
          const size_t bar = std::min(left.find(" | "), left.size());
          auto* const name = reinterpret_cast<NLSName*>(place);
          name->length = static_cast<int64_t>(decoded(left.substr(0, bar)).copy(name->text, 60));
          left.remove_prefix(std::min(bar + 3, left.size()));
        }
      }
    }
    if (locales.empty() || zones.empty()) throw std::runtime_error(file + ": locales and zones are wanted");
  }
};

}  // namespace own

#endif
