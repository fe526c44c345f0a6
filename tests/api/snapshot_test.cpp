// Snapshots: what is in them, which calls they are taken by, and that every command that reads
// shows the same of a snapshot as of the machine.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "client/command.h"
#include "client/snapshot/subjects.h"
#include "sim/machine.h"
#include "tests/support/console_program.h"

namespace mira {
namespace {

using test::Document;
using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;
using Json = nlohmann::json;
using Words = std::vector<std::string>;

Words With(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

Json TakenOf(const std::string& machine) {
  const ProgramResult taken = Mira({machine, "snapshot", "--json"});
  EXPECT_EQ(taken.status, 0) << taken.out.substr(0, 500);
  return Json::parse(taken.out);
}

// Command lines that read, beside those without arguments.
const std::vector<Words> kLines = {
    {"smbios", "--type", "17"},
    {"smbios", "--type", "1", "--attributes"},
    {"smbios", "--handle", "0xFFFF"},
    {"smbios", "--form", "rsmb", "--type", "0"},
    {"attr", "list", "usb"},
    {"attr", "list", "--pending"},
    {"attr", "list", "--changed-from-default"},
    {"attr", "get", "WakeOnLan"},
    {"attr", "get", "BootOrder", "FanFloor", "OwnerPassword"},
    {"attr", "get", "3"},
    {"attr", "get", "Nothing"},
    {"attr", "export", "-"},
    {"tag", "show", "asset"},
    {"tag", "show", "extended"},
    {"log", "messages"},
    {"log", "scan-codes"},
    {"boot", "show", "0"},
    {"boot", "show", "1"},
    {"boot", "show", "77"},
    {"battery", "show", "--battery", "all"},
};

TEST(Snapshot, ShowsWhatTheMachineShows) {
  std::vector<Words> lines = kLines;
  for (const client::Command& command : client::Commands()) {
    const bool needs = std::any_of(command.arguments.begin(), command.arguments.end(),
                                   [](const client::Argument& a) { return a.required; });
    if (!command.works_offline || needs) continue;
    Words words;
    std::istringstream name(command.name);
    for (std::string word; std::getline(name, word, '.');) words.push_back(word);
    if (words.back() != "export" && words.back() != "snapshot") lines.push_back(words);
  }
  const std::set<std::string> tried = {
      "laptop",       "workstation",          "hostile",
      "old-firmware", "no-calling-interface", "pending-attributes"};
  for (const sim::Profile& profile : sim::Profiles()) {
    if (!tried.contains(profile.name)) continue;
    const std::string machine = "--sim=" + profile.name;
    const ProgramResult taken = Mira({machine, "snapshot", "--json"});
    if (taken.status != 0) continue;  // of which nothing can be read
    const TemporaryFile file(taken.out);
    for (const Words& line : lines) {
      SCOPED_TRACE(machine + " " + Json(line).dump());
      const ProgramResult live = Mira(With(With({machine}, line), {"--json"}));
      const ProgramResult kept = Mira(With(line, {"--from", file.path(), "--json"}));
      EXPECT_EQ(kept.status, live.status);
      Json document = Document(kept);
      EXPECT_EQ(document.at("from").at("takenAt"), Json::parse(taken.out).at("takenAt"));
      document.erase("from");
      // A face's hints name the machine that is worked with.
      const auto without_hints = [](const auto& self, Json& value) -> void {
        if (!value.is_structured()) return;
        if (value.is_object()) value.erase("hint");
        for (Json& part : value) self(self, part);
      };
      Json expected = Document(live);
      without_hints(without_hints, document);
      without_hints(without_hints, expected);
      EXPECT_EQ(Json::diff(expected, document), Json::array());
      if (profile.name != "workstation" || line.back() == "-") continue;
      EXPECT_EQ(Mira(With(line, {"--from", file.path()})).out, Mira(With({machine}, line)).out);
    }
  }
}

TEST(Snapshot, HoldsExactlyItsSubjects) {
  const Json snapshot = TakenOf("--sim");
  EXPECT_EQ(snapshot.at("kind"), "snapshot");
  EXPECT_EQ(snapshot.at("simulated"), true);
  EXPECT_EQ(snapshot.at("takenAt"), "2026-04-09T23:05:00Z");
  EXPECT_EQ(snapshot.at("redacted"), false);
  EXPECT_EQ(snapshot.at("machine").at("product"), "Meridian 14 G3");
  const std::set<std::string> expected = {
      "startUp", "inventory", "table",      "tokens",     "passwords",     "drives",     "tags",
      "boot",    "batteries", "legacyBoot", "attributes", "firmwareLists", "identifiers"};
  std::set<std::string> subjects;
  for (const auto& [name, subject] : snapshot.at("subjects").items()) {
    subjects.insert(name);
    EXPECT_TRUE(subject.contains("value")) << name;
  }
  EXPECT_EQ(subjects, expected);
  for (const Json& attribute : snapshot["subjects"]["attributes"]["value"]["attributes"]) {
    for (const char* const key : {"value", "default", "atBoot"}) {
      EXPECT_EQ(attribute.at(key).is_null() || attribute.at("type") != "password", true);
    }
    EXPECT_TRUE(attribute.contains("help")) << attribute.at("name");
  }
}

TEST(Snapshot, GivesTheReasonOfWhatCannotBeRead) {
  const Json locked = TakenOf("--sim=no-calling-interface").at("subjects");
  EXPECT_EQ(locked.at("tags").at("error").at("name"), "no-calling-interface");
  EXPECT_FALSE(locked.at("tags").contains("value"));
  EXPECT_TRUE(locked.at("table").contains("value"));
  EXPECT_EQ(TakenOf("--sim=no-attributes").at("subjects").at("attributes").at("error").at("name"),
            "no-attributes");
}

// Reading has no effect: neither what asks for or changes a secret, nor anything that writes.
TEST(Snapshot, IsTakenByCallsWithoutEffect) {
  const std::filesystem::path folder = "machines of the snapshot test";
  std::filesystem::remove_all(folder);
  ASSERT_EQ(Mira({"--sim", "snapshot"}, "", folder).status, 0);
  const ProgramResult journal = Mira({"--sim", "sim", "journal", "--json"}, "", folder);
  std::set<std::pair<int, int>> calls;
  const Json entries = Document(journal).at("entries");
  for (const Json& entry : entries) {
    if (entry.at("kind") != "call") continue;
    calls.emplace(entry.at("class").get<int>(), entry.at("select").get<int>());
  }
  const std::set<std::pair<int, int>> expected = {
      {3, 2},   {3, 3},   {3, 9},   {3, 11}, {5, 3},  {5, 4},  {5, 5},  {8, 18}, {9, 3},
      {10, 3},  {10, 11}, {11, 0},  {11, 2}, {11, 4}, {11, 6}, {11, 8}, {12, 3}, {17, 16},
      {17, 18}, {17, 22}, {17, 24}, {17, 5}, {20, 0}, {21, 1}, {26, 1}};
  EXPECT_EQ(calls, expected);
  std::filesystem::remove_all(folder);
}

TEST(Snapshot, IsWrittenForItsUserAlone) {
  const TemporaryFile file;
  const ProgramResult result = Mira({"--sim", "snapshot", file.path()});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "Kept 13 subjects in " + file.path() + ".\n");
  EXPECT_EQ(Json::parse(file.Content()).at("kind"), "snapshot");
#ifndef _WIN32
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(file.path()).permissions(),
            perms::owner_read | perms::owner_write);
#endif
}

TEST(Snapshot, OfAnotherKindIsRefused) {
  struct Case {
    std::string content;
    Words line;
    int status;
    std::string error;
  };
  const std::string start = R"({"kind": "snapshot", "subjects": )";
  const Case cases[] = {
      {"", {"tokens"}, 6, "no-json"},
      {"{}", {"tokens"}, 6, "no-snapshot"},
      {R"({"kind": "snapshot"})", {"tokens"}, 6, "malformed-snapshot"},
      {R"({"kind": "snapshot", "schemaVersion": 2})", {"tokens"}, 6, "newer-snapshot"},
      {start + "{}}", {"tokens"}, 3, "not-in-snapshot"},
      {start + R"({"tokens": {}}})", {"tokens"}, 6, "malformed-snapshot"},
      {start + R"({"tokens": {"value": 5}}})", {"tokens"}, 6, "malformed-snapshot"},
      {start + R"({"tokens": {"value": {"tokens": [{"id": "x"}]}}}})",
       {"tokens"},
       6,
       "malformed-snapshot"},
      {start + R"({"tokens": {"error": {"code": 99, "name": "x", "message": "M"}}}})",
       {"tokens"},
       1,
       "x"},
      {start + R"({"table": {"value": {"table": "xyz"}}}})", {"smbios"}, 6, "malformed-snapshot"},
      {start + "{}}", {"inventory", "--file", "other"}, 2, "bad-argument"},
      {start + "{}}", {"tag", "set", "asset", "A"}, 2, "snapshot-is-only-read"},
      {start + "{}}", {"password", "verify", "--class", "9"}, 2, "snapshot-is-only-read"},
  };
  const TemporaryFile other("x");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.content + Json(c.line).dump());
    const TemporaryFile file(c.content);
    Words line = c.line;
    std::replace(line.begin(), line.end(), std::string("other"), other.path());
    const ProgramResult result = Mira(With(line, {"--from", file.path(), "--json"}));
    EXPECT_EQ(result.status, c.status) << result.out;
    EXPECT_EQ(Document(result).at("error").at("name"), c.error);
  }
}

// Whoever stops it gets nothing: half a snapshot would look like a machine that lacks much.
TEST(Snapshot, LeavesNothingWhenItIsCancelled) {
  sim::Machine machine;
  const sim::Session running(machine);
  int rest = 6;
  client::Session session(
      [&rest](const std::string&, std::size_t, std::size_t) { return --rest > 0; });
  client::NoSecrets none;
  client::Request request(session, none);
  const client::Result result =
      client::Run(*client::FindCommand("snapshot"), client::Json::object(), request);
  EXPECT_EQ(result.status, client::kCancelled);
  EXPECT_FALSE(result.document.contains("subjects"));
}

}  // namespace
}  // namespace mira
