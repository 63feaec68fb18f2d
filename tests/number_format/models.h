// Numbers written the slow way: in strings of exact digits, and double arithmetic only where the rounding is defined by
// it.
#ifndef VXNLS_TESTS_NUMBER_FORMAT_MODELS_H
#define VXNLS_TESTS_NUMBER_FORMAT_MODELS_H

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vxnls/vxnls.h"

namespace vxtest {

/// With so many digits after the point, as many as the value has and zeros; the last one rounded half to even.
inline std::string written(double value, std::chars_format form, int digits) {
  char text[1500];
  return {text, std::to_chars(text, std::end(text), value, form, digits).ptr};
}

/// The same, rounded half up.
inline std::string half_up(double value, std::chars_format form, int digits) {
  const std::string all = written(value, form, 1100);
  std::string text = written(value, form, digits);
  const size_t next = all.find('.') + 1 + static_cast<size_t>(digits), more = all.find_first_not_of('0', next + 1);
  const bool is_half = all[next] == '5' && (more == all.npos || all[more] == 'e');
  // What went down to an even digit takes the next one, without a carry.
  if (const size_t last = next - (digits > 0 ? 1 : 2); is_half && text[last] == all[last]) ++text[last];
  return text;
}

/// The digits of a double: `whole` without leading zeros, empty below 1, and `fraction` without trailing ones.
struct Exact {
  std::string whole, fraction;
  int digits, zeros;  // before the point; that the fraction begins with

  explicit Exact(double value) {
    const std::string text = written(std::fabs(value), std::chars_format::fixed, 1074);
    const size_t point = text.find('.');
    if (text[0] != '0') whole = text.substr(0, point);
    fraction = text.substr(point + 1, text.find_last_not_of('0') - point);
    digits = static_cast<int>(whole.size());
    zeros = static_cast<int>(std::min(fraction.find_first_not_of('0'), fraction.size()));
  }
};

/// Units as characters: in UTF-8 the bytes, in UTF-32 a stand-in for each.
struct Marks {
  std::string point, separator;
  std::vector<int> groups;  // from the right, the last one repeats; -1: no further groups; 0: never fits
};

/// A status, and the text or that there is none, nor a length.
using Written = std::pair<VXStatus, std::string>;
constexpr const char* untouched = "(untouched)";

/// With separators in the digits that a text begins with, where they may ever fit.
inline std::optional<std::string> grouped(std::string text, const Marks& marks) {
  size_t at = std::min(text.find_first_not_of("0123456789"), text.size());
  for (size_t group = 0;; ++group) {
    const int length = marks.groups[std::min(group, marks.groups.size() - 1)];
    if (length == 0) return {};
    if (length < 0 || at <= static_cast<size_t>(length)) return text;
    at -= static_cast<size_t>(length);
    text.insert(at, marks.separator);
  }
}

/// With its sign, and padding up to a width.
inline std::string laid_out(bool negative, const std::string& text, uint32_t flags, int64_t width) {
  const bool left = (flags & NLS_FORMAT_LEFT) != 0, zeros = !left && (flags & NLS_FORMAT_ZERO_PAD) != 0;
  const std::string sign = negative ? "-" : (flags & NLS_FORMAT_PLUS) ? "+" : (flags & NLS_FORMAT_BLANK) ? " " : "";
  const int64_t missing = width - static_cast<int64_t>(sign.size() + text.size());
  const std::string padding(static_cast<size_t>(std::max<int64_t>(missing, 0)), zeros ? '0' : ' ');
  return left ? sign + text + padding : zeros ? sign + padding + text : padding + sign + text;
}

class DoubleModel {
 public:
  explicit DoubleModel(const Marks& marks) : marks_(marks), point_(static_cast<int>(marks.point.size())) {}

  Written format(double value, int32_t width, int32_t decimals, uint32_t flags, int64_t size) {
    const bool significant = (flags & NLS_FORMAT_SIGNIFICANT) != 0;
    const bool wants_exponent = (flags & NLS_FORMAT_FIXED_EXPONENT) != 0 || (significant && decimals >= 1);
    reports_ = (flags & NLS_FORMAT_FIXED) != 0 || (significant && decimals < 0);
    int places = significant ? std::abs(decimals) : decimals;
    best_ = (flags & NLS_FORMAT_BEST) != 0 || places == NLS_BEST_DECIMALS;
    if (best_) places = NLS_BEST_DECIMALS;
    const bool in_field =
        (flags & (NLS_FORMAT_FIXED | NLS_FORMAT_FIXED_EXPONENT | NLS_FORMAT_SIGNIFICANT)) != 0 || (best_ && width != 0);
    if (width < 0 && !in_field) flags |= NLS_FORMAT_LEFT;
    groups_ = (flags & NLS_FORMAT_GROUP) != 0;
    // A blank for the sign is for what stands on the right, behind blanks.
    if ((flags & (NLS_FORMAT_LEFT | NLS_FORMAT_ZERO_PAD)) != 0) flags &= ~NLS_FORMAT_BLANK;
    flags_ = flags;
    size_ = std::max<int64_t>(size, 0);
    negative_ = value < 0;
    magnitude_ = std::fabs(value);
    if (std::isnan(value)) return missing(value, width, places);
    field_ = static_cast<int>(std::clamp<int64_t>(width, 0, size_));
    room_ = field_ - (negative_ ? 1 : 0);
    if (std::isinf(value)) {
      // Without a width nothing fits: kept on purpose.
      return room_ >= 3 ? Written{0, negative_ ? "-Inf" : "Inf"} : stars(VX_E_TRUNCATED);
    }
    return in_field ? fixed(width, places, wants_exponent) : free(std::abs(static_cast<int64_t>(width)), decimals);
  }

 private:
  Written fixed(int32_t width, int decimals, bool wants_exponent) const {
    if (width < 1) return {VX_E_WIDTH, untouched};
    if (width > 32 || (wants_exponent && width < 7)) return stars(VX_E_WIDTH);
    if (wants_exponent) return exponent_form(0, std::max(room_ - 7, 1));
    const auto otherwise = [&] { return exponent_form(reports_ ? VX_W_PRECISION : 0, 0); };
    const VXStatus fewer = reports_ && !best_ ? VX_W_PRECISION : 0;
    const Exact exact(magnitude_);
    const int n = exact.digits;
    const bool integral = exact.fraction.empty();
    if (decimals < 0) decimals = 6;
    if (best_) {
      decimals = room_ - 1 - point_;
      if (decimals < 2) decimals = std::max(room_ - point_, 0);
      const bool tiny = magnitude_ < 1e-05 && room_ > 4, vanishes = exact.zeros >= decimals;
      if (n == 0 && !integral && room_ > 2 && (tiny || vanishes)) return otherwise();
      if (integral) decimals = 0;
    }
    if (n > room_ || n == 32) return otherwise();
    if (room_ == 0) {
      if (magnitude_ >= 0.5) return otherwise();
      return field_ == 0 ? stars(VX_E_TRUNCATED) : done(decimals > 0 ? fewer : 0, "0", false);
    }
    const auto room_before = [&] { return decimals == 0 ? room_ : room_ - decimals - point_; };
    VXStatus status = 0;
    Exact shown(magnitude_);
    for (;; --decimals) {
      if (!integral) shown = Exact((magnitude_ + (decimals <= 15 - n ? half(decimals) : 0)) * 0x1.0000000000001p+0);
      if (shown.digits <= room_before()) break;
      if (decimals == 0) return otherwise();
      status = fewer;
    }
    // Every integer digit, decimals up to 15 significant digits, then zeros.
    std::string text = shown.digits == 0 && room_before() > 0 ? "0" : shown.whole;
    const int kept = shown.digits > 0 ? 15 - shown.digits : 15 + shown.zeros;
    std::string fraction = shown.fraction.substr(0, static_cast<size_t>(std::max(kept, 0)));
    fraction.resize(static_cast<size_t>(decimals), '0');
    if (best_) fraction.erase(fraction.find_last_not_of('0') + 1);
    if (!fraction.empty()) text += marks_.point + fraction;
    // The "0" that had given way returns when there is room again.
    if (shown.digits == 0 && text[0] != '0' && ssize(text) < room_) text.insert(0, 1, '0');
    return done(status, text, negative_);
  }

  Written free(int64_t field, int decimals) {
    constexpr auto plain = std::chars_format::fixed, scientific = std::chars_format::scientific;
    const bool general = (flags_ & (NLS_FORMAT_GENERAL | 0x0400)) != 0 ||
                         (flags_ & (NLS_FORMAT_PLAIN | NLS_FORMAT_FRACTION | NLS_FORMAT_INTEGER | 0x0030)) == 0;
    if (best_) decimals = 12;
    if (decimals < 0 || (general && decimals == 0)) decimals = 6;
    decimals = std::min(decimals, 350);
    const bool exponent_form = (flags_ & 0x0030) != 0, integer = (flags_ & NLS_FORMAT_INTEGER) != 0;
    const bool fraction = !integer && (flags_ & NLS_FORMAT_FRACTION) != 0;
    std::string text;
    if (general || exponent_form) text = half_up(magnitude_, scientific, general ? decimals - 1 : decimals);
    else text = half_up(fraction ? magnitude_ - std::floor(magnitude_) : magnitude_, plain, integer ? 0 : decimals);
    if (general) {
      const int exponent = std::stoi(text.substr(text.find('e') + 1));
      if (exponent >= -4 && exponent < decimals) text = half_up(magnitude_, plain, decimals - 1 - exponent);
      const size_t tail = std::min(text.find('e'), text.size());
      if ((flags_ & NLS_FORMAT_KEEP_ZEROS) == 0 && text.find('.') != text.npos) {
        const size_t last = text.find_last_not_of('0', tail - 1), end = last + (text[last] == '.' ? 0 : 1);
        text.erase(end, tail - end);
      }
    } else if (const Exact exact(magnitude_); exponent_form && decimals == 350 && magnitude_ < 1) {
      // The library's work area holds no more digits of a fraction.
      if (ssize(exact.fraction) - exact.zeros > 350) return {VX_E_DIRECTIVE, ""};
    }
    std::replace(text.begin(), text.end(), 'e', 'E');
    if (const size_t point = text.find('.'); point != text.npos) text.replace(point, 1, marks_.point);
    VXStatus status = 0;
    if (groups_) {
      const auto separated = grouped(text, marks_);
      const int64_t limit = field == 0 ? size_ : std::min(field, size_);
      if (separated && ssize(laid_out(negative_, *separated, flags_, 0)) <= limit) text = *separated;
      else status = VX_E_GROUPING;
    }
    text = laid_out(negative_, text, flags_, field);
    if (ssize(text) <= size_) return {status, text};
    field_ = static_cast<int>(size_);
    return stars(VX_E_TRUNCATED);
  }

  Written missing(double value, int32_t width, int32_t decimals) const {
    const int code = static_cast<uint8_t>(-(std::bit_cast<uint64_t>(value) >> 40 & 0xFF));
    const char letter = code == 1 ? '_' : code >= 3 && code <= 28 ? static_cast<char>(code + 0x3E) : '.';
    const auto length = std::min<int64_t>(reports_ ? std::max(width, 1) : 1, size_);
    if (length == 0) return {VX_E_TRUNCATED, ""};
    std::string text(static_cast<size_t>(length), ' ');
    const int at = width - decimals - 1;
    text[static_cast<size_t>(at < 0 || at >= length ? length - 1 : at)] = letter;
    return {0, text};
  }

  /// Where it fits. `asked` 0: as many digits as the room holds, without trailing zeros.
  Written exponent_form(VXStatus status, int asked) const {
    // m in [0.1, 1) and k with value = m * 10^k
    int k = 0;
    std::frexp(magnitude_, &k);
    k = magnitude_ == 0 ? 1 : k * 77 / 256;
    double m = magnitude_;
    if (k > 0) m = m / decimal(1, std::min(k, 307)) / decimal(1, std::max(k - 307, 0));
    else m = m * decimal(1, std::min(-k, 307)) * decimal(1, std::max(-k - 307, 0));
    for (; m != 0 && m < 0.1; --k) m *= 10;
    for (; m >= 1; ++k) m *= 0x1.999999999999bp-4;

    const auto tail = [&](int e) { return asked == 0 ? fmt::format("E{}", e) : fmt::format("E{:+03}", e); };
    // How many digits fit with `before` of them before the point.
    const auto capacity = [&](int before) {
      const int units = room_ - static_cast<int>(tail(k - before).size());
      return before == 0 || units - point_ > before ? units - point_ : units >= before ? before : 0;
    };
    int before = 1, digits = 0;
    const auto arrange = [&] {
      before = 1;
      // Two digits before the point need none; none before it may make the exponent shorter.
      if (asked != 1 && capacity(1) < 2)
        for (const int other : {2, 0})
          if (capacity(other) > capacity(before)) before = other;
      digits = std::min(asked == 0 ? room_ : asked, capacity(before));
    };
    arrange();
    if (m != 0 && digits > 0) {
      m = (m + (digits < 15 ? half(digits) : 0)) * 0x1.0000000000008p+0;
      if (m >= 1) {
        m *= 0x1.999999999999bp-4;
        ++k;
        arrange();
      }
    }
    if (digits <= 0) return stars(VX_E_TRUNCATED);
    std::string text = Exact(m).fraction.substr(0, static_cast<size_t>(std::min(digits, 14)));
    text.erase(text.find_last_not_of('0') + 1);
    if (text.size() < 2 && capacity(1) > 0) before = 1;  // none was won
    const auto least = static_cast<size_t>(asked > 0 && digits > 14 ? digits : std::max(before, 1));
    if (text.size() < least) text.resize(least, '0');
    if (ssize(text) > before) text.insert(static_cast<size_t>(before), marks_.point);
    text += tail(magnitude_ == 0 ? 0 : k - before);
    return ssize(text) > room_ ? stars(VX_E_TRUNCATED) : done(status, text, negative_);
  }

  static double decimal(int digit, int exponent) {
    return std::strtod(fmt::format("{}e{}", digit, exponent).c_str(), nullptr);
  }
  static double half(int decimals) { return decimal(5, -decimals - 1); }

  /// Separators, sign and padding of a fixed field, where nothing was lost and they fit.
  Written done(VXStatus status, const std::string& text, bool negative) const {
    const bool separates = groups_ && reports_ && status == 0;
    if (const auto separated = grouped(text, marks_); separates && separated) {
      const std::string all = laid_out(negative, *separated, flags_, field_);
      if (ssize(all) <= field_) return {0, all};
    }
    const VXStatus without = separates ? VX_E_GROUPING : 0;
    const std::string bare = laid_out(negative, text, 0, field_), all = laid_out(negative, text, flags_, field_);
    if (status != 0) return {status, bare};
    return ssize(all) <= field_ ? Written{without, all} : Written{VX_E_GROUPING, bare};
  }
  Written stars(VXStatus status) const { return {status, std::string(static_cast<size_t>(field_), '*')}; }

  const Marks marks_;
  const int point_;
  // of the call under way
  bool negative_ = false, best_ = false, groups_ = false;
  bool reports_ = false;  // fewer decimals are a status, groups are inserted
  uint32_t flags_ = 0;
  int field_ = 0, room_ = 0;
  int64_t size_ = 0;
  double magnitude_ = 0;
};

template <class Integer>
Written integer_model(const Marks& marks, Integer value, int width, int precision, uint32_t flags, int64_t size) {
  const int64_t least = precision < 0 ? 6 : precision, field = std::abs(static_cast<int64_t>(width));
  Written refused{VX_E_TRUNCATED, untouched};
  if (least > size || field > size) return refused;
  const auto magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  constexpr bool other_bases = std::is_unsigned_v<Integer>;
  const bool lower = (flags & NLS_FORMAT_HEX_LOWER) != 0, any_hex = lower || (flags & NLS_FORMAT_HEX_UPPER) != 0;
  const bool hex = other_bases && any_hex, octal = other_bases && !hex && (flags & NLS_FORMAT_OCTAL) != 0;
  const auto* const form = hex ? lower ? "{:x}" : "{:X}" : octal ? "{:o}" : "{}";
  std::string text = magnitude == 0 ? "" : fmt::format(fmt::runtime(form), magnitude), prefix;
  const int64_t zeros = least - ssize(text);
  if ((flags & NLS_FORMAT_GROUP) != 0 && !any_hex && (flags & NLS_FORMAT_OCTAL) == 0) text = *grouped(text, marks);
  if (zeros > 0) text.insert(0, static_cast<size_t>(zeros), '0');
  if (hex && (flags & NLS_FORMAT_HEX_PREFIX) != 0) prefix = lower ? "0x" : "0X";
  if (octal && (flags & NLS_FORMAT_OCTAL_PREFIX) != 0) prefix = "0";
  if (other_bases) flags &= ~(NLS_FORMAT_PLUS | NLS_FORMAT_BLANK);
  if (least != 0 || (flags & NLS_FORMAT_LEFT) != 0) flags &= ~NLS_FORMAT_ZERO_PAD;
  // A sign counts against the width that the zeros fill, a prefix does not.
  const bool fills = (flags & NLS_FORMAT_ZERO_PAD) != 0;
  text = fills ? prefix + laid_out(value < 0, text, flags, field) : laid_out(value < 0, prefix + text, flags, field);
  return ssize(text) <= size ? Written{0, text} : refused;
}

}  // namespace vxtest

#endif
