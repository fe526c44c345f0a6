#ifndef MIRA_SIM_HOST_APARTMENT_H_
#define MIRA_SIM_HOST_APARTMENT_H_

// What a host has done about COM by itself, which is the system's and no simulated one.
//
//   Machine machine;
//   if (const auto kind = HostApartment()) machine.HostEnters(*kind);

#include <optional>

#include "sim/apartments.h"

namespace mira::sim {

// The apartment that the calling thread has initialised COM for; nothing when it has not.
std::optional<Apartments::Kind> HostApartment();

}  // namespace mira::sim

#endif  // MIRA_SIM_HOST_APARTMENT_H_
