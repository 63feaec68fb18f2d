// Upper and lower case: measuring equals writing, a smaller room gives a beginning, in place equals the other form
// where nothing grows, both flavours of text agree, and a text equals its other case. With the built-in tables, and
// with a host whose mappings grow and shrink.
#include "fuzz/input.h"
#include "tests/support/character_host.h"
#include "unicode/text_flavour.h"
#include "vxnls/strings.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace {

using vxfuzz::require;
using vxfuzz::Text;

struct Direction {
  void (*units)(VXChar*, int64_t);
  void (*in_place)(uint8_t*, int64_t);
  VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
};
constexpr Direction lower = {vxzstlo, vxzsu8Lower, vxzsu8Lower2};
constexpr Direction upper = {vxzstup, vxzsu8Upper, vxzsu8Upper2};

std::string changed(const Direction& direction, const std::string& bytes, int64_t small_room) {
  const Text in(bytes);
  int64_t needed, written;
  require(direction.into(in.at(), in.size(), nullptr, 0, &needed) == 0);
  const Text out(needed);
  require(direction.into(in.at(), in.size(), out.at(), needed, &written) == 0 && written == needed);
  if (small_room > 0 && small_room < needed) {
    const Text small(small_room);
    require(direction.into(in.at(), in.size(), small.at(), small_room, &written) == VX_E_ROOM);
    require(written <= small_room && std::equal(small.at(), small.at() + written, out.at()));
  }
  return out.str();
}

std::string changed_in_place(const Direction& direction, const std::string& bytes) {
  const Text text(bytes);
  direction.in_place(text.at(), text.size());
  return text.str();
}

/// The code points of a legal text; nothing when it is not legal.
std::vector<VXChar> characters_of(const std::string& bytes) {
  std::vector<VXChar> characters;
  const auto* at = reinterpret_cast<const uint8_t*>(bytes.data());
  const uint8_t* const end = at + bytes.size();
  while (at < end) {
    const auto c = vxnls::Utf8Text::decode(at, end - at);
    int64_t good;
    if (c.status != 0 || c.code_point > 0x10FFFF || isLegalUTF8(at, c.consumed, &good) == 0) return {};
    characters.push_back(c.code_point);
    at += c.consumed;
  }
  return characters;
}

std::string utf8_of(const std::vector<VXChar>& characters) {
  std::string bytes;
  for (const VXChar c : characters) {
    uint8_t one[4];
    bytes.append(one, one + vxnls::Utf8Text::append(c, one));
  }
  return bytes;
}

/// Nothing is longer after the change, at whatever character one looks.
bool never_grows(const Direction& direction, const std::vector<VXChar>& characters) {
  return std::all_of(characters.begin(), characters.end(), [&](VXChar c) {
    const std::string before = utf8_of({c});
    direction.units(&c, 1);
    return utf8_of({c}).size() <= before.size();
  });
}

void check(const std::string& bytes, int64_t small_room, bool by_tables) {
  const std::vector<VXChar> characters = characters_of(bytes);
  for (const Direction& direction : {lower, upper}) {
    const std::string other = changed(direction, bytes, small_room);
    const std::string in_place = changed_in_place(direction, bytes);
    if (characters.empty()) continue;
    std::vector<VXChar> units = characters;
    direction.units(units.data(), static_cast<int64_t>(units.size()));
    require(utf8_of(units) == other);
    if (never_grows(direction, characters)) {
      require(in_place == other + std::string(bytes.size() - other.size(), ' '));
    }
    if (!by_tables) continue;
    require(changed(direction, other, small_room) == other);
    const Text before(bytes), lowered(changed(lower, bytes, small_room));
    require(vxzsu8NormEqual(before.at(), before.size(), lowered.at(), lowered.size()) == 1);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const std::string bytes(data + 2, data + size);
  const int64_t small_room = data[1];
  if (data[0] % 2 == 0) {
    check(bytes, small_room, true);
  } else {
    vxtest::CharacterHost host;
    const uint32_t turn = data[0];
    host.lower = [turn](uint32_t c) { return c % 3 == 0 ? c : (c * turn) % 0x110000; };
    host.upper = [turn](uint32_t c) { return c % 5 == 0 ? c : c / (turn % 7 + 1) + turn; };
    check(bytes, small_room, false);
  }
  return 0;
}
