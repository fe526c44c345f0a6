#ifndef MIRA_SMBIOS_STRUCTURES_MAPPED_ADDRESS_H_
#define MIRA_SMBIOS_STRUCTURES_MAPPED_ADDRESS_H_

#include "smbios/layout.h"

namespace mira::smbios {

inline constexpr std::uint8_t kStartingAddress = 0x04;

// Of both structures of mapped addresses (DSP0134 7.20 and 7.21): whether the addresses stand in
// the extended fields, in bytes, because the first ones cannot hold them.
inline bool HasExtendedAddresses(const StructureView& s) {
  return s.DWord(kStartingAddress) == 0xFFFFFFFF;
}

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_STRUCTURES_MAPPED_ADDRESS_H_
