#ifndef MIRA_CLIENT_STATE_STATE_DOCUMENT_H_
#define MIRA_CLIENT_STATE_STATE_DOCUMENT_H_

// A desired state as it is written: a document that names what matters about a machine. Its form is
// checked here; what it means for a machine is state_plan.h's.
//
//   for (const StatePart& part : ParseState(document).parts) ...

#include <string>
#include <vector>

#include "client/json.h"

namespace mira::client {

enum class StateSubject { kAttributes, kBoot, kTags, kBatteries, kLegacyBoot };
// "attributes", "boot", …, as the documents call them.
const char* Name(StateSubject subject);

// One thing that the state wants, with the keys that say how.
struct StateItem {
  StateSubject subject;
  std::string path;  // in the document, "/attributes/FanFloor"
  std::string name;  // of the attribute, the list, the tag; the number of an extended tag
  Json body;         // an object: "value" or "secret", or the subject's own keys
  bool optional = false;
  Json when = Json::object();
};

// The document itself, or one of its groups.
struct StatePart {
  std::string path;
  Json when = Json::object();
  std::vector<StateItem> items;
};

struct DesiredState {
  std::vector<StatePart> parts;
};

// Throws Error (kInvalidValue) that names the path of what is wrong.
DesiredState ParseState(const Json& document);

// One step further down a path: "~" and "/" of the name escaped (RFC 6901).
std::string PathTo(const std::string& path, const std::string& name);

// A text where one is wanted. Throws Error that says to quote what a reader of YAML may have taken
// for something else.
void RequireText(const Json& value, const std::string& target);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_STATE_DOCUMENT_H_
