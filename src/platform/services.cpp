#include "platform/services.h"

namespace mira::platform {
namespace {

const ServiceTable* in_force = nullptr;

}  // namespace

const ServiceTable& Services() noexcept { return in_force ? *in_force : SystemServices(); }

const ServiceTable* SetServices(const ServiceTable* table) noexcept {
  const ServiceTable* const before = in_force;
  in_force = table;
  return before;
}

}  // namespace mira::platform
