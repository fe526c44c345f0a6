// The machine as values: fields at the edges of their meaning, and agreement with another decoder
// on the tables of real machines.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "client/inventory_json.h"
#include "client/smbios_file.h"
#include "client/structure_marks.h"
#include "sim/smbios_builder.h"
#include "smbios/table.h"

namespace mira::client {
namespace {

using nlohmann::json;
using sim::SmbiosTable;
using sim::Structure;
using Bytes = std::vector<std::uint8_t>;

json Read(const Structure& structure, std::uint8_t major = 3, std::uint8_t minor = 7) {
  return json::parse(
      ToJson(ReadInventory(SmbiosTable(major, minor).Add(structure).Finish())).dump());
}

Structure Memory(unsigned size, unsigned type, unsigned speed) {
  return Structure(17, 1)
      .Word(0x1000)
      .Word(0xFFFE)
      .Word(72)
      .Word(64)
      .Word(size)
      .Byte(9)
      .Byte(0)
      .Str("A1")
      .Str("")
      .Byte(type)
      .Word(0x2080)
      .Word(speed)
      .Str("M")
      .Str("")
      .Str("")
      .Str("P")
      .Byte(2);
}

TEST(Inventory, ReadsWhatTheFirmwareStates) {
  const Bytes uuid = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                      0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
  const auto system = [&uuid] {
    return Structure(1, 1).Str("M").Str("P").Str("").Str("S").Bytes(uuid).Byte(6).Str("K").Str("F");
  };
  const auto bios = [](unsigned rom) {
    return Structure(0, 1)
        .Str("V")
        .Str("1")
        .Word(0)
        .Str("D")
        .Byte(rom)
        .QWord(0)
        .Byte(3)
        .Byte(0x1D)
        .Byte(1)
        .Byte(8)
        .Byte(0xFF)
        .Byte(0xFF);
  };
  const auto processor = [](unsigned family, unsigned cores) {
    return Structure(4, 1)
        .Str("U1")
        .Byte(3)
        .Byte(family)
        .Str("")
        .QWord(0x0123456789ABCDEF)
        .Str("")
        .Byte(0x8C)
        .Word(100)
        .Word(0)
        .Word(3000)
        .Byte(0x41)
        .Byte(1)
        .Word(0)
        .Word(0)
        .Word(0)
        .Str("")
        .Str("")
        .Str("")
        .Byte(cores)
        .Byte(cores)
        .Byte(cores)
        .Word(0xFC)
        .Word(0x0101)
        .Word(300)
        .Word(299)
        .Word(600);
  };
  struct Case {
    json read;
    const char* place;
    json expected;
  };
  const Case cases[] = {
      {Read(system()), "/system/uuid", "33221100-5544-7766-8899-aabbccddeeff"},
      {Read(system(), 2, 6), "/system/uuid", "33221100-5544-7766-8899-aabbccddeeff"},
      {Read(system(), 2, 5), "/system/uuid", "00112233-4455-6677-8899-aabbccddeeff"},
      {Read(system(), 2, 51), "/system/uuid", "33221100-5544-7766-8899-aabbccddeeff"},
      {Read(system(), 2, 33), "/smbiosVersion", "2.3"},
      {Read(system()), "/system/wakeUpType", "Power Switch"},
      {Read(Structure(1, 1).Str("M").Str("P")),
       "/system",
       {{"manufacturer", "M"}, {"productName", "P"}}},
      {Read(Structure(1, 1).Str("M\xE9").Byte(7)),
       "/system",
       {{"manufacturer", {{"text", "M\xC3\xA9"}, {"bytes", "4de9"}}}}},
      {Read(bios(0x0F)),
       "/bios",
       {{"vendor", "V"},
        {"version", "1"},
        {"releaseDate", "D"},
        {"romSizeKiB", 1024},
        {"release", "1.8"},
        {"uefi", true},
        {"virtualMachine", true}}},
      {Read(bios(0xFF)), "/bios/romSizeKiB", 16384},
      {Read(bios(0xFF).Word(0x0020)), "/bios/romSizeKiB", 32768},
      {Read(bios(0xFF).Word(0x4002)), "/bios/romSizeKiB", 2097152},
      {Read(bios(0x7F).Word(0x0020)), "/bios/romSizeKiB", 8192},
      {Read(processor(0xC6, 8)),
       "/processors/0",
       {{"socket", "U1"},
        {"populated", true},
        {"status", "Enabled"},
        {"type", "Central Processor"},
        {"family", "Core i7"},
        {"id", "efcdab8967452301"},
        {"cores", 8},
        {"coresEnabled", 8},
        {"threads", 8},
        {"voltageMv", 1200},
        {"externalClockMHz", 100},
        {"currentSpeedMHz", 3000}}},
      {Read(processor(0xFE, 0xFF)), "/processors/0/family", "ARMv8"},
      {Read(processor(0xFE, 0xFF)), "/processors/0/cores", 300},
      {Read(processor(0xFE, 0xFF)), "/processors/0/coresEnabled", 299},
      {Read(processor(0xFE, 0xFF)), "/processors/0/threads", 600},
      {Read(processor(0x81, 1)), "/processors/0/family", "code 0x81"},
      {Read(Memory(16384, 0x22, 4800)),
       "/memorySlots/0",
       {{"locator", "A1"},
        {"populated", true},
        {"sizeMiB", 16384},
        {"formFactor", "DIMM"},
        {"type", "DDR5"},
        {"speedMTs", 4800},
        {"totalWidthBits", 72},
        {"dataWidthBits", 64},
        {"ranks", 2},
        {"manufacturer", "M"},
        {"partNumber", "P"},
        {"typeDetails", {"Synchronous", "Registered (Buffered)"}}}},
      {Read(Memory(0x8200, 0x24, 1)), "/memorySlots/0/sizeKiB", 512},
      {Read(Memory(0x8800, 0x24, 1)), "/memorySlots/0/sizeMiB", 2},
      {Read(Memory(0x8800, 0x24, 1)), "/memorySlots/0/type", "HBM3"},
      {Read(Memory(0x8800, 0x25, 1)), "/memorySlots/0/type", "code 0x25"},
      {Read(Memory(0x7FFF, 0x23, 1).DWord(0x80100000)), "/memorySlots/0/sizeMiB", 1048576},
      {Read(Memory(0, 2, 0)), "/memorySlots/0/populated", false},
      {Read(Memory(1, 0x23, 0xFFFF)
                .DWord(0)
                .Word(0xFFFF)
                .Bytes(Bytes(0x32))
                .DWord(70000)
                .DWord(65000)),
       "/memorySlots/0/speedMTs", 70000},
      {Read(Memory(1, 0x23, 0xFFFF)
                .DWord(0)
                .Word(0xFFFF)
                .Bytes(Bytes(0x32))
                .DWord(70000)
                .DWord(65000)),
       "/memorySlots/0/configuredSpeedMTs", 65000},
      {Read(Structure(7, 1)
                .Str("L3")
                .Word(0x0182)
                .Word(0xFFFF)
                .Word(0xFFFF)
                .Word(0)
                .Word(0)
                .Byte(0)
                .Byte(5)
                .Byte(5)
                .Byte(9)
                .DWord(0x80000800)
                .DWord(65536)),
       "/caches/0",
       {{"designation", "L3"},
        {"level", 3},
        {"enabled", true},
        {"mode", "Write Back"},
        {"location", "Internal"},
        {"maxSizeKiB", 131072},
        {"installedSizeKiB", 65536},
        {"errorCorrection", "Single-bit ECC"},
        {"type", "Unified"},
        {"associativity", "12-way Set-associative"}}},
      {Read(Structure(3, 1)
                .Str("M")
                .Byte(0x9F)
                .Str("")
                .Str("")
                .Str("")
                .Byte(3)
                .Byte(3)
                .Byte(3)
                .Byte(3)
                .DWord(0)
                .Byte(2)
                .Byte(1)
                .Byte(1)
                .Byte(3)
                .Bytes(Bytes(3))
                .Str("K")),
       "/chassis/0",
       {{"manufacturer", "M"},
        {"type", "Convertible"},
        {"lock", true},
        {"skuNumber", "K"},
        {"heightUnits", 2},
        {"powerCords", 1}}},
      {Read(Structure(9, 1)
                .Str("S")
                .Byte(0xBB)
                .Byte(0x0A)
                .Byte(4)
                .Byte(4)
                .Word(7)
                .Byte(0)
                .Byte(0)
                .Word(1)
                .Byte(2)
                .Byte(0x1B)),
       "/slots/0",
       {{"designation", "S"},
        {"type", "PCI Express 4 x4"},
        {"width", "x4"},
        {"usage", "In Use"},
        {"length", "Long"},
        {"id", 7},
        {"address", "0001:02:03.3"}}},
      {Read(Structure(8, 1).Str("J").Byte(0).Str("C").Byte(0x23).Byte(0x10)),
       "/ports/0",
       {{"internalDesignator", "J"},
        {"internalConnector", "None"},
        {"externalDesignator", "C"},
        {"externalConnector", "USB Type-C Receptacle"},
        {"type", "USB"}}},
      {Read(Structure(22, 1)
                .Str("Bay")
                .Str("M")
                .Str("")
                .Str("")
                .Str("N")
                .Byte(2)
                .Word(630)
                .Word(7600)
                .Str("1.0")
                .Byte(5)
                .Word(0xC21)
                .Word(0x5A2B)
                .Str("LiP")
                .Byte(10)
                .DWord(0)),
       "/batteries/0",
       {{"location", "Bay"},
        {"manufacturer", "M"},
        {"name", "N"},
        {"manufactureDate", "2025-01-11"},
        {"serialNumber", "0C21"},
        {"chemistry", "LiP"},
        {"designCapacityMWh", 6300},
        {"designVoltageMv", 7600},
        {"sbdsVersion", "1.0"},
        {"maxErrorPercent", 5}}},
      {Read(Structure(43, 1)
                .DWord(0x004D5441)
                .Byte(2)
                .Byte(0)
                .DWord(0x00070055)
                .DWord(0)
                .Str("TPM")
                .QWord(0)
                .DWord(0)),
       "/tpms/0",
       {{"vendor", "ATM"},
        {"specVersion", "2.0"},
        {"firmwareVersion", "7.85"},
        {"description", "TPM"}}},
      {Read(Structure(43, 1).DWord(0x004D5441).Byte(1).Byte(2).DWord(0x0D050201)),
       "/tpms/0/firmwareVersion", "5.13"},
      {Read(Structure(45, 1)
                .Str("ME")
                .Str("16.1")
                .Byte(0)
                .Str("")
                .Byte(0)
                .Str("")
                .Str("M")
                .Str("")
                .QWord(0x100000)
                .Word(1)
                .Byte(4)
                .Byte(0)),
       "/firmware/0",
       {{"name", "ME"},
        {"version", "16.1"},
        {"manufacturer", "M"},
        {"imageSizeBytes", 1048576},
        {"state", "Enabled"},
        {"updatable", true},
        {"writeProtected", false}}},
      {Read(Structure(11, 1).Byte(3).ExtraString("a").ExtraString("b")), "/oemStrings", {"a", "b"}},
      {Read(Structure(200, 1).Byte(3)), "/otherStructures", {{{"type", 200}, {"count", 1}}}},
  };
  for (const Case& c : cases) {
    const json::json_pointer place(c.place);
    ASSERT_TRUE(c.read.contains(place)) << c.place << ' ' << c.read;
    EXPECT_EQ(c.read.at(place), c.expected) << c.place;
  }
}

TEST(Inventory, KeepsWithinTheLength) {
  const auto absent = [](const Structure& structure, const char* place) {
    const json read = Read(structure);
    return !read.contains(json::json_pointer(place));
  };
  EXPECT_TRUE(absent(Memory(0x7FFF, 26, 1).Byte(1), "/memorySlots/0/configuredSpeedMTs"));
  EXPECT_TRUE(absent(Structure(1, 1).Str("").Byte(9), "/system/manufacturer"));
  EXPECT_TRUE(absent(Structure(1, 1).Byte(9).ExtraString("x"), "/system/manufacturer"))
      << "a string number beyond the set";
  EXPECT_TRUE(absent(Structure(1, 1).DWord(0).Bytes(Bytes(16, 0xFF)), "/system/uuid"));
  EXPECT_TRUE(absent(Structure(1, 1).DWord(0).Bytes(Bytes(16)), "/system/uuid"));
  EXPECT_TRUE(absent(Structure(1, 1).DWord(0).Bytes(Bytes(15, 1)), "/system/uuid"));
  for (unsigned type = 0; type < 256; ++type) {
    for (unsigned length = 4; length < 256; length += 19) {
      for (const unsigned fill : {0u, 1u, 0xFFu}) {
        Bytes table = {0, 3, 7, 0, 0, 0, 0, 0};
        table.resize(8 + length, static_cast<std::uint8_t>(fill));
        table[8] = static_cast<std::uint8_t>(type);
        table[9] = static_cast<std::uint8_t>(length);
        table.insert(table.end(), {0, 0});
        EXPECT_FALSE(ToJson(ReadInventory(table)).empty());
      }
    }
  }
}

TEST(StructureMarks, NameDoubledHandles) {
  smbios::StructureTable table;
  ASSERT_TRUE(table.Parse(SmbiosTable(3, 2)
                              .Add(Structure(21, 7).Byte(7))
                              .Add(Structure(5, 8))
                              .Add(Structure(4, 7))
                              .Finish()));
  EXPECT_EQ(RepeatedHandles(table.Objects()), (std::set<std::uint16_t>{7}));
}

std::string Digits(unsigned value, unsigned width) {
  std::string text;
  for (; width > 0; --width, value >>= 8) text += static_cast<char>(value);
  return text;
}

TEST(SmbiosFile, ReadsEveryFormAndCorrectsVersions) {
  const Bytes whole = SmbiosTable(2, 3).Add(Structure(21, 7).Byte(7)).Finish();
  const Bytes bare(whole.begin() + 8, whole.end());
  const std::string table(bare.begin(), bare.end());
  const unsigned size = static_cast<unsigned>(bare.size());
  const auto legacy = [&](unsigned version, unsigned address) {
    return "_DMI_" + Digits(0, 1) + Digits(size, 2) + Digits(address, 4) + Digits(2, 2) +
           Digits(version, 1) + std::string(17, '\0') + table;
  };
  const auto entry = [&](unsigned minor) {
    return "_SM_" + Digits(0x1F00, 2) + Digits(2, 1) + Digits(minor, 1) + std::string(14, '\0') +
           Digits(size, 2) + Digits(32, 4) + std::string(4, '\0') + table;
  };
  struct Case {
    std::string file;
    unsigned minor;
  };
  for (const Case& c : {Case{legacy(0x23, 32), 3},
                        {legacy(0x21, 0xF0000), 1},
                        {entry(8), 8},
                        {entry(31), 3},
                        {entry(33), 3},
                        {entry(51), 6},
                        {entry(32), 32}}) {
    Bytes expected = whole;
    expected[2] = static_cast<std::uint8_t>(c.minor);
    EXPECT_EQ(TableFromFile(bytes::AsBytes(c.file)), expected) << c.minor;
  }
  EXPECT_TRUE(TableFromFile(bytes::AsBytes(legacy(0x23, 32).substr(0, 31))).empty());
  for (const std::uint8_t major : {std::uint8_t{2}, std::uint8_t{3}}) {
    Bytes saved = whole;
    saved[1] = major;
    EXPECT_EQ(TableFromFile(ToDump(saved)), saved);
  }
}

// ---- Agreement with dmidecode ----

#if !defined(_WIN32)

struct Decoded {
  std::multimap<unsigned, std::map<std::string, std::string>> structures;  // in table order by type
};

Decoded RunDmidecode(const std::string& dump) {
  Decoded decoded;
  FILE* const pipe = popen(("dmidecode --from-dump '" + dump + "' 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return decoded;
  std::string text;
  char piece[4096];
  for (std::size_t n = 0; (n = std::fread(piece, 1, sizeof(piece), pipe)) > 0;)
    text.append(piece, n);
  pclose(pipe);
  std::istringstream lines(text);
  std::map<std::string, std::string>* fields = nullptr;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t type = line.find("DMI type ");
    if (line.starts_with("Handle ") && type != std::string::npos) {
      fields =
          &decoded.structures
               .emplace(std::stoul(line.substr(type + 9)), std::map<std::string, std::string>())
               ->second;
    } else if (const std::size_t colon = line.find(':');
               fields != nullptr && line.starts_with('\t') && !line.starts_with("\t\t") &&
               colon != std::string::npos) {
      fields->emplace(line.substr(1, colon - 1), line.substr(std::min(line.size(), colon + 2)));
    }
  }
  return decoded;
}

enum class Kind { kText, kName, kNumber, kKib, kMib, kMillivolts };

struct Row {
  unsigned type;
  const char* list;
  const char* field;
  const char* label;
  Kind kind = Kind::kText;
};

// What both show.
constexpr Row kRows[] = {
    {0, "bios", "vendor", "Vendor"},
    {0, "bios", "version", "Version"},
    {0, "bios", "releaseDate", "Release Date"},
    {0, "bios", "romSizeKiB", "ROM Size", Kind::kKib},
    {0, "bios", "release", "BIOS Revision"},
    {0, "bios", "embeddedControllerRelease", "Firmware Revision"},
    {1, "system", "manufacturer", "Manufacturer"},
    {1, "system", "productName", "Product Name"},
    {1, "system", "version", "Version"},
    {1, "system", "serialNumber", "Serial Number"},
    {1, "system", "uuid", "UUID", Kind::kName},
    {1, "system", "wakeUpType", "Wake-up Type", Kind::kName},
    {1, "system", "skuNumber", "SKU Number"},
    {1, "system", "family", "Family"},
    {2, "boards", "manufacturer", "Manufacturer"},
    {2, "boards", "product", "Product Name"},
    {2, "boards", "version", "Version"},
    {2, "boards", "serialNumber", "Serial Number"},
    {2, "boards", "assetTag", "Asset Tag"},
    {2, "boards", "location", "Location In Chassis"},
    {2, "boards", "type", "Type", Kind::kName},
    {3, "chassis", "manufacturer", "Manufacturer"},
    {3, "chassis", "type", "Type", Kind::kName},
    {3, "chassis", "version", "Version"},
    {3, "chassis", "serialNumber", "Serial Number"},
    {3, "chassis", "assetTag", "Asset Tag"},
    {3, "chassis", "skuNumber", "SKU Number"},
    {3, "chassis", "heightUnits", "Height", Kind::kNumber},
    {3, "chassis", "powerCords", "Number Of Power Cords", Kind::kNumber},
    {4, "processors", "socket", "Socket Designation"},
    {4, "processors", "type", "Type", Kind::kName},
    {4, "processors", "family", "Family", Kind::kName},
    {4, "processors", "manufacturer", "Manufacturer"},
    {4, "processors", "version", "Version"},
    {4, "processors", "voltageMv", "Voltage", Kind::kMillivolts},
    {4, "processors", "externalClockMHz", "External Clock", Kind::kNumber},
    {4, "processors", "maxSpeedMHz", "Max Speed", Kind::kNumber},
    {4, "processors", "currentSpeedMHz", "Current Speed", Kind::kNumber},
    {4, "processors", "serialNumber", "Serial Number"},
    {4, "processors", "assetTag", "Asset Tag"},
    {4, "processors", "partNumber", "Part Number"},
    {4, "processors", "cores", "Core Count", Kind::kNumber},
    {4, "processors", "coresEnabled", "Core Enabled", Kind::kNumber},
    {4, "processors", "threads", "Thread Count", Kind::kNumber},
    {7, "caches", "designation", "Socket Designation"},
    {7, "caches", "mode", "Operational Mode", Kind::kName},
    {7, "caches", "location", "Location", Kind::kName},
    {7, "caches", "installedSizeKiB", "Installed Size", Kind::kKib},
    {7, "caches", "maxSizeKiB", "Maximum Size", Kind::kKib},
    {7, "caches", "speedNs", "Speed", Kind::kNumber},
    {7, "caches", "errorCorrection", "Error Correction Type", Kind::kName},
    {7, "caches", "type", "System Type", Kind::kName},
    {7, "caches", "associativity", "Associativity", Kind::kName},
    {8, "ports", "internalDesignator", "Internal Reference Designator"},
    {8, "ports", "internalConnector", "Internal Connector Type", Kind::kName},
    {8, "ports", "externalDesignator", "External Reference Designator"},
    {8, "ports", "externalConnector", "External Connector Type", Kind::kName},
    {8, "ports", "type", "Port Type", Kind::kName},
    {9, "slots", "designation", "Designation"},
    {9, "slots", "usage", "Current Usage", Kind::kName},
    {9, "slots", "length", "Length", Kind::kName},
    {9, "slots", "address", "Bus Address"},
    {16, "memoryArrays", "location", "Location", Kind::kName},
    {16, "memoryArrays", "use", "Use", Kind::kName},
    {16, "memoryArrays", "errorCorrection", "Error Correction Type", Kind::kName},
    {16, "memoryArrays", "maxCapacityKiB", "Maximum Capacity", Kind::kKib},
    {16, "memoryArrays", "slots", "Number Of Devices", Kind::kNumber},
    {17, "memorySlots", "locator", "Locator"},
    {17, "memorySlots", "bankLocator", "Bank Locator"},
    {17, "memorySlots", "sizeMiB", "Size", Kind::kMib},
    {17, "memorySlots", "formFactor", "Form Factor", Kind::kName},
    {17, "memorySlots", "type", "Type", Kind::kName},
    {17, "memorySlots", "totalWidthBits", "Total Width", Kind::kNumber},
    {17, "memorySlots", "dataWidthBits", "Data Width", Kind::kNumber},
    {17, "memorySlots", "speedMTs", "Speed", Kind::kNumber},
    {17, "memorySlots", "manufacturer", "Manufacturer"},
    {17, "memorySlots", "serialNumber", "Serial Number"},
    {17, "memorySlots", "assetTag", "Asset Tag"},
    {17, "memorySlots", "partNumber", "Part Number"},
    {17, "memorySlots", "ranks", "Rank", Kind::kNumber},
    {17, "memorySlots", "configuredSpeedMTs", "Configured Memory Speed", Kind::kNumber},
    {17, "memorySlots", "minVoltageMv", "Minimum Voltage", Kind::kMillivolts},
    {17, "memorySlots", "maxVoltageMv", "Maximum Voltage", Kind::kMillivolts},
    {17, "memorySlots", "configuredVoltageMv", "Configured Voltage", Kind::kMillivolts},
    {22, "batteries", "location", "Location"},
    {22, "batteries", "manufacturer", "Manufacturer"},
    {22, "batteries", "name", "Name"},
    {22, "batteries", "designCapacityMWh", "Design Capacity", Kind::kNumber},
    {22, "batteries", "designVoltageMv", "Design Voltage", Kind::kNumber},
    {22, "batteries", "sbdsVersion", "SBDS Version"},
};

// What dmidecode says in the words of our fields; empty for absent.
std::string Translate(const std::string& text, Kind kind) {
  if (text == "Not Specified" || text == "<BAD INDEX>") return "";
  if (kind == Kind::kText) return text;
  if (kind == Kind::kName) {
    const bool none = text == "Not Present" || text == "Not Settable";
    return none ? "" : text.starts_with("<OUT OF SPEC>") ? "code" : text;
  }
  std::istringstream in(text);
  double value = 0;
  std::string unit;
  if (!(in >> value)) return "";
  in >> unit;
  const std::map<std::string, double> kib = {
      {"bytes", 1.0 / 1024}, {"kB", 1}, {"MB", 1024}, {"GB", 1048576}, {"TB", 1073741824}};
  if (kind == Kind::kKib) value *= kib.at(unit);
  if (kind == Kind::kMib) value *= kib.at(unit) / 1024;
  if (kind == Kind::kMillivolts) value *= 1000;
  return std::to_string(static_cast<long long>(value + 0.5));
}

std::string OurText(const json& part, const Row& row) {
  const auto found = part.find(row.field);
  if (found == part.end()) return "";
  if (found->is_object()) return found->at("text");
  const std::string text = found->is_string() ? found->get<std::string>() : found->dump();
  return row.kind == Kind::kName && text.starts_with("code ") ? "code" : text;
}

// The differences that are meant, each with its reason.
bool IsMeant(const Row& row, const json& part) {
  // dmidecode leaves out most of an empty slot; what the firmware writes there ("NO DIMM") is
  // shown here.
  return row.type == 17 && part.value("populated", true) == false;
}

TEST(Inventory, AgreesWithDmidecode) {
  const char* const folder = std::getenv("MIRA_TEST_DATA");
  if (folder == nullptr) GTEST_SKIP() << "MIRA_TEST_DATA is not set";
  if (std::system("command -v dmidecode >/dev/null") != 0) GTEST_SKIP() << "no dmidecode";
  std::size_t compared = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(folder) + "/smbios")) {
    SCOPED_TRACE(entry.path().stem().string());
    std::ifstream file(entry.path(), std::ios::binary);
    const Bytes table{std::istreambuf_iterator<char>(file), {}};
    const std::string dump = "mira_test_inventory.dump";
    const Bytes bytes = ToDump(table);
    std::ofstream(dump, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    const Decoded decoded = RunDmidecode(dump);
    std::remove(dump.c_str());
    const json inventory = json::parse(ToJson(ReadInventory(table)).dump());
    for (const Row& row : kRows) {
      const auto [from, to] = decoded.structures.equal_range(row.type);
      const json parts = !inventory.contains(row.list)     ? json::array()
                         : inventory[row.list].is_object() ? json::array({inventory[row.list]})
                                                           : inventory[row.list];
      ASSERT_EQ(parts.size(), static_cast<std::size_t>(std::distance(from, to))) << row.list;
      std::size_t i = 0;
      for (auto part = from; part != to; ++part, ++i) {
        const auto label = part->second.find(row.label);
        const std::string theirs =
            label != part->second.end() ? Translate(label->second, row.kind) : "";
        const std::string ours = OurText(parts[i], row);
        EXPECT_TRUE(ours == theirs || IsMeant(row, parts[i]))
            << row.list << '[' << i << "]." << row.field << ": '" << ours << "' against '" << theirs
            << "'";
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 5000u);
}

#endif

}  // namespace
}  // namespace mira::client
