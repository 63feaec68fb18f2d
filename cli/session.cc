#include "cli/session.h"

#include <cstdlib>
#include <new>
#include <span>
#include <utility>

#include "cli/options.h"
#include "cli/suggest.h"
#include "cli/text.h"

namespace vxcli {

namespace {

const char* set_variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

constexpr const char* variables_for_times[] = {"VXNLS_LOCALE", "LC_ALL", "LC_TIME", "LANG"};
constexpr const char* variables_for_numbers[] = {"VXNLS_LOCALE", "LC_ALL", "LC_NUMERIC", "LANG"};
constexpr const char* variables_for_both[] = {"VXNLS_LOCALE", "LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG"};

std::span<const char* const> locale_variables(LocaleCategory category) {
  if (category == LocaleCategory::numeric) return variables_for_numbers;
  if (category == LocaleCategory::both) return variables_for_both;
  return variables_for_times;
}

/// Where a wrong name stands; the command line goes without saying.
std::string in_front(const std::string& source) {
  return source.empty() || source.starts_with("--") ? "" : source + ": ";
}

int collect(void* names, const char* name) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  return 0;
}

}  // namespace

void fail_with_status(VXHost* host, const std::string& what, VXStatus status) {
  char text[256];
  if (vxhostStatusText(host, status, text, sizeof text) == VX_E_MEMORY) throw std::bad_alloc();
  fail(ExitCode::host, "{}: {}", what, text);
}

VXHost* Session::host() {
  if (host_ == nullptr) {
    VXHost* host = nullptr;
    if (vxhostOpen(nullptr, &host) != 0) {
      fail(ExitCode::host, "the host cannot start: {}", vxhostOpenFailure());
    }
    host_.reset(host);
  }
  return host_.get();
}

std::string Session::resolve_locale(const std::string& name, const std::string& source) {
  char canonical[64];
  const VXStatus status = vxhostResolveLocale(host(), name.c_str(), canonical, sizeof canonical);
  if (status == VX_W_SUBSTITUTE) {
    messages_.note(
        fmt::format("{}there is no locale {}; {} stands in for it", in_front(source), in_quotes(name), canonical));
  } else if (status == VX_E_NOMATCH || status == VX_E_ROOM) {
    std::vector<std::string> names;
    vxhostForEachLocale(host(), collect, &names);
    std::string suggestion = did_you_mean(name, names);
    if (suggestion.empty()) suggestion = "; \"vxnls locale list\" lists them";
    fail(ExitCode::usage, "{}there is no locale {}{}", in_front(source), in_quotes(name), suggestion);
  } else if (status != 0) {
    fail_with_status(host(), "the locale cannot be looked up", status);
  }
  return canonical;
}

Session::Choice Session::ask_for_locale(LocaleCategory category) const {
  if (auto given = arguments_.value(options::locale)) return {std::move(*given), spelled(options::locale)};
  for (const char* variable : locale_variables(category)) {
    if (const char* const value = set_variable(variable)) return {value, variable};
  }
  // A system that names no locale speaks as the C locale does.
  return {"C", "default"};
}

const Session::Choice& Session::chosen_locale(LocaleCategory category) {
  std::optional<Choice>& chosen = locales_[static_cast<size_t>(category)];
  if (!chosen) {
    Choice asked = ask_for_locale(category);
    std::string canonical = resolve_locale(asked.name, asked.source);
    chosen = Choice{std::move(canonical), std::move(asked.source)};
  }
  return *chosen;
}

Zone Session::open_zone(const std::string& name, const std::string& source) {
  if (auto zone = Zone::open(host(), name.c_str())) return std::move(*zone);
  std::string suggestion = did_you_mean(name, zone_ids(host()));
  if (suggestion.empty()) suggestion = "; \"vxnls zone list\" lists them";
  fail(ExitCode::usage, "{}there is no time zone {}{}", in_front(source), in_quotes(name), suggestion);
}

const Zone& Session::zone() {
  if (!zone_) {
    const auto choose = [&](const std::string& name, const char* source) {
      zone_.emplace(open_zone(name, source));
      zone_source_ = source;
    };
    if (const auto given = arguments_.value(options::zone)) {
      choose(*given, "--zone");
    } else if (const char* const own = set_variable("VXNLS_ZONE")) {
      choose(own, "VXNLS_ZONE");
    } else if (auto system = Zone::open(host(), nullptr)) {
      zone_.emplace(std::move(*system));
      zone_source_ = std::getenv("TZ") != nullptr ? "TZ" : "system";
    } else if (const char* const tz = set_variable("TZ")) {
      choose(tz, "TZ");
    } else {
      fail(ExitCode::usage, "the system does not say which time zone it is in; choose one with --zone");
    }
  }
  return *zone_;
}

VXLocale* Session::locale_called(const std::string& name, const std::string& zone) {
  constexpr uint32_t is_private = 1;
  VXLocale* locale = nullptr;
  const VXStatus status = vxhostLocale(host(), name.c_str(), zone.c_str(), is_private, &locale);
  if (status != 0) fail_with_status(host(), fmt::format("the locale {} cannot be made", name), status);
  return locale;
}

ValueReader& Session::values() {
  if (!values_) values_.emplace(zone());
  return *values_;
}

}  // namespace vxcli
