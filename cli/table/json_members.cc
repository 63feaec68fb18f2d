#include "cli/table/json_members.h"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>

namespace vxcli::table {

namespace {

/// Steps over the parts of a text. Each skip is false where there is no such part; `at` is then the byte that breaks
/// it.
struct Scan {
  std::string_view text;
  size_t at = 0;

  bool ended() const { return at == text.size(); }
  /// NUL, which begins nothing, at the end.
  char here() const { return ended() ? '\0' : text[at]; }
  bool take(char byte) {
    if (ended() || text[at] != byte) return false;
    ++at;
    return true;
  }
  void skip_blanks() {
    while (here() == ' ' || here() == '\t' || here() == '\r' || here() == '\n') ++at;
  }
  bool skip_digits() {
    const size_t begin = at;
    while (here() >= '0' && here() <= '9') ++at;
    return at > begin;
  }

  bool skip_string() {
    if (!take('"')) return false;
    while (static_cast<unsigned char>(here()) >= 0x20) {
      const char byte = text[at++];
      if (byte == '"') return true;
      if (byte == '\\' && static_cast<unsigned char>(here()) >= 0x20) ++at;
    }
    return false;
  }

  bool skip_number() {
    take('-');
    if (!take('0') && !skip_digits()) return false;
    if (take('.') && !skip_digits()) return false;
    if (!take('e') && !take('E')) return true;
    if (!take('+')) take('-');
    return skip_digits();
  }

  bool skip_literal() {
    for (const std::string_view word : {"true", "false", "null"}) {
      if (!text.substr(at).starts_with(word)) continue;
      at += word.size();
      return true;
    }
    return false;
  }

  bool skip_nested() {
    std::string closers;
    do {
      skip_blanks();
      const char byte = here();
      if (byte == '"') {
        if (!skip_string()) return false;
        continue;
      }
      if (byte == '{' || byte == '[') {
        closers += byte == '{' ? '}' : ']';
      } else if (byte == '}' || byte == ']') {
        if (closers.back() != byte) return false;
        closers.pop_back();
      } else if (static_cast<unsigned char>(byte) < 0x20) {
        return false;
      }
      ++at;
    } while (!closers.empty());
    return true;
  }

  bool skip_value() {
    switch (here()) {
      case '"': return skip_string();
      case '{':
      case '[': return skip_nested();
      case 't':
      case 'f':
      case 'n': return skip_literal();
      default: return skip_number();
    }
  }

  bool skip_end() {
    if (!take('}')) return false;
    skip_blanks();
    return ended();
  }

  bool skip_member(JsonMember& member) {
    skip_blanks();
    member.key_begin = at;
    if (!skip_string()) return false;
    member.key_end = at;
    skip_blanks();
    if (!take(':')) return false;
    skip_blanks();
    member.begin = at;
    if (!skip_value()) return false;
    member.end = at;
    skip_blanks();
    return true;
  }
};

}  // namespace

bool JsonMembers::next(JsonMember& member) {
  if (ended_) return false;
  Scan scan{line_, at_};
  const bool first = at_ == 0;
  if (first) scan.skip_blanks();
  if (first && scan.ended()) {
    ended_ = true;  // a blank line
    return false;
  }
  well_formed_ = !first || scan.take('{');
  if (first) scan.skip_blanks();
  const bool more = well_formed_ && (first ? scan.here() != '}' : scan.take(','));
  if (well_formed_) well_formed_ = more ? scan.skip_member(member) : scan.skip_end();
  ended_ = !more || !well_formed_;
  at_ = scan.at;
  return !ended_;
}

bool is_json_number(std::string_view text) {
  Scan scan{text};
  return scan.skip_number() && scan.ended();
}

bool decode_json_string(std::string_view token, std::string& value) {
  const nlohmann::json json = nlohmann::json::parse(token.begin(), token.end(), nullptr, false);
  if (!json.is_string()) return false;
  value = json.get_ref<const std::string&>();
  return true;
}

void append_json_string(std::string_view value, std::string& out) {
  static constexpr std::string_view bytes = "\"\\\b\f\n\r\t";
  static constexpr std::string_view letters = "\"\\bfnrt";
  out += '"';
  for (const char byte : value) {
    if (const size_t escape = bytes.find(byte); escape != std::string_view::npos) {
      out += '\\';
      out += letters[escape];
    } else if (static_cast<unsigned char>(byte) >= 0x20) {
      out += byte;
    } else {
      fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(byte));
    }
  }
  out += '"';
}

}  // namespace vxcli::table
