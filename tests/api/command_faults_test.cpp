// One service fails, whichever and whenever, while a command runs: what the command reports about
// the machine is what is so, nothing is left behind, and the next attempt works.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "client/command.h"
#include "sim/machine.h"
#include "sim/profile_file.h"
#include "tests/support/fault_sweep.h"

namespace mira {
namespace {

using client::Json;
using test::FaultSweep;
using test::SingleFault;

// One attribute of each kind, and a second enumeration.
constexpr char kEightAttributes[] = R"({
  "name": "eight", "bufferSize": 4096,
  "attributes": [
    {"kind": "enumeration", "name": "WakeOnLan", "display": "Wake on LAN", "choices": ["Off", "LAN"],
     "value": "Off", "default": "Off", "lower": 1, "upper": 1},
    {"kind": "enumeration", "name": "Numlock", "choices": ["Off", "On"], "value": "On", "default": "On",
     "lower": 1, "upper": 1},
    {"kind": "string", "name": "Room", "value": "12", "default": "", "lower": 0, "upper": 16},
    {"kind": "password", "name": "SetupPwd", "lower": 0, "upper": 32},
    {"kind": "integer", "name": "FanFloor", "value": "20", "default": "20", "lower": 0, "upper": 100,
     "increment": 5},
    {"kind": "bootOrder", "name": "BootOrder", "choices": ["Numlock", "WakeOnLan"], "value": "Numlock|WakeOnLan",
     "lower": 1, "upper": 2},
    {"kind": "collection", "name": "Power", "choices": ["Power"], "value": "WakeOnLan|FanFloor", "lower": 0, "upper": 8},
    {"kind": "configSet", "name": "Sets", "choices": ["Numlock", "WakeOnLan"], "value": "Numlock", "lower": 1,
     "upper": 1}
  ]})";

class GivenPassword : public client::SecretProvider {
 public:
  explicit GivenPassword(const char* password) : password_(password) {}
  bool IsGiven(const std::string& slot) const override {
    return slot == "password" && *password_ != '\0';
  }
  bool CanAsk() const override { return false; }
  std::optional<bytes::SecureString> Get(const std::string& slot, const std::string&) override {
    if (!IsGiven(slot)) return std::nullopt;
    return bytes::SecureString(password_);
  }

 private:
  const char* password_;
};

struct Scenario {
  const char* command;
  const char* arguments = "{}";
  const char* password = "";  // of the machine and of the request

  friend std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
    return out << scenario.command;
  }
};

// A process that starts, runs the command and ends.
client::Result RunOnce(sim::Machine& machine, const Scenario& scenario, bool what_if = false) {
  const sim::Session in_force(machine);
  client::Session session;
  session.SetSimulated("eight");
  session.SetClock([] { return std::string("2026-04-09T23:05:00Z"); });
  GivenPassword secrets(scenario.password);
  client::Request request(session, secrets);
  Json arguments = Json::parse(scenario.arguments);
  if (what_if) arguments["whatIf"] = true;
  return client::Run(*client::FindCommand(scenario.command), std::move(arguments), request);
}

sim::Profile MachineOf(const Scenario& scenario) {
  sim::Profile profile = sim::ReadProfile(kEightAttributes);
  if (*scenario.password != '\0') {
    profile.class10.text = scenario.password;
  }
  return profile;
}

// A service that claims to have stored what it has not can be noticed by nobody. A string that
// cannot be made raises an error that cannot cross from the DLL into a program of another runtime.
bool IsNoticeable(const SingleFault& fault) {
#ifdef _WIN32
  if (fault.operation == "SysAllocStringLen") return false;
#endif
  return fault.operation != "IWbemClassObject::Put" || fault.result != 0;
}

// What is so, by target.
std::map<std::string, Json> Present(sim::Machine& machine, const Scenario& scenario) {
  std::map<std::string, Json> values;
  const client::Result result = RunOnce(machine, scenario, true);
  EXPECT_EQ(result.status, client::kDone) << result.document;
  if (!result.document.contains("changes")) return values;
  for (const Json& change : result.document["changes"]) {
    values[change["target"].get<std::string>()] = change["before"];
  }
  return values;
}

void ExpectNothingLeft(const sim::Machine& machine) {
  const sim::Live& live = machine.GetLive();
  EXPECT_EQ(live.references, 0);
  EXPECT_EQ(live.strings, 0);
  EXPECT_EQ(live.arrays, 0);
  EXPECT_EQ(live.outlived, 0);
}

// The error names what happened, and where there is one, its code.
void ExpectError(const client::Result& result, const SingleFault& fault) {
  ASSERT_TRUE(result.error.has_value()) << result.document;
  EXPECT_FALSE(result.error->name.empty());
  EXPECT_STRNE(result.error->what(), "");
  const bool is_administrator_check =
      fault.operation == "AllocateAndInitializeSid" || fault.operation == "CheckTokenMembership";
  EXPECT_EQ(result.status == client::kNeedsAdministrator, is_administrator_check)
      << result.document;
  switch (result.status) {
    case client::kNeedsAdministrator:
    case client::kNotSupported:
    case client::kTransportFailed:
    case client::kAppliedInPart:
    case client::kUnexpected:
      break;
    default:
      ADD_FAILURE() << "status " << result.status << ": " << result.document;
  }
}

// What a document lacks has its reason beside it: "problem", or "chargingProblem" for "charging".
void ExpectTheTruth(const Json& document, const Json& reference) {
  if (document == reference) return;
  if (reference.is_array() && document.is_array() && reference.size() == document.size()) {
    for (std::size_t i = 0; i < reference.size(); ++i) ExpectTheTruth(document[i], reference[i]);
    return;
  }
  ASSERT_TRUE(reference.is_object() && document.is_object()) << document << reference;
  const auto has_problem = [&document](const std::string& of) {
    return document.contains("problem") || document.contains(of + "Problem");
  };
  for (const auto& [key, value] : reference.items()) {
    if (!document.contains(key) || document[key].empty()) {
      EXPECT_TRUE(value.empty() || has_problem(key)) << key << ": " << document;
    } else {
      ExpectTheTruth(document[key], value);
    }
  }
}

class CommandFaults : public testing::TestWithParam<Scenario> {};

TEST_P(CommandFaults, OfReadsGiveAnErrorOrTheTruth) {
  const Scenario& scenario = GetParam();
  sim::Machine machine(MachineOf(scenario));
  client::Result reference;
  const FaultSweep sweep(machine, [&] { reference = RunOnce(machine, scenario); });
  ASSERT_EQ(reference.status, client::kDone) << reference.document;
  EXPECT_GT(sweep.Size(), 50u);
  sweep.ForEach([&](const SingleFault& fault) {
    if (!IsNoticeable(fault)) return;
    const client::Result result = RunOnce(machine, scenario);
    if (result.status == client::kDone) {
      ExpectTheTruth(result.document, reference.document);
    } else {
      ExpectError(result, fault);
    }
    ExpectNothingLeft(machine);
    machine.GetFaults().Clear();
    EXPECT_EQ(RunOnce(machine, scenario).document, reference.document);
  });
}

class ChangeFaults : public testing::TestWithParam<Scenario> {};

TEST_P(ChangeFaults, AreReportedAsTheyAre) {
  const Scenario& scenario = GetParam();
  sim::Machine machine(MachineOf(scenario));
  const bytes::SecureString fresh = machine.SaveState();
  const std::map<std::string, Json> before = Present(machine, scenario);
  ASSERT_FALSE(before.empty());
  const FaultSweep sweep(machine,
                         [&] { EXPECT_EQ(RunOnce(machine, scenario).status, client::kDone); });
  const std::map<std::string, Json> after = Present(machine, scenario);
  EXPECT_NE(before, after);
  EXPECT_GT(sweep.Size(), 50u);
  sweep.ForEach([&](const SingleFault& fault) {
    if (!IsNoticeable(fault)) return;
    machine.RestoreState(fresh);
    const client::Result result = RunOnce(machine, scenario);
    ExpectNothingLeft(machine);
    machine.GetFaults().Clear();
    const std::map<std::string, Json> present = Present(machine, scenario);
    if (result.status != client::kDone) ExpectError(result, fault);
    std::map<std::string, std::string> outcomes;
    if (result.document.contains("changes")) {
      for (const Json& change : result.document["changes"]) {
        outcomes[change["target"].get<std::string>()] = change["outcome"].get<std::string>();
      }
    }
    for (const auto& [target, value] : present) {
      const std::string& outcome = outcomes[target];
      if (outcome == "changed") {
        EXPECT_EQ(value, after.at(target)) << result.document;
      } else if (outcome != "unknown") {
        EXPECT_EQ(value, before.at(target)) << result.document;
      }
    }
    // The same command brings the machine where it should be.
    EXPECT_EQ(RunOnce(machine, scenario).status, client::kDone);
    EXPECT_EQ(Present(machine, scenario), after);
  });
}

std::string NameOf(const testing::TestParamInfo<Scenario>& info) {
  std::string name = info.param.command;
  for (char& c : name) {
    if (c == '.' || c == '-') c = '_';
  }
  return name + (*info.param.password != '\0' ? "_locked" : "");
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandFaults,
                         testing::Values(Scenario{"tokens"}, Scenario{"attr.list"},
                                         Scenario{"boot.show"}, Scenario{"boot.legacy.show"},
                                         Scenario{"tag.show"}, Scenario{"hdd.list"},
                                         Scenario{"battery.show"}, Scenario{"password.status"},
                                         Scenario{"log"}, Scenario{"thermal"},
                                         Scenario{"id.mac.show"}),
                         NameOf);

constexpr char kTag[] = R"({"kind": "asset", "text": "LAB-1"})";
constexpr char kAttributes[] = R"({"name": "WakeOnLan=LAN", "more": ["FanFloor=30", "Room=14"]})";
INSTANTIATE_TEST_SUITE_P(Commands, ChangeFaults,
                         testing::Values(Scenario{"tag.set", kTag, "class10"},
                                         Scenario{"attr.set", kAttributes, "class10"},
                                         Scenario{"boot.first",
                                                  R"({"option": "0x0010", "list": "1"})"},
                                         Scenario{"boot.legacy.set", R"({"ipl": ["3,1,0,2"]})"},
                                         Scenario{"battery.set", R"({"mode": "express"})"}),
                         NameOf);

}  // namespace
}  // namespace mira
