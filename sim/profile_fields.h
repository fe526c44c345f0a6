#ifndef MIRA_SIM_PROFILE_FIELDS_H_
#define MIRA_SIM_PROFILE_FIELDS_H_

#include "sim/firmware/fields.h"
#include "sim/profile.h"

namespace mira::sim {

// Declares what a profile's document says, name by name.
void Describe(Fields& fields, Profile& profile);

}  // namespace mira::sim

#endif  // MIRA_SIM_PROFILE_FIELDS_H_
