// The extension "vxnlsudb": class tests and case mapping of single characters, from ICU's Unicode data.
#include <unicode/uchar.h>

#include <iterator>
#include <new>

#include "host/extension.h"
#include "host/unicode_database_ops.h"

namespace {

// The class bit of each general category, in ICU's order of categories.
constexpr uint32_t class_bits[] = {
    0x10000,                                                  // Cn
    0x1,       0x2,       0x4,        0x20000,    0x40000,    // Lu Ll Lt Lm Lo
    0x8,       0x20,      0x10,                               // Mn Me Mc
    0x40,      0x80,      0x100,                              // Nd Nl No
    0x200,     0x400,     0x800,                              // Zs Zl Zp
    0x1000,    0x2000,    0x8000,     0x4000,                 // Cc Cf Co Cs
    0x100000,  0x200000,  0x400000,   0x80000,    0x2000000,  // Pd Ps Pe Pc Po
    0x4000000, 0x8000000, 0x10000000, 0x20000000,             // Sm Sc Sk So
    0x800000,  0x1000000,                                     // Pi Pf
};
static_assert(std::size(class_bits) == U_CHAR_CATEGORY_COUNT);
static_assert(U_NON_SPACING_MARK == 6 && U_DECIMAL_DIGIT_NUMBER == 9 && U_SURROGATE == 18 && U_FINAL_PUNCTUATION == 29);

struct UnicodeDatabase final : VXUnicodeDatabase {
  explicit UnicodeDatabase(VXHostExtensionOwner* its_owner);
  VXHostExtensionOwner* const owner;
};

UChar32 code_point_of(uint32_t c) { return c <= 0x10FFFF ? static_cast<UChar32>(c) : -1; }

VXStatus destroy(VXExtension* self) {
  auto* const database = static_cast<UnicodeDatabase*>(reinterpret_cast<VXUnicodeDatabase*>(self));
  VXHostExtensionOwner* const owner = database->owner;
  delete database;
  owner->closed(owner);
  return 0;
}

int32_t test_class(VXUnicodeDatabase*, uint32_t code_point, uint32_t bits) {
  const UChar32 c = code_point_of(code_point);
  return c >= 0 && (class_bits[u_charType(c)] & bits) != 0 ? 1 : 0;
}

uint32_t lower(VXUnicodeDatabase*, uint32_t code_point) {
  const UChar32 c = code_point_of(code_point);
  return c >= 0 ? static_cast<uint32_t>(u_tolower(c)) : code_point;
}

uint32_t upper(VXUnicodeDatabase*, uint32_t code_point) {
  const UChar32 c = code_point_of(code_point);
  return c >= 0 ? static_cast<uint32_t>(u_toupper(c)) : code_point;
}

constexpr VXHostUnicodeDatabaseOps operations = {{destroy, test_class}, lower, upper};

UnicodeDatabase::UnicodeDatabase(VXHostExtensionOwner* its_owner)
    : VXUnicodeDatabase{&operations.base}, owner(its_owner) {}

VXExtension* open(VXHostExtensionOwner* owner) {
  return reinterpret_cast<VXExtension*>(static_cast<VXUnicodeDatabase*>(new (std::nothrow) UnicodeDatabase(owner)));
}

}  // namespace

VXHOST_EXTENSION("vxnlsudb", open);
