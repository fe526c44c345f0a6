// The simulated firmware's state: what writes leave behind, what is kept of it, what a restart and
// a loss of power do to it. The records are built here, apart from the library's buffers.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bytes/reader.h"
#include "bytes/writer.h"
#include "sim/machine.h"
#include "tests/support/byte_builder.h"
#include "tests/support/checked_cursors.h"
#include "tests/support/expected_record.h"
#include "tests/support/freed_memory.h"

namespace mira {
namespace {

using test::Area;
using test::ByteBuilder;
using test::Bytes;
using test::Nul;

// A call's record; `kinds` has a 1 in the byte of every argument that is an offset.
struct Request {
  std::uint16_t cls;
  std::uint16_t select;
  std::vector<std::uint32_t> args;
  std::uint32_t kinds = 0;
  std::string area = "";
};

struct Answer {
  std::int32_t completion;
  std::vector<std::uint32_t> results;
  std::string area;
};

Answer Send(sim::Machine& machine, const Request& request) {
  ByteBuilder record;
  record.U16(request.cls).U16(request.select);
  for (std::size_t i = 0; i < 4; ++i) record.U32(i < request.args.size() ? request.args[i] : 0);
  for (int i = 0; i < 4; ++i) record.U32(0);
  record.U32(request.kinds).U32(44 + request.area.size()).Raw(request.area);
  std::vector<std::uint8_t> array = record.Done();
  sim::Faults none;
  machine.GetFirmware().Execute(array, none);
  test::CheckedReader in(array, 20);
  Answer answer{static_cast<std::int32_t>(in.U32()), {in.U32(), in.U32(), in.U32()}, ""};
  in.Seek(44);
  answer.area = bytes::AsText(in.Rest());
  return answer;
}

std::string StateOf(const sim::Machine& machine) { return machine.SaveState().str(); }

std::string Padded(std::string text, std::size_t size) {
  text.resize(size);
  return text;
}

// A change of a password whose fields are `field` bytes long.
Request Change(const std::string& old_text, const std::string& new_text, std::size_t field) {
  std::string area = Padded(old_text, field) + new_text;
  return {9, 5, {44}, 1, Padded(area, 2 * field + 1)};
}

TEST(SimulatedPasswords, AreFoundInAChangeByTheRecordsLength) {
  struct Case {
    const char* old_text;
    const char* new_text;
    std::size_t field;
    std::int32_t completion;
  };
  const Case cases[] = {
      {"tencharact", "characters", 10, 0},  // both as long as their fields
      {"tencharact", "short", 10, 0},
      {"tencharact", "characters", 11, 0},
      {"tencharact", "elevencharx", 11, 3},
      {"tencharact", "new", 33, 3},
      {"tencharac", "characters", 10, 2},
      {"tencharact", "", 10, 0},
      {"", "", 0, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.old_text << " " << c.new_text << " " << c.field);
    sim::Profile profile;
    profile.class9 = {.text = "tencharact", .max_length = 10, .min_length = 4};
    sim::Machine machine(profile);
    EXPECT_EQ(Send(machine, Change(c.old_text, c.new_text, c.field)).completion, c.completion);
    const std::string now = c.completion == 0 ? c.new_text : "tencharact";
    if (now.empty()) continue;
    EXPECT_EQ(Send(machine, {9, 4, {44}, 1, Nul(now)}).completion, 0);
  }
}

std::string AttributeBlock(std::uint16_t handle, const std::string& value) {
  ByteBuilder block;
  block.Raw("$ACIPLDM").U32(0).U32(24 + value.size() + 1).U32(0x00020001);
  block.U16(handle).U16(value.size()).Raw(value).U8(0);
  std::string text(bytes::AsText(block.Done()));
  unsigned sum = 0;
  for (const char c : text) sum += static_cast<unsigned char>(c);
  text[11] = static_cast<char>(0u - sum);
  return Area(static_cast<std::uint32_t>(text.size()), 0) + text;
}

std::string BatteryDays() { return Area(32, 0) + std::string("\0\0\1\0", 4) + std::string(28, 0); }

TEST(SimulatedState, IsSeenByLaterCommandsAndKept) {
  struct Case {
    const char* what;
    Request write;
    Request read;
    Answer expected;  // an empty area: nobody looks
  };
  const Case cases[] = {
      {"token", {1, 0, {0x70, 7}}, {0, 0, {0x70}}, {0, {7, 0, 0}, ""}},
      {"data block",
       {2, 1, {44, 0x4F474F4C, 3}, 1, "new"},
       {2, 0, {0, 0x4F474F4C}},
       {0, {3, 64, 0}, ""}},
      {"data block of class 6",
       {6, 5, {44, 0x45544F4E, 2}, 1, "ab"},
       {6, 4, {0, 0x45544F4E}},
       {0, {2, 32, 0}, ""}},
      {"chosen boot list", {3, 1, {0}}, {3, 0, {}}, {0, {0, 1, 0}, ""}},
      {"legacy priorities",
       {3, 5, {44, 48}, 0x0101, std::string("\3\2\1\0\0\1\2\3", 8)},
       {3, 3, {44, 52, 120}, 0x010101, Area(4, 1) + Area(64, 16) + Area(4, 1)},
       {0, {0, 0, 0}, ""}},
      {"next start", {3, 7, {1, 0x12}}, {3, 8, {}}, {0, {1, 0x12, 0}, ""}},
      {"boot order",
       {3, 12, {0, 44}, 0x0100, std::string("\3\0\2\0\1\0\0\0", 8)},
       {3, 0, {}},
       {0, {1, 1, 0}, ""}},
      {"attribute",
       {5, 6, {44}, 1, AttributeBlock(6, std::string("\1\3\0new", 6))},
       {3, 0, {}},
       {0, {1, 1, 0}, ""}},
      {"word of class 7", {7, 6, {0, 1, 0xABCD}}, {7, 6, {}}, {0, {0xABCD, 0, 0}, ""}},
      {"charging",
       {8, 19, {0x0100, 0x005A3C03, 44}, 0x010000, BatteryDays()},
       {8, 18, {0x0100, 44}, 0x0100, Area(32, 8)},
       {0, {0x005A3C03, 0, 0}, ""}},
      {"peak shift",
       {8, 19, {0x0101, 0x640F2801, 44}, 0x010000, BatteryDays()},
       {8, 18, {0x0104, 44}, 0x0100, Area(32, 8)},
       {0, {0x640F2801, 0, 0}, ""}},
      {"password",
       {9, 5, {44}, 1, Padded(std::string(32, '\0') + "setup1", 65)},
       {9, 3, {}},
       {0, {0x01042000, 0, 0}, ""}},
      {"drive password",
       {10, 14, {1, 44, 45}, 0x010100, Nul("") + Nul("drive1")},
       {10, 13, {1, 44}, 0x0100, Nul("drive1")},
       {0, {0, 0, 0}, ""}},
      {"asset tag", {11, 1, {0x41, 0, 0}}, {11, 0, {}}, {0, {0x41, 0, 0}, ""}},
      {"service tag", {11, 3, {0x42, 0, 0}}, {11, 2, {}}, {0, {0x42, 0, 0}, ""}},
      {"image server",
       {11, 5, {44}, 1, Area(2, 0) + Nul("s")},
       {11, 4, {44}, 1, Area(8, 2)},
       {0, {0, 0, 0}, Area(2, 0) + Nul("s") + "CIDSCI"}},
      {"MAC address",
       {11, 7, {44}, 1, Area(13, 0) + Nul("020000000001")},
       {11, 6, {44}, 1, Area(13, 0) + std::string(13, ' ')},
       {0, {0, 0, 0}, Area(13, 0) + Nul("020000000001")}},
      {"extended tag",
       {11, 9, {1, 44}, 0x0100, Nul("x")},
       {11, 8, {1, 44}, 0x0100, Area(4, 1)},
       {0, {0, 0, 0}, Area(1, 0) + "xSCI"}},
      {"message", {17, 14, {2}}, {17, 5, {44}, 1, Area(16, 4)}, {0, {0, 0, 0}, ""}},
      {"ownership tag",
       {20, 1, {44}, 1, "Mine" + std::string(80, ' ') + Nul("")},
       {23, 0, {44}, 1, Area(81, 0) + std::string(81, '.')},
       {0, {0, 0, 0}, Area(81, 0) + "Mine" + std::string(76, ' ') + Nul("")}},
      {"ePPID",
       {21, 2, {44}, 1, std::string("PPID\x1E\0", 6) + std::string(23, 'A') + "\x7E"},
       {21, 1, {44}, 1, std::string("PPID\x1E\0", 6) + std::string(24, '.')},
       {0, {0, 0, 0}, std::string("PPID\x1E\0", 6) + std::string(23, 'A') + "\x7E"}},
      {"thin client",
       {26, 1, {1, 0, 44}, 0x010000, Area(2, 0) + Nul("t")},
       {26, 1, {0, 0, 44}, 0x010000, Area(4, 1)},
       {0, {0, 0, 0}, Area(2, 0) + Nul("t") + "CI"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::Machine machine;
    const std::string before = StateOf(machine);
    ASSERT_EQ(Send(machine, c.write).completion, 0);
    const std::string after = StateOf(machine);
    EXPECT_NE(after, before);

    sim::Machine restored;
    restored.RestoreState(after);
    for (sim::Machine* const reader : {&machine, &restored}) {
      const Answer answer = Send(*reader, c.read);
      EXPECT_EQ(answer.completion, c.expected.completion);
      EXPECT_EQ(answer.results, c.expected.results);
      if (!c.expected.area.empty()) {
        EXPECT_EQ(answer.area, c.expected.area);
      }
    }
    EXPECT_EQ(StateOf(restored), after) << "a read changes nothing";
    machine.Reboot();
    restored.Reboot();
    EXPECT_EQ(StateOf(restored), StateOf(machine));
    restored.RestoreState(before);
    EXPECT_EQ(StateOf(restored), before) << "what was changed goes back, too";
  }
}

TEST(SimulatedState, KeepsNothingOfWhatWasRefusedAndDoesNotGrow) {
  sim::Machine machine(*sim::FindProfile("locked"));
  const std::string before = StateOf(machine);
  const std::uint32_t key = Send(machine, {9, 4, {44}, 1, Nul("setup1")}).results[0];
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(Send(machine, {9, 4, {44}, 1, Nul("setup1")}).results[0], key);
  }
  EXPECT_EQ(StateOf(machine), before) << "keys that are handed out leave nothing behind";

  struct Case {
    const char* what;
    Request request;
    std::int32_t completion;
  };
  const Case refused[] = {
      {"wrong old password", Change("REFUSED", "another", 32), 2},
      {"new password too short", Change("setup1", "RE!", 32), 3},
      {"wrong password", {9, 4, {44}, 1, Nul("REFUSED")}, 2},
      {"wrong drive password",
       {10, 14, {1, 44, 52, 53}, 0x01010100, Nul("REFUSED") + Nul("") + Nul("setup1")},
       3},
      {"no key", {11, 9, {0, 44, 1}, 0x0100, Nul("REFUSED")}, -7},
      {"no such tag", {11, 9, {9, 44, key}, 0x0100, Nul("REFUSED")}, -1},
      {"no printable text", {11, 9, {0, 44, key}, 0x0100, Nul("REFUSED\n")}, -1},
  };
  for (const Case& c : refused) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Send(machine, c.request).completion, c.completion);
    EXPECT_EQ(StateOf(machine).find("REFUSED"), std::string::npos);
    EXPECT_EQ(StateOf(machine).find("RE!"), std::string::npos);
    sim::Machine restored(*sim::FindProfile("locked"));
    restored.RestoreState(StateOf(machine));
    EXPECT_EQ(StateOf(restored), StateOf(machine));
  }
  // The right password resets its counter, whatever becomes of the change: kept as well.
  Send(machine, {9, 4, {44}, 1, Nul("REFUSED")});
  EXPECT_NE(StateOf(machine).find("\"wrongAttempts\": 1"), std::string::npos);
  EXPECT_EQ(Send(machine, Change("setup1", "RE!", 32)).completion, 3);
  EXPECT_EQ(
      Send(machine, {10, 13, {1, 44, 51}, 0x010100, Nul("drive1") + Nul("setup1")}).completion, 0);
  EXPECT_EQ(StateOf(machine), before);

  machine.Reboot();
  EXPECT_NE(Send(machine, {9, 4, {44}, 1, Nul("setup1")}).results[0], key);
  EXPECT_EQ(Send(machine, {1, 0, {0x70, 7, key}}).completion, -7) << "keys end with the restart";
}

TEST(SimulatedState, LosesWithThePowerWhatWasToBeWrittenLater) {
  sim::Machine machine;
  const auto word = [&machine] { return Send(machine, {7, 5, {}}).results[0]; };
  Send(machine, {7, 5, {0, 1, 11}});
  machine.Reboot();
  Send(machine, {7, 5, {0, 1, 12}});
  Send(machine, {11, 1, {0x41}});
  EXPECT_EQ(word(), 12u);
  machine.LosePower();
  EXPECT_EQ(word(), 11u);
  EXPECT_EQ(Send(machine, {11, 0, {}}).results[0], 0x41u) << "written at once";
  EXPECT_EQ(machine.GetFirmware().BootCount(), 3);
}

TEST(SimulatedState, RefusesDocumentsThatAreNotItsOwn) {
  sim::Machine machine;
  Send(machine, {1, 0, {0x70, 7}});
  const std::string state = StateOf(machine);
  struct Case {
    const char* from;
    const char* to;
    const char* complaint;
  };
  const Case cases[] = {
      {"\"profile\": \"laptop\"", "\"profile\": \"locked\"", "another machine"},
      {"\"schemaVersion\": 1", "\"schemaVersion\": 2", "version"},
      {"\"starts\": 1", "\"starts\": 1.5", "line 4"},
      {"\"starts\": 1", "\"starts\": -3000000000", "/starts"},
      {"\"starts\": 1", "\"start\": 1", "'starts' is missing"},
      {"\"thinClient\"", "\"more\": 1,\n\"thinClient\"", "'more' is unknown"},
      {"\"asset\": \"", "\"asset\": 4, \"x\": \"", "/firmware/tags/asset"},
      {"\"chosenList\": 1", "\"chosenList\": 256", "/firmware/boot/chosenList"},
      {"\"order\": [1, 0", "\"order\": [1, 1", "every option once"},
      {"\"LOGO\": \"", "\"LOGO\": \"x", "/firmware/dataBlocks2/LOGO"},
      {"\"attributes\": {", "\"attributes\": {\"No\": {\"now\": \"\", \"atStart\": \"\"}",
       "an attribute is unknown"},
      {"\"attributes\": {", "\"attributes\": {\"VlanId\": {\"now\": \"5000\", \"atStart\": \"0\"}",
       "VlanId"},
      {"{", "{{", "line 1"},
      {"\n}\n", "\n", "'}' is missing"},
      {"}\n", "}\n}\n", "behind the document"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.to);
    std::string changed = state;
    const std::size_t place =
        c.to[0] == '\n' || c.to[0] == '}' ? changed.rfind(c.from) : changed.find(c.from);
    ASSERT_NE(place, std::string::npos);
    changed.replace(place, std::string(c.from).size(), c.to);
    try {
      machine.RestoreState(changed);
      ADD_FAILURE() << "taken";
    } catch (const sim::StateError& error) {
      EXPECT_NE(std::string(error.what()).find(c.complaint), std::string::npos) << error.what();
    }
    EXPECT_EQ(StateOf(machine), state) << "nothing is taken in part";
  }
  // Wherever it ends too early.
  for (std::size_t size = 0; size + 2 < state.size(); size += 11) {
    EXPECT_THROW(machine.RestoreState(state.substr(0, size)), sim::StateError) << size;
  }
  machine.RestoreState(state);
}

TEST(SimulatedState, TakesDocumentsOfEarlierVersions) {
  sim::Machine machine;
  Send(machine, {1, 0, {0x70, 7}});
  const std::string state = StateOf(machine);
  const std::string member = ",\n  \"isOff\": false";
  std::string earlier = state;
  const std::size_t place = earlier.find(member);
  ASSERT_NE(place, std::string::npos) << state;
  earlier.erase(place, member.size());
  sim::Machine off;
  off.GetFaults().Add({.operation = "firmware", .loss = sim::Loss::kPower});
  std::vector<std::uint8_t> lost(44);
  off.GetFirmware().Execute(lost, off.GetFaults());
  ASSERT_TRUE(off.GetFirmware().IsOff());
  off.RestoreState(earlier);
  EXPECT_EQ(StateOf(off), state) << "machines were never off then";
}

TEST(SimulatedState, LeavesNoPasswordInFreedMemory) {
  if (!test::FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs the address sanitizer";
  sim::Profile profile;
  profile.class9.text = "Installed-Password-09";
  sim::Machine machine(profile);
  const test::FreedMemoryWatch watch(profile.class9.text);
  {
    const bytes::SecureString state = machine.SaveState();
    machine.RestoreState(state.str());
    EXPECT_THROW(machine.RestoreState(state.str().substr(0, 5)), sim::StateError);
  }
  EXPECT_GT(watch.Blocks(), 0);
  EXPECT_EQ(watch.Finds(), 0);
}

TEST(SimulatedState, IsADocumentThatSaysWhatItHolds) {
  sim::Profile profile;
  profile.asset_tag = "caf\xE9 \"5\"";
  profile.class9.text = "setup1";
  sim::Machine machine(profile);
  const std::string state = StateOf(machine);
  for (const char* const part :
       {"{\n  \"schemaVersion\": 1,\n  \"profile\": \"laptop\",\n  \"starts\": 1,",
        "\"asset\": \"caf\xC3\xA9 \\\"5\\\"\"", "\"112\": {\n        \"current\": 1,",
        "\"password\": {\n          \"secret\": \"setup1\"\n        }", "\"nextStart\": null",
        "\"LOGO\": \"4e6f7274686669656c64\"", "\"iplPriority\": \"01000203\""}) {
    EXPECT_NE(state.find(part), std::string::npos) << part << "\n" << state;
  }
}

}  // namespace
}  // namespace mira
