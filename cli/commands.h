// Every command; commands.cc puts them into one table.
#ifndef VXNLS_CLI_COMMANDS_H
#define VXNLS_CLI_COMMANDS_H

#include "cli/command.h"

namespace vxcli {

extern const Command format_date;
extern const Command format_time;
extern const Command format_datetime;
extern const Command format_number;
extern const Command format_percent;
extern const Command format_currency;
extern const Command format_integer;
extern const Command parse_date;
extern const Command parse_time;
extern const Command parse_datetime;
extern const Command parse_number;
extern const Command parse_integer;
extern const Command recognise;
extern const Command normalise;
extern const Command transcode;
extern const Command change_case;
extern const Command compare;
extern const Command chars;
extern const Command locale_list;
extern const Command locale_show;
extern const Command locale_check;
extern const Command calendar;
extern const Command zone;
extern const Command completion;
extern const Command help;

/// A name that the help explains.
struct Definition {
  std::string_view name;
  std::string_view meaning;
};
extern const std::span<const Definition> environment;
extern const std::span<const Definition> exit_codes;

}  // namespace vxcli

#endif
