#ifndef MIRA_CLIENT_SNAPSHOT_IDENTITY_VALUES_H_
#define MIRA_CLIENT_SNAPSHOT_IDENTITY_VALUES_H_

#include <set>
#include <string>

#include "client/json.h"

namespace mira::client {

// The texts of a snapshot by which its machine is told from its twins: serial numbers, UUIDs, tags,
// MAC addresses.
class IdentityValues {
 public:
  explicit IdentityValues(const Json& subjects);
  bool Has(const Json& value) const { return values_.contains(Readable(value)); }
  const std::set<std::string>& All() const { return values_; }

 private:
  void Add(const std::string& path, const Json& value);

  std::set<std::string> values_;
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_IDENTITY_VALUES_H_
