#ifndef MIRA_SIM_DEVICE_PATH_READER_H_
#define MIRA_SIM_DEVICE_PATH_READER_H_

#include <cstdint>
#include <string_view>
#include <vector>

namespace mira::sim {

// The bytes of a device path that a profile gives as text, in the UEFI specification's form with
// all arguments: "PciRoot(0x0)/Pci(0x1F,0x2)/Sata(0x0,0xFFFF,0x0)". A node of any other kind is
// "Path(type,subtype,bytes)"; further instances stand behind ",/". It is made apart from the
// library's own reader. Throws StateError for a text that is no such path.
std::vector<std::uint8_t> ReadDevicePath(std::string_view text);

}  // namespace mira::sim

#endif  // MIRA_SIM_DEVICE_PATH_READER_H_
