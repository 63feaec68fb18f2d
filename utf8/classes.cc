#include "module/host_services.h"
#include "unicode/class_tables.h"
#include "utf8/characters.h"
#include "utf8/steps.h"
#include "vxnls/utf8.h"

namespace {

int32_t is_combining(int32_t code_point) {
  constexpr int32_t zero_width_non_joiner = 0x200C, zero_width_joiner = 0x200D;
  if (code_point == zero_width_non_joiner || code_point == zero_width_joiner) return 1;
  VXUnicodeDatabase* const database = vxnls::host::unicode_database();
  return database != nullptr &&
         database->ops->test_class(database, static_cast<uint32_t>(code_point), vxnls::class_combining) != 0;
}

}  // namespace

int32_t vxnls::_VXZSU8IsFunct(const uint8_t* ch, int32_t (*predicate)(int32_t)) {
  if (ch == nullptr) return 0;
  // As many bytes as the lead announces, but none behind a NUL.
  const auto there = static_cast<int64_t>(strnlen(reinterpret_cast<const char*>(ch), _utf8_len[*ch]));
  return predicate(static_cast<int32_t>(Utf8Text::decode(ch, std::max<int64_t>(there, 1)).code_point));
}

int32_t vxzsu8IsCombining(const uint8_t* ch) { return vxnls::_VXZSU8IsFunct(ch, is_combining); }
