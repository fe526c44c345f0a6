// The SMBIOS table and the machine that it describes, as the console shows, saves and decodes them.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "client/smbios_file.h"
#include "sim/machine.h"
#include "sim/smbios_builder.h"
#include "tests/support/console_program.h"

namespace mira::console {
namespace {

using nlohmann::json;
using sim::SmbiosTable;
using sim::Structure;
using test::Document;
using test::Mira;
using test::TemporaryFile;
using Result = test::ProgramResult;

std::string Text(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

// A system whose manufacturer is this text.
std::string SystemTable(const std::string& manufacturer) {
  return Text(SmbiosTable(3, 2)
                  .Add(Structure(1, 0x100)
                           .Str(manufacturer)
                           .Str("P")
                           .Str("V")
                           .Str("S")
                           .Bytes(std::vector<std::uint8_t>(16, 0xAB))
                           .Byte(6)
                           .Str("K")
                           .Str("F"))
                  .Finish());
}

TEST(SmbiosCommand, ShowsTextsEscaped) {
  struct Case {
    const char* description;
    std::string text;
    const char* shown;
  };
  const Case cases[] = {
      {"plain", "Plain", "Plain"},
      {"a forged line", "A\nSerial Number : 007", "A\\x0aSerial Number : 007"},
      {"a cleared screen and a bell", "A\x1B[2J\a", "A\\x1b[2J\\x07"},
      {"Latin-1", "Caf\xE9", "Caf\xC3\xA9"},
      {"a control of Latin-1",
       "A\x9B"
       "2J",
       "A\\x9b2J"},
      {"UTF-8 that turns the direction",
       "A\xE2\x80\xAE"
       "B",
       "A\\u202eB"},
  };
  const TemporaryFile plain(SystemTable("Plain"));
  const auto lines = [](const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.description);
    const TemporaryFile file(SystemTable(c.text));
    for (const auto& [view, before] : {std::pair<std::string, std::string>{"--type=1", ""},
                                       {"--attributes", "  Manufacturer : "}}) {
      const std::string out = Mira({"smbios", view, "--file", file.path()}).out;
      EXPECT_NE(out.find(before + c.shown + "\n"), std::string::npos) << out;
      EXPECT_EQ(lines(out), lines(Mira({"smbios", view, "--file", plain.path()}).out));
    }
    const std::string out = Mira({"inventory", "--file", file.path()}).out;
    EXPECT_EQ(out.substr(0, out.find('\n')), std::string(c.shown) + " P");
  }

  const TemporaryFile signature(Text(
      SmbiosTable(3, 2)
          .Add(Structure(130, 1).Bytes(std::vector<std::uint8_t>{'$', '\n', 0x1B, 'M'}).QWord(0))
          .Finish()));
  const std::string dump = Mira({"smbios", "--type=130", "--file", signature.path()}).out;
  EXPECT_NE(dump.find("AMT Signature : $..M\n"), std::string::npos) << dump;

  const TemporaryFile latin(SystemTable("Caf\xE9"));
  const json document = Document(Mira({"smbios", "--type=1", "--file", latin.path(), "--json"}));
  EXPECT_EQ(document["structures"][0]["attributes"][0]["value"],
            json({{"text", "Caf\xC3\xA9"}, {"bytes", "436166e9"}}));
}

TEST(SmbiosCommand, MarksWhatTheFirmwareDidNotSay) {
  const TemporaryFile file(Text(SmbiosTable(2, 1)
                                    .Add(Structure(1, 7).Str("M").Str("P").Str("").Str(""))
                                    .Add(Structure(21, 7).Byte(1).Byte(2).Byte(3))
                                    .Add(Structure(21, 8).Byte(1).Byte(2).Byte(3))
                                    .Finish()));
  const json list = Document(Mira({"smbios", "--json", "--file", file.path()}))["structures"];
  ASSERT_EQ(list.size(), 4u) << "and the table's end";
  std::vector<bool> repeated;
  for (const json& structure : list) repeated.push_back(structure.contains("handleRepeated"));
  EXPECT_EQ(repeated, (std::vector<bool>{true, true, false, false}));
  for (const json& attribute : list[0]["attributes"]) {
    const std::string key = attribute["key"];
    const bool is_given =
        key == "Manufacturer" || key == "ProductName" || key == "Version" || key == "SerialNumber";
    EXPECT_EQ(attribute.contains("beyond"), !is_given) << attribute;
  }
  EXPECT_EQ(list[2]["bytes"], "1507080001020300");
  for (const json& attribute : list[2]["attributes"]) EXPECT_FALSE(attribute.contains("beyond"));
}

TEST(SmbiosCommand, SavesInBothForms) {
  const std::string table = Text(sim::Machine().GetProfile().firmware_table);
  const TemporaryFile dump;
  const Result saved = Mira({"--sim", "smbios", "--save", dump.path(), "--form=dump"});
  EXPECT_EQ(saved.status, 0);
  EXPECT_EQ(saved.out,
            "Saved " + std::to_string(table.size() - 8 + 32) + " bytes to " + dump.path() + ".\n");
  // DSP0134 5.2.2: the anchor, and the structures where the entry point says.
  EXPECT_EQ(dump.Content().substr(0, 5), "_SM3_");
  EXPECT_EQ(dump.Content().substr(32), table.substr(8));
  EXPECT_EQ(Mira({"smbios", "--file", dump.path()}).out, Mira({"--sim", "smbios"}).out);

  const TemporaryFile both;
  const json document =
      Document(Mira({"--sim", "smbios", "--type=0", "--save", both.path(), "--json"}));
  EXPECT_EQ(both.Content(), table);
  EXPECT_EQ(document["savedTo"], both.path());
  EXPECT_EQ(document["savedBytes"], table.size());
  EXPECT_EQ(document["whatIf"], false);
  EXPECT_FALSE(document.contains("table"));
  EXPECT_EQ(document["structures"].size(), 1u);
}

TEST(SmbiosCommand, WritesNoFileToSeeWhatWouldBe) {
  const std::string path = "not written.rsmb";
  std::filesystem::remove(path);
  const Result result = Mira({"--sim", "smbios", "--save", path, "--what-if"});
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.out.find("Would save "), std::string::npos);
  EXPECT_NE(result.out.find("Nothing was written."), std::string::npos);
  EXPECT_EQ(Document(Mira({"--sim", "smbios", "--save", path, "--what-if", "--json"}))["whatIf"],
            true);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(SmbiosCommand, FailsWhereTheFileCannotBeWritten) {
  const std::string path = "no such folder/pc.rsmb";
  const Result result = Mira({"--sim", "smbios", "--save", path});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("could not be written"), std::string::npos);
  EXPECT_EQ(result.out, "");
  const json document = Document(Mira({"--sim", "smbios", "--save", path, "--json"}));
  EXPECT_EQ(document["error"]["name"], "not-written");
}

TEST(SmbiosCommand, NamesWhatIsNoTable) {
  const TemporaryFile text("no table");
  const TemporaryFile cut(SystemTable("M").substr(0, 20));
  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* name;
  };
  const Case cases[] = {
      {{"smbios", "--file", text.path()}, 6, "no-table"},
      {{"inventory", "--file", text.path()}, 6, "no-table"},
      {{"smbios", "--file", "no such file"}, 3, "no-file"},
      {{"inventory", "--file", "no such file"}, 3, "no-file"},
      {{"--sim", "smbios", "--form=wrong"}, 2, "bad-argument"},
      {{"--sim", "smbios", "--handle=0xFFFE"}, 3, "no-structure"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    std::vector<std::string> arguments = c.arguments;
    arguments.push_back("--json");
    const Result result = Mira(arguments);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(Document(result)["error"]["name"], c.name);
  }
}

TEST(InventoryCommand, IsAScreenForPeople) {
  const auto memory = [](const char* slot, unsigned size) {
    Structure structure(17, static_cast<std::uint16_t>(0x1100 + size));
    structure.Word(0x1000).Word(0xFFFE).Word(64).Word(64).Word(size).Byte(9).Byte(0);
    structure.Str(slot).Str("").Byte(0x22).Word(0x0080).Word(size == 0 ? 0 : 5600);
    return structure.Str(size == 0 ? "" : "Maker").Str("").Str("").Str("").Byte(0);
  };
  SmbiosTable table(3, 5);
  table.Add(Structure(1, 0x100)
                .Str("Northfield Systems ")
                .Str("Aurora 14")
                .Str("")
                .Str("S1")
                .Bytes(std::vector<std::uint8_t>(16, 0xAB))
                .Byte(6)
                .Str("")
                .Str("Aurora"));
  table.Add(Structure(16, 0x1000).Byte(3).Byte(3).Byte(3).DWord(64 << 20).Word(0xFFFE).Word(2));
  table.Add(memory("DIMM A", 16384));
  table.Add(memory("DIMM B", 0));
  table.Add(Structure(11, 0xB00).Byte(1));
  const TemporaryFile file(Text(table.Finish()));
  const Result result = Mira({"inventory", "--file", file.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "Northfield Systems Aurora 14\n"
            "\n"
            "System\n"
            "  Serial number  S1\n"
            "  UUID           abababab-abab-abab-abab-abababababab\n"
            "  Family         Aurora\n"
            "  Started by     Power Switch\n"
            "\n"
            "Memory\n"
            "  Slot       Size  Type  Form      Speed  Manufacturer\n"
            "  DIMM A   16 GiB  DDR5  DIMM  5600 MT/s  Maker\n"
            "  DIMM B  (empty)\n"
            "  Total: 16 GiB in 1 of 2 slots; room for 64 GiB\n"
            "\n"
            "As SMBIOS 3.5 describes it.\n");
}

TEST(InventoryCommand, ReadsTheMachineAndSaysWhatIsMissing) {
  const json document = Document(Mira({"--sim", "inventory", "--json"}));
  EXPECT_EQ(document["complete"], true);
  EXPECT_EQ(document["system"]["manufacturer"], "Northfield Systems");
  EXPECT_EQ(document["memorySlots"].size(), 2u);
  for (const char* const profile : {"--sim=no-calling-interface", "--sim=standard-user"}) {
    EXPECT_EQ(Mira({profile, "inventory"}).status, 0) << profile;
  }

  const std::string whole = Text(sim::Machine().GetProfile().firmware_table);
  const TemporaryFile cut(whole.substr(0, 300));
  const Result result = Mira({"inventory", "--file", cut.path()});
  EXPECT_EQ(result.status, 6);
  EXPECT_NE(result.err.find("malformed, or cut short"), std::string::npos);
  EXPECT_NE(result.out.find("Firmware\n"), std::string::npos) << "what could be read is shown";
  const json rest = Document(Mira({"inventory", "--json", "--file", cut.path()}));
  EXPECT_EQ(rest["complete"], false);
  EXPECT_EQ(rest["error"]["name"], "malformed-table");
}

}  // namespace
}  // namespace mira::console
