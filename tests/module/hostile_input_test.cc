// Every entry point over input of any length, between pages that nobody may touch: texts of every small length and of
// more than 2^31 units, so plain that the right answer follows from their length; records whose lengths, patterns and
// separators are anything; rooms that are said to be of any size.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/domain.h"
#include "tests/support/guard_page.h"
#include "tests/support/zoned_locale.h"
#include "vxnls/locale.hpp"

namespace {

using namespace std::literals;

using vxtest::GuardedBuffer;
using Utf8 = uint8_t;

// Texts

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

VXLocale* plain() {
  static vxtest::PlainLocale made;
  return made.get();
}

/// One call over `n` units at `t`; whether the answer is right. A slow one, which looks at a unit at a time, meets very
/// long texts in long runs alone.
enum Speed { quick, slow };
template <class Unit>
struct Table {
  char body;
  std::string_view tail;
  struct {
    const char* call;
    Speed speed;
    bool (*is_right)(Unit* t, int64_t n);
  } rows[24];
};
#define ROW(speed, ...)                                                          \
  {                                                                              \
#__VA_ARGS__, speed, [](Unit * t, int64_t n) -> bool { return __VA_ARGS__; } \
  }

uint8_t out[64];
int64_t written, other;

/// Of a call that writes a byte a unit to `out`, and no more than there is room for.
bool wrote(int64_t status, int64_t n, VXStatus without_room = VX_E_ROOM) {
  return status == (n > 64 ? without_room : 0) && written == std::min<int64_t>(n, 64);
}
template <class Unit, class Integer>
bool reads(VXStatus (*f)(VXLocale*, const Unit*, int64_t, uint32_t, Integer*, uint64_t*), Unit* t, int64_t n) {
  Integer value = 0;
  uint64_t consumed = 0;
  return f(plain(), t, n, 0, &value, &consumed) == 0 && value == 7 && consumed == static_cast<uint64_t>(n);
}
/// A reader that takes 32-bit lengths gets as many of the last units.
template <class Unit>
bool reads(VXStatus (*f)(VXLocale*, const Unit*, int32_t, double*, int64_t*), Unit* t, int64_t n) {
  const auto length = static_cast<int32_t>(std::min<int64_t>(n, INT32_MAX));
  double value = 0;
  return f(plain(), t + (n - length), length, &value, &written) == 0 && value == 7 && written == length;
}
bool reads_by_the_face(uint8_t* t, int64_t n) {
  const auto read = vxnls::locale(plain()).parse<double>({reinterpret_cast<char*>(t), size_t(n)});
  return n > INT32_MAX ? read.status() == VX_E_NOTNUMBER : *read == 7;
}
int32_t order(VXChar* a, int64_t n, VXChar* b, int64_t m) { return NLSSSOrderCompare(nullptr, a, n, b, m, 0); }
auto* bytes_of(VXChar* t) { return reinterpret_cast<uint8_t*>(t); }

auto rows_of(VXChar) {
  using Unit = VXChar;
  static VXChar joined[3];
  return std::vector<Table<Unit>>{
      {' ',
       "x",
       {ROW(slow, vxzstrp(t, n) == n && vxzstrp(t, n - 1) == 0), ROW(quick, GET_UTF8_LEN_FROM_VXCHAR(t, n) == n),
        ROW(slow, vxzspos(t, n, 'x') == n - 1), ROW(slow, vxzsndx(t, n, t + n - 1, 1) == n - 1),
        ROW(slow, vxzseqn(t, n, t, n) == 1 && vxzseqn(t, n - 1, t, n) == 0),
        ROW(slow, vxzsncmp(t, n, t, n) == 0 && vxzsncmp(t, n - 1, t, n) == -2),
        ROW(slow, order(t, n, t, n) == 0 && order(t, n - 1, t, n) == -1), ROW(quick, qmzMemCmp(t, t, n) == 0),
        ROW(quick, wrote(ConvertFromUTF32(bytes_of(t), 4 * n, out, 64, &written, &UTF32_UTF8, &Byte2DWord), n, 0)),
        ROW(slow, vxzstlo(t, n), t[n - 1] == 'x'), ROW(slow, vxzstmin(t, n), t[n - 1] == 'X'),
        ROW(slow, qmzMemSet(t, ' ', n) == t && t[n - 1] == ' '), ROW(slow, qmzMemMove(t, t + n / 2, n - n / 2) == t),
        ROW(slow, t[0] = 'a', vxztchrv(t, n), t[n - 1] == 'a')}},
      {'a',
       "\0"sv,
       {ROW(slow, qmzStrLen(t) == n - 1), ROW(quick, vxzscat(joined, 3, 0xFFFF, 1, t, n) == std::min<int64_t>(n, 3))}},
      {'0', "7", {ROW(slow, reads(NLSBufToIntmax, t, n)), ROW(slow, reads(NLSBufToDouble, t, n))}}};
}

auto rows_of(Utf8) {
  using Unit = Utf8;
  static uint32_t month, day, year;
  return std::vector<Table<Unit>>{
      {' ',
       "x",
       {ROW(slow, vxzsu8StripBlanks(t, n) == n && vxzsu8StripBlanks(t, n - 1) == 0),
        ROW(quick, qmMemScan(t, n, 'x') == n - 1), ROW(quick, vxzsu8Find(t, n, t + n - 1, 1) == n - 1),
        ROW(quick, vxzsu8Compare(t, n, t, n) == 0 && vxzsu8Compare(t, n - 1, t, n) == -1),
        ROW(slow, vxzsu8NormCompare(t, n, t, n) == 0 && vxzsu8NormCompare(t, n - 1, t, n) == -2),
        ROW(quick, wrote(vxzsu8Upper2(t, n, out, 64, &written), n)),
        ROW(quick, wrote(vxzsu8Encode(t, n, out, 64, &written, 0), n)),
        ROW(quick, wrote(vxzsu8Decode(t, n, out, 64, &written, 0), n)),
        ROW(quick, wrote(COPY_UTF(t, n, out, 64, &written), n)),
        ROW(quick, vxzsu8LeftJustify(t, n), t[0] == 'x' && (n == 1 || t[n - 1] == ' ')),
        ROW(slow, vxzsu8RightJustify(t, n), t[n - 1] == 'x'), ROW(quick, qmMemSet(t, ' ', n) == t && t[n - 1] == ' '),
        ROW(quick, qmMemMove(t, t + n / 2, n - n / 2) == t), ROW(slow, t[0] = 'a', vxzbytrv(t, n), t[n - 1] == 'a')}},
      // The last character has two bytes.
      {'a',
       "\xC3\xA9",
       {ROW(quick, vxzsu8NumChars(t, n) == n - 1), ROW(slow, UTF8_SLENB(t, n) == n - 1),
        ROW(quick, UTF8_BLENB(t, n - 1) == n - 2), ROW(slow, vxzsu8ByteLength(t, n - 1) == n),
        ROW(slow, vxzsu8Index(t, n, 0xE9) == n - 2), ROW(quick, vxzsu8Upper(t, n), t[n - 1] == 0x89),
        ROW(quick, vxzsu8Copy(t, n, out, 64) == std::min<int64_t>(n, 64)),
        ROW(quick, vxzsu8Lower2(t, n, nullptr, 0, &written) == 0 && written == n),
        ROW(quick, vxzsu8Lower(t, n - 1), t[n - 2] == 0xC3)}},
      {'a',
       "\0"sv,
       {ROW(slow, UTF8_SLEN(t) == n - 1), ROW(quick, qmStrLen(reinterpret_cast<char*>(t)) == n - 1),
        ROW(quick, ConvertToUTF32(t, n, out, 64, &written, &UTF8_UTF32, &COPY_UTF32_SWAP) == 0 &&
                       written == std::min<int64_t>(4 * n, 64)),
        ROW(quick, vxzsu8Lengths(t, &written, &other), written == n - 1 && other == n - 1)}},
      {' ',
       "7",
       {ROW(quick, reads(NLSBufToUIntU, t, n)), ROW(slow, reads(NLSBufToDoubleU, t, n)),
        ROW(quick, reads_by_the_face(t, n))}},
      {' ',
       "2020-03-04",
       {ROW(slow, NLSBufToDateU(plain(), t, n, 4, &month, &day, &year, &written) == 0 && written == n &&
                      (year * 100 + month) * 100 + day == 20200304)}}};
}

template <class Unit>
int64_t check(int64_t n, bool with_slow) {
  int64_t calls = 0;
  static const auto tables = rows_of(Unit());
  for (const auto& table : tables) {
    if (n < static_cast<int64_t>(table.tail.size())) continue;
    const Text<Unit> text(n, table.body, table.tail);
    for (const auto& row : table.rows) {
      if (row.call == nullptr || (row.speed == slow && !with_slow)) continue;
      EXPECT_TRUE(row.is_right(text.begin(), n)) << row.call << " over " << n << " units";
      ++calls;
    }
  }
  return calls;
}

TEST(LongTexts, OfEverySmallLength) {
  for (int64_t n = 1; n < 300; ++n) check<VXChar>(n, true), check<Utf8>(n, true);
}

// The lengths are so chosen that what is left of them in 32 bits is negative, or a few units.
TEST(LongTexts, OfMoreThan2To31Units) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "instrumented code would take minutes";
#endif
  if (sizeof(void*) < 8) GTEST_SKIP() << "no text is as long";
  const auto all = [](int64_t n, bool with_slow) { return check<Utf8>(n, with_slow) + check<VXChar>(n, with_slow); };
  EXPECT_GT(all((INT64_C(1) << 32) + 9, false), 20);
  if (vxtest::is_long_run()) {
    EXPECT_GT(all((INT64_C(1) << 31) + 9, true), 40);
  }
}

// Records and rooms

template <class Unit>
constexpr auto pick(auto narrow, auto wide) {
  if constexpr (sizeof(Unit) == 1) return narrow;
  else return wide;
}

/// Texts in common forms, and such that a name or pattern filled up with "m" matches.
std::vector<std::string> make_texts() {
  std::vector<std::string> texts = {"",     "12/25/2020 10:30 pm",       "25 December 2020",   "10:30:15 AM", "W7 2021",
                                    "%%%%", "2020-03-04T05:06:07+01:00", "04Mar2020:10:00:00", "1,234.50"};
  for (const char quarter : "1234"sv) texts.push_back(std::string("Q") + quarter + std::string(58, 'm') + " 2021");
  for (const std::string text : {"Q3 2021", "2021 Q3", "Jul 2022", "07/2022", "W07 2021", "2021-W07"}) {
    texts.push_back(text + std::string(text.find('W') == text.npos ? 55 : 54, 'm'));
  }
  return texts;
}

struct HostileRecord : testing::Test {
  HostileRecord() { locale.use(U"Zone/East"); }

  /// All that comes of a record, written with `room` units and read: statuses, counts, units and values. More than 600
  /// units are only said to be there.
  std::vector<int64_t> run(int64_t room) {
    answers.clear();
    run(room, bytes);
    run(room, units);
    return answers;
  }
  template <class Unit>
  void run(int64_t room, GuardedBuffer<Unit>& memory) {
    VXLocale* const l = locale.get();
    const auto write = [&](auto function) {
      Unit* const out = memory.at(static_cast<size_t>(std::min<int64_t>(room, 600)));
      int64_t n = 0;
      const auto status = static_cast<VXStatus>(function(out, room, &n));
      take(status, {n});
      ASSERT_TRUE(n >= 0 && n <= room) << n;
      answers.insert(answers.end(), out, out + n);
    };
    for (int32_t style = 0; style < 3; ++style) {
      write([=](auto... to) { return pick<Unit>(NLSDateFormatU, NLSDateFormat)(l, 12, 25, 2020, style, to...); });
      write([=](auto... to) { return pick<Unit>(NLSTimeFormatU, NLSTimeFormat)(l, style, to..., 70000); });
    }
    // A day of each month of 2020, on every day of the week, in the morning and in the evening.
    for (int month = 0; month < 12; ++month) {
      const double moment = (21915 + 31 * month) * 86400.0 + (month % 2 != 0 ? 70000 : 10000);
      write([=](auto... to) { return pick<Unit>(NLSDatetimeFormatU, NLSDatetimeFormat)(l, 0, to..., moment); });
    }
    constexpr uint32_t group = NLS_FORMAT_GROUP;
    for (const uint32_t flags :
         {0u, group, group | NLS_FORMAT_PLAIN, group | NLS_FORMAT_FIXED, NLS_FORMAT_EXPONENT | 0u}) {
      constexpr auto format = pick<Unit>(NLSDoubleFormatUWithExOpts, NLSDoubleFormatWithExOpts);
      write([=](auto... to) { return format(l, 25, 3, flags, to..., nullptr, -123456789.5); });
    }
    for (const uint32_t flags : {0u, group, NLS_FORMAT_LEFT | 0u, NLS_FORMAT_ZERO_PAD | 0u}) {
      constexpr auto format = pick<Unit>(NLSLongFormatU, NLSLongFormat);
      write([=](auto... to) { return format(l, INT64_MIN, flags == group ? 0 : 40, 0, flags, to...); });
    }
    if constexpr (sizeof(Unit) > 1) {
      for (const auto amount : {NLSCurrencyFormat, NLSPercentFormat}) {
        write([=](Unit* out, int64_t size, int64_t* n) {
          const VXStatus status = amount(l, 90, 2, 0, out, size, n, 1234567.5);
          return status != 0 ? *n = 0, status : status;  // they count what they did not write
        });
      }
    } else if (room >= 600) {  // texts, whatever the record is
      static constexpr Utf8 in[] = {'A', 0xC3, 0xA9, 0, 0xF0, 0x9F, 0x98, 0x80};
      write([=](auto... to) { return vxzsu8Upper2(in, 8, to...); });
      write([=](auto... to) { return vxzsu8Encode(in, 8, to..., 1); });
      write([=](auto... to) { return ConvertToUTF32(in, 8, to..., &UTF8_UTF32, &COPY_UTF32_SWAP); });
      write([=](auto... to) { return ConvertFromUTF32(in, 8, to..., &UTF32_UTF16s, &Byte2DWord); });
    }
    for (const std::string& text : texts) {
      Unit* const in = memory.at(text.size());
      std::transform(text.begin(), text.end(), in, [](char c) { return static_cast<uint8_t>(c); });
      const auto n = static_cast<int64_t>(text.size());
      int64_t used = 0;
      double value = 0;
      const auto consumed = [&](VXStatus status, const double& read) {  // which the call writes
        take(status, {used, std::bit_cast<int64_t>(read)});
        EXPECT_TRUE(used >= 0 && used <= n) << used;
        used = 0;
      };
      for (uint32_t kind = 1; kind <= 512; kind *= 2) {
        uint32_t month = 0, day = 0, year = 0;
        const VXStatus status = pick<Unit>(NLSBufToDateU, NLSBufToDate)(l, in, n, kind, &month, &day, &year, &used);
        consumed(status, (year * 100.0 + month) * 100 + day);
        if (kind > 8) continue;
        for (const auto read :
             {pick<Unit>(NLSBufToTimeU, NLSBufToTime), pick<Unit>(NLSBufToDatetimeU, NLSBufToDatetime)}) {
          consumed(read(l, in, n, kind, &value, &used), value);
        }
      }
      consumed(pick<Unit>(NLSBufToDoubleU, NLSBufToDouble)(l, in, static_cast<int32_t>(n), &value, &used), value);
    }
  }
  void take(VXStatus status, std::initializer_list<int64_t> values) {
    statuses.insert(status);
    answers.push_back(status);
    answers.insert(answers.end(), values);
  }

  /// Calls `change` with each counted name and pattern of the record and what its entry is called.
  void with_names(auto change) {
    for (const auto& [key, offset, names] : own::entries) {
      auto* const first = reinterpret_cast<NLSName*>(reinterpret_cast<uint8_t*>(&locale.data) + offset);
      for (size_t i = 0; i < names; ++i) change(first[i], key);
    }
  }

  vxtest::ZonedLocale locale;
  const std::vector<std::string> texts = make_texts();
  GuardedBuffer<Utf8> bytes{600};
  GuardedBuffer<VXChar> units{600};
  std::vector<int64_t> answers;
  std::set<VXStatus> statuses;  // all that were answered
};

// What is written does not depend on how much more room there is said to be.
TEST_F(HostileRecord, RoomsOfAnyLength) {
  const auto expected = run(600);
  for (const int64_t room : {INT64_C(0x7FFFFFFF), INT64_C(0x80000000), (INT64_C(1) << 32) + 1, INT64_MAX / 4 + 1,
                             INT64_MAX / 4 + 2, INT64_MAX - 1, INT64_MAX}) {
    EXPECT_TRUE(run(room) == expected) << room;
  }
}

// A counted name is read as if its length were held to 0 to 60, in every place where it is read.
TEST_F(HostileRecord, LengthsAreHeldToTheRoomOfAName) {
  vxtest::set_name(locale.data.datetimePattern, U"%A %a %B %b %p");
  with_names([&](NLSName& name, std::string_view key) {
    SCOPED_TRACE(key);
    const NLSName kept = name;
    std::fill(name.text + kept.length, std::end(name.text), VXChar{'m'});
    const auto with_length = [&](int64_t length) {
      name.length = length;
      return run(600);
    };
    const auto none = with_length(0), all = with_length(60);
    EXPECT_NE(none, all) << "nobody reads it";
    for (const int64_t length : {INT64_C(61), INT64_C(480), INT64_C(1) << 31, (INT64_C(1) << 32) + 3, INT64_MAX}) {
      ASSERT_TRUE(with_length(length) == all) << length;
    }
    for (const int64_t length : {INT64_C(-1), -(INT64_C(1) << 32) + 3, INT64_MIN}) {
      ASSERT_TRUE(with_length(length) == none) << length;
    }
    name = kept;
  });
}

// Directives and modifiers without end, and what no directive may be; every status is a documented one.
TEST_F(HostileRecord, PatternsAndNamesOfAnything) {
  const VXLocaleData as_it_was = locale.data;
  for (const std::u32string_view unit :
       {U"%"sv, U"%#"sv, U"%?"sv, U"%0"sv, U"%Z"sv, U"%z"sv, U"%A"sv, U"%B"sv, U"%p"sv, U"%Y"sv, U" "sv, U"\0"sv,
        U"\U0010FFFF"sv, U"\uFFFF%"sv, U"\xD800\x110000\xFFFFFFFF"sv, U"x%%"sv, U"%S%M%p"sv}) {
    std::u32string text, long_name(60, U'\U0001F600');  // which makes a pattern outgrow every room
    while (text.size() < 60) text += unit;
    for (const bool of_patterns : {false, true}) {
      with_names([&](NLSName& name, std::string_view key) {
        const bool is_pattern = key.find("Pattern") != key.npos;
        vxtest::set_name(name, std::u32string_view(of_patterns && !is_pattern ? long_name : text).substr(0, 60));
      });
      for (const int64_t room : {0, 1, 59, 60, 179, 180, 181, 511, 512, 513, 600}) run(room);
      locale.data = as_it_was;
    }
  }
  EXPECT_EQ(statuses,
            (std::set<VXStatus>{0, VX_E_DIRECTIVE, VX_E_NOMATCH, VX_E_TRUNCATED, VX_E_NOTNUMBER, VX_E_GROUPING}));
}

}  // namespace
