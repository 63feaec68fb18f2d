#include "host/journal.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "host/text.h"

namespace vxhost {

namespace {

void append_number(std::string& text, const char* format, auto number) {
  char digits[32];
  const int length = std::snprintf(digits, sizeof digits, format, number);
  if (length > 0) text.append(digits, static_cast<size_t>(length));
}

/// One conversion after its "%", with `wide` for an "l". False when the letter is none. The va_list is the caller's
/// own, who goes on with it: after reading from a copy nobody may.
bool append_conversion(std::string& text, VXChar letter, bool wide, auto& arguments) {
  switch (letter) {
    case 'd':
      if (wide) append_number(text, "%lld", static_cast<long long>(va_arg(arguments, int64_t)));
      else append_number(text, "%d", va_arg(arguments, int32_t));
      return true;
    case 'u':
      if (wide) append_number(text, "%llu", static_cast<unsigned long long>(va_arg(arguments, uint64_t)));
      else append_number(text, "%u", va_arg(arguments, uint32_t));
      return true;
    case 'x':
      if (wide) append_number(text, "%llx", static_cast<unsigned long long>(va_arg(arguments, uint64_t)));
      else append_number(text, "%x", va_arg(arguments, uint32_t));
      return true;
    case 's':
      if (wide) return false;
      if (const auto* insert = va_arg(arguments, const VXChar*)) {
        for (; *insert != 0; ++insert) append_utf8(text, *insert);
      }
      return true;
    case '%':
      if (wide) return false;
      text += '%';
      return true;
    default: return false;
  }
}

std::string message_text(const VXChar* message, va_list arguments) {
  std::string text;
  if (message == nullptr) return text;
  for (const VXChar* at = message; *at != 0; ++at) {
    if (*at == '%') {
      const bool wide = at[1] == 'l';
      if (append_conversion(text, at[wide ? 2 : 1], wide, arguments)) {
        at += wide ? 2 : 1;
        continue;
      }
    }
    append_utf8(text, *at);
  }
  return text;
}

VXStatus to_buffer(const std::string& text, uint64_t buffer_word, uint64_t room_word, uint64_t length_word) {
  auto* const buffer = reinterpret_cast<VXChar*>(buffer_word);
  auto* const length = reinterpret_cast<int64_t*>(length_word);
  const auto room = static_cast<int64_t>(room_word);
  if (buffer == nullptr || length == nullptr) return VX_E_NULL;
  const int64_t needed = decode(text, buffer, room);
  *length = std::clamp<int64_t>(needed, 0, std::max<int64_t>(room, 0));
  return needed > *length ? VX_E_TRUNCATED : 0;
}

const Journal& of(VXJournal* self) { return *static_cast<Journal*>(self); }

constexpr VXJournalOps operations = {
    [](VXJournal*, uint64_t message, uint64_t buffer, uint64_t room, uint64_t length, uint64_t,
       va_list arguments) -> VXStatus {
      if (message == 0) return VX_E_NULL;
      return guarded<VXStatus>(VX_E_MEMORY, [&] {
        return to_buffer(message_text(reinterpret_cast<const VXChar*>(message), arguments), buffer, room, length);
      });
    },
    [](VXJournal* self, uint32_t level, const VXChar* message, uint64_t, va_list arguments) -> VXStatus {
      if (message == nullptr) return VX_E_NULL;
      return guarded<VXStatus>(VX_E_MEMORY, [&] {
        of(self).sink.write(level, of(self).name, message_text(message, arguments));
        return 0u;
      });
    },
    [](VXJournal* self, int64_t status, uint64_t buffer, uint64_t room, uint64_t length, va_list) -> VXStatus {
      return guarded<VXStatus>(VX_E_MEMORY, [&] {
        return to_buffer(of(self).status_text(static_cast<VXStatus>(status)), buffer, room, length);
      });
    },
    [](VXJournal* self, uint32_t level, int64_t status, va_list) -> VXStatus {
      return guarded<VXStatus>(VX_E_MEMORY, [&] {
        of(self).sink.write(level, of(self).name, of(self).status_text(static_cast<VXStatus>(status)));
        return 0u;
      });
    },
    {},
    [](VXJournal*, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) -> void* { return nullptr; },  // English only
};

}  // namespace

JournalSink::JournalSink() {
  const char* const wanted = std::getenv("VXHOST_JOURNAL");
  to_standard_error_ = wanted != nullptr && std::strcmp(wanted, "stderr") == 0;
}

void JournalSink::set(VXHostJournal callback, void* user) {
  const std::lock_guard guard(mutex_);
  callback_ = callback;
  user_ = user;
}

void JournalSink::write(uint32_t level, std::string_view journal, const std::string& text) noexcept {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const std::lock_guard guard(mutex_);
  if (callback_ != nullptr) {
    callback_(user_, level, std::chrono::duration<double>(now).count(), text.c_str());
  } else if (to_standard_error_) {
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    const std::time_t seconds = milliseconds / 1000;
    std::tm fields{};
    char stamp[32];
    if (gmtime_r(&seconds, &fields) == nullptr || std::strftime(stamp, sizeof stamp, "%FT%T", &fields) == 0) *stamp = 0;
    static_cast<void>(std::fprintf(stderr, "%s.%03dZ %.*s level %u: %s\n", stamp, static_cast<int>(milliseconds % 1000),
                                   static_cast<int>(journal.size()), journal.data(), level, text.c_str()));
  }
}

Journal::Journal(JournalSink& to, StatusText text_of_status, std::string own_name)
    : VXJournal{&operations}, sink(to), status_text(std::move(text_of_status)), name(std::move(own_name)) {}

}  // namespace vxhost
