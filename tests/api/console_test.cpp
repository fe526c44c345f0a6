// The console end to end on the simulated machine: what it prints, and what it ends with.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "client/smbios_file.h"
#include "console/commands.h"
#include "sim/machine.h"
#include "tests/support/console_program.h"

namespace mira::console {
namespace {

using test::Document;
using test::Mira;
using test::TemporaryFile;
using Result = test::ProgramResult;

std::string SimTable() {
  const sim::Machine machine;
  const auto& table = machine.GetProfile().firmware_table;
  return {table.begin(), table.end()};
}

TEST(Console, EndsWithTheStatusAndOneSentence) {
  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* said;  // part of the sentence
  };
  const Case cases[] = {
      {{"--sim", "info"}, 0, ""},
      {{"info", "--sim"}, 0, ""},
      {{"--sim=laptop", "tokens"}, 0, ""},
      {{"--sim", "call", "0", "0", "--arg1", "0x70"}, 0, ""},
      {{"--sim", "smbois"}, 2, "Did you mean 'smbios'?"},
      {{"--sim", "laptop"}, 2, "Did you mean '--sim=laptop'?"},
      {{"--sim", "-h"}, 0, ""},
      {{"--sim", "help", "boot", "order"}, 0, ""},
      {{"--sim", "xyzzyx"}, 2, "'mira --help' shows what there is."},
      {{"--sim", "call", "0"}, 2, "SELECT"},
      {{"--sim", "call", "zero", "0"}, 2, "'zero' is not a valid command class"},
      {{"--sim", "call", "70000", "0"}, 2, "a number from 0 to 65535"},
      {{"--sim", "call", "0", "0", "--arg1", "0x100000000"}, 2, "is not a valid argument word"},
      {{"--sim", "smbios", "--type", "300"}, 2, "is not a valid structure type"},
      {{"--sim", "smbios", "--type", "99"}, 3, "no such structure"},
      {{"--sim=toaster", "info"}, 2, "The machines are: laptop"},
      {{"--sim", "smbios", "--file", "no such file"}, 3, "cannot be read"},
      {{"--sim=no-calling-interface", "tokens"}, 4, "no calling interface"},
      {{"--sim", "call", "31", "0"}, 4, "does not support"},
      {{"--sim=locked", "call", "1", "0", "--key-arg", "3"}, 5, "A password is needed"},
      {{"--sim", "call", "1", "0", "--password-env", "MIRA_NO_SUCH_VARIABLE"}, 5, "could be read"},
      {{"--sim=standard-user", "tokens"}, 7, "Administrator rights are needed"},
      {{"--sim=acpi-off", "tokens"}, 4, "does not support calls through WMI"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const Result result = Mira(c.arguments);
    EXPECT_EQ(result.status, c.status);
    EXPECT_NE(result.err.find(c.said), std::string::npos) << result.err;
    EXPECT_EQ(result.err.empty(), c.status == 0);
    if (c.status != 0) {
      EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }

    std::vector<std::string> with_json = c.arguments;
    with_json.push_back("--json");
    const Result as_json = Mira(with_json);
    EXPECT_EQ(as_json.status, c.status);
    const nlohmann::json document = Document(as_json);
    EXPECT_EQ(document.at("schemaVersion"), 1);
    EXPECT_EQ(document.value("simulated", false), true);
    EXPECT_EQ(document.contains("error"), c.status != 0);
    if (c.status != 0) {
      EXPECT_EQ(document["error"].at("code"), c.status);
      EXPECT_FALSE(document["error"].at("name").get<std::string>().empty());
    }
  }
}

TEST(Console, HelpsOnEveryLevel) {
  const Result top = Mira({"--help"});
  EXPECT_EQ(top.status, 0);
  EXPECT_NE(top.out.find("--sim[=PROFILE]"), std::string::npos);
  for (const Noun& noun : Nouns()) {
    EXPECT_NE(top.out.find(noun.name), std::string::npos);
    const Result help = Mira({noun.name, "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("Example"), std::string::npos) << noun.name;
  }
  EXPECT_EQ(Mira({}).out, top.out);
}

TEST(Console, TourShowsTheMainJob) {
  const Result result = Mira({"--sim", "tour"});
  EXPECT_EQ(result.status, 0);
  for (const char* const part :
       {"administrator check................... done", "Init: 0 (success)",
        "  17      2  CMemoryDevice", "BIOS Version : 1.8.2", "Command classes: 0 1 2 3",
        "0x0058  0x0070    0x0001", "cbRES1 : 0  The function completed successfully.",
        "cbRES2 : 0x00000001"}) {
    EXPECT_NE(result.out.find(part), std::string::npos) << part << "\n" << result.out;
  }
}

TEST(Console, InfoTellsWhichStepFailed) {
  const nlohmann::json document = Document(Mira({"--sim=no-calling-interface", "info", "--json"}));
  EXPECT_EQ(document["status"], 10);
  std::vector<std::string> outcomes;
  for (const auto& step : document["steps"]) outcomes.push_back(step["outcome"]);
  std::vector<std::string> expected(7, "done");
  expected.push_back("failed");
  expected.resize(14, "not-tried");
  EXPECT_EQ(outcomes, expected);
  EXPECT_EQ(document["steps"][7]["step"], "WMI instance");
  EXPECT_NE(document["steps"][7].value("advice", ""), "");
  for (const auto& step : document["steps"]) {
    EXPECT_NE(step.value("meaning", ""), "") << step;
    EXPECT_EQ(step.contains("advice"), step["outcome"] == "failed") << step;
  }
}

TEST(Console, CallShowsTheFirmwaresAnswer) {
  const nlohmann::json good =
      Document(Mira({"--sim", "call", "0", "0", "--arg1", "0x135", "--json", "--arg1", "120"}));
  EXPECT_EQ(good["error"]["code"], 2) << "an option given twice";
  const nlohmann::json read =
      Document(Mira({"--sim", "call", "0", "0", "--arg1", "0x78", "--json"}));
  EXPECT_EQ(read["results"], nlohmann::json({0, 2, 0, 0}));
  const Result refused = Mira({"--sim", "call", "0", "0", "--arg1", "1"});
  EXPECT_EQ(refused.status, 11);
  EXPECT_NE(refused.out.find("cbRES1 : -1  The function ended in error"), std::string::npos);
}

TEST(Console, CallTakesItsKeyFromAPassword) {
  const std::vector<std::string> write = {"--sim=locked", "call",   "1", "0",         "--arg1",
                                          "0x70",         "--arg2", "7", "--key-arg", "3"};
  const auto with = [&write](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = write;
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  };
  EXPECT_EQ(Mira(with({"--password-stdin"}), "setup1\n").status, 0);
  EXPECT_EQ(Mira(with({"--password-stdin"}), "wrong\n").status, 5);
  EXPECT_EQ(Mira(with({"--password-stdin", "--class10"}), "system1\r\n").status, 0);
  const TemporaryFile file("setup1\nsecond line");
  const Result result = Mira(with({"--password-file", file.path()}));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ((result.out + result.err).find("setup1"), std::string::npos);
  EXPECT_EQ(Mira({"--sim=locked", "call", "1", "0", "--arg1", "0x70"}).status, 5)
      << "the firmware asks for the key";
}

TEST(Console, SmbiosSelectsAndShapes) {
  const Result dump = Mira({"--sim", "smbios", "--type", "17"});
  EXPECT_EQ(dump.status, 0);
  EXPECT_NE(dump.out.find("Device Locator : DIMM A\n"), std::string::npos);
  EXPECT_NE(dump.out.find("Device Locator : DIMM B\n"), std::string::npos);
  EXPECT_EQ(dump.out.find("Type : 0\n"), std::string::npos);

  EXPECT_EQ(Mira({"--sim", "smbios", "--handle", "0x1500", "--attributes"}).out,
            "CBuiltInPointingDevice : Type 21 : Handle 0x1500\n  DeviceType : 7\n"
            "  Interface : 4\n  NumOfButtons : 2\n");

  const nlohmann::json document = Document(Mira({"--sim", "smbios", "--handle", "5376", "--json"}));
  EXPECT_EQ(document["complete"], true);
  EXPECT_EQ(document["structures"], nlohmann::json::parse(R"([{"type": 21, "handle": 5376,
                "class": "CBuiltInPointingDevice", "bytes": "1507001507040200",
                "attributes": [{"key": "DeviceType", "value": "7"},
                               {"key": "Interface", "value": "4"},
                               {"key": "NumOfButtons", "value": "2"}]}])"));
}

TEST(Console, SmbiosWorksWhereTheRestDoesNot) {
  for (const char* const profile : {"no-calling-interface", "acpi-off", "standard-user"}) {
    SCOPED_TRACE(profile);
    const std::string machine = std::string("--sim=") + profile;
    const Result result = Mira({machine, "smbios", "--type", "0"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("Vendor : Northfield Systems"), std::string::npos);
    EXPECT_NE(result.out.find("Only SMBIOS is available here: "), std::string::npos);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(Document(Mira({machine, "smbios", "--type", "0", "--json"})).contains("limit"));
  }
}

TEST(Console, SmbiosSavesAndDecodesFiles) {
  const TemporaryFile saved;
  EXPECT_EQ(Mira({"--sim", "smbios", "--type", "0", "--save", saved.path()}).status, 0);
  EXPECT_EQ(saved.Content(), SimTable());
  const std::string expected = Mira({"--sim", "smbios"}).out;
  EXPECT_EQ(Mira({"smbios", "--file", saved.path()}).out, expected);

  // The other forms in which tables are passed around.
  const std::string structures = SimTable().substr(8);
  std::string entry3 = std::string("_SM3_\0\x18\3\2\0\1\0", 12);
  for (unsigned i = 0; i < 4; ++i) entry3 += static_cast<char>(structures.size() >> (8 * i));
  entry3 += std::string(1, 32) + std::string(7, '\0') + std::string(8, '\0');
  std::string entry2 = std::string("_SM_\0\x1F\2\x8", 8) + std::string(14, '\0');
  entry2 += static_cast<char>(structures.size());
  entry2 += static_cast<char>(structures.size() >> 8);
  entry2 += std::string("\0\0\x0E\0", 4) + std::string(4, '\0');
  std::string hex;
  for (const char c : SimTable()) {
    constexpr char kDigits[] = "0123456789abcdef";
    hex += kDigits[static_cast<unsigned char>(c) / 16];
    hex += kDigits[static_cast<unsigned char>(c) % 16];
    hex += hex.size() % 48 == 47 ? '\n' : ' ';
  }
  for (const std::string& form : {entry3 + structures, entry2 + structures, structures, hex}) {
    const TemporaryFile file(form);
    const Result result = Mira({"smbios", "--file", file.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, expected);
  }

  struct Bad {
    std::string content;
    int status;
  };
  const Bad bad[] = {{"", 6}, {"not a table", 6}, {std::string(100, '\0'), 6}, {"0g", 6}};
  for (const Bad& b : bad) {
    const TemporaryFile file(b.content);
    EXPECT_EQ(Mira({"smbios", "--file", file.path()}).status, b.status);
  }
  // A damaged table is shown as far as it goes.
  const TemporaryFile damaged(SimTable().substr(0, 300));
  const Result result = Mira({"smbios", "--file", damaged.path()});
  EXPECT_EQ(result.status, 6);
}

TEST(Console, KeepsTheSimulatedMachineBetweenCommands) {
  const std::filesystem::path folder = "machines of the test";
  std::filesystem::remove_all(folder);
  const auto mira = [&folder](std::vector<std::string> arguments, const char* input = "") {
    arguments.insert(arguments.begin(), "--sim");
    return Mira(arguments, input, folder);
  };
  const auto value = [&mira](const char* select) {
    return Document(mira({"call", "0", select, "--arg1", "0x70", "--json"}))["results"][1];
  };
  EXPECT_EQ(mira({"call", "1", "0", "--arg1", "0x70", "--arg2", "7"}).status, 0);
  EXPECT_EQ(value("0"), 7);
  EXPECT_EQ(value("1"), 1) << "in force from the restart on";
  EXPECT_EQ(Document(mira({"sim", "show", "--json"}))["boots"], 1);
  EXPECT_EQ(mira({"sim", "reboot", "--yes"}).status, 0);
  EXPECT_EQ(value("1"), 7);

  const std::vector<std::string> set_password = {
      "password", "change", "--class", "9", "--new-password-stdin", "--yes"};
  EXPECT_EQ(mira(set_password, "setup1\n").status, 0);
  const std::vector<std::string> write = {"call",   "1", "0",         "--arg1", "0x70",
                                          "--arg2", "9", "--key-arg", "3",      "--password-stdin"};
  EXPECT_EQ(mira(write, "setup1\n").status, 0);
  EXPECT_EQ(value("0"), 9);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(mira(write, "mistaken\n").status, 5);
  EXPECT_EQ(mira(write, "setup1\n").status, 5) << "locked, also for later commands";
  std::string bytes;
  {
    std::ifstream kept(folder / "laptop.machine", std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(kept), {});
  }
  EXPECT_EQ(bytes.find("mistaken"), std::string::npos) << "wrong passwords are not kept";
  EXPECT_EQ(mira({"sim", "reboot", "--yes"}).status, 0);
  EXPECT_EQ(mira(write, "setup1\n").status, 0);
  EXPECT_EQ(Mira({"--sim=locked", "sim", "show"}, "", folder).status, 0) << "a machine of its own";

  std::ofstream(folder / "laptop.machine") << "damaged";
  EXPECT_EQ(mira({"tokens"}).status, 1);
  EXPECT_NE(mira({"tokens"}).err.find("sim reset"), std::string::npos);
  EXPECT_EQ(mira({"sim", "reset", "--yes"}).status, 0);
  EXPECT_EQ(value("0"), 1);
  EXPECT_EQ(Mira({"sim", "show"}).status, 2) << "a real machine is not restarted";
  std::filesystem::remove_all(folder);
}

TEST(Console, ShowsTextThatIsNoUtf8) {
  EXPECT_EQ(ToUtf8(std::string_view("caf\xE9")), "caf\xC3\xA9");
  EXPECT_EQ(ToUtf8(std::string_view("caf\xC3\xA9")), "caf\xC3\xA9");
  EXPECT_EQ(ToUtf8(std::wstring_view(L"\u00E9\u20AC")), "\xC3\xA9\xE2\x82\xAC");
}

TEST(TableFile, StaysInsideTruncatedAndRandomFiles) {
  const std::string table = SimTable();
  for (std::size_t size = 0; size <= table.size(); size += 7) {
    const std::vector<std::uint8_t> cut(table.begin(),
                                        table.begin() + static_cast<std::ptrdiff_t>(size));
    client::TableFromFile(cut);
    for (const char* const anchor : {"_SM_", "_SM3_"}) {
      std::vector<std::uint8_t> anchored = cut;
      std::copy_n(anchor, std::min(std::string(anchor).size(), size), anchored.begin());
      client::TableFromFile(anchored);
    }
  }
}

// Tables of real machines, where the folder with them is at hand.
TEST(RealTables, AreWalkedCompletely) {
  const char* const folder = std::getenv("MIRA_TEST_DATA");
  if (folder == nullptr) GTEST_SKIP() << "MIRA_TEST_DATA is not set";
  struct Case {
    const char* name;
    std::size_t structures;
  };
  const Case cases[] = {
      {"desktop-a", 82}, {"desktop-b", 102}, {"laptop-a", 27},  {"laptop-b", 63},
      {"server-a", 115}, {"server-b", 28},   {"vm-large", 620}, {"vm-without-end", 5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const nlohmann::json document = Document(
        Mira({"smbios", "--json", "--file", std::string(folder) + "/smbios/" + c.name + ".rsmb"}));
    EXPECT_EQ(document["complete"], true);
    EXPECT_EQ(document["structures"].size(), c.structures);
  }
}

}  // namespace
}  // namespace mira::console
