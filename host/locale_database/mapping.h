// CLDR to the record: one locale's data, filled whole.
#ifndef VXNLS_HOST_LOCALE_DATABASE_MAPPING_H
#define VXNLS_HOST_LOCALE_DATABASE_MAPPING_H

#include <string>
#include <vector>

#include "vxnls/locale.h"

namespace vxnlsldb {

/// An entry of the record that does not stand as CLDR has it. All texts are UTF-8.
struct Fallback {
  std::string entry;   // the field of VXLocaleData: "datePattern1"
  std::string used;    // what stands there
  std::string reason;  // "R6: "thg 10" reads as "thg 1"; CLDR has "d MMM, y""
};

/// Fills every byte of the record.
///   name       canonical ICU name: "de_DE", "root"
///   fallbacks  receives what could not be taken over; null: nobody asks
/// Returns 0; 0x803fe80f when the locale has no data of its own and an ancestor's stands in; 0x803fe80b when ICU has no
/// data at all, with the record empty but defined.
VXStatus fill_record(const char* name, VXLocaleData* record, std::vector<Fallback>* fallbacks);

}  // namespace vxnlsldb

#endif
