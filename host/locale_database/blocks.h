// The blocks of the record that the library does not read: vxnls/locale_blocks.h says what they hold.
#ifndef VXNLS_HOST_LOCALE_DATABASE_BLOCKS_H
#define VXNLS_HOST_LOCALE_DATABASE_BLOCKS_H

#include "host/locale_database/cldr.h"
#include "vxnls/locale.h"

namespace vxnlsldb {

/// ISO 4217 code of the locale's currency; "XXX" for a locale without a country.
std::string currency_code(const char* name);
/// The symbol of that currency in the locale's language: "$", "US$", "zł".
std::u32string currency_symbol(const char* name, const Cldr& cldr);
/// The first day of the region's week, 1 Sunday .. 7 Saturday.
int32_t first_week_day(const char* name);

/// Writes identity, clock, signs, currency, customs, number forms and texts. The patterns that the library reads must
/// stand in the record already; the version word (kind 7) is the caller's.
void fill_blocks(const char* name, const Cldr& cldr, VXLocaleData& record);

/// Whole CLDR version: 42.
int cldr_version();

}  // namespace vxnlsldb

#endif
