// BIOS attributes end to end: the simulated firmware's bytes and verdicts, and the console on it.

#include "sim/firmware/attributes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "facade/mira_intf.h"
#include "sim/attribute_tables.h"
#include "sim/machine.h"
#include "tests/support/byte_builder.h"
#include "tests/support/checked_cursors.h"
#include "tests/support/console_program.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using nlohmann::json;
using sim::AttributeKind;
using sim::SetupAttribute;
using test::ByteBuilder;
using test::Bytes;
using test::Document;
using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;
using Words = std::vector<std::string>;

// Where an attribute's value begins in the record of a live read: behind the block and the type.
constexpr std::size_t kLiveValue = 73;

TEST(BiosTable, EndsWithPaddingAndChecksum) {
  struct Case {
    const char* what;
    Bytes built;
    const char* bytes;
  };
  const std::uint8_t indices[] = {2, 0};
  const std::uint16_t handles[] = {0x1234};
  const Case cases[] = {
      {"no entries", sim::BiosTable().Finish(), "00 00 00 00"},
      {"texts, two pad bytes",
       sim::BiosTable()
           .Word(1)
           .Text(std::string_view("Hi"))
           .Word(0x1234)
           .Text(std::string_view())
           .Finish(),
       "01 00 02 00 48 69 34 12 00 00 00 00 0A 0B 18 85"},
      {"wide text, nothing to pad",
       sim::BiosTable().Word(0x1007).Text(std::u16string_view(u"H\u00E9")).Finish(),
       "07 10 02 00 48 00 E9 00 C2 D3 ED 94"},
      {"lists", sim::BiosTable().ByteList(indices).WordList(handles).Entries(),
       "02 02 00 01 34 12"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.built, test::Hex(c.bytes)) << c.what;
  EXPECT_EQ(sim::Crc32(bytes::AsBytes("123456789")), 0xCBF43926u) << "the check value of CRC-32";
}

// An attribute of every type. "Disk" and "Net" are boot sources and members, and attributes.
std::vector<SetupAttribute> SmallSetup() {
  return {
      {.kind = AttributeKind::kEnumeration,
       .name = "Wake",
       .display = u"W\u00E4ke",
       .help = u"?",
       .choices = {"Off", "LAN[x]"},
       .value = "LAN[x]",
       .default_value = "Off",
       .lower = 1,
       .upper = 1},
      {.kind = AttributeKind::kString, .name = "Tag", .value = "ab", .upper = 4},
      {.kind = AttributeKind::kPassword, .name = "Pin", .lower = 4, .upper = 8},
      {.kind = AttributeKind::kInteger,
       .name = "Fan",
       .value = "30",
       .default_value = "10",
       .lower = 10,
       .upper = 50,
       .increment = 20},
      {.kind = AttributeKind::kBootOrder,
       .name = "Order",
       .choices = {"Disk", "Net"},
       .value = "Net|Disk",
       .lower = 1,
       .upper = 2},
      {.name = "Disk",
       .choices = {"Off"},
       .value = "Off",
       .default_value = "Off",
       .lower = 1,
       .upper = 1,
       .read_only = true},
      {.name = "Net",
       .choices = {"Off"},
       .value = "Off",
       .default_value = "Off",
       .lower = 1,
       .upper = 1},
      {.kind = AttributeKind::kCollection,
       .name = "Set",
       .choices = {"All"},
       .value = "Fan|Wake",
       .upper = 3},
      {.kind = AttributeKind::kConfigSet,
       .name = "Use",
       .choices = {"Disk", "Net"},
       .value = "Net"},
  };
}

sim::Profile SmallMachine() {
  sim::Profile profile;
  profile.attributes = SmallSetup();
  return profile;
}

// Class 5 as the firmware's caller sees it.
class Firmware {
 public:
  explicit Firmware(const sim::Profile& profile = SmallMachine())
      : security_(std::make_shared<sim::Security>(profile)), handler_(security_, profile) {}

  // Calls with a data area of these bytes behind the length word; gives the record.
  Bytes Call(unsigned select, const Bytes& data, std::uint32_t arg2 = 0, std::uint32_t arg3 = 0,
             std::uint32_t arg4 = 0) {
    ByteBuilder record;
    record.U16(5).U16(select).U32(44).U32(arg2).U32(arg3).U32(arg4);
    record.U32(0).U32(0).U32(0).U32(0).U32(1).U32(48 + data.size()).U32(data.size());
    record.Raw(bytes::AsText(data));
    Bytes bytes = record.Done();
    sim::Call call(bytes);
    call.Complete(sim::kSuccess);
    handler_.Handle(call);
    completion_ = call.Completion();
    return bytes;
  }
  std::int32_t completion() const { return completion_; }

  // A table, or the list of tables, whole.
  Bytes Read(std::uint16_t select, std::uint32_t table = 0) {
    const Bytes probe = Call(select, {}, 0, table);
    EXPECT_EQ(completion_, sim::kTooSmall);
    const Bytes record =
        Call(select, Bytes(std::size_t{probe[44]} + 256 * std::size_t{probe[45]}), 0, table);
    EXPECT_EQ(completion_, sim::kSuccess);
    return Bytes(record.begin() + 48, record.end());
  }

  // The status byte of a write.
  int Write(std::uint16_t handle, const Bytes& value, std::uint32_t key = 0) {
    const Bytes record = Call(6, Block(handle, value.size(), 25 + value.size(), value), key);
    EXPECT_EQ(completion_, sim::kSuccess);
    return record.back();
  }

  // The live value, behind the status byte, of the length expected.
  Bytes Value(std::uint16_t handle, std::size_t size) {
    const Bytes record = Call(5, Block(handle, 128, 162, {}));
    const auto value = record.begin() + 48 + 25;
    return Bytes(value, value + static_cast<std::ptrdiff_t>(size));
  }

  // "$ACIPLDM", a checksum that brings the sum to 0, length, version, handle, size, the value.
  static Bytes Block(std::uint16_t handle, std::size_t size, std::size_t length,
                     const Bytes& value) {
    ByteBuilder block;
    block.Raw("$ACIPLDM").U32(0).U32(length).U32(0x00020001).U16(handle).U16(size);
    Bytes bytes = block.Raw(bytes::AsText(value)).Done();
    bytes.resize(length);
    Seal(bytes);
    return bytes;
  }
  static void Seal(Bytes& block) {
    block[8] = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
      if (i != 8) block[8] = static_cast<std::uint8_t>(block[8] - block[i]);
    }
  }

  sim::Security& security() { return *security_; }
  void Reboot() { handler_.Reboot(); }

 private:
  std::shared_ptr<sim::Security> security_;
  sim::AttributeHandler handler_;
  std::int32_t completion_ = 0;
};

TEST(AttributeFirmware, ServesItsTables) {
  Firmware firmware;
  EXPECT_EQ(firmware.Read(3), test::Hex("24 41 43 49 02 00 00 00 50 4C 44 4D 68 00 00 00 "
                                        "03 00 00 00 01 00 D6 05 "
                                        "00 00 00 00 00 00 00 00 60 00 00 00 00 00 31 7A "
                                        "01 00 00 00 00 00 00 01 80 00 00 00 60 00 31 7A "
                                        "02 00 00 00 00 00 00 02 40 00 00 00 E0 00 31 7A "
                                        "03 01 00 00 00 00 00 03 30 00 00 00 20 01 31 7A "
                                        "03 00 00 00 00 00 00 04 2C 00 00 00 50 01 31 7A"));
  const char* const tables[] = {
      // Strings: those that also name attributes have the attributes' handles.
      "06 00 04 00 44 69 73 6B 07 00 03 00 4E 65 74 02 10 04 00 57 61 6B 65 03 10 03 00 4F 66 66 "
      "04 10 06 00 4C 41 4E 5B 78 5D 05 10 03 00 54 61 67 06 10 03 00 50 69 6E "
      "07 10 03 00 46 61 6E 08 10 05 00 4F 72 64 65 72 09 10 03 00 53 65 74 "
      "0A 10 03 00 41 6C 6C 0B 10 03 00 55 73 65 00 36 45 59 3C",
      // Attributes
      "01 00 00 02 10 02 03 10 04 10 01 00 "
      "02 00 01 05 10 01 00 00 04 00 00 00 "
      "03 00 02 06 10 01 04 00 08 00 00 00 "
      "04 00 03 07 10 0A 00 00 00 00 00 00 00 32 00 00 00 00 00 00 00 14 00 00 00 "
      "0A 00 00 00 00 00 00 00 "
      "05 00 04 08 10 01 03 01 02 02 06 00 07 00 "
      "06 00 80 06 00 01 03 10 01 00 "
      "07 00 00 07 00 01 03 10 01 00 "
      "08 00 05 09 10 0A 10 03 00 "
      "09 00 06 0B 10 02 06 00 07 00 "
      "00 00 48 D0 FE 67",
      // Values
      "01 00 00 01 01 02 00 01 02 00 61 62 03 00 02 00 00 04 00 03 1E 00 00 00 00 00 00 00 "
      "05 00 04 01 03 02 01 00 06 00 80 01 00 07 00 00 01 00 08 00 05 02 04 00 01 00 09 00 06 01 "
      "00 00 8A 09 38 BF",
      // Display texts, help texts
      "02 10 04 00 57 00 E4 00 6B 00 65 00 05 10 00 00 06 10 00 00 07 10 00 00 08 10 00 00 "
      "06 00 00 00 07 00 00 00 09 10 00 00 0B 10 00 00 46 51 41 48",
      "02 10 01 00 3F 00 05 10 00 00 06 10 00 00 07 10 00 00 08 10 00 00 06 00 00 00 07 00 00 00 "
      "09 10 00 00 0B 10 00 00 00 00 1A DE 72 25",
  };
  for (std::uint32_t table = 0; table < std::size(tables); ++table) {
    EXPECT_EQ(firmware.Read(4, table), test::Hex(tables[table])) << "table " << table;
  }
}

TEST(AttributeFirmware, ServesATableByParts) {
  Firmware firmware;
  struct Case {
    std::uint32_t table;
    std::uint32_t received;
    std::size_t room;
    std::int32_t completion;
    std::uint32_t length;  // the answer's length word
  };
  const Case cases[] = {
      {2, 0, 40, sim::kSuccess, 40},        {2, 40, 40, sim::kSuccess, 24},
      {2, 40, 0, sim::kTooSmall, 24},       {2, 64, 40, sim::kError, 40},
      {2, 0xFFFFFFFF, 40, sim::kError, 40}, {5, 0, 40, sim::kError, 40},
  };
  for (const Case& c : cases) {
    const Bytes record = firmware.Call(4, Bytes(c.room), 0, c.table, c.received);
    EXPECT_EQ(firmware.completion(), c.completion) << c.table << " from " << c.received;
    EXPECT_EQ(test::CheckedReader(record, 44).U32(), c.length);
  }
  const Bytes record = firmware.Call(4, Bytes(5), 0, 2, 36);
  EXPECT_EQ(Bytes(record.begin() + 48, record.end()), test::Hex("06 00 80 01 00"));
}

TEST(AttributeFirmware, JudgesWrites) {
  struct Case {
    const char* what;
    std::uint16_t handle;
    const char* value;  // with its type in front
    int status;
  };
  const Case cases[] = {
      {"enumeration", 1, "00 01 00", 0},
      {"no such value", 1, "00 01 02", 1},
      {"no value", 1, "00 00", 1},
      {"more values than may be", 1, "00 02 00 01", 1},
      {"list cut short", 1, "00 02 00", 4},
      {"bytes behind the value", 1, "00 01 00 00", 4},
      {"of another type", 1, "03 01 00", 4},
      {"no type", 1, "", 4},
      {"text", 2, "01 01 00 7A", 0},
      {"empty text", 2, "01 00 00", 0},
      {"text too long", 2, "01 05 00 7A 7A 7A 7A 7A", 1},
      {"no character", 2, "01 01 00 07", 1},
      {"length too large", 2, "01 03 00 7A", 4},
      {"password", 3, "02 04 00 31 32 33 34", 0},
      {"password too short", 3, "02 03 00 31 32 33", 1},
      {"lower bound", 4, "03 0A 00 00 00 00 00 00 00", 0},
      {"upper bound", 4, "03 32 00 00 00 00 00 00 00", 0},
      {"below", 4, "03 09 00 00 00 00 00 00 00", 1},
      {"above", 4, "03 33 00 00 00 00 00 00 00", 1},
      {"far above", 4, "03 0A 00 00 00 00 00 00 80", 1},
      {"between two steps", 4, "03 0B 00 00 00 00 00 00 00", 1},
      {"short number", 4, "03 0A 00 00 00", 4},
      {"boot order", 5, "04 01 03 01 00", 0},
      {"source twice", 5, "04 01 03 02 00 00", 1},
      {"no such source", 5, "04 01 03 01 02", 1},
      {"no source", 5, "04 01 03 00", 1},
      {"another kind of boot order", 5, "04 02 03 01 00", 1},
      {"no such mode", 5, "04 01 04 01 00", 1},
      {"read-only", 6, "00 01 00", 2},
      {"read-only, whatever comes", 6, "FF", 2},
      {"collection", 8, "05 01 09 00", 0},
      {"no members", 8, "05 00", 0},
      {"too many members", 8, "05 04 01 00 02 00 03 00 04 00", 1},
      {"no such member", 8, "05 01 0A 00", 1},
      {"config set", 9, "06 00", 0},
      {"no such config", 9, "06 02", 1},
      {"unknown attribute", 10, "00 01 00", 3},
      {"attribute 0", 0, "00 01 00", 3},
  };
  for (const Case& c : cases) {
    Firmware firmware;
    const Bytes tables = firmware.Read(4, 2);
    EXPECT_EQ(firmware.Write(c.handle, test::Hex(c.value)), c.status) << c.what;
    EXPECT_EQ(firmware.Read(4, 2), tables) << c.what << ": tables keep what was at start";
    firmware.Reboot();
    const bool shows = c.status == 0 && c.handle != 3;
    EXPECT_EQ(firmware.Read(4, 2) != tables, shows) << c.what;
    if (!shows) continue;
    const Bytes value = test::Hex(std::string(c.value).substr(2));
    EXPECT_EQ(firmware.Value(c.handle, value.size()), value) << c.what;
  }
}

TEST(AttributeFirmware, WantsAKeyWhileAPasswordIsInstalled) {
  const Bytes value = test::Hex("00 01 00");
  for (const bool is_setup : {true, false}) {
    sim::Profile profile = SmallMachine();
    (is_setup ? profile.class9 : profile.class10).text = "secret";
    Firmware firmware(profile);
    EXPECT_EQ(firmware.Write(1, value), 5);
    EXPECT_EQ(firmware.Write(1, value, 0x11111111), 5);
    const std::uint32_t key = firmware.security().Key(is_setup ? 9 : 10);
    EXPECT_EQ(firmware.Write(1, value, key), 0);
    EXPECT_EQ(firmware.Write(6, value, key), 2) << "with a key, it is read-only all the same";
    firmware.security().Reboot();
    EXPECT_EQ(firmware.Write(1, value, key), 5) << "keys end with a restart";
  }
}

TEST(AttributeFirmware, ChecksTheRequestBlock) {
  struct Case {
    const char* what;
    std::size_t offset;
    std::uint8_t byte;
    std::int32_t completion;
  };
  const Case cases[] = {
      {"as it should be", 9, 0, sim::kSuccess},   {"signature", 3, 'J', sim::kBadFormat},
      {"length", 12, 163, sim::kBadFormat},       {"short length", 12, 24, sim::kBadFormat},
      {"huge length", 15, 0xFF, sim::kBadFormat}, {"version", 16, 2, sim::kBadFormat},
      {"unknown handle", 20, 10, sim::kError},    {"no room", 22, 1, sim::kTooSmall},
  };
  Firmware firmware;
  for (const Case& c : cases) {
    Bytes block = Firmware::Block(1, 128, 162, {});
    block[c.offset] = c.byte;
    Firmware::Seal(block);
    firmware.Call(5, block);
    EXPECT_EQ(firmware.completion(), c.completion) << c.what;
  }
  Bytes unsealed = Firmware::Block(1, 128, 162, {});
  ++unsealed[8];
  for (const unsigned select : {5u, 6u}) {
    firmware.Call(select, unsealed);
    EXPECT_EQ(firmware.completion(), sim::kBadFormat) << "checksum";
    firmware.Call(select, {});
    EXPECT_EQ(firmware.completion(), sim::kBadFormat) << "no block";
  }
  firmware.Call(6, Firmware::Block(1, 4, 28, test::Hex("00 01 00")));
  EXPECT_EQ(firmware.completion(), sim::kBadFormat) << "size and length disagree";
  firmware.Call(7, {});
  EXPECT_EQ(firmware.completion(), sim::kNotSupported);
  // Any block of any length is answered, not overrun.
  for (std::size_t size = 0; size < 64; ++size) {
    for (const unsigned select : {3u, 4u, 5u, 6u}) {
      Bytes block = Firmware::Block(2, 3, std::max<std::size_t>(size, 24), test::Hex("01 00 00"));
      block.resize(size);
      firmware.Call(select, block);
    }
  }
}

TEST(AttributeFirmware, RefusesASetupThatDoesNotFitTogether) {
  const auto with = [](std::size_t place, const char* value) {
    sim::Profile profile = SmallMachine();
    profile.attributes[place].value = value;
    return profile;
  };
  for (const auto& [place, value] : std::map<std::size_t, const char*>{
           {0, "WAN"}, {1, "abcde"}, {3, "31"}, {4, ""}, {7, "Nothing"}}) {
    EXPECT_THROW(Firmware{with(place, value)}, std::invalid_argument) << value;
  }
  sim::Profile profile = SmallMachine();
  profile.pending_attributes = {{"Nothing", "x"}};
  EXPECT_THROW(Firmware{profile}, std::invalid_argument);
}

// A host with the attributes of a machine loaded.
struct Host : test::Host {
  explicit Host(const sim::Profile& profile = sim::Profile()) : test::Host(profile, true) {
    EXPECT_EQ(init_status(), STATUS_SUCCESS);
  }
};

TEST(LaptopAttributes, AreReadByTheLibrary) {
  Host host;
  // The list, then the three tables, of which the strings come in parts; a probe before each.
  std::vector<std::pair<std::uint16_t, std::uint32_t>> calls;  // select, bytes received before
  for (const sim::JournalEntry& entry : host.machine().Journal()) {
    if (entry.cls == 5) calls.emplace_back(entry.select, entry.args[3]);
  }
  EXPECT_EQ(calls, (std::vector<std::pair<std::uint16_t, std::uint32_t>>{
                       {3, 0}, {3, 0}, {4, 0}, {4, 0}, {4, 4004}, {4, 0}, {4, 0}, {4, 0}, {4, 0}}));

  std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>> all;
  host->GetAttributeHandlesAndTypes(all);
  EXPECT_GE(all.size(), 150u);
  std::map<PLDM::ATTRIBUTE_TYPE, int> types;
  std::map<std::string, int> names;
  for (const auto& [handle, type] : all) {
    ++types[type];
    const auto live = PLDM::MakeAttribute(type);
    live->Handle = handle;
    ASSERT_EQ(host->GetAttributeValue(*live), STATUS_SUCCESS) << handle;
    EXPECT_EQ(++names[live->Name], 1) << live->Name;
    EXPECT_FALSE(live->DisplayText.empty()) << live->Name;
    EXPECT_FALSE(live->HelpText.empty()) << live->Name;
  }
  EXPECT_EQ(types.size(), 14u) << "every type, writable and read-only";
}

TEST(LaptopAttributes, KeepTheBootValueUntilTheRestart) {
  Host host;
  const auto read = [&host](PLDM::Attribute& attribute, bool at_boot) {
    return at_boot ? host->GetAttributeValueAtBoot(attribute) : host->GetAttributeValue(attribute);
  };
  PLDM::BootConfigSetting order;
  order.Name = "BootOrder";
  ASSERT_EQ(read(order, false), STATUS_SUCCESS);
  order.OrderedSources = {"UEFI SD Card", "UEFI NVMe SSD"};
  PLDM::ConfigSet profile;
  profile.Name = "ActiveProfile";
  profile.SelectedMember = "TravelProfile";
  PLDM::Integer fan;
  fan.Name = "FanFloor";
  fan.Value = 40;
  for (PLDM::Attribute* const attribute :
       {static_cast<PLDM::Attribute*>(&order), static_cast<PLDM::Attribute*>(&profile),
        static_cast<PLDM::Attribute*>(&fan)}) {
    EXPECT_EQ(host->SetAttributeValue(*attribute, "", PwdInfo::PWD_NONE, 0xFFFFFFFF),
              STATUS_SUCCESS);
  }
  for (const bool at_boot : {true, false}) {
    ASSERT_EQ(read(order, at_boot), STATUS_SUCCESS);
    EXPECT_EQ(order.OrderedSources.front(), at_boot ? "UEFI NVMe SSD" : "UEFI SD Card");
    EXPECT_EQ(order.OrderedSources.size(), at_boot ? 3u : 2u);
    ASSERT_EQ(read(profile, at_boot), STATUS_SUCCESS);
    EXPECT_EQ(profile.SelectedMember, at_boot ? "BalancedProfile" : "TravelProfile");
    ASSERT_EQ(read(fan, at_boot), STATUS_SUCCESS);
    EXPECT_EQ(fan.Value, at_boot ? 0u : 40u);
  }
  fan.Value = 41;
  EXPECT_EQ(host->SetAttributeValue(fan, "", PwdInfo::PWD_NONE, 0xFFFFFFFF),
            STATUS_ATTRIBUTE_REFUSED_1);
}

// UTF-16 without a byte order mark; the first byte of each pair is the lower one at 0.
std::string Wide(std::string_view text, std::size_t place) {
  std::string wide;
  for (const char c : text) {
    wide += place == 0 ? c : '\0';
    wide += place == 0 ? '\0' : c;
  }
  return wide;
}

TEST(AttrCommand, EndsWithTheStatusAndASentence) {
  constexpr char kTwenty[] = R"({"attributes": {"FanFloor": 20}})";
  struct Case {
    Words arguments;
    int status;
    const char* said;
    std::string input = "";
  };
  const Case cases[] = {
      {{"list"}, 0, "0x0096  WakeOnLan"},
      {{"list", "keeper"}, 0, "(none)"},
      {{"get", "SiteCode"}, 0, "SiteCode[EU]"},
      {{"get", "SiteCode[EU]"}, 0, "4 to 8 characters"},
      {{"get", "0x0096"}, 0, "Wake on LAN"},
      {{"get", "150"}, 0, "Disabled | LAN | LAN or PXE | WLAN | LAN or WLAN"},
      {{"get", "ServiceTag"}, 0, "string, read-only"},
      {{"get", "FanFloor"},
       0,
       "Above 60 \xC2\xB0"
       "C the fans run anyway."},
      {{"get", "WakeOnLam"}, 3, "Did you mean 'WakeOnLan'?"},
      {{"get", "0xFFFF"}, 3, "There is no attribute '0xFFFF'"},
      {{"get", "SiteCode[US]"}, 3, "There is no attribute"},
      {{"get", "wakeonlan"}, 0, "Wake on LAN"},
      {{"get", "Wake on LAN"}, 0, "WakeOnLan"},
      {{"get", "wake on lan", "FanFloor"}, 0, "0 to 60, in steps"},
      {{"set", "Wake on LAN", "LAN", "--yes"}, 3, "'mira --sim attr list PART' finds attributes"},
      {{"get", "sitecode[eu]"}, 0, "SiteCode[EU]"},
      {{"get", "WakeOnLan", "FanFloor"}, 0, "0 to 60, in steps"},
      {{"get", "WakeOnLan", "Nope"}, 3, "There is no attribute 'Nope'"},
      {{"list", "wake on lan"}, 0, "0x0096  WakeOnLan"},
      {{"list", "--pending"}, 0, "(none)"},
      {{"diff"}, 0, "Every attribute has the value that it had at boot. No restart is pending."},
      {{"set", "WakeOnLan", "LAN", "--yes"}, 0, "'Disabled' -> 'LAN'. It differs from the value"},
      {{"set", "WakeOnLan", "Disabled"}, 0, "WakeOnLan is 'Disabled' already."},
      {{"set", "WakeOnLan=LAN", "fanfloor=20", "AssetTag=a=b", "--yes"}, 0, "'NF-004711' -> 'a=b'"},
      {{"set", "AssetTag", "a=b", "--yes"}, 0, "'NF-004711' -> 'a=b'"},
      {{"set", "WakeOnLan=LAN", "FanFloor", "--yes"}, 3, "There is no attribute 'WakeOnLan=LAN'"},
      {{"set", "WakeOnLan=LAN", "FanFloor=1", "x", "--yes"},
       2,
       "'x' is not of the form NAME=VALUE"},
      {{"set", "WakeOnLan=LAN", "FanFloor=70", "--yes"}, 6, "above the upper bound"},
      {{"set", "WakeOnLan=LAN", "wakeonlan=WLAN", "--yes"}, 2, "WakeOnLan is given twice."},
      {{"set", "OwnerPassword=geheim", "--yes"}, 2, "is a password"},
      {{"reset", "AssetTag", "--what-if"}, 0, "Nothing was written."},
      {{"reset"}, 2, "Either names of attributes"},
      {{"reset", "--all", "--what-if"}, 0, "Left out: 4 passwords, 21 read-only attributes, 5"},
      {{"reset", "AssetTag", "--all"}, 2, "Either names of attributes"},
      {{"reset", "OwnerPassword", "--yes"}, 6, "passwords are never set to a default"},
      {{"reset", "BootOrder", "--yes"}, 6, "give no default"},
      {{"set", "WakeOnLan", "LAN"}, 8, "there is nobody to ask"},
      {{"set", "WakeOnLan", "LAN", "--what-if"}, 0, "Nothing was written."},
      {{"set", "WakeOnLan", "lan", "--yes"}, 6, "They are: Disabled, LAN, LAN or PXE, WLAN"},
      {{"set", "WakeOnLan", "7", "--force", "--yes"}, 11, "refused the value (status 1)"},
      {{"set", "WakeOnLan", "1", "--force", "--yes"}, 0, "-> 'LAN'"},
      {{"set", "WakeOnLan", "300", "--force", "--yes"}, 6, "is not one of its values"},
      {{"set", "WakeOnLan"}, 2, "A value is needed for WakeOnLan."},
      {{"set", "PrivacyKeys", "Screen[F10], Camera", "--yes"}, 0, "'Screen[F10], Camera[F9]'"},
      {{"set", "PrivacyKeys", "Camera, Camera[F9]", "--yes"}, 6, "'Camera[F9]' is given twice"},
      {{"set", "FanFloor", "0x14", "--yes"}, 0, "-> '20'"},
      {{"set", "FanFloor", "70", "--yes"}, 6, "above the upper bound. It takes 0 to 60, in steps"},
      {{"set", "FanFloor", "70", "--yes", "--force"}, 11, "refused the value (status 1)"},
      {{"set", "FanFloor", "15", "--yes"}, 6, "15 is between two steps."},
      {{"set", "ChargeStart", "49", "--yes"}, 6, "49 is below the lower bound."},
      {{"set", "FanFloor", "fast", "--yes", "--force"}, 6, "'fast' is not a number."},
      {{"set", "SiteCode", "N1", "--yes"}, 6, "has 2 characters. It takes 4 to 8 characters."},
      {{"set", "SiteCode", "N12345678", "--yes"}, 6, "has 9 characters."},
      {{"set", "AssetTag", "", "--yes"}, 0, "'NF-004711' -> ''"},
      {{"set", "AssetTag", "--value-stdin", "--yes"}, 0, "-> 'NF-7'", "NF-7\n"},
      {{"set", "AssetTag", "A", "--value-stdin", "--yes"}, 2, "given twice", "B\n"},
      {{"set", "BootOrder", "UEFI SD Card,UEFI NVMe SSD", "--yes"},
       0,
       "-> 'UEFI SD Card, UEFI NVMe SSD'"},
      {{"set", "BootOrder", "UEFI SD Card,UEFI SD Card", "--yes"}, 6, "is given twice"},
      {{"set", "BootOrder", "Floppy", "--yes"}, 6, "'Floppy' is not one of its values."},
      {{"set", "BootOrder", "Floppy", "--yes", "--force"}, 11, "refused the value (status 1)"},
      {{"set", "BootOrder", "", "--yes"}, 6, "0 sources are given. It takes 1 to 6 of UEFI NVMe"},
      {{"set", "ActiveProfile", "QuietProfile", "--yes"}, 0, "-> 'QuietProfile'"},
      {{"set", "ActiveProfile", "FanFloor", "--yes"}, 6, "is not one of its values"},
      {{"set", "QuietProfile", "FanFloor, 150", "--yes"}, 0, "-> 'FanFloor, WakeOnLan'"},
      {{"set", "QuietProfile", "Nothing", "--yes"}, 6, "there is no attribute 'Nothing'"},
      {{"set", "ServiceTag", "X", "--yes"}, 6, "ServiceTag is read-only."},
      {{"set", "ServiceTag", "X", "--yes", "--force"}, 11, "refused the write (status 2)"},
      {{"import", "no such file"}, 3, "cannot be read"},
      {{"import", "-"}, 6, "is not valid JSON from line 2, column 3", "{\"attributes\":\n  ]"},
      {{"import", "-"}, 6, "has the key 'A' twice", R"({"attributes": {"A": 1, "A": 2}})"},
      {{"import", "-", "--yes"},
       6,
       "FanFloor, WakeOnLan are in the file twice.",
       R"({"attributes": {"FanFloor": 20, "123": 30, "WakeOnLan": "LAN", "wakeonlan": "WLAN"}})"},
      {{"import", "-", "--check"},
       6,
       "FanFloor is in the file twice.",
       R"({"attributes": [{"name": "FanFloor", "value": 20}, {"name": "FanFloor", "valu": 1}]})"},
      {{"import", "-"}, 6, "nobody knows: attribute, x", R"({"attribute": {}, "x": 1})"},
      {{"import", "-"},
       6,
       "FanFloor has what nobody knows: valeu",
       R"({"attributes": [{"name": "FanFloor", "valeu": 1}]})"},
      {{"import", "-"},
       6,
       "schemaVersion 2, which is newer",
       R"({"schemaVersion": 2, "attributes": {}})"},
      {{"import", "-"},
       6,
       "schemaVersion \"1\", which there is not",
       R"({"schemaVersion": "1", "attributes": {}})"},
      {{"import", "-"}, 6, "FanFloor: '-5' is below 0.", R"({"attributes": {"FanFloor": -5}})"},
      {{"import", "-"},
       6,
       "FanFloor: '20.0' has a point or an exponent",
       R"({"attributes": {"FanFloor": 20.0}})"},
      {{"import", "-"},
       6,
       "FanFloor: '20.5' is not a whole number",
       R"({"attributes": {"FanFloor": 20.5}})"},
      {{"import", "-"},
       6,
       "' is too large",
       R"({"attributes": {"FanFloor": 18446744073709551616}})"},
      {{"import", "-"}, 6, "'1e999' is too large", R"({"attributes": {"FanFloor": "1e999"}})"},
      {{"set", "FanFloor", "1e1", "--yes"}, 6, "'1e1' has a point or an exponent"},
      {{"set", "FanFloor", "1e-999", "--yes"}, 6, "'1e-999' is not a whole number"},
      {{"set", "FanFloor", "0x10000000000000000", "--yes"}, 6, "000' is too large"},
      {{"import", "-"}, 6, "'-1' is below 0", R"({"attributes": {"FanFloor": "-1"}})"},
      {{"set", "FanFloor", "nan", "--yes"}, 6, "'nan' is not a number"},
      {{"import", "-", "--dry-run"}, 0, "FanFloor: '0' -> '20'", Wide(kTwenty, 0)},
      {{"import", "-", "--dry-run"}, 0, "FanFloor: '0' -> '20'", Wide(kTwenty, 1)},
      {{"import", "-"}, 6, "is not valid JSON from line 1", Wide(kTwenty, 0) + "x"},
      {{"import", "-"},
       6,
       "FanFloor: 'null' is not a number",
       R"({"attributes": {"FanFloor": null}})"},
      {{"import", "-"},
       6,
       "AssetTag: 'true' is not a text",
       R"({"attributes": {"AssetTag": true}})"},
      {{"import", "-", "--dry-run"},
       0,
       "would change: FanFloor: '0' -> '20'",
       R"({"attributes": {"FanFloor": 20}})"},
      {{"import", "-", "--check"},
       12,
       "1 of the values differ",
       R"({"attributes": {"FanFloor": 20, "AssetTag": "NF-004711"}})"},
      {{"import", "-", "--check"},
       0,
       "0 changed, 1 unchanged",
       R"({"attributes": {"FanFloor": 0}})"},
      {{"import", "-"}, 6, "has no \"attributes\"", "{}"},
      {{"import", "-"}, 6, "are not a list", R"({"attributes": 5})"},
      {{"import", "-"}, 6, "names no attribute in entry 1", R"({"attributes": [5]})"},
      {{"import", "-"}, 8, "there is nobody to ask", R"({"attributes": {"FanFloor": 20}})"},
      {{"import", "-"}, 0, "0 changed, 0 unchanged, 0 failed.", R"({"attributes": []})"},
      {{"export", "no such folder/x.json"}, 1, "could not be written"},
  };
  for (const Case& c : cases) {
    Words arguments = {"--sim", "attr"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    SCOPED_TRACE(testing::PrintToString(arguments));
    const ProgramResult result = Mira(arguments, c.input);
    EXPECT_EQ(result.status, c.status);
    const std::string& said = c.status == 0 ? result.out : result.err;
    EXPECT_NE(said.find(c.said), std::string::npos) << said;
    EXPECT_EQ(result.err.empty(), c.status == 0);

    arguments.push_back("--json");
    const ProgramResult as_json = Mira(arguments, c.input);
    EXPECT_EQ(as_json.status, c.status);
    EXPECT_EQ(Document(as_json).contains("error"), c.status != 0);
  }
  EXPECT_EQ(Mira({"--sim=no-attributes", "attr", "list"}).status, 4);
}

TEST(AttrCommand, GivesDocuments) {
  EXPECT_EQ(Document(Mira({"--sim=pending-attributes", "attr", "get", "WakeOnLan", "--json"})),
            json::parse(R"({"schemaVersion": 1, "simulated": true, "attributes": [{"handle": 150,
                "name": "WakeOnLan", "suffix": "", "type": "enumeration", "readOnly": false,
                "displayName": "Wake on LAN", "help": "Which network starts the computer.",
                "value": "LAN", "atBoot": "Disabled", "default": "Disabled",
                "restartPending": true,
                "possibleValues": ["Disabled", "LAN", "LAN or PXE", "WLAN", "LAN or WLAN"]}]})"));
  const json diff = Document(Mira({"--sim=pending-attributes", "attr", "diff", "--json"}));
  EXPECT_EQ(diff["restartPending"], true);
  EXPECT_EQ(diff["pendingCount"], 2);
  EXPECT_EQ(diff["differences"], json::parse(R"([
                {"handle": 76, "name": "PanelBrightnessBattery", "suffix": "", "atBoot": 40, "value": 55},
                {"handle": 150, "name": "WakeOnLan", "suffix": "", "atBoot": "Disabled", "value": "LAN"}])"));
  const json all = Document(Mira({"--sim", "attr", "list", "--json"}))["attributes"];
  struct Case {
    const char* name;
    const char* part;
  };
  const Case cases[] = {
      {"SetupPromptTime", R"({"suffix": "[Seconds]", "type": "integer", "value": 2,
                              "lowerBound": 0, "upperBound": 10, "increment": 1})"},
      {"AssetTag", R"({"type": "string", "value": "NF-004711", "minLength": 0, "maxLength": 16})"},
      {"FactoryPassword", R"({"type": "password", "value": null, "readOnly": true})"},
      {"PrivacyKeys", R"({"type": "enumeration", "value": ["Camera[F9]", "Microphone[F4]"]})"},
      {"RecoveryBootOrder", R"({"type": "boot-config", "minSources": 1, "maxSources": 6,
                                "value": ["UEFI USB Device", "UEFI NVMe SSD"]})"},
      {"BalancedProfile", R"({"type": "collection", "collection": "Balanced use",
         "value": ["ThermalMode", "ProcessorTurboMode", "PanelBrightnessBattery"]})"},
      {"FactoryProfile", R"({"type": "config-set", "value": "BalancedProfile",
                             "members": ["BalancedProfile", "QuietProfile"]})"},
  };
  for (const Case& c : cases) {
    const auto found =
        std::find_if(all.begin(), all.end(), [&c](const json& a) { return a["name"] == c.name; });
    ASSERT_NE(found, all.end()) << c.name;
    const json part = json::parse(c.part);
    for (const auto& [key, value] : part.items()) {
      EXPECT_EQ(found->at(key), value) << c.name << " " << key;
    }
  }
}

TEST(AttrCommand, TakesPasswordsAndNeverShowsThem) {
  struct Case {
    const char* profile;
    Words arguments;
    const char* input;
    int status;
  };
  const Case cases[] = {
      {"laptop", {"OwnerPassword", "--value-stdin"}, "geheim-77\n", 0},
      {"laptop", {"OwnerPassword", "--value-stdin"}, "gh7\n", 6},
      {"laptop", {"OwnerPassword", "--value-stdin", "--force"}, "gh7\n", 11},
      {"laptop", {"OwnerPassword", "geheim-77"}, "", 2},
      {"laptop", {"OwnerPassword"}, "", 5},
      {"locked", {"FanFloor", "20"}, "", 5},
      {"locked", {"FanFloor", "20", "--force"}, "", 5},
      {"locked", {"FanFloor", "20", "--what-if"}, "", 0},
      {"locked", {"FanFloor", "20", "--password-stdin"}, "setup1\n", 0},
      {"locked", {"FanFloor", "20", "--password-stdin"}, "geheim-77\n", 5},
      {"locked", {"FanFloor", "20", "--password-stdin", "--class10"}, "system1\n", 0},
      {"scan-codes", {"FanFloor", "20", "--password-stdin"}, "setup1\n", 0},
      {"locked", {"OwnerPassword", "--value-stdin", "--password-stdin"}, "geheim-77\nsetup1\n", 0},
  };
  for (const Case& c : cases) {
    for (const bool is_json : {false, true}) {
      Words arguments = {std::string("--sim=") + c.profile, "attr", "set", "--yes"};
      arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
      if (is_json) arguments.push_back("--json");
      SCOPED_TRACE(testing::PrintToString(arguments));
      const ProgramResult result = Mira(arguments, c.input);
      EXPECT_EQ(result.status, c.status) << result.out << result.err;
      for (const char* const secret : {"geheim", "gh7", "setup1", "system1"}) {
        EXPECT_EQ((result.out + result.err).find(secret), std::string::npos);
      }
    }
  }
  EXPECT_EQ(Mira({"--sim", "attr", "export", "-"}).out.find("OwnerPassword"), std::string::npos);
}

// The changes that a document has, but for those that are so already.
std::string OutcomesOf(const json& document) {
  std::string text;
  for (const json& change : document.at("changes")) {
    if (change["outcome"] == "already-so") continue;
    text += (text.empty() ? "" : ", ") + change["target"].get<std::string>() + " " +
            change["outcome"].get<std::string>() + " " + change["before"].dump() + " -> " +
            change["after"].dump();
  }
  return text;
}

// The console on one machine, over several commands and restarts.
TEST(AttrCommand, SeesWhatWasWrittenBefore) {
  sim::Machine machine;
  const sim::Session session(machine);
  const TemporaryFile file;
  EXPECT_EQ(Mira({"attr", "export", file.path()}).out,
            "Exported 160 attributes to " + file.path() + ".\n");
  EXPECT_EQ(Mira({"attr", "set", "FanFloor", "30", "--yes"}).status, 0);
  EXPECT_EQ(Mira({"attr", "set", "HttpsBootProxy", "proxy:8080", "--yes"}).status, 0);
  EXPECT_EQ(Document(Mira({"attr", "diff", "--json"}))["differences"].size(), 2u);
  machine.Reboot();
  EXPECT_EQ(Document(Mira({"attr", "diff", "--json"}))["differences"].size(), 0u);
  EXPECT_EQ(Document(Mira({"attr", "get", "FanFloor", "--json"}))["attributes"][0]["atBoot"], 30);

  const json planned = Document(Mira({"attr", "import", file.path(), "--dry-run", "--json"}));
  EXPECT_EQ(planned["whatIf"], true);
  EXPECT_EQ(OutcomesOf(planned),
            "FanFloor planned 30 -> 0, HttpsBootProxy planned \"proxy:8080\" -> \"\"");
  EXPECT_EQ(Document(Mira({"attr", "get", "FanFloor", "--json"}))["attributes"][0]["value"], 30);
  const ProgramResult back = Mira({"attr", "import", file.path(), "--yes"});
  EXPECT_EQ(back.out,
            "changed: FanFloor: '30' -> '0'\nchanged: HttpsBootProxy: 'proxy:8080' -> ''\n"
            "2 changed, 158 unchanged, 0 failed.\nA restart is pending.\n");
  machine.Reboot();
  EXPECT_EQ(Mira({"attr", "import", file.path()}).out, "0 changed, 160 unchanged, 0 failed.\n");
}

TEST(AttrCommand, ImportsWhatItCan) {
  constexpr char kMixed[] = R"({"attributes": {"FanFloor": 20, "WakeOnLan": "Off", "Nope": 1,
      "OwnerPassword": "geheim-77", "ServiceTag": "X", "AssetTag": "NF-004711",
      "BootOrder": ["UEFI SD Card"], "FnLock": null}})";
  constexpr char kListed[] = R"({"attributes": [
      {"name": "SetupPromptTime", "suffix": "[Seconds]", "value": 5},
      {"name": "ServiceTag", "readOnly": true, "value": "of another machine"},
      {"handle": 123, "value": "40"}, {"name": "FnLock"},
      {"name": "ServiceTag2"}, {"name": "Camera", "suffix": 1},
      {"name": "VlanId", "value": [[1]]}]})";
  struct Case {
    const char* what;
    const char* content;
    Words options;
    int status;
    const char* outcomes;  // of the attributes that are no longer, or not, as in the file
  };
  const Case cases[] = {
      {"goes on after failures",
       kMixed,
       {},
       10,
       "FanFloor changed, WakeOnLan failed 6, Nope failed 3, OwnerPassword failed 6, ServiceTag "
       "failed 6, BootOrder changed, FnLock failed 6"},
      {"stops before it has written",
       kMixed,
       {"--stop-on-error"},
       6,
       "FanFloor not-tried, WakeOnLan failed 6, Nope failed 3, OwnerPassword failed 6, "
       "ServiceTag failed 6, BootOrder not-tried, FnLock failed 6"},
      {"shows what would be",
       kMixed,
       {"--dry-run"},
       10,
       "FanFloor planned, WakeOnLan failed 6, Nope failed 3, OwnerPassword failed 6, "
       "ServiceTag failed 6, BootOrder planned, FnLock failed 6"},
      {"takes lists",
       kListed,
       {},
       10,
       "SetupPromptTime[Seconds] changed, FanFloor changed, "
       "FnLock failed 6, ServiceTag2 failed 3, entry 6 failed 6, VlanId failed 6"},
      {"nothing at all",
       R"({"attributes": {"Nope": 1, "FanFloor": 5}})",
       {},
       3,
       "Nope failed 3, FanFloor failed 6"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const TemporaryFile file(c.content);
    Words arguments = {"--sim", "attr", "import", file.path(), "--yes", "--json"};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    const ProgramResult result = Mira(arguments);
    EXPECT_EQ(result.status, c.status);
    const json document = Document(result);
    std::string outcomes;
    for (const json& item : document["changes"]) {
      const bool is_there =
          !(item.contains("error") && item["error"]["code"] == 3) && item["target"] != "entry 6";
      for (const char* const key : {"handle", "name", "suffix"}) {
        EXPECT_EQ(item.contains(key), is_there) << key << " of " << item;
      }
      if (item["outcome"] == "already-so") continue;
      outcomes += (outcomes.empty() ? "" : ", ") + item["target"].get<std::string>() + " " +
                  item["outcome"].get<std::string>();
      if (item.contains("error")) outcomes += " " + item["error"]["code"].dump();
    }
    EXPECT_EQ(outcomes, c.outcomes);
    EXPECT_EQ(document["error"]["code"], c.status);
    EXPECT_EQ(result.out.find("geheim"), std::string::npos);
  }
}

// Names that are not alone, and texts in Latin-1.
TEST(AttrCommand, TellsApartWhatTheFirmwareCallsAlike) {
  sim::Profile profile = SmallMachine();
  const auto add = [&profile](const char* name, Words choices, const char* value) {
    profile.attributes.push_back({.name = name,
                                  .choices = choices,
                                  .value = value,
                                  .default_value = choices.front(),
                                  .lower = 1,
                                  .upper = 1});
  };
  add("Mode", {"Auto", "Auto[fast]"}, "Auto[fast]");
  add("Port", {"Off", "On"}, "On");
  add("Port", {"Off", "On"}, "On");
  add("Gr\xF6\xDF"
      "e",
      {"Gro\xDF", "Klein"}, "Klein");
  profile.attributes.push_back(
      {.kind = AttributeKind::kString, .name = "Ort", .value = "K\xF6ln", .upper = 5});
  sim::Machine machine(profile);
  const sim::Session session(machine);
  struct Case {
    Words arguments;
    int status;
    const char* said;
    const char* input = "";
  };
  const Case cases[] = {
      {{"get", "Mode"}, 0, "Auto | Auto[fast]"},
      {{"set", "Mode", "Auto"}, 0, "Mode: 'Auto[fast]' -> 'Auto'."},
      {{"set", "Mode", "Auto[fast]"}, 0, "Mode: 'Auto' -> 'Auto[fast]'."},
      {{"set", "Gr\u00F6\u00DFe", "Gro\u00DF"}, 0, "'Klein' -> 'Gro\u00DF'."},
      {{"set", "Ort", "Gr\u00F6\u00DFe", "--what-if"}, 0, "'K\u00F6ln' -> 'Gr\u00F6\u00DFe'"},
      {{"set", "Ort", "Gr\u00F6\u00DFen"}, 6, "has 6 characters"},
      {{"set", "Wake", ""}, 11, "refused the value (status 1)"},
      {{"set", "Wake", "", "--force"}, 11, "refused the value (status 1)"},
      {{"import", "-"}, 11, "refused the value (status 1)", R"({"attributes": {"Wake": []}})"},
      {{"import", "-"},
       0,
       "changed: Port: 'On' -> 'Off'\nchanged: Port: 'On' -> 'Off'\nchanged: Tag: 'ab' -> 'x'\n",
       R"({"attributes": [{"handle": 11, "name": "Port", "suffix": "", "value": "Off"},
                          {"handle": 12, "name": "Port", "suffix": "", "value": "Off"},
                          {"handle": 1, "name": "Tag", "suffix": "", "value": "x"}]})"},
  };
  for (const Case& c : cases) {
    Words arguments = {"attr"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    arguments.push_back("--yes");
    SCOPED_TRACE(testing::PrintToString(arguments));
    const ProgramResult result = Mira(arguments, c.input);
    EXPECT_EQ(result.status, c.status);
    EXPECT_NE((result.out + result.err).find(c.said), std::string::npos)
        << result.out << result.err;
  }
}

TEST(AttrCommand, KeepsTheModesOfABootOrder) {
  sim::Machine machine;
  const sim::Session session(machine);
  const auto import = [](const char* modes) {
    return Mira(
        {"attr", "import", "-", "--yes", "--json"},
        std::string(R"({"attributes": [{"name": "BootOrder", "value": ["UEFI NVMe SSD"],)") +
            modes + "}]}");
  };
  EXPECT_EQ(import(R"("failThroughMode": 256)").status, 6);
  EXPECT_EQ(import(R"("failThroughMode": "2")").status, 6);
  EXPECT_EQ(import(R"("bootConfigType": 0)").status, 11) << "the firmware knows one alone";
  EXPECT_EQ(import(R"("failThroughMode": 3)").status, 0);
  EXPECT_EQ(OutcomesOf(Document(import(R"("failThroughMode": 2)"))),
            "BootOrder failThroughMode changed 3 -> 2")
      << "a mode alone is a change";
  const json get = Document(Mira({"attr", "get", "BootOrder", "--json"}))["attributes"][0];
  EXPECT_EQ(get["restartPending"], true);
  const json differences = Document(Mira({"attr", "diff", "--json"}))["differences"];
  const json exported = Document(Mira({"attr", "export", "-", "--json"}))["attributes"];
  const auto order = std::find_if(exported.begin(), exported.end(),
                                  [](const json& a) { return a["name"] == "BootOrder"; });
  ASSERT_NE(order, exported.end());
  ASSERT_EQ(differences.size(), 1u);
  for (const json& shown : {get, differences[0], *order}) {
    EXPECT_EQ(shown["bootConfigType"], 1);
    EXPECT_EQ(shown["failThroughMode"], 2);
  }
  EXPECT_EQ(differences[0]["failThroughModeAtBoot"], 3);
}

TEST(AttrCommand, GivesTheSameDocumentWithoutWriting) {
  struct Case {
    Words arguments;
    const char* input;
    const char* document;
  };
  const Case cases[] = {
      {{"SetupPromptTime", "5"},
       "",
       R"({"name": "SetupPromptTime", "suffix": "[Seconds]", "before": 2, "after": 5,
           "target": "SetupPromptTime[Seconds]", "outcome": "planned"})"},
      {{"OwnerPassword", "--value-stdin"},
       "geheim-77\n",
       R"({"name": "OwnerPassword", "suffix": "", "before": null, "after": null, "secret": true})"},
  };
  for (const Case& c : cases) {
    Words arguments = {"--sim", "attr", "set", "--json", "--what-if"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    json shown = Document(Mira(arguments, c.input));
    EXPECT_EQ(shown["whatIf"], true);
    EXPECT_EQ(shown["changed"], false);
    const json expected = json::parse(c.document);
    for (const auto& [key, value] : expected.items())
      EXPECT_EQ(shown["changes"][0][key], value) << key;
  }
}

TEST(AttrCommand, KeepsTheOldExportWhenNothingCanBeRead) {
  sim::Machine machine;
  const sim::Session session(machine);
  machine.GetFaults().Add({.operation = "firmware 5/5", .nth = 0, .completion = -1});
  const TemporaryFile file("of before");
  EXPECT_EQ(Mira({"attr", "export", file.path()}).status, 11);
  EXPECT_EQ(file.Content(), "of before");
  EXPECT_EQ(Mira({"attr", "export", "-"}).out, "");
}

TEST(AttrCommand, NamesTheOptionsOfTheValue) {
  const std::string path = "no such file";
  struct Case {
    Words arguments;
    int status;
    const char* said;
  };
  const Case cases[] = {
      {{"AssetTag", "--value-file", path}, 3, "No value could be read from 'no such file'"},
      {{"AssetTag", "--value-env", "MIRA_TEST_NO_SUCH"}, 6, "No value could be read"},
      {{"AssetTag", "--value-stdin"}, 6, "No value could be read from 'standard input'"},
      {{"OwnerPassword"}, 5, "--value-stdin, --value-file or --value-env"},
      {{"AssetTag", "A", "--password-file", path}, 5, "No password could be read"},
  };
  for (const Case& c : cases) {
    Words arguments = {"--sim", "attr", "set", "--yes"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    SCOPED_TRACE(testing::PrintToString(arguments));
    const ProgramResult result = Mira(arguments);
    EXPECT_EQ(result.status, c.status);
    EXPECT_NE(result.err.find(c.said), std::string::npos) << result.err;
  }
}

TEST(AttrCommand, ReportsWhatTheFirmwareDoes) {
  struct Case {
    sim::Fault fault;
    Words arguments;
    int status;
  };
  const Case cases[] = {
      {{.operation = "firmware 5/3", .completion = -1}, {"list"}, 11},
      {{.operation = "firmware 5/4", .nth = 2, .completion = -6}, {"list"}, 11},
      {{.operation = "firmware 5/5", .completion = -1}, {"get", "FanFloor"}, 11},
      {{.operation = "firmware 5/5", .completion = -3}, {"get", "FanFloor"}, 9},
      {{.operation = "firmware 5/5", .nth = 3, .completion = -1}, {"list"}, 10},
      {{.operation = "firmware 5/5", .nth = 0, .completion = -1}, {"list"}, 11},
      {{.operation = "firmware 5/5", .nth = 3, .completion = -1}, {"export", "-"}, 10},
      {{.operation = "firmware 5/6", .completion = -7}, {"set", "FanFloor", "20", "--yes"}, 5},
      {{.operation = "firmware 5/6", .completion = -2}, {"set", "FanFloor", "20", "--yes"}, 4},
      {{.operation = "firmware 5/5", .nth = 2, .completion = -1},
       {"set", "FanFloor", "20", "--yes"},
       11},
      {{.operation = "firmware 5/5", .nth = 3, .completion = -1},
       {"set", "FanFloor", "20", "--yes"},
       0},
      {{.operation = "IWbemServices::ExecMethod", .nth = 0, .result = E_FAIL}, {"list"}, 9},
  };
  for (const Case& c : cases) {
    for (const bool is_json : {false, true}) {
      sim::Machine machine;
      const sim::Session session(machine);
      machine.GetFaults().Add(c.fault);
      Words arguments = {"attr"};
      arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
      if (is_json) arguments.push_back("--json");
      SCOPED_TRACE(c.fault.operation + " " + testing::PrintToString(arguments));
      const ProgramResult result = Mira(arguments);
      EXPECT_EQ(result.status, c.status) << result.err;
      if (is_json) {
        EXPECT_EQ(Document(result).contains("error"), c.status != 0);
      }
    }
  }
  sim::Machine machine;
  const sim::Session session(machine);
  machine.GetFaults().Add({.operation = "firmware 5/6", .nth = 2, .completion = -1});
  const json document = Document(Mira({"attr", "import", "-", "--yes", "--stop-on-error", "--json"},
                                      R"({"attributes": {"FanFloor": 20, "FnLock": "Disabled",
                                          "VlanId": 7}})"));
  EXPECT_EQ(document["error"]["code"], 10);
  EXPECT_EQ(OutcomesOf(document),
            "FanFloor changed 0 -> 20, FnLock refused \"Enabled\" -> "
            "\"Enabled\", VlanId not-tried 0 -> 7");
}

// What is there after a write counts, and not what was sent or answered.
TEST(AttrCommand, ReadsBackWhatItWrote) {
  struct Case {
    const char* what;
    std::vector<sim::Fault> faults;
    int status;
    const char* outcome;
    const char* error;
  };
  const auto cut = [](Bytes& reply) { reply.resize(40); };
  const auto otherwise = [](Bytes& reply) { reply.at(kLiveValue) = 30; };
  const Case cases[] = {
      {"the answer is cut, the value was taken",
       {{.operation = "firmware 5/6", .corrupt = cut}},
       0,
       "FanFloor changed 0 -> 20",
       ""},
      {"the answer is cut, and what is there cannot be read",
       {{.operation = "firmware 5/6", .corrupt = cut},
        {.operation = "firmware 5/5", .nth = 3, .completion = -1}},
       9,
       "FanFloor unknown 0 -> 20",
       "whether it was carried out is unknown"},
      {"refused",
       {{.operation = "firmware 5/6", .completion = -1}},
       11,
       "FanFloor refused 0 -> 0",
       "ended the command in error"},
      {"another value is there",
       {{.operation = "firmware 5/5", .nth = 3, .corrupt = otherwise}},
       10,
       "FanFloor changed 0 -> 30",
       "made another value of it"},
      {"another value is there before the write",
       {{.operation = "firmware 5/5", .nth = 2, .corrupt = otherwise}},
       11,
       "FanFloor refused 0 -> 30",
       "no longer the one"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::Machine machine;
    const sim::Session session(machine);
    for (const sim::Fault& fault : c.faults) machine.GetFaults().Add(fault);
    const ProgramResult result = Mira({"attr", "set", "FanFloor", "20", "--yes", "--json"});
    EXPECT_EQ(result.status, c.status);
    const json document = Document(result);
    EXPECT_EQ(OutcomesOf(document), c.outcome);
    const std::string message =
        document.contains("error") ? document["error"]["message"].get<std::string>() : "";
    EXPECT_NE(message.find(c.error), std::string::npos) << message;
    EXPECT_EQ(message.empty(), c.status == 0);
  }
}

// A wrong password is tried once, however many values wait for it.
TEST(AttrCommand, TriesAPasswordOnce) {
  sim::Machine machine(*sim::FindProfile("locked"));
  const sim::Session session(machine);
  const ProgramResult result = Mira({"attr", "import", "-", "--yes", "--password-env", "MIRA_X"},
                                    R"({"attributes": {"FanFloor": 20, "VlanId": 7}})");
  EXPECT_EQ(result.status, 5);
  const TemporaryFile wrong("wrong\n");
  EXPECT_EQ(Mira({"attr", "import", "-", "--yes", "--password-file", wrong.path()},
                 R"({"attributes": {"FanFloor": 20, "VlanId": 7}})")
                .status,
            5);
  const auto& journal = machine.Journal();
  EXPECT_EQ(std::count_if(journal.begin(), journal.end(),
                          [](const sim::JournalEntry& e) { return e.cls == 9 && e.select == 4; }),
            1);
  EXPECT_EQ(std::count_if(journal.begin(), journal.end(),
                          [](const sim::JournalEntry& e) { return e.cls == 5 && e.select == 6; }),
            0);
}

TEST(AttrCommand, GoesBackToDefaults) {
  sim::Machine machine;
  const sim::Session session(machine);
  const json changed =
      Document(Mira({"attr", "list", "--changed-from-default", "--json"}))["attributes"];
  ASSERT_FALSE(changed.empty());
  for (const json& a : changed) EXPECT_NE(a["value"], a["default"]) << a["name"];
  const json reset = Document(Mira({"attr", "reset", "--all", "--yes", "--json"}));
  EXPECT_EQ(reset["changed"], true);
  EXPECT_EQ(reset["restartPending"], true);
  for (const json& change : reset["changes"]) EXPECT_FALSE(change.contains("secret"));
  const json left =
      Document(Mira({"attr", "list", "--changed-from-default", "--json"}))["attributes"];
  for (const json& a : left) {
    EXPECT_EQ(a["readOnly"], true) << a["name"];
  }
  EXPECT_EQ(Document(Mira({"attr", "reset", "AssetTag", "--yes", "--json"}))["changed"], false);
}

TEST(AttrCommand, NamesTheMachineInItsFiles) {
  const TemporaryFile file("of before");
  EXPECT_EQ(Mira({"--sim", "attr", "export", file.path(), "--what-if"}).out,
            "Would export 160 attributes to " + file.path() + ".\nNothing was written.\n");
  EXPECT_EQ(file.Content(), "of before");
  ASSERT_EQ(Mira({"--sim", "attr", "export", file.path()}).status, 0);
  json content = json::parse(file.Content());
  EXPECT_EQ(content["createdAt"], "2026-04-09T23:05:00Z");
  EXPECT_EQ(content["machine"]["product"], "Meridian 14 G3");
  EXPECT_EQ(content["machine"]["serialNumber"], "7KX2M91");
  EXPECT_EQ(content["machine"]["biosVersion"], "1.8.2");
  const auto warnings = [](const json& exported) {
    return Document(
        Mira({"--sim", "attr", "import", "-", "--check", "--json"}, exported.dump()))["warnings"];
  };
  EXPECT_EQ(warnings(content), json::array());
  content["machine"]["serialNumber"] = "another";
  content["machine"]["biosVersion"] = "1.9.0";
  EXPECT_EQ(warnings(content), json::parse(R"([
      {"name": "other-machine",
       "message": "The file is of another machine with the serial number: another. This is 7KX2M91."},
      {"name": "other-bios",
       "message": "The file is of another BIOS version: 1.9.0. This is 1.8.2."}])"));
  // What is listed may be imported, too, and files in UTF-16.
  const std::string listed = Mira({"--sim", "attr", "list", "--json"}).out;
  EXPECT_EQ(Mira({"--sim", "attr", "import", "-", "--check"}, listed).status, 0);
  std::string wide = "\xFF\xFE";
  for (const char c : std::string(R"({"attributes": {"FanFloor": 20}})")) wide += {c, '\0'};
  EXPECT_EQ(Mira({"--sim", "attr", "import", "-", "--check"}, wide).status, 12);
}

}  // namespace
}  // namespace mira
