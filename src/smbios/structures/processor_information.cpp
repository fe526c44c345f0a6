#include "smbios/structures/processor_families.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
using mira::smbios::ProcessorFamilyName;
using mira::smbios::StructureView;
using mira::smbios::Value;

constexpr std::size_t kCharacteristics = 38;
constexpr std::size_t kFamily2 = 40;

// The name goes by the Processor Family 2 field alone, never by the family byte.
bool FamilyLine(const StructureView& s, const Value&, std::string& out) {
  const char* const name = ProcessorFamilyName(s.Word(kFamily2));
  out.append(name != nullptr ? "Processor Family : " : "Didn't get Proc Family");
  if (name != nullptr) out.append(name);
  return true;
}

bool FamilyName(const StructureView& s, const Value&, std::string& out) {
  const char* const name = ProcessorFamilyName(s.Word(kFamily2));
  if (name != nullptr) out.append(name);
  return name != nullptr;
}

bool Gigahertz(const StructureView&, const Value& value, std::string& out) {
  mira::smbios::AppendDouble(out, static_cast<double>(value.number) / 1000);
  return true;
}

bool Is64Bit(const StructureView& s, const Value&, std::string& out) {
  out += (s.Word(kCharacteristics) & 0x04) != 0 ? "Yes(Intel EM64T)" : "No";
  return true;
}

bool HasThreads(const StructureView& s, const Value&, std::string& out) {
  out += (s.Word(kCharacteristics) & 0x10) != 0 ? "Yes" : "No";
  return true;
}

// DSP0134 7.5. The key "ProcessorType" carries the family's name, on purpose.
constexpr Field kFields[] = {
    {"Socket Designation", "SocketDesignation", Kind::kString, {.rank = 1}},
    {"Processor Type", nullptr, Kind::kByte},
    {"Processor Family", "ProcessorFamily", Kind::kByte, {.line = FamilyLine, .rank = 2}},
    {nullptr, "ProcessorType", Kind::kNone, {.text = FamilyName, .rank = 3}},
    {"Processor Manufacturer", "Manufacturer", Kind::kString, {.rank = 4}},
    {"Processor Id", "ProcessorId", Kind::kQWord, {.rank = 5}},
    {"Processor Version", "ProcessorVersion", Kind::kString, {.rank = 6}},
    {"Voltage", nullptr, Kind::kByte},
    {"External Clock", "ExternalClock", Kind::kWord, {.unit = "MHz", .rank = 7}},
    {"Max Speed", "MaximumClockSpeed", Kind::kWord, {.unit = "GHz", .text = Gigahertz, .rank = 8}},
    {"Current Speed",
     "CurrentClockSpeed",
     Kind::kWord,
     {.unit = "GHz", .text = Gigahertz, .rank = 9}},
    {"Status", "Status", Kind::kByte, {.rank = 13}},
    {"Processor Upgrade", "ProcessorUpgrade", Kind::kByte, {.rank = 20}},
    {"L1 Cache Handle", "ProcessorL1Cache", Kind::kWord, {.rank = 17}},
    {"L2 Cache Handle", "ProcessorL2Cache", Kind::kWord, {.rank = 18}},
    {"L3 Cache Handle", "ProcessorL3Cache", Kind::kWord, {.rank = 19}},
    {"Serial Number", "SerialNumber", Kind::kString, {.rank = 10}},
    {"Asset Tag", "AssetTag", Kind::kString, {.rank = 11}},
    {"Part Number", "PartNumber", Kind::kString, {.rank = 12}},
    {"Core Count", "CoreCount", Kind::kByte, {.rank = 14}},
    {"Core Enabled", nullptr, Kind::kByte},
    {"Thread Count", nullptr, Kind::kByte},
    {"Processor Characteristics", nullptr, Kind::kWord},
    {nullptr, "64BitTechnology", Kind::kNone, {.text = Is64Bit, .rank = 15}},
    {nullptr, "HTCapable", Kind::kNone, {.text = HasThreads, .rank = 16}},
    {nullptr, nullptr, Kind::kWord},  // Processor Family 2
};

}  // namespace

constinit const mira::smbios::Layout CProcessorInformation::kLayout("Processor Information", "4",
                                                                    kFields);
