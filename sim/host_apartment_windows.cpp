#include "platform/com.h"
#include "sim/host_apartment.h"

namespace mira::sim {

std::optional<Apartments::Kind> HostApartment() {
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  if (FAILED(CoGetApartmentType(&type, &qualifier))) return std::nullopt;
  if (type == APTTYPE_STA || type == APTTYPE_MAINSTA) return Apartments::Kind::kSingleThreaded;
  const bool is_own = type == APTTYPE_MTA && qualifier != APTTYPEQUALIFIER_IMPLICIT_MTA;
  if (!is_own) return std::nullopt;
  return Apartments::Kind::kMultithreaded;
}

}  // namespace mira::sim
