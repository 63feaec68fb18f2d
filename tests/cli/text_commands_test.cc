// vxnls transcode, case, compare, chars.
#include <gtest/gtest.h>

#include <string>

#include "cli/coding.h"
#include "tests/cli/command_line.h"

namespace {

using vxcli::Step;
using vxtest::run_line;

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
}

/// Decodes a text that arrives in two blocks, as the command does; "?" for a fault.
std::string decoded(const vxcli::Coding& coding, const std::string& text, size_t cut) {
  std::string shown;
  size_t at = 0;
  for (const size_t end : {cut, text.size()}) {
    while (at < end) {
      const Step step = coding.decode({reinterpret_cast<const uint8_t*>(text.data()) + at, end - at});
      if (step.outcome == Step::Outcome::wanting && end < text.size()) break;
      shown += step.outcome == Step::Outcome::character ? "U+" + std::to_string(step.code_point) + " " : "? ";
      at += step.outcome == Step::Outcome::wanting ? end - at : step.bytes;
    }
  }
  return shown;
}

TEST(Coding, EveryCharacterThereAndBackWhereverTheBlockEnds) {
  for (const vxcli::Coding& coding : vxcli::codings()) {
    for (uint32_t c = 0; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 251) {
      if (c >= 0xD800 && c <= 0xDFFF) continue;
      std::string text;
      coding.encode(c, text);
      coding.encode('x', text);
      const std::string expected = "U+" + std::to_string(c) + " U+120 ";
      for (size_t cut = 0; cut <= text.size(); ++cut) {
        ASSERT_EQ(decoded(coding, text, cut), expected) << coding.name << " " << c << " cut at " << cut;
      }
    }
  }
}

TEST(Coding, FaultsEndWhereACharacterCanBegin) {
  const struct {
    const char* coding;
    std::string text;
    const char* expected;
  } cases[] = {
      {"utf-8", bytes({0xC3, 0x41}), "? U+65 "},
      {"utf-8", bytes({0xE2, 0x82, 0x41}), "? U+65 "},
      {"utf-8", bytes({0xED, 0xA0, 0x80}), "? ? ? "},          // a surrogate
      {"utf-8", bytes({0xF4, 0x90, 0x80, 0x80}), "? ? ? ? "},  // above U+10FFFF
      {"utf-8", bytes({0xC0, 0x80}), "? ? "},                  // overlong
      {"utf-8", bytes({0xE2, 0x82}), "? "},                    // cut off by the end
      {"modified-utf-8", bytes({0xC0, 0x80}), "U+0 "},
      {"modified-utf-8", bytes({0xED, 0xA0, 0xBD, 0xED, 0xB8, 0x80}), "U+128512 "},
      {"modified-utf-8", bytes({0xED, 0xA0, 0xBD, 0x41}), "? U+65 "},
      {"modified-utf-8", bytes({0xED, 0xB8, 0x80}), "? "},
      {"modified-utf-8", bytes({0xF0, 0x9F, 0x98, 0x80}), "? ? ? ? "},
      {"utf-16le", bytes({0x3D, 0xD8, 0x41, 0x00}), "? U+65 "},
      {"utf-16be", bytes({0xDE, 0x00, 0x00, 0x41}), "? U+65 "},
      {"utf-16be", bytes({0x00}), "? "},
      {"utf-32le", bytes({0x00, 0xD8, 0x00, 0x00}), "? "},
      {"utf-32be", bytes({0x00, 0x11, 0x00, 0x00}), "? "},
  };
  for (const auto& c : cases) {
    for (size_t cut = 0; cut <= c.text.size(); ++cut) {
      EXPECT_EQ(decoded(*vxcli::find_coding(c.coding), c.text, cut), c.expected) << c.coding << " cut at " << cut;
    }
  }
}

TEST(Transcode, PairsMarksAndFaults) {
  EXPECT_EQ(run_line("printf 'Gr\\303\\274\\303\\237e' | vxnls transcode --to utf-16be | od -An -tx1").out,
            " 00 47 00 72 00 fc 00 df 00 65\n");
  EXPECT_EQ(run_line("printf a | vxnls transcode --to UTF_16LE 2>/dev/null || echo refused").out, "refused\n");
  EXPECT_EQ(run_line("printf a | vxnls transcode --bom write | od -An -tx1").out, " ef bb bf 61\n");
  EXPECT_EQ(run_line("printf '\\357\\273\\277a' | vxnls transcode --bom drop | od -An -tx1").out, " 61\n");
  EXPECT_EQ(run_line("printf '\\357\\273\\277a' | vxnls transcode | od -An -tx1").out, " ef bb bf 61\n");

  const auto fails = run_line("vxnls transcode", "abc\xFFx");
  EXPECT_EQ(fails.out, "abc");
  EXPECT_EQ(fails.err, "vxnls: standard input: at byte 3: FF is no utf-8\n");
  EXPECT_EQ(fails.code, 1);
  const auto replaced = run_line("vxnls transcode --on-error replace", "a\xFF\xC3");
  EXPECT_EQ(replaced.out, "a\uFFFD\uFFFD");
  EXPECT_EQ(replaced.err,
            "vxnls: note: standard input: 2 places that are no utf-8, the first at byte 1: replaced by U+FFFD\n");
  EXPECT_EQ(replaced.code, 1);
  EXPECT_EQ(run_line("vxnls transcode --on-error skip --quiet", "a\xFFz").out, "az");
  const auto lost = run_line("vxnls transcode /no/such/file");
  EXPECT_EQ(lost.err, "vxnls: /no/such/file: No such file or directory\n");
  EXPECT_EQ(lost.code, 3);
  EXPECT_EQ(run_line("vxnls transcode /dev/null > /dev/full").code, 0);  // nothing to write
  EXPECT_EQ(run_line("echo a | vxnls transcode > /dev/full").code, 3);
}

TEST(Transcode, AMillionCharactersThroughAllCodings) {
  const auto result = run_line(
      "for i in 1 2 3 4 5 6 7 8; do printf 'Gr\\303\\274\\303\\237e \\360\\237\\230\\200 \\346\\227\\245%08d\\n' $i; "
      "done "
      "> /tmp/vxnls-text-$$; i=0; while [ $i -lt 12 ]; do cat /tmp/vxnls-text-$$ /tmp/vxnls-text-$$ > "
      "/tmp/vxnls-more-$$; "
      "mv /tmp/vxnls-more-$$ /tmp/vxnls-text-$$; i=$((i+1)); done; "
      "vxnls transcode --to utf-16le /tmp/vxnls-text-$$ | vxnls transcode --from utf-16le --to modified-utf-8 | "
      "vxnls transcode --from modified-utf-8 --to utf-32be | vxnls transcode --from utf-32be --to utf-16be | "
      "vxnls transcode --from utf-16be --to utf-32le | vxnls transcode --from utf-32le | cmp - /tmp/vxnls-text-$$ && "
      "echo same; rm /tmp/vxnls-text-$$");
  EXPECT_EQ(result.out, "same\n");
}

TEST(TextCommands, CompareAndChars) {
  EXPECT_EQ(run_line("vxnls compare abc 'abc  ' --mode padded").out, "0\n");
  EXPECT_EQ(run_line("vxnls compare abc 'abc  ' --mode code-points").out, "-1\n");
  EXPECT_EQ(run_line("vxnls compare ABC abc --mode ignore-case").out, "0\n");
  EXPECT_EQ(run_line("vxnls compare '\u00E9' 'e\u0301' --mode normalised").out, "0\n");
  EXPECT_NE(run_line("vxnls compare gr\u00FCn gr\u00FCz").out.find("they part at character 4 (byte 4)"),
            std::string::npos);
  EXPECT_EQ(run_line("vxnls compare a").code, 2);
  EXPECT_NE(run_line("vxnls chars '\u00DF'").out.find("LATIN SMALL LETTER SHARP S"), std::string::npos);
  EXPECT_EQ(run_line("vxnls case upper", "stra\u00DFe\n\xFF\n").out, "STRA\u00DFE\n\n");
}

}  // namespace
