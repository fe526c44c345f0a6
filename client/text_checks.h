#ifndef MIRA_CLIENT_TEXT_CHECKS_H_
#define MIRA_CLIENT_TEXT_CHECKS_H_

#include <cstddef>
#include <string>

namespace mira::client {

// Throw Error (kInvalidValue) for a text that the firmware would not take as it stands.
void RequireAscii(const std::string& text, const std::string& target);
void RequireLength(const std::string& text, std::size_t longest, const std::string& target);

}  // namespace mira::client

#endif  // MIRA_CLIENT_TEXT_CHECKS_H_
