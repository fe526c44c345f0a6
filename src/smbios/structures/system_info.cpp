#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
// Bytes in stored order, each without a leading zero: a byte 0x0A gives one character.
bool Uuid(const mira::smbios::StructureView&, const mira::smbios::Value& value, std::string& out) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (const std::uint8_t byte : value.bytes) {
    if (byte >= 16) out += kDigits[byte / 16];
    out += kDigits[byte % 16];
  }
  return true;
}

// DSP0134 7.2. Early structures end before the UUID (length 8) or the SKU number (below 26).
constexpr Field kFields[] = {
    {"Manufacturer", "Manufacturer", Kind::kString, {.rank = 1}},
    {"Product Name", "ProductName", Kind::kString, {.rank = 2}},
    {"Version", "Version", Kind::kString, {.rank = 3}},
    {"Serial Number", "SerialNumber", Kind::kString, {.rank = 4}},
    {"UUID", "UUID", Kind::kBytes, {.size = 16, .text = Uuid, .min_length = 9, .rank = 7}},
    {"Wake-up Type", "WakeUpType", Kind::kByte, {.min_length = 9, .rank = 8}},
    {"SKU Number", "SKUNumber", Kind::kString, {.min_length = 26, .rank = 5}},
    {"Family", "Family", Kind::kString, {.min_length = 26, .rank = 6}},
};

}  // namespace

constinit const mira::smbios::Layout CSystemInfo::kLayout("System Information", "1", kFields);
