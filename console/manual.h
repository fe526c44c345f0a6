#ifndef MIRA_CONSOLE_MANUAL_H_
#define MIRA_CONSOLE_MANUAL_H_

#include <string>

namespace mira::console {

// The program's manual page, as man(1) reads it.
std::string ManualPage();

}  // namespace mira::console

#endif  // MIRA_CONSOLE_MANUAL_H_
