/// The C++ face of vxnlsloc: C++20, headers alone, over the C interface of those beside them.
///
///   auto host = vxnls::host::open().value();
///   auto german = host.locale("de_DE", "Europe/Berlin").value();
///   german.format(2026y / November / 21).value();                           // "21.11.2026"
///   german.parse<year_month_day>("31. Dezember 2021", vxnls::form::any);    // 2021-12-31
///   german.format(1234567.891, {.decimals = 2, .group = true}).value();     // "1.234.567,89"
///
/// `format` and `parse` go by the type of the value:
///
///   std::chrono::year_month_day            a date, 1582-01-01 to 20000-12-31; so are sys_days and local_days
///   a std::chrono::duration, hh_mm_ss      a time of day, 0 to below 24 hours
///   std::chrono::local_time                a date and time of the locale's zone, as it stands on the wall there
///   std::chrono::sys_time                  an instant; the locale's zone says what stands on the wall then
///   integers of 8 to 64 bits, double       a number
///   vxnls::percent, vxnls::money           a share of 1, an amount in the locale's currency (format only)
///
/// Texts go in as std::string_view (UTF-8) or std::u32string_view. They come out as what the first template argument
/// names: std::string, std::u32string, or a vxnls::buffer of a size known at compile time; `format_to` writes into the
/// caller's span. Lengths, widths and positions count units: bytes of UTF-8, or code points of UTF-32.
///
/// Nothing is thrown unless asked for: every call returns a result, whose value() throws vxnls::error when there is
/// none. Calls that make a std::string may pass on std::bad_alloc; calls with a span or a buffer allocate nothing.
///
/// Threads may share a host and its locales. Link with libvxnlsloc, and with libvxhost for vxnls::host.
#ifndef VXNLS_VXNLS_HPP
#define VXNLS_VXNLS_HPP

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vxnls/locale.hpp"
#include "vxnls/result.hpp"
#include "vxnls/text.hpp"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace vxnls {

namespace detail {

/// A text that a result may point to from now on: each is kept once, and for good.
inline const char* kept(const char* text) {
  static std::mutex guard;
  static auto& all = *new std::set<std::string>;
  const std::lock_guard lock(guard);
  return all.emplace(text).first->c_str();
}

}  // namespace detail

/// Patterns of a program's own, in the directives of datetime_format.h; an empty one leaves the locale's.
struct patterns {
  std::string_view date = {}, medium_date = {}, long_date = {};
  std::string_view time = {}, short_time = {};
  std::string_view datetime = {};
};

/// What is in force in a zone.
struct zone_state {
  std::string id, abbreviation;   ///< "Europe/Berlin", "CEST"
  std::chrono::seconds offset{};  ///< east of UTC
  bool summer_time = false;
};

/// A line for the journal: level 3 a notice, 4 a failure.
struct journal_entry {
  std::uint32_t level;
  double unix_seconds;
  std::string_view text;  ///< valid during the call
};

/// The reference host: gives out locales. Moves, and closes in the end; its locales are good as long as it is open.
class host {
 public:
  host() = default;
  host(host&&) noexcept = default;
  host& operator=(host&& other) noexcept {
    raw_ = std::move(other.raw_);  // closes the host that was here, which may still write to its journal
    journal_ = std::move(other.journal_);
    return *this;
  }

  /// Loads the library and its extensions from a folder; an empty one: where libvxhost.so lies.
  static result<host> open(const std::string& folder = {}) {
    host opened;
    VXHost* raw = nullptr;
    const VXStatus status = vxhostOpen(folder.empty() ? nullptr : folder.c_str(), &raw);
    opened.raw_.reset(raw);
    return {status, std::move(opened), 0, {status != 0 ? detail::kept(vxhostOpenFailure()) : nullptr}};
  }
  VXHost* get() const noexcept { return raw_.get(); }

  /// A locale by name ("de_DE", "sr-Latn-RS", "de_DE.UTF-8") and zone; an empty zone is the system's. VX_E_NOMATCH: no
  /// such locale; VX_E_ZONE: no such zone. One name and zone always give the same locale.
  result<vxnls::locale> locale(std::string_view name, std::string_view zone = {}) const noexcept {
    return make(name, zone, 0);
  }
  /// A locale with patterns of one's own. It is made anew by each call (about 50 KB, until the host closes) and never
  /// shared. VX_E_LENGTH: a pattern has more than 60 characters; VX_E_SEQUENCE: it is not UTF-8.
  result<vxnls::locale> locale(std::string_view name, std::string_view zone, const patterns& own) const noexcept {
    auto made = make(name, zone, 1);
    if (!made) return made;
    VXLocaleData& data = *made->get()->localeData;
    const std::pair<NLSName*, std::string_view> entries[] = {
        {&data.datePattern, own.date}, {&data.datePattern1, own.medium_date}, {&data.datePattern2, own.long_date},
        {&data.timePattern, own.time}, {&data.timePattern1, own.short_time},  {&data.datetimePattern, own.datetime}};
    for (const auto& [entry, text] : entries) {
      if (text.empty()) continue;
      if (!is_well_formed(text)) return {VX_E_SEQUENCE, {}};
      if (vxzsu8NumChars(detail::in(text.data()), detail::length(text)) > 60) return {VX_E_LENGTH, {}};
      std::int64_t size = 0;
      ConvertToUTF32(detail::in(text.data()), detail::length(text), reinterpret_cast<std::uint8_t*>(entry->text),
                     sizeof entry->text, &size, &UTF8_UTF32, &COPY_UTF32_SWAP);
      entry->length = size / 4;
    }
    return made;
  }

  /// The canonical name that a locale name leads to. VX_W_SUBSTITUTE, with the name: another locale stands in.
  result<std::string> resolve(std::string_view name) const {
    const detail::c_string ascii(name);
    char canonical[64] = {};
    const VXStatus status =
        ascii.fits ? vxhostResolveLocale(get(), ascii.bytes, canonical, sizeof canonical) : VX_E_NOMATCH;
    return {status, canonical};
  }
  std::vector<std::string> locales() const { return names(&vxhostForEachLocale); }
  std::vector<std::string> zones() const { return names(&vxhostForEachZone); }

  /// What is in force in a zone at an instant, or at a local time of it; an empty zone is the system's.
  result<zone_state> zone_at(std::string_view zone, std::chrono::sys_seconds at) const {
    return state(zone, VX_ZONE_FROM_UTC, at.time_since_epoch());
  }
  result<zone_state> zone_at(std::string_view zone, std::chrono::local_seconds at) const {
    return state(zone, VX_ZONE_FROM_LOCAL, at.time_since_epoch());
  }

  /// What a status means: "0x803fe83c: no time zone has this name".
  std::string describe(VXStatus status) const {
    char text[256] = {};
    vxhostStatusText(get(), status, text, sizeof text);
    return text;
  }
  /// Versions of what stands behind the host: "ICU 72.1; CLDR 42; ...".
  std::string_view versions() const noexcept { return vxhostVersions(get()); }
  /// Sends the journal's lines to a function, called from any thread and by one at a time; it must not throw.
  void on_journal(std::function<void(const journal_entry&)> each) {
    auto next = each ? std::make_unique<std::function<void(const journal_entry&)>>(std::move(each)) : nullptr;
    const VXHostJournal call = [](void* user, std::uint32_t level, double seconds, const char* text) noexcept {
      (*static_cast<std::function<void(const journal_entry&)>*>(user))({level, seconds, text});
    };
    vxhostSetJournal(get(), next ? call : nullptr, next.get());
    journal_ = std::move(next);
  }

 private:
  struct close {
    void operator()(VXHost* raw) const noexcept { vxhostClose(raw); }
  };

  result<vxnls::locale> make(std::string_view name, std::string_view zone, std::uint32_t flags) const noexcept {
    const detail::c_string name_text(name), zone_text(zone);
    if (!name_text.fits) return {VX_E_NOMATCH, {}, 0, {"no such locale"}};
    if (!zone_text.fits) return {VX_E_ZONE, {}, 0, {"no such time zone"}};
    VXLocale* raw = nullptr;
    const VXStatus status = vxhostLocale(get(), name_text.bytes, zone.empty() ? nullptr : zone_text.bytes, flags, &raw);
    const char* const what = status == VX_E_NOMATCH ? "no such locale"
                             : status == VX_E_ZONE  ? "no such time zone"
                                                    : nullptr;
    return {status, vxnls::locale(raw), 0, {what}};
  }

  template <class ForEach>
  std::vector<std::string> names(ForEach for_each) const {
    std::vector<std::string> all;
    const auto each = [](void* user, const char* name) {
      return static_cast<std::vector<std::string>*>(user)->emplace_back(name), 0;
    };
    for_each(get(), each, &all);
    return all;
  }

  result<zone_state> state(std::string_view zone, std::int32_t direction, std::chrono::seconds since_1970) const {
    const detail::c_string ascii(zone);
    const auto seconds = detail::seconds_1960(since_1970);
    if (!ascii.fits) return {VX_E_ZONE, {}};
    if (!seconds) return {VX_E_RANGE, {}};
    VXHostZoneInfo info{};
    const VXStatus status = vxhostZoneInfo(get(), zone.empty() ? nullptr : ascii.bytes, direction, *seconds, &info);
    return {status, {info.id, info.abbreviation, std::chrono::seconds{info.offset}, info.summer_time != 0}};
  }

  std::unique_ptr<std::function<void(const journal_entry&)>> journal_;
  std::unique_ptr<VXHost, close> raw_;
};

}  // namespace vxnls

#endif
