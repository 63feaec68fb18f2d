// Numbers written the slow way: strings, exact digits by big integers, and double arithmetic only where the rounding is
// defined by it.
#ifndef VXNLS_TESTS_NUMBER_FORMAT_MODELS_H
#define VXNLS_TESTS_NUMBER_FORMAT_MODELS_H

#include <gmpxx.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "vxnls/vxnls.h"

namespace vxtest {

/// The digits of a double: `whole` without leading zeros, empty below 1, and `fraction` without trailing ones.
struct Exact {
  std::string whole, fraction;

  explicit Exact(double value) {
    // With more digits than any double of that exponent has, in the bits that their powers of ten take.
    const auto digits = static_cast<size_t>(60 + (value == 0 ? 0 : std::abs(std::ilogb(value)) * 3 / 4));
    mp_exp_t point = 0;
    std::string all = mpf_class(std::fabs(value), 4 * digits).get_str(point, 10, digits);
    if (point < 0) all.insert(0, static_cast<size_t>(-point), '0');
    const auto places = static_cast<size_t>(std::max(point, mp_exp_t{0}));
    if (all.size() < places) all.resize(places, '0');
    whole = all.substr(0, places);
    fraction = all.substr(places);
  }

  /// The first digits, half up, behind a 0 that takes a carry.
  static std::string half_up(std::string all, size_t count) {
    all.resize(std::max(all.size(), count + 1), '0');
    const std::string text = mpz_class(mpz_class("0" + all.substr(0, count), 10) + (all[count] >= '5')).get_str();
    return std::string(count + 1 - text.size(), '0') + text;
  }
  /// With `decimals` digits after the point, half up; "0" before the point below 1.
  std::string plain(int decimals) const {
    std::string text = half_up(whole + fraction, whole.size() + static_cast<size_t>(decimals));
    if (!whole.empty() && text[0] == '0') text.erase(0, 1);
    if (decimals > 0) text.insert(text.size() - static_cast<size_t>(decimals), ".");
    return text;
  }
  /// As d.dddE+XX with so many significant digits.
  std::string scientific(int digits, int* exponent) const {
    std::string all = whole + fraction;
    const size_t zeros = std::min(all.find_first_not_of('0'), all.size());
    *exponent = all.empty() ? 0 : static_cast<int>(whole.size()) - 1 - static_cast<int>(zeros);
    std::string text = half_up(all.substr(zeros), static_cast<size_t>(digits));
    if (text[0] == '0') text.erase(0, 1);
    else ++*exponent, text.pop_back();
    if (digits > 1) text.insert(1, ".");
    return text + exponent_text(*exponent, false);
  }
  /// "E" with its number: `bare`, without "+" and leading zeros.
  static std::string exponent_text(int exponent, bool bare) {
    const std::string digits = std::to_string(std::abs(exponent));
    if (bare) return (exponent < 0 ? "E-" : "E") + digits;
    return (exponent < 0 ? "E-" : "E+") + std::string(digits.size() < 2 ? 1 : 0, '0') + digits;
  }
};

/// Units as characters: in UTF-8 the bytes, in UTF-32 \1 for a point and \2 for a separator beyond ASCII.
struct Marks {
  std::string point, separator;
  std::vector<int> groups;  // from the right, the last one repeats; -1: no further groups; 0: never fits
};

struct Written {
  VXStatus status = 0;
  std::string text;
  bool is_written = true;  // false: neither text nor length
  bool operator==(const Written&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Written& written) {
  return out << std::hex << written.status << std::dec << " [" << written.text << "]";
}

/// Puts the separators into the digits that a text begins with; false where they never fit.
inline bool group(std::string& text, const Marks& marks) {
  size_t at = std::min(text.find_first_not_of("0123456789"), text.size());
  for (size_t group = 0; !marks.groups.empty(); ++group) {
    const int length = marks.groups[std::min(group, marks.groups.size() - 1)];
    if (length == 0) return false;
    if (length < 0 || at <= static_cast<size_t>(length)) break;
    at -= static_cast<size_t>(length);
    text.insert(at, marks.separator);
  }
  return true;
}

class DoubleModel {
 public:
  explicit DoubleModel(const Marks& marks) : marks_(marks), point_(static_cast<int>(marks.point.size())) {}

  Written format(double value, int32_t width, int32_t decimals, uint32_t flags, int64_t size) {
    bool wants_exponent = (flags & NLS_FORMAT_FIXED_EXPONENT) != 0;
    bool in_field = (flags & (NLS_FORMAT_FIXED | NLS_FORMAT_FIXED_EXPONENT | NLS_FORMAT_SIGNIFICANT)) != 0;
    reports_ = (flags & NLS_FORMAT_FIXED) != 0;
    int places = decimals;
    if (flags & NLS_FORMAT_SIGNIFICANT) {
      wants_exponent = wants_exponent || decimals >= 1;
      reports_ = reports_ || decimals < 0;
      places = std::abs(decimals);
    }
    best_ = (flags & NLS_FORMAT_BEST) != 0 || places == NLS_BEST_DECIMALS;
    if (best_) places = NLS_BEST_DECIMALS;
    in_field = in_field || (best_ && width != 0);
    if (width < 0 && !in_field) flags |= NLS_FORMAT_LEFT;
    flags_ = flags;
    size_ = std::max<int64_t>(size, 0);
    negative_ = value < 0;
    magnitude_ = std::fabs(value);
    if (std::isnan(value)) return missing(value, width, places);
    field_ = static_cast<int>(std::clamp<int64_t>(width, 0, size_));
    if (std::isinf(value)) {
      const std::string name = negative_ ? "-Inf" : "Inf";
      // Without a width nothing fits: kept on purpose.
      return field_ >= static_cast<int>(name.size()) ? Written{0, name} : stars(VX_E_TRUNCATED);
    }
    return in_field ? fixed(width, places, wants_exponent) : free(std::abs(static_cast<int64_t>(width)), decimals);
  }

 private:
  Written fixed(int32_t width, int decimals, bool wants_exponent) {
    if (width < 1) return {VX_E_WIDTH, "", false};
    if (width > 32 || (wants_exponent && width < 7)) return stars(VX_E_WIDTH);
    room_ = field_ - (negative_ ? 1 : 0);
    const Exact exact(magnitude_);
    const int n = static_cast<int>(exact.whole.size());
    const bool integral = exact.fraction.empty();
    if (decimals < 0) decimals = 6;
    if (wants_exponent) {
      const auto text = exponent(room_, std::max(room_ - 7, 1));
      return text ? done(0, *text) : stars(VX_E_TRUNCATED);
    }
    const VXStatus fewer = reports_ && !best_ ? VX_W_PRECISION : 0;
    if (best_) {
      decimals = room_ - 1 - point_;
      if (decimals < 2) decimals = std::max(room_ - point_, 0);
      if (magnitude_ < 1 && magnitude_ != 0 && room_ > 2) {
        const auto zeros = static_cast<int>(exact.fraction.find_first_not_of('0'));
        if ((magnitude_ < 1e-05 && room_ > 4) || zeros >= decimals) return in_exponent_form();
      }
      if (integral) decimals = 0;
    }
    if (n > room_ || n == 32) return in_exponent_form();
    if (room_ == 0) {
      if (magnitude_ >= 0.5) return in_exponent_form();
      if (field_ == 0) return stars(VX_E_TRUNCATED);
      return done(decimals > 0 ? fewer : 0, "0");
    }
    VXStatus status = 0;
    if (n > (decimals == 0 ? room_ : room_ - decimals - point_)) {
      decimals = std::max(room_ - n - point_, 0);
      status = fewer;
    }
    std::string text;
    for (;; --decimals) {
      double rounded = magnitude_;
      if (!integral) {
        if (decimals <= 15 - n) rounded += half(decimals);
        rounded *= 0x1.0000000000001p+0;
      }
      if (decimal_text(rounded, decimals, text)) break;
      status = fewer;
      if (decimals == 0) return in_exponent_form();
    }
    if (best_ && decimals > 0) {
      text.erase(text.find_last_not_of('0') + 1);
      if (text.ends_with(marks_.point)) text.resize(text.size() - marks_.point.size());
      // The "0" that had given way returns when there is room again.
      const bool has_whole = !text.empty() && text[0] != marks_.point[0];
      if (!has_whole && static_cast<int>(text.size()) < room_) text.insert(0, 1, '0');
    }
    return done(status, (negative_ ? "-" : "") + text);
  }

  Written free(int64_t field, int decimals) {
    const bool general = (flags_ & (NLS_FORMAT_GENERAL | 0x0400)) != 0 ||
                         (flags_ & (NLS_FORMAT_PLAIN | NLS_FORMAT_FRACTION | NLS_FORMAT_INTEGER | 0x0030)) == 0;
    if (best_) decimals = 12;
    if (decimals < 0 || (general && decimals == 0)) decimals = 6;
    decimals = std::min(decimals, 350);
    std::string text;
    int exponent = 0;
    if (general) {
      text = Exact(magnitude_).scientific(decimals, &exponent);
      if (exponent >= -4 && exponent < decimals) text = Exact(magnitude_).plain(decimals - 1 - exponent);
      const size_t tail = std::min(text.find('E'), text.size());
      size_t end = tail;
      if ((flags_ & NLS_FORMAT_KEEP_ZEROS) == 0 && text.find('.') < tail) {
        while (text[end - 1] == '0') --end;
        if (text[end - 1] == '.') --end;
        text.erase(end, tail - end);
      }
    } else if ((flags_ & 0x0030) != 0) {
      // The library's work area holds no more digits of a fraction.
      const std::string fraction = Exact(magnitude_).fraction;
      const size_t digits = fraction.size() - std::min(fraction.find_first_not_of('0'), fraction.size());
      if (decimals == 350 && magnitude_ < 1 && digits > 350) return {VX_E_DIRECTIVE, ""};
      text = Exact(magnitude_).scientific(decimals + 1, &exponent);
    } else {
      const bool integer = (flags_ & NLS_FORMAT_INTEGER) != 0, fraction = (flags_ & NLS_FORMAT_FRACTION) != 0;
      text =
          Exact(fraction && !integer ? magnitude_ - std::floor(magnitude_) : magnitude_).plain(integer ? 0 : decimals);
    }
    if (const size_t point = text.find('.'); point != text.npos) text.replace(point, 1, marks_.point);
    if (negative_) text.insert(0, 1, '-');
    std::string shown = text;
    const bool grouped = (flags_ & NLS_FORMAT_GROUP) != 0;
    const int64_t limit = field == 0 ? size_ : std::min(field, size_);
    VXStatus status = 0;
    if (grouped && (!lay_out(shown, true, 0) || static_cast<int64_t>(shown.size()) > limit)) status = VX_E_GROUPING;
    shown = text;
    lay_out(shown, grouped && status == 0, field);
    if (static_cast<int64_t>(shown.size()) <= size_) return {status, shown};
    field_ = static_cast<int>(size_);
    return stars(VX_E_TRUNCATED);
  }

  static double half(int decimals) { return decimal("5e-", decimals + 1); }
  static double power(int n) { return decimal("1e", n); }
  static double decimal(const std::string& before, int exponent) {
    return std::strtod((before + std::to_string(exponent)).c_str(), nullptr);
  }

  /// The digits of a rounded value: every integer digit, decimals up to 15 significant digits, then zeros. False where
  /// they do not fit.
  bool decimal_text(double value, int decimals, std::string& text) const {
    const Exact exact(value);
    const int room = decimals == 0 ? room_ : room_ - decimals - point_;
    std::string fraction = exact.fraction;
    auto kept = static_cast<int>(15 - exact.whole.size());
    if (exact.whole.empty()) kept += static_cast<int>(std::min(fraction.find_first_not_of('0'), fraction.size()));
    fraction.resize(static_cast<size_t>(std::clamp(kept, 0, static_cast<int>(fraction.size()))));
    fraction.resize(static_cast<size_t>(decimals), '0');
    text = exact.whole.empty() && room > 0 ? "0" : exact.whole;
    if (decimals > 0) text += marks_.point + fraction;
    return static_cast<int>(exact.whole.size()) <= room;
  }

  Written missing(double value, int32_t width, int32_t decimals) const {
    const int code = static_cast<uint8_t>(-(std::bit_cast<uint64_t>(value) >> 40 & 0xFF));
    const char shown = code == 1 ? '_' : code >= 3 && code <= 28 ? static_cast<char>(code + 0x3E) : '.';
    const auto length = static_cast<int>(std::min<int64_t>(reports_ ? std::max(width, 1) : 1, size_));
    if (length == 0) return {VX_E_TRUNCATED, ""};
    std::string text(static_cast<size_t>(length), ' ');
    const int at = width - decimals - 1;
    text[static_cast<size_t>(at < 0 || at >= length ? length - 1 : at)] = shown;
    return {0, text};
  }

  Written in_exponent_form() const {
    const auto text = exponent(room_, 0);
    return text ? done(reports_ ? VX_W_PRECISION : 0, (negative_ ? "-" : "") + *text) : stars(VX_E_TRUNCATED);
  }

  /// Where it fits. `digits` 0: as many as the room holds, without trailing zeros.
  std::optional<std::string> exponent(int room, int digits) const {
    const bool automatic = digits == 0;
    // m in [0.1, 1) and k with value = m * 10^k
    int binary;
    double m = magnitude_;
    std::frexp(m, &binary);
    int k = m == 0 ? 1 : binary * 77 / 256;
    if (k > 0) m = m / power(std::min(k, 307)) / power(std::max(k - 307, 0));
    else m = m * power(std::min(-k, 307)) * power(std::max(-k - 307, 0));
    for (; m != 0 && m < 0.1; --k) m *= 10;
    for (; m >= 1; ++k) m *= 0x1.999999999999bp-4;

    // How many digits fit with `before` of them before the point.
    const auto capacity = [&](int before) {
      const int units = room - static_cast<int>(Exact::exponent_text(k - before, automatic).size());
      if (before == 0 || units - point_ > before) return units - point_;
      return units >= before ? before : 0;
    };
    const int asked = automatic ? room : digits;
    int before = 1;
    const auto arrange = [&] {
      before = 1;
      if (asked >= 2 && capacity(1) < 2) {
        // Two digits before the point need none; none before it may make the exponent shorter.
        for (const int other : {2, 0})
          if (capacity(other) > capacity(before)) before = other;
      }
      digits = std::min(asked, capacity(before));
      return digits > 0;
    };
    if (!arrange()) return {};
    if (m != 0) {
      if (digits < 15) m += half(digits);
      m *= 0x1.0000000000008p+0;
      if (m >= 1) {
        m *= 0x1.999999999999bp-4;
        ++k;
        if (!arrange()) return {};
      }
    }
    std::string text = Exact(m).fraction.substr(0, static_cast<size_t>(std::min(digits, 14)));
    text.erase(text.find_last_not_of('0') + 1);
    if (text.size() < 2 && capacity(1) > 0) before = 1;  // none was won
    const auto least = static_cast<size_t>(!automatic && digits > 14 ? digits : std::max(before, 1));
    if (text.size() < least) text.resize(least, '0');
    if (static_cast<int>(text.size()) > before) text.insert(static_cast<size_t>(before), marks_.point);
    text += Exact::exponent_text(magnitude_ == 0 ? 0 : k - before, automatic);
    if (!automatic && negative_) text.insert(0, 1, '-');
    if (static_cast<int>(text.size()) > (automatic ? room : field_)) return {};
    return text;
  }

  /// Sign, separators and padding up to a width; false where the separators never fit.
  bool lay_out(std::string& text, bool grouped, int64_t width) const {
    const bool left = (flags_ & NLS_FORMAT_LEFT) != 0, zero_pad = (flags_ & NLS_FORMAT_ZERO_PAD) != 0 && !left;
    const bool blank = (flags_ & NLS_FORMAT_BLANK) != 0 && !left && !zero_pad, negative = text[0] == '-';
    const std::string sign = negative ? "-" : (flags_ & NLS_FORMAT_PLUS) ? "+" : blank ? " " : "";
    if (negative) text.erase(0, 1);
    const bool fits = !grouped || group(text, marks_);
    const auto all = static_cast<int64_t>(sign.size() + text.size());
    const std::string padding(static_cast<size_t>(std::max<int64_t>(width - all, 0)), zero_pad ? '0' : ' ');
    text = left ? sign + text + padding : zero_pad ? sign + padding + text : padding + sign + text;
    return fits;
  }

  Written done(VXStatus status, const std::string& text) const {
    const auto field = static_cast<size_t>(field_);
    const bool grouped = reports_ && (flags_ & NLS_FORMAT_GROUP);
    std::string shown = text;
    if (status == 0 && !(lay_out(shown, grouped, field_) && shown.size() <= field)) {
      status = VX_E_GROUPING;
      shown = text;
      if (grouped && (lay_out(shown, false, field_), shown.size() > field)) shown = text;
    }
    if (shown.size() < field) shown.insert(0, field - shown.size(), ' ');
    return {status, shown};
  }
  Written stars(VXStatus status) const { return {status, std::string(static_cast<size_t>(field_), '*')}; }

  const Marks marks_;
  const int point_;
  // of the call under way
  bool negative_ = false, best_ = false;
  bool reports_ = false;  // fewer decimals are a status, groups are inserted
  uint32_t flags_ = 0;
  int field_ = 0, room_ = 0;
  int64_t size_ = 0;
  double magnitude_ = 0;
};

__extension__ using Wide = __int128;

inline Written integer_model(const Marks& marks, Wide value, bool is_signed, int width, int precision, uint32_t flags,
                             int64_t size) {
  const int64_t least = precision < 0 ? 6 : precision, field = std::abs(static_cast<int64_t>(width));
  const Written refused{VX_E_TRUNCATED, "", false};
  if (least > size || field > size) return refused;
  const bool lower = (flags & NLS_FORMAT_HEX_LOWER) != 0, any_hex = lower || (flags & NLS_FORMAT_HEX_UPPER) != 0;
  const bool hex = !is_signed && any_hex, octal = !is_signed && !hex && (flags & NLS_FORMAT_OCTAL) != 0;
  const char* const alphabet = lower ? "0123456789abcdef" : "0123456789ABCDEF";
  std::string text, sign;
  for (Wide left = value < 0 ? -value : value; left != 0; left /= hex ? 16 : octal ? 8 : 10)
    text.insert(0, 1, alphabet[static_cast<int>(left % (hex ? 16 : octal ? 8 : 10))]);
  const auto shown = static_cast<int64_t>(text.size());
  if ((flags & NLS_FORMAT_GROUP) != 0 && !any_hex && (flags & NLS_FORMAT_OCTAL) == 0) group(text, marks);
  if (shown < least) text.insert(0, static_cast<size_t>(least - shown), '0');
  if (is_signed) sign = value < 0 ? "-" : (flags & NLS_FORMAT_PLUS) ? "+" : (flags & NLS_FORMAT_BLANK) ? " " : "";
  const bool left = (flags & NLS_FORMAT_LEFT) != 0;
  const auto padding = [&](size_t taken) {
    return static_cast<size_t>(std::max<int64_t>(field - static_cast<int64_t>(taken), 0));
  };
  // A sign counts against the width that the zeros fill, a prefix does not.
  if ((flags & NLS_FORMAT_ZERO_PAD) != 0 && !left && least == 0)
    text.insert(0, padding(sign.size() + text.size()), '0');
  if (hex && (flags & NLS_FORMAT_HEX_PREFIX) != 0) sign = lower ? "0x" : "0X";
  if (octal && (flags & NLS_FORMAT_OCTAL_PREFIX) != 0) sign = "0";
  text.insert(0, sign);
  text.insert(left ? text.size() : 0, padding(text.size()), ' ');
  return static_cast<int64_t>(text.size()) <= size ? Written{0, text} : refused;
}

}  // namespace vxtest

#endif
