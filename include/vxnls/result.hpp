/// What the calls of the C++ face give back: results that say why there is no value, and texts of a size known at
/// compile time. Part of vxnls.hpp.
#ifndef VXNLS_RESULT_HPP
#define VXNLS_RESULT_HPP

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "vxnls/types.h"

namespace vxnls {

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
inline constexpr std::size_t text_room = 520;
inline constexpr std::size_t double_room = 2304;

namespace detail {

template <class Unit>
concept text_unit = std::same_as<Unit, char> || std::same_as<Unit, char32_t>;

// The library's units and the language's have one representation; the calls cross into another shared object.
inline const std::uint8_t* in(const char* text) noexcept { return reinterpret_cast<const std::uint8_t*>(text); }
inline std::uint8_t* out(char* text) noexcept { return reinterpret_cast<std::uint8_t*>(text); }
inline const VXChar* in(const char32_t* text) noexcept { return reinterpret_cast<const VXChar*>(text); }
inline VXChar* out(char32_t* text) noexcept { return reinterpret_cast<VXChar*>(text); }
template <class Range>
std::int64_t length(const Range& range) noexcept {
  return static_cast<std::int64_t>(range.size());
}

}  // namespace detail

}  // namespace vxnls

#endif
