#ifndef MIRA_CONSOLE_CONSOLE_H_
#define MIRA_CONSOLE_CONSOLE_H_

// The program as a function, for main() and for tests.
//
//   return RunConsole(arguments, std::cin, std::cout, std::cerr);

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace mira::console {

// The program: arguments without the program's name. Gives the exit status. `machines` is the
// folder that simulated machines are kept in between commands; without one each command gets a new
// one.
int RunConsole(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const std::filesystem::path& machines = {});

}  // namespace mira::console

#endif  // MIRA_CONSOLE_CONSOLE_H_
