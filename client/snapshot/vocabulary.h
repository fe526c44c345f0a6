#ifndef MIRA_CLIENT_SNAPSHOT_VOCABULARY_H_
#define MIRA_CLIENT_SNAPSHOT_VOCABULARY_H_

// The texts of a machine that say nothing about whose it is: those that consist of the words that
// firmware of every maker uses.

#include <string_view>

namespace mira::client {

// Whether each word of the text is such a word: "WakeOnLan", "UEFI USB Device", "DIMM A2". Few
// digits and at most one single letter are allowed beside them, so that no tag spells itself out.
bool IsCommonText(std::string_view text);

// "1.8.2", "A12", "03/14/2026": what a release of firmware is called.
bool IsVersionText(std::string_view text);
bool IsDateText(std::string_view text);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_VOCABULARY_H_
