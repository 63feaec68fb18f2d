// vxnls zone, vxnls zone list
#include <map>

#include "cli/commands.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/suggest.h"
#include "cli/text.h"

namespace vxcli {

namespace {

/// A zone at one moment.
struct State {
  std::string asked_for;
  std::string id;
  int64_t local;
  VXHostZoneInfo info;
  Zone::LocalTime how_often;  // of the local time, where the value is one

  int64_t utc() const { return local - info.offset; }
};

State state_at(const Zone& zone, const std::string& asked_for, const Moment& moment) {
  const auto local = static_cast<double>(moment.seconds);
  if (!moment.offset) {
    const Zone::LocalTime how_often = zone.how_often(local);
    return {asked_for, zone.id(), moment.seconds, zone.at_local(local), how_often};
  }
  return {asked_for, zone.id(), moment.seconds, zone.at_utc(local - *moment.offset), Zone::LocalTime::once};
}

std::string_view remark(const State& state) {
  switch (state.how_often) {
    case Zone::LocalTime::twice: return "this local time occurs twice; shown is the first";
    case Zone::LocalTime::never: return "the clocks skip this local time; shown is what was in force before";
    default: return "";
  }
}

std::string utc_text(const State& state) {
  const int64_t utc = state.utc();
  const bool in_calendar = day_of(utc) >= first_day && day_of(utc) <= last_day;
  return in_calendar ? write_datetime(utc) + "Z" : "";
}

std::string page(const State& state) {
  Table table;
  table.row({"zone", state.id});
  if (state.asked_for != state.id) table.row({"asked for", state.asked_for});
  table.row({"local time", write_datetime(state.local)});
  table.row({"UTC", utc_text(state)});
  table.row({"offset", iso8601::write_offset(state.info.offset)});
  table.row({"abbreviation", state.info.abbreviation});
  table.row({"summer time", state.info.summer_time != 0 ? "yes" : "no"});
  if (const std::string_view text = remark(state); !text.empty()) table.row({"note", std::string(text)});
  std::string text = table.text();
  text.pop_back();
  return text;
}

std::string row(const State& state) {
  return fmt::format("{}\t{}\t{}\t{}\t{}\t{}", state.id, write_datetime(state.local), utc_text(state),
                     iso8601::write_offset(state.info.offset), state.info.abbreviation,
                     state.info.summer_time != 0 ? "summer" : "standard");
}

Json as_json(std::string_view value, const State& state) {
  Json object{{"value", value},
              {"zone", state.id},
              {"asked_for", state.asked_for},
              {"local", write_datetime(state.local)},
              {"utc", utc_text(state)},
              {"offset", iso8601::write_offset(state.info.offset)},
              {"offset_seconds", state.info.offset},
              {"abbreviation", state.info.abbreviation},
              {"summer_time", state.info.summer_time != 0}};
  if (const std::string_view text = remark(state); !text.empty()) object["note"] = text;
  return object;
}

ExitCode run(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  std::vector<std::string> values = arguments.values();
  std::optional<Zone> named;
  std::string asked_for;
  if (!values.empty()) {
    asked_for = values.front();
    named.emplace(invocation.session.open_zone(asked_for, ""));
    values.erase(values.begin());
  }
  const Zone& zone = named ? *named : invocation.session.zone();
  if (asked_for.empty()) asked_for = zone.id();
  if (values.empty()) values.emplace_back("now");
  ValueReader reader(zone);
  const bool alone = values.size() == 1;
  return for_each_value(invocation, values, [&](std::string_view value) {
    const State state = state_at(zone, asked_for, reader.datetime(value));
    if (arguments.has(options::json)) return json_line(as_json(value, state));
    return alone ? page(state) : row(state);
  });
}

constexpr Option details{
    .name = "details", .letter = 'd', .help = "with the offset now, its abbreviation and, of an alias, the zone"};

ExitCode run_list(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  VXHost* const host = invocation.session.host();
  const std::string filter = arguments.values().empty() ? "" : arguments.values()[0];
  const std::vector<std::string> ids = zone_ids(host);
  Table table;
  Json list = Json::array();
  size_t count = 0;
  for (const std::string& id : ids) {
    if (!contains(id, filter)) continue;
    ++count;
    if (!arguments.has(details) && !arguments.has(options::json)) {
      table.row({id});
      continue;
    }
    const auto zone = Zone::open(host, id.c_str());
    if (!zone) fail(ExitCode::host, "the zone {} cannot be opened", id);
    ValueReader reader(*zone);
    const State state = state_at(*zone, id, reader.datetime("now"));
    table.row({id, iso8601::write_offset(state.info.offset), state.info.abbreviation,
               id == zone->id() ? "" : "= " + zone->id()});
    list.push_back({{"name", id},
                    {"zone", zone->id()},
                    {"offset", iso8601::write_offset(state.info.offset)},
                    {"abbreviation", state.info.abbreviation},
                    {"summer_time", state.info.summer_time != 0}});
  }
  if (count == 0) fail(ExitCode::usage, "no time zone has {} in its name", in_quotes(filter));
  invocation.out.put(arguments.has(options::json) ? json_page(list) + '\n' : table.text());
  return ExitCode::done;
}

constexpr Argument list_arguments[] = {
    {.name = "TEXT", .help = "only zones with this in their name, in any letter case"}};
constexpr const Option* list_options[] = {&details, &options::json};
constexpr Example list_examples[] = {{"vxnls zone list argentina",
                                      "America/Argentina/Buenos_Aires\n"
                                      "America/Argentina/Catamarca\n"
                                      "America/Argentina/ComodRivadavia\n"
                                      "America/Argentina/Cordoba\n"
                                      "America/Argentina/Jujuy\n"
                                      "America/Argentina/La_Rioja\n"
                                      "America/Argentina/Mendoza\n"
                                      "America/Argentina/Rio_Gallegos\n"
                                      "America/Argentina/Salta\n"
                                      "America/Argentina/San_Juan\n"
                                      "America/Argentina/San_Luis\n"
                                      "America/Argentina/Tucuman\n"
                                      "America/Argentina/Ushuaia"},
                                     {"vxnls zone list --details kolkata", "Asia/Kolkata  +05:30  IST"},
                                     {"vxnls zone list --json calcutta",
                                      "[\n"
                                      "  {\n"
                                      "    \"name\": \"Asia/Calcutta\",\n"
                                      "    \"zone\": \"Asia/Kolkata\",\n"
                                      "    \"offset\": \"+05:30\",\n"
                                      "    \"abbreviation\": \"IST\",\n"
                                      "    \"summer_time\": false\n"
                                      "  }\n"
                                      "]"}};
constexpr Command zone_list{.name = "list",
                            .summary = "Lists the time zones, a line each",
                            .description = "Every name that the system's tz database has, aliases included.",
                            .arguments = list_arguments,
                            .options = list_options,
                            .examples = list_examples,
                            .run = run_list};

constexpr Argument zone_arguments[] = {
    {.name = "ZONE",
     .help = "its name, in any letter case; without one, that of --zone now",
     .completes = Completes::zones},
    {.name = "MOMENT",
     .help = "behind ZONE: 2026-07-01T00:00, ...Z, ...+02:00, @1782856800 or now, which is the default",
     .repeats = true}};
constexpr const Option* zone_options[] = {&options::json};
constexpr const Command* zone_commands[] = {&zone_list};
constexpr Example zone_examples[] = {
    {"vxnls zone Europe/Berlin 2026-07-01T00:00",
     "zone          Europe/Berlin\n"
     "local time    2026-07-01T00:00:00\n"
     "UTC           2026-06-30T22:00:00Z\n"
     "offset        +02:00\n"
     "abbreviation  CEST\n"
     "summer time   yes"},
    {"vxnls zone us/eastern 2026-01-15T12:00Z 2026-07-15T12:00Z",
     "America/New_York	2026-01-15T07:00:00	2026-01-15T12:00:00Z	-05:00	EST	standard\n"
     "America/New_York	2026-07-15T08:00:00	2026-07-15T12:00:00Z	-04:00	EDT	summer"},
    {"vxnls zone Asia/Calcutta 1900-01-01 --json",
     "{\"value\":\"1900-01-01\",\"zone\":\"Asia/Kolkata\",\"asked_for\":\"Asia/"
     "Calcutta\",\"local\":\"1900-01-01T00:00:00\",\"utc\":\"1899-12-31T18:38:50Z\",\"offset\":\"+05:21:10\",\"offset_"
     "seconds\":19270,\"abbreviation\":\"MMT\",\"summer_time\":false}"}};

}  // namespace

const Command zone{
    .name = "zone",
    .summary = "Shows what is in force in a time zone",
    .description =
        "The canonical name of the zone, its offset from UTC, the abbreviation and whether it is summer time, as the "
        "system's tz database has them. A moment without an offset is local time of the zone.\n"
        "\n"
        "One moment gives a page. Several give a line each: zone, local time, UTC, offset, abbreviation and \"summer\" "
        "or \"standard\", with tabs between them.",
    .arguments = zone_arguments,
    .options = zone_options,
    .examples = zone_examples,
    .commands = zone_commands,
    .run = run};

}  // namespace vxcli
