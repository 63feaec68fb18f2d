/// The C++ face of vxnlsloc: C++20, this header alone, over the C interface of the headers beside it.
///
///   auto host = vxnls::host::open().value();
///   auto german = host.locale("de_DE", "Europe/Berlin").value();
///   german.format(2026y / November / 21).value();                           // "21.11.2026"
///   german.parse<year_month_day>("31. Dezember 2021", vxnls::form::any);    // 2021-12-31
///   german.format(1234567.891, {.decimals = 2, .group = true}).value();     // "1.234.567,89"
///
/// `format` and `parse` go by the type of the value:
///
///   std::chrono::year_month_day            a date, 1582-01-01 to 20000-12-31
///   a std::chrono::duration, hh_mm_ss      a time of day, 0 to below 24 hours
///   std::chrono::local_time                a date and time of the locale's zone, as it stands on the wall there
///   std::chrono::sys_time                  an instant; the locale's zone says what stands on the wall then
///   integers of 8 to 64 bits, double       a number
///   vxnls::percent, vxnls::money           a share of 1, an amount in the locale's currency (format only)
///
/// Texts go in as std::string_view (UTF-8) or std::u32string_view. They come out as what the first template argument
/// names: std::string, std::u32string, or a vxnls::buffer of a size known at compile time; `format_to` writes into the
/// caller's span. Lengths, widths and positions count units: bytes of UTF-8, or code points of UTF-32.
///
/// Nothing is thrown unless asked for: every call returns a result, whose value() throws vxnls::error when there is
/// none. Calls that make a std::string may pass on std::bad_alloc; calls with a span or a buffer allocate nothing.
///
/// Threads may share a host and its locales. Link with libvxnlsloc, and with libvxhost for vxnls::host.
#ifndef VXNLS_VXNLS_HPP
#define VXNLS_VXNLS_HPP

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <ranges>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace vxnls {

/* results --------------------------------------------------------------------------------------------- */

/// Why there is no value.
struct explanation {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  const char* what = nullptr;   ///< in words; null when there is nothing to explain
  std::size_t position = none;  ///< units from the start of the text to the part that is wrong; none: not of a text
  std::size_t length = 0;       ///< units of that part; 0 at the end of the text
  char32_t letter = 0;          ///< the directive of the pattern that was being read ('m' of "%m"), or 0
  std::int32_t value = 0;       ///< the number that stands there, when it lies outside minimum to maximum
  std::int32_t minimum = 0;
  std::int32_t maximum = 0;  ///< above minimum only when a range was missed

  /// "at 5: a number out of range: 13 is not 1 to 12, reading %m"; empty when there is nothing to explain.
  std::string message() const {
    std::string text;
    if (what == nullptr) return text;
    if (position != none) text.append("at ").append(std::to_string(position)).append(": ");
    text.append(what);
    if (minimum < maximum) {
      text.append(": ").append(std::to_string(value)).append(" is not ").append(std::to_string(minimum));
      text.append(" to ").append(std::to_string(maximum));
    }
    if (letter > 0 && letter < 0x80) text.append(", reading %").push_back(static_cast<char>(letter));
    return text;
  }
};

/// What value() throws.
class error : public std::runtime_error {
 public:
  error(VXStatus status, const explanation& why) : std::runtime_error(words(status, why)), status_(status) {}
  VXStatus status() const noexcept { return status_; }

 private:
  static std::string words(VXStatus status, const explanation& why) {
    std::string text = "vxnls: status 0x";
    for (int shift = 28; shift >= 0; shift -= 4) text.push_back("0123456789abcdef"[(status >> shift) & 15u]);
    return why.what == nullptr ? text : text.append(": ").append(why.message());
  }
  VXStatus status_;
};

/// A value, or the status that tells why not. Statuses stand in types.h; 0 alone is success.
template <class T>
class [[nodiscard]] result {
 public:
  result() = default;
  result(VXStatus status, T value, std::size_t consumed = 0, const explanation& why = {})
      : value_(std::move(value)), status_(status), consumed_(consumed), why_(why) {}

  bool ok() const noexcept { return status_ == 0; }
  explicit operator bool() const noexcept { return ok(); }
  VXStatus status() const noexcept { return status_; }
  /// parse: units that were read, leading blanks included. Otherwise 0.
  std::size_t consumed() const noexcept { return consumed_; }
  /// Where and why a text was refused.
  const explanation& why() const noexcept { return why_; }

  /// The value; throws vxnls::error when the status is not 0 (without exceptions: ends the program).
  const T& value() const& { return check(), value_; }
  T&& value() && { return check(), std::move(value_); }
  T value_or(T other) const& { return ok() ? value_ : std::move(other); }
  T value_or(T other) && { return ok() ? std::move(value_) : std::move(other); }
  /// Unchecked: after a failure whatever was written, such as the beginning of a text that did not fit.
  const T& operator*() const& noexcept { return value_; }
  T&& operator*() && noexcept { return std::move(value_); }
  const T* operator->() const noexcept { return &value_; }
  T* operator->() noexcept { return &value_; }

 private:
  void check() const {
    if (ok()) return;
#ifdef __cpp_exceptions
    throw error(status_, why_);
#else
    std::abort();
#endif
  }

  T value_{};
  VXStatus status_ = 0;
  std::size_t consumed_ = 0;
  explanation why_;
};

/// A text of at most N units that lies where it is declared: german.format<vxnls::buffer<32>>(day).
template <std::size_t N, class Unit = char>
class buffer {
 public:
  using value_type = Unit;
  constexpr std::basic_string_view<Unit> view() const noexcept { return {units_, size_}; }
  constexpr operator std::basic_string_view<Unit>() const noexcept { return view(); }
  constexpr const Unit* data() const noexcept { return units_; }
  constexpr std::size_t size() const noexcept { return size_; }
  constexpr const Unit* begin() const noexcept { return units_; }
  constexpr const Unit* end() const noexcept { return units_ + size_; }
  static constexpr std::size_t capacity() noexcept { return N; }
  /// Lets `write(units, capacity)` fill the buffer; it returns the units written.
  template <class Write>
  void fill(Write write) {
    size_ = std::min<std::size_t>(write(units_, N), N);
  }

 private:
  std::size_t size_ = 0;
  Unit units_[N == 0 ? 1 : N];
};

/// Room that is always enough: for dates, times, datetimes and integers; for doubles, percentages and amounts.
inline constexpr std::size_t text_room = 512;
inline constexpr std::size_t double_room = 2048;

/* what is asked for ------------------------------------------------------------------------------------ */

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
  int decimals = -1;         ///< 0 to 350; below 0: up to 15 significant digits, of a percentage none, of an amount 2
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

/* what is behind it ------------------------------------------------------------------------------------ */

namespace detail {

template <class Unit>
concept text_unit = std::same_as<Unit, char> || std::same_as<Unit, char32_t>;
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

template <class T>
concept date = std::same_as<T, std::chrono::year_month_day>;
template <class T>
concept datetime = is_local_time<T> || is_sys_time<T>;
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

// The library's units and the language's have one representation; the calls cross into another shared object.
inline const std::uint8_t* in(const char* text) noexcept { return reinterpret_cast<const std::uint8_t*>(text); }
inline std::uint8_t* out(char* text) noexcept { return reinterpret_cast<std::uint8_t*>(text); }
inline const VXChar* in(const char32_t* text) noexcept { return reinterpret_cast<const VXChar*>(text); }
inline VXChar* out(char32_t* text) noexcept { return reinterpret_cast<VXChar*>(text); }
template <class Range>
std::int64_t length(const Range& range) noexcept {
  return static_cast<std::int64_t>(range.size());
}

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
/// Whole seconds of a duration; none beyond what any calendar has.
template <class Duration>
std::optional<std::chrono::seconds> whole_seconds(const Duration& duration) noexcept {
  if (!(std::abs(std::chrono::duration<double>(duration).count()) < 1e13)) return {};
  return std::chrono::floor<std::chrono::seconds>(duration);
}

inline constexpr const char* date_reasons[] = {"",
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
inline constexpr const char* number_faults[] = {"",
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
  std::string bytes(4 * text.size(), '\0');
  std::int64_t size = 0;
  ConvertFromUTF32(reinterpret_cast<const std::uint8_t*>(text.data()), 4 * length(text), out(bytes.data()),
                   length(bytes), &size, &UTF32_UTF8, &Byte2DWord);
  bytes.resize(static_cast<std::size_t>(size));
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
  std::string text(240, '\0');
  std::int64_t size = 0;
  ConvertFromUTF32(reinterpret_cast<const std::uint8_t*>(name.text), 4 * std::clamp<std::int64_t>(name.length, 0, 60),
                   detail::out(text.data()), detail::length(text), &size, &UTF32_UTF8, &Byte2DWord);
  text.resize(static_cast<std::size_t>(size));
  return text;
}

/* locales ---------------------------------------------------------------------------------------------- */

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
  ///   VX_E_TRUNCATED  longer than the buffer or span: its beginning; a number: "*"
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
    const std::span room(out);
    using Unit = typename decltype(room)::element_type;
    static_assert(detail::text_unit<Unit>, "texts are UTF-8 in char or UTF-32 in char32_t");
    std::int64_t size = 0;
    const VXStatus status = write(room.data(), detail::length(room), &size, value, style);
    return result<std::basic_string_view<Unit>>(status, {room.data(), static_cast<std::size_t>(size)});
  }

  /// Reads a value of type T: year_month_day, a duration or hh_mm_ss (since midnight), local_time, sys_time, double or
  /// an integer. All of the text must belong to it, blanks around it apart, unless `how.prefix` is set.
  /// Statuses; the value is then T{} unless something else is said:
  ///   VX_E_NOMATCH    not a date or time of this form; more text follows
  ///   VX_E_NOTNUMBER  not a number
  ///   VX_E_RANGE      no such day; an exponent out of range
  ///   VX_E_OVERFLOW, VX_E_UNDERFLOW  the number is too large, too small
  ///   VX_E_TRUNCATED  a fraction other than 0 was dropped (see `reading`): the integer
  ///   VX_E_NULL       the locale is empty
  /// A missing value (".A", "._") and an empty text are a NaN with status 0. An instant that a change of offset makes
  /// ambiguous is the first of the two.
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

  static constexpr int widest = static_cast<int>(text_room);
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
    // With zeros the library wants no least number of digits; otherwise a 0 has one.
    const std::int32_t digits = style.zero_pad && style.width != 0 ? 0 : 1;
    const auto call = [&](auto entry, auto widened) {
      return entry(raw_, widened, std::abs(style.width), digits, flags_of(style), detail::out(units), capacity, size);
    };
    const NLSOps& ops = raw_->ops;
    if constexpr (std::is_signed_v<T>) {
      return call(pick<Unit>(ops.NLSIntmaxFormatU, ops.NLSIntmaxFormat), std::int64_t{value});
    } else {
      return call(pick<Unit>(ops.NLSUintmaxFormatU, ops.NLSUintmaxFormat), std::uint64_t{value});
    }
  }

  /// An infinity needs a field, if only its own.
  static int width_of(double value, int width) noexcept {
    return width == 0 && std::isinf(value) ? (value < 0 ? 4 : 3) : width;
  }
  template <class Unit, detail::real T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, T value,
                       const number_style& style) const noexcept {
    if (!fits(style)) return VX_E_WIDTH;
    constexpr std::uint32_t forms = 0x783Fu;  // every bit that names a form
    const bool in_words = (style.flags & forms) != 0;
    const int decimals = style.decimals >= 0 ? style.decimals : in_words && (style.flags & 1u) == 0 ? 6 : 15;
    const std::uint32_t flags = flags_of(style) | (style.decimals >= 0 && !in_words ? NLS_FORMAT_PLAIN : 0u);
    return pick<Unit>(raw_->ops.NLSDoubleFormatUWithExOpts, raw_->ops.NLSDoubleFormatWithExOpts)(
        raw_, width_of(value, style.width), decimals, flags, detail::out(units), capacity, size, nullptr, value);
  }

  /// Percentages and amounts are written as UTF-32, and widths count characters.
  template <class Unit, detail::amount T>
  VXStatus write_value(Unit* units, std::int64_t capacity, std::int64_t* size, const T& amount,
                       const number_style& style) const noexcept {
    if (!fits(style)) return VX_E_WIDTH;
    VXChar wide[double_room];
    std::int64_t count = 0;
    VXStatus status = 0;
    const VXChar* text = wide;
    if constexpr (std::same_as<T, percent>) {
      const int width = width_of(amount.value, style.width) + (style.width == 0 && std::isinf(amount.value) ? 1 : 0);
      status = raw_->ops.NLSPercentFormat(raw_, width, std::max(style.decimals, 0), style.parentheses ? 1u : 0u, wide,
                                          double_room, &count, amount.value);
    } else {
      const int decimals = style.decimals < 0 ? 2 : style.decimals;
      status = raw_->ops.NLSCurrencyFormat(raw_, style.width == 0 ? widest : style.width, decimals,
                                           decimals == 0 ? 1u : 0u, wide, double_room, &count, amount.value);
      count = std::clamp<std::int64_t>(count, 0, double_room);
      // The symbol floats to the number in a field; without a width the field is wide, and its blanks are dropped.
      if (style.width == 0) {
        while (count > 0 && *text == ' ') ++text, --count;
      }
    }
    count = std::clamp<std::int64_t>(count, 0, double_room);
    if constexpr (sizeof(Unit) == 1) {
      const VXStatus cut = ConvertFromUTF32(reinterpret_cast<const std::uint8_t*>(text), 4 * count, detail::out(units),
                                            capacity, size, &UTF32_UTF8, &Byte2DWord);
      return status != 0 ? status : cut != 0 || GET_UTF8_LEN_FROM_VXCHAR(text, count) > capacity ? VX_E_TRUNCATED : 0;
    } else {
      *size = std::min(count, capacity);
      std::copy_n(text, *size, units);
      return status != 0 ? status : count > capacity ? VX_E_TRUNCATED : 0;
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
    T value{};
    std::uint32_t what = VX_EXPLAIN_DATETIME;
    bool whole = true;
    const auto call = [&](auto entry, auto*... parts) {
      return entry(raw_, detail::in(text.data()), detail::length(text), kind, parts..., &used);
    };
    if constexpr (detail::date<T>) {
      what = VX_EXPLAIN_DATE;
      std::uint32_t month = 0, day = 0, year = 0;
      status = call(pick<Unit>(ops.NLSBufToDateU, ops.NLSBufToDate), &month, &day, &year);
      whole = year != 0;
      value = std::chrono::year{static_cast<int>(year)} / std::chrono::month{month} / std::chrono::day{day};
    } else if constexpr (detail::time_of_day<T>) {
      what = VX_EXPLAIN_TIME;
      status = call(pick<Unit>(ops.NLSBufToTimeU, ops.NLSBufToTime), &seconds);
      if (status == 0) value = time_from<T>(std::chrono::milliseconds{std::llround(seconds * 1000)});
    } else {
      status = call(pick<Unit>(ops.NLSBufToDatetimeU, ops.NLSBufToDatetime), &seconds);
      if (status == 0) value = moment_from<T>(detail::since_1970(seconds));
    }
    const auto consumed = static_cast<std::size_t>(used);
    if (status != 0) {
      if (!how.explain) return {status, T{}};
      return {status, T{}, 0, detail::explain_units(text, [&](std::string_view bytes) noexcept {
                return detail::explain(raw_, what, kind, bytes);
              })};
    }
    if (!whole) return {VX_E_NOMATCH, T{}, consumed, {"the pattern holds no full date", 0, consumed}};
    if constexpr (detail::date<T>) {
      if (!detail::exists(value)) return {VX_E_RANGE, T{}, consumed, {"the month has no such day", 0, consumed}};
    }
    if (!how.prefix && !only_blanks(text, consumed)) {
      return {VX_E_NOMATCH, T{}, consumed, {"more text follows", consumed, text.size() - consumed}};
    }
    return {0, value, consumed};
  }

  template <detail::time_of_day T>
  static T time_from(std::chrono::milliseconds time) {
    if constexpr (detail::is_hh_mm_ss<T>) return T{std::chrono::floor<typename T::precision>(time)};
    else return std::chrono::floor<T>(time);
  }
  template <detail::datetime T>
  T moment_from(std::chrono::milliseconds local) const noexcept {
    if constexpr (detail::is_sys_time<T>) {
      local -= offset(VX_ZONE_FROM_LOCAL, std::chrono::floor<std::chrono::seconds>(local));
    }
    return T{std::chrono::floor<typename T::duration>(local)};
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
      if constexpr (std::is_signed_v<T>) {
        kind = VX_NUMBER_INT64;
        status = call(pick<Unit>(ops.NLSBufToIntmaxU, ops.NLSBufToIntmax), detail::length(text), std::uint64_t{0});
      } else {
        kind = VX_NUMBER_UINT64;
        status = call(pick<Unit>(ops.NLSBufToUintmaxU, ops.NLSBufToUintmax), detail::length(text), std::uint64_t{0});
      }
      const bool fits = std::in_range<T>(value);
      // Of a prefix the number is what stands before the first unit that cannot belong to it.
      constexpr Unit before_digits[] = {' ', '+', '-', '\0'};
      if (how.prefix && status == VX_E_NOTNUMBER &&
          text.substr(0, consumed).find_first_not_of(before_digits) != View::npos) {
        status = 0;
      }
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

/* hosts ------------------------------------------------------------------------------------------------ */

/// Patterns of a program's own, in the directives of datetime_format.h; an empty one leaves the locale's.
struct patterns {
  std::string_view date = {}, medium_date = {}, long_date = {};
  std::string_view time = {}, short_time = {};
  std::string_view datetime = {};
};

/// What is in force in a zone.
struct zone_state {
  std::string id, abbreviation;   ///< "Europe/Berlin", "CEST"
  std::chrono::seconds offset{};  ///< east of UTC
  bool summer_time = false;
};

/// A line for the journal: level 3 a notice, 4 a failure.
struct journal_entry {
  std::uint32_t level;
  double unix_seconds;
  std::string_view text;  ///< valid during the call
};

/// The reference host: gives out locales. Moves, and closes in the end; its locales are good as long as it is open.
class host {
 public:
  host() = default;
  host(host&&) noexcept = default;
  host& operator=(host&& other) noexcept {
    raw_ = std::move(other.raw_);  // closes the host that was here, which may still write to its journal
    journal_ = std::move(other.journal_);
    return *this;
  }

  /// Loads the library and its extensions from a folder; an empty one: where libvxhost.so lies.
  static result<host> open(const std::string& folder = {}) {
    host opened;
    VXHost* raw = nullptr;
    const VXStatus status = vxhostOpen(folder.empty() ? nullptr : folder.c_str(), &raw);
    opened.raw_.reset(raw);
    return {status, std::move(opened), 0, {status != 0 ? vxhostOpenFailure() : nullptr}};
  }
  VXHost* get() const noexcept { return raw_.get(); }

  /// A locale by name ("de_DE", "sr-Latn-RS", "de_DE.UTF-8") and zone; an empty zone is the system's. VX_E_NOMATCH: no
  /// such locale; VX_E_ZONE: no such zone. One name and zone always give the same locale.
  result<vxnls::locale> locale(std::string_view name, std::string_view zone = {}) const noexcept {
    return make(name, zone, 0);
  }
  /// A locale with patterns of one's own. It is made anew by each call (about 50 KB, until the host closes) and never
  /// shared. VX_E_LENGTH: a pattern has more than 60 characters; VX_E_SEQUENCE: it is not UTF-8.
  result<vxnls::locale> locale(std::string_view name, std::string_view zone, const patterns& own) const noexcept {
    auto made = make(name, zone, 1);
    if (!made) return made;
    VXLocaleData& data = *made->get()->localeData;
    const std::pair<NLSName*, std::string_view> entries[] = {
        {&data.datePattern, own.date}, {&data.datePattern1, own.medium_date}, {&data.datePattern2, own.long_date},
        {&data.timePattern, own.time}, {&data.timePattern1, own.short_time},  {&data.datetimePattern, own.datetime}};
    for (const auto& [entry, text] : entries) {
      if (text.empty()) continue;
      if (vxzsu8NumChars(detail::in(text.data()), detail::length(text)) > 60) return {VX_E_LENGTH, {}};
      std::int64_t size = 0;
      const VXStatus status =
          ConvertToUTF32(detail::in(text.data()), detail::length(text), reinterpret_cast<std::uint8_t*>(entry->text),
                         sizeof entry->text, &size, &UTF8_UTF32, &COPY_UTF32_SWAP);
      if (status != 0) return {VX_E_SEQUENCE, {}};
      entry->length = size / 4;
    }
    return made;
  }

  /// The canonical name that a locale name leads to. VX_W_SUBSTITUTE, with the name: another locale stands in.
  result<std::string> resolve(std::string_view name) const {
    const detail::c_string ascii(name);
    char canonical[64] = {};
    const VXStatus status =
        ascii.fits ? vxhostResolveLocale(get(), ascii.bytes, canonical, sizeof canonical) : VX_E_NOMATCH;
    return {status, canonical};
  }
  std::vector<std::string> locales() const { return names(&vxhostForEachLocale); }
  std::vector<std::string> zones() const { return names(&vxhostForEachZone); }

  /// What is in force in a zone at an instant, or at a local time of it; an empty zone is the system's.
  result<zone_state> zone_at(std::string_view zone, std::chrono::sys_seconds at) const {
    return state(zone, VX_ZONE_FROM_UTC, at.time_since_epoch());
  }
  result<zone_state> zone_at(std::string_view zone, std::chrono::local_seconds at) const {
    return state(zone, VX_ZONE_FROM_LOCAL, at.time_since_epoch());
  }

  /// What a status means: "0x803fe83c: no time zone has this name".
  std::string describe(VXStatus status) const {
    char text[256] = {};
    vxhostStatusText(get(), status, text, sizeof text);
    return text;
  }
  /// Versions of what stands behind the host: "ICU 72.1; CLDR 42; ...".
  std::string_view versions() const noexcept { return vxhostVersions(get()); }
  /// Sends the journal's lines to a function, called from any thread and by one at a time; it must not throw.
  void on_journal(std::function<void(const journal_entry&)> each) {
    auto next = each ? std::make_unique<std::function<void(const journal_entry&)>>(std::move(each)) : nullptr;
    const VXHostJournal call = [](void* user, std::uint32_t level, double seconds, const char* text) noexcept {
      (*static_cast<std::function<void(const journal_entry&)>*>(user))({level, seconds, text});
    };
    vxhostSetJournal(get(), next ? call : nullptr, next.get());
    journal_ = std::move(next);
  }

 private:
  struct close {
    void operator()(VXHost* raw) const noexcept { vxhostClose(raw); }
  };

  result<vxnls::locale> make(std::string_view name, std::string_view zone, std::uint32_t flags) const noexcept {
    const detail::c_string name_text(name), zone_text(zone);
    if (!name_text.fits) return {VX_E_NOMATCH, {}, 0, {"no such locale"}};
    if (!zone_text.fits) return {VX_E_ZONE, {}, 0, {"no such time zone"}};
    VXLocale* raw = nullptr;
    const VXStatus status = vxhostLocale(get(), name_text.bytes, zone.empty() ? nullptr : zone_text.bytes, flags, &raw);
    const char* const what = status == VX_E_NOMATCH ? "no such locale"
                             : status == VX_E_ZONE  ? "no such time zone"
                                                    : nullptr;
    return {status, vxnls::locale(raw), 0, {what}};
  }

  template <class ForEach>
  std::vector<std::string> names(ForEach for_each) const {
    std::vector<std::string> all;
    const auto each = [](void* user, const char* name) {
      return static_cast<std::vector<std::string>*>(user)->emplace_back(name), 0;
    };
    for_each(get(), each, &all);
    return all;
  }

  result<zone_state> state(std::string_view zone, std::int32_t direction, std::chrono::seconds since_1970) const {
    const detail::c_string ascii(zone);
    const auto seconds = detail::seconds_1960(since_1970);
    if (!ascii.fits) return {VX_E_ZONE, {}};
    if (!seconds) return {VX_E_RANGE, {}};
    VXHostZoneInfo info{};
    const VXStatus status = vxhostZoneInfo(get(), zone.empty() ? nullptr : ascii.bytes, direction, *seconds, &info);
    return {status, {info.id, info.abbreviation, std::chrono::seconds{info.offset}, info.summer_time != 0}};
  }

  std::unique_ptr<std::function<void(const journal_entry&)>> journal_;
  std::unique_ptr<VXHost, close> raw_;
};

/* text ------------------------------------------------------------------------------------------------- */

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
  constexpr iterator begin() const noexcept { return iterator(text_); }
  constexpr std::default_sentinel_t end() const noexcept { return {}; }
  constexpr bool empty() const noexcept { return text_.empty(); }

 private:
  std::basic_string_view<Unit> text_;
};
template <class Text>
code_points(const Text& text) -> code_points<std::remove_cvref_t<decltype(text[0])>>;

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

/// Conversions of whole texts by the coders of unicode.h, which are fast and take more than is well-formed: overlong
/// forms and single surrogates pass (is_well_formed tells). VX_E_SEQUENCE, VX_E_INCOMPLETE: the text up to the fault
/// was converted, consumed() units of it. UTF-16 is in the machine's order.
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
/// equal but for case says equal_caseless.
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
