// UTF-8 services over any bytes: steps agree with each other, what is found is there, orders are orders, and modified
// UTF-8 comes back. Every text lies in memory of exactly its size.
#include "fuzz/input.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace {

using vxfuzz::require;
using vxfuzz::Text;

bool legal(const std::string& text) {
  for (size_t at = 0; at < text.size();) {
    const auto* const lead = reinterpret_cast<const uint8_t*>(text.data()) + at;
    const auto length = static_cast<size_t>(utf8_len(lead));
    int64_t good;
    if (length > 4 || at + length > text.size() || isLegalUTF8(lead, static_cast<int64_t>(length), &good) == 0)
      return false;
    if (*lead == 0xF4 && lead[1] > 0x8F) return false;  // not looked at by isLegalUTF8
    at += length;
  }
  return true;
}

void check_steps(const std::string& bytes) {
  Text text(bytes), terminated(bytes + '\0');
  const int64_t n = text.size();
  int64_t checked = 0, trusted = 0;
  for (int64_t at = 0; at < n; ++checked) {
    const int64_t size = vxzsu8CharSize(terminated.at() + at, nullptr);
    require(size >= 1 && size <= utf8_len(terminated.at() + at) && at + size <= n);
    require(vxzsu8NextChar(terminated.at() + at) == terminated.at() + at + size);
    at += size;
    require(vxzsu8ByteLength(terminated.at(), checked + 1) == at);
  }
  for (int64_t at = 0; at < n; ++trusted) at += utf8_len(text.at() + at);
  require(vxzsu8NumChars(text.at(), n) == checked);
  require(UTF8_SLENB(text.at(), n) == trusted);

  const int64_t whole = UTF8_BLENB(text.at(), n);
  require(whole >= 0 && whole <= n);
  if (legal(bytes)) require(trusted == checked && whole == n);

  const auto to_nul = static_cast<int64_t>(std::min(bytes.find('\0'), bytes.size()));
  int64_t characters, length;
  vxzsu8Lengths(terminated.at(), &characters, &length);
  require(length == to_nul && characters == vxzsu8NumChars(text.at(), to_nul));
  require(UTF8_SLEN(terminated.at()) == UTF8_SLENB(text.at(), to_nul));
  require(UTF8_BLEN(terminated.at()) == UTF8_BLENB(text.at(), to_nul));
  vxzsu8IsCombining(terminated.at());
}

using Coder = VXStatus (*)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*, uint32_t);

/// All that the coder makes of the input; smaller rooms give a beginning of it.
std::string convert(Coder coder, const std::string& bytes, uint32_t options, int64_t small_room, VXStatus* status) {
  Text in(bytes), out(in.size() * 3), small(std::min(small_room, out.size()));
  int64_t written, written_small;
  *status = coder(in.at(), in.size(), out.at(), out.size(), &written, options);
  require(*status == 0 || *status == VX_E_SEQUENCE);
  const VXStatus status_small = coder(in.at(), in.size(), small.at(), small.size(), &written_small, options);
  require(status_small == (small.size() < written ? VX_E_ROOM : *status));
  require(written_small <= written && std::equal(small.at(), small.at() + written_small, out.at()));
  require(small.size() < written || written_small == written);
  return out.str().substr(0, static_cast<size_t>(written));
}

void check_modified(const std::string& bytes, uint32_t options, int64_t small_room) {
  VXStatus status;
  const std::string modified = convert(vxzsu8Encode, bytes, options, small_room, &status);
  if (legal(bytes) && (options & 5) != 4) {
    require(status == 0);
    require(convert(vxzsu8Decode, modified, options, small_room, &status) == bytes && status == 0);
  }
  const std::string standard = convert(vxzsu8Decode, bytes, options, small_room, &status);
  require((options & 5) != 4 || standard == bytes);
}

void check_finding(const std::string& bytes, const std::string& pattern) {
  Text text(bytes), wanted(pattern);
  const size_t found = bytes.find(pattern);
  require(vxzsu8Find(text.at(), text.size(), wanted.at(), wanted.size()) ==
          (found == std::string::npos ? -1 : static_cast<int64_t>(found)));
  const int64_t stripped = vxzsu8StripBlanks(text.at(), text.size());
  require(stripped == static_cast<int64_t>(bytes.find_last_not_of(' ') + 1));

  Text left(bytes), right(bytes);
  vxzsu8LeftJustify(left.at(), left.size());
  vxzsu8RightJustify(right.at(), right.size());
  const size_t first = std::min(bytes.find_first_not_of(' '), bytes.size());
  require(left.str() == bytes.substr(first) + std::string(first, ' '));
  require(right.str() == std::string(bytes.size() - static_cast<size_t>(stripped), ' ') +
                             bytes.substr(0, static_cast<size_t>(stripped)));
}

void check_order(const std::string& a, const std::string& b) {
  Text left(a), right(b);
  const auto normally = [](Text& x, Text& y) { return vxzsu8NormCompare(x.at(), x.size(), y.at(), y.size()); };
  const int32_t by_bytes = vxzsu8Compare(left.at(), left.size(), right.at(), right.size());
  require(by_bytes == (a < b ? -1 : a > b ? 1 : 0));
  const int32_t order = normally(left, right), reverse = normally(right, left);
  require(order >= -2 && order <= 2 && order / 2 == -(reverse / 2));
  if (legal(a) && legal(b)) require(order == -reverse);
  require(vxzsu8NormEqual(left.at(), left.size(), right.at(), right.size()) == (order / 2 == 0));
  require(normally(left, left) == 0);
  Text padded(a + "   ");
  if (legal(a)) require(normally(left, padded) == 0 && normally(padded, left) == 0);  // a cut-off lead takes blanks in
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  const uint32_t options = data[0] & 7;
  const int64_t small_room = data[1];
  const size_t split = std::min<size_t>(data[2], size - 3);
  const std::string a(data + 3, data + 3 + split), b(data + 3 + split, data + size);
  check_steps(a);
  check_steps(b);
  check_modified(b, options, small_room);
  check_finding(b, a);
  check_order(a, b);
  return 0;
}
