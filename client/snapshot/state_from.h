#ifndef MIRA_CLIENT_SNAPSHOT_STATE_FROM_H_
#define MIRA_CLIENT_SNAPSHOT_STATE_FROM_H_

#include "client/snapshot/snapshot.h"

namespace mira::client {

enum class StateScope {
  kSettings,  // what another machine may be given, too
  kAll,       // identity and what cannot be written as well, for comparisons
};

// The desired state that a snapshot's machine was in: {"kind": "state", "attributes", "boot",
// "tags", "batteries", "legacyBoot"}. Secrets are in none. What could not be read, or cannot be
// named, is left out. Throws Error for a redacted snapshot.
Json StateFrom(const Snapshot& snapshot, StateScope scope);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_STATE_FROM_H_
