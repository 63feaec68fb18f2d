// Prints one invoice as customers of ten places read it: dates, amounts and percentages by their locale, columns
// aligned by characters.
//   invoice
#include <iostream>
#include <string>

#include "vxnls/vxnls.hpp"

namespace {

using namespace std::chrono;

struct Item {
  const char* name;
  int quantity;
  double price;
};
constexpr Item items[] = {{"Cable, 2 m", 12, 4.95}, {"Network switch", 1, 1249.5}, {"Installation", 3, 89.9}};
constexpr double tax = 0.19;
constexpr year_month_day issued = 2026y / November / 21;

struct Place {
  const char* locale;
  const char* zone;
};
constexpr Place places[] = {{"en_US", "America/New_York"},  {"en_GB", "Europe/London"}, {"de_DE", "Europe/Berlin"},
                            {"de_CH", "Europe/Zurich"},     {"fr_FR", "Europe/Paris"},  {"pl_PL", "Europe/Warsaw"},
                            {"pt_BR", "America/Sao_Paulo"}, {"hi_IN", "Asia/Kolkata"},  {"ja_JP", "Asia/Tokyo"},
                            {"sv_SE", "Europe/Stockholm"}};

/// Blanks before a text up to a width in characters.
std::string right(const std::string& text, std::ptrdiff_t width) {
  const auto characters = std::ranges::distance(vxnls::code_points(text));
  return std::string(static_cast<std::size_t>(std::max<std::ptrdiff_t>(width - characters, 0)), ' ') + text;
}

void print(const vxnls::locale& locale) {
  const auto money = [&](double amount) { return right(locale.format(vxnls::money{amount}).value(), 16); };
  const year_month_day due = sys_days{issued} + days{30};
  std::cout << "-- " << locale.name() << ": " << locale.format(issued, vxnls::form::long_date).value() << ", due "
            << locale.format(due).value() << '\n';
  double sum = 0;
  for (const Item& item : items) {
    const double amount = item.quantity * item.price;
    sum += amount;
    std::cout << "   " << item.name << std::string(18 - std::string_view(item.name).size(), ' ')
              << locale.format(item.quantity, {.width = 4}).value() << money(item.price) << money(amount) << '\n';
  }
  std::cout << right("tax " + locale.format(vxnls::percent{tax}).value(), 41) << money(sum * tax) << '\n'
            << right("total", 41) << money(sum * (1 + tax)) << '\n';
}

}  // namespace

int main() {
  auto host = vxnls::host::open().value();
  for (const Place& place : places) print(host.locale(place.locale, place.zone).value());
  return 0;
}
