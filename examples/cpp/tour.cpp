// miraclient from C++, whatever the compiler: lists the BIOS attributes, changes one, is refused
// another change, and makes a firmware call of its own. What it expects is the simulated machine
// "locked": put the simulator's DLL beside it, and let it run with MIRA_SIM=locked.
//
//   c++ tour.cpp -lmiraclient

#include <iostream>

#include "mira_client.hpp"

namespace {

int mistakes = 0;

void Expect(const char* what, bool is_so) {
  std::cout << what << (is_so ? ": as expected\n" : ": NOT as expected\n");
  if (!is_so) ++mistakes;
}

// The status that a request ends with.
template <typename Work>
std::int32_t StatusOf(Work work) {
  try {
    work();
    return MIRA_DONE;
  } catch (const miraclient::Error& error) {
    return error.Status();
  }
}

}  // namespace

int main() try {
  const miraclient::Machine machine;
  const std::vector<miraclient::Secret> password = {{"password", "setup1"}};
  const std::string set = R"({"command": "attr.set", "name": "FanFloor", "value": 30})";

  unsigned calls = 0;
  const std::string list =
      machine.Request(R"({"command": "attr.list"})", {}, [&calls](std::uint32_t, std::uint32_t) {
        ++calls;
        return true;
      });
  Expect("the list of attributes", list.find("\"FanFloor\"") != std::string::npos && calls != 0);
  Expect("a change without the password", StatusOf([&] { machine.Request(set); }) == MIRA_PASSWORD);
  Expect("a change with it",
         machine.Request(set, password).find("\"changed\": true") != std::string::npos);
  Expect("a change beyond the limits",
         StatusOf([&] {
           machine.Request(R"({"command": "attr.set", "name": "FanFloor", "value": 3000})",
                           password);
         }) == MIRA_INVALID_VALUE);
  Expect("a request that is cancelled", StatusOf([&] {
                                          machine.Request(
                                              R"({"command": "attr.list"})", {},
                                              [](std::uint32_t, std::uint32_t) { return false; });
                                        }) == MIRA_CANCELLED);
  try {
    machine.Request(R"({"command": "attr.list"})", {},
                    [](std::uint32_t, std::uint32_t) -> bool { throw 7; });
    Expect("an exception of the callback", false);
  } catch (int thrown) {
    Expect("an exception of the callback", thrown == 7);
  }

  mira_record record = mira_record();
  record.arg[0] = 0x78;  // read a setting by its location: class 0, select 0
  std::vector<std::uint8_t> none;
  machine.Call(record, none);
  Expect("a firmware call", record.result[0] == 2);
  return mistakes == 0 ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
