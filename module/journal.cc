// Forwarding to the journals and message objects of the host; reversal in place; the host's conversion table.
#include "vxnls/journal.h"

#include <algorithm>

#include "module/host_services.h"
#include "vxnls/locale.h"

VXStatus vxlMessageToBuf(VXJournal* journal, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, ...) {
  if (journal == nullptr) return 0;
  va_list rest;
  va_start(rest, a5);
  const VXStatus status = journal->ops->message_to_buffer(journal, a1, a2, a3, a4, a5, rest);
  va_end(rest);
  return status;
}

VXStatus vxlMessageToJnl(VXJournal* journal, uint32_t level, const VXChar* message, uint64_t extra, ...) {
  if (journal == nullptr) return 0;
  va_list rest;
  va_start(rest, extra);
  const VXStatus status = journal->ops->message_to_journal(journal, level, message, extra, rest);
  va_end(rest);
  return status;
}

VXStatus vxlStatusToBuf(VXJournal* journal, int32_t status, uint64_t a1, uint64_t a2, uint64_t a3, ...) {
  if (journal == nullptr) return 0;
  va_list rest;
  va_start(rest, a3);
  const VXStatus result = journal->ops->status_to_buffer(journal, status, a1, a2, a3, rest);
  va_end(rest);
  return result;
}

VXStatus vxlStatusToJnl(VXJournal* journal, uint32_t level, int32_t status, ...) {
  if (journal == nullptr) return 0;
  va_list rest;
  va_start(rest, status);
  const VXStatus result = journal->ops->status_to_journal(journal, level, status, rest);
  va_end(rest);
  return result;
}

void* vxlGetLocale(VXJournal* journal, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5) {
  return journal != nullptr ? journal->ops->get_locale(journal, a1, a2, a3, a4, a5) : nullptr;
}

namespace {

template <class Unit>
void reverse(Unit* buffer, int64_t n) {
  if (buffer != nullptr && n > 1) std::reverse(buffer, buffer + n);
}

}  // namespace

VXStatus vxzbytrv(uint8_t* buffer, int64_t n) {
  reverse(buffer, n);
  return 0;
}

void vxztchrv(VXChar* buffer, int64_t n) { reverse(buffer, n); }

VXBDConv* vxGetBDConv(void) { return vxnls::host::conversions(); }
