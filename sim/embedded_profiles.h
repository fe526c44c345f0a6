#ifndef MIRA_SIM_EMBEDDED_PROFILES_H_
#define MIRA_SIM_EMBEDDED_PROFILES_H_

#include <string_view>
#include <vector>

namespace mira::sim {

// The files of sim/profiles, which are part of the program, by their names.
std::vector<std::string_view> EmbeddedProfiles();

}  // namespace mira::sim

#endif  // MIRA_SIM_EMBEDDED_PROFILES_H_
