#ifndef MIRA_CLIENT_REPORT_CHARACTERS_H_
#define MIRA_CLIENT_REPORT_CHARACTERS_H_

// Characters that cannot be seen, or that change how others are seen, in texts of firmware.

#include <string>
#include <string_view>

namespace mira::client {

// The text as UTF-8, each character replaced by what `rewrite` makes of its bytes and code point.
using RewriteCharacter = std::string (*)(std::string_view character, char32_t code);
std::string RewriteCharacters(std::string_view text, RewriteCharacter rewrite);

// Control characters, those that turn the direction of writing, line and paragraph separators.
bool DrivesDisplay(char32_t code);
// The same, and those that take no room: texts that differ in them alone look alike.
bool IsInvisible(char32_t code);
// "\x1b", "\u202e"
std::string EscapeOf(char32_t code);

}  // namespace mira::client

#endif  // MIRA_CLIENT_REPORT_CHARACTERS_H_
