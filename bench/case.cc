// Upper and lower case, and comparing.
#include <unicode/ucasemap.h>
#include <utf8proc.h>
#include <wchar.h>

#include <memory>

#include "bench/texts.h"

using namespace vxbench;

namespace {

constexpr size_t page = 4096;

uint8_t* bytes_of(std::string& text) { return reinterpret_cast<uint8_t*>(text.data()); }

struct Texts {
  std::vector<std::string> slices;
  std::string out = std::string(2 * page, ' ');
  explicit Texts(const Kind& kind) : slices(slices_of(kind, page)) {}
  std::string& at(size_t i) { return slices[i % slices.size()]; }
};

using ChangeCase = VXStatus(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);

template <ChangeCase change>
int64_t by_library(Texts& texts, size_t i) {
  std::string& text = texts.at(i);
  int64_t written = 0;
  change(bytes_of(text), page, bytes_of(texts.out), static_cast<int64_t>(texts.out.size()), &written);
  return written;
}

template <char first, int delta>
void plain_loop(const std::string& text, std::string& out) {
  const char* const in = text.data();
  char* const to = out.data();
  for (size_t n = 0; n < page; ++n) {
    to[n] = static_cast<char>(in[n] + (static_cast<unsigned char>(in[n] - first) < 26 ? delta : 0));
  }
}

using ByIcu = int32_t(const UCaseMap*, char*, int32_t, const char*, int32_t, UErrorCode*);

template <ByIcu change>
int64_t by_icu(Texts& texts, const UCaseMap* map, size_t i) {
  const std::string& text = texts.at(i);
  UErrorCode error = U_ZERO_ERROR;
  return change(map, texts.out.data(), static_cast<int32_t>(texts.out.size()), text.data(),
                static_cast<int32_t>(text.size()), &error);
}

template <utf8proc_int32_t map(utf8proc_int32_t)>
int64_t by_utf8proc(Texts& texts, size_t i) {
  const std::string& text = texts.at(i);
  const auto* in = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  auto* out = reinterpret_cast<utf8proc_uint8_t*>(texts.out.data());
  for (utf8proc_ssize_t left = page; left > 0;) {
    utf8proc_int32_t c;
    const utf8proc_ssize_t taken = utf8proc_iterate(in, left, &c);
    if (taken <= 0) break;
    out += utf8proc_encode_char(map(c), out);
    in += taken;
    left -= taken;
  }
  return reinterpret_cast<char*>(out) - texts.out.data();
}

}  // namespace

int main(int argc, char** argv) {
  vxbench::locale("en_US");  // a host that offers the case of characters, as in any real program
  UErrorCode error = U_ZERO_ERROR;
  UCaseMap* const map = ucasemap_open("", 0, &error);
  require(U_SUCCESS(error), "ICU has no case map");

  const auto ascii = std::make_shared<Texts>(kinds[0]), latin = std::make_shared<Texts>(kinds[1]);
  Row("lower-ascii-4k", "lower case, ASCII, 4 KiB", {.reach = 0.6})
      .ours([=](size_t i) { return by_library<vxzsu8Lower2>(*ascii, i); })
      .peer("plain loop, -O3", [=](size_t i) { plain_loop<'A', 32>(ascii->at(i), ascii->out); });
  Row("upper-ascii-4k", "upper case, ASCII, 4 KiB", {.reach = 0.6})
      .ours([=](size_t i) { return by_library<vxzsu8Upper2>(*ascii, i); })
      .peer("plain loop, -O3", [=](size_t i) { plain_loop<'a', -32>(ascii->at(i), ascii->out); });
  Row("lower-latin-4k", "lower case, Latin mix, 4 KiB", {.reach = 0.5})
      .ours([=](size_t i) { return by_library<vxzsu8Lower2>(*latin, i); })
      .peer("ICU ucasemap_utf8ToLower", [=](size_t i) { return by_icu<ucasemap_utf8ToLower>(*latin, map, i); })
      .peer("utf8proc, a character at a time", [=](size_t i) { return by_utf8proc<utf8proc_tolower>(*latin, i); });
  Row("upper-latin-4k", "upper case, Latin mix, 4 KiB", {.reach = 0.5})
      .ours([=](size_t i) { return by_library<vxzsu8Upper2>(*latin, i); })
      .peer("ICU ucasemap_utf8ToUpper", [=](size_t i) { return by_icu<ucasemap_utf8ToUpper>(*latin, map, i); })
      .peer("utf8proc, a character at a time", [=](size_t i) { return by_utf8proc<utf8proc_toupper>(*latin, i); });

  // Pairs of texts that differ in their last unit.
  struct Pair {
    VXChar a[256], b[256];
  };
  const auto pairs = std::make_shared<std::vector<Pair>>();
  Random random = random_of("compare");
  for (int n = 0; n < 64; ++n) {
    Pair pair;
    for (size_t k = 0; k < 256; ++k) pair.a[k] = pair.b[k] = static_cast<VXChar>(between(random, 'a', 'z'));
    pair.b[255] = '.';
    pairs->push_back(pair);
  }
  VXLocale* const locale = vxbench::locale("en_US");
  Row("compare-256", "compare 256 units that differ at the end", {.reach = 1.1})
      .ours([=](size_t i) {
        const Pair& pair = (*pairs)[i % 64];
        return NLSSSOrderCompare(locale, pair.a, 256, pair.b, 256, 0);
      })
      .peer("wmemcmp", [=](size_t i) {
        const Pair& pair = (*pairs)[i % 64];
        return wmemcmp(reinterpret_cast<const wchar_t*>(pair.a), reinterpret_cast<const wchar_t*>(pair.b), 256);
      });
  return run("Case and order", argc, argv);
}
