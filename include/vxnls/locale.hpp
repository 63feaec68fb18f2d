/// Locales in C++: values of the language written and read. Part of vxnls.hpp, which says how; alone it wants
/// libvxnlsloc, and a locale from any host.
#ifndef VXNLS_LOCALE_HPP
#define VXNLS_LOCALE_HPP

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "vxnls/bytes.h"
#include "vxnls/explain.h"
#include "vxnls/explain_number.h"
#include "vxnls/result.hpp"
#include "vxnls/table.h"
#include "vxnls/text.hpp"

namespace vxnls {

/// Which form of a date or time: format writes by it what parse reads by it. From `any` on they are only read.
enum class form : std::uint32_t {
  main = 0,           ///< the locale's main pattern
  medium_date = 1,    ///< with abbreviated names, where the locale has them so
  long_date = 2,      ///< with names in full
  short_time = 1,     ///< mostly without seconds
  any = 4,            ///< any common form, leniently; the locale decides between day first and month first
  quarter = 8,        ///< "Q3 2021": its first day
  month = 16,         ///< "M7 2022": its first day
  week = 32,          ///< "W7 2021", as the locale counts weeks: its first day
  sunday_week = 64,   ///< weeks that begin on Sunday
  iso_week = 128,     ///< weeks of ISO 8601
  monday_week = 256,  ///< weeks that begin on Monday
};

/// How a text is read. Members that a type has no use for are ignored.
struct reading {
  form as = form::main;   ///< dates and times
  bool prefix = false;    ///< dates, times, integers: more may follow; otherwise nothing but blanks
  bool spaces = false;    ///< numbers: where U+00A0 separates groups, a blank does so too
  bool fraction = false;  ///< integers: a fraction may follow and is dropped (VX_E_TRUNCATED when it was not 0)
  bool hex = false;       ///< unsigned integers: hexadecimal digits
  bool explain = true;    ///< false: a refused text is not looked at again to say why, which is faster
};

/// How a number is written.
struct number_style {
  int decimals = -1;         ///< 0 to 350; below 0: up to 15 significant digits, of a percentage none, of an amount 2.
                             ///< 99 means as many as fit, up to 12; percentages and amounts refuse it (VX_E_WIDTH)
  bool group = false;        ///< group separators; amounts always have them
  int width = 0;             ///< least width, -512 to 512, blanks before the number; below 0: behind it
  bool plus = false;         ///< "+" before numbers that are not negative
  bool zero_pad = false;     ///< zeros instead of the blanks before the number
  bool parentheses = false;  ///< percentages: around negative ones, in place of "-"
  std::uint32_t flags = 0;   ///< further NLS_FORMAT_... bits of number_format.h
};

/// A share of 1, written as a percentage: percent{0.125} is "12.5%" with 1 decimal.
struct percent {
  double value;
};
/// An amount, written with the symbol of the locale's currency before it and grouped.
struct money {
  double value;
};

/// The missing value that is written as `letter` ('_', '.', 'A' to 'Z'): a NaN.
inline double missing(char letter = '.') noexcept { return qmMissVal(static_cast<VXChar>(letter)); }

namespace detail {

template <class T>
concept integer = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
                  !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

template <class T>
inline constexpr bool is_local_time = false;
template <class D>
inline constexpr bool is_local_time<std::chrono::local_time<D>> = true;
template <class T>
inline constexpr bool is_sys_time = false;
template <class D>
inline constexpr bool is_sys_time<std::chrono::sys_time<D>> = true;
template <class T>
inline constexpr bool is_duration = false;
template <class R, class P>
inline constexpr bool is_duration<std::chrono::duration<R, P>> = true;
template <class T>
inline constexpr bool is_hh_mm_ss = false;
template <class D>
inline constexpr bool is_hh_mm_ss<std::chrono::hh_mm_ss<D>> = true;

/// The duration that a class of chrono is made of.
template <class T>
struct held_by;
template <class R, class P>
struct held_by<std::chrono::duration<R, P>> {
  using type = std::chrono::duration<R, P>;
};
template <class D>
struct held_by<std::chrono::hh_mm_ss<D>> {
  using type = D;
};
template <class C, class D>
struct held_by<std::chrono::time_point<C, D>> {
  using type = D;
};

template <class T>
concept day_point = std::same_as<T, std::chrono::sys_days> || std::same_as<T, std::chrono::local_days>;
template <class T>
concept date = std::same_as<T, std::chrono::year_month_day> || day_point<T>;
template <class T>
concept datetime = (is_local_time<T> || is_sys_time<T>)&&!day_point<T>;
template <class T>
concept time_of_day = is_duration<T> || is_hh_mm_ss<T>;
template <class T>
concept real = std::same_as<T, double> || std::same_as<T, float>;
template <class T>
concept amount = std::same_as<T, percent> || std::same_as<T, money>;
template <class T>
concept number = integer<T> || real<T> || amount<T>;

struct nothing {};
template <class T>
using style_of = std::conditional_t<number<T>, number_style, std::conditional_t<datetime<T>, nothing, form>>;
template <class T>
inline constexpr std::size_t room_for = real<T> || amount<T> ? double_room : text_room;

/// A NUL-terminated copy of a name; `fits` is false for one that is too long for a name or holds a NUL.
struct c_string {
  explicit c_string(std::string_view text) noexcept
      : fits(text.size() < sizeof bytes && text.find('\0') == std::string_view::npos) {
    if (fits) bytes[text.copy(bytes, text.size())] = '\0';
  }
  char bytes[256] = {};
  bool fits;
};

/* The calendar. The library counts from 1960, and in its calendar the years divisible by 4000 have no leap day. */
inline constexpr std::chrono::days from_1960{3653};
constexpr std::chrono::sys_days unknown_day(int k) {
  return std::chrono::sys_days{std::chrono::year{4000 * k} / std::chrono::February / 29};
}
inline bool exists(const std::chrono::year_month_day& day) noexcept {
  const int year = static_cast<int>(day.year());
  return day.ok() &&
         (year % 4000 != 0 || day.month() != std::chrono::February || static_cast<unsigned>(day.day()) < 29);
}
/// Seconds of the library's count, for wall clock time that is written as time since 1970. None for unknown days, and
/// beyond what any calendar has.
inline std::optional<double> seconds_1960(std::chrono::seconds since_1970) noexcept {
  if (std::chrono::abs(std::chrono::duration<double>(since_1970)).count() > 1e13) return {};
  const std::chrono::sys_seconds at{since_1970};
  const auto day = std::chrono::floor<std::chrono::days>(at);
  int skipped = 0;
  for (int k = 1; k <= 5; ++k) {
    if (day == unknown_day(k)) return {};
    if (day > unknown_day(k)) ++skipped;
  }
  return static_cast<double>((since_1970 + from_1960 - std::chrono::days{skipped}).count());
}
inline std::chrono::milliseconds since_1970(double seconds_1960) noexcept {
  const std::chrono::milliseconds counted{std::llround(seconds_1960 * 1000)};
  std::chrono::sys_time<std::chrono::milliseconds> at{counted - from_1960};
  for (int k = 1; k <= 5; ++k) {
    if (at >= unknown_day(k)) at += std::chrono::days{1};
  }
  return at.time_since_epoch();
}
/// What a class of chrono makes of a time, rounded down; none when it cannot hold that: nanoseconds end in 2262.
template <class T>
std::optional<T> made_of(std::chrono::milliseconds time) noexcept {
  using Duration = typename held_by<T>::type;
  const std::chrono::duration<double> seconds = time;
  if (seconds < Duration::min() || seconds > Duration::max()) return {};
  return T{std::chrono::floor<Duration>(time)};
}
/// Whole seconds of a duration; none beyond what any calendar has.
template <class Duration>
std::optional<std::chrono::seconds> whole_seconds(const Duration& duration) noexcept {
  if (!(std::abs(std::chrono::duration<double>(duration).count()) < 1e13)) return {};
  return std::chrono::floor<std::chrono::seconds>(duration);
}

inline constexpr const char* date_reasons[] = {
    // by VXReason
    "",
    "the text ends too early",
    "a digit is wanted",
    "fewer positions are filled than the pattern has",
    "blanks where a number is wanted",
    "too many digits",
    "a number out of range",
    "no such name",
    "another character is wanted",
    "more text follows",
    "no such time zone",
    "not well-formed text",
    "the pattern holds a directive that is not read",
    "the pattern ends within a directive",
    "the hour does not go with AM or PM",
    "no year or week was read",
    "no quarter was read",
    "before 1582-01-01",
    "the month has no such day"};
inline constexpr const char* number_faults[] = {
    // by VX_FAULT_...
    "",
    "no number",
    "a digit is wanted",
    "a digit is wanted after the sign",
    "a sign where none is allowed",
    "a group separator before the first digit",
    "not the decimal point of the locale",
    "a decimal point without digits",
    "neither a digit nor the letter of a missing value",
    "a second decimal point",
    "a group separator after the decimal point",
    "the exponent has no digits",
    "the exponent is out of range",
    "a decimal point in a whole number",
    "a fraction was dropped",
    "more text follows",
    "the number is too large",
    "the number is too small"};
template <std::size_t N>
const char* row(const char* const (&rows)[N], std::uint32_t at) noexcept {
  return at > 0 && at < N ? rows[at] : "not understood";
}

inline explanation explain(VXLocale* locale, std::uint32_t what, std::uint32_t kind, std::string_view text) noexcept {
  VXExplanation all;
  all.size = sizeof all;
  if (vxnlsExplain(locale, what, kind, in(text.data()), length(text), &all) != 0) return {};
  const VXExplainRefusal& refusal = all.refusal;
  const bool ranged = refusal.reason == VX_REASON_RANGE || refusal.reason == VX_REASON_MARKER;
  return {row(date_reasons, refusal.reason),
          static_cast<std::size_t>(refusal.position),
          static_cast<std::size_t>(refusal.length),
          refusal.is_directive != 0 ? static_cast<char32_t>(refusal.letter) : U'\0',
          refusal.value,
          ranged ? refusal.minimum : 0,
          ranged ? refusal.maximum : 0};
}
inline explanation explain_number(VXLocale* locale, std::uint32_t kind, std::uint32_t flags,
                                  std::string_view text) noexcept {
  VXNumberReading all;
  vxnlsExplainNumber(locale, in(text.data()), length(text), kind, flags, &all);
  return {row(number_faults, all.fault), static_cast<std::size_t>(all.fault_offset),
          static_cast<std::size_t>(all.fault_length)};
}

/// Explains a text by its UTF-8 form, and counts in its own units.
template <class Explain>
explanation explain_units(std::string_view text, Explain explain) {
  return explain(text);
}
template <class Explain>
explanation explain_units(std::u32string_view text, Explain explain) {
  const std::string bytes = *to_utf8(text);
  explanation why = explain(std::string_view(bytes));
  const auto units = [&](std::size_t from, std::size_t count) {
    const std::string_view part = std::string_view(bytes).substr(std::min(from, bytes.size()), count);
    return static_cast<std::size_t>(
        std::count_if(part.begin(), part.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
  };
  why.length = units(why.position, why.length);
  why.position = units(0, why.position);
  return why;
}

/// Lets `write(units, capacity, length)` fill what a call returns.
template <class Out, std::size_t room, class Write>
result<Out> written(Write write) {
  using Unit = typename Out::value_type;
  static_assert(text_unit<Unit>, "texts are UTF-8 in char or UTF-32 in char32_t");
  VXStatus status = 0;
  Out text;
  if constexpr (requires { text.assign(static_cast<const Unit*>(nullptr), room); }) {
    Unit units[room];
    std::int64_t size = 0;
    status = write(units, static_cast<std::int64_t>(room), &size);
    text.assign(units, static_cast<std::size_t>(size));
  } else {
    text.fill([&](Unit* units, std::size_t capacity) {
      std::int64_t size = 0;
      status = write(units, static_cast<std::int64_t>(capacity), &size);
      return static_cast<std::size_t>(size);
    });
  }
  return {status, std::move(text)};
}

}  // namespace detail

/// The text of a counted name of a locale's record, as UTF-8.
inline std::string to_string(const NLSName& name) {
  const auto size = std::clamp<std::int64_t>(name.length, 0, 60);
  return *to_utf8(std::u32string(name.text, name.text + size));
}

/// A locale: a handle that is copied like a pointer, good as long as its host. It needs no vxnls::host: one that a host
/// of another make created serves as well. An empty one has no name and no data; everything else may be asked of it.
class locale {
 public:
  locale() = default;
  explicit locale(VXLocale* raw) noexcept : raw_(raw) {}
  VXLocale* get() const noexcept { return raw_; }
  explicit operator bool() const noexcept { return raw_ != nullptr; }

  /// The canonical name: "de_DE".
  std::string name() const {
    std::string text;
    for (std::uint64_t i = 0; i < std::min<std::uint64_t>(raw_->nameLength, 62); ++i) {
      text.push_back(static_cast<char>(raw_->name[i]));
    }
    return text;
  }
  /// Names, patterns and separators: to_string(german.data().monthNames[11]).
  const VXLocaleData& data() const noexcept { return *raw_->localeData; }

  /// Writes a value. `style` is a form for dates and times, a number_style for numbers, and nothing for datetimes.
  /// Statuses, and then the text (*result) is:
  ///   VX_E_RANGE      no such date or time; no text
  ///   VX_E_DIRECTIVE  the pattern holds an unknown directive, the number too many digits; no text
  ///   VX_E_WIDTH      a width that is refused; no text, or "*"
  ///   VX_E_TRUNCATED  longer than the buffer or span: of a date or time its beginning, of a double "*"
  ///   VX_W_PRECISION  fewer decimals, or an exponent, to make it fit a fixed field: the text
  ///   VX_E_GROUPING   without group separators, to make it fit: the text
  ///   VX_E_NULL       the locale is empty; no text
  template <class Out = std::string, class T>
  result<Out> format(const T& value, const detail::style_of<T>& style = {}) const {
    return detail::written<Out, detail::room_for<T>>(
        [&](auto* units, std::int64_t capacity, std::int64_t* size) noexcept {
          return write(units, capacity, size, value, style);
        });
  }
  /// The same into memory of the caller's: a span, an array, a string of the size that may be used. The text lies in
  /// it.
  template <class Room, class T>
  auto format_to(Room&& out, const T& value, const detail::style_of<T>& style = {}) const noexcept {
    static_assert(std::is_lvalue_reference_v<Room> || std::ranges::borrowed_range<Room>, "the text would lie nowhere");
    const std::span room(out);
    using Unit = typename decltype(room)::element_type;
    static_assert(detail::text_unit<Unit>, "texts are UTF-8 in char or UTF-32 in char32_t");
    std::int64_t size = 0;
    const VXStatus status = write(room.data(), detail::length(room), &size, value, style);
    return result<std::basic_string_view<Unit>>(status, {room.data(), static_cast<std::size_t>(size)});
  }

  /// Reads a value of type T, one of those that vxnls.hpp lists. All of the text must belong to it, blanks around it
  /// apart, unless `how.prefix` is set.
  /// Statuses; the value is then T{} (of a double the missing value) unless something else is said:
  ///   VX_E_NOMATCH    not a date or time of this form; more text follows
  ///   VX_E_NOTNUMBER  not a number
  ///   VX_E_RANGE      no such day; no time of a day; more than T holds; an exponent out of range
  ///   VX_E_OVERFLOW, VX_E_UNDERFLOW  the number is too large, too small
  ///   VX_E_TRUNCATED  a fraction other than 0 was dropped (see `reading`): the integer
  ///   VX_E_NULL       the locale is empty
  /// A missing value (".A", "._") and an empty text are a NaN with status 0. An instant that a change of offset makes
  /// ambiguous is the first of the two, also when the text gives the offset (the library reads it as the local time,
  /// and writes that time with the first offset, too).
  template <class T>
  result<T> parse(std::string_view text, const reading& how = {}) const {
    return read<T>(text, how);
  }
  template <class T>
  result<T> parse(std::string_view text, form as) const {
    return read<T>(text, {.as = as});
  }
  template <class T>
  result<T> parse(std::u32string_view text, const reading& how = {}) const {
    return read<T>(text, how);
  }
  template <class T>
  result<T> parse(std::u32string_view text, form as) const {
    return read<T>(text, {.as = as});
  }

  /// What stands on the wall in the locale's zone at an instant, and back. A local time that occurs twice means the
  /// first, one that is skipped takes the offset before the change.
  std::chrono::local_seconds to_local(std::chrono::sys_seconds at) const noexcept {
    return std::chrono::local_seconds{at.time_since_epoch() + offset(VX_ZONE_FROM_UTC, at.time_since_epoch())};
  }
  std::chrono::sys_seconds to_sys(std::chrono::local_seconds at) const noexcept {
    return std::chrono::sys_seconds{at.time_since_epoch() - offset(VX_ZONE_FROM_LOCAL, at.time_since_epoch())};
  }
  /// Changes the zone, for all who share the locale. 0; VX_E_ZONE: no such zone, and the old one stays.
  VXStatus set_zone(std::string_view id) const noexcept {
    const detail::c_string ascii(id);
    if (raw_ == nullptr) return VX_E_NULL;
    if (!ascii.fits || id.empty()) return VX_E_ZONE;
    VXChar units[sizeof ascii.bytes];
    std::copy_n(detail::in(ascii.bytes), id.size(), units);
    return raw_->ops.NLSSetTimezoneId(raw_, units, detail::length(id));
  }

 private:
  std::chrono::seconds offset(std::int32_t direction, std::chrono::seconds since_1970) const noexcept {
    const auto seconds = detail::seconds_1960(since_1970);
    if (raw_ == nullptr) return {};
    VXZoneService* const zones = raw_->host->zones;
    VXZone* const zone = std::atomic_ref<VXZone*>(raw_->timeZone).load();
    if (!seconds || zones == nullptr || zone == nullptr) return {};
    return std::chrono::seconds{zones->ops->offset(zones, zone, direction, *seconds)};
  }

  /// The entry point of a flavour: UTF-8 or UTF-32.
  template <class Unit, class Narrow, class Wide>
  static auto pick([[maybe_unused]] Narrow narrow, [[maybe_unused]] Wide wide) noexcept {
    if constexpr (sizeof(Unit) == 1) return narrow;
    else return wide;
  }

  /* writing: one function a family */

  template <class Unit, class T, class Style>
  VXStatus write(Unit* units, std::int64_t capacity, std::int64_t* size, const T& value,
                 const Style& style) const noexcept {
    *size = 0;
    return raw_ == nullptr ? VX_E_NULL : write_value(units, capacity, size, value, style);
  }

  template <class Unit>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, const std::chrono::year_month_day& day,
                       form as) const noexcept {
    const int year = static_cast<int>(day.year());
    if (year < 1582 || !day.ok()) return VX_E_RANGE;  // below 100 the library takes years of two digits
    return pick<Unit>(raw_->ops.NLSDateFormatU, raw_->ops.NLSDateFormat)(
        raw_, static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()), static_cast<std::uint32_t>(year),
        static_cast<std::int32_t>(as), detail::out(units), capacity, size);
  }

  template <class Unit, detail::day_point T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, const T& day, form as) const noexcept {
    if (!detail::whole_seconds(day.time_since_epoch())) return VX_E_RANGE;
    return write_value(units, capacity, size, std::chrono::year_month_day{day}, as);
  }

  template <class Unit, detail::time_of_day T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, const T& time, form as) const noexcept {
    if constexpr (detail::is_hh_mm_ss<T>) {
      return write_value(units, capacity, size, time.to_duration(), as);
    } else {
      const auto seconds = detail::whole_seconds(time);
      if (!seconds || *seconds < std::chrono::seconds{0} || *seconds >= std::chrono::days{1}) return VX_E_RANGE;
      return pick<Unit>(raw_->ops.NLSTimeFormatU, raw_->ops.NLSTimeFormat)(raw_, static_cast<std::int32_t>(as),
                                                                           detail::out(units), capacity, size,
                                                                           static_cast<double>(seconds->count()));
    }
  }

  template <class Unit, detail::datetime T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, const T& at,
                       detail::nothing) const noexcept {
    auto since_1970 = detail::whole_seconds(at.time_since_epoch());
    if (!since_1970) return VX_E_RANGE;
    if constexpr (detail::is_sys_time<T>) *since_1970 += offset(VX_ZONE_FROM_UTC, *since_1970);
    const auto seconds = detail::seconds_1960(*since_1970);
    if (!seconds) return VX_E_RANGE;
    return pick<Unit>(raw_->ops.NLSDatetimeFormatU, raw_->ops.NLSDatetimeFormat)(raw_, 0, detail::out(units), capacity,
                                                                                 size, *seconds);
  }

  static constexpr int widest = 512;
  static constexpr std::uint32_t flags_of(const number_style& style) noexcept {
    return style.flags | (style.group ? NLS_FORMAT_GROUP : 0u) | (style.plus ? NLS_FORMAT_PLUS : 0u) |
           (style.zero_pad ? NLS_FORMAT_ZERO_PAD : 0u) | (style.width < 0 ? NLS_FORMAT_LEFT : 0u);
  }
  static constexpr bool fits(const number_style& style) noexcept {
    return style.width >= -widest && style.width <= widest && style.decimals <= 350;
  }

  template <class Unit, detail::integer T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, T value,
                       const number_style& style) const noexcept {
    if (!fits(style)) return VX_E_WIDTH;
    // Zeros fill a field where no least number of digits is wanted; otherwise a 0 has one.
    const std::uint32_t flags = flags_of(style);
    const bool fills = (flags & (NLS_FORMAT_ZERO_PAD | NLS_FORMAT_LEFT)) == NLS_FORMAT_ZERO_PAD;
    const std::int32_t digits = fills && style.width > 1 ? 0 : 1;
    const auto call = [&](auto entry, auto widened) {
      return entry(raw_, widened, std::abs(style.width), digits, flags, detail::out(units), capacity, size);
    };
    const NLSOps& ops = raw_->ops;
    if constexpr (std::is_signed_v<T>) {
      return call(pick<Unit>(ops.NLSIntmaxFormatU, ops.NLSIntmaxFormat), std::int64_t{value});
    } else {
      return call(pick<Unit>(ops.NLSUintmaxFormatU, ops.NLSUintmaxFormat), std::uint64_t{value});
    }
  }

  /// Blanks before the text or, for a width below 0, behind it. Without room for them nothing but "*".
  template <class Unit>
  static VXStatus pad(Unit* units, std::int64_t capacity, std::int64_t* size, int width) noexcept {
    const std::int64_t wanted = std::abs(width), blanks = wanted - *size;
    if (blanks <= 0) return 0;
    Unit* const end = units + std::exchange(*size, std::min(wanted, capacity));
    if (wanted > capacity) return std::fill_n(units, capacity, Unit{'*'}), VX_E_TRUNCATED;
    if (width > 0) std::copy_backward(units, end, units + wanted);
    std::fill_n(width > 0 ? units : end, blanks, Unit{' '});
    return 0;
  }
  template <class Unit, detail::real T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, T value,
                       const number_style& style) const noexcept {
    if (!fits(style)) return VX_E_WIDTH;
    constexpr std::uint32_t forms = 0x783Fu;  // every bit that names a form
    const bool in_words = (style.flags & forms) != 0;
    const int decimals = style.decimals >= 0 ? style.decimals : in_words && (style.flags & 1u) == 0 ? 6 : 15;
    const std::uint32_t flags = flags_of(style) | (style.decimals >= 0 && !in_words ? NLS_FORMAT_PLAIN : 0u);
    // An infinity needs a field, if only its own. Neither that nor a missing value is padded by the library.
    constexpr std::uint32_t fields = NLS_FORMAT_FIXED | NLS_FORMAT_FIXED_EXPONENT | NLS_FORMAT_SIGNIFICANT;
    int width = style.width;
    if (std::isinf(value) && ((flags & fields) == 0 || width < 1)) width = std::max(std::abs(width), value < 0 ? 4 : 3);
    const VXStatus status = pick<Unit>(raw_->ops.NLSDoubleFormatUWithExOpts, raw_->ops.NLSDoubleFormatWithExOpts)(
        raw_, width, decimals, flags, detail::out(units), capacity, size, nullptr, value);
    return status != 0 || std::isfinite(value) ? status : pad(units, capacity, size, style.width);
  }

  /// Percentages and amounts are written as UTF-32, and widths count characters. The library's own fields leave blanks
  /// within parentheses, before "%" and in place of separators.
  template <class Unit, detail::amount T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, const T& amount,
                       const number_style& style) const noexcept {
    if (!fits(style)) return VX_E_WIDTH;
    VXChar wide[double_room];
    std::int64_t count = 0;
    VXStatus status = 0;
    if constexpr (std::same_as<T, percent>) {
      const int signs = amount.value >= 0 ? 0 : style.parentheses ? 2 : 1;
      const int width = std::isinf(amount.value * 100) ? 4 + signs : 0;  // that of "Inf%"
      status = raw_->ops.NLSPercentFormat(raw_, width, std::max(style.decimals, 0), style.parentheses ? 1u : 0u, wide,
                                          double_room, &count, amount.value);
    } else {
      // A symbol floats to its number in a field that has room for all separators, and the field's blanks are dropped.
      const int decimals = style.decimals < 0 ? 2 : style.decimals;
      const int field = std::abs(amount.value) < 1e15 && decimals <= 20 ? 128 : 1152;
      status = raw_->ops.NLSCurrencyFormat(raw_, field, decimals, decimals == 0 ? 1u : 0u, wide, double_room, &count,
                                           amount.value);
    }
    if (status != 0) return status;
    const VXChar* const text = std::find_if(wide, wide + count, [](VXChar c) { return c != ' '; });
    count = std::copy(text, static_cast<const VXChar*>(wide + count), wide) - wide;
    pad(wide, double_room, &count, style.width);
    if constexpr (sizeof(Unit) == 1) {
      const VXStatus cut = ConvertFromUTF32(reinterpret_cast<const std::uint8_t*>(wide), 4 * count, detail::out(units),
                                            capacity, size, &UTF32_UTF8, &Byte2DWord);
      return cut != 0 || GET_UTF8_LEN_FROM_VXCHAR(wide, count) > capacity ? VX_E_TRUNCATED : 0;
    } else {
      *size = std::min(count, capacity);
      std::copy_n(wide, *size, units);
      return count > capacity ? VX_E_TRUNCATED : 0;
    }
  }

  /* reading */

  template <class T, class View>
  result<T> read(View text, const reading& how) const {
    if (raw_ == nullptr) return {VX_E_NULL, T{}};
    if constexpr (detail::number<T>) return read_number<T>(text, how);
    else return read_moment<T>(text, how);
  }

  template <class View>
  static bool only_blanks(View text, std::size_t from) noexcept {
    return text.find_first_not_of(typename View::value_type{' '}, from) == View::npos;
  }

  template <class T, class View>
  result<T> read_moment(View text, const reading& how) const {
    using Unit = typename View::value_type;
    const auto kind = static_cast<std::uint32_t>(how.as);
    const NLSOps& ops = raw_->ops;
    std::int64_t used = 0;
    double seconds = 0;
    VXStatus status = 0;
    std::optional<T> moment;
    std::uint32_t what = VX_EXPLAIN_DATETIME;
    std::chrono::year_month_day date{};
    const auto call = [&](auto entry, auto*... parts) {
      return entry(raw_, detail::in(text.data()), detail::length(text), kind, parts..., &used);
    };
    if constexpr (detail::date<T>) {
      what = VX_EXPLAIN_DATE;
      std::uint32_t month = 0, day = 0, year = 0;
      status = call(pick<Unit>(ops.NLSBufToDateU, ops.NLSBufToDate), &month, &day, &year);
      date = std::chrono::year{static_cast<int>(year)} / std::chrono::month{month} / std::chrono::day{day};
    } else if constexpr (detail::time_of_day<T>) {
      what = VX_EXPLAIN_TIME;
      status = call(pick<Unit>(ops.NLSBufToTimeU, ops.NLSBufToTime), &seconds);
      if (status == 0 && seconds < 86400)
        moment = detail::made_of<T>(std::chrono::milliseconds{std::llround(seconds * 1000)});
    } else {
      status = call(pick<Unit>(ops.NLSBufToDatetimeU, ops.NLSBufToDatetime), &seconds);
      if (status == 0) moment = moment_from<T>(detail::since_1970(seconds));
    }
    const auto consumed = static_cast<std::size_t>(used);
    if (status != 0) {
      if (!how.explain) return {status, T{}};
      return {status, T{}, 0, detail::explain_units(text, [&](std::string_view bytes) noexcept {
                return detail::explain(raw_, what, kind, bytes);
              })};
    }
    if constexpr (detail::date<T>) {
      if (date.year() == std::chrono::year{0}) {
        return {VX_E_NOMATCH, T{}, consumed, {"the pattern holds no full date", 0, consumed}};
      }
      if (!detail::exists(date)) return {VX_E_RANGE, T{}, consumed, {"the month has no such day", 0, consumed}};
      moment = static_cast<T>(date);
    } else if (!moment) {
      const bool too_late = what == VX_EXPLAIN_TIME && seconds >= 86400;
      return {VX_E_RANGE, T{}, consumed, {too_late ? "no time of a day" : "the type cannot hold it", 0, consumed}};
    }
    if (!how.prefix && !only_blanks(text, consumed)) {
      return {VX_E_NOMATCH, T{}, consumed, {"more text follows", consumed, text.size() - consumed}};
    }
    return {0, *moment, consumed};
  }

  template <detail::datetime T>
  std::optional<T> moment_from(std::chrono::milliseconds local) const noexcept {
    if constexpr (detail::is_sys_time<T>) {
      local -= offset(VX_ZONE_FROM_LOCAL, std::chrono::floor<std::chrono::seconds>(local));
    }
    return detail::made_of<T>(local);
  }

  template <class T, class View>
  result<T> read_number(View text, const reading& how) const {
    static_assert(detail::integer<T> || std::same_as<T, double>, "numbers are read as double or as an integer");
    using Unit = typename View::value_type;
    using Wide = std::conditional_t<std::same_as<T, double>, double,
                                    std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>;
    const NLSOps& ops = raw_->ops;
    Wide value{};
    VXStatus status = 0;
    std::size_t consumed = 0;
    std::uint32_t kind = VX_NUMBER_DOUBLE;
    std::uint32_t flags = how.spaces ? NLS_READ_SPACE_SEPARATOR : 0u;
    const auto call = [&](auto entry, auto size, auto used) {
      const VXStatus answer = entry(raw_, detail::in(text.data()), size, flags, &value, &used);
      consumed = static_cast<std::size_t>(used);
      return answer;
    };
    if constexpr (std::same_as<T, double>) {
      if (text.size() > INT32_MAX) return {VX_E_NOTNUMBER, missing()};
      status = call(pick<Unit>(ops.NLSBufToDoubleUWithOpts, ops.NLSBufToDoubleWithOpts),
                    static_cast<std::int32_t>(text.size()), std::int64_t{0});
    } else {
      flags |= (how.prefix ? 0u : NLS_READ_TRAILING_BLANKS) | (how.fraction ? NLS_READ_FRACTION : 0u) |
               (how.hex ? NLS_READ_HEXADECIMAL : 0u);
      kind = std::is_signed<T>::value ? VX_NUMBER_INT64 : VX_NUMBER_UINT64;
      const auto read_whole = [&](View part) {
        if constexpr (std::is_signed_v<T>) {
          return call(pick<Unit>(ops.NLSBufToIntmaxU, ops.NLSBufToIntmax), detail::length(part), std::uint64_t{0});
        } else {
          return call(pick<Unit>(ops.NLSBufToUintmaxU, ops.NLSBufToUintmax), detail::length(part), std::uint64_t{0});
        }
      };
      status = read_whole(text);
      if (how.prefix && status == VX_E_NOTNUMBER) {
        // The number is what stands before the first unit that cannot belong to it, where that holds a digit.
        constexpr Unit digits[] = {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'A',
                                   'B', 'C', 'D', 'E', 'F', 'a', 'b', 'c', 'd', 'e', 'f'};
        const View number = text.substr(0, consumed);
        if (number.find_first_of(digits, 0, how.hex ? 22 : 10) != View::npos) status = read_whole(number);
      }
      const bool fits = std::in_range<T>(value);
      if ((status == 0 || status == VX_E_TRUNCATED) && !fits) {
        return {VX_E_OVERFLOW, T{}, consumed, {"the number is too large", 0, consumed}};
      }
      if (status == 0 && !how.prefix && !only_blanks(text, consumed)) {  // a NUL ends a number, too
        return {VX_E_NOTNUMBER, T{}, consumed, {"more text follows", consumed, text.size() - consumed}};
      }
    }
    if (status == 0) return {0, static_cast<T>(value), consumed};
    const T left = std::same_as<T, double> || status == VX_E_TRUNCATED ? static_cast<T>(value) : T{};
    if (!how.explain) return {status, left, consumed};
    return {status, left, consumed, detail::explain_units(text, [&](std::string_view bytes) noexcept {
              return detail::explain_number(raw_, kind, flags, bytes);
            })};
  }

  VXLocale* raw_ = nullptr;
};

}  // namespace vxnls

#endif
