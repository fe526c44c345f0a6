// Snapshots through the C interface: they travel as what they hold.

#include <gtest/gtest.h>

#include "tests/support/client_library.h"

namespace mira::test {
namespace {

using nlohmann::json;

TEST(CInterface, TakesSnapshotsAndWorksOnThem) {
  json snapshot;
  json tokens;
  {
    const OpenMachine machine("workstation");
    snapshot = machine.Send({{"command", "snapshot"}}).document;
    tokens = machine.Send({{"command", "tokens"}}).document;
  }
  ASSERT_EQ(snapshot.at("kind"), "snapshot") << snapshot.dump().substr(0, 500);

  const OpenMachine machine;  // another one
  json kept = machine.Send({{"command", "tokens"}, {"from", snapshot}}).document;
  EXPECT_EQ(kept.at("from").at("takenAt"), snapshot.at("takenAt"));
  EXPECT_EQ(kept.at("tokens"), tokens.at("tokens"));
  // It stands for the machine in that request alone.
  const json info = machine.Send({{"command", "info"}}).document;
  EXPECT_EQ(info.at("profile"), "laptop");
  EXPECT_FALSE(info.contains("from"));
  EXPECT_EQ(machine.Send({{"command", "info"}, {"from", snapshot.dump()}}).document.at("profile"),
            "workstation");

  EXPECT_EQ(
      machine.Send({{"command", "tag.set"}, {"kind", "asset"}, {"text", "A"}, {"from", snapshot}})
          .Error(),
      "snapshot-is-only-read");
  EXPECT_EQ(machine.Send({{"command", "tokens"}, {"from", "{}"}}).status, MIRA_INVALID_VALUE);
  const json redacted = machine.Send({{"command", "snapshot"}, {"redact", true}}).document;
  EXPECT_EQ(redacted.at("redacted"), true);
  EXPECT_EQ(redacted.dump().find("7KX2M91"), std::string::npos);
}

TEST(CInterface, ComparesMachinesAndMakesStates) {
  const OpenMachine machine;
  const json snapshot = machine.Send({{"command", "snapshot"}}).document;
  json request = {{"command", "compare"}, {"a", snapshot}, {"b", "live"}, {"check", true}};
  EXPECT_EQ(machine.Send(request).status, MIRA_DONE);
  const json set = {{"command", "attr.set"}, {"name", "WakeOnLan"}, {"value", "LAN"}};
  ASSERT_EQ(machine.Send(set).status, MIRA_DONE);
  const Answer differs = machine.Send(request);
  EXPECT_EQ(differs.status, MIRA_DIFFERS);
  EXPECT_EQ(differs.document.at("subjects").at(0).at("differences").at(0).at("path"),
            "attributes.WakeOnLan.value");
  request["ignore"] = "attributes";
  EXPECT_EQ(machine.Send(request).status, MIRA_DONE);

  const json state = machine.Send({{"command", "state.from"}, {"snapshot", snapshot}}).document;
  EXPECT_EQ(state.at("attributes").at("WakeOnLan"), "Disabled");
  EXPECT_EQ(
      machine.Send({{"command", "compare"}, {"a", state}, {"b", "live"}, {"check", true}}).status,
      MIRA_DIFFERS);
}

}  // namespace
}  // namespace mira::test
