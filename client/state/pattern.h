#ifndef MIRA_CLIENT_STATE_PATTERN_H_
#define MIRA_CLIENT_STATE_PATTERN_H_

#include <optional>
#include <string_view>

namespace mira::client {

enum class LetterCase { kCounts, kIgnored };

// Whether a text has characters that make it a pattern: "*" and "?".
bool IsPattern(std::string_view text);
// Whether the whole text fits: "*" stands for any characters, "?" for one.
bool FitsPattern(std::string_view pattern, std::string_view text,
                 LetterCase letters = LetterCase::kCounts);

// Negative, 0 or positive as dotted versions stand to each other, number by number: 1.8.2 is below
// 1.12, and 1.8 is 1.8.0. Nothing where one of them is no such version.
std::optional<int> CompareVersions(std::string_view a, std::string_view b);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_PATTERN_H_
