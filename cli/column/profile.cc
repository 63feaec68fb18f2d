#include "cli/column/profile.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "cli/column/form.h"
#include "cli/errors.h"
#include "cli/text.h"

namespace vxcli::column {

namespace {

constexpr int version = 1;

Json place_json(const Place& place) {
  return {{"line", place.line}, {"record", place.record}, {"offset", place.offset}};
}

Json example_json(const Example& example) {
  Json json = place_json(example.place);
  json["value"] = example.value;
  return json;
}

Json evidence_json(const Evidence& evidence) {
  Json first = Json::array();
  for (const Example& example : evidence.first) first.push_back(example_json(example));
  return {{"count", evidence.count}, {"first", first}};
}

Json unread_json(const std::vector<Unread>& list) {
  Json json = Json::array();
  for (const Unread& each : list) {
    Json one = place_json(each.place);
    one["value"] = each.value;
    one["position"] = each.position;
    one["length"] = each.length;
    one["expected"] = each.expected;
    one["status"] = each.status == 0 ? Json(nullptr) : Json(fmt::format("0x{:08x}", each.status));
    json.push_back(one);
  }
  return json;
}

/// The members of a decision: one row each for writing and reading.
struct Member {
  const char* name;
  Json (*get)(const Decision&);
  void (*set)(Decision&, const Json&);  // throws ValueError
};

std::string string_of(const Json& json) {
  if (!json.is_string()) refuse("a string is wanted");
  return json.get<std::string>();
}

template <class Enum, size_t size>
Enum word_in(const std::array<std::string_view, size>& words, const Json& json) {
  const auto found = by_word<Enum>(words, string_of(json));
  if (!found) {
    refuse("{} is none of {}", in_quotes(json.get<std::string>()),
           alternatives(std::vector<std::string>(words.begin(), words.end())));
  }
  return *found;
}

template <std::string Decision::*member>
Json get_text(const Decision& decision) {
  return decision.*member;
}
template <std::string Decision::*member>
void set_text(Decision& decision, const Json& json) {
  decision.*member = string_of(json);
}

constexpr Member members[] = {
    {"column", get_text<&Decision::column>, set_text<&Decision::column>},
    {"kind", [](const Decision& d) { return Json(word_of(kind_words, d.kind)); },
     [](Decision& d, const Json& json) { d.kind = word_in<Kind>(kind_words, json); }},
    {"locale", get_text<&Decision::locale>, set_text<&Decision::locale>},
    {"locale-from", get_text<&Decision::locale_source>, set_text<&Decision::locale_source>},
    {"order", [](const Decision& d) { return Json(word_of(order_words, d.order)); },
     [](Decision& d, const Json& json) { d.order = word_in<Order>(order_words, json); }},
    {"order-by", [](const Decision& d) { return Json(word_of(source_words, d.order_by)); },
     [](Decision& d, const Json& json) { d.order_by = word_in<Source>(source_words, json); }},
    {"forms", [](const Decision& d) { return Json(d.forms); },
     [](Decision& d, const Json& json) {
       if (!json.is_array()) refuse("a list of patterns is wanted");
       d.forms.clear();
       for (const Json& each : json) d.forms.push_back(string_of(each));
     }},
    {"first-year", [](const Decision& d) { return Json(d.first_year); },
     [](Decision& d, const Json& json) {
       if (!json.is_number_integer() || json < earliest_first_year || json > latest_first_year)
         refuse("a year from {} to {} is wanted", earliest_first_year, latest_first_year);
       d.first_year = json.get<int32_t>();
     }},
    {"decimal-point", get_text<&Decision::decimal_point>,
     [](Decision& d, const Json& json) {
       d.decimal_point = string_of(json);
       if (d.decimal_point.size() > 1 || std::string_view(".,").find(d.decimal_point) == std::string_view::npos) {
         refuse("\".\", \",\" or, where neither was decided for, \"\" is wanted");
       }
     }},
    {"decimal-point-by", [](const Decision& d) { return Json(word_of(source_words, d.decimal_by)); },
     [](Decision& d, const Json& json) { d.decimal_by = word_in<Source>(source_words, json); }},
    {"group-separators", get_text<&Decision::group_separators>,
     [](Decision& d, const Json& json) {
       d.group_separators = string_of(json);
       if (d.group_separators.find_first_not_of(".,' ") != std::string::npos) {
         refuse("only \".\", \",\", \"'\" and a blank separate groups");
       }
     }},
    {"unit", get_text<&Decision::unit>, set_text<&Decision::unit>},
    {"strict", [](const Decision& d) { return Json(d.strict); },
     [](Decision& d, const Json& json) {
       if (!json.is_boolean()) refuse("true or false is wanted");
       d.strict = json.get<bool>();
     }},
};

Json decision_json(const Decision& decision) {
  Json json = Json::object();
  for (const Member& member : members) json[member.name] = member.get(decision);
  return json;
}

/// What no Reader could work with.
void check(const Decision& decision) {
  if (decision.column.empty()) refuse("\"column\" is missing");
  if (decision.locale.empty()) refuse("\"locale\" is missing");
  const bool has_forms = decision.kind != Kind::text && decision.kind != Kind::integer && decision.kind != Kind::number;
  if (has_forms && decision.forms.empty()) refuse("\"forms\" is missing: without a form no value is read");
  if (!has_forms && !decision.forms.empty()) refuse("\"forms\": only dates, times and periods have forms");
  parse_forms(decision);
}

Decision read_decision(const Json& json) {
  if (!json.is_object()) refuse("an object is wanted");
  Decision decision;
  decision.locale_source = "profile";
  for (const auto& [name, value] : json.items()) {
    const auto* const member = std::find_if(std::begin(members), std::end(members),
                                            [&, &wanted = name](const Member& each) { return each.name == wanted; });
    if (member == std::end(members)) {
      std::vector<std::string> names;
      for (const Member& each : members) names.emplace_back(each.name);
      refuse("there is no member {}, only {}", in_quotes(name), alternatives(names));
    }
    try {
      member->set(decision, value);
    } catch (const ValueError& error) {
      refuse("{}: {}", in_quotes(name), error.what());
    }
  }
  check(decision);
  return decision;
}

/// Line and column of a byte, both from 1.
std::string place_in(std::string_view text, size_t byte) {
  const std::string_view before = text.substr(0, std::min(byte, text.size()));
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const size_t begin = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
  return fmt::format("line {}, column {}", line, before.size() - begin + 1);
}

}  // namespace

Json to_json(const ColumnReport& report) {
  Json json{{"decision", decision_json(report.decision)}};
  json["values"] = report.values;
  json["empty"] = report.empty;
  json["read"] = report.read;
  json["ambiguous"] = report.ambiguous;
  json["contradicting"] = report.contradicting;
  json["unread"] = report.unread;
  Json by_kind = Json::object();
  for (size_t i = 0; i < kinds; ++i) by_kind[std::string(kind_words[i])] = report.by_kind[i];
  json["kinds"] = by_kind;
  Json forms = Json::array();
  for (const FormShare& form : report.forms) {
    Json one{{"form", form.pattern}, {"kind", word_of(kind_words, form.kind)}, {"count", form.count}};
    one["example"] = example_json(form.example);
    forms.push_back(one);
  }
  json["forms"] = forms;
  json["day-first"] = evidence_json(report.day_first);
  json["month-first"] = evidence_json(report.month_first);
  json["year-first"] = evidence_json(report.year_first);
  json["either-order"] = report.either_order;
  json["decimal-point"] = evidence_json(report.point);
  json["decimal-comma"] = evidence_json(report.comma);
  json["either-decimal"] = report.either_decimal;
  json["first-ambiguous"] = unread_json(report.first_ambiguous);
  json["first-contradicting"] = unread_json(report.first_contradicting);
  json["first-unread"] = unread_json(report.first_unread);
  Json locales = Json::array();
  for (const LocaleRank& rank : report.locales) {
    locales.push_back({{"locale", rank.locale}, {"explained", rank.explained}});
  }
  json["locales"] = locales;
  return json;
}

std::string write_profile(const Profile& profile) {
  Json columns = Json::array();
  for (const ColumnReport& report : profile.columns) columns.push_back(to_json(report));
  return json_page({{"vxnls-profile", version}, {"columns", columns}}) + "\n";
}

std::vector<Decision> read_profile(std::string_view text, const std::string& file_name) {
  Json json;
  try {
    json = Json::parse(text);
  } catch (const Json::parse_error& error) {
    fail(ExitCode::usage, "{}: {}: it is no JSON", file_name, place_in(text, error.byte == 0 ? 0 : error.byte - 1));
  } catch (const Json::exception&) {
    fail(ExitCode::usage, "{}: it holds a number that is too large", file_name);
  }
  if (!json.is_object() || !json.contains("vxnls-profile")) {
    fail(ExitCode::usage, "{}: it is no profile: the member \"vxnls-profile\" is missing", file_name);
  }
  if (json["vxnls-profile"] != version) {
    fail(ExitCode::usage, "{}: its version is {}, this command reads {}", file_name, json["vxnls-profile"].dump(),
         version);
  }
  if (!json.contains("columns") || !json["columns"].is_array()) {
    fail(ExitCode::usage, "{}: the list \"columns\" is missing", file_name);
  }
  std::vector<Decision> decisions;
  for (const Json& column : json["columns"]) {
    const size_t number = decisions.size() + 1;
    std::string where = fmt::format("column {}", number);
    try {
      if (!column.is_object() || !column.contains("decision")) refuse("the member \"decision\" is missing");
      const Json& decision = column["decision"];
      if (decision.is_object() && decision.contains("column") && decision["column"].is_string()) {
        where = fmt::format("column {}", in_quotes(decision["column"].get<std::string>()));
      }
      decisions.push_back(read_decision(decision));
      for (size_t i = 0; i + 1 < decisions.size(); ++i) {
        if (decisions[i].column == decisions.back().column) refuse("it stands there twice");
      }
    } catch (const ValueError& error) {
      fail(ExitCode::usage, "{}: {}: {}", file_name, where, error.what());
    }
  }
  return decisions;
}

}  // namespace vxcli::column
