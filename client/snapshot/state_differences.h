#ifndef MIRA_CLIENT_SNAPSHOT_STATE_DIFFERENCES_H_
#define MIRA_CLIENT_SNAPSHOT_STATE_DIFFERENCES_H_

// A desired state compared with a snapshot, or with another desired state.

#include <vector>

#include "client/snapshot/differences.h"

namespace mira::client {

// Whether a document is a desired state: one that calls itself so, or has what states consist of.
bool IsState(const Json& document);

// Of two sides, at least one of them a state, what differs in that which the states name. Paths are
// those of a state: "attributes.WakeOnLan", "boot.UEFI Boot", "tags.asset", "batteries.1.mode",
// "legacyBoot.ipl". What stands under a condition ("when", "groups") is not compared.
std::vector<Difference> StateDifferences(const Json& a, const Json& b);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_STATE_DIFFERENCES_H_
