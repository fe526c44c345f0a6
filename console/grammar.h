#ifndef MIRA_CONSOLE_GRAMMAR_H_
#define MIRA_CONSOLE_GRAMMAR_H_

#include <string>

#include "client/command.h"
#include "console/command.h"

namespace mira::console {

// Adds the commands that begin with `noun` below the noun's app, with the arguments and options
// that they declare.
void AddCommands(CLI::App& app, const std::string& noun, Command& command);

// Ends an app's help with a text and the options of every command.
void SetFooter(CLI::App& app, const std::string& text);

// What an argument is called on the command line: "--start-limit" for "startLimit", "LIST" for a
// positional "list".
std::string ArgumentName(const client::Argument& argument);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_GRAMMAR_H_
