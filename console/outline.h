#ifndef MIRA_CONSOLE_OUTLINE_H_
#define MIRA_CONSOLE_OUTLINE_H_

// The commands and options as data, read off the parser and the commands' rows: completion and the
// manual are written from it.

#include <string>
#include <vector>

namespace mira::console {

struct OutlineArgument {
  std::string name;  // "--list", or "ORDER" of a positional one
  std::string help;
  bool is_option = false;
  bool takes_value = false;
  bool takes_many = false;
  bool is_required = false;
  bool is_file = false;
  std::vector<std::string> choices;
  std::string names_from;  // the command that lists what it takes: "attr.list"
};

struct OutlineCommand {
  std::string path;  // "mira boot order"
  std::string summary;
  std::string footer;  // examples and remarks
  std::vector<std::string> verbs;
  std::vector<OutlineArgument> arguments;
};

// The program first, then each command before those below it.
std::vector<OutlineCommand> Outline();

}  // namespace mira::console

#endif  // MIRA_CONSOLE_OUTLINE_H_
