#ifndef MIRA_CLIENT_INVENTORY_NAMES_H_
#define MIRA_CLIENT_INVENTORY_NAMES_H_

// The long lists of names of expansion slots and ports.

#include <cstdint>
#include <string>

namespace mira::client {

std::string SlotTypeName(std::uint8_t code);       // DSP0134 7.10.1
std::string ConnectorTypeName(std::uint8_t code);  // 7.9.2
std::string PortTypeName(std::uint8_t code);       // 7.9.3

}  // namespace mira::client

#endif  // MIRA_CLIENT_INVENTORY_NAMES_H_
