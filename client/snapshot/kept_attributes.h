#ifndef MIRA_CLIENT_SNAPSHOT_KEPT_ATTRIBUTES_H_
#define MIRA_CLIENT_SNAPSHOT_KEPT_ATTRIBUTES_H_

// The BIOS attributes in a snapshot.

#include <vector>

#include "client/attributes.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {

// {"attributes", "unreadable"}: all about each attribute. Those that could not be read have
// "handle", "attribute", "type" and "readOnly" in their errors; one whose value at boot could not
// be read has "atBootProblem". Throws Error where the machine has no attributes.
Json KeepAttributes(Session& session);
// In ascending order of handles. Throws Error.
std::vector<KeptAttribute> KeptAttributes(const Snapshot& kept);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_KEPT_ATTRIBUTES_H_
