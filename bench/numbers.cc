// Numbers, written and read.
#include <absl/strings/numbers.h>
#include <double-conversion/double-conversion.h>
#include <fast_float/fast_float.h>
#include <fmt/compile.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <locale>
#include <memory>
#include <sstream>
#include <string>

#include "bench/short_texts.h"

using namespace vxbench;

namespace {

VXLocale* english() {
  static VXLocale* const locale = vxbench::locale("en_US");
  return locale;
}

/// Commas between groups of three, without a locale of the system.
struct Commas : std::numpunct<char> {
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

const std::locale& with_commas() {
  static const std::locale locale(std::locale::classic(), new Commas);
  return locale;
}

struct Out {
  char bytes[64];
  VXChar units[64];
  uint8_t* utf8() { return reinterpret_cast<uint8_t*>(bytes); }
};

std::shared_ptr<Out> make_out() { return std::make_shared<Out>(); }

template <class T>
using Values = std::shared_ptr<std::vector<T>>;

template <class T, class Make>
Values<T> shared_values(std::string_view seed, Make make) {
  return std::make_shared<std::vector<T>>(values<T>(seed, make));
}

/// Up to 100,000 of either sign, to a thousandth.
double amount_of(Random& random) { return static_cast<double>(between(random, -100'000'000, 100'000'000)) / 1000; }

/// Up to seven digits, up to four of them behind the point.
double short_of(Random& random) {
  const double divisors[] = {1, 10, 100, 1000, 10000};
  return static_cast<double>(between(random, 0, 9'999'999)) / divisors[random() % 5];
}

/// 53 random bits, from 1e-25 to 1e30.
double full_of(Random& random) {
  return static_cast<double>(random() >> 11) * std::pow(10.0, static_cast<double>(between(random, -25, 14)));
}

/// Every length in bits alike, either sign.
template <class Integer>
Integer integer_of(Random& random) {
  constexpr auto bits = static_cast<int>(8 * sizeof(Integer));
  return static_cast<Integer>(static_cast<Integer>(random() >> (64 - bits)) >> random() % (bits - 1));
}

std::string grouped(std::string text) {
  const size_t sign = text.front() == '-' ? 1 : 0;
  size_t at = std::min(text.find('.'), text.size());
  while (at > sign + 3) text.insert(at -= 3, 1, ',');
  return text;
}

void write_fixed() {
  const auto amounts = shared_values<double>("amounts", amount_of);
  const auto out = make_out();
  const auto utf8 = [=](uint32_t flags) {
    return [=](size_t i) {
      int64_t length = 0;
      NLSDoubleFormatUWithExOpts(english(), 12, 2, NLS_FORMAT_FIXED | flags, out->utf8(), 64, &length, nullptr,
                                 (*amounts)[i]);
      return length;
    };
  };
  const auto utf32 = [=](uint32_t flags) {
    return [=](size_t i) {
      int64_t length = 0;
      NLSDoubleFormat(english(), 12, 2, NLS_FORMAT_FIXED | flags, out->units, 64, &length, (*amounts)[i]);
      return length;
    };
  };
  /// Right-aligned in the field, as the others do it.
  const auto aligned = [=](const char* text, size_t length) {
    std::memset(out->bytes, ' ', 12);
    std::memcpy(out->bytes + 12 - length, text, length);
    return out->bytes + 12;
  };
  const auto by_double_conversion = [=](size_t i) {
    static const auto& converter = double_conversion::DoubleToStringConverter::EcmaScriptConverter();
    char text[64];
    double_conversion::StringBuilder builder(text, sizeof text);
    converter.ToFixed((*amounts)[i], 2, &builder);
    const auto length = static_cast<size_t>(builder.position());
    builder.Finalize();
    return aligned(text, length);
  };
  const auto by_to_chars = [=](size_t i) {
    char text[64];
    const char* const end = std::to_chars(text, text + sizeof text, (*amounts)[i], std::chars_format::fixed, 2).ptr;
    return aligned(text, static_cast<size_t>(end - text));
  };
  const auto by_fmt = [=](size_t i) { return fmt::format_to(out->bytes, FMT_COMPILE("{:12.2f}"), (*amounts)[i]); };
  const auto by_fmt_grouped = [=](size_t i) {
    return fmt::format_to(out->bytes, with_commas(), "{:.2Lf}", (*amounts)[i]);
  };
  for (size_t i = 0; i < 100; ++i) {
    if (std::fmod(std::abs((*amounts)[i]) * 1000, 10) > 4.9) continue;  // rounded up, ties among them
    const std::string wanted(out->bytes, by_fmt_grouped(i));
    utf8(NLS_FORMAT_GROUP)(i);
    require(std::string(out->bytes, 12).ends_with(wanted), "contenders write different fields");
  }
  for (const bool is_utf32 : {false, true}) {
    const std::string suffix = is_utf32 ? "-utf32" : "";
    const auto row = [&](const std::string& id, const char* title, uint32_t flags, double reach) {
      Row made(id + suffix, is_utf32 ? "the same in UTF-32" : title, {.reach = reach});
      if (is_utf32) made.ours(utf32(flags));
      else made.ours(utf8(flags));
      return made;
    };
    row("write-field", "double in width 12, 2 decimals", 0, 0.5)
        .peer("double-conversion ToFixed", by_double_conversion)
        .peer("to_chars", by_to_chars)
        .peer("fmt, pattern compiled in", by_fmt);
    row("write-field-grouped", "double in width 12, 2 decimals, grouped", NLS_FORMAT_GROUP, 0.15)
        .peer("fmt {:.2Lf}, without the field", by_fmt_grouped);
  }
}

void write_general() {
  const auto row = [](const char* id, const char* title, double reach, const Values<double>& numbers) {
    const auto out = make_out();
    const auto utf8 = [=](size_t i) {
      int64_t length = 0;
      NLSDoubleFormatUWithExOpts(english(), 0, 15, NLS_FORMAT_GENERAL, out->utf8(), 64, &length, nullptr,
                                 (*numbers)[i]);
      return length;
    };
    const auto utf32 = [=](size_t i) {
      int64_t length = 0;
      NLSDoubleFormat(english(), 0, 15, NLS_FORMAT_GENERAL, out->units, 64, &length, (*numbers)[i]);
      return length;
    };
    const auto by_to_chars = [=](size_t i) {
      return std::to_chars(out->bytes, out->bytes + 64, (*numbers)[i], std::chars_format::general, 15).ptr;
    };
    const auto by_fmt = [=](size_t i) { return fmt::format_to(out->bytes, FMT_COMPILE("{:.15g}"), (*numbers)[i]); };
    const auto by_double_conversion = [=](size_t i) {
      static const auto& converter = double_conversion::DoubleToStringConverter::EcmaScriptConverter();
      double_conversion::StringBuilder builder(out->bytes, 64);
      converter.ToPrecision((*numbers)[i], 15, &builder);
      return builder.Finalize();
    };
    Row(id, title, {.reach = reach})
        .ours(utf8)
        .peer("to_chars", by_to_chars)
        .peer("fmt, pattern compiled in", by_fmt)
        .peer("double-conversion ToPrecision", by_double_conversion);
    Row(std::string(id) + "-utf32", "the same in UTF-32", {.reach = reach}).ours(utf32).peer("to_chars", by_to_chars);
  };
  row("write-15-short", "15 digits, short values", 0.5, shared_values<double>("short", short_of));
  row("write-15-full", "15 digits, full mantissas", 0.75, shared_values<double>("full", full_of));
}

template <class Integer, auto to_utf8, auto to_utf32>
void write_integer(const std::string& name, double reach, double reach_grouped) {
  const auto integers = shared_values<Integer>("integers", integer_of<Integer>);
  const auto out = make_out();
  const auto utf8 = [=](uint32_t flags) {
    return [=](size_t i) {
      int64_t length = 0;
      to_utf8(english(), (*integers)[i], 0, 0, flags, out->utf8(), 64, &length);
      return length;
    };
  };
  const auto utf32 = [=](uint32_t flags) {
    return [=](size_t i) {
      int64_t length = 0;
      to_utf32(english(), (*integers)[i], 0, 0, flags, out->units, 64, &length);
      return length;
    };
  };
  const auto by_to_chars = [=](size_t i) { return std::to_chars(out->bytes, out->bytes + 64, (*integers)[i]).ptr; };
  const auto by_fmt = [=](size_t i) { return fmt::format_to(out->bytes, FMT_COMPILE("{}"), (*integers)[i]); };
  const auto stream = std::make_shared<std::ostringstream>();
  stream->imbue(with_commas());
  const auto by_stream = [=](size_t i) {
    stream->seekp(0);
    *stream << (*integers)[i];
    return static_cast<int64_t>(stream->tellp());
  };
  const auto by_fmt_grouped = [=](size_t i) {
    return fmt::format_to(out->bytes, with_commas(), "{:L}", (*integers)[i]);
  };
  require(by_stream(11) == utf8(NLS_FORMAT_GROUP)(11), "contenders write different integers");
  Row("write-" + name, "write " + name, {.reach = reach})
      .ours(utf8(0))
      .peer("to_chars", by_to_chars)
      .peer("fmt, pattern compiled in", by_fmt);
  Row("write-" + name + "-utf32", "the same in UTF-32", {.reach = reach}).ours(utf32(0)).peer("to_chars", by_to_chars);
  Row("write-" + name + "-grouped", "write " + name + ", grouped", {.reach = reach_grouped})
      .ours(utf8(NLS_FORMAT_GROUP))
      .peer("ostringstream", by_stream)
      .peer("fmt {:L}", by_fmt_grouped);
  Row("write-" + name + "-grouped-utf32", "the same in UTF-32", {.reach = reach_grouped})
      .ours(utf32(NLS_FORMAT_GROUP))
      .peer("ostringstream", by_stream);
}

template <class Make>
Texts texts_of(std::string_view seed, Make make) {
  ShortTexts texts;
  Random random = random_of(seed);
  for (size_t i = 0; i < value_count; ++i) texts.add(make(random));
  return std::move(texts).finished();
}

/// The text without its commas, in the caller's area.
std::string_view stripped(std::string_view text, char* area) {
  char* end = area;
  for (const char c : text) {
    if (c != ',') *end++ = c;
  }
  return {area, static_cast<size_t>(end - area)};
}

void read_double(const char* id, const char* title, double reach, bool is_grouped, const Texts& texts) {
  const auto utf8 = [=](size_t i) {
    double value = 0;
    int64_t consumed = 0;
    const auto text = texts->utf8(i);
    NLSBufToDoubleU(english(), text.at, static_cast<int32_t>(text.size), &value, &consumed);
    return value;
  };
  const auto utf32 = [=](size_t i) {
    double value = 0;
    int64_t consumed = 0;
    const auto text = texts->utf32(i);
    NLSBufToDouble(english(), text.at, static_cast<int32_t>(text.size), &value, &consumed);
    return value;
  };
  const auto by = [=](auto from_chars) {
    return [=](size_t i) {
      double value = 0;
      char area[64];
      const std::string_view whole = texts->view(i), text = is_grouped ? stripped(whole, area) : whole;
      from_chars(text.data(), text.data() + text.size(), value);
      return value;
    };
  };
  const auto fast_float = [](const char* at, const char* end, double& value) {
    fast_float::from_chars(at, end, value);
  };
  const auto standard = [](const char* at, const char* end, double& value) { std::from_chars(at, end, value); };
  const std::string strip = is_grouped ? "strip, " : "";
  require(std::abs(utf8(4) / by(fast_float)(4) - 1) < 1e-15, "contenders read different numbers");
  Row(id, title, {.reach = reach})
      .ours(utf8)
      .peer(strip + "fast_float", by(fast_float))
      .peer(strip + "from_chars", by(standard));
  Row(std::string(id) + "-utf32", "the same in UTF-32", {.reach = reach})
      .ours(utf32)
      .peer(strip + "fast_float", by(fast_float));
}

template <class Integer, auto from_utf8, auto from_utf32>
void read_integer(const std::string& name, double reach, double reach_grouped) {
  for (const bool is_grouped : {false, true}) {
    const auto texts = texts_of("integers", [=](Random& random) {
      const std::string digits = std::to_string(integer_of<Integer>(random));
      return is_grouped ? grouped(digits) : digits;
    });
    const auto read = [=](auto function, auto text_at) {
      return [=](size_t i) {
        Integer value = 0;
        uint64_t consumed = 0;
        const auto text = text_at(i);
        function(english(), text.at, text.length(), 0, &value, &consumed);
        return value;
      };
    };
    const auto utf8 = read(from_utf8, [=](size_t i) { return texts->utf8(i); });
    const auto utf32 = read(from_utf32, [=](size_t i) { return texts->utf32(i); });
    const auto by_from_chars = [=](size_t i) {
      Integer value = 0;
      char area[64];
      const std::string_view whole = texts->view(i), text = is_grouped ? stripped(whole, area) : whole;
      std::from_chars(text.data(), text.data() + text.size(), value);
      return value;
    };
    require(utf8(6) == by_from_chars(6) && utf32(6) == by_from_chars(6), "contenders read different integers");
    const std::string id = "read-" + name + (is_grouped ? "-grouped" : "");
    const std::string title = "read " + name + (is_grouped ? ", grouped" : "");
    const std::string strip = is_grouped ? "strip, " : "";
    Row row(id, title, {.reach = is_grouped ? reach_grouped : reach});
    row.ours(utf8).peer(strip + "from_chars", by_from_chars);
    if (!is_grouped) {
      row.peer("absl::SimpleAtoi", [=](size_t i) {
        Integer value = 0;
        return absl::SimpleAtoi(absl::string_view(texts->view(i).data(), texts->view(i).size()), &value) ? value : 0;
      });
    }
    Row(id + "-utf32", "the same in UTF-32", {.reach = is_grouped ? reach_grouped : reach})
        .ours(utf32)
        .peer(strip + "from_chars", by_from_chars);
  }
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): without memory there is nothing to measure
int main(int argc, char** argv) {
  write_fixed();
  write_general();
  write_integer<int32_t, NLSIntFormatU, NLSIntFormat>("int32", 1.0, 0.35);
  write_integer<int64_t, NLSLongFormatU, NLSLongFormat>("int64", 0.8, 0.3);
  read_double("read-short", "read a double: short", 1.0, false,
              texts_of("short", [](Random& random) { return fmt::format("{}", short_of(random)); }));
  read_double("read-17", "read a double: 17 digits", 1.1, false, texts_of("17 digits", [](Random& random) {
                return fmt::format("{:.17g}", static_cast<double>(random() >> 11) * 0x1p-40);
              }));
  read_double("read-exponent", "read a double: with an exponent", 1.2, false, texts_of("exponents", [](Random& random) {
                const double value = static_cast<double>(random() >> 11) *
                                     std::pow(10.0, static_cast<double>(between(random, -280, 280)));
                return fmt::format("{:.{}e}", value, random() % 12);
              }));
  read_double("read-grouped", "read a double: grouped", 1.1, true,
              texts_of("grouped", [](Random& random) { return grouped(fmt::format("{:.2f}", amount_of(random))); }));
  read_integer<int32_t, NLSBufToIntU, NLSBufToInt>("int32", 0.75, 0.9);
  read_integer<int64_t, NLSBufToLongU, NLSBufToLong>("int64", 0.75, 0.9);
  return run("numbers", argc, argv);
}
