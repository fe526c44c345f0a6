#ifndef MIRA_CLIENT_DRIVE_H_
#define MIRA_CLIENT_DRIVE_H_

// The drives that can carry a password, and their passwords.

#include <cstdint>
#include <string>
#include <vector>

#include "bytes/secure.h"
#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

struct Drive {
  std::uint8_t handle = 0;
  std::string description;  // as the firmware spells it
};

std::vector<Drive> ReadDrives(Session& session);
// {"handle", "description"}
Json ToJson(const Drive& drive);
Drive DriveFromJson(const Json& json);

struct DrivePasswords {
  bytes::SecureString current;  // empty: none is set
  bytes::SecureString wanted;   // empty: to be removed
  bytes::SecureString setup;    // the setup password, where the firmware wants it
  std::uint32_t security_mode = 0;
};
// Whether the firmware wants the setup password as well as a drive's.
bool WantsSetupPassword(Session& session, const Drive& drive);
// Throws Error when a password is wrong.
void VerifyDrivePassword(Session& session, const Drive& drive, const DrivePasswords& passwords);
Plan PlanDrivePassword(Session& session, const Drive& drive, const DrivePasswords& passwords);

}  // namespace mira::client

#endif  // MIRA_CLIENT_DRIVE_H_
