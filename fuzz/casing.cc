// Upper and lower case: measuring equals writing, a smaller room gives a beginning, in place equals the other form
// where nothing grows, both flavours of text agree, and a text equals its other case. With the built-in tables, and
// with a host whose mappings grow and shrink.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/character_host.h"
#include "unicode/text_flavour.h"
#include "vxnls/strings.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

struct Direction {
  void (*units)(VXChar*, int64_t);
  void (*in_place)(uint8_t*, int64_t);
  VXStatus (*into)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);
};
constexpr Direction lower = {vxzstlo, vxzsu8Lower, vxzsu8Lower2};
constexpr Direction upper = {vxzstup, vxzsu8Upper, vxzsu8Upper2};

/// Memory of exactly its size.
std::unique_ptr<uint8_t[]> exactly(const std::string& bytes) {
  std::unique_ptr<uint8_t[]> copy(new uint8_t[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), copy.get());
  return copy;
}

std::string changed(const Direction& direction, const std::string& bytes, int64_t small_room) {
  const auto in = exactly(bytes);
  const auto n = static_cast<int64_t>(bytes.size());
  int64_t needed, written;
  require(direction.into(in.get(), n, nullptr, 0, &needed) == 0);
  const auto out = exactly(std::string(static_cast<size_t>(needed), '?'));
  require(direction.into(in.get(), n, out.get(), needed, &written) == 0 && written == needed);
  if (small_room > 0 && small_room < needed) {
    const auto small = exactly(std::string(static_cast<size_t>(small_room), '?'));
    require(direction.into(in.get(), n, small.get(), small_room, &written) == VX_E_ROOM);
    require(written <= small_room && std::equal(small.get(), small.get() + written, out.get()));
  }
  return {out.get(), out.get() + needed};
}

std::string changed_in_place(const Direction& direction, const std::string& bytes) {
  const auto text = exactly(bytes);
  direction.in_place(text.get(), static_cast<int64_t>(bytes.size()));
  return {text.get(), text.get() + bytes.size()};
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
    const std::string lowered = changed(lower, bytes, small_room);
    require(vxzsu8NormEqual(exactly(bytes).get(), static_cast<int64_t>(bytes.size()), exactly(lowered).get(),
                            static_cast<int64_t>(lowered.size())) == 1);
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
