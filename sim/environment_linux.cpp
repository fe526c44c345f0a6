#include <cstdlib>

#include "sim/environment.h"

namespace mira::sim {

std::optional<std::string> EnvironmentText(const char* name) {
  const char* const text = std::getenv(name);
  if (text == nullptr) return std::nullopt;
  return text;
}

}  // namespace mira::sim
