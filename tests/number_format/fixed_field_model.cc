#include "tests/number_format/fixed_field_model.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

namespace vxtest {
namespace {

constexpr int significant_digits = 15, mantissa_digits = 14;

double power_of_ten(int n) { return std::strtod(("1e" + std::to_string(n)).c_str(), nullptr); }
double half_unit(int decimals) { return std::strtod(("5e-" + std::to_string(decimals + 1)).c_str(), nullptr); }

double power(int n) {
  static const std::vector<double> table = [] {
    std::vector<double> powers;
    for (int i = 0; i <= 308; ++i) powers.push_back(power_of_ten(i));
    return powers;
  }();
  return table[static_cast<size_t>(n)];
}

double half(int decimals) {
  static const std::vector<double> table = [] {
    std::vector<double> halves;
    for (int i = 0; i < 32; ++i) halves.push_back(half_unit(i));
    return halves;
  }();
  return table[static_cast<size_t>(decimals)];
}

/// "E" with its number: in automatic length without "+" and leading zeros.
std::string exponent_text(int exponent, bool automatic) {
  const std::string digits = std::to_string(std::abs(exponent));
  if (automatic) return (exponent < 0 ? "E-" : "E") + digits;
  return (exponent < 0 ? "E-" : "E+") + std::string(digits.size() < 2 ? 1 : 0, '0') + digits;
}

}  // namespace

Field FixedFieldModel::format(double value, int32_t width, int32_t decimals, uint32_t flags, int64_t size) {
  bool wants_exponent = (flags & NLS_FORMAT_FIXED_EXPONENT) != 0;
  reports_ = (flags & NLS_FORMAT_FIXED) != 0;
  if (flags & NLS_FORMAT_SIGNIFICANT) {
    if (decimals >= 1) wants_exponent = true;
    if (decimals < 0) {
      decimals = -decimals;
      reports_ = true;
    }
  }
  const bool best = (flags & NLS_FORMAT_BEST) || decimals == NLS_BEST_DECIMALS;
  if (best) decimals = NLS_BEST_DECIMALS;
  flags_ = flags;
  size = std::max<int64_t>(size, 0);

  if (std::isnan(value)) return missing(value, width, decimals, size);
  field_ = static_cast<int>(std::clamp<int64_t>(width, 0, size));
  if (std::isinf(value)) {
    const std::string name = value < 0 ? "-Inf" : "Inf";
    if (field_ >= static_cast<int>(name.size())) return {0, name};
    return stars(VX_E_TRUNCATED);
  }

  // 1
  if (width < 1) return {VX_E_WIDTH, "", false};
  if (width > 32 || (wants_exponent && width < 7)) return stars(VX_E_WIDTH);
  negative_ = value < 0;
  room_ = field_ - (negative_ ? 1 : 0);
  magnitude_ = std::fabs(value);

  // 2
  exact_.expand(magnitude_);
  const int n = static_cast<int>(exact_.whole.size());
  const bool integral = exact_.fraction.empty();
  const auto point = static_cast<int>(point_.size());
  if (decimals < 0) decimals = 6;

  // 3
  if (wants_exponent) {
    const Exponent got = exponent(magnitude_, room_, std::max(room_ - 7, 1));
    if (!got.fits) return stars(VX_E_TRUNCATED);
    return done(0, got.text);
  }

  // 4
  const VXStatus fewer = reports_ && !best ? VX_W_PRECISION : 0;
  const VXStatus turned = reports_ ? VX_W_PRECISION : 0;
  if (best) {
    decimals = room_ - 1 - point;
    if (decimals < 2) decimals = std::max(room_ - point, 0);
    if (magnitude_ < 1 && magnitude_ != 0 && room_ > 2) {
      const auto zeros = static_cast<int>(exact_.fraction.find_first_not_of('0'));
      if ((magnitude_ < 1e-05 && room_ > 4) || zeros >= decimals) return in_exponent_form(turned);
    }
    if (integral) decimals = 0;
  }

  // 5, 6
  if (n > room_ || n == 32) return in_exponent_form(turned);
  if (room_ == 0) {
    if (magnitude_ >= 0.5) return in_exponent_form(turned);
    if (field_ == 0) return stars(VX_E_TRUNCATED);
    return done(decimals > 0 ? fewer : 0, "0");
  }

  // 7
  VXStatus status = 0;
  if (n > (decimals == 0 ? room_ : room_ - decimals - point)) {
    decimals = std::max(room_ - n - point, 0);
    status = fewer;
  }

  // 8
  std::string text;
  for (;; --decimals) {
    double rounded = magnitude_;
    if (!integral) {
      if (decimals <= significant_digits - n) rounded += half(decimals);
      rounded *= 0x1.0000000000001p+0;
    }
    bool fits;
    text = decimal_text(rounded, decimals, room_, &fits);
    if (fits) break;
    status = fewer;
    if (decimals == 0) return in_exponent_form(turned);
  }
  if (best && decimals > 0) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with(point_)) text.resize(text.size() - point_.size());
    // The "0" that had given way returns when there is room again.
    if ((text.empty() || text[0] == point_[0]) && static_cast<int>(text.size()) < room_) text.insert(0, 1, '0');
  }
  return done(status, (negative_ ? "-" : "") + text);
}

/// The digits of a rounded value: every integer digit, decimals up to 15 significant digits, then zeros.
std::string FixedFieldModel::decimal_text(double value, int decimals, int room, bool* fits) {
  exact_.expand(value);
  const int whole_room = decimals == 0 ? room : room - decimals - static_cast<int>(point_.size());
  *fits = static_cast<int>(exact_.whole.size()) <= whole_room;
  std::string fraction = exact_.fraction;
  auto kept = static_cast<int>(significant_digits - exact_.whole.size());
  if (exact_.whole.empty()) kept += static_cast<int>(std::min(fraction.find_first_not_of('0'), fraction.size()));
  fraction.resize(static_cast<size_t>(std::clamp(kept, 0, static_cast<int>(fraction.size()))));
  fraction.resize(static_cast<size_t>(decimals), '0');
  const std::string whole = exact_.whole.empty() && whole_room > 0 ? std::string(1, '0') : exact_.whole;
  return decimals == 0 ? whole : whole + point_ + fraction;
}

Field FixedFieldModel::missing(double value, int32_t width, int32_t decimals, int64_t size) {
  const uint64_t bits = std::bit_cast<uint64_t>(value);
  const int code = static_cast<uint8_t>(-(bits >> 40 & 0xFF));
  char shown = '.';
  if (code == 1) shown = '_';
  if (code >= 3 && code <= 28) shown = static_cast<char>(code + 0x3E);
  const auto length = static_cast<int>(std::min<int64_t>(reports_ ? std::max(width, 1) : 1, size));
  if (length == 0) return {VX_E_TRUNCATED, ""};
  std::string text(static_cast<size_t>(length), ' ');
  int at = width - decimals - 1;
  if (at < 0 || at >= length) at = length - 1;
  text[static_cast<size_t>(at)] = shown;
  return {0, text};
}

Field FixedFieldModel::in_exponent_form(VXStatus status) {
  const Exponent got = exponent(magnitude_, room_, 0);
  if (!got.fits) return stars(VX_E_TRUNCATED);
  return done(status, (negative_ ? "-" : "") + got.text);
}

/// `digits` 0: as many as the room holds, without trailing zeros.
FixedFieldModel::Exponent FixedFieldModel::exponent(double value, int room, int digits) {
  const bool automatic = digits == 0;

  // m in [0.1, 1) and k with value = m * 10^k
  int binary;
  std::frexp(value, &binary);
  int k = binary * 77 / 256;
  double m = value;
  if (k > 307) m = m / power(307) / power(k - 307);
  else if (k > 0) m /= power(k);
  else if (k < -307) m = m * power(307) * power(-k - 307);
  else m *= power(-k);
  if (value == 0) k = 1;
  while (m != 0 && m < 0.1) {
    m *= 10;
    --k;
  }
  while (m >= 1) {
    m *= 0x1.999999999999bp-4;
    ++k;
  }

  // How many digits fit with `before` of them before the point.
  const auto capacity = [&](int before) {
    const int units = room - static_cast<int>(exponent_text(k - before, automatic).size());
    const int with_point = units - static_cast<int>(point_.size());
    if (before == 0 || with_point > before) return with_point;
    return units >= before ? before : 0;
  };
  const int asked = automatic ? room : digits;
  int before = 1;
  const auto arrange = [&] {
    before = 1;
    if (asked >= 2 && capacity(1) < 2) {
      // Two digits before the point need none; none before it may make the exponent shorter.
      for (const int other : {2, 0}) {
        if (capacity(other) > capacity(before)) before = other;
      }
    }
    digits = std::min(asked, capacity(before));
    return digits > 0;
  };
  if (!arrange()) return {false, ""};
  if (m != 0) {
    if (digits < 15) m += half(digits);
    m *= 0x1.0000000000008p+0;
    if (m >= 1) {
      m *= 0x1.999999999999bp-4;
      ++k;
      if (!arrange()) return {false, ""};
    }
  }
  exact_.expand(m);
  std::string text = exact_.fraction.substr(0, static_cast<size_t>(std::min(digits, mantissa_digits)));
  text.erase(text.find_last_not_of('0') + 1);
  if (text.size() < 2 && capacity(1) > 0) before = 1;  // none was won
  const int least = !automatic && digits > mantissa_digits ? digits : std::max(before, 1);
  if (static_cast<int>(text.size()) < least) text.resize(static_cast<size_t>(least), '0');
  if (static_cast<int>(text.size()) > before) text.insert(static_cast<size_t>(before), point_);
  text += exponent_text(value == 0 ? 0 : k - before, automatic);
  if (!automatic && negative_) text.insert(0, 1, '-');
  const int most = automatic ? room : field_;
  return {static_cast<int>(text.size()) <= most, text};
}

/// Sign, padding and, when `grouped`, separators: the text in the whole field, or false when they do not fit.
bool FixedFieldModel::lay_out(std::string* text, bool grouped) {
  std::string body = *text, sign;
  if (body[0] == '-') {
    sign = "-";
    body.erase(0, 1);
  } else if (flags_ & NLS_FORMAT_PLUS) {
    sign = "+";
  } else if ((flags_ & NLS_FORMAT_BLANK) && !(flags_ & (NLS_FORMAT_LEFT | NLS_FORMAT_ZERO_PAD))) {
    sign = " ";
  }
  if (grouped) {
    size_t digits = 0;
    while (digits < body.size() && body[digits] >= '0' && body[digits] <= '9') ++digits;
    for (size_t group = 0, at = digits;; ++group) {
      const int length = conventions_.groups[std::min(group, conventions_.groups.size() - 1)];
      if (length == 0) return false;
      if (length < 0 || at <= static_cast<size_t>(length)) break;
      at -= static_cast<size_t>(length);
      body.insert(at, separator_);
    }
  }
  const auto most = static_cast<size_t>(field_);
  if (sign.size() + body.size() > most) return false;
  const size_t padding = most - sign.size() - body.size();
  if (flags_ & NLS_FORMAT_LEFT) *text = sign + body + std::string(padding, ' ');
  else if (flags_ & NLS_FORMAT_ZERO_PAD) *text = sign + std::string(padding, '0') + body;
  else *text = std::string(padding, ' ') + sign + body;
  return true;
}

Field FixedFieldModel::done(VXStatus status, const std::string& text) {
  // 9
  std::string shown = text;
  const bool grouped = reports_ && (flags_ & NLS_FORMAT_GROUP);
  if (status == 0 && !lay_out(&shown, grouped)) {
    status = VX_E_GROUPING;
    if (grouped) lay_out(&shown, false);
  }
  if (shown.size() < static_cast<size_t>(field_)) shown.insert(0, static_cast<size_t>(field_) - shown.size(), ' ');
  std::string utf8;
  for (size_t at = 0; at < shown.size();) {
    if (shown[at] == '\1') {
      utf8 += conventions_.point;
      at += point_.size();
    } else if (shown[at] == '\2') {
      utf8 += conventions_.separator;
      at += separator_.size();
    } else {
      utf8 += shown[at++];
    }
  }
  return {status, utf8};
}

}  // namespace vxtest
