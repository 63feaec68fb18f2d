// The same in C++.
#include <chrono>
#include <iostream>

#include "vxnls/vxnls.hpp"

int main() {
  using namespace std::chrono;
  const auto host = vxnls::host::open().value();
  const auto german = host.locale("de_DE", "Europe/Berlin").value();
  std::cout << german.format(local_days{2026y / 11 / 21} + 14h + 5min + 9s).value() << ' '
            << german.parse<double>("1.234,5").value() << '\n';
}
