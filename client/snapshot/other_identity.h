#ifndef MIRA_CLIENT_SNAPSHOT_OTHER_IDENTITY_H_
#define MIRA_CLIENT_SNAPSHOT_OTHER_IDENTITY_H_

#include "client/snapshot/snapshot.h"

namespace mira::client {

// The snapshot of a machine that is the same but for who it is: serial numbers, UUIDs, MAC
// addresses and tags are others, wherever they stand, in texts and in bytes. Equal ones stay equal,
// and each has its old length and form: digits for digits, letters for letters.
Snapshot WithOtherIdentity(const Snapshot& snapshot);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_OTHER_IDENTITY_H_
