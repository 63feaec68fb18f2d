// Formatting with any record: both flavours give the same text or refuse alike, and less room gives the front of it.
#include "fuzz/input.h"
#include "tests/support/plain_locale.h"

namespace {

using namespace vxfuzz;

std::u32string line_of(Input& in) { return vxtest::utf32(in.line()).substr(0, 60); }

/// The whole text; with every smaller room its front.
template <class Unit, class Function>
Written write(Function function) {
  const auto with_room = [&](int64_t most) {
    return call<Unit>(most, [&](Unit* buffer, int64_t room, int64_t* length) {
      const Unit fresh = buffer[std::max<int64_t>(room, 0)];
      const VXStatus status = function(buffer, room, length);
      const bool written = status == 0 || status == VX_E_TRUNCATED;
      require(written == (*length != untouched) && *length <= std::max<int64_t>(room, 0));
      for (int64_t i = written ? *length : 0; i < room; ++i) require(buffer[i] == fresh);
      return status;
    });
  };
  Written whole = with_room(512);
  if (whole.status != 0 && whole.status != VX_E_TRUNCATED) return whole;
  const auto length = static_cast<int64_t>(whole.text.size());
  require(with_room(length).text == whole.text);
  for (const int64_t room : {int64_t{-1}, int64_t{0}, length / 2, length - 1}) {
    if (std::max<int64_t>(room, 0) >= length) continue;
    const Written less = with_room(room);
    require(less.status == VX_E_TRUNCATED);
    require(less.text == whole.text.substr(0, static_cast<size_t>(std::max<int64_t>(room, 0))));
  }
  return whole;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  vxtest::PlainLocale plain;
  const auto entry = in.take<uint8_t>();
  const auto value = in.take<double>();
  const auto month = in.take<uint8_t>(), day = in.take<uint8_t>();
  const auto year = in.take<uint16_t>();
  const auto offset = in.take<int32_t>();
  const auto told = in.take<int8_t>();  // added to the length of one entry
  if ((entry & 0x80) != 0) plain.use_fixed_zone(offset);
  const std::u32string pattern = line_of(in);
  for (NLSName* const name : {&plain.data.datePattern, &plain.data.datePattern1, &plain.data.datePattern2,
                              &plain.data.datetimePattern, &plain.data.timePattern, &plain.data.timePattern1}) {
    vxtest::set_name(*name, pattern);
    name->length += (entry & 0x40) != 0 ? told : 0;
  }
  bool short_names = pattern.size() <= 45 && (entry & 0x40) == 0;
  const auto fill = [&](NLSName* names, size_t count) {
    for (size_t i = 0; i < count && in.left > 0; ++i) {
      const std::u32string text = line_of(in);
      vxtest::set_name(names[i], text);
      short_names = short_names && text.size() <= 45;
    }
  };
  fill(&plain.data.amMarker, 1);
  fill(&plain.data.pmMarker, 1);
  fill(plain.data.dayNames, 7);
  fill(plain.data.monthNames, 12);
  fill(plain.data.altDayNames, 7);
  fill(plain.data.altMonthNames, 12);

  VXLocale* const locale = plain.get();
  const auto style = static_cast<int32_t>(entry >> 2 & 3);
  const Written units = write<VXChar>([&](auto... to) {
    return entry % 3 == 0   ? NLSDateFormat(locale, month, day, year, style, to...)
           : entry % 3 == 1 ? NLSTimeFormat(locale, style, to..., value)
                            : NLSDatetimeFormat(locale, 0, to..., value);
  });
  const Written bytes = write<uint8_t>([&](auto... to) {
    return entry % 3 == 0   ? NLSDateFormatU(locale, month, day, year, style, to...)
           : entry % 3 == 1 ? NLSTimeFormatU(locale, style, to..., value)
                            : NLSDatetimeFormatU(locale, 0, to..., value);
  });
  // Where neither a text of 180 bytes nor the scratch ends anything, the flavours agree.
  if (!short_names || bytes.status == VX_E_TRUNCATED || units.status == VX_E_TRUNCATED) return 0;
  require(units.status == bytes.status);
  const std::string expected = vxtest::utf8(units.text);
  require(expected == std::string(bytes.text.begin(), bytes.text.end()) || expected.size() > 440);  // XST for a zone
  return 0;
}
