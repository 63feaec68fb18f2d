// Every call that the library makes to its host fails in turn: once, and from then on, with each documented status and
// one that is none, with the out arguments left alone or full of rubbish. After every run the result is the documented
// one, the library holds what it held before (or what the undisturbed call leaves), and the next try succeeds.
#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <numeric>
#include <regex>
#include <set>
#include <sstream>
#include <thread>
#include <utility>

#include "tests/support/failing_host.h"
#include "tests/support/plain_locale.h"

namespace {

using vxtest::FailingHost;
using vxtest::Fault;
using vxtest::Holdings;
using vxtest::units;

constexpr VXStatus undocumented = 0x803f1234;
constexpr VXStatus statuses[] = {VX_E_MEMORY,    VX_E_DIGITS,   VX_E_DIRECTIVE, VX_E_ROOM,       VX_E_SEQUENCE,
                                 VX_E_NOMATCH,   VX_E_MISSING,  VX_E_RANGE,     VX_E_TRUNCATED,  VX_W_FILL,
                                 VX_E_NOTNUMBER, VX_E_OVERFLOW, VX_E_UNDERFLOW, VX_E_INCOMPLETE, VX_E_WIDTH,
                                 VX_W_PRECISION, VX_E_KIND,     VX_E_LENGTH,    VX_W_SUBSTITUTE, VX_E_NULL,
                                 VX_E_MISSCHAR,  VX_E_ZONE,     VX_E_GROUPING,  VX_E_SPLIT,      undocumented};

/// What came of a call: whether it was done, and its status or its answer.
using Outcome = std::pair<bool, int64_t>;

constexpr int64_t the_fault = -1, the_lookups = -2;  // in place of an answer: the status of what failed, of the lookup

/// What is documented to come of a failing call. Where several have failed, the rule that stands first holds.
struct Rule {
  const char* calls;  // a pattern
  Outcome outcome;
  std::vector<VXStatus> except = {};  // with these statuses nothing comes of it
};
using Rules = std::vector<Rule>;

constexpr Outcome done = {true, 0}, without_status = {false, 0}, passed_on = {false, the_fault},
                  no_memory = {false, VX_E_MEMORY}, no_zone = {false, VX_E_ZONE};

const char* const zone_calls = "*( )@(normalise_zone|acquire|open_zone|allocate|insert)*";
const Rules zone_lookup = {{zone_calls, no_zone}};
const Rules creation = {{"@(normalise_zone|acquire creation)*", passed_on},  // of the options
                        {" lookup_locale*", passed_on, {VX_W_SUBSTITUTE}},
                        {" load_extension*", {false, the_lookups}},
                        {" fill*", passed_on, {VX_W_FILL}},
                        {" @(create_lock|create_track*VXMSG|set_destroy*VXMSG)*", without_status},
                        {" @(allocate|create_track*VXETZ|set_destroy*VXETZ)*", no_memory},
                        {" @(normalise_zone|acquire*VXZ| open_zone| allocate| insert)*", no_zone},
                        {" insert VXNLS Locale track*", passed_on},
                        {"os_zone*", no_zone, {VX_E_ROOM, VX_E_ZONE}}};
const Rules known_creation = [] {
  Rules rules = creation;
  rules.push_back({" find VXNLS Locale track*", no_memory});  // made again, and refused by the cache
  return rules;
}();

bool any_matches(const char* pattern, const std::vector<std::string>& calls) {
  return std::any_of(calls.begin(), calls.end(),
                     [&](const std::string& call) { return fnmatch(pattern, call.c_str(), FNM_EXTMATCH) == 0; });
}

Outcome documented(const Rules& rules, const Outcome& undisturbed, const std::vector<std::string>& failures,
                   VXStatus fault) {
  for (const auto& [calls, outcome, except] : rules) {
    if (std::count(except.begin(), except.end(), fault) != 0 || !any_matches(calls, failures)) continue;
    const bool is_told =
        outcome.second == the_fault || (outcome.second == the_lookups && any_matches(" lookup_locale*", failures));
    return {outcome.first, is_told ? fault : std::max<int64_t>(outcome.second, 0)};
  }
  return undisturbed;
}

/// Where a scenario plays.
struct Stage : FailingHost {
  VXLocale* locale = nullptr;
};

void module_alone(Stage& stage) { ASSERT_TRUE(stage.load_module()); }
void with_cache(Stage& stage) { ASSERT_TRUE(stage.load_module() && stage.make_cache()); }
auto with_locale(std::u32string_view zone) {
  return [zone](Stage& stage) {
    with_cache(stage);
    ASSERT_NE(stage.locale = stage.create(U"en_US", nullptr, zone), nullptr);
  };
}
const auto in_utc = with_locale(U"UTC"), in_india = with_locale(U"Asia/Kolkata");
/// A private locale beside the shared one.
void with_both(Stage& stage) {
  in_utc(stage);
  stage.locale = stage.create(U"en_GB", nullptr, U"UTC", false);
}

// What is done in a scenario

/// Creates a locale. Nobody else would give back one that is in no cache.
auto creating(std::u32string_view name, std::u32string_view zone = {}, bool shared = true) {
  return [=](Stage& stage) -> Outcome {
    VXStatus status = 0x5A5A5A5A;
    VXLocale* const locale = stage.create(name, &status, zone, shared);
    if (locale != nullptr && (!shared || stage.context.localeCache == nullptr)) stage.destroy_private(locale);
    return {locale != nullptr, status};
  };
}
auto looking_up(std::u32string_view id) {
  return [id](Stage& stage) -> Outcome {
    const bool found = NLSGetTZh(stage.locale, units(id), std::ssize(id)) != nullptr;
    return {found, found ? 0 : VX_E_ZONE};
  };
}
auto setting(std::u32string_view id) {
  return [id](Stage& stage) -> Outcome {
    const VXZone* const before = stage.locale->timeZone;
    const VXStatus status = NLSSetTimezoneId(stage.locale, units(id), std::ssize(id));
    EXPECT_TRUE(status == 0 || stage.locale->timeZone == before);
    return {status == 0, status};
  };
}

Outcome make_module(Stage& stage) {
  NLSModule* const module = vxnlsloc(&stage.kernel, &stage.journal);
  return {module != nullptr && module->realDestroy(module) == 0, 0};
}

Outcome make_track(Stage& stage) {
  VXTrack* const track = NLSLocaleCreateTheDupTrack(stage.locale);
  if (track != nullptr) track->ops->destroy(track);
  return {track != nullptr, 0};
}

/// Destruction of everything, then the way back to where it was, which is not the part that is tested.
Outcome destroy_all(Stage& stage) {
  stage.destroy_cache();
  if (stage.locale != nullptr) stage.destroy_private(std::exchange(stage.locale, nullptr));
  stage.module()->realDestroy(stage.module());
  const bool gone = stage.holdings() == Holdings{};
  stage.fail_call(0);
  with_cache(stage);
  return {gone, 0};
}

// A letter that the host knows, and one that the built-in tables know and the host's database does not.
auto testing_letter(uint32_t code_point) {
  return [=](Stage&) -> Outcome { return {true, vxnlsisalpha(code_point)}; };
}
const Rules by_tables = {{"load_extension*", {true, 1}}, {"test_class*", done}};

constexpr uint8_t small_e[] = {0xC3, 0xA9}, large_e[] = {0xC3, 0x89};

Outcome raise_case(Stage&) {
  uint8_t text[2] = {};
  int64_t written = 0;
  return {vxzsu8Upper2(small_e, 2, text, 2, &written) == 0 && written == 2, text[1]};
}
Outcome compare(Stage&) { return {true, vxzsu8NormCompare(small_e, 2, large_e, 2)}; }
Outcome compare_normalised(Stage&) {
  VXStatus status = 0x5A5A5A5A;
  const bool after = vxzsu8ICUNormCompare(small_e, 2, large_e, 2, 0, &status) > 0;
  return {after, status};
}
Outcome complete_year(Stage&) { return {true, vxfmtzjulymd(30, 1, 1)}; }

/// The sum of the units tells texts apart.
Outcome sum_of(std::u32string_view text) { return {true, std::accumulate(text.begin(), text.end(), int64_t{0})}; }
auto formatting(std::u32string_view pattern) {
  return [=](Stage& stage) -> Outcome {
    vxtest::set_name(stage.locale->localeData->datetimePattern, pattern);
    VXChar text[60] = {};
    int64_t length = 0;
    const VXStatus status = NLSDatetimeFormat(stage.locale, 0, text, 60, &length, 0);
    return {status == 0, std::accumulate(text, text + length, int64_t{0})};
  };
}

/// A moment in a zone that the locale, which is in UTC, has to open.
Outcome read_in_zone(Stage& stage) {
  vxtest::set_name(stage.locale->localeData->datetimePattern, U"%Z%Y-%m-%d");
  double value = 0;
  int64_t consumed = 0;
  const VXStatus status = NLSBufToDatetime(stage.locale, units(U"Asia/Kolkata 2020-01-01"), 23, 0, &value, &consumed);
  return {status == 0, status != 0 ? status : static_cast<int64_t>(value)};
}
constexpr int64_t midnight = int64_t{21915} * 86400;
const Rules no_match = {{zone_calls, {false, VX_E_NOMATCH}}, {"zone_offset*Asia/Kolkata*", {true, midnight}}};

/// One thing that a host has the library do.
const struct Scenario {
  const char* name;
  std::function<void(Stage&)> prepare;  // nothing fails yet
  std::function<Outcome(Stage&)> act;
  Outcome undisturbed;
  Rules rules;
} scenarios[] = {
    {"module", [](Stage&) {}, make_module, done, {{"@(create_pool|allocate)*", without_status}}},
    {"first locale", module_alone, creating(U"en_US"), done, creation},
    {"locale cache", in_utc, make_track, done, {{"@(create_track|set_destroy)*", without_status}}},
    {"shared locale", with_cache, creating(U"en_US"), done, creation},
    {"shared locale, found", in_utc, creating(U"en_US", U"UTC"), done, known_creation},
    {"private locale", with_cache, creating(U"en_US", {}, false), done, creation},
    {"private locale beside a shared one", in_utc, creating(U"en_US", U"UTC", false), done, creation},
    {"zone option", with_cache, creating(U"en_US", U"Asia/Kolkata"), done, creation},
    {"zone option, found", in_utc, creating(U"en_US", U"UTC "), done, known_creation},
    {"second locale", in_utc, creating(U"en_GB"), done, creation},
    {"zone miss", in_utc, looking_up(U"Asia/Kolkata"), done, zone_lookup},
    {"zone hit", in_utc, looking_up(U"UTC"), done, zone_lookup},
    {"zone set", in_utc, setting(U"Asia/Kolkata"), done, zone_lookup},
    {"zone set again", in_utc, setting(U"UTC"), done, zone_lookup},
    {"destruction", with_both, destroy_all, done, {}},
    {"class of a letter the host knows", module_alone, testing_letter(0xE9), {true, 1}, by_tables},
    {"class of a letter the host does not know", module_alone, testing_letter(0x410), {true, 0}, by_tables},
    {"upper case elsewhere", module_alone, raise_case, {true, large_e[1]}, {{"upper*", {true, small_e[1]}}}},
    {"comparison ignoring case", module_alone, compare, {true, 1}, {{"lower * c9 *", {true, 2}}}},
    {"normalised comparison",
     module_alone,
     compare_normalised,
     done,  //
     {{"create_normaliser*", no_memory}, {"compare*", passed_on}}},
    {"year of two digits", module_alone, complete_year, {true, 1930001}, {{"read_option*", {true, 2030001}}}},
    {"name of the zone", in_india, formatting(U"%Z"), sum_of(U"Asia/Kolkata"), {{"describe*", sum_of(U"XST")}}},
    {"offset of the zone", in_india, formatting(U"%z"), sum_of(U"+0530"), {{"describe*", sum_of(U"+0000")}}},
    {"datetime read in another zone", in_utc, read_in_zone, {true, midnight - 19800}, no_match},
};

/// Calls `sweep(stage, k, fault)` for k = 1, 2, ... until it says that no call failed, with every fault there is; gives
/// how often one did. What a failing call leaves behind does not depend on its status: rubbish comes with two of them.
/// At the end of a run everything is given back, and nothing more than that.
template <class Sweep>
int64_t with_every_fault(Sweep sweep) {
  int64_t injected = 0;
  for (const VXStatus status : statuses) {
    for (const int how : {0, 1, 2, 3}) {
      const Fault fault = {status, how % 2 != 0, how > 1};
      if (fault.rubbish && status != VX_E_MEMORY && status != undocumented) continue;
      for (int64_t k = 1;; ++k, ++injected) {
        SCOPED_TRACE(testing::Message() << "call " << k << (fault.lasting ? " and all after it fail" : " fails")
                                        << " with " << status << (fault.rubbish ? ", leaving rubbish" : ""));
        Stage stage;
        sweep(stage, k, fault);
        stage.close();
        EXPECT_EQ(stage.holdings(), Holdings{});
        EXPECT_EQ(stage.complaints, "");
        EXPECT_LT(k, 1000) << "the sweep does not end";
        if (stage.failures.empty() || testing::Test::HasFailure()) break;
      }
    }
  }
  return injected;
}

TEST(FaultSweep, EveryCallOfEveryScenario) {
  int64_t injected = 0;
  std::set<std::string> seen;  // the operations that have failed
  for (const Scenario& scenario : scenarios) {
    SCOPED_TRACE(scenario.name);
    Stage whole;
    scenario.prepare(whole), scenario.act(whole);
    const Holdings left = whole.holdings();
    whole.close();
    const int64_t faults = with_every_fault([&](Stage& stage, int64_t k, const Fault& fault) {
      scenario.prepare(stage);
      const Holdings before = stage.holdings();
      stage.fail_call(k, fault);
      const Outcome outcome = scenario.act(stage);
      stage.fail_call(0);
      SCOPED_TRACE(testing::PrintToString(stage.failures));
      for (std::string call : stage.failures) seen.insert((std::istringstream(call) >> call, call));
      EXPECT_EQ(outcome, documented(scenario.rules, scenario.undisturbed, stage.failures, fault.status));
      EXPECT_EQ(stage.holdings(), outcome.first ? left : before);
      // A zone option that is refused releases the lock that was not taken, once.
      const bool is_creation = scenario.rules.size() >= creation.size();
      const bool is_refused = !outcome.first && is_creation && stage.failures[0].starts_with("normalise_zone");
      EXPECT_EQ(std::exchange(stage.complaints, ""), is_refused ? "released but not held: creation\n" : "");
      EXPECT_EQ(scenario.act(stage), scenario.undisturbed) << "the next try";
      EXPECT_EQ(stage.holdings(), left) << "after the next try";
    });
    if (HasFailure()) return;
    EXPECT_GT(faults, 0) << "it calls nothing";
    injected += faults;
  }
  EXPECT_EQ(seen.size(), 35u) << testing::PrintToString(seen);  // all operations of the host
  std::cout << injected << " faults in " << std::size(scenarios) << " scenarios\n";
  EXPECT_GE(injected, 10000);
}

// Two threads create a locale each, so the k-th call falls now here, now there. What each gets is one of the documented
// results, and together they leave exactly the locales that were made.
TEST(FaultSweep, TwoLocalesAtOnce) {
  const int64_t injected = with_every_fault([](Stage& stage, int64_t k, const Fault& fault) {
    with_cache(stage);
    Holdings without = stage.holdings();
    EXPECT_EQ(creating(U"en_US", U"UTC")(stage), done);
    const Holdings with_one = stage.holdings();
    stage.fail_call(k, fault);
    Outcome outcomes[2];
    std::thread other([&] { outcomes[1] = creating(U"en_GB", U"UTC")(stage); });
    outcomes[0] = creating(U"en_CA", U"UTC")(stage);
    other.join();
    stage.fail_call(0);
    Holdings expected = with_one;
    for (const Outcome& outcome : outcomes) {
      for (const auto& [name, count] : with_one) expected[name] += outcome.first ? count - without[name] : 0;
      EXPECT_TRUE(outcome.second == 0 ||
                  (!outcome.first && (outcome.second == fault.status || outcome == no_memory || outcome == no_zone)))
          << testing::PrintToString(outcome);
    }
    EXPECT_EQ(stage.holdings(), expected);
    stage.complaints = std::regex_replace(stage.complaints, std::regex("released but not held: creation\n"), "");
    for (const auto name : {U"en_CA", U"en_GB"}) EXPECT_EQ(creating(name, U"UTC")(stage), done);
  });
  std::cout << injected << " faults\n";
}

}  // namespace
