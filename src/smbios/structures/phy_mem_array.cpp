#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

bool IsExtended(const mira::smbios::StructureView& s) { return s.DWord(7) == 0x80000000; }

// DSP0134 7.17. A capacity that its field cannot hold stands in the extended one, in bytes.
constexpr Field kFields[] = {
    {"Location", "Location", Kind::kByte, {.rank = 1}},
    {"Use", "Use", Kind::kByte, {.rank = 4}},
    {"Memory Error Correction", "MemErrCorrection", Kind::kByte, {.rank = 5}},
    {"Maximum Capacity", "MemoryCapacity", Kind::kDWord, {.rank = 2}},
    {"Memory Error Information Handle", nullptr, Kind::kWord},
    {"Number of Memory Devices", "NumMemDevices", Kind::kWord, {.rank = 3}},
    {"Extended Maximum Capacity", nullptr, Kind::kQWord, {.shown = IsExtended}},
};

}  // namespace

constinit const mira::smbios::Layout CPhyMemArray::kLayout("Physical Memory Array", "16", kFields);
