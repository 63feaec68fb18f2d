// vxnls locale list
#include <memory>

#include "cli/commands.h"
#include "cli/json.h"
#include "cli/locale_database.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/suggest.h"
#include "cli/text.h"
#include "vxnls/locale_blocks.h"

namespace vxcli {

namespace {

constexpr Option details{
    .name = "details", .letter = 'd', .help = "with the names in English and in the language itself"};

const VXLocaleTexts& texts_of(const VXLocaleData& record) {
  return *reinterpret_cast<const VXLocaleTexts*>(record.block9);
}

ExitCode run(Invocation& invocation) {
  const LocaleDatabase database(invocation.session.host());
  const std::vector<std::string> filters = invocation.arguments.values();
  const std::string filter = filters.empty() ? "" : filters[0];
  const bool as_json = invocation.arguments.has(options::json);
  const bool with_details = as_json || invocation.arguments.has(details);

  const auto record = std::make_unique<VXLocaleData>();
  Table table;
  Json list = Json::array();
  size_t count = 0;
  for (const std::string& name : database.names()) {
    if (!with_details) {
      if (!contains(name, filter)) continue;
      table.row({name});
      ++count;
      continue;
    }
    database.fill(name, *record);
    const std::string english = utf8(record->block1);
    const std::string own = utf8(texts_of(*record).ownName);
    if (!contains(name, filter) && !contains(english, filter) && !contains(own, filter)) continue;
    list.push_back({{"name", name}, {"english", english}, {"own", own}});
    table.row({name, english, own});
    ++count;
  }
  if (count == 0)
    fail(ExitCode::usage, "no locale has {} in its name{}", in_quotes(filter),
         with_details ? "" : "; with --details the names of languages and regions are searched, too");
  invocation.out.put(as_json ? json_page(list) + '\n' : table.text());
  return ExitCode::done;
}

constexpr Argument arguments[] = {
    {.name = "TEXT",
     .help = "only locales with this in their name, in any letter case; with --details or --json, in "
             "the name of the language or region, too"}};
constexpr const Option* command_options[] = {&details, &options::json};
constexpr Example examples[] = {
    {"vxnls locale list de_",
     "de_AT\n"
     "de_BE\n"
     "de_CH\n"
     "de_DE\n"
     "de_IT\n"
     "de_LI\n"
     "de_LU\n"
     "kde_TZ"},
    {"vxnls locale list --details norwegian",
     "nb     Norwegian Bokmål                         norsk bokmål\n"
     "nb_NO  Norwegian Bokmål (Norway)                norsk bokmål (Norge)\n"
     "nb_SJ  Norwegian Bokmål (Svalbard & Jan Mayen)  norsk bokmål (Svalbard og Jan Mayen)\n"
     "nn     Norwegian Nynorsk                        norsk nynorsk\n"
     "nn_NO  Norwegian Nynorsk (Norway)               norsk nynorsk (Noreg)\n"
     "no     Norwegian                                norsk"},
    {"vxnls locale list --json liechtenstein",
     "[\n"
     "  {\n"
     "    \"name\": \"de_LI\",\n"
     "    \"english\": \"German (Liechtenstein)\",\n"
     "    \"own\": \"Deutsch (Liechtenstein)\"\n"
     "  },\n"
     "  {\n"
     "    \"name\": \"gsw_LI\",\n"
     "    \"english\": \"Swiss German (Liechtenstein)\",\n"
     "    \"own\": \"Schwiizertüütsch (Liächteschtäi)\"\n"
     "  }\n"
     "]"}};

}  // namespace

const Command locale_list{.name = "list",
                          .summary = "Lists the locales, a line each",
                          .description = "Every locale that the database has, in byte order of name.",
                          .arguments = arguments,
                          .options = command_options,
                          .examples = examples,
                          .run = run};

}  // namespace vxcli
