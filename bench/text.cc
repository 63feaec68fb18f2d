// UTF-8, UTF-16 and UTF-32 over whole buffers, and counting.
#include <unicode/ustring.h>
#include <unistr.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "bench/texts.h"

using namespace vxbench;

namespace {

using Utf32 = std::u32string;
using Utf16 = std::u16string;

const uint8_t* bytes_of(const auto& text) { return reinterpret_cast<const uint8_t*>(text.data()); }
int64_t length_of(const auto& text) { return static_cast<int64_t>(text.size() * sizeof(text[0])); }
UChar32* code_points(auto* text) { return reinterpret_cast<UChar32*>(text); }

Utf32 utf32_of(const std::string& text) {
  Utf32 units(text.size(), 0);
  int64_t written = 0;
  const VXStatus status = ConvertToUTF32(bytes_of(text), length_of(text), reinterpret_cast<uint8_t*>(units.data()),
                                         length_of(units), &written, UTF8_UTF32, COPY_UTF32_SWAP);
  require(status == 0, "a text of the benchmark is not UTF-8");
  units.resize(static_cast<size_t>(written) / 4);
  return units;
}

Utf16 utf16_of(const std::string& text) {
  Utf16 units(text.size(), 0);
  int32_t length = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                static_cast<int32_t>(text.size()), &error);
  require(U_SUCCESS(error), "a text of the benchmark is not UTF-8");
  units.resize(static_cast<size_t>(length));
  return units;
}

/// Room that begins at a cache line, for every contender alike.
struct Room {
  explicit Room(size_t bytes) : bytes_(bytes), memory_(new (std::align_val_t{64}) uint8_t[bytes]{}) {}
  ~Room() { ::operator delete[](memory_, std::align_val_t{64}); }
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;
  uint8_t* data() const { return memory_; }
  size_t size() const { return bytes_; }

 private:
  size_t bytes_;
  uint8_t* memory_;
};

/// Slices of one kind and size in the three forms, and room for any of them.
struct Material {
  std::vector<std::string> utf8;
  std::vector<Utf16> utf16;
  std::vector<Utf32> utf32;
  Room between, out;

  Material(const Kind& kind, size_t bytes)
      : utf8(slices_of(kind, bytes)), between(4 * bytes + 64), out(4 * bytes + 64) {
    for (const std::string& text : utf8) {
      utf16.push_back(utf16_of(text));
      utf32.push_back(utf32_of(text));
    }
  }
  const auto& slice(const auto& all, size_t i) const { return all[i % all.size()]; }
};

using Shared = std::shared_ptr<Material>;

int64_t to_utf32(const auto& text, Room& out, VXDecoder decoder) {
  int64_t written = 0;
  ConvertToUTF32(bytes_of(text), length_of(text), out.data(), static_cast<int64_t>(out.size()), &written, decoder,
                 COPY_UTF32_SWAP);
  return written;
}

int64_t from_utf32(const uint8_t* text, int64_t length, Room& out, VXEncoder encoder) {
  int64_t written = 0;
  ConvertFromUTF32(text, length, out.data(), static_cast<int64_t>(out.size()), &written, encoder, Byte2DWord);
  return written;
}

int32_t room_of(const Room& out, size_t unit) { return static_cast<int32_t>(out.size() / unit); }

int64_t by_mbstowcs(const Shared& m, size_t i) {
  return static_cast<int64_t>(
      mbstowcs(reinterpret_cast<wchar_t*>(m->out.data()), m->slice(m->utf8, i).c_str(), m->out.size() / 4));
}

int64_t by_unistring(const Shared& m, size_t i) {
  const Utf32& text = m->slice(m->utf32, i);
  size_t length = m->out.size();
  u32_to_u8(reinterpret_cast<const uint32_t*>(text.data()), text.size(), m->out.data(), &length);
  return static_cast<int64_t>(length);
}

int64_t by_wcstombs(const Shared& m, size_t i) {
  return static_cast<int64_t>(wcstombs(reinterpret_cast<char*>(m->out.data()),
                                       reinterpret_cast<const wchar_t*>(m->slice(m->utf32, i).c_str()), m->out.size()));
}

int64_t to_utf32_by_unistring(const Shared& m, size_t i) {
  const std::string& text = m->slice(m->utf8, i);
  size_t length = m->out.size() / 4;
  u8_to_u32(bytes_of(text), text.size(), reinterpret_cast<uint32_t*>(m->out.data()), &length);
  return static_cast<int64_t>(length);
}

std::string title(const char* what, const Kind& kind, const Size& size) {
  return std::string(what) + ", " + kind.title + ", " + size.title;
}

void utf8_and_utf32(const Kind& kind, const Size& size, double to, double from) {
  const auto m = std::make_shared<Material>(kind, size.bytes);
  const std::string suffix = std::string("-") + kind.id + "-" + size.id;
  const auto bytes = static_cast<int64_t>(size.bytes);
  Row("utf8-to-utf32" + suffix, title("UTF-8 to UTF-32", kind, size), {times(to), bytes})
      .ours([m](size_t i) { return to_utf32(m->slice(m->utf8, i), m->out, UTF8_UTF32); })
      .peer("glibc mbstowcs", [m](size_t i) { return by_mbstowcs(m, i); })
      .peer("libunistring u8_to_u32", [m](size_t i) { return to_utf32_by_unistring(m, i); });
  Row("utf32-to-utf8" + suffix, title("UTF-32 to UTF-8", kind, size), {times(from), bytes})
      .ours([m](size_t i) {
        const Utf32& text = m->slice(m->utf32, i);
        return from_utf32(bytes_of(text), length_of(text), m->out, UTF32_UTF8);
      })
      .peer("libunistring u32_to_u8", [m](size_t i) { return by_unistring(m, i); })
      .peer("glibc wcstombs", [m](size_t i) { return by_wcstombs(m, i); });
}

void utf16(const Kind& kind, const Size& size, double from_utf8) {
  const auto m = std::make_shared<Material>(kind, size.bytes);
  const std::string suffix = std::string("-") + kind.id + "-" + size.id;
  const auto bytes = static_cast<int64_t>(size.bytes);
  Row("utf8-to-utf16" + suffix, title("UTF-8 to UTF-16, two driver calls", kind, size), {times(from_utf8), bytes})
      .ours([m](size_t i) {
        const int64_t wide = to_utf32(m->slice(m->utf8, i), m->between, UTF8_UTF32);
        return from_utf32(m->between.data(), wide, m->out, UTF32_UTF16s);
      })
      .peer("ICU u_strFromUTF8", [m](size_t i) {
        const std::string& text = m->slice(m->utf8, i);
        int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8(reinterpret_cast<UChar*>(m->out.data()), room_of(m->out, 2), &length, text.data(),
                      static_cast<int32_t>(text.size()), &error);
        return length;
      });
  Row("utf16-to-utf8" + suffix, title("UTF-16 to UTF-8, two driver calls", kind, size), {times(3.5), bytes})
      .ours([m](size_t i) {
        const int64_t wide = to_utf32(m->slice(m->utf16, i), m->between, UTF16_UTF32_SWAP);
        return from_utf32(m->between.data(), wide, m->out, UTF32_UTF8);
      })
      .peer("ICU u_strToUTF8", [m](size_t i) {
        const Utf16& text = m->slice(m->utf16, i);
        int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strToUTF8(reinterpret_cast<char*>(m->out.data()), room_of(m->out, 1), &length, text.data(),
                    static_cast<int32_t>(text.size()), &error);
        return length;
      });
  Row("utf32-to-utf16" + suffix, title("UTF-32 to UTF-16", kind, size), {times(12), bytes})
      .ours([m](size_t i) {
        const Utf32& text = m->slice(m->utf32, i);
        return from_utf32(bytes_of(text), length_of(text), m->out, UTF32_UTF16s);
      })
      .peer("ICU u_strFromUTF32", [m](size_t i) {
        const Utf32& text = m->slice(m->utf32, i);
        int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF32(reinterpret_cast<UChar*>(m->out.data()), room_of(m->out, 2), &length,
                       reinterpret_cast<const UChar32*>(text.data()), static_cast<int32_t>(text.size()), &error);
        return length;
      });
  Row("utf16-to-utf32" + suffix, title("UTF-16 to UTF-32", kind, size), {times(8), bytes})
      .ours([m](size_t i) { return to_utf32(m->slice(m->utf16, i), m->out, UTF16_UTF32_SWAP); })
      .peer("ICU u_strToUTF32", [m](size_t i) {
        const Utf16& text = m->slice(m->utf16, i);
        int32_t length = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strToUTF32(code_points(m->out.data()), room_of(m->out, 4), &length, text.data(),
                     static_cast<int32_t>(text.size()), &error);
        return length;
      });
}

void counting(const Kind& kind, const Size& size) {
  const auto m = std::make_shared<Material>(kind, size.bytes);
  const std::string suffix = std::string("-") + kind.id + "-" + size.id;
  const auto bytes = static_cast<int64_t>(size.bytes);
  Row("count-characters" + suffix, title("count characters", kind, size), {times(8), bytes})
      .ours([m](size_t i) {
        const std::string& text = m->slice(m->utf8, i);
        return vxzsu8NumChars(bytes_of(text), length_of(text));
      })
      .peer("count_if, -O3",
            [m](size_t i) {
              const std::string& text = m->slice(m->utf8, i);
              return std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
            })
      .peer("libunistring u8_mbsnlen", [m](size_t i) {
        const std::string& text = m->slice(m->utf8, i);
        return static_cast<int64_t>(u8_mbsnlen(bytes_of(text), text.size()));
      });
  Row("utf8-length" + suffix, title("UTF-8 length of UTF-32", kind, size), {times(2.5), bytes})
      .ours([m](size_t i) {
        const Utf32& text = m->slice(m->utf32, i);
        return GET_UTF8_LEN_FROM_VXCHAR(reinterpret_cast<const VXChar*>(text.data()),
                                        static_cast<int64_t>(text.size()));
      })
      .peer("plain loop, -O3", [m](size_t i) {
        const Utf32& text = m->slice(m->utf32, i);
        int64_t length = 0;
        for (const char32_t c : text) length += 1 + (c >= 0x80) + (c >= 0x800) + (c >= 0x10000);
        return length;
      });
}

}  // namespace

int main(int argc, char** argv) {
  require(std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr, "the system has no locale C.UTF-8");
  static constexpr Size short_text = {"64", "64 bytes", 64}, page = {"4k", "4 KiB", 4096},
                        large = {"1m", "1 MiB", 1 << 20};
  // Rates to reach, in the order of `kinds`.
  static constexpr double to_utf32_rates[] = {10, 6, 6.5, 5, 5}, from_utf32_rates[] = {8.5, 7, 10, 5, 5},
                          to_utf16_rates[] = {9, 4, 5, 3, 4};
  for (size_t k = 0; k < std::size(kinds); ++k) {
    utf8_and_utf32(kinds[k], short_text, 2, 2);
    utf8_and_utf32(kinds[k], page, to_utf32_rates[k], from_utf32_rates[k]);
    utf8_and_utf32(kinds[k], large, to_utf32_rates[k], from_utf32_rates[k]);
    utf16(kinds[k], page, to_utf16_rates[k]);
    counting(kinds[k], page);
  }
  return run("Text between UTF-8, UTF-16 and UTF-32", argc, argv);
}
