#include "smbios/layout.h"
#include "smbios/structures/processor_families.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::ProcessorFamilyName;
using mira::smbios::StructureView;
using mira::smbios::TextOut;
using mira::smbios::Value;

constexpr std::uint8_t kCharacteristics = 0x26;
constexpr std::uint8_t kFamily2 = 0x28;

// The name goes by the Processor Family 2 field alone, never by the family byte.
bool FamilyLine(const StructureView& s, const Value&, TextOut& out) {
  const char* const name = ProcessorFamilyName(s.Word(kFamily2));
  out << (name != nullptr ? "Processor Family : " : "Didn't get Proc Family");
  if (name != nullptr) out << name;
  return true;
}

bool FamilyName(const StructureView& s, const Value&, TextOut& out) {
  const char* const name = ProcessorFamilyName(s.Word(kFamily2));
  if (name != nullptr) out << name;
  return name != nullptr;
}

bool Gigahertz(const StructureView&, const Value& value, TextOut& out) {
  out << static_cast<double>(value.number) / 1000;
  return true;
}

bool Is64Bit(const StructureView& s, const Value&, TextOut& out) {
  out << ((s.Word(kCharacteristics) & 0x04) != 0 ? "Yes(Intel EM64T)" : "No");
  return true;
}

bool HasThreads(const StructureView& s, const Value&, TextOut& out) {
  out << ((s.Word(kCharacteristics) & 0x10) != 0 ? "Yes" : "No");
  return true;
}

// DSP0134 7.5. The key "ProcessorType" carries the family's name, on purpose.
constexpr Field kFields[] = {
    {0x04, "Socket Designation", "SocketDesignation", Kind::kString, {.rank = 1}},
    {0x05, "Processor Type", nullptr, Kind::kByte},
    {0x06, "Processor Family", "ProcessorFamily", Kind::kByte, {.line = FamilyLine, .rank = 2}},
    {kFamily2, nullptr, "ProcessorType", Kind::kNone, {.text = FamilyName, .rank = 3}},
    {0x07, "Processor Manufacturer", "Manufacturer", Kind::kString, {.rank = 4}},
    {0x08, "Processor Id", "ProcessorId", Kind::kQWord, {.rank = 5}},
    {0x10, "Processor Version", "ProcessorVersion", Kind::kString, {.rank = 6}},
    {0x11, "Voltage", nullptr, Kind::kByte},
    {0x12, "External Clock", "ExternalClock", Kind::kWord, {.unit = "MHz", .rank = 7}},
    {0x14,
     "Max Speed",
     "MaximumClockSpeed",
     Kind::kWord,
     {.unit = "GHz", .text = Gigahertz, .rank = 8}},
    {0x16,
     "Current Speed",
     "CurrentClockSpeed",
     Kind::kWord,
     {.unit = "GHz", .text = Gigahertz, .rank = 9}},
    {0x18, "Status", "Status", Kind::kByte, {.rank = 13}},
    {0x19, "Processor Upgrade", "ProcessorUpgrade", Kind::kByte, {.rank = 20}},
    {0x1A, "L1 Cache Handle", "ProcessorL1Cache", Kind::kWord, {.rank = 17}},
    {0x1C, "L2 Cache Handle", "ProcessorL2Cache", Kind::kWord, {.rank = 18}},
    {0x1E, "L3 Cache Handle", "ProcessorL3Cache", Kind::kWord, {.rank = 19}},
    {0x20, "Serial Number", "SerialNumber", Kind::kString, {.rank = 10}},
    {0x21, "Asset Tag", "AssetTag", Kind::kString, {.rank = 11}},
    {0x22, "Part Number", "PartNumber", Kind::kString, {.rank = 12}},
    {0x23, "Core Count", "CoreCount", Kind::kByte, {.rank = 14}},
    {0x24, "Core Enabled", nullptr, Kind::kByte},
    {0x25, "Thread Count", nullptr, Kind::kByte},
    {kCharacteristics, "Processor Characteristics", nullptr, Kind::kWord},
    {kCharacteristics, nullptr, "64BitTechnology", Kind::kNone, {.text = Is64Bit, .rank = 15}},
    {kCharacteristics, nullptr, "HTCapable", Kind::kNone, {.text = HasThreads, .rank = 16}},
    {kFamily2, nullptr, nullptr, Kind::kWord},  // Processor Family 2
};

}  // namespace

constinit const mira::smbios::Layout CProcessorInformation::kLayout("Processor Information", "4",
                                                                    kFields);
