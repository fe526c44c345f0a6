#ifndef MIRA_CLIENT_ATTRIBUTE_SHOW_H_
#define MIRA_CLIENT_ATTRIBUTE_SHOW_H_

// The handlers of the commands that show BIOS attributes.

#include "client/command.h"

namespace mira::client {

// {"attributes"}: those that the request's "part", "changedFromDefault" and "pending" leave.
Json ListAttributes(Request& request);
// {"attributes"}: those of "names", with their texts.
Json ShowAttributes(Request& request);
// {"differences", "restartPending", "pendingCount"}: what differs from the values at boot.
Json CompareAttributes(Request& request);

}  // namespace mira::client

#endif  // MIRA_CLIENT_ATTRIBUTE_SHOW_H_
