// The configuration application on the simulated machine "locked", with every single fault that it
// can meet: whatever happens, its report is true, and nothing of what it was handed is left.

#include "configuration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "mira_client.hpp"
#include "mira_sim_gtest.h"

namespace {

using mira_sim::Fault;

constexpr char kPassword[] = "setup1";

const Configuration& Wanted() {
  static const Configuration wanted = {
      "NF-0042",
      "0,3,1,4,16,17,18,128,129",
      {{"WakeOnLan", "LAN"}, {"FanFloor", "30"}, {"SetupPromptTime", "5"}}};
  return wanted;
}

// What stands between two texts.
std::string Between(const std::string& document, const std::string& before,
                    const std::string& after, std::size_t from = 0) {
  const std::size_t at = document.find(before, from);
  if (at == std::string::npos) return "";
  const std::size_t begin = at + before.size();
  return document.substr(begin, document.find(after, begin) - begin);
}

// What the machine really has of each item.
std::map<std::string, std::string> ReadMachine() {
  const miraclient::Machine machine;
  std::map<std::string, std::string> values;
  values["asset tag"] =
      Between(machine.Request(R"({"command": "tag.show", "kind": "asset"})"), "\"value\": ", "\n");
  const std::string boot = machine.Request(R"({"command": "boot.show"})");
  values["boot order"] = Between(boot, "\"order\": [", "]", boot.find("\"kind\": \"uefi\""));
  for (const auto& attribute : Wanted().attributes) {
    const std::string document =
        machine.Request(R"({"command": "attr.get", "names": [")" + attribute.first + "\"]}");
    values[attribute.first] = Between(document, "\"value\": ", "\n");
  }
  return values;
}

class ConfigurationTest : public testing::Test {
 protected:
  // The machine before and after, and what a run calls, all without a fault.
  void SetUp() override {
    {
      const mira_sim::Machine machine("locked");
      before_ = ReadMachine();
    }
    const mira_sim::Machine machine("locked");
    for (const Item& item : Configure(Wanted(), kPassword)) {
      EXPECT_EQ(item.outcome, Outcome::kDone) << item.what << ": " << item.why;
    }
    const mira_sim::Answer operations = mira_sim::Ask(R"({"command": "operations"})");
    for (std::size_t at = 0;
         (at = operations.document.find("\"operation\": \"", at)) != std::string::npos; ++at) {
      const std::string name = Between(operations.document, "\"operation\": \"", "\"", at);
      calls_[name] = std::atoi(Between(operations.document, "\"calls\": ", "\n", at).c_str());
    }
    after_ = ReadMachine();
    for (const auto& value : before_) {
      EXPECT_FALSE(value.second.empty()) << value.first;
      EXPECT_NE(value.second, after_[value.first]) << value.first;
    }
  }

  // Runs the application on a machine with a fault. Its report has to be true.
  void RunWith(const Fault& fault) {
    SCOPED_TRACE(fault.Members());
    mira_sim::Machine machine("locked");
    const int number = machine.Add(fault);
    const std::vector<Item> items = Configure(Wanted(), kPassword);
    ++runs_;
    if (machine.Hits(number) != 0) ++hits_;
    machine.ClearFaults();
    if (mira_sim::Ask(R"({"command": "machine.show"})").document.find("\"off\": true") !=
        std::string::npos) {
      machine.Reboot();
    }
    ASSERT_EQ(items.size(), 2 + Wanted().attributes.size());
    std::map<std::string, std::string> now = ReadMachine();
    for (const Item& item : items) {
      const bool is_new = now[item.what] == after_[item.what];
      const bool is_old = now[item.what] == before_[item.what];
      EXPECT_TRUE(is_new || is_old) << item.what << " is " << now[item.what];
      EXPECT_TRUE(is_new || item.outcome != Outcome::kDone) << item.what << " is not done";
      EXPECT_TRUE(is_old || item.outcome != Outcome::kNotDone) << item.what << " is done";
      EXPECT_EQ(item.why.empty(), item.outcome == Outcome::kDone) << item.what;
      if (item.outcome == Outcome::kUnknown) ++unknown_;
    }
  }

  // With a fault at each call of an operation; of an operation that is called again and again, at
  // `most` calls from the first to the last.
  void RunWithEach(const std::string& operation, const std::function<void(Fault&)>& make,
                   int most = std::numeric_limits<int>::max()) {
    const int calls = calls_[operation];
    const int runs = std::min(calls, most);
    for (int run = 0; run < runs; ++run) {
      const int nth = run + 1 == runs ? calls : 1 + run * (calls / runs);
      Fault fault(operation);
      make(fault.Nth(nth));
      RunWith(fault);
    }
  }
  void ExpectHits() const {
    EXPECT_GT(runs_, 0);
    EXPECT_EQ(hits_, runs_);
  }

  std::map<std::string, std::string> before_;
  std::map<std::string, std::string> after_;
  std::map<std::string, int> calls_;
  int runs_ = 0;
  int hits_ = 0;
  int unknown_ = 0;
};

TEST_F(ConfigurationTest, TellsTheTruthWhateverAFirmwareCallComesTo) {
  RunWithEach("firmware", [](Fault& fault) { fault.Completion(-1); });
  RunWithEach(
      "firmware", [](Fault& fault) { fault.Truncate(8); }, 20);
  RunWithEach("firmware", [](Fault& fault) { fault.LoseConnection(); });
  ExpectHits();
}

// What each service and method fails with; the rest gives something back, which cannot fail.
TEST_F(ConfigurationTest, TellsTheTruthWhateverAServiceComesTo) {
  constexpr int kOfEach = 4;
  const std::pair<const char*, std::uint32_t> failures[] = {
      {"AllocateAndInitializeSid", 8},
      {"CheckTokenMembership", 5},
      {"CoCreateInstance", 0x80040154},
      {"CoInitializeEx", 0x8007000E},
      {"CoInitializeSecurity", 0x80070005},
      {"CoSetProxyBlanket", 0x80070005},
      {"GetSystemFirmwareTable", 0},
      {"IEnumWbemClassObject::Next", 0x80041001},
      {"IUnknown::QueryInterface", 0x80004002},
      {"IWbemClassObject::Get", 0x80041002},
      {"IWbemClassObject::GetMethod", 0x80041002},
      {"IWbemClassObject::Put", 0x80041005},
      {"IWbemClassObject::SpawnInstance", 0x8007000E},
      {"IWbemLocator::ConnectServer", 0x80041003},
      {"IWbemServices::CreateInstanceEnum", 0x80041010},
      {"IWbemServices::ExecMethod", 0x800706BA},
      {"IWbemServices::GetObject", 0x80041002},
      {"SafeArrayAccessData", 0x8000FFFF},
      {"SafeArrayCreate", 0},
      {"SafeArrayGetDim", 0},
      {"SafeArrayGetLBound", 0x8002000B},
      {"SafeArrayGetUBound", 0x8002000B},
      {"SafeArrayPutElement", 0x8007000E},
      {"SysAllocStringLen", 0},
  };
  for (const auto& failure : failures) {
    ASSERT_GT(calls_[failure.first], 0) << failure.first;
    const std::uint32_t result = failure.second;
    RunWithEach(
        failure.first, [result](Fault& fault) { fault.Result(result); }, kOfEach);
  }
  ExpectHits();
}

TEST_F(ConfigurationTest, TellsTheTruthWheneverThePowerIsLost) {
  RunWithEach(
      "firmware", [](Fault& fault) { fault.LosePower("before"); }, 20);
  RunWithEach("firmware", [](Fault& fault) { fault.LosePower("within"); });
  RunWithEach("firmware", [](Fault& fault) { fault.LosePower("after"); });
  ExpectHits();
  EXPECT_GT(unknown_, 0) << "a write without an answer";
}

}  // namespace
