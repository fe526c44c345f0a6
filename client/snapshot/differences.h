#ifndef MIRA_CLIENT_SNAPSHOT_DIFFERENCES_H_
#define MIRA_CLIENT_SNAPSHOT_DIFFERENCES_H_

// What differs between the values of one subject in two snapshots.

#include <string>
#include <vector>

#include "client/json.h"
#include "client/snapshot/fields.h"

namespace mira::client {

enum class DifferenceKind { kAdded, kRemoved, kChanged };
// "added", "removed", "changed".
const char* Name(DifferenceKind kind);

struct Difference {
  std::string path;  // "attributes.WakeOnLan.value"
  DifferenceKind kind = DifferenceKind::kChanged;
  Meaning meaning = Meaning::kSetting;
  Json before;  // null of what was added
  Json after;   // null of what was removed
};
Json ToJson(const Difference& difference);

// Elements of lists are matched by what they are called, and never by their place; boot options by
// their descriptions, doubled ones by their paths.
std::vector<Difference> FindDifferences(const std::string& subject, const Json& before,
                                        const Json& after);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_DIFFERENCES_H_
