#ifndef MIRA_SMBIOS_STRUCTURES_PROCESSOR_FAMILIES_H_
#define MIRA_SMBIOS_STRUCTURES_PROCESSOR_FAMILIES_H_

#include <cstdint>

namespace mira::smbios {

// The name of a processor family (DSP0134 7.5.2), or null. The footnote marks belong to the names.
const char* ProcessorFamilyName(std::uint16_t family);

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_STRUCTURES_PROCESSOR_FAMILIES_H_
