/// Text in C++: code points as a range, coders of whole texts, case, order, classes of characters. Part of vxnls.hpp;
/// alone it wants libvxnlsloc and no host.
#ifndef VXNLS_TEXT_HPP
#define VXNLS_TEXT_HPP

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "vxnls/classes.h"
#include "vxnls/collation.h"
#include "vxnls/result.hpp"
#include "vxnls/strings.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace vxnls {

/// A code point, and the units that it takes.
struct code_point {
  char32_t value;
  std::uint8_t units;
  bool well_formed;  ///< false: the units are no character; value is U+FFFD
};

/// The first code point of a text that is not empty. Ill-formed units give U+FFFD once a maximal part, as the Unicode
/// standard recommends.
template <class Unit>
constexpr code_point first_code_point(std::basic_string_view<Unit> text) noexcept {
  constexpr char32_t replacement = 0xFFFD;
  if constexpr (sizeof(Unit) == 1) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};
    if (lead < 0xC2 || lead > 0xF4) return {replacement, 1, false};
    const std::uint8_t following = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    std::uint8_t least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    std::uint8_t most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t value = lead & (0x3Fu >> following);
    for (std::uint8_t i = 1; i <= following; ++i) {
      if (i == text.size() || byte(i) < least || byte(i) > most) return {replacement, i, false};
      value = (value << 6) | (byte(i) & 0x3Fu);
      least = 0x80, most = 0xBF;
    }
    return {value, static_cast<std::uint8_t>(following + 1), true};
  } else if constexpr (sizeof(Unit) == 2) {
    const char32_t unit = static_cast<char16_t>(text[0]);
    if (unit < 0xD800 || unit > 0xDFFF) return {unit, 1, true};
    const char32_t low = text.size() > 1 ? static_cast<char16_t>(text[1]) : 0;
    if (unit > 0xDBFF || low < 0xDC00 || low > 0xDFFF) return {replacement, 1, false};
    return {0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00), 2, true};
  } else {
    const auto unit = static_cast<char32_t>(text[0]);
    const bool good = unit < 0xD800 || (unit > 0xDFFF && unit <= 0x10FFFF);
    return {good ? unit : replacement, 1, good};
  }
}

/// The code points of UTF-8, UTF-16 or UTF-32 text, as a forward view of char32_t, also at compile time:
///   for (char32_t c : vxnls::code_points(u8"é")) ...
/// An iterator's base() is where its code point begins.
template <class Unit>
class code_points : public std::ranges::view_base {
 public:
  class iterator {
   public:
    using value_type = char32_t;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::input_iterator_tag;  // it gives values, not references
    constexpr iterator() = default;
    constexpr explicit iterator(std::basic_string_view<Unit> rest) noexcept : rest_(rest) { decode(); }
    constexpr char32_t operator*() const noexcept { return now_.value; }
    constexpr iterator& operator++() noexcept {
      rest_.remove_prefix(now_.units);
      decode();
      return *this;
    }
    constexpr iterator operator++(int) noexcept {
      iterator before = *this;
      ++*this;
      return before;
    }
    constexpr bool operator==(const iterator& other) const noexcept { return base() == other.base(); }
    constexpr bool operator==(std::default_sentinel_t) const noexcept { return rest_.empty(); }
    constexpr const Unit* base() const noexcept { return rest_.data(); }
    constexpr bool well_formed() const noexcept { return now_.well_formed; }

   private:
    constexpr void decode() noexcept {
      if (!rest_.empty()) now_ = first_code_point(rest_);
    }
    std::basic_string_view<Unit> rest_;
    code_point now_{};
  };

  constexpr code_points() = default;
  constexpr explicit code_points(std::basic_string_view<Unit> text) noexcept : text_(text) {}
  template <std::same_as<std::basic_string<Unit>> Text>
  code_points(Text&&) = delete;  // it would be gone when a loop begins
  constexpr iterator begin() const noexcept { return iterator(text_); }
  constexpr std::default_sentinel_t end() const noexcept { return {}; }
  constexpr bool empty() const noexcept { return text_.empty(); }

 private:
  std::basic_string_view<Unit> text_;
};
template <class Text>
code_points(Text&& text) -> code_points<std::remove_cvref_t<decltype(text[0])>>;

/// Units at the start of a text that are well-formed; all of them in well-formed text.
template <class Unit>
constexpr std::size_t well_formed_prefix(std::basic_string_view<Unit> text) noexcept {
  std::size_t at = 0;
  while (at < text.size()) {
    const code_point next = first_code_point(text.substr(at));
    if (!next.well_formed) break;
    at += next.units;
  }
  return at;
}
constexpr std::size_t well_formed_prefix(std::string_view text) noexcept { return well_formed_prefix<char>(text); }
constexpr bool is_well_formed(std::string_view text) noexcept { return well_formed_prefix(text) == text.size(); }

namespace detail {

/// The library's drivers over whole buffers. On failure the text up to the fault, and `consumed` units before it.
template <class Unit>
result<std::u32string> decode_all(std::basic_string_view<Unit> text, VXDecoder decoder) {
  std::u32string all(text.size(), U'\0');
  std::int64_t size = 0;
  const VXStatus status =
      ConvertToUTF32(reinterpret_cast<const std::uint8_t*>(text.data()),
                     static_cast<std::int64_t>(text.size() * sizeof(Unit)), reinterpret_cast<std::uint8_t*>(all.data()),
                     static_cast<std::int64_t>(4 * all.size()), &size, decoder, &COPY_UTF32_SWAP);
  all.resize(static_cast<std::size_t>(size / 4));
  if (status == 0) return {0, std::move(all), text.size()};
  std::size_t units = 0;
  for (const char32_t c : all) units += sizeof(Unit) == 2 ? (c < 0x10000 ? 1u : 2u) : 0u;
  if constexpr (sizeof(Unit) == 1) {
    for (std::size_t i = 0; i < all.size(); ++i) {
      units += static_cast<std::size_t>(utf8_len(in(text.data()) + units));
    }
  }
  return {status, std::move(all), units, {"an illegal sequence of units", units, 0}};
}
template <class Text>
result<Text> encode_all(std::u32string_view text, std::size_t most_units, VXEncoder encoder) {
  using Unit = typename Text::value_type;
  Text all(most_units * text.size(), Unit{});
  std::int64_t size = 0;
  const VXStatus status = ConvertFromUTF32(
      reinterpret_cast<const std::uint8_t*>(text.data()), 4 * length(text), reinterpret_cast<std::uint8_t*>(all.data()),
      static_cast<std::int64_t>(all.size() * sizeof(Unit)), &size, encoder, &Byte2DWord);
  all.resize(static_cast<std::size_t>(size) / sizeof(Unit));
  return {status, std::move(all), text.size()};
}

}  // namespace detail

/// Conversions of whole texts by the coders of unicode.h, which are fast and take more than well-formed UTF-8 and
/// UTF-32: overlong forms, single surrogates, and behind a lead any bytes (is_well_formed tells); of UTF-16 no single
/// surrogate. VX_E_SEQUENCE, VX_E_INCOMPLETE: the text up to the fault was converted, consumed() units of it. UTF-16 is
/// in the machine's order.
inline result<std::u32string> to_utf32(std::string_view text) { return detail::decode_all(text, &UTF8_UTF32); }
inline result<std::u32string> to_utf32(std::u16string_view text) { return detail::decode_all(text, &UTF16_UTF32_SWAP); }
inline result<std::string> to_utf8(std::u32string_view text) {
  return detail::encode_all<std::string>(text, 4, &UTF32_UTF8);
}
inline result<std::u16string> to_utf16(std::u32string_view text) {
  return detail::encode_all<std::u16string>(text, 2, &UTF32_UTF16s);
}
inline result<std::string> to_utf8(std::u16string_view text) {
  const auto wide = to_utf32(text);
  return {wide.status(), *to_utf8(*wide), wide.consumed(), wide.why()};
}
inline result<std::u16string> to_utf16(std::string_view text) {
  const auto wide = to_utf32(text);
  return {wide.status(), *to_utf16(*wide), wide.consumed(), wide.why()};
}
/// Adds one code point to UTF-8 text.
inline void append(std::string& text, char32_t code_point) {
  char bytes[4];
  std::int64_t size = 0;
  UTF32_UTF8(code_point, detail::out(bytes), 4, &size);
  text.append(bytes, static_cast<std::size_t>(size));
}

namespace detail {

template <class Map>
result<std::string_view> map_to(std::span<char> room, std::string_view text, Map map) noexcept {
  std::int64_t size = 0;
  const VXStatus status = map(in(text.data()), length(text), out(room.data()), length(room), &size);
  // Without room the call only measures.
  if (room.empty()) return {size > 0 ? VX_E_ROOM : 0, {}};
  return {status, {room.data(), static_cast<std::size_t>(size)}};
}
template <class Map>
std::string mapped(std::string_view text, Map map) {
  std::string cased(text.size(), '\0');
  auto done = map_to(cased, text, map);
  if (!done) {  // some character grew
    std::int64_t size = 0;
    map(in(text.data()), length(text), nullptr, 0, &size);
    cased.resize(static_cast<std::size_t>(size));
    done = map_to(cased, text, map);
  }
  cased.resize(done->size());
  return cased;
}

}  // namespace detail

/// Case by simple mappings, a character to a character: the host's, or built-in ones without a host. Bytes that are no
/// UTF-8 stay as they are. With a span: VX_E_ROOM when it is too small, and the characters before that.
inline std::string lower(std::string_view text) { return detail::mapped(text, vxzsu8Lower2); }
inline std::string upper(std::string_view text) { return detail::mapped(text, vxzsu8Upper2); }
inline std::u32string lower(std::u32string text) {
  vxzstlo(detail::out(text.data()), detail::length(text));
  return text;
}
inline std::u32string upper(std::u32string text) {
  vxzstup(detail::out(text.data()), detail::length(text));
  return text;
}
inline result<std::string_view> lower_to(std::span<char> out, std::string_view text) noexcept {
  return detail::map_to(out, text, vxzsu8Lower2);
}
inline result<std::string_view> upper_to(std::span<char> out, std::string_view text) noexcept {
  return detail::map_to(out, text, vxzsu8Upper2);
}

/// Orders texts by code points.
inline std::strong_ordering compare(std::string_view a, std::string_view b) noexcept {
  return vxzsu8Compare(detail::in(a.data()), detail::length(a), detail::in(b.data()), detail::length(b)) <=> 0;
}
inline std::strong_ordering compare(std::u32string_view a, std::u32string_view b) noexcept {
  return NLSSSOrderCompare(nullptr, detail::in(a.data()), detail::length(a), detail::in(b.data()), detail::length(b),
                           0) <=> 0;
}
/// Orders texts ignoring case and trailing blanks, and by case alone when nothing else differs. Whether two texts are
/// equal but for case says equal_caseless. No order to sort by where texts hold characters below U+0020, which come
/// before the blanks that a shorter text is filled up with: "a\t" < "a " = "a" < "a\t".
inline std::strong_ordering compare_caseless(std::string_view a, std::string_view b) noexcept {
  return vxzsu8NormCompare(detail::in(a.data()), detail::length(a), detail::in(b.data()), detail::length(b)) <=> 0;
}
inline std::strong_ordering compare_caseless(std::u32string_view a, std::u32string_view b) noexcept {
  return vxzsncmp(detail::in(a.data()), detail::length(a), detail::in(b.data()), detail::length(b)) <=> 0;
}
inline bool equal_caseless(std::string_view a, std::string_view b) noexcept {
  return vxzsu8NormEqual(detail::in(a.data()), detail::length(a), detail::in(b.data()), detail::length(b)) != 0;
}
inline bool equal_caseless(std::u32string_view a, std::u32string_view b) noexcept {
  return std::abs(vxzsncmp(detail::in(a.data()), detail::length(a), detail::in(b.data()), detail::length(b))) < 2;
}

/// Classes of characters, as classes.h says them: std::ranges::all_of(vxnls::code_points(text), vxnls::is_digit).
inline bool is_digit(char32_t c) noexcept { return vxnlsisdigit(c) != 0; }
inline bool is_lower(char32_t c) noexcept { return vxnlsislower(c) != 0; }
inline bool is_upper(char32_t c) noexcept { return vxnlsisupper(c) != 0; }
inline bool is_alpha(char32_t c) noexcept { return vxnlsisalpha(c) != 0; }
inline bool is_alnum(char32_t c) noexcept { return vxnlsisalnum(c) != 0; }
inline bool is_space(char32_t c) noexcept { return vxnlsisspace(c) != 0; }
inline bool is_print(char32_t c) noexcept { return vxnlsisprint(c) != 0; }
inline bool is_graph(char32_t c) noexcept { return vxnlsisgraph(c) != 0; }
inline bool is_punct(char32_t c) noexcept { return vxnlsispunct(c) != 0; }
inline bool is_xdigit(char32_t c) noexcept { return vxnlsisxdigit(c) != 0; }
inline bool is_cntrl(char32_t c) noexcept { return vxnlsiscntrl(c) != 0; }

}  // namespace vxnls

/// @cond
template <class Unit>
inline constexpr bool std::ranges::enable_borrowed_range<vxnls::code_points<Unit>> = true;
/// @endcond

#endif
