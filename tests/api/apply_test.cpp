// Desired states: what is refused before anything is written, what is written and in which rounds,
// what a second run says, and what is true after faults, kills and losses of power.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/state/pattern.h"
#include "client/state/secret_text.h"
#include "tests/support/console_program.h"
#include "tests/support/freed_memory.h"

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

constexpr char kBench[] = R"({
  "name": "bench", "base": "laptop", "attributes": [
    {"kind": "integer", "name": "Inner", "value": "0", "default": "0", "upper": 100,
     "readOnlyUnless": {"attribute": "Gate", "value": "On"}},
    {"kind": "enumeration", "name": "Gate", "choices": ["Off", "On"], "value": "Off", "default": "Off",
     "lower": 1, "upper": 1, "readOnlyUnless": {"attribute": "Master", "value": "On"}},
    {"kind": "enumeration", "name": "Master", "choices": ["Off", "On"], "value": "Off",
     "default": "Off", "lower": 1, "upper": 1},
    {"kind": "integer", "name": "Late", "value": "0", "default": "0", "upper": 100,
     "readOnlyUnless": {"attribute": "Master", "value": "On", "afterRestart": true}},
    {"kind": "enumeration", "name": "Slow", "choices": ["A", "B"], "value": "A", "default": "A",
     "lower": 1, "upper": 1, "valueAfterRestart": true},
    {"kind": "string", "name": "Site", "value": "OLD", "default": "OLD", "upper": 16,
     "normalizes": {"letters": "upper"}},
    {"kind": "integer", "name": "Rounded", "value": "0", "default": "0", "upper": 100,
     "normalizes": {"step": 10}},
    {"kind": "enumeration", "name": "Preset", "choices": ["Own", "Plain"], "value": "Own",
     "default": "Own", "lower": 1, "upper": 1, "resets": ["Rounded"]},
    {"kind": "integer", "name": "Fixed", "value": "5", "default": "5", "upper": 9, "readOnly": true},
    {"kind": "integer", "name": "Huge", "value": "0", "default": "0",
     "upper": "18446744073709551615"},
    {"kind": "password", "name": "Owner", "lower": 4, "upper": 32},
    {"kind": "enumeration", "name": "UsbFront", "choices": ["Off", "On", "8"], "value": "Off",
     "default": "Off", "lower": 1, "upper": 1},
    {"kind": "enumeration", "name": "UsbRear", "choices": ["Off", "On", "8"], "value": "Off",
     "default": "Off", "lower": 1, "upper": 1}]})";

// A machine that is kept in a folder, and the program that uses it.
class Bench {
 public:
  explicit Bench(const std::string& profile = kBench) : folder_("machines of the apply test") {
    Remove();
    std::filesystem::create_directories(folder_);
    const std::string file = (folder_ / "bench.json").string();
    std::ofstream(file, std::ios::binary) << profile;
    machine_ = "--sim=" + file;
  }
  ~Bench() { Remove(); }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  ProgramResult Run(Words words, const std::string& input = "") const {
    words.insert(words.begin(), machine_);
    return test::Mira(words, input, folder_);
  }
  // The document of the state applied, with its status as "status".
  Json Apply(const std::string& state, Words more = {"--yes"}) const {
    Words words = {"apply", "-", "--json"};
    words.insert(words.end(), more.begin(), more.end());
    const ProgramResult result = Run(words, state);
    Json document = Document(result);
    document["status"] = result.status;
    return document;
  }
  std::string Value(const std::string& attribute) const {
    return Run({"attr", "get", attribute, "--value", "value"}).out;
  }
  void Restart() const { EXPECT_EQ(Run({"sim", "reboot", "--yes"}).status, 0); }
  void Fault(Words words) const {
    words.insert(words.begin(), {"sim", "fault", "add"});
    EXPECT_EQ(Run(words).status, 0);
  }
  // The writes of attributes that reached the firmware.
  std::size_t Writes() const {
    const Json journal = Document(Run({"sim", "journal", "--json"}));
    std::size_t count = 0;
    for (const Json& entry : journal.at("entries")) {
      count += entry.value("class", 0) == 5 && entry.value("select", 0) == 6 ? 1U : 0U;
    }
    return count;
  }
  std::string File(const char* name) const { return (folder_ / name).string(); }

 private:
  void Remove() const {
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
  }
  std::filesystem::path folder_;
  std::string machine_;
};

// The outcome of each entry by its target.
std::map<std::string, std::string> Outcomes(const Json& document) {
  std::map<std::string, std::string> outcomes;
  for (const Json& change : document.at("changes"))
    outcomes[change.at("target")] = change.at("outcome");
  return outcomes;
}

using Expected = std::map<std::string, std::string>;

TEST(Apply, RefusesWhatIsNoStateByItsPath) {
  struct Case {
    const char* state;
    const char* error;
    const char* target;
  };
  const Case cases[] = {
      {"{", "no-json", "The state"},
      {R"({"attributes": {"A": 1, "A": 2}})", "doubled-key", ""},
      {R"({"schemaVersion": 2})", "newer-state", "/schemaVersion"},
      {R"({"attribute": {}})", "unknown-key", "/attribute"},
      {R"({"attributes": {"A/B": {"value": 1, "optionl": true}}})", "unknown-key",
       "/attributes/A~1B/optionl"},
      {R"({"attributes": {"A": {"optional": true}}})", "malformed-state", "/attributes/A"},
      {R"({"attributes": {"A": null}})", "malformed-state", "/attributes/A"},
      {R"({"boot": {"0": {"first": ["X"], "order": ["X"]}}})", "malformed-state", "/boot/0"},
      {R"({"boot": {"0": {"first": [3]}}})", "quote-it", "/boot/0/first/0"},
      {R"({"tags": {"asset": 12}})", "quote-it", "/tags/asset"},
      {R"({"tags": {"color": "red"}})", "unknown-key", "/tags/color"},
      {R"({"groups": [{"attributs": {}}]})", "unknown-key", "/groups/0/attributs"},
      {R"({"when": {"bois.version": "1"}})", "unknown-key", "/when/bois.version"},
      {R"({"when": {"bios.version": {"atLeast": 1.10}}})", "bad-condition",
       "/when/bios.version/atLeast"},
      {R"({"when": {"bios.version": 1.8}})", "quote-it", "/when/bios.version"},
      {R"({"when": {"bios.version": ["1.8", 1.8]}})", "quote-it", "/when/bios.version"},
      {R"({"when": {"bios.version": {"newer": "1"}}})", "unknown-key", "/when/bios.version/newer"},
      {R"({"state": {}, "secret": {}})", "unknown-key", "/secret"},
      {R"({"state": {}, "secrets": {"password": 7}})", "malformed-secrets", "secrets"},
  };
  const Bench bench;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.state);
    const Json document = bench.Apply(c.state);
    EXPECT_EQ(document.at("status"), 6);
    EXPECT_EQ(document["error"]["name"], c.error);
    if (*c.target != 0) {
      EXPECT_EQ(document["error"]["target"], c.target);
    }
  }
}

TEST(Apply, StopsBeforeAnythingIsWritten) {
  struct Case {
    const char* attributes;
    int status;
    const char* error;
  };
  const Case cases[] = {
      {R"("Nothing": 1)", 3, "attribute-not-found"},
      {R"("Nix*": 1)", 3, "attribute-not-found"},
      {R"("3": 1)", 3, "attribute-not-found"},
      {R"("Usb*": "On", "*Rear": "Off")", 6, "conflict"},
      {R"("UsbRear": "On", "usbrear": "Off")", 6, "conflict"},
      {R"("UsbRear": "Maybe")", 6, "invalid-value"},
      {R"("UsbRear": true)", 6, "quote-it"},
      {R"("UsbRear": 8)", 6, "quote-it"},
      {R"("Site": 1350)", 6, "quote-it"},
      {R"("Rounded": true)", 6, "quote-it"},
      {R"("Rounded": 101)", 6, "invalid-value"},
      {R"("Rounded": 1.5)", 6, "invalid-value"},
      {R"("Inner": 101)", 6, "invalid-value"},
      {R"("Owner": "secret")", 6, "password"},
      {R"("Site": {"secret": "owner"})", 6, "no-password-attribute"},
  };
  const Bench bench;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.attributes);
    const std::string state =
        std::string(R"({"attributes": {"Master": "On", )") + c.attributes + "}}";
    const Json document = bench.Apply(state);
    EXPECT_EQ(document.at("status"), c.status) << document;
    EXPECT_EQ(document["error"]["name"], c.error);
    EXPECT_EQ(document["changed"], false);
    EXPECT_EQ(Outcomes(document)["Master"], "not-tried");
  }
  EXPECT_EQ(bench.Writes(), 0u);
  const Json partial =
      bench.Apply(R"({"attributes": {"Nothing": 1, "Master": "On"}})", {"--yes", "--partial"});
  EXPECT_EQ(partial["status"], 10);
  EXPECT_EQ(Outcomes(partial), (Expected{{"Nothing", "failed"}, {"Master", "changed"}}));
}

TEST(Apply, LetsNamesBeatPatterns) {
  const Bench bench;
  const Json document = bench.Apply(
      R"({"attributes": {"usb*": "On", "USB?ear": "On", "UsbRear": "8",
          "Absent": {"value": 1, "optional": true}}})");
  EXPECT_EQ(document["status"], 0) << document;
  EXPECT_EQ(Outcomes(document), (Expected{{"UsbFront", "changed"}, {"UsbRear", "changed"}}));
  EXPECT_EQ(bench.Value("UsbFront"), "On\n");
  EXPECT_EQ(bench.Value("UsbRear"), "8\n");
  EXPECT_EQ(document["skipped"],
            Json::parse(R"([{"entry": "/attributes/Absent", "reason": "not-there"}])"));
}

TEST(Apply, AppliesWhatTheMachineMeets) {
  struct Case {
    const char* when;
    bool is_met;
  };
  const Case cases[] = {
      {R"({"system.productName": "Meridian*"})", true},
      {R"({"inventory.system.product": ["Nix", "Meridian 1? G3"]})", true},
      {R"({"system.productName": "meridian*"})", false},
      {R"({"bios.version": {"atLeast": "1.8"}})", true},
      {R"({"bios.version": {"atLeast": "1.12.0"}})", false},
      {R"({"bios.version": {"atLeast": "1.8.2.0", "below": "1.9"}})", true},
      {R"({"bios.version": {"atMost": "1.8.1"}})", false},
      {R"({"system.nothing": "*"})", false},
      {R"({"chassis.type": "Notebook", "bios.vendor": "*"})", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.when);
    const Bench bench;
    const std::string entry = std::string(R"({"value": 20, "when": )") + c.when + "}";
    const Json document = bench.Apply(R"({"attributes": {"Rounded": )" + entry + "}}");
    EXPECT_EQ(document["status"], 0) << document;
    EXPECT_EQ(document["changed"], c.is_met) << document;
    EXPECT_EQ(document["skipped"].size(), c.is_met ? 0u : 1u);
  }
  const Bench bench;
  const Json whole = bench.Apply(
      R"({"when": {"bios.version": "9"}, "groups": [{"attributes": {"Rounded": 10}}]})");
  EXPECT_EQ(whole["status"], 0);
  EXPECT_EQ(whole["skipped"][0]["entry"], "");
  EXPECT_EQ(whole["skipped"][0]["condition"]["actual"], "1.8.2");
  EXPECT_EQ(bench.Apply(R"({"when": {"system.productName": {"atLeast": "1"}}})")["error"]["name"],
            "no-version");
}

TEST(Apply, WritesWhatBecomesWritableRoundByRound) {
  const Bench bench;
  const std::string state = R"({"attributes": {"Inner": 7, "Gate": "On", "Master": "On"}})";
  const Json planned = bench.Apply(state, {"--what-if"});
  EXPECT_EQ(planned["status"], 0) << planned;
  EXPECT_EQ(bench.Apply(state, {"--check"})["status"], 12);
  EXPECT_EQ(bench.Writes(), 0u);
  const Json document = bench.Apply(state);
  EXPECT_EQ(document["status"], 0) << document;
  EXPECT_EQ(Outcomes(document),
            (Expected{{"Inner", "changed"}, {"Gate", "changed"}, {"Master", "changed"}}));
  EXPECT_EQ(document["restartPending"], true);
  EXPECT_EQ(bench.Value("Inner"), "7\n");
  const Json again = bench.Apply(state);
  EXPECT_EQ(again["status"], 0);
  EXPECT_EQ(again["changed"], false);
  EXPECT_EQ(bench.Apply(state, {"--check"})["status"], 0);
}

TEST(Apply, FinishesAfterARestart) {
  const Bench bench;
  const std::string state =
      R"({"attributes": {"Late": 9, "Slow": "B", "Master": "On", "Rounded": "0x14"}})";
  const Json first = bench.Apply(state);
  EXPECT_EQ(first["status"], 10);
  EXPECT_EQ(first["error"]["name"], "restart-needed");
  EXPECT_EQ(first["restartPending"], true);
  EXPECT_EQ(Outcomes(first), (Expected{{"Late", "waiting"},
                                       {"Slow", "waiting"},
                                       {"Master", "changed"},
                                       {"Rounded", "changed"}}));
  const Json waiting = bench.Apply(state);
  EXPECT_EQ(waiting["status"], 10);
  EXPECT_EQ(waiting["changed"], false);
  bench.Restart();
  const Json second = bench.Apply(state);
  EXPECT_EQ(second["status"], 0) << second;
  EXPECT_EQ(second["changed"], true);
  EXPECT_EQ(bench.Value("Late"), "9\n");
  EXPECT_EQ(bench.Value("Slow"), "B\n");
  bench.Restart();
  const Json third = bench.Apply(state);
  EXPECT_EQ(third["status"], 0);
  EXPECT_EQ(third["changed"], false);
  EXPECT_EQ(third["restartPending"], false);
}

TEST(Apply, CallsReadOnlyWhatNoRestartOpens) {
  const Bench bench;
  const Json alone = bench.Apply(R"({"attributes": {"Fixed": 6}})");
  EXPECT_EQ(alone["status"], 6);
  EXPECT_EQ(alone["error"]["name"], "read-only");
  EXPECT_EQ(bench.Apply(R"({"attributes": {"Fixed": 5}})")["status"], 0);
  EXPECT_EQ(bench.Apply(R"({"attributes": {"Fixed": 6, "Master": "On"}})")["status"], 10);
  bench.Restart();
  const Json later = bench.Apply(R"({"attributes": {"Fixed": 6, "Master": "On"}})");
  EXPECT_EQ(later["error"]["name"], "read-only");
  EXPECT_EQ(later["changed"], false);
}

TEST(Apply, KnowsTheFirmwaresFormOfAValueAgain) {
  const Bench bench;
  const std::string state = R"({"attributes": {"Site": "north", "Rounded": 37},
                                "tags": {"asset": "more than twelve"}})";
  const Json first = bench.Apply(state);
  EXPECT_EQ(first["status"], 0) << first;
  EXPECT_EQ(first["changed"], true);
  EXPECT_EQ(first["changes"][0]["after"], "NORTH");
  EXPECT_EQ(first["changes"][0]["wanted"], "north");
  EXPECT_EQ(first["changes"][1]["after"], 30);
  EXPECT_EQ(first["changes"][2]["wanted"], "more than twelve");
  for (const bool has_restarted : {false, true}) {
    if (has_restarted) bench.Restart();
    const std::size_t writes = bench.Writes();
    EXPECT_EQ(bench.Apply(state, {"--check"})["status"], 0);
    const Json again = bench.Apply(state);
    EXPECT_EQ(again["status"], 0) << again;
    EXPECT_EQ(again["changed"], false);
    EXPECT_EQ(bench.Writes(), writes);
  }
  // Another wish is another matter.
  EXPECT_EQ(bench.Apply(R"({"attributes": {"Rounded": 47}})")["changes"][0]["after"], 40);
}

// Attributes whose writes have no effect on the value, or show none.
constexpr char kStubborn[] = R"({
  "name": "bench", "base": "laptop", "attributes": [
    {"kind": "enumeration", "name": "Late", "choices": ["A", "B"], "value": "A", "default": "A",
     "lower": 1, "upper": 1, "valueAfterRestart": true},
    {"kind": "enumeration", "name": "Mode", "choices": ["X", "LAN"], "value": "X", "default": "X",
     "lower": 1, "upper": 1},
    {"kind": "integer", "name": "Volume", "value": "40", "default": "0", "upper": 100,
     "normalizes": {"step": 10}},
    {"kind": "enumeration", "name": "Reset", "choices": ["A", "B"], "value": "A", "default": "A",
     "lower": 1, "upper": 1, "resets": ["Volume"]}]})";

TEST(Apply, WritesAgainWhatWasSetBackBetweenRestarts) {
  const Bench bench(kStubborn);
  const std::string state = R"({"attributes": {"Late": "B"}})";
  EXPECT_EQ(Outcomes(bench.Apply(state))["Late"], "waiting");
  for (const bool is_seen : {true, false}) {
    SCOPED_TRACE(is_seen);
    bench.Restart();
    EXPECT_EQ(bench.Value("Late"), "B\n");
    if (is_seen) {
      EXPECT_EQ(Outcomes(bench.Apply(state))["Late"], "already-so");
    }
    bench.Run({"attr", "set", "Late", "A", "--yes"});
    bench.Restart();
    EXPECT_EQ(bench.Value("Late"), "A\n");
    EXPECT_EQ(bench.Apply(state, {"--check"})["status"], 12);
    const Json again = bench.Apply(state);
    EXPECT_EQ(again["status"], 10) << again;
    EXPECT_EQ(Outcomes(again)["Late"], "waiting");
    EXPECT_EQ(bench.Apply(state, {"--check"})["status"], 12);
  }
  bench.Restart();
  EXPECT_EQ(bench.Apply(state)["status"], 0);
}

TEST(Apply, TakesNoSwallowedWriteForAValueThatIsSo) {
  const Bench bench(kStubborn);
  const std::string state = R"({"attributes": {"Mode": "X"}})";
  EXPECT_EQ(bench.Apply(R"({"attributes": {"Mode": "LAN"}})")["status"], 0);
  bench.Fault({"5/6", "--completion=0"});
  const Json swallowed = bench.Apply(state);
  EXPECT_EQ(Outcomes(swallowed)["Mode"], "failed") << swallowed;
  EXPECT_EQ(swallowed["changes"][0]["after"], "LAN");
  EXPECT_EQ(bench.Apply(state, {"--check"})["status"], 12);
  bench.Run({"sim", "fault", "clear"});
  EXPECT_EQ(Outcomes(bench.Apply(state))["Mode"], "changed");
}

TEST(Apply, SaysThatAnUnmovedNumberMayBeKept) {
  const Bench bench(kStubborn);
  const std::string state = R"({"attributes": {"Volume": 44}})";
  const Json first = bench.Apply(state);
  EXPECT_EQ(first["status"], 10);
  EXPECT_EQ(first["changes"][0]["outcome"], "waiting");
  EXPECT_EQ(first["changes"][0]["note"],
            "shows '40' now: either the firmware keeps '40' for '44', or it takes '44' at a "
            "restart");
  EXPECT_EQ(Outcomes(bench.Apply(state))["Volume"], "waiting") << "no restart since";
  bench.Restart();
  const Json second = bench.Apply(state);
  EXPECT_EQ(second["status"], 0) << second;
  EXPECT_EQ(second["changed"], false);
  EXPECT_EQ(second["changes"][0]["after"], 40);
  EXPECT_EQ(second["changes"][0]["wanted"], 44);
  EXPECT_EQ(bench.Apply(state, {"--check"})["status"], 0);

  // Where writes have shown at once, the value of now is the firmware's.
  const Bench shown(kStubborn);
  EXPECT_EQ(shown.Apply(R"({"attributes": {"Volume": 50}})")["status"], 0);
  for (const bool has_restarted : {false, true}) {
    if (has_restarted) shown.Restart();
    const Json kept = shown.Apply(has_restarted ? R"({"attributes": {"Volume": 57}})"
                                                : R"({"attributes": {"Volume": 53}})");
    EXPECT_EQ(kept["status"], 0) << kept;
    EXPECT_EQ(kept["changed"], false);
    EXPECT_EQ(kept["changes"][0]["after"], 50);
  }
}

TEST(Apply, ReportsWhatALaterWriteMadeOfAWaitingEntry) {
  const Bench bench(kStubborn);
  const Json document = bench.Apply(R"({"attributes": {"Volume": 44, "Reset": "B"}})");
  EXPECT_EQ(document["status"], 10) << document;
  EXPECT_EQ(Outcomes(document), (Expected{{"Volume", "failed"}, {"Reset", "changed"}}));
  EXPECT_EQ(document["changes"][0]["error"]["name"], "undone");
  EXPECT_EQ(document["changes"][0]["after"], 0);
  EXPECT_EQ(document["changes"][0].contains("note"), false);
}

TEST(Apply, KeepsNumbersExact) {
  const Bench bench;
  for (const char* const number : {"18446744073709551615", R"("18446744073709551615")"}) {
    const Json document = bench.Apply(std::string(R"({"attributes": {"Huge": )") + number + "}}");
    EXPECT_EQ(document["status"], 0) << document;
    EXPECT_EQ(document["changes"][0]["after"], "18446744073709551615");
  }
  EXPECT_EQ(bench.Value("Huge"), "18446744073709551615\n");
}

TEST(Apply, OrdersBootOptionsByDescription) {
  const Bench bench(R"json({"name": "bench", "bootLists": [
    {"value": 1, "name": "UEFI", "order": [0, 1, 2, 3], "options": [
      {"number": 0, "description": "Disk", "path": "PciRoot(0x0)/Pci(0x1,0x0)"},
      {"number": 1, "description": "Network", "path": "PciRoot(0x0)/Pci(0x2,0x0)"},
      {"number": 2, "description": "USB stick", "path": "PciRoot(0x0)/Pci(0x3,0x0)"},
      {"number": 3, "description": "Network", "path": "PciRoot(0x0)/Pci(0x4,0x0)"}]}]})json");
  struct Case {
    std::string boot;
    int status;
    std::string after;
  };
  const Case cases[] = {
      {R"({"first": ["disk"]})", 0, "[0,1,2,3]"},
      {R"({"first": ["usb*", "Disk"]})", 0, "[2,0,1,3]"},
      {R"({"first": ["Network"]})", 6, ""},
      {R"({"first": ["2"]})", 3, ""},
      {R"({"order": ["Disk", "USB stick"]})", 6, ""},
      {R"json({"first": [{"value": "Network", "path": "PciRoot(0x0)/Pci(0x4,0x0)"},
                         {"value": "Tape", "optional": true}]})json",
       0, "[3,2,0,1]"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.boot);
    const Json document = bench.Apply(R"({"boot": {"uefi": )" + c.boot + "}}");
    EXPECT_EQ(document["status"], c.status) << document;
    if (c.status == 0) {
      EXPECT_EQ(document["changes"][0]["after"].dump(), c.after);
    }
  }
}

TEST(Apply, BringsAllSubjectsThere) {
  const Bench bench("{\"name\": \"bench\"}");
  const std::string state = R"({
    "attributes": {"FanFloor": "30", "BootOrder": {"value": ["UEFI USB Device"], "failThroughMode": 1}},
    "tags": {"asset": "NF-1", "ownership": "Annex", "extended": {"1": "Desk"}},
    "batteries": [{"battery": 1, "charging": {"mode": "express"}, "peakShift": {"enabled": true}}],
    "legacyBoot": {"ipl": ["CD-ROM", "hard disk", "floppy", "network"]}})";
  const Json first = bench.Apply(state);
  EXPECT_EQ(first["status"], 0) << first;
  for (const Json& change : first["changes"]) {
    EXPECT_EQ(change["outcome"], change["target"] == "BCV priority" ? "already-so" : "changed")
        << change;
  }
  EXPECT_EQ(first["changes"].size(), 10u) << first;
  const Json again = bench.Apply(state);
  EXPECT_EQ(again["status"], 0);
  EXPECT_EQ(again["changed"], false);
  const Json missing =
      bench.Apply(R"({"batteries": [{"battery": 3, "charging": {"mode": "express"}}]})");
  EXPECT_EQ(missing["status"], 3);
  const Json optional = bench.Apply(
      R"({"batteries": [{"battery": 3, "optional": true, "charging": {"mode": "express"}}]})");
  EXPECT_EQ(optional["status"], 0) << optional;
}

TEST(Apply, VerifiesThePasswordOnceBeforeAnyWrite) {
  const Bench bench(R"({"name": "bench", "base": "locked"})");
  const std::string state = R"({"attributes": {"FanFloor": 30}, "tags": {"asset": "NF-1"}})";
  const auto with = [&state](const std::string& secrets) {
    return R"({"state": )" + state + R"(, "secrets": )" + secrets + "}";
  };
  EXPECT_EQ(bench.Apply(state)["status"], 5);
  const Json wrong = bench.Apply(with(R"({"password": "wrong1"})"));
  EXPECT_EQ(wrong["status"], 5);
  EXPECT_EQ(wrong["error"]["name"], "password-wrong");
  EXPECT_EQ(Outcomes(wrong)["FanFloor"], "not-tried");
  EXPECT_EQ(bench.Writes(), 0u);
  EXPECT_EQ(bench.Apply(with(R"({"password": "setup1"})"))["status"], 0);
  // Neither is what is so already in want of it.
  EXPECT_EQ(bench.Apply(state)["status"], 0);
}

TEST(Apply, WritesSecretsOnlyWhereToldTo) {
  const Bench bench;
  const std::string state =
      R"({"state": {"attributes": {"Owner": {"secret": "owner"}, "Master": "On"}},
          "secrets": {"owner": "pass\u0077ord \"1\""}})";
  const Json without = bench.Apply(state);
  EXPECT_EQ(without["status"], 0) << without;
  EXPECT_EQ(Outcomes(without), (Expected{{"Owner", "not-tried"}, {"Master", "changed"}}));
  const std::string log = bench.File("apply.log");
  const Json with = bench.Apply(state, {"--yes", "--write-secrets", "--log", log});
  EXPECT_EQ(with["status"], 0) << with;
  EXPECT_EQ(Outcomes(with)["Owner"], "unknown");
  EXPECT_EQ(with["changed"], false);
  std::ifstream in(log, std::ios::binary);
  const std::string lines{std::istreambuf_iterator<char>(in), {}};
  EXPECT_NE(lines.find("\"written\""), std::string::npos);
  EXPECT_EQ((lines + with.dump()).find("password"), std::string::npos);
  const test::TemporaryFile secrets(R"({"owner": "abc"})");
  const Json shorter = bench.Apply(R"({"attributes": {"Owner": {"secret": "owner"}}})",
                                   {"--yes", "--write-secrets", "--secrets-file", secrets.path()});
  EXPECT_EQ(shorter["status"], 6) << shorter;
  const Json missing = bench.Apply(R"({"attributes": {"Owner": {"secret": "nobody"}}})",
                                   {"--yes", "--write-secrets"});
  EXPECT_EQ(missing["status"], 5);
  EXPECT_EQ(missing["error"]["slot"], "nobody");
}

TEST(Apply, ReportsWhatIsTrueAfterFaults) {
  const std::string state =
      R"({"attributes": {"Master": "On", "UsbFront": "On", "UsbRear": "On"}})";
  struct Case {
    Words fault;
    int status;
    Expected outcomes;
  };
  const Case cases[] = {
      {{"5/6", "--nth", "2", "--completion=-1"},
       10,
       {{"Master", "changed"}, {"UsbFront", "refused"}, {"UsbRear", "changed"}}},
      {{"5/6", "--nth", "2", "--hresult", "0x80041001"},
       10,
       {{"Master", "changed"}, {"UsbFront", "failed"}, {"UsbRear", "changed"}}},
      {{"5/6", "--nth", "2", "--lose", "connection", "--moment", "after"},
       0,
       {{"Master", "changed"}, {"UsbFront", "changed"}, {"UsbRear", "changed"}}},
      {{"5/6", "--nth", "2", "--lose", "connection"},
       10,
       {{"Master", "changed"}, {"UsbFront", "failed"}, {"UsbRear", "changed"}}},
      {{"5/6", "--nth", "2", "--lose", "power", "--moment", "after"},
       10,
       {{"Master", "changed"}, {"UsbFront", "unknown"}, {"UsbRear", "not-tried"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Json(c.fault).dump());
    const Bench bench;
    bench.Fault(c.fault);
    const std::string log = bench.File("apply.log");
    const Json document = bench.Apply(state, {"--yes", "--log", log});
    EXPECT_EQ(document["status"], c.status) << document;
    EXPECT_EQ(Outcomes(document), c.outcomes);
    std::ifstream in(log, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
      const Json json = Json::parse(line);
      if (json["event"] != "written") continue;
      for (const Json& change : json["changes"]) {
        EXPECT_EQ(change["after"].is_null(), change["outcome"] == "unknown") << change;
      }
    }
    // Whatever happened: once the machine runs again, running it again finishes.
    bench.Run({"sim", "fault", "clear"});
    bench.Restart();
    const Json again = bench.Apply(state);
    EXPECT_EQ(again["status"], 0) << again;
    for (const char* const name : {"Master", "UsbFront", "UsbRear"}) {
      EXPECT_EQ(bench.Value(name), "On\n") << name;
    }
  }
}

TEST(Apply, ReportsWhatALaterWriteUndid) {
  const Bench bench;
  const std::string state = R"({"attributes": {"Rounded": 20, "Preset": "Plain"}})";
  const Json first = bench.Apply(state);
  EXPECT_EQ(first["status"], 10);
  EXPECT_EQ(Outcomes(first), (Expected{{"Rounded", "failed"}, {"Preset", "changed"}}));
  EXPECT_EQ(first["changes"][0]["error"]["name"], "undone");
  EXPECT_EQ(first["changes"][0]["after"], 0);
  EXPECT_EQ(first["changes"][0]["wanted"], 20);
  EXPECT_EQ(bench.Apply(state)["status"], 0);
  EXPECT_EQ(bench.Apply(state)["changed"], false);
}

TEST(Apply, LogsEachWriteBeforeAndAfterIt) {
  const Bench bench;
  const std::string log = bench.File("apply.log");
  const std::string state = R"({"attributes": {"Master": "On", "Site": "a"}})";
  EXPECT_EQ(bench.Apply(state, {"--yes", "--log", log})["status"], 0);
  std::ifstream in(log, std::ios::binary);
  std::string events;
  for (std::string line; std::getline(in, line);) {
    const Json json = Json::parse(line);
    events += json.at("event").get<std::string>() + " ";
    if (json["event"] == "written" && json["entry"] == 2) {
      EXPECT_EQ(json["changes"][0]["after"], "A");
    }
  }
  EXPECT_EQ(events, "begin write written write written end ");
  const Json refused = bench.Apply(R"({"attributes": {"Site": "b"}})",
                                   {"--yes", "--log", bench.File("no folder/apply.log")});
  EXPECT_EQ(refused["status"], 1);
  EXPECT_EQ(refused["error"]["name"], "log-not-written");
  EXPECT_EQ(bench.Value("Site"), "A\n");
}

TEST(Apply, NeedsConsent) {
  const Bench bench;
  const ProgramResult result = bench.Run({"apply", "-"}, R"({"attributes": {"Master": "On"}})");
  EXPECT_EQ(result.status, 8);
  EXPECT_EQ(bench.Writes(), 0u);
}

#if !defined(_WIN32)

// The program in a process of its own, which a signal ends while the second write is under way.
int SignalInTheSecondWrite(const Bench& bench, int signal, const std::string& log) {
  bench.Fault({"5/6", "--nth", "2", "--delay", "700"});
  const std::string state = bench.File("state.json");
  std::ofstream(state) << R"({"attributes": {"Master": "On", "UsbFront": "On", "UsbRear": "On"}})";
  const pid_t program = fork();
  if (program == 0) {
    const ProgramResult result = bench.Run({"apply", state, "--yes", "--json", "--log", log});
    std::ofstream(bench.File("out.json")) << result.out;
    _exit(result.status);
  }
  const auto has_begun = [&log] {
    std::ifstream in(log, std::ios::binary);
    const std::string lines{std::istreambuf_iterator<char>(in), {}};
    return lines.find("UsbFront") != std::string::npos;
  };
  for (int i = 0; i < 3000 && !has_begun(); ++i) usleep(10000);
  kill(program, signal);
  int status = 0;
  waitpid(program, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Apply, IsFinishedByARunAfterAKill) {
  const Bench bench;
  const std::string log = bench.File("apply.log");
  EXPECT_EQ(SignalInTheSecondWrite(bench, SIGKILL, log), -1);
  std::ifstream in(log, std::ios::binary);
  std::string last;
  for (std::string line; std::getline(in, line);) last = line;
  EXPECT_EQ(Json::parse(last)["event"], "write") << "how far it came";
  bench.Run({"sim", "fault", "clear"});
  const Json document = bench.Apply(std::string(R"({"attributes": {"Usb*": "On"}})"));
  EXPECT_EQ(document["status"], 0) << document;
  EXPECT_EQ(bench.Value("Master") + bench.Value("UsbFront") + bench.Value("UsbRear"),
            "On\nOn\nOn\n");
}

TEST(Apply, FinishesTheWriteUnderWayWhenItIsInterrupted) {
  const Bench bench;
  const std::string log = bench.File("apply.log");
  EXPECT_EQ(SignalInTheSecondWrite(bench, SIGINT, log), 13);
  std::ifstream in(bench.File("out.json"));
  const Json document = Json::parse(in);
  EXPECT_EQ(document["error"]["name"], "cancelled");
  EXPECT_EQ(Outcomes(document),
            (Expected{{"Master", "changed"}, {"UsbFront", "changed"}, {"UsbRear", "not-tried"}}));
  EXPECT_EQ(bench.Value("UsbFront") + bench.Value("UsbRear"), "On\nOff\n");
}

#endif

TEST(Apply, LeavesNoSecretInFreedMemory) {
  if (!test::FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs AddressSanitizer";
  const std::string secret = "Vault-Passphrase-77";
  const Bench bench;
  const test::TemporaryFile file(
      R"({"state": {"attributes": {"Owner": {"secret": "owner"}}}, "secrets": {"owner": ")" +
      secret + R"("}})");
  const test::TemporaryFile apart(R"({"owner": ")" + secret + R"("})");
  const test::TemporaryFile state(R"({"attributes": {"Owner": {"secret": "owner"}}})");
  const test::FreedMemoryWatch watch(secret);
  EXPECT_EQ(bench.Run({"apply", file.path(), "--yes", "--write-secrets"}).status, 0);
  EXPECT_EQ(watch.Finds(), 0);
  const Words words = {"apply",           state.path(),     "--yes",
                       "--write-secrets", "--secrets-file", apart.path()};
  EXPECT_EQ(bench.Run(words).status, 0);
  EXPECT_EQ(watch.Finds(), 0);
  EXPECT_GT(watch.Blocks(), 0);
}

TEST(Patterns, FitWholeTexts) {
  struct Case {
    const char* pattern;
    const char* text;
    bool fits;
  };
  const Case cases[] = {
      {"", "", true},
      {"*", "", true},
      {"?", "", false},
      {"a*c", "abbc", true},
      {"a*c", "abcb", false},
      {"*a*b*", "xaxb", true},
      {"?\?", "\xC3\xA9x", true},
      {"A*", "ab", false},
      {"a**", "a", true},
      {"*.1", "1.1.1", true},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(client::FitsPattern(c.pattern, c.text), c.fits) << c.pattern << " " << c.text;
  }
}

TEST(Secrets, AreTakenOutOfAText) {
  std::string text =
      R"({"a": ["}", {"secrets": {"x": "y"}}], "secrets" : {"p": "q\n\u00e9\ud83d\ude00"}})";
  const auto taken = client::TakeSecretsBeside(text);
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->at("p").str(), "q\n\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(taken->size(), 1u);
  EXPECT_EQ(Json::parse(text)["secrets"]["p"].get<std::string>().find_first_not_of(' '),
            std::string::npos);
  EXPECT_EQ(Json::parse(text)["a"][1]["secrets"]["x"], "y");
}

}  // namespace
}  // namespace mira
