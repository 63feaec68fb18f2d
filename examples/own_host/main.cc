// Formats and parses through the example host: own_host FOLDER-OF-THIS-FILE/locales.txt
#include <chrono>
#include <exception>
#include <iostream>

#include "own_host.h"
#include "vxnls/vxnls.hpp"

using namespace std::chrono;
using vxnls::form;

int main(int count, char** arguments) try {
  if (count != 2) {
    std::cerr << "usage: own_host LOCALES\n";
    return 2;
  }
  own::Host host(arguments[1]);
  for (const char* name : {"de_DE", "en_US", "hi_IN", "de_AT", "xx"}) {
    const vxnls::locale locale(host.locale(name, "Asia/Kolkata"));
    const sys_seconds noon = sys_days{2026y / 11 / 21} + 12h;
    const auto date = locale.format(2026y / 11 / 21, form::long_date).value();
    const auto number = locale.format(-1234567.891, {.decimals = 2, .group = true}).value();
    std::cout << name << " is " << locale.name() << ": " << locale.format(noon).value() << " | " << date << " | "
              << number << " | " << locale.format(vxnls::money{1234.5}).value() << '\n';
    if (locale.parse<year_month_day>(date, form::long_date).value() != 2026y / 11 / 21) return 1;
    if (locale.parse<sys_seconds>(locale.format(noon).value()).value() != noon) return 1;
    if (locale.parse<double>(number).value() != -1234567.89) return 1;
  }
  const vxnls::locale english(host.locale("en_US", "UTC"));
  std::cout << english.parse<year_month_day>("13/45/2026").why().message() << '\n';
  std::cout << (host.locale("en_US", "Mars/Olympus") == nullptr ? "no such zone\n" : "?\n");
  return 0;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
