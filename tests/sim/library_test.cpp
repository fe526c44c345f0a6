// The simulator's build of the C++ classes below an unmodified host: how it finds its machine, and
// how a program that tests the host controls it.

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "facade/mira_intf.h"
#include "mira_sim_gtest.h"

namespace {

using mira_sim::Answer;
using mira_sim::Ask;
using mira_sim::Fault;
using mira_sim::Machine;

// Sets a variable for a scope, in which the process has no machine of its own choice.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    Set(value);
    EXPECT_EQ(Ask(R"({"command": "machine.choose", "machine": null})").status, MIRA_SIM_DONE);
  }
  ~Variable() {
    Set("");
    EXPECT_EQ(Ask(R"({"command": "machine.choose", "machine": null})").status, MIRA_SIM_DONE);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  void Set(const std::string& value) const {
#if defined(_WIN32)
    _putenv_s(name_, value.c_str());
#else
    setenv(name_, value.c_str(), 1);
#endif
  }
  const char* name_;
};

struct Start {
  Status status = STATUS_FAILURE;
  std::string diagnostics;
};

// A host that starts, reads the asset tag and ends.
Start RunHost() {
  std::ostringstream diag;
  CMiraIntf mira(diag);
  Start start;
  start.status = mira.Init(false, false, false);
  if (start.status == STATUS_SUCCESS) {
    CSimpleTokenData request;
    request.Arg1 = 0x70;
    start.status = mira.ExecuteDACI(0, 0, request, "", PwdInfo::PWD_NONE);
    if (request.Res1 != 0) start.status = STATUS_FAILURE;
  }
  start.diagnostics = diag.str();
  return start;
}

TEST(SimulatedLibrary, TellsWhyItHasNoMachine) {
  struct Case {
    const char* machine;
    const char* reason;
    const char* error;
  };
  const Case cases[] = {
      {"", "The environment variable MIRA_SIM names no machine; 'real' is this PC.\n",
       "no-machine"},
      {"lapdog", "There is no simulated machine called 'lapdog'.\n", "unknown-profile"},
      {"missing.json", "'missing.json' describes no simulated machine: ", "bad-profile"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.machine);
    const Variable variable("MIRA_SIM", c.machine);
    const Start start = RunHost();
    EXPECT_EQ(start.status, STATUS_NOT_ADMIN);
    EXPECT_TRUE(start.diagnostics.starts_with(c.reason)) << start.diagnostics;
    const Answer live = Ask(R"({"command": "live"})");
    EXPECT_NE(live.status, MIRA_SIM_DONE);
    EXPECT_NE(live.document.find(c.error), std::string::npos) << live.document;
  }
  const Variable variable("MIRA_SIM", "laptop");
  EXPECT_EQ(RunHost().status, STATUS_SUCCESS) << "it is looked for again";
}

TEST(SimulatedLibrary, IsOnTheMachineOfTheEnvironment) {
  {
    const Variable variable("MIRA_SIM", "standard-user");
    EXPECT_EQ(RunHost().status, STATUS_NOT_ADMIN);
    EXPECT_NE(Ask(R"({"command": "machine.show"})").document.find("\"standard-user\""),
              std::string::npos);
  }
  {
    const Variable variable("MIRA_SIM", "real");
    std::ostringstream diag;
    const CMiraIntf mira(diag);
    const Answer shown = Ask(R"({"command": "machine.show"})");
    EXPECT_EQ(shown.status, MIRA_SIM_NOT_FOUND) << shown.document;
    EXPECT_NE(shown.document.find("works on this PC"), std::string::npos);
  }
}

TEST(SimulatedLibrary, KeepsItsMachineWhereItIsTold) {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / "machines of the library's test";
  std::filesystem::remove_all(folder);
  const std::string write = R"({"command": "machine.reboot"})";
  {
    const Variable state("MIRA_SIM_STATE", folder.string());
    const Variable variable("MIRA_SIM", "laptop");
    ASSERT_EQ(Ask(write).Number("boots"), 2);
    EXPECT_EQ(RunHost().status, STATUS_SUCCESS);
    EXPECT_TRUE(std::filesystem::exists(folder / "laptop.machine"));
    EXPECT_EQ(Ask(R"({"command": "machine.forget"})").status, MIRA_SIM_DONE);
    EXPECT_EQ(Ask(R"({"command": "machine.show"})").Number("boots"), 2) << "it is in the file";
    EXPECT_GT(Ask(R"({"command": "journal.read"})").Number("count"), 0);
    EXPECT_EQ(Ask(R"({"command": "fault.add", "operation": "0/0", "completion": -1})").status,
              MIRA_SIM_DONE);
    EXPECT_EQ(RunHost().status, STATUS_FAILURE);
    EXPECT_EQ(Ask(R"({"command": "fault.list"})").Number("hits"), 1);
  }
  const Variable variable("MIRA_SIM", "laptop");
  EXPECT_EQ(Ask(R"({"command": "machine.show"})").Number("boots"), 1) << "with the process alone";
  std::filesystem::remove_all(folder);
}

TEST(SimulatedLibrary, IsControlledByATest) {
  {
    Machine machine(R"({"name": "kiosk", "tokens": [{"id": 1, "location": 112, "value": 9}]})");
    EXPECT_EQ(RunHost().status, STATUS_SUCCESS);
    EXPECT_EQ(machine.Calls(0, 0), 1);
    EXPECT_GT(machine.Operations("IWbemServices::ExecMethod"), 0);
    EXPECT_NE(machine.Journal().find("\"recordLength\": 44"), std::string::npos);
    const int refused = machine.Add(Fault("0/0").Completion(-1));
    const int second = machine.Add(Fault("0/0").Nth(2).Result(0x80041001));
    EXPECT_EQ(RunHost().status, STATUS_FAILURE);
    EXPECT_EQ(RunHost().status, STATUS_FAILURE);
    EXPECT_EQ(machine.Hits(refused), 1);
    EXPECT_EQ(machine.Hits(second), 1);
    EXPECT_EQ(machine.Calls(0, 0), 3) << "also the one that a fault cut short";
    EXPECT_EQ(RunHost().status, STATUS_SUCCESS);
    machine.Add(Fault("0/0").Nth(0).LosePower());
    EXPECT_NE(RunHost().status, STATUS_SUCCESS);
    EXPECT_NE(RunHost().status, STATUS_SUCCESS) << "it is off";
    machine.ClearFaults();
    machine.Reboot();
    machine.ClearJournal();
    EXPECT_EQ(RunHost().status, STATUS_SUCCESS);
    EXPECT_EQ(machine.Calls(0, 0), 1);
  }
  const Machine another("old-firmware");
  EXPECT_EQ(Ask(R"({"command": "machine.show"})").Number("boots"), 1);
  EXPECT_EQ(another.Calls(0, 0), 0);
}

TEST(SimulatedLibrary, ExpectsThatNothingIsLeft) {
  auto machine = std::make_unique<Machine>();
  std::ostringstream diag;
  auto mira = std::make_unique<CMiraIntf>(diag);
  ASSERT_EQ(mira->Init(false, false, false), STATUS_SUCCESS);
  EXPECT_EQ(Ask(R"({"command": "machine.forget"})").status, MIRA_SIM_BUSY);
  EXPECT_EQ(Ask(R"({"command": "live"})").Number("comInitialisations"), 1);
  testing::TestPartResultArray failures;
  {
    const testing::ScopedFakeTestPartResultReporter reporter(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
    machine.reset();
  }
  ASSERT_EQ(failures.size(), 2) << "the connection and its initialisation of COM";
  EXPECT_NE(std::string(failures.GetTestPartResult(0).message()).find("references"),
            std::string::npos);
  mira.reset();
}

TEST(SimulatedLibrary, RefusesRequestsThatCannotBe) {
  const Machine machine;
  struct Case {
    const char* request;
    int status;
    const char* error;
  };
  const Case cases[] = {
      {"", MIRA_SIM_USAGE, "bad-request"},
      {"[]", MIRA_SIM_USAGE, "is no JSON object"},
      {"{}", MIRA_SIM_USAGE, "unknown-command"},
      {R"({"command": "fault"})", MIRA_SIM_USAGE, "fault.add, fault.clear"},
      {R"({"command": "live", "more": 1})", MIRA_SIM_USAGE, "'more' is unknown"},
      {R"({"command": "machine.choose", "machine": 7})", MIRA_SIM_USAGE, "bad-argument"},
      {R"({"command": "machine.choose", "machine": "lapdog"})", MIRA_SIM_NOT_FOUND,
       "unknown-profile"},
      {R"({"command": "machine.choose", "machine": {"drives": 7}})", MIRA_SIM_INVALID_VALUE,
       "'/drives'"},
      {R"({"command": "fault.add"})", MIRA_SIM_USAGE, "'operation' is missing"},
      {R"({"command": "fault.add", "operation": "11/1"})", MIRA_SIM_INVALID_VALUE,
       "it does nothing"},
      {R"({"command": "fault.add", "operation": "Sleep", "hresult": 1})", MIRA_SIM_INVALID_VALUE,
       "no such operation"},
      {R"({"command": "fault.add", "operation": "11/1", "completion": "x"})",
       MIRA_SIM_INVALID_VALUE, "/completion"},
      {R"({"command": "fault.clear", "number": 3})", MIRA_SIM_NOT_FOUND, "no-such-fault"},
      {R"({"command": "journal.read", "class": -1})", MIRA_SIM_USAGE, "out of its range"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.request);
    const Answer answer = Ask(c.request);
    EXPECT_EQ(answer.status, c.status);
    EXPECT_EQ(answer.Number("code"), c.status);
    EXPECT_NE(answer.document.find(c.error), std::string::npos) << answer.document;
  }
  const mira_sim_control_function control = mira_sim::Control();
  EXPECT_EQ(control(nullptr, 0, nullptr, nullptr), MIRA_SIM_USAGE);
  EXPECT_EQ(control(nullptr, 9, nullptr, nullptr), MIRA_SIM_USAGE);
}

}  // namespace
