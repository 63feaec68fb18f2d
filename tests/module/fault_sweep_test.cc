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

const std::string stray_release = "released but not held: creation\n";

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
struct Stage {
  FailingHost host;
  VXLocale* locale = nullptr;
};

void load_module(Stage& stage) { ASSERT_TRUE(stage.host.load_module()); }
void make_cache(Stage& stage) { ASSERT_TRUE(stage.host.load_module() && stage.host.make_cache()); }
auto make_locale(std::u32string_view zone) {
  return [zone](Stage& stage) {
    make_cache(stage);
    stage.locale = stage.host.create(U"en_US", nullptr, zone);
    ASSERT_NE(stage.locale, nullptr);
  };
}
const auto in_utc = make_locale(U"UTC"), in_india = make_locale(U"Asia/Kolkata");

// What is done in a scenario

/// Creates a locale. Nobody else would give back one that is in no cache.
Outcome create(FailingHost& host, std::u32string_view name, std::u32string_view zone, bool shared) {
  VXStatus status = 0x5A5A5A5A;
  VXLocale* const locale = host.create(name, &status, zone, shared);
  if (locale != nullptr && (!shared || host.context.localeCache == nullptr)) host.destroy_private(locale);
  return {locale != nullptr, status};
}
auto creating(std::u32string_view name, std::u32string_view zone = {}, bool shared = true) {
  return [=](Stage& stage) { return create(stage.host, name, zone, shared); };
}

auto looking_up(std::u32string_view id) {
  return [id](Stage& stage) -> Outcome {
    const bool found = NLSGetTZh(stage.locale, units(id), static_cast<int64_t>(id.size())) != nullptr;
    return {found, found ? 0 : VX_E_ZONE};
  };
}
auto setting(std::u32string_view id) {
  return [id](Stage& stage) -> Outcome {
    const VXZone* const before = stage.locale->timeZone;
    const VXStatus status = NLSSetTimezoneId(stage.locale, units(id), static_cast<int64_t>(id.size()));
    EXPECT_TRUE(status == 0 || stage.locale->timeZone == before);
    return {status == 0, status};
  };
}

Outcome make_module(Stage& stage) {
  NLSModule* const module = vxnlsloc(&stage.host.kernel, &stage.host.journal);
  if (module != nullptr) module->realDestroy(module);
  return {module != nullptr, 0};
}

Outcome make_track(Stage& stage) {
  VXTrack* const track = NLSLocaleCreateTheDupTrack(stage.locale);
  if (track != nullptr) track->ops->destroy(track);
  return {track != nullptr, 0};
}

/// Destruction of everything, then the way back to where it was, which is not the part that is tested.
Outcome destroy_all(Stage& stage) {
  stage.host.destroy_cache();
  if (stage.locale != nullptr) stage.host.destroy_private(stage.locale);
  stage.locale = nullptr;
  stage.host.module()->realDestroy(stage.host.module());
  const bool gone = stage.host.holdings() == Holdings{};
  stage.host.fail_call(0);
  make_cache(stage);
  return {gone, 0};
}

/// A private locale beside the shared ones.
void make_both(Stage& stage) {
  in_utc(stage);
  stage.locale = stage.host.create(U"en_GB", nullptr, U"UTC", false);
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
constexpr int64_t midnight = 21915 * 86400;
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
    {"first locale", load_module, creating(U"en_US"), done, creation},
    {"locale cache", in_utc, make_track, done, {{"@(create_track|set_destroy)*", without_status}}},
    {"shared locale", make_cache, creating(U"en_US"), done, creation},
    {"shared locale, found", in_utc, creating(U"en_US", U"UTC"), done, known_creation},
    {"private locale", make_cache, creating(U"en_US", {}, false), done, creation},
    {"private locale beside a shared one", in_utc, creating(U"en_US", U"UTC", false), done, creation},
    {"zone option", make_cache, creating(U"en_US", U"Asia/Kolkata"), done, creation},
    {"zone option, found", in_utc, creating(U"en_US", U"UTC "), done, known_creation},
    {"second locale", in_utc, creating(U"en_GB"), done, creation},
    {"zone miss", in_utc, looking_up(U"Asia/Kolkata"), done, zone_lookup},
    {"zone hit", in_utc, looking_up(U"UTC"), done, zone_lookup},
    {"zone set", in_utc, setting(U"Asia/Kolkata"), done, zone_lookup},
    {"zone set again", in_utc, setting(U"UTC"), done, zone_lookup},
    {"destruction", make_both, destroy_all, done, {}},
    {"class of a letter the host knows", load_module, testing_letter(0xE9), {true, 1}, by_tables},
    {"class of a letter the host does not know", load_module, testing_letter(0x410), {true, 0}, by_tables},
    {"upper case elsewhere", load_module, raise_case, {true, large_e[1]}, {{"upper*", {true, small_e[1]}}}},
    {"comparison ignoring case", load_module, compare, {true, 1}, {{"lower * c9 *", {true, 2}}}},
    {"normalised comparison",
     load_module,
     compare_normalised,
     done,  //
     {{"create_normaliser*", no_memory}, {"compare*", passed_on}}},
    {"year of two digits", load_module, complete_year, {true, 1930001}, {{"read_option*", {true, 2030001}}}},
    {"name of the zone", in_india, formatting(U"%Z"), sum_of(U"Asia/Kolkata"), {{"describe*", sum_of(U"XST")}}},
    {"offset of the zone", in_india, formatting(U"%z"), sum_of(U"+0530"), {{"describe*", sum_of(U"+0000")}}},
    {"datetime read in another zone", in_utc, read_in_zone, {true, midnight - 19800}, no_match},
};

/// Calls `sweep(k, fault)` for k = 1, 2, ... until it says that no call failed, with every fault there is; gives how
/// often one did. What a failing call leaves behind does not depend on its status: rubbish comes with two of them.
template <class Sweep>
int64_t with_every_fault(Sweep sweep) {
  int64_t injected = 0;
  for (const VXStatus status : statuses) {
    for (const bool lasting : {false, true}) {
      for (const bool rubbish : {false, true}) {
        if (rubbish && status != VX_E_MEMORY && status != undocumented) continue;
        for (int64_t k = 1;; ++k, ++injected) {
          SCOPED_TRACE(testing::Message() << "call " << k << (lasting ? " and all after it fail" : " fails") << " with "
                                          << status << (rubbish ? ", leaving rubbish" : ""));
          if (k > 1000) ADD_FAILURE() << "the sweep does not end";
          if (!sweep(k, Fault{status, lasting, rubbish}) || testing::Test::HasFailure()) break;
        }
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
    const Holdings left = [&] {
      Stage undisturbed;
      scenario.prepare(undisturbed), scenario.act(undisturbed);
      return undisturbed.host.holdings();
    }();
    const int64_t faults = with_every_fault([&](int64_t k, const Fault& fault) {
      Stage stage;
      FailingHost& host = stage.host;
      scenario.prepare(stage);
      const Holdings before = host.holdings();
      host.fail_call(k, fault);
      const Outcome outcome = scenario.act(stage);
      host.fail_call(0);
      const auto failures = host.failures;
      SCOPED_TRACE(testing::PrintToString(failures));
      for (std::string call : failures) seen.insert((std::istringstream(call) >> call, call));
      EXPECT_EQ(outcome, documented(scenario.rules, scenario.undisturbed, failures, fault.status));
      EXPECT_EQ(host.holdings(), outcome.first ? left : before);
      EXPECT_EQ(scenario.act(stage), scenario.undisturbed) << "the next try";
      EXPECT_EQ(host.holdings(), left) << "after the next try";
      // A refused zone option releases the lock before it was taken.
      const bool is_creation = scenario.rules.size() >= creation.size();
      const bool refused_option = !outcome.first && is_creation && failures[0].starts_with("normalise_zone");
      host.close();
      EXPECT_EQ(host.holdings(), Holdings{});
      EXPECT_EQ(host.complaints, refused_option ? stray_release : "");
      return !failures.empty();
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
  const int64_t injected = with_every_fault([](int64_t k, const Fault& fault) {
    Stage stage;
    make_cache(stage);
    Holdings without = stage.host.holdings();
    EXPECT_EQ(create(stage.host, U"en_US", U"UTC", true), done);
    const Holdings with_one = stage.host.holdings();
    stage.host.fail_call(k, fault);
    Outcome outcomes[2];
    std::thread other([&] { outcomes[1] = create(stage.host, U"en_GB", U"UTC", true); });
    outcomes[0] = create(stage.host, U"en_CA", U"UTC", true);
    other.join();
    stage.host.fail_call(0);
    Holdings expected = with_one;
    for (const Outcome& outcome : outcomes) {
      for (const auto& [name, count] : with_one) expected[name] += outcome.first ? count - without[name] : 0;
      EXPECT_TRUE(outcome.second == 0 ||
                  (!outcome.first && (outcome.second == fault.status || outcome == no_memory || outcome == no_zone)))
          << testing::PrintToString(outcome);
    }
    EXPECT_EQ(stage.host.holdings(), expected);
    for (const auto name : {U"en_CA", U"en_GB"}) EXPECT_EQ(create(stage.host, name, U"UTC", true), done);
    stage.host.close();
    EXPECT_EQ(stage.host.holdings(), Holdings{});
    EXPECT_EQ(std::regex_replace(stage.host.complaints, std::regex(stray_release), ""), "");
    return !stage.host.failures.empty();
  });
  std::cout << injected << " faults\n";
}

}  // namespace
