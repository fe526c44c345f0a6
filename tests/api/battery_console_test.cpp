// How the console shows and sets the charging of batteries.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bytes/writer.h"
#include "sim/machine.h"
#include "tests/support/checked_cursors.h"
#include "tests/support/console_program.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using nlohmann::json;
using test::Document;
using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;

using Arguments = std::vector<std::string>;

TEST(BatteryConsole, SaysThatThereAreNoBatteries) {
  for (const char* const battery : {"1", "all"}) {
    const json error =
        Document(Mira({"--sim=desktop", "battery", "--battery", battery, "--json"}))["error"];
    EXPECT_EQ(error["name"], "no-batteries");
    EXPECT_EQ(error["message"], "This machine has no batteries.");
    EXPECT_EQ(error["target"], "battery");
  }
}

TEST(BatteryConsole, EndsWithTheStatusAndSaysWhy) {
  struct Case {
    Arguments arguments;
    int status;
    const char* said;
  };
  const Case cases[] = {
      {{"show"}, 0, "Battery                   1\nCharging mode             standard\n"},
      {{"show"}, 0, "Monday     08:00 - 17:00  0x00004420  off         0x00000000\n"},
      {{"show", "--battery", "all"}, 0, "Battery                   1\n"},
      {{}, 0, "Battery                   1\nCharging mode             standard\n"},
      {{"--battery", "2"}, 3, "does not know this battery"},
      {{"--battery", "2", "set", "--mode", "express", "--yes"}, 2, "--battery belongs behind"},
      {{"set", "--peak-shift", "on", "--what-if"}, 0, "peak shift: 'off' -> 'on'"},
      {{"show", "--battery", "2"}, 3, "does not know this battery; the machine lists 1"},
      {{"show", "--battery", "256"}, 2, "not a battery number"},
      {{"show", "--battery", "x"}, 2, "not a battery number"},
      {{"set"}, 2, "Nothing to set"},
      {{"set", "--battery", "2", "--mode", "express", "--yes"}, 3, "does not know this battery"},
      {{"set", "--mode", "turbo", "--yes"}, 6, "express"},
      {{"set", "--mode", "Express", "--yes"},
       0,
       "battery 1 charging mode: 'standard' -> 'express'"},
      {{"set", "--mode", "custom", "--start", "90", "--yes"}, 6, "must stop above"},
      {{"set", "--mode", "custom", "--start", "40", "--yes"}, 11, "refused the configuration"},
      {{"set", "--mode", "custom", "--start", "101", "--yes"}, 2, "101"},
      {{"set", "--mode", "custom", "--start", "60"}, 8, "--yes"},
      {{"set", "--start", "60", "--yes"}, 6, "the mode is 'standard'"},
      {{"set", "--stop", "80", "--yes"}, 6, "--mode custom"},
      {{"set", "--peak-threshold", "14", "--yes"}, 6, "between 15% and 100%"},
      {{"set", "--peak-shift", "maybe", "--yes"}, 2, "maybe"},
      {{"set", "--day", "monday=08:00-17:00", "--yes"}, 0, "Nothing to change."},
      {{"set", "--day", "MON=OFF", "--yes"}, 0, "charging on Monday: '08:00 - 17:00' -> 'off'"},
      {{"set", "--day", "mon=0x00004824", "--yes"}, 0, "-> '09:00 - 18:00'"},
      {{"set", "--day", "mon=0x01004824", "--yes"}, 11, "refused the configuration"},
      {{"set", "--mode", "express", "--from", "-", "--yes"}, 2, "exclude each other"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    Arguments arguments = c.arguments;
    arguments.insert(arguments.begin(), {"--sim", "battery"});
    const ProgramResult result = Mira(arguments);
    EXPECT_EQ(result.status, c.status);
    const std::string& said = c.status == 0 ? result.out : result.err;
    EXPECT_NE(said.find(c.said), std::string::npos) << said;
    EXPECT_EQ(result.out.find("Note: "), std::string::npos) << "the machine is simulated";
    arguments.emplace_back("--json");
    const ProgramResult as_json = Mira(arguments);
    EXPECT_EQ(as_json.status, c.status);
    EXPECT_EQ(Document(as_json).contains("error"), c.status != 0);
  }
  EXPECT_EQ(Mira({"--sim=no-calling-interface", "battery", "show"}).status, 4);
}

TEST(BatteryConsole, NamesWhatIsWrongWithASchedule) {
  struct Case {
    const char* option;
    const char* schedule;
    const char* reason;
  };
  const Case cases[] = {
      {"--day", "mon=17:00-08:00", "ends-before-it-begins"},
      {"--day", "mon=08:00-08:00", "empty"},
      {"--peak-day", "mon=00:00-00:00", "empty"},
      {"--day", "mon=08:05-17:00", "no-quarter-hour"},
      {"--day", "mon=08:00-24:15", "no-time"},
      {"--day", "mon=08:00-17:0", "no-time"},
      {"--day", "mon=0800-1700", "no-time"},
      {"--day", "mon=never", "no-time"},
      {"--day", "mon=0x100000000", "no-word"},
      {"--day", "mon=0xfoo", "no-word"},
      {"--day", "day=off", "unknown-day"},
      {"--day", "mon-day=off", "unknown-day"},
      {"--day", "mo=off", "unknown-day"},
      {"--day", "=off", "unknown-day"},
      {"--day", "mon", "no-day"},
      {"--day", "mon=08:00-17:00,21:00", "no-charge-time"},
      {"--peak-day", "mon=08:00-17:30,00:00", "charge-time-zero"},
      {"--peak-day", "mon=08:00-17:30,21:10", "no-quarter-hour"},
      {"--peak-day", "mon=08:00-17:30,", "no-time"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.schedule);
    const ProgramResult result =
        Mira({"--sim", "battery", "set", c.option, c.schedule, "--yes", "--json"});
    EXPECT_EQ(result.status, 6);
    const json error = Document(result)["error"];
    EXPECT_EQ(error["name"], "bad-schedule");
    EXPECT_EQ(error["reason"], c.reason);
    EXPECT_EQ(error["target"], c.schedule);
  }
}

// A machine that several runs of the program see as a real one.
class SharedBattery : public testing::Test {
 protected:
  void Run(Arguments arguments, int status = 0, const std::string& input = "") {
    SCOPED_TRACE(testing::PrintToString(arguments));
    arguments.insert(arguments.begin(), "battery");
    arguments.insert(arguments.end(), {"--yes", "--json"});
    const ProgramResult result = Mira(arguments, input);
    EXPECT_EQ(result.status, status) << result.out;
    document_ = Document(result);
  }
  const json& Battery() const { return document_["batteries"][0]; }
  void Fail(const char* operation, int nth, std::int32_t completion) {
    machine_.GetFaults().Clear();
    machine_.GetFaults().Add({.operation = operation, .nth = nth, .completion = completion});
  }

  sim::Machine machine_{*sim::FindProfile("laptop")};
  sim::Session session_{machine_};
  json document_;
};

TEST_F(SharedBattery, KeepsHowItIsCharged) {
  Run({"set", "--mode", "custom", "--start", "60", "--stop", "85", "--day", "all=off", "--day",
       "Sat=10:00-12:15", "--peak-shift", "on", "--peak-threshold", "40", "--peak-day",
       "sunday=00:00-24:00,24:00"});
  EXPECT_EQ(document_["batteries"], json::parse("[1]"));
  EXPECT_EQ(document_["changed"], true);
  EXPECT_EQ(document_["changes"].size(), 13u);
  EXPECT_EQ(document_["changes"][0], json::parse(R"({"target": "battery 1 charging mode",
    "before": "standard", "after": "custom", "outcome": "changed"})"));
  EXPECT_EQ(document_["changes"][3]["outcome"], "already-so") << "Sunday was off";
  EXPECT_EQ(document_["changes"][9], json::parse(R"({"target": "battery 1 charging on Saturday",
    "before": {"day": "Saturday", "raw": 0, "text": "off"},
    "after": {"day": "Saturday", "raw": 12584, "text": "10:00 - 12:15", "begin": "10:00",
              "end": "12:15"}, "outcome": "changed"})"));
  Run({"show"});
  EXPECT_EQ(Battery()["charging"]["mode"], "custom");
  EXPECT_EQ(Battery()["charging"]["startLimitPercent"], 60);
  EXPECT_EQ(Battery()["charging"]["stopLimitPercent"], 85);
  EXPECT_EQ(Battery()["charging"]["version"], json::parse(R"({"text": "1.0", "raw": 65536})"));
  EXPECT_EQ(Battery()["charging"]["days"][1], json::parse(R"({"day": "Monday", "raw": 0,
    "text": "off"})"));
  EXPECT_EQ(Battery()["charging"]["days"][6]["raw"], 12584);
  EXPECT_EQ(Battery()["peakShift"]["enabled"], true);
  EXPECT_EQ(Battery()["peakShift"]["thresholdPercent"], 40);
  EXPECT_EQ(Battery()["peakShift"]["days"][0], json::parse(R"({"day": "Sunday",
    "raw": 6316032, "text": "00:00 - 24:00, charging from 24:00", "begin": "00:00",
    "end": "24:00", "chargeFrom": "24:00"})"));
  EXPECT_EQ(Battery()["life"], json::parse(R"([{"chargeCycles": 143,
    "designCapacityMilliwattHours": 63000, "fullChargeCapacityMilliwattHours": 58170,
    "healthPercent": 92, "assumedLayout": true}])"));

  // The second of two writes fails.
  Fail("firmware 8/19", 2, -1);
  Run({"set", "--stop", "90", "--peak-shift", "off"}, 10);
  EXPECT_EQ(document_["error"]["name"], "applied-in-part");
  EXPECT_EQ(document_["changes"][0]["outcome"], "changed");
  EXPECT_EQ(document_["changes"][1]["outcome"], "refused");
  Run({"show"});
  EXPECT_EQ(Battery()["charging"]["stopLimitPercent"], 90);
  EXPECT_EQ(Battery()["peakShift"]["enabled"], true);
}

TEST_F(SharedBattery, TakesGroupsOfDays) {
  struct Case {
    const char* days;
    std::vector<int> set;  // counted from Sunday
  };
  const Case cases[] = {
      {"weekdays", {1, 2, 3, 4, 5}}, {"Weekend", {0, 6}}, {"fri-mon", {0, 1, 5, 6}},
      {"Tuesday-thu", {2, 3, 4}},    {"sun-sun", {0}},    {"all", {0, 1, 2, 3, 4, 5, 6}},
      {"mon-fri", {1, 2, 3, 4, 5}},  {"wednesday", {3}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.days);
    Run({"set", "--day", "all=off"});
    Run({"set", "--day", std::string(c.days) + "=06:15-07:00"});
    Run({"show"});
    std::vector<int> set;
    for (int day = 0; day < 7; ++day) {
      const json& shown = Battery()["charging"]["days"][static_cast<std::size_t>(day)];
      if (shown["raw"] == 0x1C19) set.push_back(day);
    }
    EXPECT_EQ(set, c.set);
  }
}

TEST_F(SharedBattery, GoesBackToWhatAFileSays) {
  Run({"show"});
  const json before = document_;
  const TemporaryFile file(before.dump());
  Run({"set", "--mode", "custom", "--start", "60", "--day", "all=off", "--peak-shift", "on",
       "--peak-day", "all=08:00-12:00"});
  Run({"set", "--from", file.path()});
  EXPECT_EQ(document_["changed"], true);
  EXPECT_FALSE(document_.contains("assumption")) << "the words are the firmware's own";
  Run({"show"});
  EXPECT_EQ(document_, before);
  Run({"set", "--from", file.path()});
  EXPECT_EQ(document_["changed"], false);

  // A part of a configuration.
  Run({"set", "--battery", "1", "--from", "-"}, 0, R"({"batteries": [{"battery": 1, "charging":
      {"mode": "express", "days": [{"day": "mon", "begin": "09:00", "end": "10:00"}]}}]})");
  EXPECT_EQ(document_["changes"].size(), 2u);
  Run({"show"});
  EXPECT_EQ(Battery()["charging"]["mode"], "express");
  EXPECT_EQ(Battery()["charging"]["days"][1]["raw"], 0x2824);
  EXPECT_EQ(Battery()["charging"]["days"][2], before["batteries"][0]["charging"]["days"][2]);
}

TEST_F(SharedBattery, RefusesFilesThatAreNoConfiguration) {
  struct Case {
    const char* content;
    int status;
    const char* name;
  };
  const Case cases[] = {
      {"[", 6, "no-json"},
      {"[]", 6, "bad-configuration"},
      {R"({"batteries": []})", 6, "bad-configuration"},
      {R"({"schemaVersion": 2, "batteries": [{"battery": 1}]})", 6, "newer-schema"},
      {R"({"battery": 1})", 6, "unknown-key"},
      {R"({"batteries": [{"battery": 1, "charging": {"modus": 1}}]})", 6, "unknown-key"},
      {R"({"batteries": [{"charging": {"modeCode": 1}}]})", 6, "bad-configuration"},
      {R"({"batteries": [{"battery": 1}, {"battery": 1}]})", 6, "bad-configuration"},
      {R"({"batteries": [{"battery": 1, "battery": 2}]})", 6, "doubled-key"},
      {R"({"batteries": [{"battery": 1, "charging": {"mode": "custom", "modeCode": 1}}]})", 6,
       "bad-configuration"},
      {R"({"batteries": [{"battery": 1, "charging": {"stopLimitPercent": 101}}]})", 6,
       "bad-configuration"},
      {R"({"batteries": [{"battery": 1, "peakShift": {"enabled": "yes"}}]})", 6,
       "bad-configuration"},
      {R"({"batteries": [{"battery": 1, "charging": {"days": [{"day": "monday"}]}}]})", 6,
       "bad-schedule"},
      {R"({"batteries": [{"battery": 1, "charging": {"days":
          [{"day": "monday", "raw": 17440, "begin": "08:00", "end": "17:30"}]}}]})",
       6, "bad-schedule"},
      {R"({"batteries": [{"battery": 1, "charging": {"days":
          [{"day": "monday", "raw": 0}, {"day": "mon", "raw": 0}]}}]})",
       6, "bad-schedule"},
      {R"({"batteries": [{"battery": 2, "charging": {"modeCode": 2}}]})", 3, "no-battery"},
      {R"({"batteries": [{"battery": 1, "charging": {"modeCode": 77}}]})", 11,
       "configuration-refused"},
  };
  Run({"show"});
  const json before = document_;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.content);
    Run({"set", "--from", "-"}, c.status, c.content);
    EXPECT_EQ(document_["error"]["name"], c.name);
  }
  Run({"show"});
  EXPECT_EQ(document_, before);
}

TEST_F(SharedBattery, ShowsWhatCanBeRead) {
  Fail("firmware 17/5", 0, -2);
  Run({"show"});
  EXPECT_TRUE(Battery()["life"].empty());

  // Peak shift is read second.
  Fail("firmware 8/18", 2, -1);
  Run({"show"});
  EXPECT_EQ(Battery()["charging"]["mode"], "standard");
  EXPECT_TRUE(Battery()["peakShift"].is_null());
  EXPECT_EQ(Battery()["peakShiftProblem"]["completion"], -1);
  Fail("firmware 8/18", 1, -2);
  const std::string text = Mira({"battery", "show"}).out;
  EXPECT_NE(text.find("Charging                  (The firmware answered -2"), std::string::npos)
      << text;
  EXPECT_NE(text.find("Day        Peak shift  Raw\n"), std::string::npos) << text;
  Fail("firmware 8/18", 1, -1);
  Run({"set", "--peak-shift", "on"});
  EXPECT_EQ(document_["changed"], true) << "the other configuration is not needed";
  Fail("firmware 8/18", 1, -1);
  Run({"set", "--mode", "express"}, 11);

  // The machine lists the battery, so that it is there.
  Fail("firmware 8/18", 0, -1);
  Run({"show"}, 11);
  EXPECT_EQ(document_["error"]["name"], "call-failed");
}

TEST_F(SharedBattery, NamesAnUnknownChargingModeByItsNumber) {
  machine_.GetFaults().Add({.operation = "firmware 8/18", .nth = 1, .corrupt = [](auto& reply) {
                              test::CheckedWriter out(reply, 24);
                              out.U8(9);
                              EXPECT_TRUE(out.Ok());
                            }});
  Run({"show"});
  EXPECT_EQ(Battery()["charging"]["mode"], "mode 9");
  EXPECT_EQ(Battery()["charging"]["modeCode"], 9);
}

TEST_F(SharedBattery, SaysWhichCodesAreItsOwnBeforeItWritesThem) {
  const std::string note = "Note: The codes of charging modes and the layout of a day's word";
  const std::string written = Mira({"battery", "set", "--mode", "express", "--yes"}).out;
  EXPECT_EQ(written.find(note), 0u) << written;
  EXPECT_NE(written.find("'standard' -> 'express'"), std::string::npos);
  const std::string planned = Mira({"battery", "set", "--day", "mon=08:00-09:00", "--what-if"}).out;
  EXPECT_NE(planned.find(note), std::string::npos) << planned;
  Run({"set", "--peak-day", "mon=08:00-09:00"});
  EXPECT_TRUE(document_["assumption"].is_string());
  for (const Arguments& plain :
       {Arguments{"set", "--day", "mon=0x00002420"}, Arguments{"set", "--peak-shift", "on"}}) {
    Run(plain);
    EXPECT_FALSE(document_.contains("assumption"));
  }
}

}  // namespace
}  // namespace mira
