#ifndef MIRA_SIM_GTEST_H_
#define MIRA_SIM_GTEST_H_

// The simulated machine in a GoogleTest suite: a machine per test, faults, what went by, and an
// expectation that the host has given everything back. C++14; the host below test links the
// product's import library as always, and the simulator's DLL lies beside the test program.
//
//   TEST(Inventory, SurvivesALostConnection) {
//     mira_sim::Machine machine("laptop");
//     machine.Add(mira_sim::Fault("firmware").Nth(2).LoseConnection());
//     EXPECT_FALSE(TakeInventory());          // the host's own function
//     EXPECT_EQ(machine.Calls(17, 5), 0);
//   }                                         // fails when the host has left references
//
// MIRA_SIM_STATIC: mira_sim_control() is linked into the test program.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "mira_sim.h"

#if defined(MIRA_SIM_STATIC)
#elif defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace mira_sim {

// The control of the DLL that the program has loaded; null for the product's.
inline mira_sim_control_function Control() {
#if defined(MIRA_SIM_STATIC)
  return &mira_sim_control;
#elif defined(_WIN32)
  for (const wchar_t* const name : {L"miraintf.dll", L"miraclient.dll"}) {
    const HMODULE module = GetModuleHandleW(name);
    if (module == nullptr) continue;
    if (const FARPROC found = GetProcAddress(module, "mira_sim_control")) {
      return reinterpret_cast<mira_sim_control_function>(reinterpret_cast<void*>(found));
    }
  }
  return nullptr;
#else
  return reinterpret_cast<mira_sim_control_function>(dlsym(RTLD_DEFAULT, "mira_sim_control"));
#endif
}

struct Answer {
  std::int32_t status = MIRA_SIM_UNEXPECTED;
  std::string document;

  // The first member of this name that is a number.
  long long Number(const std::string& member) const {
    const std::string name = "\"" + member + "\": ";
    const std::size_t at = document.find(name);
    return at != std::string::npos ? std::strtoll(document.c_str() + at + name.size(), nullptr, 10)
                                   : -1;
  }
};

inline Answer Ask(const std::string& request) {
  Answer answer;
  const mira_sim_control_function control = Control();
  if (control == nullptr) {
    answer.document = "the DLL beside the program is not the simulator's";
    return answer;
  }
  const char* document = nullptr;
  std::uint32_t size = 0;
  answer.status =
      control(request.data(), static_cast<std::uint32_t>(request.size()), &document, &size);
  if (document != nullptr) answer.document.assign(document, size);
  return answer;
}

// A text as JSON.
inline std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

// What goes wrong: "11/1" is a firmware call of class 11, select 1; "firmware" any of them; others
// are services ("CoInitializeEx") and methods ("IWbemServices::ExecMethod").
class Fault {
 public:
  explicit Fault(const std::string& operation) : members_("\"operation\": " + Quoted(operation)) {}

  // Which call fails, counted from now on; 0: every call. The first, if nothing is said.
  Fault& Nth(int nth) { return Number("nth", nth); }
  // Of a firmware call: this completion code, without executing it.
  Fault& Completion(std::int32_t code) { return Number("completion", code); }
  // What a service returns.
  Fault& Result(std::uint32_t hresult) { return Number("hresult", hresult); }
  Fault& Delay(int milliseconds) { return Number("delayMs", milliseconds); }
  // Of a firmware call: how many bytes of the reply come through.
  Fault& Truncate(std::uint32_t bytes) { return Number("truncate", bytes); }
  // Of a firmware call: bytes over the reply, as hexadecimal digits.
  Fault& Overwrite(std::uint32_t at, const std::string& digits) {
    return Number("overwriteAt", at).Text("overwrite", digits);
  }
  Fault& LoseConnection() { return Text("loses", "connection"); }
  // `moment`: "before", "within" or "after" the call.
  Fault& LosePower(const std::string& moment = "before") {
    return Text("loses", "power").Text("moment", moment);
  }
  const std::string& Members() const { return members_; }

 private:
  Fault& Number(const char* name, long long value) {
    members_ += ", \"" + std::string(name) + "\": " + std::to_string(value);
    return *this;
  }
  Fault& Text(const char* name, const std::string& value) {
    members_ += ", \"" + std::string(name) + "\": " + Quoted(value);
    return *this;
  }
  std::string members_;
};

// The machine that the process works on, from now to the end of the scope. The host opens it after
// that, and closes it before.
class Machine {
 public:
  // By name, by file, or described in JSON.
  explicit Machine(const std::string& machine = "laptop") {
    const bool is_described = !machine.empty() && machine[0] == '{';
    Demand("{\"command\": \"machine.choose\", \"force\": true, \"machine\": " +
           (is_described ? machine : Quoted(machine)) + "}");
  }
  // Expects that the host has given back what it was handed, and has used COM as a real system
  // demands.
  ~Machine() {
    const Answer left = Demand("{\"command\": \"machine.forget\", \"force\": true}");
    if (left.status != MIRA_SIM_DONE) return;
    for (const char* const what : {"references", "outlived", "strings", "arrays", "variants"}) {
      EXPECT_EQ(left.Number(what), 0) << "left by the host: " << what;
    }
    // Below 0 where the library ended an initialisation of the host's own.
    EXPECT_LE(left.Number("comInitialisations"), 0) << "left by the host";
    EXPECT_NE(left.document.find("\"objections\": []"), std::string::npos) << left.document;
  }
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  // Gives the fault's number.
  int Add(const Fault& fault) {
    return static_cast<int>(
        Demand("{\"command\": \"fault.add\", " + fault.Members() + "}").Number("number"));
  }
  // How often a fault was hit.
  int Hits(int number) const {
    return static_cast<int>(
        Demand("{\"command\": \"fault.list\", \"number\": " + std::to_string(number) + "}")
            .Number("hits"));
  }
  void ClearFaults() { Demand("{\"command\": \"fault.clear\"}"); }

  void Reboot() { Demand("{\"command\": \"machine.reboot\"}"); }
  void LosePower() { Demand("{\"command\": \"machine.reboot\", \"powerLoss\": true}"); }

  // What went by: firmware calls of a class and select, and operations of a name.
  int Calls(int cls, int select) const {
    return Count("\"class\": " + std::to_string(cls) + ", \"select\": " + std::to_string(select));
  }
  int Operations(const std::string& name) const { return Count("\"operation\": " + Quoted(name)); }
  // The same in full, to be shown.
  std::string Journal() const { return Demand("{\"command\": \"journal.read\"}").document; }
  void ClearJournal() { Demand("{\"command\": \"journal.clear\"}"); }

 private:
  static Answer Demand(const std::string& request) {
    Answer answer = Ask(request);
    EXPECT_EQ(answer.status, MIRA_SIM_DONE) << request << "\n" << answer.document;
    return answer;
  }
  static int Count(const std::string& filter) {
    return static_cast<int>(
        Demand("{\"command\": \"journal.read\", " + filter + "}").Number("count"));
  }
};

}  // namespace mira_sim

#endif  // MIRA_SIM_GTEST_H_
