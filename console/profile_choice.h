#ifndef MIRA_CONSOLE_PROFILE_CHOICE_H_
#define MIRA_CONSOLE_PROFILE_CHOICE_H_

#include <string>

#include "sim/profile.h"

namespace mira::console {

// Throws Error (kUsage) where no machine has the name; a file is not looked into.
void CheckProfileName(const std::string& name);

// The machine that a file describes. Throws Error, which names the place in the file.
sim::Profile LoadProfileFile(const std::string& path);

// A built-in machine, by its name, or one that a file describes. Throws Error.
sim::Profile ChosenProfile(const std::string& name);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_PROFILE_CHOICE_H_
