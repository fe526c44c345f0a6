#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

constexpr std::uint8_t kMaximumCapacity = 0x07;

bool IsExtended(const mira::smbios::StructureView& s) {
  return s.DWord(kMaximumCapacity) == 0x80000000;
}

// DSP0134 7.17. A capacity that its field cannot hold stands in the extended one, in bytes.
constexpr Field kFields[] = {
    {0x04, "Location", "Location", Kind::kByte, {.rank = 1}},
    {0x05, "Use", "Use", Kind::kByte, {.rank = 4}},
    {0x06, "Memory Error Correction", "MemErrCorrection", Kind::kByte, {.rank = 5}},
    {kMaximumCapacity, "Maximum Capacity", "MemoryCapacity", Kind::kDWord, {.rank = 2}},
    {0x0B, "Memory Error Information Handle", nullptr, Kind::kWord},
    {0x0D, "Number of Memory Devices", "NumMemDevices", Kind::kWord, {.rank = 3}},
    {0x0F, "Extended Maximum Capacity", nullptr, Kind::kQWord, {.shown = IsExtended}},
};

}  // namespace

constinit const mira::smbios::Layout CPhyMemArray::kLayout("Physical Memory Array", "16", kFields);
