#ifndef MIRA_CLIENT_C_DOCUMENT_H_
#define MIRA_CLIENT_C_DOCUMENT_H_

// The documents of the C interface: those of the commands, with the schema's version in front and
// hints for a host in the errors.

#include "client/error.h"
#include "client/json.h"

namespace mira::client::c {

// {"schemaVersion", "simulated", …}
Json WholeDocument(Json document, bool is_simulated);

// What stands beside "error" of a failure, with it.
Json ErrorDocument(const Error& error);

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_DOCUMENT_H_
