#include "sim/ole.h"

namespace mira::sim {

const platform::ServiceTable& Ole() { return platform::SystemServices(); }

}  // namespace mira::sim
