// Boot lists, their order and the legacy priorities in the console.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "sim/machine.h"
#include "tests/support/console_program.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using nlohmann::json;
using test::Document;
using test::Mira;
using test::ProgramResult;

using Arguments = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

TEST(BootConsole, ListsAndShows) {
  EXPECT_EQ(Mira({"--sim", "boot", "list"}).out,
            "List  Kind    Name\n"
            "   0  legacy  Legacy Boot\n"
            "   1  UEFI    UEFI Boot\n");
  EXPECT_EQ(Document(Mira({"--sim", "boot", "list", "--json"})), json::parse(R"(
      {"schemaVersion": 1, "simulated": true, "complete": true, "lists":
       [{"list": 0, "name": "Legacy Boot", "kind": "legacy"},
        {"list": 1, "name": "UEFI Boot", "kind": "uefi"}]})"));

  const json document = Document(Mira({"--sim", "boot", "show", "uefi boot", "--json"}));
  ASSERT_EQ(document.at("lists").size(), 1u);
  const json& options = document["lists"][0]["options"];
  const std::vector<int> numbers = {0x03, 0x00, 0x01, 0x04, 0x10, 0x11, 0x12, 0x80, 0x81};
  ASSERT_EQ(options.size(), numbers.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    EXPECT_EQ(options[i].at("number"), numbers[i]) << "in boot order";
    EXPECT_EQ(options[i].at("active"), numbers[i] != 0x04 && numbers[i] != 0x81);
    EXPECT_EQ(options[i].at("paths").size(), 1u);
    EXPECT_EQ(options[i]["paths"][0].at("text"), options[i].at("path"));
  }
  EXPECT_EQ(options[0]["description"], "USB ディスク 💾");
  EXPECT_EQ(options[0]["path"], "PciRoot(0x0)/Pci(0x14,0x0)/USB(0x3,0x0)/USB(0x1,0x0)");
  EXPECT_EQ(options[1]["optionalData"], "57494e444f575300010000008800000078");
  EXPECT_EQ(options[8]["attributes"], 0x108);
  EXPECT_EQ(options[8]["path"],
            "VenHw(1428F772-B64A-441E-B8C3-9EBDD7F893C7,0200)/"
            "VenMsg(BC7838D2-0F82-4D60-8316-C068EE79D25B)/"
            "VenMedia(5023B95C-DB26-429B-A648-BD47664C8012,4E46)"
            ",/PciRoot(0x0)/Pci(0x14,0x0)/USB(0x4,0x0)");

  const ProgramResult legacy = Mira({"--sim", "boot", "show", "0x00"});
  EXPECT_EQ(legacy.status, 0);
  EXPECT_EQ(legacy.out.substr(0, legacy.out.find("0x0000 *")),
            "List 0 : Legacy Boot (legacy)\n"
            "Order : 0x0001,0x0000,0x0002,0x0003\n"
            "0x0001 * USB storage\n"
            "  Attributes : 0x00000001 (active)\n"
            "  Device : type 0x5, status 0x0100, 'USB storage device'\n");
  const ProgramResult all = Mira({"--sim", "boot", "show"});
  EXPECT_NE(all.out.find("0x0004   Optical drive\n  Attributes : 0x00000000 (not active)\n"),
            std::string::npos);
}

// Runs with a status and parts of what is said.
struct Case {
  Arguments arguments;
  int status;
  std::vector<std::string> said;
};

void Check(const std::vector<std::string>& command, const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    Arguments arguments = c.arguments;
    arguments.insert(arguments.begin() + 1, command.begin(), command.end());
    const ProgramResult result = Mira(arguments, "setup1\n");
    EXPECT_EQ(result.status, c.status);
    for (const std::string& part : c.said) {
      EXPECT_NE((result.out + result.err).find(part), std::string::npos)
          << part << "\n"
          << result.out << result.err;
    }
    arguments.push_back("--json");
    const ProgramResult as_json = Mira(arguments, "setup1\n");
    EXPECT_EQ(as_json.status, c.status);
    EXPECT_EQ(Document(as_json).contains("error"), c.status != 0);
  }
}

TEST(BootConsole, SetsAnOrderSafely) {
  const std::string rest = "0x0010,0x0011,0x0012,0x0080,0x0081";
  Check(
      {"boot", "order"},
      {
          {{"--sim", "0", "3,0x0002,0000,Boot0001", "--yes"},
           0,
           {"The boot order of list 0 (Legacy Boot) is now 3,0x0002,0000,Boot0001.",
            "It was 0x0001,0x0000,0x0002,0x0003.",
            "'mira --sim boot order 0 0x0001,0x0000,0x0002,0x0003' puts it back."}},
          {{"--sim", "UEFI Boot", "0,1,3,4," + rest, "--yes"}, 0, {"is now 0,1,3,4,0x0010"}},
          {{"--sim", "0", "internal disk, USB storage,CD/DVD,3", "--yes"},
           0,
           {"is now internal disk,USB storage,CD/DVD,3."}},
          {{"--sim", "0", "3", "Internal disk", "0x1", "2", "--yes"}, 0, {"Internal disk,0x1,2."}},
          {{"--sim", "0", "1,0,2,3"}, 0, {"is already 0x0001,0x0000,0x0002,0x0003."}},
          {{"--sim", "0", "3,2,1,0", "--what-if"},
           0,
           {"'0x0001,0x0000,0x0002,0x0003' -> '3,2,1,0'", "Nothing was written."}},
          {{"--sim", "0", "3,2,1,0"}, 8, {"--yes goes ahead"}},
          {{"--sim", "0", "007,2,0x2,0", "--yes"},
           6,
           {"Unknown: 007. Missing: 0x0001 (USB storage), 0x0003 (Onboard NIC). Doubled: 0x2."}},
          {{"--sim", "0", "007,2,1,0", "--what-if"}, 6, {"Unknown: 007."}},
          {{"--sim", "0", "1,Floppy,2", "--yes"}, 6, {"Unknown: Floppy."}},
          {{"--sim", "0", "1,Floppy,2", "--yes", "--force"}, 6, {"Unknown: Floppy."}},
          {{"--sim", "0", "007,2,1,0", "--yes", "--force"},
           11,
           {"The firmware refused the order."}},
          {{"--sim", "0", "1,0,2,3", "--yes", "--force"},
           0,
           {"is already 0x0001,0x0000,0x0002,0x0003."}},
          {{"--sim", "0", "1,,2", "--yes"}, 2, {"'' is not a valid option number"}},
          {{"--sim", "0", "65536", "--yes"}, 2, {"'65536' is not a valid option number"}},
          {{"--sim", "9", "1,2", "--yes"}, 3, {"The lists are: 0 (Legacy Boot), 1 (UEFI Boot)."}},
          {{"--sim", "Floppy", "1,2", "--yes"}, 3, {"There is no boot list 'Floppy'."}},
          {{"--sim=locked", "0", "3,2,1,0", "--yes"}, 5, {"A password is needed."}},
          {{"--sim=locked", "0", "3,2,1,0", "--yes", "--password-stdin"},
           0,
           {"is now 3,2,1,0.", "'mira --sim=locked boot order 0 0x0001,"}},
          {{"--sim=locked", "0", "3,2,1,0", "--what-if", "--password-stdin"}, 0, {"Nothing was"}},
          {{"--sim=locked", "0", "3,2,1,0", "--yes", "--password-stdin", "--class10"},
           5,
           {"The password was not accepted."}},
          {{"--sim=locked", "0", "3,2,1,0", "--what-if", "--password-stdin", "--class10"},
           5,
           {"The password was not accepted."}},
          {{"--sim=no-calling-interface", "0", "1,0"}, 4, {"no calling interface"}},
      });
  EXPECT_EQ(Document(Mira({"--sim", "boot", "order", "0", "3,2,01,0", "--yes", "--json"})),
            json::parse(R"json({"schemaVersion": 1, "simulated": true, "list": 0,
                "name": "Legacy Boot", "kind": "legacy", "given": ["3", "2", "01", "0"],
                "changed": true, "whatIf": false, "changes": [
                  {"target": "boot order of list 0 (Legacy Boot)", "before": [1, 0, 2, 3],
                   "after": [3, 2, 1, 0], "outcome": "changed"}]})json"));
  const json error = Document(
      Mira({"--sim", "boot", "order", "0", "007,2,0x2,Floppy", "--yes", "--json"}))["error"];
  EXPECT_EQ(error["unknown"], json::parse(R"([7, "Floppy"])"));
  EXPECT_EQ(error["missing"], json::parse("[0, 1, 3]"));
  EXPECT_EQ(error["doubled"], json::parse("[2]"));
}

TEST(BootConsole, PutsOneOptionFirst) {
  Check({"boot", "first"},
        {
            {{"--sim", "windows boot manager", "--yes"},
             0,
             {"list 1 (UEFI Boot) is now 0x0000,0x0003,0x0001,0x0004,0x0010,0x0011,0x0012,0x0080,"
              "0x0081.",
              "'mira --sim boot order 1 0x0003,0x0000,0x0001"}},
            {{"--sim", "0x0010", "--yes"}, 0, {"is now 0x0010,0x0003,0x0000,"}},
            {{"--sim", "Boot0002", "--yes"}, 0, {"list 0 (Legacy Boot) is now 0x0002,0x0001,"}},
            {{"--sim", "3", "--list", "legacy boot", "--yes"},
             0,
             {"is now 0x0003,0x0001,0x0000,0x0002."}},
            {{"--sim", "USB storage"}, 0, {"is already 0x0001,0x0000,0x0002,0x0003."}},
            {{"--sim", "3", "--yes"},
             6,
             {"several lists: 0 (Legacy Boot), 1 (UEFI Boot).", "--list"}},
            {{"--sim", "Floppy", "--yes"}, 3, {"There is no boot option 'Floppy'."}},
            {{"--sim", "2", "--list", "1", "--yes"}, 3, {"There is no boot option '2'."}},
            {{"--sim", "CD/DVD"}, 8, {"--yes goes ahead"}},
            {{"--sim=locked", "CD/DVD", "--yes"}, 5, {"A password is needed."}},
        });
}

// A machine that several runs of the program see as a real one.
class SharedBoot : public testing::Test {
 protected:
  json Run(Arguments arguments, int status = 0) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    arguments.emplace_back("--json");
    const ProgramResult result = Mira(arguments);
    EXPECT_EQ(result.status, status) << result.out;
    return Document(result);
  }
  json OrderOf(const std::string& list) { return Run({"boot", "show", list})["lists"][0]["order"]; }
  void Cut(const char* operation, std::size_t size) {
    machine_.GetFaults().Add({.operation = operation, .nth = 2, .corrupt = [size](Bytes& reply) {
                                // The data area states fewer bytes than its entries need.
                                reply[44] = static_cast<std::uint8_t>(size - 48);
                                reply[45] = reply[46] = reply[47] = 0;
                              }});
  }

  sim::Machine machine_{*sim::FindProfile("laptop")};
  sim::Session session_{machine_};
};

TEST_F(SharedBoot, OrdersCanBePutBackByTheSentenceThatSaysSo) {
  const std::string said = Mira({"boot", "order", "0", "3,2,1,0", "--yes"}).out;
  EXPECT_EQ(OrderOf("0"), json::parse("[3, 2, 1, 0]"));
  const std::string start = "'mira boot order 0 ";
  const std::size_t at = said.find(start);
  ASSERT_NE(at, std::string::npos) << said;
  const std::size_t from = at + start.size();
  Run({"boot", "order", "0", said.substr(from, said.find('\'', from) - from), "--yes"});
  EXPECT_EQ(OrderOf("0"), json::parse("[1, 0, 2, 3]"));
}

TEST_F(SharedBoot, OrdersAreReadBack) {
  // Accepted, and not kept.
  machine_.GetFaults().Add({.operation = "firmware 3/12", .nth = 1, .completion = 0});
  json document = Run({"boot", "order", "0", "3,2,1,0", "--yes"}, 11);
  EXPECT_EQ(document["changed"], false);
  EXPECT_EQ(document["changes"][0]["outcome"], "failed");
  EXPECT_EQ(document["changes"][0]["after"], json::parse("[1, 0, 2, 3]"));
  EXPECT_EQ(document["changes"][0]["wanted"], json::parse("[3, 2, 1, 0]"));
  // Kept, and the answer lost.
  machine_.GetFaults().Clear();
  machine_.GetFaults().Add(
      {.operation = "firmware 3/12", .nth = 1, .corrupt = [](Bytes& reply) { reply.resize(20); }});
  document = Run({"boot", "order", "0", "3,2,1,0", "--yes"});
  EXPECT_EQ(document["changed"], true);
  EXPECT_EQ(OrderOf("0"), json::parse("[3, 2, 1, 0]"));
}

TEST_F(SharedBoot, CutAnswersAreNoEmptyLists) {
  Cut("firmware 3/9", 49);
  EXPECT_EQ(Run({"boot", "list"}), json::parse(R"({"schemaVersion": 1, "lists": [],
      "complete": false})"));
  machine_.GetFaults().Clear();
  Cut("firmware 3/9", 49);
  EXPECT_EQ(Mira({"boot", "list"}).out,
            "(The firmware's answer is malformed behind these lists.)\n");
  for (const std::size_t size : {50u, 52u, 60u}) {
    machine_.GetFaults().Clear();
    Cut("firmware 3/11", size);
    const json list = Run({"boot", "show", "0"})["lists"][0];
    EXPECT_EQ(list["complete"], false) << size;
    EXPECT_EQ(list["options"].size(), 0u);
    machine_.GetFaults().Clear();
    Cut("firmware 3/11", size);
    EXPECT_EQ(Run({"boot", "order", "0", "0,1,2,3", "--yes"}, 1)["error"]["name"],
              "malformed-answer");
  }
}

TEST_F(SharedBoot, LegacyPrioritiesAreShownAndSet) {
  const ProgramResult shown = Mira({"boot", "legacy"});
  EXPECT_EQ(shown.out,
            "Device  What       Type    Status\n"
            "     0  floppy     0x0001  0x0000\n"
            "     1  hard disk  0x0002  0x0900\n"
            "     2  CD-ROM     0x0003  0x0100\n"
            "     3  network    0x0006  0x0100\n"
            "\n"
            "IPL priority : 1 (hard disk), 0 (floppy), 2 (CD-ROM), 3 (network)\n"
            "BCV priority : 1 (hard disk), 2 (CD-ROM), 0 (floppy), 3 (network)\n");
  json document = Run({"boot", "legacy", "set", "--ipl", "Network,0x1,floppy,2", "--yes"});
  EXPECT_EQ(document["changes"], json::parse(R"([
      {"target": "IPL priority", "before": [1, 0, 2, 3], "after": [3, 1, 0, 2],
       "outcome": "changed"},
      {"target": "BCV priority", "before": [1, 2, 0, 3], "after": [1, 2, 0, 3],
       "outcome": "already-so"}])"));
  document = Run({"boot", "legacy", "show"});
  EXPECT_EQ(document["iplPriority"], json::parse("[3, 1, 0, 2]"));
  EXPECT_EQ(document["bcvPriority"], json::parse("[1, 2, 0, 3]"));
  EXPECT_EQ(document["devices"][3], json::parse(R"({"device": 3, "type": 6, "typeName": "network",
      "statusFlags": 256, "bootHandler": 3355443203, "descriptionAddress": 3355443264,
      "expansion": 7942})"));
  const std::string said =
      Mira({"boot", "legacy", "set", "--bcv", "0,1,2,3", "--ipl", "1,0,2,3", "--yes"}).out;
  EXPECT_NE(said.find("'mira boot legacy set --ipl 3,1,0,2 --bcv 1,2,0,3' puts it back."),
            std::string::npos)
      << said;
  EXPECT_EQ(Run({"boot", "legacy"})["bcvPriority"], json::parse("[0, 1, 2, 3]"));
}

TEST(LegacyConsole, RefusesWrongOrders) {
  Check({"boot", "legacy", "set"},
        {
            {{"--sim", "--yes"}, 2, {"Nothing to set"}},
            {{"--sim", "--ipl", "0,1,2", "--yes"}, 6, {"Missing: 3 (network)."}},
            {{"--sim", "--ipl", "0,1,2,usb", "--yes"}, 6, {"Unknown: usb. Missing: 3"}},
            {{"--sim", "--bcv", "0,1,2,2", "--yes"}, 6, {"Doubled: 2."}},
            {{"--sim", "--bcv", "0,1,2,2", "--force", "--yes"}, 11, {"refused the order"}},
            {{"--sim", "--bcv", "0,1,2", "--force", "--yes"}, 6, {"the same length"}},
            {{"--sim", "--ipl", "256,1,2,3", "--yes"}, 2, {"'256' is not a valid device number"}},
            {{"--sim", "--ipl", "1,0,2,3"}, 0, {"Nothing to change."}},
            {{"--sim", "--ipl", "3,1,0,2"}, 8, {"--yes goes ahead"}},
            {{"--sim", "--ipl", "3,1,0,2", "--what-if"}, 0, {"'1, 0, 2, 3' -> '3, 1, 0, 2'"}},
            {{"--sim=locked", "--ipl", "3,1,0,2", "--yes"}, 5, {"A password is needed."}},
            {{"--sim=locked", "--ipl", "3,1,0,2", "--yes", "--password-stdin"}, 0, {"puts it"}},
            {{"--sim=no-calling-interface", "--ipl", "0"}, 4, {"no calling interface"}},
        });
}

}  // namespace
}  // namespace mira
