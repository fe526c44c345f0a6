#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.17
constexpr Field kFields[] = {
    {"Location", "Location", Kind::kByte, {.rank = 1}},
    {"Use", "Use", Kind::kByte, {.rank = 4}},
    {"Memory Error Correction", "MemErrCorrection", Kind::kByte, {.rank = 5}},
    {"Maximum Capacity", "MemoryCapacity", Kind::kDWord, {.rank = 2}},
    {"Memory Error Information Handle", nullptr, Kind::kWord},
    {"Number of Memory Devices", "NumMemDevices", Kind::kWord, {.rank = 3}},
};

}  // namespace

constinit const mira::smbios::Layout CPhyMemArray::kLayout("Physical Memory Array", "16", kFields);
