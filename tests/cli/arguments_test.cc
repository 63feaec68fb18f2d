#include "cli/arguments.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/suggest.h"

namespace {

using namespace vxcli;
using Words = std::vector<std::string>;

const Option* option_of(const Arguments& arguments, std::string_view name) {
  for (const Command* command : arguments.path()) {
    for (const Option* option : command->options) {
      if (option->name == name) return option;
    }
  }
  ADD_FAILURE() << "no option " << name;
  return nullptr;
}

TEST(Arguments, OptionsBeforeAndBehindTheCommand) {
  static const struct {
    Words words;
    Words values;
    const char* locale;
    const char* zone;
  } cases[] = {
      {{"format", "date", "1", "-l", "de_DE", "-z", "UTC"}, {"1"}, "de_DE", "UTC"},
      {{"-l", "de_DE", "--zone", "UTC", "format", "date", "1"}, {"1"}, "de_DE", "UTC"},
      {{"-lde_DE", "format", "--zone=UTC", "date", "1", "2"}, {"1", "2"}, "de_DE", "UTC"},
      {{"-l", "fr_FR", "format", "date", "--locale", "de_DE", "-qzUTC"}, {}, "de_DE", "UTC"},  // the last one counts
      {{"format", "date", "-l", "de_DE", "-l", "fr_FR", "--zone", ""}, {}, "fr_FR", ""},
      {{"format", "date", "--locale=", "x", "-z", "UTC"}, {"x"}, "", "UTC"},  // an empty value
      {{"format", "date", "-5", "-z", "UTC", "-.5", "-l", "C", "-1x"}, {"-5", "-.5", "-1x"}, "C", "UTC"},
      {{"format", "date", "-l", "C", "-z", "UTC", "--", "-l", "--", "++"}, {"-l", "--", "++"}, "C", "UTC"},
      {{"-l", "C", "-z", "UTC", "format", "date", "date", "[a,b]", "++", ""}, {"date", "[a,b]", "++", ""}, "C", "UTC"},
      {{"format", "date", "-l", "-z", "-z", "--json"}, {}, "-z", "--json"},  // a value may begin with "-"
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.words));
    const Arguments arguments(c.words);
    EXPECT_EQ(full_name(arguments.path()), "vxnls format date");
    EXPECT_EQ(arguments.values(), c.values);
    EXPECT_EQ(arguments.value(options::locale), c.locale);
    EXPECT_EQ(arguments.value(options::zone), c.zone);
  }
}

TEST(Arguments, CommandsThatHaveCommandsAndValues) {
  EXPECT_EQ(full_name(Arguments({"zone", "list", "x"}).path()), "vxnls zone list");
  EXPECT_EQ(full_name(Arguments({"zone", "UTC", "now", "list"}).path()), "vxnls zone");
  EXPECT_EQ(full_name(Arguments({"zone", "--json"}).path()), "vxnls zone");
  EXPECT_EQ(Arguments({"zone", "--", "list"}).values(), Words{"list"});
}

TEST(Arguments, Refusals) {
  static const struct {
    Words words;
    const char* message;
  } cases[] = {
      {{}, R"("vxnls" wants a command: )"},
      {{"format"}, R"("vxnls format" wants a command: )"},
      {{"fromat"}, R"("vxnls" has no command "fromat"; did you mean format?)"},
      {{"datetime"},
       R"("vxnls" has no command "datetime"; did you mean "vxnls format datetime" or "vxnls parse datetime"?)"},
      {{"xyz", "date"}, R"("vxnls" has no command "xyz")"},
      {{"format", "dtae"}, R"("vxnls format" has no command "dtae"; did you mean date?)"},
      {{"format", "date", "--patern", "x"}, R"("vxnls format date" has no option "--patern"; did you mean --pattern?)"},
      {{"format", "date", "-x"}, R"("vxnls format date" has no option "-x"; "vxnls format date --help" lists)"},
      {{"calendar", "--frm=day"}, R"("vxnls calendar" has no option "--frm"; did you mean --from?)"},
      {{"--from", "day", "calendar", "1"}, R"(option --from belongs to "vxnls calendar")"},
      {{"format", "date", "--pattern"}, "option --pattern wants a value: --pattern PATTERN"},
      {{"calendar", "--json=maybe"}, "option --json takes no value"},
      {{"calendar", "1", "-z"}, "option --zone wants a value: --zone NAME"},
      {{"calendar", "--from", "dya"}, R"(--from "dya": it is date, day or julian)"},
      {{"locale", "show", "C", "de"}, R"("vxnls locale show" takes no "de" behind LOCALE)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.words));
    try {
      const Arguments arguments(c.words);
      ADD_FAILURE() << "accepted";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::usage);
      EXPECT_TRUE(std::string_view(failure.what()).starts_with(c.message)) << failure.what();
    }
  }
}

TEST(Arguments, HelpAndVersionWantNothingElse) {
  EXPECT_TRUE(Arguments({"--version"}).has(options::version));
  EXPECT_TRUE(Arguments({"format", "-h"}).has(options::short_help));
  const Arguments arguments({"calendar", "--from", "nothing", "--help"});
  EXPECT_TRUE(arguments.has(options::help));
  EXPECT_EQ(arguments.value(*option_of(arguments, "from")), "nothing");
}

TEST(Suggest, Distances) {
  static const struct {
    const char *a, *b;
    size_t distance;
  } cases[] = {{"", "", 0},         {"", "abc", 3},           {"de_DE", "de-de", 0}, {"form", "from", 1},
               {"abcd", "badc", 2}, {"kitten", "sitting", 3}, {"ca", "abc", 3}};
  for (const auto& c : cases) {
    EXPECT_EQ(edit_distance(c.a, c.b), c.distance) << c.a << ' ' << c.b;
    EXPECT_EQ(edit_distance(c.b, c.a), c.distance) << c.b << ' ' << c.a;
  }
}

TEST(Suggest, NearestOnly) {
  const Words names{"America/New_York", "Europe/Berlin", "Europe/Dublin", "Asia/Tokyo"};
  EXPECT_EQ(did_you_mean("berlin", names), "; did you mean Europe/Berlin?");
  EXPECT_EQ(did_you_mean("New York", names), "; did you mean America/New_York?");
  EXPECT_EQ(did_you_mean("Europe/Berlni", names), "; did you mean Europe/Berlin?");
  EXPECT_EQ(did_you_mean("eur", names), "; did you mean Europe/Berlin or Europe/Dublin?");
  EXPECT_EQ(did_you_mean("dubl", names), "; did you mean Europe/Dublin?");
  EXPECT_EQ(did_you_mean("du", names), "");
  EXPECT_EQ(did_you_mean("Munich", names), "");
  EXPECT_EQ(did_you_mean("", names), "");
  EXPECT_EQ(did_you_mean(std::string(100000, 'x'), names), "");
  EXPECT_EQ(nearest("abx", {"abc", "abd", "abe", "abf", "ab"}), (Words{"abc", "abd", "abe"}));
}

}  // namespace
