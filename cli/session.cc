#include "cli/session.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "cli/options.h"
#include "cli/suggest.h"
#include "cli/text.h"

namespace vxcli {

namespace {

struct Choice {
  std::string value;
  std::string source;  // the variable's name; empty: the command line
};

/// The first variable that is set and not empty.
template <size_t N>
std::optional<Choice> from_environment(const std::array<const char*, N>& variables) {
  for (const char* variable : variables) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return Choice{value, variable};
  }
  return std::nullopt;
}

std::string in_front(const std::string& source) { return source.empty() ? "" : source + ": "; }

int collect(void* names, const char* name) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  return 0;
}

}  // namespace

void fail_with_status(VXHost* host, const std::string& what, VXStatus status) {
  char text[256];
  vxhostStatusText(host, status, text, sizeof text);
  fail(ExitCode::host, "{}: {}", what, text);
}

VXHost* Session::host() {
  if (host_ == nullptr) {
    VXHost* host = nullptr;
    const VXStatus status = vxhostOpen(nullptr, &host);
    if (status != 0) {
      const std::string reason = vxhostOpenFailure();
      fail(ExitCode::host, "the host cannot start: {}",
           reason.empty() ? fmt::format("status 0x{:08x}", status) : reason);
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

const std::string& Session::locale_name() {
  if (!locale_name_) {
    // A system that names no locale speaks as the C locale does.
    Choice choice{"C", ""};
    if (const auto given = arguments_.value(options::locale)) {
      choice = {*given, ""};
    } else if (const auto variable = from_environment(std::array{"VXNLS_LOCALE", "LC_ALL", "LC_TIME", "LANG"})) {
      choice = *variable;
    }
    locale_name_ = resolve_locale(choice.value, choice.source);
  }
  return *locale_name_;
}

Zone Session::open_zone(const std::string& name, const std::string& source) {
  if (auto zone = Zone::open(host(), name.c_str())) return std::move(*zone);
  std::vector<std::string> ids;
  vxhostForEachZone(host(), collect, &ids);
  std::string suggestion = did_you_mean(name, ids);
  if (suggestion.empty()) suggestion = "; \"vxnls zone list\" lists them";
  fail(ExitCode::usage, "{}there is no time zone {}{}", in_front(source), in_quotes(name), suggestion);
}

const Zone& Session::zone() {
  if (!zone_) {
    if (const auto given = arguments_.value(options::zone)) {
      zone_.emplace(open_zone(*given, ""));
    } else if (const auto variable = from_environment(std::array{"VXNLS_ZONE"})) {
      zone_.emplace(open_zone(variable->value, variable->source));
    } else if (auto system = Zone::open(host(), nullptr)) {
      zone_.emplace(std::move(*system));
    } else if (const auto tz = from_environment(std::array{"TZ"})) {
      zone_.emplace(open_zone(tz->value, tz->source));
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
