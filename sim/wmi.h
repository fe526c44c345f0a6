#ifndef MIRA_SIM_WMI_H_
#define MIRA_SIM_WMI_H_

#include "platform/com.h"
#include "sim/state.h"

namespace mira::sim {

// The WMI locator of a machine, with one reference.
IWbemLocator* MakeLocator(const StatePtr& state);

}  // namespace mira::sim

#endif  // MIRA_SIM_WMI_H_
