// Cleans a log that several systems wrote: every line gets its time in UTC and ISO 8601, ill-formed bytes and control
// characters are replaced. Lines without a time that can be read keep their place, with a "-" before them.
//   log_cleaner < log
#include <iostream>
#include <string>

#include "vxnls/vxnls.hpp"

namespace {

using namespace std::chrono;

/// How a system writes the time at the beginning of a line, and in which zone its clock runs.
struct Source {
  const char* locale;
  const char* zone;
  const char* pattern;
};
constexpr Source sources[] = {
    {"en_US", "UTC", "%Y-%m-%dT%H:%M:%S%z"},                   // services, with an offset
    {"en_US", "UTC", "%Y-%m-%d %H:%M:%S.%s"},                  // the database
    {"de_DE", "Europe/Berlin", "%#d.%#m.%Y %H:%M:%S"},         // the till in Bremen
    {"en_US", "America/New_York", "%b %#d, %Y %#I:%M:%S %p"},  // the office in Boston
    {"fr_FR", "Europe/Paris", "%#d %B %Y à %Hh%M"},            // notes of the night watch
};

/// The text with U+FFFD for what is no character, and without control characters.
std::string clean(std::string_view text) {
  std::string result;
  for (const char32_t c : vxnls::code_points(text)) vxnls::append(result, vxnls::is_cntrl(c) ? U' ' : c);
  return result;
}

}  // namespace

int main() {
  auto host = vxnls::host::open().value();
  std::vector<vxnls::locale> readers;
  for (const Source& source : sources) {
    readers.push_back(host.locale(source.locale, source.zone, {.datetime = source.pattern}).value());
  }
  const auto iso = host.locale("en_US", "UTC", {.datetime = "%Y-%m-%dT%H:%M:%SZ"}).value();

  int lines = 0, without = 0;
  for (std::string line; std::getline(std::cin, line); ++lines) {
    vxnls::result<sys_seconds> time;
    for (const vxnls::locale& reader : readers) {
      time = reader.parse<sys_seconds>(line, {.prefix = true, .explain = false});
      if (time) break;
    }
    if (time) {
      std::cout << iso.format<vxnls::buffer<32>>(*time)->view()
                << clean(std::string_view(line).substr(time.consumed()));
    } else {
      std::cout << "- " << clean(line);
      ++without;
    }
    std::cout << '\n';
  }
  std::cout << lines << " lines, " << without << " without a time\n";
  return 0;
}
