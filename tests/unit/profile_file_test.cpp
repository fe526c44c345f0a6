// Machines as files: what they say, what is refused and where, the machines that come along.

#include "sim/profile_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "sim/device_path_reader.h"
#include "sim/machine.h"
#include "tests/support/byte_builder.h"

namespace mira {
namespace {

using test::Bytes;
using test::Hex;

TEST(ProfileFile, SaysWhatDiffersFromItsBase) {
  const sim::Profile profile = sim::ReadProfile(R"json({
    "name": "kiosk", "base": "locked",
    "assetTag": "caf\u00e9 7", "supportedClasses": "0x1F", "bufferSize": 2048,
    "tokens": [{"id": 1, "location": "0x70", "value": 3}],
    "class10Password": {"text": ""},
    "drives": [{"handle": 5, "description": "Only one", "canClear": false}],
    "extendedTags": {"3": "three"},
    "bootLists": [{"value": 2, "name": "UEFI \u2013 \ud83d\udcbe", "order": [9], "options": [
      {"number": 9, "attributes": 1, "description": "Disk", "path": "PciRoot(0x0)/Pci(0x1F,0x2)"}]}],
    "attributes": [
      {"kind": "integer", "name": "Delay", "value": "4", "default": "0", "upper": 8, "increment": 2},
      {"kind": "string", "name": "Site", "value": "NF01", "lower": 4, "upper": 8, "readOnly": true}],
    "batteries": [{"number": 2, "chargingDays": [1, 2, 3, 4, 5, 6, 7]}],
    "thermalSensors": [{"number": 1, "temperature": -55, "location": "Card"}]
  })json");
  EXPECT_EQ(profile.name, "kiosk");
  EXPECT_EQ(profile.class9.text, "setup1") << "as in the base";
  EXPECT_EQ(profile.class10.text, "");
  EXPECT_EQ(profile.class10.min_length, 4) << "of a part, too";
  EXPECT_EQ(profile.asset_tag, "caf\xE9 7");
  EXPECT_EQ(profile.supported_classes, 0x1Fu);
  EXPECT_EQ(profile.tokens.at(0).location, 0x70);
  ASSERT_EQ(profile.drives.size(), 1u);
  EXPECT_EQ(profile.drives[0].password, "") << "lists are replaced as a whole";
  EXPECT_FALSE(profile.drives[0].can_clear);
  EXPECT_EQ(profile.extended_tags, (std::map<std::uint32_t, std::string>{{3, "three"}}));
  EXPECT_EQ(profile.boot_lists.at(0).name, u"UEFI – 💾");
  EXPECT_EQ(profile.boot_lists[0].options.at(0).path,
            Hex("02 01 0c 00 d0 41 03 0a 00 00 00 00 01 01 06 00 02 1f 7f ff 04 00"));
  EXPECT_TRUE(profile.attributes.at(1).read_only);
  EXPECT_EQ(profile.batteries.at(0).charging_days[6], 7u);
  EXPECT_EQ(profile.thermal_sensors.at(0).temperature, -55);
}

TEST(ProfileFile, NamesThePlaceOfAnError) {
  struct Case {
    const char* json;
    const char* complaint;
  };
  const Case cases[] = {
      {"{\n\"name\": \"x\",\n}", "line 3"},
      {"{\n\"nmae\": \"x\"}", "'nmae' is unknown"},
      {"{\n\"bufferSize\": -1}", "at '/bufferSize' (line 2): is out of its range"},
      {"{\"bufferSize\": \"many\"}", "at '/bufferSize' (line 1): is no number"},
      {"{\"drives\": [\n{\"handle\": 1, \"description\": \"\"},\n{\"handle\": 256}]}",
       "at '/drives/1/handle' (line 3)"},
      {"{\"drives\": [{\"handle\": 1}]}", "'description' is missing"},
      {"{\"dropStructures\": [27, 256]}", "at '/dropStructures/1' (line 1): is out of its range"},
      {"{\"structures\": [{\"type\": 200, \"handle\": 1, \"fields\": [{\"qword\": -1}]}]}",
       "/structures/0/fields/0/qword"},
      {"{\"bufferSize\": 18446744073709551616}", "no whole number"},
      {"{\"dropStructures\": [null]}", "dropStructures"},
      {"{\"schemaVersion\": 2}", "version"},
      {"{\"base\": \"toaster\"}", "no profile 'toaster'"},
      {"{\"smbiosTable\": \"0g\"}", "/smbiosTable"},
      {"{\"eppid\": \"short\"}", "23 characters"},
      {"{\"pendingAttributes\": {\"Nothing\": \"1\"}}", "Nothing"},
      {"{\"attributes\": [{\"kind\": \"colour\", \"name\": \"X\"}]}", "/attributes/0"},
      {"{\"attributes\": [{\"kind\": \"integer\", \"name\": \"X\", \"upper\": 4, \"value\": \"5\","
       " \"default\": \"0\"}]}",
       "'5'"},
      {"{\"bootLists\": [{\"value\": 1, \"name\": \"\", \"order\": [0], \"options\": [{\"number\": "
       "0,"
       " \"description\": \"\", \"path\": \"Pci(0x1F\"}]}]}",
       "/bootLists/0/options/0"},
      {"[]", "is no object"},
      {"", "line 1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.json);
    try {
      sim::ReadProfile(c.json);
      ADD_FAILURE() << "taken";
    } catch (const sim::StateError& error) {
      EXPECT_NE(std::string(error.what()).find(c.complaint), std::string::npos) << error.what();
    }
  }
}

TEST(ProfileFile, TakesFieldsOfEightBytesInFull) {
  const sim::Profile profile = sim::ReadProfile(R"json({"structures": [
    {"type": 200, "handle": 1, "fields": [{"qword": 18446744073709551615},
      {"qword": "0xFEDCBA9876543210"}, {"qword": 9223372036854775808}, {"qword": 1}]}]})json");
  const Bytes wanted =
      Hex("c8 24 01 00 ff ff ff ff ff ff ff ff 10 32 54 76 98 ba dc fe "
          "00 00 00 00 00 00 00 80 01 00 00 00 00 00 00 00 00 00");
  const Bytes& table = profile.firmware_table;
  EXPECT_NE(std::search(table.begin(), table.end(), wanted.begin(), wanted.end()), table.end());
}

TEST(ProfileFile, GivesDevicePathsByTheStandardsBytes) {
  struct Case {
    const char* text;
    const char* bytes;
  };
  const Case cases[] = {
      {"", "7f ff 04 00"},
      {"Sata(0x1,0xFFFF,2)", "03 12 0a 00 01 00 ff ff 02 00 7f ff 04 00"},
      {"USB(3,0)", "03 05 06 00 03 00 7f ff 04 00"},
      {"NVMe(0x1,8C-E3-8E-04-00-AA-1B-2C)",
       "03 17 10 00 01 00 00 00 2c 1b aa 00 04 8e e3 8c 7f ff 04 00"},
      {"Uri(http://a/b)", "03 18 0e 00 68 74 74 70 3a 2f 2f 61 2f 62 7f ff 04 00"},
      {"\\a", "04 04 0a 00 5c 00 61 00 00 00 7f ff 04 00"},
      {"FvFile(A7D8D9A6-6AB0-4AEB-AD9D-163E59A7A380)",
       "04 06 14 00 a6 d9 d8 a7 b0 6a eb 4a ad 9d 16 3e 59 a7 a3 80 7f ff 04 00"},
      {"Path(9,7,0aFF)", "09 07 06 00 0a ff 7f ff 04 00"},
      {"Pci(0,1),/Pci(2,3)", "01 01 06 00 01 00 7f 01 04 00 01 01 06 00 03 02 7f ff 04 00"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(sim::ReadDevicePath(c.text), Hex(c.bytes));
  }
  for (const char* const bad : {"Pci", "Pci(1", "Pci(1)", "Pci(1,2,3)", "Pci(1,256)", "Bogus(1)",
                                "Pci(0,1),Pci(2,3)", "FvFile(A7D8)", "Path(1,1,0)", "NVMe(1,8C)"}) {
    EXPECT_THROW(sim::ReadDevicePath(bad), sim::StateError) << bad;
  }
}

// How many structures of a type the table holds, found by their types and terminators alone.
int Count(const std::vector<std::uint8_t>& table, std::uint8_t type) {
  int count = 0;
  for (std::size_t at = 8; at + 4 <= table.size();) {
    count += table[at] == type ? 1 : 0;
    at += table[at + 1];
    while (at + 1 < table.size() && (table[at] != 0 || table[at + 1] != 0)) ++at;
    at += 2;
  }
  return count;
}

TEST(BuiltInProfiles, AreWhatTheirDescriptionsSay) {
  const auto table = [](const char* name) {
    return sim::Machine(*sim::FindProfile(name)).GetProfile().firmware_table;
  };
  const sim::Profile& workstation = *sim::FindProfile("workstation");
  EXPECT_EQ(workstation.drives.size(), 8u);
  EXPECT_EQ(Count(table("workstation"), 17), 24);
  EXPECT_EQ(Count(table("workstation"), 4), 2);
  EXPECT_EQ(Count(table("desktop"), 17), 4);
  EXPECT_EQ(Count(table("desktop"), 22), 0);
  EXPECT_EQ(Count(table("laptop"), 22), 1);
  EXPECT_EQ(table("old-firmware").at(1), 2);
  EXPECT_EQ(table("old-firmware").at(2), 3);
  EXPECT_EQ(sim::FindProfile("old-firmware")->buffer_fix, 0u);
  EXPECT_EQ(sim::FindProfile("scan-codes")->class9.text, "\x1F\x12\x14\x16\x19\x02");
  EXPECT_EQ(sim::FindProfile("no-attributes")->supported_classes, 0x05F71FDFu);
  EXPECT_EQ(sim::Profiles().front().name, "laptop");
}

TEST(ProfileFile, TellsItsIdentityToTheTableOfItsBase) {
  const auto table = [](const char* json) {
    const sim::Machine machine(sim::ReadProfile(json));
    return machine.GetProfile().firmware_table;
  };
  const auto holds = [](const Bytes& bytes, const std::string& text) {
    return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) != bytes.end();
  };
  struct Case {
    const char* base;
    const char* serial;  // of the base
    int modules;         // of its own
  };
  for (const Case& c : {Case{"laptop", "7KX2M91", 2}, Case{"desktop", "4DT7Q18", 4},
                        Case{"workstation", "9WS0K44", 24}, Case{"old-firmware", "1OF6J02", 2}}) {
    SCOPED_TRACE(c.base);
    const std::string base = R"({"base": ")" + std::string(c.base) + '"';
    const Bytes same = table((base + "}").c_str());
    EXPECT_EQ(same, sim::Machine(*sim::FindProfile(c.base)).GetProfile().firmware_table);
    const Bytes other =
        table((base + R"(, "serviceTag": "ABC-123", "biosVersion": "9.9.9"})").c_str());
    EXPECT_TRUE(holds(same, c.serial));
    EXPECT_FALSE(holds(other, c.serial));
    EXPECT_TRUE(holds(other, "ABC-123"));
    EXPECT_TRUE(holds(other, "9.9.9"));
    EXPECT_EQ(Count(other, 17), c.modules) << "the base's own structures stay";
    EXPECT_EQ(Count(other, 127), 1);
    EXPECT_EQ(Count(table((base + R"(, "callingInterface": false})").c_str()), 218), 0);
  }
}

TEST(BuiltInProfiles, AreTheSameWhenWrittenAndReadBack) {
  for (const sim::Profile& profile : sim::Profiles()) {
    SCOPED_TRACE(profile.name);
    const std::string text = sim::WriteProfile(profile);
    const sim::Profile read = sim::ReadProfile(text);
    EXPECT_EQ(sim::WriteProfile(read), text);
    // Also where it matters: such a machine takes the other's state.
    sim::Machine machine(profile);
    machine.Reboot();
    sim::Machine again(read);
    again.RestoreState(machine.SaveState().str());
    EXPECT_EQ(again.SaveState().str(), machine.SaveState().str());
  }
}

}  // namespace
}  // namespace mira
