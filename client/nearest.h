#ifndef MIRA_CLIENT_NEAREST_H_
#define MIRA_CLIENT_NEAREST_H_

#include <optional>
#include <string>
#include <vector>

namespace mira::client {

// The name that a mistyped word most likely stands for: at most two letters away, whatever their
// case.
std::optional<std::string> Nearest(const std::string& word, const std::vector<std::string>& names);

}  // namespace mira::client

#endif  // MIRA_CLIENT_NEAREST_H_
