#include "sim/host_apartment.h"

namespace mira::sim {

// There is no COM but the simulated one.
std::optional<Apartments::Kind> HostApartment() { return std::nullopt; }

}  // namespace mira::sim
