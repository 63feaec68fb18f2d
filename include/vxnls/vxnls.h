// The whole C interface of vxnlsloc: one include for programs that use several families.
#ifndef VXNLS_VXNLS_H
#define VXNLS_VXNLS_H

#include "vxnls/bytes.h"
#include "vxnls/calendar.h"
#include "vxnls/classes.h"
#include "vxnls/collation.h"
#include "vxnls/datetime_format.h"
#include "vxnls/datetime_parse.h"
#include "vxnls/explain.h"
#include "vxnls/explain_number.h"
#include "vxnls/host.h"
#include "vxnls/journal.h"
#include "vxnls/locale.h"
#include "vxnls/module.h"
#include "vxnls/number_format.h"
#include "vxnls/number_parse.h"
#include "vxnls/strings.h"
#include "vxnls/table.h"
#include "vxnls/types.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"
#include "vxnls/zones.h"

#endif
