// What is done in whole blocks equals what one step a character gives.
#include "utf8/runs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>

#include "tests/support/guard_page.h"
#include "utf8/casing.h"
#include "vxnls/utf8.h"

namespace {

using namespace vxnls;
using vxtest::Guard;
using vxtest::GuardedBuffer;

constexpr int64_t longest = 300;

std::vector<const Utf8Runs*> variants() {
  std::vector<const Utf8Runs*> all = {&generic_utf8_runs};
#if VXNLS_HAS_AVX2_VARIANTS
  if (processor_has_avx2()) all.push_back(&avx2_utf8_runs);
#endif
  return all;
}

/// Well-formed text of pieces that take up to 1, 2, 3, 4 bytes, and one with leads that announce 5 and 6. Simple case
/// mapping leaves all but ASCII as it is.
std::vector<std::string> texts(std::mt19937& random) {
  static const std::string pieces[] = {"a",
                                       "Z",
                                       "@[`{",
                                       "\xC2\xBF",
                                       "\xE4\xB8\x80",
                                       "\xF0\x9F\x98\x80",
                                       "\xF8\x80\x80\x80\x80",
                                       "\xFD\xBF\xBF\xBF\xBF\xBF"};
  static constexpr size_t kinds[] = {3, 4, 5, 6, 8};
  std::vector<std::string> all;
  for (const size_t kind : kinds) {
    std::string& text = all.emplace_back();
    while (text.size() < 100'000) text += pieces[random() % kind];
  }
  return all;
}

/// Any lead that announces as many bytes.
char other_lead(char c, std::mt19937& random) {
  static constexpr unsigned from[] = {0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0x100};
  const auto byte = static_cast<uint8_t>(c);
  size_t kind = 0;
  while (byte >= from[kind]) ++kind;
  return kind == 0 ? c : static_cast<char>(from[kind - 1] + random() % (from[kind] - from[kind - 1]));
}

/// The letters of ASCII in one direction, elsewhere the text as it is.
std::string turned(std::string text, char first) {
  for (char& c : text) c = c >= first && c < first + 26 ? static_cast<char>(c ^ 0x20) : c;
  return text;
}

// Before or behind a page that may not be touched, or away from it to be aligned otherwise; with a fault at every
// place, often in the long run.
TEST(Runs, EveryVariantGivesWhatStepsGive) {
  static constexpr uint8_t faults[] = {0x00, 'A', 'z', 0x80, 0xBF, 0xC0, 0xC3, 0xE2, 0xF1, 0xF7, 0xF8, 0xFF};
  const int64_t rounds = std::getenv("VXNLS_LONG_TESTS") != nullptr ? 64 : 1;
  std::mt19937 random(41);
  const auto all = texts(random);
  GuardedBuffer<uint8_t> input(longest + 64), output(longest + 64);
  for (int64_t length = 0; length <= longest; ++length) {
    for (int64_t turn = 0; turn < rounds * (length + 1); ++turn) {
      const std::string& source = all[random() % all.size()];
      std::string text = source.substr(random() % (source.size() - longest), static_cast<size_t>(length));
      const auto fault = static_cast<size_t>(turn / rounds);
      for (char& c : text) c = other_lead(c, random);
      if (fault < text.size()) text[fault] = static_cast<char>(faults[random() % std::size(faults)]);
      const Guard guard = random() % 2 != 0 ? Guard::behind : Guard::before;
      const size_t away_in = random() % 3 == 0 ? random() % 64 : 0, away_out = random() % 3 == 0 ? random() % 64 : 0;
      const auto copied = [&] {
        return input.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size(), guard, away_in);
      };
      const ByteView whole = {copied(), length};
      const int64_t characters = count_characters<CheckingStep>(whole);
      const auto what = [&] { return testing::PrintToString(text); };
      ASSERT_EQ(vxzsu8NumChars(whole.bytes, length), characters) << what();

      const std::string lower = turned(text, 'A'), upper = turned(text, 'a');
      const auto lead = std::find_if(text.begin(), text.end(), [](char c) { return static_cast<uint8_t>(c) >= 0xC0; });
      for (const Utf8Runs* const variant : variants()) {
        ASSERT_EQ(count_by_runs(whole, *variant), characters) << what();
        for (const bool in_place : {false, true}) {
          for (const bool up : {false, true}) {
            uint8_t* const in = copied();
            uint8_t* const out = in_place ? in : output.copy(in, text.size(), guard, away_out);
            const int64_t done = (up ? variant->upper : variant->lower)(in, length, out);
            ASSERT_LE(done, lead - text.begin()) << what();
            const auto front = static_cast<size_t>(done);
            ASSERT_EQ(std::string(out, out + length), (up ? upper : lower).substr(0, front) + text.substr(front))
                << done;
          }
        }
      }
    }
  }
}

TEST(Runs, CountsThatDoNotFitIntoAByte) {
  std::mt19937 random(42);
  for (const std::string& text : texts(random)) {
    const ByteView whole = {reinterpret_cast<const uint8_t*>(text.data()), static_cast<int64_t>(text.size())};
    EXPECT_EQ(vxzsu8NumChars(whole.bytes, whole.length), count_characters<CheckingStep>(whole)) << text.substr(0, 60);
  }
}

// The last text of texts() holds leads that begin no character: what they announce is not ASCII, so the tables leave
// it.
TEST(Runs, CaseOfTextThatOnlyAsciiChanges) {
  std::mt19937 random(43);
  GuardedBuffer<uint8_t> input(longest), output(longest + 8);
  for (const std::string& source : texts(random)) {
    for (int64_t length = 0; length <= longest; ++length) {
      std::string text = source.substr(source.size() - static_cast<size_t>(length));
      text.erase(0, std::min(text.find_first_not_of("\x80\xBF\xB8\x9F\x98"), text.size()));
      const std::string upper = turned(text, 'a');
      const auto size = static_cast<int64_t>(text.size());
      const uint8_t* const in = input.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
      const int64_t room = static_cast<int64_t>(random() % (text.size() + 8) + 1);
      uint8_t* const out = output.at(static_cast<size_t>(room));
      std::fill_n(out, room, uint8_t{0xAA});
      int64_t written = -1;
      const VXStatus status = vxzsu8Upper2(in, size, out, room, &written);
      ASSERT_EQ(status, room < size ? VX_E_ROOM : 0);
      ASSERT_TRUE(room >= size ? written == size : written <= room && written > room - 6) << text;
      ASSERT_EQ(std::string(out, out + written), upper.substr(0, static_cast<size_t>(written)));
      ASSERT_TRUE(std::all_of(out + written, out + room, [](uint8_t b) { return b == 0xAA; })) << text << room;
      uint8_t* const place = input.copy(in, text.size());
      vxzsu8Upper(place, size);
      ASSERT_EQ(std::string(place, place + size), upper);
    }
  }
}

TEST(Runs, EightBytesAtOnce) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    for (const uint64_t others : {UINT64_C(0), UINT64_C(0xFFFFFFFFFFFFFFFF), UINT64_C(0x405A417B61607AC1)}) {
      for (int place = 0; place < 64; place += 8) {
        const uint64_t bytes = (others & ~(UINT64_C(0xFF) << place)) | uint64_t{byte} << place;
        const auto at = [&](uint64_t all) { return static_cast<uint8_t>(all >> place); };
        ASSERT_EQ(at(LowerCase::eight(bytes)), ascii_lower(static_cast<uint8_t>(byte)));
        ASSERT_EQ(at(UpperCase::eight(bytes)), ascii_upper(static_cast<uint8_t>(byte)));
      }
    }
  }
}

}  // namespace
