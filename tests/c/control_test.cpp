// The simulator's build of the C interface: which machine a host that asks for this PC gets, and
// how it is controlled meanwhile.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "sim/mira_sim.h"
#include "tests/support/client_library.h"

namespace mira::test {
namespace {

constexpr char kByEnvironment[] = R"({"command": "machine.choose", "machine": null})";

// The document of a control request; none of these fails for another reason than its status.
std::string Control(const std::string& request, std::int32_t status = MIRA_SIM_DONE) {
  const char* document = nullptr;
  std::uint32_t size = 0;
  EXPECT_EQ(Client().control(request.data(), static_cast<std::uint32_t>(request.size()), &document,
                             &size),
            status)
      << request << document;
  return {document, size};
}

// What MIRA_SIM says, for a scope.
class ByEnvironment {
 public:
  explicit ByEnvironment(const char* machine) {
    Set(machine);
    Control(kByEnvironment);
  }
  ~ByEnvironment() {
    Set("");
    Control(kByEnvironment);
  }
  ByEnvironment(const ByEnvironment&) = delete;
  ByEnvironment& operator=(const ByEnvironment&) = delete;

 private:
  static void Set(const char* machine) {
#if defined(_WIN32)
    _putenv_s("MIRA_SIM", machine);
#else
    setenv("MIRA_SIM", machine, 1);
#endif
  }
};

std::string AssetTag(mira_handle handle) {
  const Answer answer = Send(handle, R"({"command": "tag.show", "kind": "asset"})");
  return answer.document.at("tags").at(0).at("value").get<std::string>();
}

TEST(Control, DecidesWhichMachineThisPcIs) {
  struct Case {
    const char* machine;
    std::int32_t status;
    const char* error;
  };
  const Case cases[] = {
      {"", MIRA_NOT_FOUND, "no-machine"},
      {"lapdog", MIRA_NOT_FOUND, "unknown-profile"},
      {"missing.json", MIRA_INVALID_VALUE, "bad-profile"},
      {"real", MIRA_DONE, ""},
      {"desktop", MIRA_DONE, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.machine);
    const ByEnvironment environment(c.machine);
    const OpenAnswer opened = Open("{}");
    EXPECT_EQ(opened.status, c.status);
    EXPECT_EQ(opened.Error(), c.error);
    if (opened.status != MIRA_DONE) continue;
    EXPECT_EQ(opened.document.value("simulated", false), std::string(c.machine) == "desktop");
    EXPECT_EQ(Client().close(opened.handle), MIRA_DONE);
  }
}

TEST(Control, KeepsTheProcesssMachineUntilItIsForgotten) {
  const ByEnvironment environment("laptop");
  const auto with_machine = [](const auto& work) {
    const mira_handle handle = Open("{}").handle;
    work(handle);
    EXPECT_EQ(Client().close(handle), MIRA_DONE);
  };
  std::string first;
  with_machine([&](mira_handle handle) {
    first = AssetTag(handle);
    Send(handle, R"({"command": "tag.set", "kind": "asset", "text": "K-7"})");
    Control(R"({"command": "machine.choose", "machine": "desktop"})", MIRA_SIM_BUSY);
    Control(R"({"command": "machine.forget", "force": true})", MIRA_SIM_BUSY);
  });
  with_machine([](mira_handle handle) { EXPECT_EQ(AssetTag(handle), "K-7"); });
  const std::string left = Control(R"({"command": "machine.forget"})");
  EXPECT_NE(left.find("\"references\": 0"), std::string::npos) << left;
  with_machine([&](mira_handle handle) { EXPECT_EQ(AssetTag(handle), first); });

  // A machine that the host names is another; while it is open, it is the one that is asked about.
  const OpenMachine named("desktop");
  EXPECT_NE(Control(R"({"command": "machine.show"})").find("\"desktop\""), std::string::npos);
}

std::int32_t MIRA_CALL AddFault(void* user, std::uint32_t, std::uint32_t) {
  bool& added = *static_cast<bool*>(user);
  if (!added) {
    Control(R"({"command": "fault.add", "operation": "5/4", "nth": 0, "completion": -1})");
    added = true;
  }
  return 0;
}

TEST(Control, IsServedInCallbacksAndBetweenCalls) {
  const OpenMachine machine;
  // A fault that is added while a request is under way.
  bool added = false;
  const Answer hit = Send(machine.Handle(), R"({"command": "attr.list"})", {}, AddFault, &added);
  EXPECT_TRUE(added);
  EXPECT_NE(hit.status, MIRA_DONE);
  Control(R"({"command": "fault.clear"})");

  // In the middle of a call it is not.
  Control(R"({"command": "fault.add", "operation": "firmware", "nth": 0, "delayMs": 100})");
  std::thread caller([&machine] { machine.Send({{"command", "tag.show"}}); });
  bool was_busy = false;
  for (int i = 0; i < 1000 && !was_busy; ++i) {
    const std::string request = R"({"command": "live"})";
    was_busy = Client().control(request.data(), static_cast<std::uint32_t>(request.size()), nullptr,
                                nullptr) == MIRA_SIM_BUSY;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  caller.join();
  EXPECT_TRUE(was_busy);
}

}  // namespace
}  // namespace mira::test
