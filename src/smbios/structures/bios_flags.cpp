#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Flags 0", "Flags0", Kind::kWord, {.hex = true}},
    {"Flags 1", "Flags1", Kind::kWord, {.hex = true}},
    {"Flags 2", "Flags2", Kind::kWord, {.hex = true}},
    {"Flags 3", "Flags3", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CBIOSFlags::kLayout("Miscellaneous BIOS Flags", "177",
                                                         kFields);

std::uint16_t CBIOSFlags::GetFlags(unsigned index) const {
  constexpr unsigned kWords = 4;
  return index < kWords ? View().Word(4 + 2 * index) : std::uint16_t{0};
}
