#ifndef MIRA_CONSOLE_HINTS_H_
#define MIRA_CONSOLE_HINTS_H_

// What to do about an error. Most hints are found by the error's name; an error whose hint depends
// on more carries it along.

#include <string>
#include <vector>

#include "client/error.h"
#include "console/options.h"

namespace mira::console {

client::Error WithHint(client::Error error, const std::string& hint);
// The error's own hint, or that of its name; empty where there is none.
std::string HintOf(const client::Error& error, const Options& options);

// The error as documents have it, with its hint.
client::Json ErrorJson(const client::Error& error, const Options& options);
// Gives the errors that stand inside a document their hints.
void FillHints(client::Json& value, const Options& options);

// "Did you mean 'smbios'?", or `otherwise` when none of the names is near.
std::string Suggest(const std::string& word, const std::vector<std::string>& names,
                    const std::string& otherwise);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_HINTS_H_
