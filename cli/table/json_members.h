// The members of a JSON object, as places in its text.
#ifndef VXNLS_CLI_TABLE_JSON_MEMBERS_H
#define VXNLS_CLI_TABLE_JSON_MEMBERS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace vxcli::table {

/// The bytes that the members' names and values take, quotes and brackets included.
struct JsonMember {
  size_t key_begin = 0, key_end = 0;
  size_t begin = 0, end = 0;
};

/// Walks over the top-level members of a line. Strings, numbers and literals are checked by JSON's grammar; within
/// nested objects and arrays only brackets and strings.
class JsonMembers {
 public:
  explicit JsonMembers(std::string_view line) : line_(line) {}

  /// False at the end of the object, at the end of a line that is blank, and where the line is not an object.
  bool next(JsonMember& member);
  /// After the end: whether all was well.
  bool well_formed() const { return well_formed_; }
  /// Where it is not: the first byte that cannot stand there, or the end.
  size_t broken_at() const { return at_; }

 private:
  std::string_view line_;
  size_t at_ = 0;
  bool ended_ = false;
  bool well_formed_ = true;
};

/// Whether the whole text is a number by JSON's grammar.
bool is_json_number(std::string_view text);

/// Decodes a string, given with its quotes. False where it holds an escape that means nothing or bytes that are not
/// UTF-8.
bool decode_json_string(std::string_view token, std::string& value);

/// Appends a string with its quotes; only what must be escaped is. Bytes that are not UTF-8 stay.
void append_json_string(std::string_view value, std::string& out);

}  // namespace vxcli::table

#endif
