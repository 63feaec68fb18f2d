// Why a text was not understood, in one line for people.
#ifndef VXNLS_CLI_REFUSAL_H
#define VXNLS_CLI_REFUSAL_H

#include <string>
#include <string_view>

#include "vxnls/explain.h"
#include "vxnls/explain_number.h"

namespace vxcli {

/// at byte 5: "13" is not a month (1 to 12), reading %m
std::string describe(const VXExplainRefusal& refusal, std::string_view text);

/// The same without the place.
std::string describe_reason(const VXExplainRefusal& refusal, std::string_view text);

/// The same of a number that was not understood; its place is `reading.fault_offset`.
std::string describe_reason(const VXNumberReading& reading, std::string_view text);

/// Where a candidate comes from: the locale's date pattern, common form 4 ...
std::string describe_source(const VXExplainCandidate& candidate);

/// A directive as it stands in a pattern: %#d
std::string directive(VXChar letter, VXChar modifier);

}  // namespace vxcli

#endif
