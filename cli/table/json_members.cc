#include "cli/table/json_members.h"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>

namespace vxcli::table {

namespace {

bool is_digit(char byte) { return byte >= '0' && byte <= '9'; }

}  // namespace

void JsonMembers::skip_blanks() {
  while (at_ < line_.size() && std::string_view(" \t\r\n").find(line_[at_]) != std::string_view::npos) ++at_;
}

bool JsonMembers::take(char byte) {
  if (at_ == line_.size() || line_[at_] != byte) return false;
  ++at_;
  return true;
}

bool JsonMembers::give_up() {
  broken_ = true;
  return false;
}

bool JsonMembers::skip_string() {
  if (!take('"')) return false;
  while (at_ < line_.size() && static_cast<unsigned char>(line_[at_]) >= 0x20) {
    const char byte = line_[at_++];
    if (byte == '"') return true;
    if (byte == '\\' && at_ < line_.size()) ++at_;
  }
  return false;
}

bool JsonMembers::skip_number() {
  const auto skip_digits = [&] {
    const size_t begin = at_;
    while (at_ < line_.size() && is_digit(line_[at_])) ++at_;
    return at_ > begin;
  };
  take('-');
  if (!take('0') && !skip_digits()) return false;
  if (take('.') && !skip_digits()) return false;
  if (take('e') || take('E')) {
    if (!take('+')) take('-');
    return skip_digits();
  }
  return true;
}

bool JsonMembers::skip_literal() {
  for (const std::string_view word : {"true", "false", "null"}) {
    if (!line_.substr(at_).starts_with(word)) continue;
    at_ += word.size();
    return true;
  }
  return false;
}

bool JsonMembers::skip_nested() {
  std::string closers;
  do {
    skip_blanks();
    if (at_ == line_.size()) return false;
    const char byte = line_[at_];
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
    ++at_;
  } while (!closers.empty());
  return true;
}

bool JsonMembers::skip_value() {
  const char byte = at_ < line_.size() ? line_[at_] : '\0';
  if (byte == '"') return skip_string();
  if (byte == '{' || byte == '[') return skip_nested();
  if (byte == '-' || is_digit(byte)) return skip_number();
  return skip_literal();
}

bool JsonMembers::next(JsonMember& member) {
  if (broken_) return false;
  skip_blanks();
  if (!begun_) {
    begun_ = true;
    if (at_ == line_.size()) return false;
    if (!take('{')) return give_up();
    skip_blanks();
    if (take('}')) {
      skip_blanks();
      return at_ == line_.size() ? false : give_up();
    }
  } else if (take('}')) {
    skip_blanks();
    return at_ == line_.size() ? false : give_up();
  } else if (take(',')) {
    skip_blanks();
  } else {
    return at_ == line_.size() && !line_.empty() ? give_up() : give_up();
  }
  member.key_begin = at_;
  if (!skip_string()) return give_up();
  member.key_end = at_;
  skip_blanks();
  if (!take(':')) return give_up();
  skip_blanks();
  member.begin = at_;
  if (!skip_value()) return give_up();
  member.end = at_;
  return true;
}

bool is_json_number(std::string_view text) {
  // The grammar stands in one place: a number is what a member may have as its value.
  const std::string object = fmt::format("{{\"\":{}}}", text);
  JsonMember member;
  JsonMembers members(object);
  return members.next(member) && (text.starts_with('-') || (!text.empty() && is_digit(text[0]))) &&
         member.end - member.begin == text.size() && !members.next(member) && members.well_formed();
}

bool decode_json_string(std::string_view token, std::string& value) {
  const nlohmann::json json = nlohmann::json::parse(token.begin(), token.end(), nullptr, false);
  if (!json.is_string()) return false;
  value = json.get_ref<const std::string&>();
  return true;
}

void append_json_string(std::string_view value, std::string& out) {
  out += '"';
  for (const char byte : value) {
    if (byte == '"' || byte == '\\') {
      out += '\\';
      out += byte;
    } else if (static_cast<unsigned char>(byte) >= 0x20) {
      out += byte;
    } else {
      fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(byte));
    }
  }
  out += '"';
}

}  // namespace vxcli::table
