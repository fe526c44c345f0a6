#ifndef MIRA_CONSOLE_PARSER_H_
#define MIRA_CONSOLE_PARSER_H_

// The program's parser, with all commands in it, and what completion and the manual find there.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "console/command.h"

namespace mira::console {

// `command` gets what the arguments choose.
std::unique_ptr<CLI::App> MakeParser(Command& command);

// "mira boot order"
std::string FullName(const CLI::App& app);
// The words below an app by which it goes on, in their order.
std::vector<const CLI::App*> Verbs(const CLI::App& app);
// An app's options, those of its nameless groups included: "--list".
std::map<std::string, const CLI::Option*> LongOptions(const CLI::App& app);
// "--list", or "ORDER" of a positional one.
std::string Name(const CLI::Option& option);

// Throws Error (kUsage) for a command or an option that does not exist, with the nearest one that
// does. The parser's own messages name none.
void CheckNames(const CLI::App& root, const std::vector<std::string>& arguments);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_PARSER_H_
