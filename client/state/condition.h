#ifndef MIRA_CLIENT_STATE_CONDITION_H_
#define MIRA_CLIENT_STATE_CONDITION_H_

// Conditions on what a machine is:
//
//   {"system.productName": "Meridian*", "bios.version": {"atLeast": "1.12.0"}}

#include <optional>
#include <string>

#include "client/json.h"

namespace mira::client {

// Throws Error for what is no set of conditions; `path` says where it stands.
void CheckConditions(const Json& when, const std::string& path);

class Facts {
 public:
  // The first condition that the machine does not meet, {"fact", "wanted", "actual"}; nothing when
  // it meets all. Throws Error for a version that cannot be compared.
  std::optional<Json> FirstUnmet(const Json& when);

 private:
  const Json& Inventory();
  std::optional<Json> inventory_;  // once it was needed
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_CONDITION_H_
