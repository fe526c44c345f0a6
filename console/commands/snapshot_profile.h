#ifndef MIRA_CONSOLE_COMMANDS_SNAPSHOT_PROFILE_H_
#define MIRA_CONSOLE_COMMANDS_SNAPSHOT_PROFILE_H_

#include "client/snapshot/snapshot.h"

namespace mira::console {

// The description of a simulated machine that is as the snapshot's was. What could not be read is
// as in the laptop, or missing where its commands are. Unless `keeps_identity`, serial numbers,
// UUIDs, MAC addresses and tags are replaced, equal ones alike, and texts by texts of the same
// length.
client::Json ProfileOf(const client::Snapshot& snapshot, bool keeps_identity);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMMANDS_SNAPSHOT_PROFILE_H_
