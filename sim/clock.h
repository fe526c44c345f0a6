#ifndef MIRA_SIM_CLOCK_H_
#define MIRA_SIM_CLOCK_H_

#include <string>

#include "sim/profile.h"

namespace mira::sim {

// A simulated machine's time stands still at the newest entry of its log, so that what is written
// there is the same whenever it is: "2026-04-09T23:05:00Z".
std::string TimeOf(const Profile& profile);

}  // namespace mira::sim

#endif  // MIRA_SIM_CLOCK_H_
