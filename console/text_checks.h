#ifndef MIRA_CONSOLE_TEXT_CHECKS_H_
#define MIRA_CONSOLE_TEXT_CHECKS_H_

#include <algorithm>
#include <string>

#include "console/command.h"

namespace mira::console {

// Throws CommandError for a text that identity fields of the firmware cannot hold: they are made
// for printable ASCII characters.
inline void RequireAscii(const std::string& text, const std::string& target) {
  if (std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; })) return;
  throw CommandError(kInvalidValue, "not-ascii",
                     "The text has characters other than printable ASCII ones.", target);
}

// Throws CommandError for a text that is longer than its field, where nothing is cut.
inline void RequireLength(const std::string& text, std::size_t longest, const std::string& target) {
  if (text.size() <= longest) return;
  throw CommandError(kInvalidValue, "too-long",
                     "The text has " + std::to_string(text.size()) + " characters; at most " +
                         std::to_string(longest) + " are possible.",
                     target);
}

}  // namespace mira::console

#endif  // MIRA_CONSOLE_TEXT_CHECKS_H_
