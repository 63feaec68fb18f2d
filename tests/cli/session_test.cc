// Which locale, zone and colours a session takes, and why.
#include "cli/session.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "cli/color.h"
#include "tests/support/terminal.h"

namespace {

using namespace vxcli;
using Variables = std::vector<std::pair<const char*, const char*>>;

/// The environment has these variables and none of the others that a session asks for.
void set_environment(const Variables& variables) {
  for (const char* name : {"VXNLS_LOCALE", "VXNLS_ZONE", "LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG", "TZ", "NO_COLOR",
                           "CLICOLOR_FORCE", "TERM"}) {
    unsetenv(name);
  }
  for (const auto& [name, value] : variables) setenv(name, value, 1);
}

TEST(Session, SaysWhereLocaleAndZoneComeFrom) {
  static const struct {
    Variables variables;
    std::vector<std::string> options;
    const char* time;  // name and source by the category
    const char* numeric;
    const char* both;
    const char* zone;
  } cases[] = {
      {{}, {}, "en_US_POSIX default", "en_US_POSIX default", "en_US_POSIX default", nullptr},  // the zone is the
                                                                                               // system's
      {{{"LANG", "de_DE"}, {"TZ", "Asia/Tokyo"}}, {}, "de_DE LANG", "de_DE LANG", "de_DE LANG", "Asia/Tokyo TZ"},
      {{{"LANG", "de_DE"}, {"LC_NUMERIC", "fr"}, {"TZ", ""}},
       {},
       "de_DE LANG",
       "fr LC_NUMERIC",
       "fr LC_NUMERIC",
       "Etc/UTC TZ"},
      {{{"LC_TIME", "it_IT.UTF-8"}, {"LC_NUMERIC", "fr"}, {"LC_ALL", ""}, {"TZ", "Asia/Tokyo"}, {"VXNLS_ZONE", "UTC"}},
       {},
       "it_IT LC_TIME",
       "fr LC_NUMERIC",
       "it_IT LC_TIME",
       "Etc/UTC VXNLS_ZONE"},
      {{{"LC_ALL", "ja_JP"}, {"LC_TIME", "it_IT"}, {"LC_NUMERIC", "fr"}, {"VXNLS_ZONE", "Europe/Rome"}},
       {"-z", "europe/berlin"},
       "ja_JP LC_ALL",
       "ja_JP LC_ALL",
       "ja_JP LC_ALL",
       "Europe/Berlin --zone"},
      {{{"VXNLS_LOCALE", "pl"}, {"LC_ALL", "ja_JP"}, {"TZ", "UTC"}},
       {},
       "pl VXNLS_LOCALE",
       "pl VXNLS_LOCALE",
       "pl VXNLS_LOCALE",
       "Etc/UTC TZ"},
      {{{"VXNLS_LOCALE", "pl"}, {"TZ", "UTC"}},
       {"-l", "sv"},
       "sv --locale",
       "sv --locale",
       "sv --locale",
       "Etc/UTC TZ"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.variables));
    set_environment(c.variables);
    std::vector<std::string> words = c.options;
    words.insert(words.end(), {"format", "number", "1"});
    const Arguments arguments(words);
    const Messages messages;
    Session session(arguments, messages);
    const auto told = [&](LocaleCategory category) {
      return session.locale_name(category) + ' ' + session.locale_source(category);
    };
    EXPECT_EQ(told(LocaleCategory::time), c.time);
    EXPECT_EQ(told(LocaleCategory::numeric), c.numeric);
    EXPECT_EQ(told(LocaleCategory::both), c.both);
    EXPECT_EQ(session.locale_name() + ' ' + session.locale_source(), c.numeric);  // as the command wants it
    if (c.zone == nullptr) {
      EXPECT_EQ(session.zone_source(), "system");
    } else {
      EXPECT_EQ(session.zone().id() + ' ' + session.zone_source(), c.zone);
    }
  }
}

TEST(Color, WhenItIsOn) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  static const struct {
    Variables variables;
    const char* choice;
    bool on;
  } cases[] = {
      {{{"TERM", "xterm"}}, "auto", false},  // a pipe is no terminal
      {{{"NO_COLOR", "1"}, {"CLICOLOR_FORCE", "1"}}, "always", true},
      {{{"CLICOLOR_FORCE", "1"}}, "never", false},
      {{{"CLICOLOR_FORCE", "1"}}, "", true},
      {{{"CLICOLOR_FORCE", "0"}}, "auto", false},
      {{{"CLICOLOR_FORCE", "1"}, {"NO_COLOR", "1"}}, "auto", false},
      {{{"CLICOLOR_FORCE", "1"}, {"NO_COLOR", ""}}, "auto", true},
  };
  for (const auto& c : cases) {
    set_environment(c.variables);
    EXPECT_EQ(colors_for(c.choice, ends[1]).on(), c.on) << testing::PrintToString(c.variables) << c.choice;
  }
  close(ends[0]);
  close(ends[1]);
}

TEST(Color, OnATerminal) {
  static const struct {
    const char* line;
    const char* shown;  // "E" stands for the escape character
  } cases[] = {
      {"vxnls format date x", "E[1;31mvxnls:E[0m \"x\": "},
      {"vxnls format date x 2>&1 | cat", "vxnls: \"x\": "},
      {"vxnls --color always nonsense 2>&1 | cat", "E[1;31mvxnls:E[0m \"vxnls\" has no command"},
      {"vxnls --color=never nonsense", "vxnls: \"vxnls\" has no command"},
      {"NO_COLOR=1 vxnls format date x", "vxnls: \"x\": "},
      {"TERM=dumb vxnls -h", "Usage: vxnls"},
      {"vxnls -h", "E[1mUsage:E[0m vxnls"},
      {"vxnls format date 0 -l de_US", "vxnls: E[1;36mnote:E[0m there is no locale"},
      {"vxnls parse date 03/04/2021 -l en_US --explain | grep ambig", "  ambiguous  2021-04-03"},
      {"vxnls parse date 03/04/2021 -l en_US --explain --color always | grep 2021-04",
       "  E[33mambiguousE[0m  2021-04-03"},
  };
  vxtest::Terminal terminal({"sh"}, {{"PATH", std::string(VXNLS_COMMAND_FOLDER) + ":/usr/bin:/bin"},
                                     {"TERM", "xterm"},
                                     {"TZ", "UTC"},
                                     {"PS1", "ready> "}});
  terminal.until("ready> ");
  for (const auto& c : cases) {
    terminal.type(std::string(c.line) + '\n');
    terminal.until("\n");  // what was typed
    std::string wanted = c.shown;
    for (size_t at = 0; (at = wanted.find("E[", at)) != std::string::npos;) wanted[at] = '\x1b';
    const std::string screen = terminal.until("ready> ");
    EXPECT_TRUE(screen.starts_with(wanted)) << c.line << '\n' << screen;
  }
}

}  // namespace
