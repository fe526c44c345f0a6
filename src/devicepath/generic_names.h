#ifndef MIRA_DEVICEPATH_GENERIC_NAMES_H_
#define MIRA_DEVICEPATH_GENERIC_NAMES_H_

// How a text names nodes that have no name of their own.

#include <cstdint>
#include <string_view>

namespace mira::devicepath {

struct GenericName {
  std::uint8_t type;
  std::string_view name;
};
inline constexpr GenericName kGenericNames[] = {
    {1, "HardwarePath"}, {2, "AcpiPath"}, {3, "Msg"}, {4, "MediaPath"}, {5, "BbsPath"}};
inline constexpr std::string_view kAnyNode = "Path";  // its type stands in front of its subtype

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_GENERIC_NAMES_H_
