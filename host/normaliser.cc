#include "host/normaliser.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/unorm.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <string>

namespace vxhost {

namespace {

constexpr uint32_t ignore_case = 1;

VXStatus check_text(const uint8_t* text, int64_t length) {
  if (length < 0) return VX_E_LENGTH;
  if (text == nullptr && length > 0) return VX_E_NULL;
  if (length > INT32_MAX) return VX_E_RANGE;
  for (int64_t at = 0; at < length;) {
    UChar32 c = 0;
    U8_NEXT(text, at, length, c);
    if (c < 0) return VX_E_SEQUENCE;
  }
  return 0;
}

icu::StringPiece piece(const uint8_t* text, int64_t length) {
  return {reinterpret_cast<const char*>(text), static_cast<int32_t>(length)};
}

VXStatus status_of(UErrorCode error) {
  if (U_SUCCESS(error)) return 0;
  return error == U_MEMORY_ALLOCATION_ERROR ? VX_E_MEMORY : VX_E_RANGE;
}

const icu::Normalizer2* form_of(uint32_t form, UErrorCode& error) {
  switch (form) {
    case 0: return icu::Normalizer2::getNFCInstance(error);
    case 1: return icu::Normalizer2::getNFDInstance(error);
    case 2: return icu::Normalizer2::getNFKCInstance(error);
    case 3: return icu::Normalizer2::getNFKDInstance(error);
    default: return nullptr;
  }
}

VXStatus normalise(const uint8_t* source, int64_t length, uint32_t form, uint8_t* destination, int64_t room,
                   int64_t* needed) {
  if (const VXStatus bad = check_text(source, length)) return bad;
  if (needed == nullptr) return VX_E_NULL;
  UErrorCode error = U_ZERO_ERROR;
  const icu::Normalizer2* const normalizer = form_of(form, error);
  if (normalizer == nullptr) return U_FAILURE(error) ? status_of(error) : VX_E_KIND;
  std::string result;
  icu::StringByteSink<std::string> sink(&result, static_cast<int32_t>(length));
  normalizer->normalizeUTF8(0, piece(source, length), sink, nullptr, error);
  if (const VXStatus bad = status_of(error)) return bad;
  *needed = static_cast<int64_t>(result.size());
  if (destination == nullptr) return 0;
  if (*needed > room) return VX_E_ROOM;
  std::copy(result.begin(), result.end(), destination);
  return 0;
}

int32_t compare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint32_t options,
                VXStatus& status) {
  status = (options & ~ignore_case) != 0 ? VX_E_KIND : check_text(a, length_a);
  if (status == 0) status = check_text(b, length_b);
  if (status != 0) return 0;
  const auto wide_a = icu::UnicodeString::fromUTF8(piece(a, length_a));
  const auto wide_b = icu::UnicodeString::fromUTF8(piece(b, length_b));
  if (wide_a.isBogus() || wide_b.isBogus()) {
    status = VX_E_MEMORY;
    return 0;
  }
  UErrorCode error = U_ZERO_ERROR;
  const uint32_t how = U_COMPARE_CODE_POINT_ORDER | ((options & ignore_case) != 0 ? U_COMPARE_IGNORE_CASE : 0);
  const int32_t order =
      unorm_compare(wide_a.getBuffer(), wide_a.length(), wide_b.getBuffer(), wide_b.length(), how, &error);
  status = status_of(error);
  if (status != 0) return 0;
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

constexpr VXNormaliserOps operations = {
    [](VXNormaliser*, const uint8_t* source, int64_t length, uint32_t form, uint64_t destination, uint64_t room,
       uint64_t needed, VXStatus* status) -> VXStatus {
      const VXStatus result = guarded<VXStatus>(VX_E_MEMORY, [&] {
        return normalise(source, length, form, reinterpret_cast<uint8_t*>(destination), static_cast<int64_t>(room),
                         reinterpret_cast<int64_t*>(needed));
      });
      if (status != nullptr) *status = result;
      return result;
    },
    [](VXNormaliser*, const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint32_t options,
       VXStatus* status) -> int32_t {
      VXStatus result = VX_E_MEMORY;
      const int32_t order = guarded<int32_t>(0, [&] { return compare(a, length_a, b, length_b, options, result); });
      if (status != nullptr) *status = result;
      return order;
    },
};

}  // namespace

Normaliser::Normaliser() noexcept : VXNormaliser{&operations} {}

}  // namespace vxhost
