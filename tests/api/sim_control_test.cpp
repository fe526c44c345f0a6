// The control of a simulated machine that programs share: faults, journal, loss of power, states in
// files, profiles; and what a program leaves behind that is killed.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "sim/journal_file.h"
#include "sim/machine.h"
#include "tests/support/console_program.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace mira {
namespace {

using test::Document;
using test::ProgramResult;
using Words = std::vector<std::string>;
using Json = nlohmann::json;

// A folder of kept machines, and the program that uses it.
class Machines {
 public:
  Machines() : folder_("machines of the control test") { Remove(); }
  ~Machines() { Remove(); }
  Machines(const Machines&) = delete;
  Machines& operator=(const Machines&) = delete;

  ProgramResult Run(Words words, const std::string& input = "") const {
    words.insert(words.begin(), machine_);
    return test::Mira(words, input, folder_);
  }
  Json Ask(Words words) const {
    words.emplace_back("--json");
    return Document(Run(std::move(words)));
  }
  int Status(const Words& words, const std::string& input = "") const {
    return Run(words, input).status;
  }
  void Use(const std::string& machine) { machine_ = "--sim=" + machine; }
  std::filesystem::path File(const char* name) const { return folder_ / name; }
  std::string Content(const char* name) const {
    std::ifstream in(File(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  void Remove() const {
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
  }
  std::filesystem::path folder_;
  std::string machine_ = "--sim";
};

const Words kReadToken = {"call", "0", "0", "--arg1", "0x70"};

Words AddFault(const Words& words) {
  Words all = {"sim", "fault", "add"};
  all.insert(all.end(), words.begin(), words.end());
  return all;
}

TEST(SharedFaults, AreCountedAcrossPrograms) {
  const Machines machines;
  EXPECT_EQ(machines.Ask(AddFault({"0/0", "--nth", "2", "--completion=-1"}))["fault"]["number"], 1);
  EXPECT_EQ(machines.Ask(AddFault(
                {"firmware 11/0", "--nth", "0", "--hresult", "0x80041001"}))["fault"]["number"],
            2);
  EXPECT_EQ(machines.Status(kReadToken), 0);
  EXPECT_EQ(machines.Status(kReadToken), 11) << "the second, in another program";
  EXPECT_EQ(machines.Status(kReadToken), 0);
  const Json faults = machines.Ask({"sim", "fault", "list"})["faults"];
  ASSERT_EQ(faults.size(), 2U);
  EXPECT_EQ(faults[0]["calls"], 3);
  EXPECT_EQ(faults[0]["hits"], 1);
  EXPECT_EQ(faults[1]["operation"], "firmware 11/0");

  EXPECT_EQ(machines.Status({"sim", "fault", "clear", "7"}), 3);
  EXPECT_EQ(machines.Ask({"sim", "fault", "clear", "1", "--what-if"})["cleared"], 1);
  EXPECT_EQ(machines.Ask({"sim", "fault", "clear", "1"})["cleared"], 1);
  EXPECT_EQ(machines.Ask({"sim", "fault", "list"})["faults"].size(), 1U);
  EXPECT_EQ(machines.Status({"sim", "reset", "--yes"}), 0);
  EXPECT_EQ(machines.Ask({"sim", "fault", "list"})["faults"].size(), 0U)
      << "a new machine has none";
}

TEST(SharedFaults, DoWhatTheySay) {
  struct Case {
    Words fault;
    int status;  // of the call that it hits; the next one succeeds
  };
  const Case cases[] = {
      {{"0/0", "--completion=-2"}, 4},
      {{"0/0", "--corrupt", "20=feffffff"}, 4},
      {{"0/0", "--delay", "1"}, 0},
      {{"0/0", "--truncate", "10"}, 9},
      {{"0/0", "--hresult", "0x80041001"}, 9},
      {{"0/0", "--lose", "connection"}, 9},
      {{"0/0", "--lose", "connection", "--moment", "after"}, 9},
      {{"IWbemServices::ExecMethod", "--lose", "connection"}, 9},
      {{"IWbemServices::ExecMethod", "--nth", "1", "--hresult", "0x80041001"}, 9},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.fault));
    const Machines machines;
    ASSERT_EQ(machines.Status(AddFault(c.fault)), 0);
    const ProgramResult hit = machines.Run(kReadToken);
    EXPECT_EQ(hit.status, c.status) << hit.out << hit.err;
    EXPECT_EQ(machines.Ask({"sim", "fault", "list"})["faults"][0]["hits"], 1);
    EXPECT_EQ(machines.Status(kReadToken), 0) << "once";
  }
  const Machines machines;
  for (const Words& bad :
       {Words{"0/0"}, Words{"0", "--completion=-1"}, Words{"Nothing", "--hresult", "1"},
        Words{"0/0", "--completion", "x"}, Words{"0/0", "--corrupt", "20"},
        Words{"0/0", "--corrupt", "20=f"}, Words{"SysFreeString", "--lose", "connection"},
        Words{"CoInitializeEx", "--truncate", "3"},
        Words{"0/0", "--lose", "connection", "--moment", "within"}}) {
    const ProgramResult result = machines.Run(AddFault(bad));
    EXPECT_EQ(result.status, 6) << testing::PrintToString(bad) << result.err;
  }
  EXPECT_EQ(machines.Status(AddFault({"0/0", "--completion=-1", "--what-if"})), 0);
  EXPECT_EQ(machines.Ask({"sim", "fault", "list"})["faults"].size(), 0U);
}

TEST(LossOfPower, LeavesOldOrNewValuesAndAMachineThatIsOff) {
  const Words set_tag = {"tag", "set", "asset", "NEW-1", "--yes"};
  const auto tag = [](const Machines& machines) {
    return machines.Ask({"tag", "show", "asset"})["tags"][0]["value"];
  };
  struct Case {
    const char* moment;
    const char* tag;
  };
  for (const Case& c :
       {Case{"before", "NF-004711"}, Case{"within", "NF-004711"}, Case{"after", "NEW-1"}}) {
    SCOPED_TRACE(c.moment);
    const Machines machines;
    ASSERT_EQ(machines.Status(AddFault({"11/1", "--lose", "power", "--moment", c.moment})), 0);
    EXPECT_NE(machines.Status(set_tag), 0);
    EXPECT_EQ(machines.Ask({"sim", "show"})["off"], true);
    EXPECT_EQ(machines.Status(kReadToken), 9) << "for every program";
    EXPECT_EQ(machines.Status({"sim", "reboot", "--yes"}), 0);
    EXPECT_EQ(machines.Ask({"sim", "show"})["off"], false);
    EXPECT_EQ(tag(machines), c.tag);
  }
}

TEST(LossOfPower, TearsOnlyWhatIsWrittenInParts) {
  const Machines machines;
  const auto battery = [&] {
    return machines.Ask({"battery", "show"})["batteries"][0]["charging"];
  };
  const Json before = battery();
  ASSERT_EQ(machines.Status(AddFault({"8/19", "--lose", "power", "--moment", "within"})), 0);
  EXPECT_NE(machines.Status(
                {"battery", "set", "--mode", "custom", "--start", "55", "--stop", "80", "--yes"}),
            0);
  ASSERT_EQ(machines.Status({"sim", "reboot", "--yes"}), 0);
  const Json after = battery();
  // Mode, start and stop are written one after the other: two of the three were.
  EXPECT_EQ(after["mode"], "custom") << after;
  EXPECT_EQ(after["startLimitPercent"], 55);
  EXPECT_EQ(after["stopLimitPercent"], before["stopLimitPercent"]);
}

TEST(LossOfPower, TakesAwayWhatIsWrittenAtARestart) {
  for (const bool is_orderly : {true, false}) {
    const Machines machines;
    EXPECT_EQ(machines.Status({"call", "7", "5", "--arg2", "1", "--arg3", "77"}), 0);
    Words reboot = {"sim", "reboot", "--yes"};
    if (!is_orderly) reboot.emplace_back("--power-loss");
    ASSERT_EQ(machines.Status(reboot), 0);
    EXPECT_EQ(machines.Ask({"call", "7", "5"})["results"][1], is_orderly ? 77 : 0);
  }
}

TEST(SharedJournal, ShowsWhatWentByAndNoSecret) {
  Machines machines;
  machines.Use("locked");
  ASSERT_EQ(
      machines.Status({"tag", "set", "asset", "NEW-1", "--password-stdin", "--yes"}, "setup1\n"),
      0);
  const Json entries = machines.Ask({"sim", "journal"})["entries"];
  int masked = 0;
  int methods = 0;
  for (const Json& entry : entries) {
    if (entry["kind"] == "operation") {
      methods += entry["operation"] == "IWbemServices::ExecMethod" && entry["result"] == 0 ? 1 : 0;
      continue;
    }
    for (const char* const words : {"arguments", "results"}) {
      for (const Json& word : entry[words]) masked += word.is_null() ? 1 : 0;
    }
  }
  EXPECT_GT(methods, 3);
  EXPECT_GE(masked, 2) << "the key as it was handed out, and as it came back";
  const std::string content = machines.Content("locked.journal");
  EXPECT_NE(content, "");
  for (const char* const secret : {"setup1", "NEW-1"}) {
    EXPECT_EQ(content.find(secret), std::string::npos);
  }

  // A machine's state has nothing of it.
  EXPECT_EQ(machines.Status({"sim", "save", machines.File("a.state").string()}), 0);
  EXPECT_EQ(machines.Ask({"sim", "journal", "--clear"})["entries"].size(), entries.size());
  EXPECT_EQ(machines.Ask({"sim", "journal"})["entries"].size(), 0U);
  EXPECT_EQ(machines.Status({"sim", "load", machines.File("a.state").string(), "--yes"}), 0);
  EXPECT_EQ(machines.Ask({"sim", "journal"})["entries"].size(), 0U);
}

TEST(SharedJournal, KeepsWithinItsBound) {
  const Machines machines;
  std::filesystem::create_directories(machines.File(""));
  sim::JournalFile journal(machines.File("laptop.journal"));
  for (std::uint16_t i = 0; i < 20000; ++i) {
    journal.Note(sim::JournalEntry{.cls = 1, .select = i});
    if (i % 100 == 99) journal.Flush();
  }
  EXPECT_LE(std::filesystem::file_size(machines.File("laptop.journal")), sim::JournalFile::kBound);
  // A line that a program has left unfinished is left out, and spoils no other.
  std::ofstream(machines.File("laptop.journal"), std::ios::binary | std::ios::app) << "{\"kind\"";
  journal.Note(sim::JournalEntry{.cls = 2});
  journal.Flush();
  const std::vector<sim::Node> entries = journal.Read();
  ASSERT_GT(entries.size(), 1000U);
  EXPECT_EQ(entries.back().Find("class")->Number(), 2);
  EXPECT_EQ(entries[entries.size() - 2].Find("select")->Number(), 19999);
}

TEST(SavedStates, AreComparedAndRestored) {
  Machines machines;
  const std::string file = "saved by the test.state";
  ASSERT_EQ(machines.Status({"sim", "save", file}), 0);
  EXPECT_EQ(machines.Status({"sim", "diff", file, "--check"}), 0);
  ASSERT_EQ(machines.Status({"tag", "set", "asset", "NEW-1", "--yes"}), 0);
  ASSERT_EQ(machines.Status({"password", "change", "--class", "9", "--new-password-stdin", "--yes"},
                            "Fresh1\n"),
            0);
  const ProgramResult differs = machines.Run({"sim", "diff", file, "--check", "--json"});
  EXPECT_EQ(differs.status, 12);
  EXPECT_NE(differs.out.find("NEW-1"), std::string::npos);
  EXPECT_EQ(differs.out.find("Fresh1"), std::string::npos);

  EXPECT_EQ(machines.Status({"sim", "load", file}), 8) << "asks";
  const ProgramResult dry = machines.Run({"sim", "load", file, "--what-if"});
  EXPECT_NE(dry.out.find("'NEW-1' -> 'NF-004711'"), std::string::npos) << dry.out;
  EXPECT_EQ(dry.out.find("Fresh1"), std::string::npos);
  EXPECT_EQ(machines.Status({"sim", "load", file, "--yes"}), 0);
  EXPECT_EQ(machines.Status({"sim", "diff", file, "--check"}), 0);
  EXPECT_EQ(machines.Ask({"sim", "load", file, "--yes"})["changed"], false);

  machines.Use("locked");
  EXPECT_EQ(machines.Status({"sim", "load", file, "--yes"}), 6) << "another machine's";
  std::filesystem::remove(file);
  EXPECT_EQ(machines.Status({"sim", "load", file, "--yes"}), 3);
}

TEST(ProfileCommands, ShowWhatAFileCanSay) {
  const Machines machines;
  const Json list = machines.Ask({"sim", "profile", "list"})["profiles"];
  EXPECT_EQ(list[0]["name"], "laptop");
  EXPECT_EQ(list.size(), sim::Profiles().size());
  for (const Json& profile : list) {
    const std::string name = profile["name"];
    const test::TemporaryFile file(machines.Run({"sim", "profile", "show", name}).out);
    const ProgramResult checked = machines.Run({"sim", "profile", "check", file.path()});
    EXPECT_EQ(checked.status, 0) << checked.err;
    EXPECT_NE(checked.out.find(name), std::string::npos);
  }
  const test::TemporaryFile bad("{\"name\": \"x\",\n\"drives\": [{\"handle\": 256}]}");
  const ProgramResult refused = machines.Run({"sim", "profile", "check", bad.path()});
  EXPECT_EQ(refused.status, 6);
  EXPECT_NE(refused.err.find("at '/drives/0/handle' (line 2)"), std::string::npos) << refused.err;
  EXPECT_EQ(machines.Status({"sim", "profile", "show", "toaster"}), 3);
}

// The members that the guide's steps put into a file, one after the other.
std::string GuidesProfile() {
  std::ifstream guide(MIRA_SOURCES "/docs/simulated-machine.md");
  std::string members;
  bool is_there = false;
  for (std::string line; std::getline(guide, line);) {
    if (line.starts_with("## ")) is_there = line.starts_with("## A profile from nothing");
    if (is_there && line.starts_with("        ")) members += line + "\n";
  }
  return "{" + members + "}";
}

TEST(ProfileCommands, TakeTheProfileThatTheGuideWrites) {
  const std::string file = "guide of the test.json";
  std::ofstream(file, std::ios::binary) << GuidesProfile();
  Machines machines;
  const ProgramResult checked = machines.Run({"sim", "profile", "check", file});
  EXPECT_EQ(checked.status, 0) << checked.err;
  machines.Use(file);
  EXPECT_EQ(machines.Ask({"tag", "show", "asset"})["tags"][0]["value"], "K-7");
  EXPECT_EQ(machines.Ask({"hdd", "list"})["drives"].size(), 2U);
  EXPECT_EQ(machines.Ask({"attr", "get", "Volume"})["attributes"][0]["value"], 60);
  EXPECT_NE(machines.Run({"boot", "show"}).out.find("0x0001,0x0000"), std::string::npos);
  EXPECT_NE(machines.Run({"smbios", "--type", "11"}).out.find("Kiosk series"), std::string::npos);
  EXPECT_EQ(machines.Ask({"log"})["entries"].size(), 1U);
  std::filesystem::remove(file);
}

#if !defined(_WIN32)

// Writes until it is killed, as many programs one after the other would.
[[noreturn]] void WriteForever(const Machines& machines) {
  for (std::uint32_t value = 0;; value = (value + 1) % 0xFFFF) {
    machines.Run({"call", "1", "0", "--arg1", "0x70", "--arg2", std::to_string(value)});
  }
}

TEST(KilledPrograms, LeaveTheOldOrTheNewState) {
  const char* const wanted = std::getenv("MIRA_TEST_KILLS");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 150;
  const Machines machines;
  std::mt19937 random(20260321);
  for (int i = 0; i < kills; ++i) {
    const pid_t program = fork();
    ASSERT_GE(program, 0);
    if (program == 0) WriteForever(machines);
    usleep(static_cast<useconds_t>(random() % 15000));
    kill(program, SIGKILL);
    int status = 0;
    waitpid(program, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const std::string content = machines.Content("laptop.machine");
    if (content.empty()) continue;  // the first write is still to come
    sim::Machine machine;
    sim::Node tree = sim::ParseJson(content);
    std::erase_if(tree.Items(), [](const sim::Node& member) { return member.Name() == "stamp"; });
    ASSERT_NO_THROW(machine.TakeState(tree)) << content;
  }
  EXPECT_EQ(machines.Status(kReadToken), 0);
  EXPECT_GT(machines.Ask({"sim", "journal"})["entries"].size(), 0U);
}

#endif

}  // namespace
}  // namespace mira
