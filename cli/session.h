// What a command works with: the host, and the locale and zone that were asked for.
#ifndef VXNLS_CLI_SESSION_H
#define VXNLS_CLI_SESSION_H

#include <memory>
#include <optional>
#include <string>

#include "cli/arguments.h"
#include "cli/color.h"
#include "cli/input.h"
#include "cli/output.h"
#include "cli/value.h"
#include "cli/zone.h"
#include "vxnls/vxhost.h"

namespace vxcli {

/// Everything is found when it is first asked for, so that a command pays for what it uses.
/// All throw Failure: ExitCode::usage for a wrong name, ExitCode::host when the host fails.
class Session {
 public:
  Session(const Arguments& arguments, const Messages& messages) : arguments_(arguments), messages_(messages) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  VXHost* host();
  /// The canonical name of the locale whose data is used; says so when that is a substitute.
  const std::string& locale_name() { return locale_name(arguments_.command().category); }
  const std::string& locale_name(LocaleCategory category) { return chosen_locale(category).name; }
  /// Why it is that one: "--locale", "VXNLS_LOCALE", "LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG", or "default" when
  /// nothing names a locale.
  const std::string& locale_source() { return locale_source(arguments_.command().category); }
  const std::string& locale_source(LocaleCategory category) { return chosen_locale(category).source; }
  const Zone& zone();
  /// Likewise: "--zone", "VXNLS_ZONE", "TZ" or "system".
  const std::string& zone_source() { return zone(), zone_source_; }
  /// A locale of its own for this session, whose record may be changed.
  VXLocale* locale() { return locale_ != nullptr ? locale_ : locale_ = locale_called(locale_name()); }
  /// The same of another canonical name, a new one each time.
  VXLocale* locale_called(const std::string& name) { return locale_called(name, zone().id()); }
  VXLocale* locale_called(const std::string& name, const std::string& zone);
  ValueReader& values();

  /// What `name` resolves to. `source` says where the name comes from ("LANG"); empty or an option: from the command
  /// line.
  std::string resolve_locale(const std::string& name, const std::string& source);
  Zone open_zone(const std::string& name, const std::string& source);

 private:
  struct CloseHost {
    void operator()(VXHost* host) const { vxhostClose(host); }
  };

  struct Choice {
    std::string name;
    std::string source;
  };
  const Choice& chosen_locale(LocaleCategory category);
  Choice ask_for_locale(LocaleCategory category) const;

  const Arguments& arguments_;
  const Messages& messages_;
  std::unique_ptr<VXHost, CloseHost> host_;
  std::optional<Choice> locales_[3];  // by category
  std::optional<Zone> zone_;
  std::string zone_source_;
  std::optional<ValueReader> values_;
  VXLocale* locale_ = nullptr;
};

/// What the `run` of a command gets.
struct Invocation {
  const Arguments& arguments;
  Session& session;
  Output& out;
  const Messages& messages;
  Colors colors{};  // of standard output
};

/// The text of a status, with its number, and the exit code `host`.
[[noreturn]] void fail_with_status(VXHost* host, const std::string& what, VXStatus status);

}  // namespace vxcli

#endif
