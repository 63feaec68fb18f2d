// Every entry point that takes a text and its length, over texts of every small length and of more than 2^31 units,
// each ending at a page that nobody may touch. The texts are so plain that the right answer follows from their length.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/guard_page.h"
#include "tests/support/plain_locale.h"
#include "vxnls/locale.hpp"

namespace {

/// A text of `n` units: one unit again and again, then `tail`, then a page that nobody may touch. All of a long one but
/// its two ends lies on the same few pages many times over: it takes next to no memory, and what is written to one
/// place of it shows in others.
template <class Unit>
class Text {
 public:
  Text(int64_t n, char body, std::string_view tail) : n_(n), page_(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
    const size_t bytes = static_cast<size_t>(n) * sizeof(Unit), tile = bytes < 8 * page_ ? page_ : size_t{4} << 20;
    inner_ = (bytes + tile - 1) / tile * tile;
    const std::basic_string<Unit> units(tile / sizeof(Unit), static_cast<Unit>(body));
    const int file = memfd_create("text", 0);
    if (file < 0 || write(file, units.data(), tile) != static_cast<ssize_t>(tile)) std::abort();
    mapped_ = static_cast<uint8_t*>(mmap(nullptr, inner_ + page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (mapped_ == MAP_FAILED) std::abort();
    for (size_t at = 0; at < inner_; at += tile) {
      const bool of_its_own = at <= tile || at + tile == inner_;  // the text may begin at the end of the first
      void* const there = mmap(mapped_ + at, tile, PROT_READ | PROT_WRITE,
                               MAP_FIXED | (of_its_own ? MAP_PRIVATE : MAP_SHARED), file, 0);
      if (there == MAP_FAILED) std::abort();
    }
    close(file);
    end_ = reinterpret_cast<Unit*>(mapped_ + inner_);
    std::transform(tail.begin(), tail.end(), end_ - tail.size(), [](char c) { return static_cast<uint8_t>(c); });
  }
  ~Text() { munmap(mapped_, inner_ + page_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  Unit* begin() const { return end_ - n_; }

 private:
  int64_t n_;
  size_t page_, inner_;
  uint8_t* mapped_;
  Unit* end_;
};

vxtest::PlainLocale& locale() {
  static vxtest::PlainLocale made;
  made.locale.ops.NLSBufToIntmaxU = &NLSBufToIntmaxU;
  made.locale.ops.NLSBufToDoubleUWithOpts = &NLSBufToDoubleUWithOpts;
  return made;
}

/// One call over `n` units at `text`; whether the answer is right. A slow one, which looks at a unit at a time, meets
/// very long texts in long runs alone.
template <class Unit>
struct Row {
  const char* name;
  std::function<bool(Unit* text, int64_t n)> is_right;
  bool is_slow = false;
};
constexpr bool slow = true;
template <class Unit>
struct Table {
  char body;
  std::string_view tail;
  std::vector<Row<Unit>> rows;
};

/// The calls of a reader that takes 32-bit lengths get as many of the last units.
template <class Unit, class Read>
bool reads_double(Read read, Unit* text, int64_t n, double expected, VXStatus status = 0) {
  const int64_t length = std::min<int64_t>(n, INT32_MAX);
  double value = 0;
  int64_t consumed = -1;
  return read(locale().get(), text + (n - length), static_cast<int32_t>(length), &value, &consumed) == status &&
         value == expected && consumed == length;
}

template <class Unit, class Integer>
bool reads_seven(VXStatus (*read)(VXLocale*, const Unit*, int64_t, uint32_t, Integer*, uint64_t*), Unit* text,
                 int64_t n) {
  Integer value = 0;
  uint64_t consumed = 0;
  return read(locale().get(), text, n, 0, &value, &consumed) == 0 && value == 7 && consumed == static_cast<uint64_t>(n);
}

int64_t written_by(const std::function<VXStatus(int64_t*)>& write) {
  int64_t written = -1;
  return write(&written) == 0 ? written : -1;
}

using Utf8 = uint8_t;
Utf8* room() {
  static Utf8 bytes[64];
  return bytes;
}

const std::vector<Table<VXChar>>& wide_tables() {
  static const std::vector<Table<VXChar>> made = {
      {' ',
       "x",
       {
           {"vxzstrp", [](VXChar* t, int64_t n) { return vxzstrp(t, n) == n && vxzstrp(t, n - 1) == 0; }, slow},
           {"vxzspos", [](VXChar* t, int64_t n) { return vxzspos(t, n, 'x') == n - 1 && vxzspos(t, n - 1, 'x') == -1; },
            slow},
           {"vxzsndx", [](VXChar* t, int64_t n) { return vxzsndx(t, n, t + n - 1, 1) == n - 1; }, slow},
           {"vxzsndx, whole", [](VXChar* t, int64_t n) { return vxzsndx(t, n, t, n) == 0; }},
           {"vxzseqn", [](VXChar* t, int64_t n) { return vxzseqn(t, n, t, n) == 1 && vxzseqn(t, n, t, n - 1) == 0; },
            slow},
           {"vxzsncmp",
            [](VXChar* t, int64_t n) { return vxzsncmp(t, n, t, n) == 0 && vxzsncmp(t, n - 1, t, n) == -2; }, slow},
           {"vxzscat",
            [](VXChar* t, int64_t n) {
              VXChar out[3];
              return vxzscat(out, 3, 0xFFFF, 1, t, n) == std::min<int64_t>(n, 3);
            }},
           {"NLSSSOrderCompare",
            [](VXChar* t, int64_t n) {
              return NLSSSOrderCompare(nullptr, t, n, t, n - 1, 0) == 1 &&
                     NLSSSOrderCompare(nullptr, t, n - 1, t, 0, 1) == 0;
            },
            slow},
           {"qmzMemScan", [](VXChar* t, int64_t n) { return qmzMemScan(t, n, 'x') == n - 1; }, slow},
           {"qmzMemCmp", [](VXChar* t, int64_t n) { return qmzMemCmp(t, t, n) == 0; }},
           {"ConvertFromUTF32",
            [](VXChar* t, int64_t n) {
              const auto write = [&](int64_t* w) {
                return ConvertFromUTF32(reinterpret_cast<uint8_t*>(t), 4 * n, room(), 64, w, &UTF32_UTF8, &Byte2DWord);
              };
              return written_by(write) == std::min<int64_t>(n, 64);
            }},
           {"GET_UTF8_LEN_FROM_VXCHAR", [](VXChar* t, int64_t n) { return GET_UTF8_LEN_FROM_VXCHAR(t, n) == n; }},
           {"vxzstlo", [](VXChar* t, int64_t n) { return vxzstlo(t, n), t[n - 1] == 'x'; }, slow},
           {"vxzstup", [](VXChar* t, int64_t n) { return vxzstup(t, n), t[n - 1] == 'X'; }, slow},
           {"vxzstmax", [](VXChar* t, int64_t n) { return vxzstmax(t, n), t[n - 1] == 'x'; }, slow},
           {"vxzstmin", [](VXChar* t, int64_t n) { return vxzstmin(t, n), t[n - 1] == 'X'; }, slow},
           {"NLSBufToDate",
            [](VXChar* t, int64_t n) {
              uint32_t m, d, y;
              int64_t consumed;
              return NLSBufToDate(locale().get(), t, n, 1, &m, &d, &y, &consumed) == VX_E_NOMATCH;
            },
            slow},
           {"qmzMemSet", [](VXChar* t, int64_t n) { return qmzMemSet(t, ' ', n) == t && t[n - 1] == ' '; }, slow},
           {"qmzMemMove", [](VXChar* t, int64_t n) { return qmzMemMove(t, t + n / 2, n - n / 2) == t; }, slow},
           {"vxztchrv", [](VXChar* t, int64_t n) { return t[0] = 'a', vxztchrv(t, n), t[n - 1] == 'a'; }, slow},
       }},
      {'a',
       std::string_view("\0", 1),
       {{"qmzStrLen", [](VXChar* t, int64_t n) { return qmzStrLen(t) == n - 1; }, slow}}},
      {' ',
       "7",
       {
           {"NLSBufToIntmax", [](VXChar* t, int64_t n) { return reads_seven(NLSBufToIntmax, t, n); }, slow},
           {"NLSBufToUintmax", [](VXChar* t, int64_t n) { return reads_seven(NLSBufToUintmax, t, n); }, slow},
           {"NLSBufToDouble", [](VXChar* t, int64_t n) { return reads_double(NLSBufToDouble, t, n, 7); }, slow},
       }},
      {'0', "7", {{"NLSBufToInt", [](VXChar* t, int64_t n) { return reads_seven(NLSBufToInt, t, n); }, slow}}},
  };
  return made;
}

const std::vector<Table<Utf8>>& narrow_tables() {
  static const std::vector<Table<Utf8>> made = {
      {' ',
       "x",
       {
           {"UTF8_SLENB", [](Utf8* t, int64_t n) { return UTF8_SLENB(t, n) == n; }, slow},
           {"UTF8_BLENB", [](Utf8* t, int64_t n) { return UTF8_BLENB(t, n) == n; }},
           {"vxzsu8NumChars", [](Utf8* t, int64_t n) { return vxzsu8NumChars(t, n) == n; }},
           {"vxzsu8ByteLength", [](Utf8* t, int64_t n) { return vxzsu8ByteLength(t, n - 1) == n - 1; }, slow},
           {"vxzsu8StripBlanks",
            [](Utf8* t, int64_t n) { return vxzsu8StripBlanks(t, n) == n && vxzsu8StripBlanks(t, n - 1) == 0; }, slow},
           {"vxzsu8Index", [](Utf8* t, int64_t n) { return vxzsu8Index(t, n, 'x') == n - 1; }},
           {"vxzsu8Find", [](Utf8* t, int64_t n) { return vxzsu8Find(t, n, t + n - 1, 1) == n - 1; }},
           {"vxzsu8Copy", [](Utf8* t, int64_t n) { return vxzsu8Copy(t, n, room(), 64) == std::min<int64_t>(n, 64); }},
           {"vxzsu8Compare",
            [](Utf8* t, int64_t n) { return vxzsu8Compare(t, n, t, n) == 0 && vxzsu8Compare(t, n, t, n - 1) == 1; }},
           {"vxzsu8NormCompare",
            [](Utf8* t, int64_t n) {
              return vxzsu8NormCompare(t, n, t, n) == 0 && vxzsu8NormCompare(t, n - 1, t, n) == -2;
            },
            slow},
           {"vxzsu8NormEqual", [](Utf8* t, int64_t n) { return vxzsu8NormEqual(t, n, t, n) == 1; }, slow},
           {"vxzsu8Lower2, measuring",
            [](Utf8* t, int64_t n) {
              return written_by([&](int64_t* w) { return vxzsu8Lower2(t, n, nullptr, 0, w); }) == n;
            }},
           {"vxzsu8Upper2",
            [](Utf8* t, int64_t n) {
              int64_t w = 0;
              return vxzsu8Upper2(t, n, room(), 64, &w) == (n > 64 ? VX_E_ROOM : 0) && w == std::min<int64_t>(n, 64);
            }},
           {"vxzsu8Encode",
            [](Utf8* t, int64_t n) {
              int64_t w = 0;
              return vxzsu8Encode(t, n, room(), 64, &w, 0) == (n > 64 ? VX_E_ROOM : 0) && w == std::min<int64_t>(n, 64);
            }},
           {"vxzsu8Decode",
            [](Utf8* t, int64_t n) {
              int64_t w = 0;
              return vxzsu8Decode(t, n, room(), 64, &w, 0) == (n > 64 ? VX_E_ROOM : 0) && w == std::min<int64_t>(n, 64);
            }},
           {"vxzsu8ICUNormalize",
            [](Utf8* t, int64_t n) { return vxzsu8ICUNormalize(t, n, 0, 0, 0, 0, nullptr) == VX_E_MEMORY; }},
           {"COPY_UTF",
            [](Utf8* t, int64_t n) {
              int64_t w = 0;
              return COPY_UTF(t, n, room(), 64, &w) == (n > 64 ? VX_E_ROOM : 0) && w == std::min<int64_t>(n, 64);
            }},
           {"ConvertToUTF32",
            [](Utf8* t, int64_t n) {
              return written_by([&](int64_t* w) {
                       return ConvertToUTF32(t, n, room(), 64, w, &UTF8_UTF32, &COPY_UTF32_SWAP);
                     }) == std::min<int64_t>(4 * n, 64);
            }},
           {"qmMemScan", [](Utf8* t, int64_t n) { return qmMemScan(t, n, 'x') == n - 1; }},
           {"qmMemCmp", [](Utf8* t, int64_t n) { return qmMemCmp(t, t, n) == 0; }},
           {"vxzsu8Lower", [](Utf8* t, int64_t n) { return vxzsu8Lower(t, n), t[n - 1] == 'x'; }},
           {"vxzsu8Upper", [](Utf8* t, int64_t n) { return vxzsu8Upper(t, n), t[n - 1] == 'X'; }},
           {"vxzsu8LeftJustify",
            [](Utf8* t, int64_t n) { return vxzsu8LeftJustify(t, n), t[0] == 'X' && (n == 1 || t[n - 1] == ' '); }},
           {"vxzsu8RightJustify", [](Utf8* t, int64_t n) { return vxzsu8RightJustify(t, n), true; }, slow},
           {"qmMemSet", [](Utf8* t, int64_t n) { return qmMemSet(t, ' ', n) == t && t[n - 1] == ' '; }},
           {"qmMemMove", [](Utf8* t, int64_t n) { return qmMemMove(t, t + n / 2, n - n / 2) == t; }},
           {"vxzbytrv", [](Utf8* t, int64_t n) { return t[0] = 'a', vxzbytrv(t, n) == 0 && t[n - 1] == 'a'; }, slow},
       }},
      {'a',
       "\xC3\xA9",  // two bytes, a character
       {
           {"vxzsu8NumChars", [](Utf8* t, int64_t n) { return vxzsu8NumChars(t, n) == n - 1; }},
           {"UTF8_SLENB", [](Utf8* t, int64_t n) { return UTF8_SLENB(t, n) == n - 1; }, slow},
           {"UTF8_BLENB", [](Utf8* t, int64_t n) { return UTF8_BLENB(t, n - 1) == n - 2; }},
           {"vxzsu8Index", [](Utf8* t, int64_t n) { return vxzsu8Index(t, n, 0xE9) == n - 2; }, slow},
           {"vxzsu8Upper", [](Utf8* t, int64_t n) { return vxzsu8Upper(t, n), t[n - 1] == 0x89; }},
           {"vxzsu8Lower, cut", [](Utf8* t, int64_t n) { return vxzsu8Lower(t, n - 1), t[n - 2] == 0xC3; }},
       }},
      {'a',
       std::string_view("\0", 1),
       {
           {"qmStrLen", [](Utf8* t, int64_t n) { return qmStrLen(reinterpret_cast<char*>(t)) == n - 1; }},
           {"UTF8_SLEN", [](Utf8* t, int64_t n) { return UTF8_SLEN(t) == n - 1; }, slow},
           {"UTF8_BLEN", [](Utf8* t, int64_t n) { return UTF8_BLEN(t) == n - 1; }},
           {"vxzsu8Lengths",
            [](Utf8* t, int64_t n) {
              int64_t characters = 0, bytes = 0;
              return vxzsu8Lengths(t, &characters, &bytes), characters == n - 1 && bytes == n - 1;
            }},
       }},
      {' ',
       "7",
       {
           {"NLSBufToIntmaxU", [](Utf8* t, int64_t n) { return reads_seven(NLSBufToIntmaxU, t, n); }, slow},
           {"NLSBufToUintU", [](Utf8* t, int64_t n) { return reads_seven(NLSBufToUIntU, t, n); }},
           {"NLSBufToDoubleU", [](Utf8* t, int64_t n) { return reads_double(NLSBufToDoubleU, t, n, 7); }, slow},
           {"vxnlsExplainNumber",
            [](Utf8* t, int64_t n) {
              VXNumberReading reading;
              return vxnlsExplainNumber(locale().get(), t, n, VX_NUMBER_DOUBLE, 0, &reading) == 0 &&
                     reading.value.number == 7 && reading.consumed == n;
            },
            slow},
           {"vxnls::locale, an integer",
            [](Utf8* t, int64_t n) {
              const auto read = vxnls::locale(locale().get()).parse<int>({reinterpret_cast<char*>(t), size_t(n)});
              return read.ok() && *read == 7;
            },
            slow},
           {"vxnls::locale, a double",
            [](Utf8* t, int64_t n) {
              const auto read = vxnls::locale(locale().get()).parse<double>({reinterpret_cast<char*>(t), size_t(n)});
              return n > INT32_MAX ? read.status() == VX_E_NOTNUMBER : *read == 7;
            }},
       }},
      {' ',
       "2020-03-04",
       {{"NLSBufToDateU",
         [](Utf8* t, int64_t n) {
           uint32_t month, day, year;
           int64_t consumed;
           return NLSBufToDateU(locale().get(), t, n, 4, &month, &day, &year, &consumed) == 0 && year == 2020 &&
                  month == 3 && day == 4 && consumed == n;
         },
         slow}}},
      {'1',
       "1",
       {{"NLSBufToDoubleU, a fraction",
         [](Utf8* t, int64_t n) {
           const int64_t length = std::min<int64_t>(n, INT32_MAX);
           if (length < 3) return true;
           t[n - length + 1] = '.';
           const std::string start(t + n - length, t + n - length + std::min<int64_t>(length, 40));
           return reads_double(NLSBufToDoubleU, t, n, std::strtod(start.c_str(), nullptr));
         },
         slow}}},
  };
  return made;
}

enum class Rows { all, quick };

template <class Unit>
int64_t check(const std::vector<Table<Unit>>& tables, int64_t n, Rows rows) {
  int64_t calls = 0;
  for (const Table<Unit>& table : tables) {
    if (n < static_cast<int64_t>(table.tail.size())) continue;
    const Text<Unit> text(n, table.body, table.tail);
    for (const Row<Unit>& row : table.rows) {
      if (row.is_slow && rows == Rows::quick) continue;
      EXPECT_TRUE(row.is_right(text.begin(), n)) << row.name << " over " << n << " units";
      ++calls;
    }
  }
  return calls;
}

TEST(LongTexts, OfEverySmallLength) {
  for (int64_t n = 1; n < 300; ++n) {
    check(wide_tables(), n, Rows::all);
    check(narrow_tables(), n, Rows::all);
  }
}

// The lengths are so chosen that what is left of them in 32 bits is negative, or a few units.
TEST(LongTexts, OfMoreThan2To31Units) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "instrumented code would take minutes";
#endif
  if (sizeof(void*) < 8) GTEST_SKIP() << "no text is as long";
  const auto all = [](int64_t n, Rows rows) { return check(narrow_tables(), n, rows) + check(wide_tables(), n, rows); };
  EXPECT_GT(all((INT64_C(1) << 32) + 9, Rows::quick), 25);
  if (std::getenv("VXNLS_LONG_TESTS") != nullptr) {
    EXPECT_GT(all((INT64_C(1) << 31) + 9, Rows::all), 60);
  }
}

// What is written does not depend on how much more room there is said to be.
TEST(LongTexts, RoomsOfAnyLength) {
  const auto check = [](auto unit, const char* name, auto write) {
    using Unit = decltype(unit);
    vxtest::GuardedBuffer<Unit> memory(600);
    Unit* const out = memory.at(600);
    const auto text = [&](int64_t room) {
      int64_t length = 0;
      EXPECT_EQ(write(out, room, &length), 0u) << name;
      return std::basic_string<Unit>(out, out + length);
    };
    const auto expected = text(600);
    EXPECT_FALSE(expected.empty()) << name;
    for (const int64_t room : {INT64_C(0x7FFFFFFF), INT64_C(0x80000000), (INT64_C(1) << 32) + 1, INT64_MAX / 4 + 1,
                               INT64_MAX / 4 + 2, INT64_MAX - 1, INT64_MAX}) {
      EXPECT_TRUE(text(room) == expected) << name << ", room " << room;
    }
  };
  VXLocale* const l = locale().get();
  using W = VXChar;
  using N = uint8_t;
  check(W(), "date", [&](W* out, int64_t room, int64_t* n) { return NLSDateFormat(l, 3, 4, 2020, 2, out, room, n); });
  check(N(), "date", [&](N* out, int64_t room, int64_t* n) { return NLSDateFormatU(l, 3, 4, 2020, 2, out, room, n); });
  check(W(), "time", [&](W* out, int64_t room, int64_t* n) { return NLSTimeFormat(l, 0, out, room, n, 0); });
  check(N(), "datetime", [&](N* out, int64_t room, int64_t* n) { return NLSDatetimeFormatU(l, 0, out, room, n, 0); });
  for (const uint32_t flags :
       {0u, NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, NLS_FORMAT_FIXED | 0u, NLS_FORMAT_EXPONENT | 0u}) {
    check(W(), "double",
          [&](W* out, int64_t room, int64_t* n) { return NLSDoubleFormat(l, 20, 3, flags, out, room, n, -12345.5); });
    check(N(), "double", [&](N* out, int64_t room, int64_t* n) {
      return NLSDoubleFormatUWithExOpts(l, 20, 3, flags, out, room, n, nullptr, -12345.5);
    });
  }
  check(W(), "percent",
        [&](W* out, int64_t room, int64_t* n) { return NLSPercentFormat(l, 20, 1, 1, out, room, n, -9); });
  check(W(), "amount",
        [&](W* out, int64_t room, int64_t* n) { return NLSCurrencyFormat(l, 20, 1, 0, out, room, n, 9); });
  for (const uint32_t flags : {0u, NLS_FORMAT_GROUP, NLS_FORMAT_LEFT, NLS_FORMAT_ZERO_PAD}) {
    check(W(), "integer",
          [&](W* out, int64_t room, int64_t* n) { return NLSLongFormat(l, INT64_MIN, 40, 0, flags, out, room, n); });
    check(N(), "integer",
          [&](N* out, int64_t room, int64_t* n) { return NLSULongFormatU(l, UINT64_MAX, 40, 0, flags, out, room, n); });
  }
  check(W(), "digits", [](W* out, int64_t room, int64_t* n) { return vxzIDblToBuff(1e300, out, room, n, nullptr); });
  static constexpr N bytes[] = {'A', 0xC3, 0xA9, 0xF0, 0x9F, 0x98, 0x80};
  check(N(), "casing", [](N* out, int64_t room, int64_t* n) { return vxzsu8Upper2(bytes, 7, out, room, n); });
  check(N(), "modified UTF-8",
        [](N* out, int64_t room, int64_t* n) { return vxzsu8Encode(bytes, 7, out, room, n, 1); });
  check(N(), "copying", [](N* out, int64_t room, int64_t* n) { return COPY_UTF(bytes, 7, out, room, n); });
  check(N(), "decoding", [](N* out, int64_t room, int64_t* n) {
    return ConvertToUTF32(bytes, 7, out, room, n, &UTF8_UTF32, &COPY_UTF32_SWAP);
  });
  check(N(), "encoding", [](N* out, int64_t room, int64_t* n) {
    return ConvertFromUTF32(reinterpret_cast<const N*>(U"a\u00E9\U0001F600"), 12, out, room, n, &UTF32_UTF16s,
                            &Byte2DWord);
  });
}

}  // namespace
