#ifndef MIRA_FACADE_ADMINISTRATOR_H_
#define MIRA_FACADE_ADMINISTRATOR_H_

#include <ostream>

namespace mira {

// Whether the thread's user is a member of the local Administrators group. When that cannot be
// found out it is false, and `diag` gets one line.
bool IsAdministrator(std::ostream& diag);

}  // namespace mira

#endif  // MIRA_FACADE_ADMINISTRATOR_H_
