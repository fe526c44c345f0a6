// The documents of every command on every simulated machine. What they look like is checked against
// their schemas by tools/check_schemas.py, which reads the file that is written here.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "console/commands.h"
#include "facade/mira_intf.h"
#include "sim/control.h"
#include "sim/machine.h"
#include "tests/support/command_line.h"
#include "tests/support/console_program.h"

namespace mira::console {
namespace {

using test::Mira;
using test::ProgramResult;

struct Row {
  const char* command;
  // The first line runs on every machine, the others on those that have most to show.
  std::vector<const char*> lines;  // what follows "<" is the input, line by line with "/" between
};

const std::vector<Row>& Rows() {
  static const std::vector<Row> rows = {
      {"info", {"info", "info --from machine.snapshot"}},
      {"smbios",
       {"smbios", "smbios --attributes --type 17", "smbios --handle 0xFFFF",
        "smbios --type 0 --form=dump", "smbios --type 300", "smbios --save saved.tmp",
        "smbios --save saved.tmp --what-if", "smbios --file table.tmp", "smbios --file cut.tmp",
        "smbios --file none.tmp"}},
      {"inventory",
       {"inventory", "inventory --file table.tmp", "inventory --file cut.tmp",
        "inventory --file none.tmp"}},
      {"tokens", {"tokens", "tokens --from machine.snapshot"}},
      {"call",
       {"call 0 0 --arg1 0x70", "call 0 0 --arg1 1", "call 31 0",
        "call 1 0 --arg1 0x70 --arg2 7 --key-arg 3 --password-stdin --what-if < setup1",
        "call 1 0 --arg1 0x70 --arg2 7 --what-if"}},
      {"password.status", {"password status", "password status --from machine.snapshot"}},
      {"password.verify",
       {"password verify --class 9 --password-stdin < setup1",
        "password verify --class 10 --password-stdin < wrong", "password verify --class 11"}},
      {"password.change",
       {"password change --class 9 --new-password-stdin --yes < Fresh1",
        "password change --class 9 --new-password-stdin --what-if < Fresh1",
        "password change --class 9 --new-password-stdin < Fresh1",
        "password change --class 9 --remove --password-stdin --yes < setup1"}},
      {"hdd.list", {"hdd list"}},
      {"hdd.verify",
       {"hdd verify 1 --password-stdin --admin-password-stdin < drive1/setup1",
        "hdd verify 1 --password-stdin < drive1", "hdd verify 200 --password-stdin < drive1"}},
      {"hdd.set",
       {"hdd set 1 --new-password-stdin --yes < drive1",
        "hdd set 1 --new-password-stdin --what-if < drive1"}},
      {"hdd.clear",
       {"hdd clear 1 --password-stdin --yes < drive1",
        "hdd clear 1 --password-stdin --admin-password-stdin --yes < drive1/setup1"}},
      {"tag.show",
       {"tag show", "tag show asset", "tag show extended --command 0", "tag show colour"}},
      {"tag.set",
       {"tag set asset NF-1 --yes", "tag set asset a-text-that-is-too-long --what-if",
        "tag set extended Desk --yes", "tag set service X",
        "tag set asset NF-1 --password-stdin --yes < setup1"}},
      {"id.mac.show", {"id mac", "id mac show"}},
      {"id.eppid.show", {"id eppid show"}},
      {"id.image-server.show", {"id image-server show"}},
      {"id.thin-client.show", {"id thin-client show"}},
      {"id.mac.set", {"id mac set 02:A1:B2:C3:D4:E6 --yes", "id mac set nonsense"}},
      {"id.eppid.set", {"id eppid set CN0ABCDE1234567890ABA00 --yes", "id eppid set short"}},
      {"id.image-server.set", {"id image-server set images.example --yes"}},
      {"id.thin-client.set", {"id thin-client set lobby --what-if"}},
      {"log", {"log", "log --from machine.snapshot", "log messages", "log scan-codes", "log book"}},
      {"thermal", {"thermal", "thermal --from machine.snapshot"}},
      {"attr.list",
       {"attr list", "attr list --changed-from-default", "attr list --pending", "attr list usb"}},
      {"attr.get", {"attr get WakeOnLan", "attr get BootOrder FanFloor", "attr get Nothing"}},
      {"attr.set",
       {"attr set FanFloor 30 --yes", "attr set FanFloor 30 --what-if",
        "attr set FanFloor 3000 --yes", "attr set Nothing 1",
        "attr set FanFloor=30 WakeOnLan=LAN --yes",
        "attr set OwnerPassword --value-stdin --yes < Fresh1"}},
      {"attr.reset", {"attr reset FanFloor --yes", "attr reset --all --what-if"}},
      {"attr.export", {"attr export -", "attr export saved.tmp"}},
      {"attr.import",
       {"attr import attributes.tmp --yes", "attr import attributes.tmp --what-if",
        "attr import attributes.tmp --check", "attr import none.tmp"}},
      {"attr.diff", {"attr diff", "attr diff --from machine.snapshot"}},
      {"apply",
       {"apply state.tmp --yes --write-secrets --secrets-file secrets.tmp",
        "apply state.tmp --check", "apply state.tmp --what-if", "apply none.tmp",
        "apply wrong.tmp --yes", "apply wrong.tmp --yes --partial", "apply state.tmp"}},
      {"boot.list", {"boot list"}},
      {"boot.show",
       {"boot show", "boot show --from machine.snapshot", "boot show 0", "boot show 77"}},
      {"boot.order",
       {"boot order 0 3,2,1,0 --yes", "boot order 0 3,2,1,0 --what-if", "boot order 0 3,3",
        "boot order 0 3,2,1,0 --force --yes"}},
      {"boot.first", {"boot first 2 --list 0 --yes", "boot first 2 --what-if", "boot first 200"}},
      {"boot.legacy.show", {"boot legacy show"}},
      {"boot.legacy.set",
       {"boot legacy set --ipl 1,0,2,3 --yes", "boot legacy set --ipl 1,1 --yes"}},
      {"boot.decode",
       {"boot decode option.tmp", "boot decode none.tmp", "boot decode --path - < 7fff0400"}},
      {"boot.encode", {"boot encode PciRoot(0x0)/Pci(0x1F,0x2)", "boot encode PciRoot("}},
      {"battery.show",
       {"battery show", "battery show --battery 2", "battery show --battery 9",
        "battery show --battery all"}},
      {"battery.set",
       {"battery set --mode standard --yes", "battery set --mode custom --start 50 --stop 80 --yes",
        "battery set --mode express --what-if", "battery set --start 90 --yes",
        "battery set --day weekdays=08:00-17:30 --yes"}},
      {"snapshot",
       {"snapshot", "snapshot saved.tmp", "snapshot --from machine.snapshot", "snapshot --redact",
        "snapshot --from none.tmp"}},
      {"report",
       {"report", "report --html saved.tmp", "report --from machine.snapshot", "report --redact",
        "report --html saved.tmp --from none.tmp"}},
      {"compare",
       {"compare machine.snapshot live", "compare live live --all", "compare none.tmp live",
        "compare machine.snapshot live --check --only attributes",
        "compare wanted.tmp machine.snapshot"}},
      {"state.from", {"state from machine.snapshot", "state from none.tmp"}},
      {"sim.show", {"sim show"}},
      {"sim.reboot", {"sim reboot --yes", "sim reboot --what-if", "sim reboot"}},
      {"sim.reset", {"sim reset --yes", "sim reset --what-if"}},
      {"sim.fault.add",
       {"sim fault add 11/0 --completion=-1", "sim fault add 1/0 --lose power --moment within",
        "sim fault add nothing --nth 2", "sim fault add 1/0", "sim fault add 0/0 --corrupt 20"}},
      {"sim.fault.list", {"sim fault list"}},
      {"sim.fault.clear", {"sim fault clear", "sim fault clear 3"}},
      {"sim.journal", {"sim journal", "sim journal --clear"}},
      {"sim.save", {"sim save saved.tmp", "sim save saved.tmp --what-if"}},
      {"sim.load", {"sim load saved.tmp --yes", "sim load none.tmp --what-if"}},
      {"sim.diff", {"sim diff saved.tmp", "sim diff none.tmp", "sim diff saved.tmp --check"}},
      {"sim.profile.from-snapshot",
       {"sim profile from-snapshot machine.snapshot", "sim profile from-snapshot none.tmp"}},
      {"sim.profile.list", {"sim profile list"}},
      {"sim.profile.show", {"sim profile show", "sim profile show nothing"}},
      {"sim.profile.check", {"sim profile check machine.tmp", "sim profile check none.tmp"}},
      {"completion.bash",
       {"completion bash --from attributes.tmp", "completion bash --from none.tmp"}},
      {"completion.powershell", {"completion powershell"}},
      {"completion.man", {"completion man"}},
      {"completion.names",
       {"completion names attr.list", "completion names boot.list", "completion names tokens"}},
  };
  return rows;
}

bool IsThorough(const std::string& profile) { return profile == "laptop" || profile == "locked"; }

// The files that command lines name, for a scope.
class Files {
 public:
  Files() {
    const sim::Machine machine;
    const auto& bytes = machine.GetProfile().firmware_table;
    const std::string table(bytes.begin(), bytes.end());
    Write("table.tmp", table);
    Write("cut.tmp", table.substr(0, 300));
    Write("none.tmp", "no table");
    Write("attributes.tmp", R"({"attributes": [{"name": "FanFloor", "value": 30}]})");
    Write("state.tmp", R"({"attributes": {"FanFloor": 30, "Usb*": {"value": "Enabled", "when":
          {"system.productName": "No such*"}}, "OwnerPassword": {"secret": "owner", "optional": true}},
          "boot": {"UEFI Boot": {"first": ["Windows Boot Manager"], "optional": true}},
          "tags": {"asset": "NF-004712"}})");
    Write("wrong.tmp", R"({"attributes": {"FanFloor": 30, "Nothing": 1, "WakeOnLan": true}})");
    Write("secrets.tmp", R"({"password": "setup1", "owner": "Fresh1"})");
    Write("machine.tmp", R"({"name": "kiosk", "base": "locked"})");
    // Attributes, the paths' length, a description, PciRoot(0x0), the path's end.
    Write("option.tmp", "01000000 1000 4400690073006b000000 02010c00d041030a00000000 7fff0400");
    Write("machine.snapshot", Mira({"--sim=workstation", "snapshot"}).out);
    Write("wanted.tmp", R"({"kind": "state", "attributes": {"FanFloor": 30, "Usb*": "Enabled"},
                            "tags": {"asset": "N-1"}, "boot": {"UEFI Boot": {"first": ["X"]}}})");
    names_.emplace_back("saved.tmp");
  }
  ~Files() {
    std::error_code error;
    for (const std::string& name : names_) std::filesystem::remove(name, error);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;

 private:
  void Write(const char* name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
    names_.emplace_back(name);
  }
  std::vector<std::string> names_;
};

ProgramResult RunLine(const std::string& machine, const char* line) {
  test::CommandLine taken = test::TakeApart(line);
  std::string input = taken.input_file.empty() ? "" : taken.input_file + "\n";
  for (char& c : input) {
    if (c == '/') c = '\n';
  }
  if (!machine.empty()) taken.words.insert(taken.words.begin(), machine);
  taken.words.emplace_back("--json");
  return Mira(taken.words, input);
}

// A machine that somebody has worked with, to be controlled.
class UsedMachine : public sim::ControlHost {
 public:
  UsedMachine() : machine_(sim::MakeNamed("laptop", {})) {
    const sim::Session session(machine_->GetMachine());
    CMiraIntf mira(std::cerr);
    EXPECT_EQ(mira.Init(false, false, false), STATUS_SUCCESS);
  }
  sim::MachinePtr Machine() override { return machine_; }
  void LetGo(bool) override {}
  bool WhileStill(const std::function<void()>& work) override {
    work();
    return true;
  }

 private:
  sim::MachinePtr machine_;
};

// Requests of mira_sim_control, and their answers.
void WriteControlDocuments(std::ostream& all) {
  constexpr const char* kRequests[] = {
      R"({"command": "machine.show"})",
      R"({"command": "fault.add", "operation": "11/0", "nth": 0, "completion": -1, "delayMs": 5})",
      R"({"command": "fault.add", "operation": "CoInitializeEx", "hresult": "0x80004005"})",
      R"({"command": "fault.add", "operation": "firmware", "loses": "power", "moment": "after"})",
      R"({"command": "fault.add", "operation": "5/4", "truncate": 40, "overwriteAt": 20,
          "overwrite": "fdffffff"})",
      R"({"command": "fault.list"})",
      R"({"command": "fault.list", "number": 2})",
      R"({"command": "fault.clear", "number": 2})",
      R"({"command": "fault.clear", "number": 2})",
      R"({"command": "fault.clear"})",
      R"({"command": "journal.read"})",
      R"({"command": "journal.read", "class": 10, "select": 11, "clear": true})",
      R"({"command": "journal.read", "operation": "IWbemServices::ExecMethod"})",
      R"({"command": "journal.clear"})",
      R"({"command": "live"})",
      R"({"command": "operations"})",
      R"({"command": "machine.reboot", "powerLoss": true})",
      R"({"command": "machine.forget", "force": true})",
      R"({"command": "machine.choose", "machine": "lapdog"})",
      R"({"command": "machine.choose", "machine": "locked", "force": true})",
      R"({"command": "machine.choose", "machine": null})",
  };
  UsedMachine machine;
  const auto write = [&all](const char* schema, const char* request, const std::string& text) {
    const client::Json row = {
        {"schema", schema}, {"line", request}, {"document", client::Json::parse(text)}};
    all << row.dump() << '\n';
  };
  for (const char* const request : kRequests) {
    write("control-request", request, request);
    write("control", request, sim::Control(request, machine).document);
  }
}

TEST(Documents, AreThereForEveryCommandOnEveryMachine) {
  const Files files;
  const char* const named = std::getenv("MIRA_RESULTS");
  const std::filesystem::path results = named != nullptr ? named : "results";
  std::filesystem::create_directories(results);
  std::ofstream all(results / "documents.jsonl", std::ios::binary);
  std::set<std::string> succeeded;
  const auto check = [&](const char* command, const std::string& machine, const char* line) {
    SCOPED_TRACE(machine + " " + line);
    const ProgramResult result = RunLine(machine, line);
    EXPECT_EQ(result.err, "");
    const auto document = client::Json::parse(result.out, nullptr, false);
    ASSERT_TRUE(document.is_object()) << result.out.substr(0, 300);
    const auto error = document.find("error");
    EXPECT_EQ(result.status, error == document.end() ? 0 : error->at("code").get<int>());
    if (result.status == 0) succeeded.insert(command);
    const client::Json row = {
        {"schema", command}, {"line", machine + " " + line}, {"document", document}};
    all << row.dump() << '\n';
  };
  for (const Row& row : Rows()) {
    for (const sim::Profile& profile : sim::Profiles()) {
      const std::size_t count = IsThorough(profile.name) ? row.lines.size() : 1;
      for (std::size_t i = 0; i < count; ++i) {
        check(row.command, "--sim=" + profile.name, row.lines[i]);
      }
    }
  }
  check("info", "", "info");
  WriteControlDocuments(all);
  for (const Row& row : Rows()) {
    EXPECT_EQ(succeeded.count(row.command), 1U) << row.command << " succeeded on no machine";
  }
}

TEST(Documents, HaveASchemaEach) {
  std::set<std::string> expected;
  for (const client::Command& command : Commands()) expected.insert(command.name);
  std::set<std::string> tried;
  for (const Row& row : Rows()) tried.insert(row.command);
  EXPECT_EQ(tried, expected) << "a command is not tried here";

  std::set<std::string> schemas;
  constexpr std::string_view kEnd = ".schema.json";
  for (const auto& entry : std::filesystem::directory_iterator(MIRA_SOURCES "/docs/json")) {
    const std::string name = entry.path().filename().string();
    if (name.ends_with(kEnd)) schemas.insert(name.substr(0, name.size() - kEnd.size()));
  }
  // What is no command's document.
  expected.insert({"common", "profile", "state", "control", "control-request"});
  EXPECT_EQ(schemas, expected);
}

}  // namespace
}  // namespace mira::console
