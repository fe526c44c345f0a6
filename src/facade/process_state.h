#ifndef MIRA_FACADE_PROCESS_STATE_H_
#define MIRA_FACADE_PROCESS_STATE_H_

#include "platform/api.h"

namespace mira {

// Forgets everything that the process learned about the machine: the structure registry, the
// transfer-buffer size, the instance key. For tests, and for hosts that turn from one simulated
// machine to another. Objects obtained from CMiraIntf::GetBIOSObject end here. Call it while the
// services under which they were made are still in force.
MIRA_API void ResetProcessState() noexcept;

}  // namespace mira

#endif  // MIRA_FACADE_PROCESS_STATE_H_
