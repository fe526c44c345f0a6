// Identity, batteries and the firmware's lists: from the host, or from the console, through the
// simulated firmware and back.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "buffers/aux_mac_buffer.h"
#include "buffers/battery_data.h"
#include "buffers/buffer_factory.h"
#include "buffers/eppid_buffer.h"
#include "buffers/received_data.h"
#include "buffers/tag_data.h"
#include "bytes/writer.h"
#include "sim/machine.h"
#include "tests/support/checked_cursors.h"
#include "tests/support/console_program.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using test::Document;
using test::Mira;
using test::ProgramResult;

// A host that makes calls and looks at their completion codes.
class Caller : public test::Host {
 public:
  explicit Caller(const char* profile = "laptop") : Host(*sim::FindProfile(profile)) {
    EXPECT_EQ(init_status(), STATUS_SUCCESS);
  }

  std::int32_t Call(std::uint16_t cls, std::uint16_t select, CSimpleTokenData& data,
                    const std::string& password = "") {
    const Status status = (*this)->ExecuteDACI(cls, select, data, password, PwdInfo::PWD_CLASS9);
    EXPECT_EQ(status, data.Res1 == 0 ? STATUS_SUCCESS : STATUS_FAILURE);
    return data.Res1;
  }
  std::int32_t WriteTag(std::uint16_t cls, std::uint16_t select, const std::string& text,
                        std::uint32_t arg1 = 0, const std::string& password = "") {
    CTagData data;
    data.Tag = text;
    data.Arg1 = arg1;
    return Call(cls, select, data, password);
  }
  std::string ReadTag(std::uint16_t cls, std::uint16_t select, std::uint32_t arg1 = 0) {
    CTagData data;
    data.Arg1 = arg1;
    EXPECT_EQ(Call(cls, select, data), 0);
    return data.Tag;
  }
};

TEST(Tags, AreKeptAsTheFirmwareTakesThem) {
  struct Case {
    const char* what;
    std::uint16_t cls;
    std::uint16_t write;
    std::uint16_t read;
    std::uint32_t arg1;
    std::string text;
    std::int32_t completion;
    std::string kept;
  };
  const std::string long_text(300, 'x');
  const Case cases[] = {
      {"asset", 11, 1, 0, 0, "ABCDE", 0, "ABCDE"},
      {"asset, cut", 11, 1, 0, 0, "ABCDEFGHIJKLMN", 0, "ABCDEFGHIJKL"},
      {"asset, cleared", 11, 1, 0, 0, "", 0, ""},
      {"asset that is not ASCII", 11, 1, 0, 0, "caf\xE9s", -1, "NF-004711"},
      {"service", 11, 3, 2, 0, "1234567", 0, "1234567"},
      {"service with a hole", 11, 3, 2, 0, std::string("AB\0C", 4), -1, "7KX2M91"},
      {"extended", 11, 9, 8, 1, "Desk 14", 0, "Desk 14"},
      {"extended, longest", 11, 9, 8, 0, long_text.substr(0, 256), 0, long_text.substr(0, 256)},
      {"extended, too long", 11, 9, 8, 0, long_text, -1, "Reading room, desk 12"},
      {"extended, emptied", 11, 9, 8, 0, "", 0, ""},
      {"ownership", 20, 1, 0, 0, "Desk 14  ", 0, "Desk 14"},
      {"ownership by the other class", 23, 1, 0, 0, " Desk", 0, " Desk"},
      {"ownership, cut", 20, 1, 0, 0, long_text, 0, long_text.substr(0, 80)},
      {"ownership that is not ASCII", 20, 1, 0, 0, "\t", -5, "Property of the Northfield Library"},
      {"thin client", 26, 1, 1, 1, "kiosk-08", 0, "kiosk-08"},
      {"thin client, longest", 26, 1, 1, 2, "1234567890123456789", 0, "1234567890123456789"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Caller host;
    EXPECT_EQ(host.WriteTag(c.cls, c.write, c.text, c.arg1), c.completion);
    host.machine().Reboot();
    const std::uint32_t arg1 = c.cls == 26 ? 0 : c.arg1;
    EXPECT_EQ(host.ReadTag(c.cls, c.read, arg1), c.kept);
    if (c.cls == 20 || c.cls == 23) {
      EXPECT_EQ(host.ReadTag(c.cls == 20 ? 23 : 20, 0), c.kept) << "both classes";
    }
  }
  Caller host;
  CTagData too_long;
  too_long.Arg1 = 1;
  too_long.Tag = "12345678901234567890";
  EXPECT_EQ(host->ExecuteDACI(26, 1, too_long, "", PwdInfo::PWD_NONE), STATUS_NOT_SUPPORTED);
  EXPECT_TRUE(host.machine().Journal().empty()) << "there is no record for it";
}

TEST(Tags, OfAnyLengthAreMeasuredFirst) {
  Caller host;
  CTagData data;
  data.Tag = "kept: ";
  EXPECT_EQ(host.Call(11, 8, data), 0);
  EXPECT_EQ(data.Tag, "kept: Reading room, desk 12");
  const auto& journal = host.machine().Journal();
  ASSERT_EQ(journal.size(), 2u);
  EXPECT_EQ(journal[0].record_length, 48u);
  EXPECT_EQ(journal[0].completion, -6);
  EXPECT_EQ(journal[1].record_length, 69u);

  data.Arg1 = 9;
  data.Tag = "untouched";
  EXPECT_EQ(host.Call(11, 8, data), -1) << "no such tag";
  EXPECT_EQ(data.Tag, "untouched");

  // A firmware that claims more than there is room for in any record.
  host.machine().GetFaults().Add(
      {.operation = "firmware 11/8", .nth = 1, .corrupt = [](auto& reply) {
         test::CheckedWriter(reply, 44).U32(0xFFFFFFFF);
       }});
  data.Arg1 = 0;
  EXPECT_EQ(host->ExecuteDACI(11, 8, data, "", PwdInfo::PWD_NONE), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(data.Tag, "untouched");
}

TEST(Tags, WantAKeyWhereAPasswordIsInstalled) {
  struct Case {
    std::uint16_t cls;
    std::uint16_t write;
    std::uint16_t read;
  };
  const Case cases[] = {{11, 1, 0}, {11, 3, 2}, {11, 9, 8}, {20, 1, 0}, {23, 1, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.cls) + "/" + std::to_string(c.write));
    Caller host("locked");
    const std::string before = host.ReadTag(c.cls, c.read);
    EXPECT_EQ(host.WriteTag(c.cls, c.write, "new"), -7);
    EXPECT_EQ(host.ReadTag(c.cls, c.read), before);
    EXPECT_EQ(host.WriteTag(c.cls, c.write, "new", 0, "setup1"), 0);
    EXPECT_EQ(host.ReadTag(c.cls, c.read), "new");
  }
}

TEST(Identity, MacAddressAndEppidAreChecked) {
  Caller host;
  CMACAddr mac;
  EXPECT_EQ(host.Call(11, 6, mac), 0);
  EXPECT_EQ(std::string(mac.MAC.data(), mac.MAC.size()), "02A1B2C3D4E5");
  mac.MAC[11] = 'F';
  EXPECT_EQ(host.Call(11, 7, mac), 0);
  mac.MAC[11] = 'G';
  EXPECT_EQ(host.Call(11, 7, mac), -1);
  mac.MAC[11] = '\0';
  EXPECT_EQ(host.Call(11, 7, mac), -1);
  EXPECT_EQ(host.Call(11, 6, mac), 0);
  EXPECT_EQ(mac.MAC[11], 'F');

  CEPPID eppid;
  EXPECT_EQ(host.Call(21, 1, eppid), 0);
  EXPECT_EQ(std::string(eppid.EPPID.data(), eppid.EPPID.size()), "NF0F4D1K4873461Q0012A00");
  eppid.EPPID[22] = '1';
  EXPECT_EQ(host.Call(21, 2, eppid), 0);

  // A character damaged on its way is found by the checksum.
  auto* const calling = dynamic_cast<CCallingInterface*>(host->GetBIOSObject(0xDA));
  ASSERT_NE(calling, nullptr);
  const std::unique_ptr<CBuffer> buffer(CreateBuffer(21, 2, host->GetACPIBufSize()));
  std::uint32_t size = 0;
  SMBiosCI* const record = buffer->FillInputBuffer(0, size, eppid);
  buffer->Record()[60] ^= 1;
  calling->Execute(*record, host->GetACPIBufSize(), host->GetACPIInstanceName());
  EXPECT_EQ(record->cbRES1, -5);
  CEPPID read;
  EXPECT_EQ(host.Call(21, 1, read), 0);
  EXPECT_EQ(read.EPPID, eppid.EPPID);
}

TEST(Identity, PlainRecordsAreNotTakenForAreas) {
  struct Case {
    std::uint16_t cls;
    std::uint16_t select;
    std::int32_t completion;
  };
  // The image server's plain request has no area; what has no handler is not supported.
  const Case cases[] = {{11, 4, -5}, {11, 5, -5}, {8, 0, -2}, {17, 0, -2}, {7, 4, 0}};
  for (const Case& c : cases) {
    Caller host;
    CSimpleTokenData data;
    data.Arg1 = 44;
    EXPECT_EQ(host.Call(c.cls, c.select, data), c.completion) << c.cls << "/" << c.select;
  }
}

TEST(Batteries, KeepWhatIsPossible) {
  struct Case {
    const char* what;
    std::uint8_t mode;
    std::uint8_t start;
    std::uint8_t stop;
    std::uint32_t version;
    std::uint32_t sunday;
    std::int32_t completion;
  };
  const Case cases[] = {
      {"custom", 5, 50, 55, 0x10000, 0x00004420, 0},
      {"unknown mode", 6, 50, 90, 0x10000, 0, -1},
      {"no mode", 0, 50, 90, 0x10000, 0, -1},
      {"starts too low", 5, 49, 90, 0x10000, 0, -1},
      {"stops past full", 5, 50, 101, 0x10000, 0, -1},
      {"too close", 5, 50, 54, 0x10000, 0, -1},
      {"another version", 5, 50, 90, 0x10001, 0, -1},
      {"a day backwards", 5, 50, 90, 0x10000, 0x2044, -1},
      {"a day of no time", 5, 50, 90, 0x10000, 0x2020, -1},
      {"a charging time", 5, 50, 90, 0x10000, 0x00544420, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Caller host;
    ADV_BATT_CONFIG config;
    config.BatteryNumber = 1;
    config.Command = BATTERY_GET_ADVANCED;
    ASSERT_EQ(host.Call(8, 18, config), 0);
    const ADV_BATT_CONFIG before = config;
    config.Command = BATTERY_SET_ADVANCED;
    config.ChargingMode = c.mode;
    config.StartChargingLimit = c.start;
    config.StopChargingLimit = c.stop;
    config.Version = c.version;
    config.DaySchedule[0] = c.sunday;
    EXPECT_EQ(host.Call(8, 19, config), c.completion);
    host.machine().Reboot();
    ADV_BATT_CONFIG after;
    after.BatteryNumber = 1;
    after.Command = BATTERY_GET_ADVANCED_3;
    ASSERT_EQ(host.Call(8, 18, after), 0);
    const ADV_BATT_CONFIG& expected = c.completion == 0 ? config : before;
    EXPECT_EQ(after.ChargingMode, expected.ChargingMode);
    EXPECT_EQ(after.StopChargingLimit, expected.StopChargingLimit);
    EXPECT_EQ(after.DaySchedule, expected.DaySchedule);
  }

  Caller host;
  PEAK_SHIFT_CONFIG peak;
  peak.BatteryNumber = 1;
  peak.Command = BATTERY_GET_PEAK_SHIFT;
  ASSERT_EQ(host.Call(8, 18, peak), 0);
  EXPECT_FALSE(peak.Enabled);
  peak.Command = BATTERY_SET_PEAK_SHIFT;
  peak.Enabled = true;
  peak.CurrentThreshold = 15;
  peak.DaySchedule[6] = 0x00544420;
  EXPECT_EQ(host.Call(8, 19, peak), 0);
  peak.CurrentThreshold = 14;
  EXPECT_EQ(host.Call(8, 19, peak), -1);
  PEAK_SHIFT_CONFIG read;
  read.BatteryNumber = 1;
  read.Command = BATTERY_GET_PEAK_SHIFT;
  ASSERT_EQ(host.Call(8, 18, read), 0);
  EXPECT_TRUE(read.Enabled);
  EXPECT_EQ(read.CurrentThreshold, 15);
  EXPECT_EQ(read.MinimumThreshold, 15);
  EXPECT_EQ(read.MaximumThreshold, 100);
  EXPECT_EQ(read.DaySchedule[6], 0x00544420u);
  read.BatteryNumber = 2;
  EXPECT_EQ(host.Call(8, 18, read), -1) << "no such battery";
  EXPECT_EQ(read.CurrentThreshold, 15) << "a failed call leaves it alone";
}

TEST(Lists, ComeWhole) {
  Caller host;
  CExtBatteryLife life;
  EXPECT_EQ(host.Call(17, 5, life), 0);
  ASSERT_EQ(life.Entries.size(), 1u);
  EXPECT_EQ(life.Entries[0].ChargeCycles, 143);
  EXPECT_EQ(life.Entries[0].DesignCapacity, 63000u);
  CTabletScanCodes buttons;
  EXPECT_EQ(host.Call(17, 18, buttons), 0);
  ASSERT_EQ(buttons.Entries.size(), 3u);
  EXPECT_EQ(buttons.Entries[2].ScanCode, 0xE030);
  CThermalSensors sensors;
  EXPECT_EQ(host.Call(17, 22, sensors), 0);
  ASSERT_EQ(sensors.Entries.size(), 3u);
  EXPECT_EQ(sensors.Entries[2].Temperature, -55);
  CLogEntries log;
  EXPECT_EQ(host.Call(17, 24, log), 0);
  ASSERT_EQ(log.Entries.size(), 3u);
  EXPECT_EQ(log.Entries[1].Minute, 30);
  EXPECT_EQ(log.Entries[1].Text, "Fan 1 stalled once");

  CSimpleTokenData seen;
  seen.Arg1 = 2;
  EXPECT_EQ(host.Call(17, 14, seen), 0);
  seen.Arg1 = 3;
  EXPECT_EQ(host.Call(17, 14, seen), -1);
  CFirmwareMessages messages;
  EXPECT_EQ(host.Call(17, 16, messages), 0);
  ASSERT_EQ(messages.Entries.size(), 2u);
  EXPECT_EQ(messages.Entries[0].Seen, 0);
  EXPECT_EQ(messages.Entries[1].Seen, 1);

  // A length word that lies is bounded by the record; an answer cut short loses its last entry.
  host.machine().GetFaults().Add(
      {.operation = "firmware 17/24", .nth = 2, .corrupt = [](auto& reply) {
         test::CheckedWriter(reply, 44).U32(0xFFFFFFFF);
       }});
  EXPECT_EQ(host.Call(17, 24, log), 0);
  EXPECT_EQ(log.Entries.size(), 3u);
  host.machine().GetFaults().Add(
      {.operation = "firmware 17/24", .nth = 1, .corrupt = [](auto& reply) {
         test::CheckedWriter(reply, 44).U32(10);
       }});
  EXPECT_EQ(host.Call(17, 24, log), -6) << "the room was measured wrong";
  EXPECT_EQ(log.Entries.size(), 3u) << "a failed call leaves it alone";

  CSimpleTokenData word;
  word.Arg2 = 1;
  word.Arg3 = 0xABCD;
  EXPECT_EQ(host.Call(7, 9, word), 0);
  word.Arg2 = 0;
  EXPECT_EQ(host.Call(7, 9, word), 0);
  EXPECT_EQ(word.Res2, 0xABCDu);
  EXPECT_EQ(host.Call(7, 8, word), 0);
  EXPECT_EQ(word.Res2, 0u);
}

TEST(IdentityConsole, EndsWithTheStatusAndWritesOnlyWhenItMay) {
  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* said;  // part of the output, or of the sentence on standard error
  };
  const Case cases[] = {
      {{"tag", "show"}, 0, "service tag    7KX2M91\n"},
      {{"tag", "show", "extended", "--command", "9"}, 11, "answered -1"},
      {{"tag", "set", "asset", "X"}, 8, "--yes goes ahead"},
      {{"tag", "set", "asset", "X", "--what-if"}, 0, "Nothing was written."},
      {{"tag", "set", "asset", "NF-004711"}, 0, "Nothing to change."},
      {{"tag", "set", "asset", "1234567890123", "--yes"}, 0, "-> '123456789012'"},
      {{"tag", "set", "asset", "", "--yes"}, 0, "'NF-004711' -> ''"},
      {{"tag", "set", "asset", "caf\xC3\xA9", "--yes"}, 6, "printable ASCII"},
      {{"tag", "set", "extended", std::string(4047, 'x'), "--yes"}, 11, "answered -1"},
      {{"tag", "set", "extended", std::string(4048, 'x'), "--yes"}, 6, "at most 4047"},
      {{"tag", "set", "nickname", "X", "--yes"}, 2, "nickname"},
      {{"id", "mac"}, 0, "02A1B2C3D4E5\n"},
      {{"id", "mac", "show", "X"}, 2, "X"},
      {{"id", "mac", "set"}, 2, "TEXT"},
      {{"id", "mac", "set", "02:a1:b2:c3:d4:e6", "--yes"}, 0, "-> '02A1B2C3D4E6'"},
      {{"id", "mac", "set", "02:a1:b2:c3:d4", "--yes"}, 6, "12 hexadecimal digits"},
      {{"id", "mac", "set", "02:a1:b2:c3:d4:eg", "--yes"}, 6, "12 hexadecimal digits"},
      {{"id", "eppid", "set", "short", "--yes"}, 6, "has 23 characters, not 5"},
      {{"id", "eppid", "set", "ABCDEFGHIJKLMNOPQRSTU\xC3\xA9", "--yes"}, 6, "printable ASCII"},
      {{"id", "image-server", "set", "caf\xC3\xA9", "--yes"}, 6, "printable ASCII"},
      {{"id", "thin-client", "set", "a\tb", "--yes"}, 6, "printable ASCII"},
      {{"tag", "set", "ownership", "a\x7F", "--yes"}, 6, "printable ASCII"},
      {{"id", "image-server", "set", std::string(512, 'x'), "--yes"}, 6, "at most 511"},
      {{"id", "thin-client", "set", "12345678901234567890", "--yes"}, 6, "at most 19"},
      {{"log"}, 0, "2026-04-02  12:30:41  warning      0x0207  Fan 1 stalled once\n"},
      {{"log", "messages"}, 0, "2       warning      no    The battery"},
      {{"log", "scan-codes"}, 0, "0xe05b     Home\n"},
      {{"log", "nothing"}, 2, "nothing"},
      {{"thermal"}, 0, "3       Wireless card  -5.5       70.0\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.begin(), "--sim");
    const ProgramResult result = Mira(arguments);
    EXPECT_EQ(result.status, c.status);
    const std::string& said = c.status == 0 ? result.out : result.err;
    EXPECT_NE(said.find(c.said), std::string::npos) << said;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), c.status == 0 ? 0 : 1);
    arguments.emplace_back("--json");
    const ProgramResult as_json = Mira(arguments);
    EXPECT_EQ(as_json.status, c.status);
    EXPECT_EQ(Document(as_json).contains("error"), c.status != 0);
  }
  const std::vector<std::vector<std::string>> reads = {
      {"tag", "show", "asset"}, {"id", "image-server"}, {"log"}, {"thermal"}};
  for (std::vector<std::string> arguments : reads) {
    arguments.insert(arguments.begin(), "--sim=no-calling-interface");
    EXPECT_EQ(Mira(arguments).status, 4) << arguments[1];
  }
}

// A machine that several runs of the program see.
class SharedMachine : public testing::Test {
 protected:
  void Run(std::vector<std::string> arguments, int status = 0, const std::string& input = "") {
    SCOPED_TRACE(testing::PrintToString(arguments));
    arguments.insert(arguments.end(), {"--yes", "--json"});
    const ProgramResult result = Mira(arguments, input);
    EXPECT_EQ(result.status, status);
    document_ = Document(result);
  }

  sim::Machine machine_{*sim::FindProfile("locked")};
  sim::Session session_{machine_};
  nlohmann::json document_;
};

TEST_F(SharedMachine, KeepsWhatTheConsoleSets) {
  Run({"tag", "set", "ownership", std::string(90, 'o')}, 5);
  Run({"tag", "set", "ownership", std::string(90, 'o'), "--password-stdin"}, 5, "wrong\n");
  Run({"tag", "set", "ownership", "x", "--password-stdin", "--what-if"}, 5, "wrong\n");
  Run({"tag", "show", "ownership"});
  EXPECT_EQ(document_["tags"][0]["value"], "Property of the Northfield Library");
  Run({"tag", "set", "ownership", std::string(90, 'o'), "--password-stdin"}, 0, "setup1\n");
  EXPECT_EQ(document_["cut"], true);
  EXPECT_EQ(document_["changed"], true);
  // The tag has all of the text that it can have, which is not the text that was wanted.
  Run({"tag", "set", "ownership", std::string(90, 'o'), "--password-stdin"}, 6, "setup1\n");
  EXPECT_EQ(document_["error"]["name"], "text-too-long");
  EXPECT_EQ(document_["changes"][0]["outcome"], "failed");
  Run({"tag", "set", "ownership", std::string(80, 'o') + "  "});
  EXPECT_EQ(document_["changes"][0]["outcome"], "already-so");
  EXPECT_EQ(document_["cut"], false);
  Run({"tag", "set", "service", "1234567", "--class10", "--password-stdin"}, 0, "system1\n");
  Run({"tag", "set", "extended", "Desk 14", "--command", "1", "--password-stdin"}, 0, "setup1\n");
  Run({"tag", "show", "--command", "1"});
  EXPECT_EQ(document_["tags"], nlohmann::json::parse(R"([
    {"tag": "asset", "value": "NF-004711"}, {"tag": "service", "value": "1234567"},
    {"tag": "ownership", "value": ")" + std::string(80, 'o') +
                                                     R"("},
    {"tag": "extended", "command": 1, "value": "Desk 14"}])"));

  const std::pair<const char*, const char*> items[] = {{"mac", "02A1B2C3D4FF"},
                                                       {"eppid", "ABCDEFGHIJKLMNOPQRSTUVW"},
                                                       {"image-server", "images.example"},
                                                       {"thin-client", ""}};
  for (const auto& [item, value] : items) {
    Run({"id", item, "set", value});
    Run({"id", item, "set", value});
    EXPECT_EQ(document_["changed"], false);
    Run({"id", item});
    EXPECT_EQ(document_["value"], value);
  }
}

TEST(OwnershipTag, IsReachedThroughTheClassThatIsAnnounced) {
  for (const unsigned missing : {20u, 23u}) {
    sim::Profile profile;
    profile.supported_classes &= ~(1u << missing);
    sim::Machine machine(profile);
    const sim::Session session(machine);
    const ProgramResult set = Mira({"tag", "set", "ownership", "Desk 14", "--yes"});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(Mira({"tag", "show", "ownership"}).out.find("Desk 14") != std::string::npos, true);
    for (const sim::JournalEntry& call : machine.Journal()) EXPECT_NE(call.cls, missing);
  }
}

TEST_F(SharedMachine, ShowsWhatItHasWhenSomethingIsMissing) {
  machine_.GetFaults().Add({.operation = "firmware 20/0", .nth = 0, .completion = -2});
  Run({"tag", "show"});
  EXPECT_EQ(document_["tags"][0]["value"], "NF-004711");
  EXPECT_TRUE(document_["tags"][2]["value"].is_null());
  Run({"tag", "show", "ownership"}, 4);
}

}  // namespace
}  // namespace mira
