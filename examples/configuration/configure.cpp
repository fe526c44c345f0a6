// configure ASSET-TAG BOOT-ORDER NAME=VALUE ...
//
// Takes the BIOS password from the environment variable CONFIGURE_PASSWORD. Ends with 0 when all is
// done, 1 when something is not, 3 when nobody knows.

#include <cstdlib>
#include <iostream>

#include "configuration.h"

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: configure ASSET-TAG BOOT-ORDER NAME=VALUE ...\n";
    return 2;
  }
  Configuration wanted;
  wanted.asset_tag = argv[1];
  wanted.boot_order = argv[2];
  for (int i = 3; i < argc; ++i) {
    const std::string text = argv[i];
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) {
      std::cerr << "configure: '" << text << "' is no NAME=VALUE\n";
      return 2;
    }
    wanted.attributes.emplace_back(text.substr(0, sign), text.substr(sign + 1));
  }
  const char* const password = std::getenv("CONFIGURE_PASSWORD");
  int status = 0;
  for (const Item& item : Configure(wanted, password != nullptr ? password : "")) {
    constexpr const char* kWords[] = {"done", "not done", "not known"};
    std::cout << item.what << ": " << kWords[static_cast<int>(item.outcome)];
    if (!item.why.empty()) std::cout << ": " << item.why;
    std::cout << '\n';
    if (item.outcome == Outcome::kUnknown) status = 3;
    if (item.outcome == Outcome::kNotDone && status == 0) status = 1;
  }
  return status;
}
