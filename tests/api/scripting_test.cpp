// What scripts use: --value, --quiet, and the simulated machine's own commands.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/console_program.h"

namespace mira::console {
namespace {

using test::Document;
using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;

TEST(Value, PrintsOneFieldOfADocument) {
  struct Case {
    std::vector<std::string> arguments;
    const char* field;
    const char* printed;
  };
  const Case cases[] = {
      {{"info"}, "transferBufferSize", "4096\n"},
      {{"info"}, "simulated", "true\n"},
      {{"info"},
       "steps.0",
       "{\"step\":\"administrator check\",\"outcome\":\"done\",\"meaning\":"
       "\"This user's administrator rights are in force.\"}\n"},
      {{"info"}, "steps.0.outcome", "done\n"},
      {{"call", "0", "0", "--arg1", "0x78"}, "results", "[0,2,0,0]\n"},
      {{"call", "0", "0", "--arg1", "0x78"}, "results.1", "2\n"},
      {{"smbios", "--handle", "0x1500"}, "structures.bytes", "1507001507040200\n"},
      {{"smbios", "--handle", "0x1500"}, "structures.0.attributes.2.key", "NumOfButtons\n"},
      {{"attr", "get", "FanFloor"}, "attributes.value", "0\n"},
      {{"attr", "get", "WakeOnLan"}, "value", "Disabled\n"},
      {{"tag", "show", "asset"}, "value", "NF-004711\n"},
      {{"attr", "get", "OwnerPassword"}, "attributes.value", "\n"},
      {{"boot", "encode", "PciRoot(0x0)"}, "bytes", "02010c00d041030a000000007fff0400\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.field);
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.begin(), {"--sim", "--value", c.field});
    const ProgramResult result = Mira(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, c.printed);
    EXPECT_EQ(result.err, "");
  }
}

TEST(Value, EscapesTextsOfTheFirmware) {
  const TemporaryFile profile(
      R"({"name": "odd", "assetTag": "one\u001b[2Jtwo", "thinClient": "caf\u00e9"})");
  const std::string file = profile.path() + ".json";
  std::filesystem::copy_file(profile.path(), file);
  const ProgramResult result =
      Mira({"--sim=" + file, "tag", "show", "asset", "--value=tags.value"});
  EXPECT_EQ(result.out, "one\\x1b[2Jtwo\n") << result.err;
  std::filesystem::remove(file);
}

TEST(Value, NamesWhatIsNotThere) {
  struct Case {
    const char* field;
    const char* said;
  };
  const Case cases[] = {
      {"transferBuferSize", "has no field 'transferBuferSize'. Did you mean 'transferBufferSize'?"},
      {"colour", "The fields are: schemaVersion, simulated, version, profile, status,"},
      {"steps.99.step", "The list has the indices 0 to 13."},
      {"steps.step", "The list has the indices 0 to 13."},
      {"version.major", "It has no fields."},
      {"steps.0.", "The fields are: step, outcome, meaning."},
      {"diagnostics.0", "The list is empty."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.field);
    const ProgramResult result = Mira({"--sim", "info", "--value", c.field});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(c.said), std::string::npos) << result.err;
  }
}

TEST(Value, LeavesErrorsAsTheyAre) {
  const ProgramResult failed =
      Mira({"--sim=no-calling-interface", "info", "--value", "statusName"});
  EXPECT_EQ(failed.status, 4);
  EXPECT_EQ(failed.out, "no-calling-interface\n") << "what was found out is there";
  EXPECT_NE(failed.err.find("no calling interface"), std::string::npos);
  const ProgramResult missing = Mira({"--sim", "boot", "show", "77", "--value", "lists.0.name"});
  EXPECT_EQ(missing.status, 3);
  EXPECT_EQ(missing.out, "");
}

TEST(Value, RefusesWhatItCannotServe) {
  const std::vector<std::vector<std::string>> cases = {
      {"info", "--value"},
      {"info", "--value="},
      {"info", "--value", "--quiet"},
      {"info", "--value", "version", "--json"},
      {"info", "--value", "version", "--quiet"},
      {"info", "--json", "--quiet"},
      {"tag", "set", "asset", "A", "--yes", "--value", "changed"},
      {"tour", "--value", "version"},
      {"console", "0", "0", "--value", "version"},
      {"console", "0", "0", "--quiet"},
      {"attr", "export", "-", "--quiet"},
  };
  for (std::vector<std::string> arguments : cases) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    arguments.insert(arguments.begin(), "--sim");
    EXPECT_EQ(Mira(arguments).status, 2);
  }
}

TEST(Quiet, LeavesOnlyErrorsAndTheStatus) {
  struct Case {
    std::vector<std::string> arguments;
    int status;
  };
  const TemporaryFile values(R"({"attributes": {"FanFloor": 20}})");
  const Case cases[] = {
      {{"info"}, 0},
      {{"tour"}, 0},
      {{"attr", "set", "FanFloor", "20", "--yes"}, 0},
      {{"attr", "set", "FanFloor", "20", "--what-if"}, 0},
      {{"attr", "set", "FanFloor", "20"}, 8},
      {{"attr", "import", values.path(), "--check"}, 12},
      {{"attr", "get", "Nothing"}, 3},
      {{"nonsense"}, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.end(), {"--quiet", "--sim"});
    const ProgramResult result = Mira(arguments);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.empty(), c.status == 0) << result.err;
  }
}

TEST(SimulatedMachine, IsRestartedAndResetLikeAnyChange) {
  const std::filesystem::path folder = "machines of the sim test";
  std::filesystem::remove_all(folder);
  const auto sim = [&folder](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--sim", "sim"});
    return Mira(arguments, "", folder);
  };
  auto reboot = Document(sim({"reboot", "--what-if", "--json"}));
  EXPECT_EQ(reboot["changed"], false);
  EXPECT_EQ(reboot["changes"][0]["target"], "boots of the simulated machine 'laptop'");
  EXPECT_EQ(reboot["changes"][0]["after"], 2);
  EXPECT_EQ(sim({"reboot"}).status, 8);
  EXPECT_EQ(sim({"show", "--value", "boots"}).out, "1\n") << "nothing has happened so far";

  reboot = Document(sim({"reboot", "--yes", "--json"}));
  EXPECT_EQ(reboot["changed"], true);
  EXPECT_EQ(reboot["changes"][0]["before"], 1);
  EXPECT_EQ(reboot["changes"][0]["outcome"], "changed");
  EXPECT_EQ(sim({"reboot", "--yes"}).out, "The machine has restarted.\n");
  EXPECT_EQ(sim({"show", "--value", "boots"}).out, "3\n");

  EXPECT_EQ(sim({"reset", "--what-if"}).out,
            "state of the simulated machine 'laptop': 'kept' -> 'new'\nNothing was written.\n");
  EXPECT_EQ(sim({"show", "--value", "boots"}).out, "3\n");
  EXPECT_EQ(Document(sim({"reset", "--yes", "--json"}))["changed"], true);
  EXPECT_EQ(sim({"reset", "--yes"}).out, "Nothing to change.\n");
  EXPECT_EQ(sim({"show", "--value", "boots"}).out, "1\n");
  for (const char* const verb : {"show", "reboot", "reset"}) {
    EXPECT_EQ(Mira({"sim", verb, "--yes"}, "", folder).status, 2) << "this PC is none";
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace mira::console
