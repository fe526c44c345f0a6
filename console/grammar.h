#ifndef MIRA_CONSOLE_GRAMMAR_H_
#define MIRA_CONSOLE_GRAMMAR_H_

#include <string>

#include "console/command.h"

namespace mira::console {

// Adds the client layer's commands that begin with `noun` below the noun's app, with the arguments
// and options that they declare.
void AddClientCommands(CLI::App& app, const std::string& noun, Command& command);

// "start-limit" for "startLimit".
std::string OptionName(const std::string& argument);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_GRAMMAR_H_
