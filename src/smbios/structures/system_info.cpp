#include "bytes/text.h"
#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
// Bytes in stored order, each without a leading zero: a byte 0x0A gives one character.
bool Uuid(const mira::smbios::StructureView&, const mira::smbios::Value& value,
          mira::smbios::TextOut& out) {
  for (const std::uint8_t byte : value.bytes) {
    out << mira::bytes::HexNumber(byte, 1, mira::bytes::HexCase::kUpper);
  }
  return true;
}

// DSP0134 7.2. Early structures end before the UUID (length 8) or the SKU number (below 26).
constexpr Field kFields[] = {
    {0x04, "Manufacturer", "Manufacturer", Kind::kString, {.rank = 1}},
    {0x05, "Product Name", "ProductName", Kind::kString, {.rank = 2}},
    {0x06, "Version", "Version", Kind::kString, {.rank = 3}},
    {0x07, "Serial Number", "SerialNumber", Kind::kString, {.rank = 4}},
    {0x08, "UUID", "UUID", Kind::kBytes, {.size = 16, .text = Uuid, .min_length = 9, .rank = 7}},
    {0x18, "Wake-up Type", "WakeUpType", Kind::kByte, {.min_length = 9, .rank = 8}},
    {0x19, "SKU Number", "SKUNumber", Kind::kString, {.min_length = 26, .rank = 5}},
    {0x1A, "Family", "Family", Kind::kString, {.min_length = 26, .rank = 6}},
};

}  // namespace

constinit const mira::smbios::Layout CSystemInfo::kLayout("System Information", "1", kFields);
