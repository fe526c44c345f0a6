#ifndef MIRA_CONSOLE_INPUT_FILE_H_
#define MIRA_CONSOLE_INPUT_FILE_H_

// Files that a command is given to read.

#include <cstdint>
#include <string>
#include <vector>

#include "console/command.h"

namespace mira::console {

// A file's bytes; of a very long one, the first 64 MiB. Throws Error when it cannot be read.
std::vector<std::uint8_t> LoadFile(const std::string& path);

// The same; "-" names standard input.
std::vector<std::uint8_t> LoadFileOrInput(Context& context, const std::string& path);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_INPUT_FILE_H_
