#ifndef MIRA_CONSOLE_COMPLETION_H_
#define MIRA_CONSOLE_COMPLETION_H_

// What a shell needs to complete the program's command lines. Pressing Tab never works on this PC:
// the names on a machine are looked up where the command line names a simulated one, and otherwise
// are those that the script was made with.

#include <map>
#include <string>
#include <vector>

namespace mira::console {

// Per command that lists names ("attr.list"), the names.
using KnownNames = std::map<std::string, std::vector<std::string>>;

std::string BashCompletion(const KnownNames& known);
std::string PowerShellCompletion(const KnownNames& known);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMPLETION_H_
