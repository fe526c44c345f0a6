#ifndef MIRA_CLIENT_IDENTIFIER_H_
#define MIRA_CLIENT_IDENTIFIER_H_

// Further texts by which the machine is known: auxiliary MAC address, ePPID, image server and thin
// client.

#include <optional>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

// "mac", "eppid", "image-server", "thin-client".
const std::vector<std::string>& IdentifierNames();

struct Identifier {
  std::string name;
  std::optional<std::string> text;  // nothing where it cannot be read
  std::optional<Error> problem = std::nullopt;
};

// Throws Error where the machine has none of the name.
Identifier ReadIdentifier(Session& session, const std::string& name);
// All of them. Those that cannot be read have their problem.
std::vector<Identifier> ReadIdentifiers(Session& session);
// The plan to set it. Throws Error for a text that it cannot have.
Plan PlanIdentifier(Session& session, const std::string& name, const std::string& text);

// {"item", "value"}; "problem" of one that cannot be read.
Json ToJson(const Identifier& identifier);
Identifier IdentifierFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_IDENTIFIER_H_
