#ifndef MIRA_CLIENT_C_REQUEST_TEXT_H_
#define MIRA_CLIENT_C_REQUEST_TEXT_H_

// Requests and options as hosts write them.

#include <string_view>

#include "client/command.h"
#include "client/json.h"

namespace mira::client::c {

// A JSON object in UTF-8. Throws Error (kUsage) for anything else.
Json ReadObject(std::string_view text, const char* what);

struct NamedRequest {
  const Command* command = nullptr;
  Json arguments = Json::object();
};

// {"command": "tag.show", "kind": "asset"}. Arguments stand beside the command's name, or in the
// object "arguments" where one has the same name as a member of the request. What files hold is a
// text, {"bytes": "hexadecimal"}, or the file's JSON document itself. Throws Error (kUsage),
// without repeating it, where a secret stands in the request.
NamedRequest ReadRequest(Json request);

// The options of a machine: "simulated", the name or the description of one, and "state", the file
// that it is kept in. What says nothing is left out.
Json ReadOptions(std::string_view text);

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_REQUEST_TEXT_H_
