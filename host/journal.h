// Journals: where messages and statuses go, and how they become text.
#ifndef VXNLS_HOST_JOURNAL_H
#define VXNLS_HOST_JOURNAL_H

#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "host/accounting.h"
#include "vxnls/host.h"
#include "vxnls/vxhost.h"

namespace vxhost {

/// Where the journals of a host end: a callback, standard error, or nowhere. Entries arrive one at a time.
class JournalSink {
 public:
  /// Standard error when VXHOST_JOURNAL says "stderr", else nowhere.
  JournalSink();

  void set(VXHostJournal callback, void* user);
  void write(uint32_t level, std::string_view journal, const std::string& text) noexcept;

 private:
  std::recursive_mutex mutex_;  // a callback may change the callback, or call what writes an entry itself
  VXHostJournal callback_ = nullptr;
  void* user_ = nullptr;
  bool to_standard_error_;
};

/// The text of a status; it may be asked from any thread.
using StatusText = std::function<std::string(VXStatus)>;

/// One journal, made by name. Its two to-buffer operations take these arguments:
///   message to buffer   the message (const VXChar*), the buffer (VXChar*), its room in VXChars (int64_t),
///                       the length that is written (int64_t*, in VXChars), 0
///   status to buffer    the buffer, its room, the length that is written, as above
/// Both return 0, VX_E_TRUNCATED when the text was cut, VX_E_NULL for a null argument.
/// A message is text that ends in 0, with the conversions %s (VXChar text ending in 0), %d, %u, %x (32 bits), %ld, %lu,
/// %lx (64 bits) and %%; any other stands for itself.
class Journal final : public VXJournal, Counted<Kind::journal> {
 public:
  Journal(JournalSink& sink, StatusText status_text, std::string name);

  JournalSink& sink;
  const StatusText status_text;
  const std::string name;
};

}  // namespace vxhost

#endif
