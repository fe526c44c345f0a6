// Comparing machines, and making desired states of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/console_program.h"

namespace mira {
namespace {

using test::Document;
using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;
using Json = nlohmann::json;
using Words = std::vector<std::string>;

std::string Taken(const std::string& machine) { return Mira({machine, "snapshot"}).out; }

// The differences by path.
std::map<std::string, Json> Differences(const Json& a, const Json& b, const Words& more = {}) {
  const TemporaryFile first(a.dump());
  const TemporaryFile second(b.dump());
  Words words = {"compare", first.path(), second.path(), "--json"};
  words.insert(words.end(), more.begin(), more.end());
  std::map<std::string, Json> found;
  const Json document = Document(Mira(words));
  EXPECT_EQ(document.contains("error"), false) << document.dump().substr(0, 500);
  for (const Json& subject : document.at("subjects")) {
    for (const Json& one : subject.at("differences")) found[one.at("path")] = one;
  }
  return found;
}

Words Paths(const std::map<std::string, Json>& differences) {
  Words paths;
  for (const auto& [path, one] : differences) {
    paths.push_back(one.at("change").get<std::string>().substr(0, 1) + " " + path);
  }
  return paths;
}

Json& ValueOf(Json& snapshot, const char* subject) {
  return snapshot.at("subjects").at(subject).at("value");
}

TEST(Compare, TellsWhatWasAddedRemovedAndChanged) {
  const Json before = Json::parse(Taken("--sim"));
  EXPECT_EQ(Paths(Differences(before, before, {"--all"})), Words());
  Json after = before;
  Json& attributes = ValueOf(after, "attributes").at("attributes");
  for (Json& item : attributes) {
    if (item.at("name") == "WakeOnLan") item["value"] = "LAN";
  }
  Json added = attributes.front();
  added["name"] = "Fresh";
  attributes.push_back(added);
  ValueOf(after, "tokens").at("tokens").erase(0);
  ValueOf(after, "tags").at("tags").at(2)["value"] = "Property of nobody";
  ValueOf(after, "drives").at("drives").at(0)["description"] = "Another";
  after.at("subjects")["thermal"] = {{"value", 5}};
  EXPECT_EQ(Paths(Differences(before, after)),
            (Words{"a attributes.Fresh", "c attributes.WakeOnLan.value", "c drives.1.description",
                   "c tags.ownership.value", "r tokens.88"}));
  const auto back = Differences(after, before);
  EXPECT_EQ(back.at("attributes.WakeOnLan.value").at("before"), "LAN");
  EXPECT_EQ(back.at("attributes.WakeOnLan.value").at("after"), "Disabled");
  EXPECT_EQ(back.at("tokens.88").at("change"), "added");
  EXPECT_EQ(Paths(Differences(before, after, {"--only", "attributes", "--only", "tags"})).size(),
            3U);
  EXPECT_EQ(
      Paths(Differences(before, after, {"--ignore", "attributes.Wake*", "--ignore", "tokens"}))
          .size(),
      3U);
}

TEST(Compare, CountsIdentityReadingsAndMetadataOnlyWhereAskedFor) {
  const Json before = Json::parse(Taken("--sim"));
  Json after = before;
  after["takenAt"] = "2027-01-01T00:00:00Z";
  ValueOf(after, "inventory").at("system")["serialNumber"] = "ANOTHER";
  ValueOf(after, "tags").at("tags").at(0)["value"] = "ANOTHER";
  ValueOf(after, "identifiers").at("identifiers").at(0)["value"] = "000000000000";
  ValueOf(after, "batteries").at("batteries").at(0).at("life").at(0)["chargeCycles"] = 999;
  ValueOf(after, "firmwareLists").at("sensors").at(0)["celsius"] = 99.5;
  ValueOf(after, "firmwareLists")["entries"] = Json::array();
  ValueOf(after, "attributes").at("attributes").at(0)["handle"] = 7;
  EXPECT_EQ(Paths(Differences(before, after)), Words());
  const auto all = Differences(before, after, {"--all"});
  EXPECT_EQ(all.at("inventory.system.serialNumber").at("meaning"), "identity");
  EXPECT_EQ(all.at("tags.asset.value").at("meaning"), "identity");
  EXPECT_EQ(all.at("firmwareLists.sensors.1.celsius").at("meaning"), "reading");
  EXPECT_GE(all.size(), 7U);
}

TEST(Compare, MatchesBootOptionsByDescriptionAndNeverByNumber) {
  const Json before = Json::parse(Taken("--sim"));
  Json after = before;
  for (Json& list : ValueOf(after, "boot").at("lists")) {
    // The same options in the same order under other numbers.
    for (Json& number : list.at("order")) number = number.get<int>() + 100;
    for (Json& option : list.at("options")) option["number"] = option["number"].get<int>() + 100;
    std::reverse(list.at("options").begin(), list.at("options").end());
  }
  EXPECT_EQ(Paths(Differences(before, after)), Words());
  Json& uefi = ValueOf(after, "boot").at("lists").at(1);
  std::reverse(uefi.at("order").begin(), uefi.at("order").end());
  EXPECT_EQ(Paths(Differences(before, after)), Words{"c boot.UEFI Boot.order"});

  // Two of one description are told apart by their paths.
  Json doubled = before;
  Json& options = ValueOf(doubled, "boot").at("lists").at(1).at("options");
  options.at(1)["description"] = options.at(0).at("description");
  Json swapped = doubled;
  Json& other = ValueOf(swapped, "boot").at("lists").at(1).at("options");
  std::swap(other.at(0), other.at(1));
  EXPECT_EQ(Paths(Differences(doubled, swapped)), Words());
  other.at(0)["active"] = !other.at(0)["active"].get<bool>();
  EXPECT_EQ(Paths(Differences(doubled, swapped)).size(), 1U);
}

TEST(Compare, EndsWithItsStatusOnlyWhereACheckIsAskedFor) {
  const TemporaryFile laptop(Taken("--sim"));
  const TemporaryFile desktop(Taken("--sim=desktop"));
  EXPECT_EQ(Mira({"compare", laptop.path(), desktop.path()}).status, 0);
  const ProgramResult differs = Mira({"compare", laptop.path(), desktop.path(), "--check"});
  EXPECT_EQ(differs.status, 12);
  EXPECT_NE(differs.out.find("\nInventory\n"), std::string::npos) << differs.out;
  const ProgramResult same = Mira({"--sim", "compare", laptop.path(), "live", "--check", "--all"});
  EXPECT_EQ(same.status, 0) << same.out;
  EXPECT_NE(same.out.find("They do not differ."), std::string::npos);
  const TemporaryFile none("{}");
  EXPECT_EQ(Mira({"compare", none.path(), laptop.path()}).status, 6);
  EXPECT_EQ(Mira({"compare", laptop.path(), "missing"}).status, 3);
}

TEST(Compare, HoldsAMachineAgainstADesiredState) {
  const TemporaryFile laptop(Taken("--sim"));
  const auto paths = [&laptop](const std::string& state) {
    return Paths(Differences(Json::parse(state), Json::parse(laptop.Content())));
  };
  EXPECT_EQ(paths(R"({"kind": "state"})"), Words());
  EXPECT_EQ(paths(R"({"attributes": {"WakeOnLan": "LAN", "FanFloor": "0", "Nothing": 1}})"),
            (Words{"r attributes.Nothing", "c attributes.WakeOnLan"}));
  EXPECT_EQ(paths(R"({"tags": {"asset": "NF-004711", "service": "X", "extended": {"0": "Y"}}})"),
            (Words{"c tags.extended.0", "c tags.service"}));
  EXPECT_EQ(paths(R"({"batteries": [{"battery": 1, "charging": {"mode": "express"}}]})"),
            Words{"c batteries.1.mode"});
  EXPECT_EQ(paths(R"({"boot": {"UEFI Boot": {"first": ["Nobody"]}}})"), Words{"c boot.UEFI Boot"});
}

TEST(StateFrom, GivesWhatTheMachineIsAndNobodyElse) {
  const TemporaryFile laptop(Taken("--sim"));
  const ProgramResult made = Mira({"state", "from", laptop.path()});
  ASSERT_EQ(made.status, 0) << made.err;
  const Json state = Json::parse(made.out);
  EXPECT_EQ(state.at("kind"), "state");
  EXPECT_EQ(state.at("attributes").at("WakeOnLan"), "Disabled");
  EXPECT_FALSE(state["attributes"].contains("OwnerPassword"));
  EXPECT_FALSE(state["attributes"].contains("SystemManufacturer")) << "it is read-only";
  for (const std::string identity :
       {"7KX2M91", "NF-004711", "02A1B2C3D4E5", "NF0F4D1K4873461Q0012A00"}) {
    EXPECT_EQ(made.out.find(identity), std::string::npos) << identity;
  }
  EXPECT_EQ(state.at("tags").at("ownership"), "Property of the Northfield Library");
  EXPECT_EQ(state.at("boot").at("UEFI Boot").at("first").size(), 9U);
  EXPECT_EQ(state.at("batteries").at(0).at("charging").at("mode"), "standard");
  EXPECT_TRUE(state.at("legacyBoot").contains("ipl"));

  const TemporaryFile file(made.out);
  const ProgramResult same = Mira({"compare", file.path(), laptop.path(), "--check"});
  EXPECT_EQ(same.status, 0) << same.out;
}

// The machine of a snapshot as a simulated one: what was read of one is read of the other.
TEST(ProfileFromSnapshot, MakesAMachineLikeTheOneThatWasKept) {
  for (const std::string machine : {"--sim", "--sim=workstation", "--sim=pending-attributes"}) {
    const TemporaryFile kept(Taken(machine));
    const std::string file = kept.path() + ".json";
    ASSERT_EQ(
        Mira({"sim", "profile", "from-snapshot", kept.path(), file, "--keep-identity"}).status, 0);
    const TemporaryFile again(Taken("--sim=" + file));
    EXPECT_EQ(Paths(Differences(Json::parse(kept.Content()), Json::parse(again.Content()))),
              Words())
        << machine;
    ASSERT_EQ(Mira({"sim", "profile", "from-snapshot", kept.path(), file}).status, 0);
    const TemporaryFile other(Taken("--sim=" + file));
    std::filesystem::remove(file);
    const auto differences =
        Differences(Json::parse(kept.Content()), Json::parse(other.Content()), {"--all"});
    EXPECT_TRUE(differences.contains("inventory.system.serialNumber")) << machine;
    EXPECT_TRUE(differences.contains("inventory.system.uuid")) << machine;
    EXPECT_TRUE(differences.contains("tags.service.value")) << machine;
    const Json inventory = Json::parse(other.Content()).at("subjects").at("inventory").at("value");
    EXPECT_EQ(inventory["system"]["serialNumber"],
              Json::parse(other.Content())["subjects"]["tags"]["value"]["tags"][1]["value"])
        << "equal ones stay equal";
  }
}

TEST(ProfileFromSnapshot, TellsOfARedactedSnapshot) {
  const TemporaryFile kept(Taken("--sim"));
  const TemporaryFile redacted(Mira({"snapshot", "--redact", "--from", kept.path()}).out);
  const ProgramResult made = Mira({"sim", "profile", "from-snapshot", redacted.path()});
  EXPECT_EQ(made.status, Mira({"state", "from", redacted.path()}).status);
  EXPECT_NE(made.err.find("redacted"), std::string::npos) << made.err;
}

TEST(ProfileFromSnapshot, TakesTheTablesOfRealMachines) {
  const char* const folder = std::getenv("MIRA_TEST_DATA");
  if (folder == nullptr) GTEST_SKIP() << "MIRA_TEST_DATA is not set";
  Json snapshot = Json::parse(Taken("--sim"));
  std::size_t count = 0;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(std::filesystem::path(folder) / "smbios")) {
    if (!entry.is_regular_file()) continue;
    SCOPED_TRACE(entry.path().string());
    const ProgramResult table =
        Mira({"smbios", "--file", entry.path().string(), "--form", "rsmb", "--json"});
    const ProgramResult inventory = Mira({"inventory", "--file", entry.path().string(), "--json"});
    if (table.status != 0 || inventory.status != 0) continue;
    ++count;
    ValueOf(snapshot, "table")["table"] = Json::parse(table.out).at("table");
    ValueOf(snapshot, "inventory") = Json::parse(inventory.out);
    const TemporaryFile kept(snapshot.dump());
    const ProgramResult made = Mira({"sim", "profile", "from-snapshot", kept.path()});
    EXPECT_EQ(made.status, 0) << made.err;
    const Json system = Json::parse(inventory.out).value("system", Json::object());
    for (const char* const key : {"serialNumber", "uuid"}) {
      const std::string text = system.value(key, "");
      const bool is_told = text.size() > 6 && made.out.find(text) != std::string::npos;
      EXPECT_FALSE(is_told) << text;
    }
    const ProgramResult redacted = Mira({"snapshot", "--redact", "--from", kept.path()});
    const TemporaryFile shown(redacted.out);
    EXPECT_EQ(Mira({"smbios", "--from", shown.path(), "--attributes"}).status, 0);
    EXPECT_EQ(Mira({"inventory", "--from", shown.path()}).status, 0);
  }
  EXPECT_GT(count, 0U);
}

}  // namespace
}  // namespace mira
