#include <iterator>

#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Flags 0", "Flags0", Kind::kWord, {.hex = true}},
    {0x06, "Flags 1", "Flags1", Kind::kWord, {.hex = true}},
    {0x08, "Flags 2", "Flags2", Kind::kWord, {.hex = true}},
    {0x0A, "Flags 3", "Flags3", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CBIOSFlags::kLayout("Miscellaneous BIOS Flags", "177",
                                                         kFields);

std::uint16_t CBIOSFlags::GetFlags(unsigned index) const {
  return index < std::size(kFields) ? View().Word(kFields[index].offset) : std::uint16_t{0};
}
