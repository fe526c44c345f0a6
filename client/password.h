#ifndef MIRA_CLIENT_PASSWORD_H_
#define MIRA_CLIENT_PASSWORD_H_

// The BIOS passwords: which are installed, whether one is right, and changing them.

#include <cstdint>
#include <vector>

#include "bytes/secure.h"
#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

// One password, named by the command class that manages it: 9, 10 or 12.
struct PasswordState {
  std::uint16_t cls = 0;
  bool installed = false;
  std::uint32_t max_length = 0;     // characters; 0 when its status could not be read
  std::uint32_t second_length = 0;  // as the firmware reports it
  bool uses_scan_codes = false;     // known of a single state only
};

std::vector<PasswordState> ReadPasswords(Session& session);
// Throws Error when the firmware does not report it.
PasswordState ReadPasswordState(Session& session, std::uint16_t cls);

// The text in the form in which the firmware takes it. Throws Error for characters that no key
// types.
bytes::SecureString AsSent(const bytes::SecureString& text, bool uses_scan_codes);

// Asks the firmware about a password that is installed. Throws Error when it is wrong; several
// wrong ones lock out.
void VerifyPassword(Session& session, const PasswordState& state,
                    const bytes::SecureString& password);

// The plan to set `wanted`, or with an empty one to remove the password; `current` is the one that
// is installed. Throws Error for a text that cannot be a password.
Plan PlanPassword(Session& session, const PasswordState& state, const bytes::SecureString& current,
                  const bytes::SecureString& wanted);

// {"class", "installed", "maxLength", "secondLength"}
Json ToJson(const PasswordState& state);
PasswordState PasswordFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_PASSWORD_H_
