// BIOS attributes from the facade down to a firmware of a dozen of them: the calls that are made,
// what they bring, and what each failure is answered with.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "facade/mira_intf.h"
#include "pldm/progress.h"
#include "sim/firmware/firmware.h"
#include "sim/machine.h"
#include "tests/support/byte_builder.h"
#include "tests/support/checked_cursors.h"

namespace mira {
namespace {

using test::ByteBuilder;
using test::Bytes;

constexpr unsigned kNoKey = 0xFFFFFFFF;

// Where things stand in a record.
constexpr std::size_t kData = 48;
constexpr std::size_t kBlockHandle = kData + 20;
constexpr std::size_t kBlockValue = kData + 24;

struct Table {
  std::uint8_t type;
  std::uint8_t kind;
  Bytes bytes;
  std::uint8_t index = 0xFF;  // its place, if not told
};

Bytes Strings() {
  ByteBuilder table;
  std::uint16_t handle = 0;
  for (const char* const name : {"Wake", "Label[new]", "Fan", "BootOrder", "Disk", "Net", "Secret",
                                 "Group", "Profile", "Locked"}) {
    table.String(++handle, name);
  }
  return table.String(20, "Off")
      .String(21, "On[fast]")
      .String(22, "Auto")
      .String(23, "All")
      .Table();
}

// String and attribute handles are alike, as a boot order's sources need it.
Bytes Attributes() {
  ByteBuilder table;
  table.U16(10).U8(128).U16(10).U8(2).U16(20).U16(21).U8(1).U8(0);
  table.U16(1).U8(0).U16(1).U8(3).U16(20).U16(21).U16(22).U8(2).U8(1).U8(2);
  table.U16(2).U8(1).U16(2).U8(1).U16(2).U16(40).Text("none");
  table.U16(3).U8(3).U16(3).U64(10).U64(90).U32(5).U64(50);
  table.U16(4).U8(4).U16(4).U8(1).U8(1).U8(0).U8(2).U8(2).U16(5).U16(6);
  table.U16(5).U8(0).U16(5).U8(0).U8(0);
  table.U16(6).U8(0).U16(6).U8(1).U16(99).U8(0);
  table.U16(7).U8(2).U16(7).U8(1).U16(4).U16(16).Text("");
  table.U16(8).U8(5).U16(8).U16(23).U8(3).U8(9);
  table.U16(9).U8(6).U16(9).U8(2).U16(5).U16(6);
  table.U16(11).U8(3).U16(98).U64(0).U64(1).U32(1).U64(0);  // has neither name nor value
  return table.Table();
}

Bytes Values() {
  ByteBuilder table;
  table.U16(1).U8(0).U8(2).U8(0).U8(2);
  table.U16(2).U8(1).Text("at boot");
  table.U16(3).U8(3).U64(18446744073709551615u);
  table.U16(4).U8(4).U8(1).U8(2).U8(2).U8(1).U8(0);
  table.U16(5).U8(0).U8(1).U8(3);
  table.U16(6).U8(0).U8(1).U8(0);
  table.U16(7).U8(2).Text("hush");
  table.U16(8).U8(5).U8(2).U16(1).U16(3);
  table.U16(9).U8(6).U8(1);
  table.U16(10).U8(128).U8(1).U8(1);
  table.U16(12).U8(0).U8(0);
  return table.Table();
}

std::vector<Table> ThreeTables() {
  return {{0, 0, Strings()}, {1, 0, Attributes()}, {2, 0, Values()}};
}

std::vector<Table> TablesWithTexts() {
  std::vector<Table> tables = ThreeTables();
  tables.push_back({3, 0, ByteBuilder().String(1, u"Lets the LAN wake the machine").Table()});
  tables.push_back({3, 1, ByteBuilder().String(1, u"Wake on LAN").Table()});
  tables.push_back({3, 7, ByteBuilder().String(1, u"Neither").Table()});
  return tables;
}

// Class 5 as the firmware sees it.
class AttributeFirmware : public sim::CommandHandler {
 public:
  explicit AttributeFirmware(std::vector<Table> tables) : tables_(std::move(tables)) {}

  void Handle(sim::Call& call) override {
    switch (call.Select()) {
      case 3:
        call.AnswerData(Directory());
        return;
      case 4:
        return Answer(call, tables_.at(call.Arg(3)).bytes, call.Arg(4));
      case 5: {
        test::CheckedWriter out(call.Record(), kBlockValue);
        out.U8(0);
        out.Bytes(live[HandleIn(call)]);
        return;
      }
      case 6: {
        const std::size_t size = test::CheckedReader(call.Record(), kBlockHandle + 2).U16();
        const auto sent = bytes::Slice(call.Record(), kBlockValue, size);
        written.assign(sent.begin(), sent.end());
        last_handle = HandleIn(call);
        if (status == 0) live[last_handle].assign(sent.begin() + 1, sent.end());
        test::CheckedWriter(call.Record(), kBlockValue + size).U8(status);
        return;
      }
      default:
        return call.Complete(sim::kNotSupported);
    }
  }

  // The value parts that a live read answers, by handle.
  std::map<std::uint16_t, Bytes> live;
  std::uint8_t status = 0;  // of writes
  Bytes written;
  std::uint16_t last_handle = 0;
  std::uint32_t stated_size = 0;  // of every table, if not 0

 private:
  static std::uint16_t HandleIn(const sim::Call& call) {
    return test::CheckedReader(call.Record(), kBlockHandle).U16();
  }

  Bytes Directory() const {
    ByteBuilder out;
    out.Raw("$ACI")
        .U8(2)
        .U8(0)
        .U16(0)
        .Raw("INFO")
        .U32(24 + 16 * tables_.size())
        .U32(0)
        .U16(0)
        .U8(0);
    out.U8(tables_.size());
    for (std::size_t i = 0; i < tables_.size(); ++i) {
      const Table& table = tables_[i];
      out.U8(table.type).U8(table.kind).U32(0).U8(0).U8(table.index != 0xFF ? table.index : i);
      out.U32(table.bytes.size()).U32(0);
    }
    return out.Done();
  }

  // A call without room asks for the size; one with room gets as much as fits.
  void Answer(sim::Call& call, const Bytes& bytes, std::size_t offset) const {
    const auto area = call.DataArea();
    if (!area) return call.Complete(sim::kBadFormat);
    if (area->empty()) {
      test::CheckedWriter(call.Record(), 44)
          .U32(stated_size != 0 ? stated_size : static_cast<std::uint32_t>(bytes.size()));
      return call.Complete(sim::kTooSmall);
    }
    call.AnswerData(bytes::Slice(bytes, offset, area->size()));
  }

  std::vector<Table> tables_;
};

sim::Profile WithBuffer(std::uint32_t size) {
  sim::Profile profile;
  profile.buffer_size = size;
  return profile;
}

// A host that started on a machine with these tables.
class Host {
 public:
  explicit Host(std::vector<Table> tables = ThreeTables(),
                const sim::Profile& profile = sim::Profile())
      : machine_(profile), session_(machine_), mira_(diagnostics_) {
    auto handler = std::make_unique<AttributeFirmware>(std::move(tables));
    firmware_ = handler.get();
    machine_.GetFirmware().SetHandler(5, std::move(handler));
  }
  Status Start(bool display = false, bool help = false) { return mira_.Init(true, display, help); }
  Status Set(PLDM::Attribute& attribute) {
    return mira_.SetAttributeValue(attribute, "", PwdInfo::PWD_NONE, kNoKey);
  }
  CMiraIntf* operator->() { return &mira_; }
  CMiraIntf& mira() { return mira_; }
  AttributeFirmware& firmware() { return *firmware_; }
  sim::Machine& machine() { return machine_; }
  std::string diagnostics() const { return diagnostics_.str(); }

  // The class-5 calls since the last time: select, table, offset, room, completion code.
  std::string Calls() {
    std::ostringstream out;
    for (const sim::JournalEntry& call : machine_.Journal()) {
      if (call.cls != 5) continue;
      out << call.select << '/' << call.args[2] << '+' << call.args[3] << " ("
          << call.record_length - kData << ")->" << call.completion << ' ';
    }
    machine_.GetFirmware().ClearJournal();
    return out.str();
  }

 private:
  sim::Machine machine_;
  sim::Session session_;
  std::ostringstream diagnostics_;
  AttributeFirmware* firmware_ = nullptr;
  CMiraIntf mira_;
};

// A host with the tables loaded and the calls for it forgotten.
class LoadedHost : public Host {
 public:
  explicit LoadedHost(const sim::Profile& profile = sim::Profile()) : Host(ThreeTables(), profile) {
    EXPECT_EQ(Start(), STATUS_SUCCESS);
    Calls();
  }
};

PLDM::Integer Fan(std::uint64_t value = 0) {
  PLDM::Integer fan;
  fan.Name = "Fan";
  fan.Value = value;
  return fan;
}

std::size_t Count(CMiraIntf& mira) {
  std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>> list;
  mira.GetAttributeHandlesAndTypes(list);
  return list.size();
}

TEST(AttributeLoad, MakesTheseCallsInThisOrder) {
  struct Case {
    const char* what;
    std::uint32_t buffer_size;
    std::vector<Table> tables;
    const char* calls;
    std::size_t attributes;
  };
  const Bytes strings = ByteBuilder().String(1, std::string(90, 's')).String(5, "Disk").Table();
  const Bytes attributes = ByteBuilder().U16(5).U8(6).U16(5).U8(2).U16(5).U16(5).Table();
  const Case cases[] = {
      {"no tables", 4096, {}, "3/0+0 (0)->-6 3/0+0 (24)->0 ", 0},
      {"one call each, string data later",
       4096,
       {{0, 0, strings}, {3, 0, strings}, {1, 0, attributes}},
       "3/0+0 (0)->-6 3/0+0 (72)->0 4/0+0 (0)->-6 4/0+0 (108)->0 4/2+0 (0)->-6 4/2+0 (16)->0 ",
       1},
      {"strings in chunks, attributes at once",
       182,
       {{0, 0, strings}, {1, 0, Attributes()}},
       "3/0+0 (0)->-6 3/0+0 (56)->0 4/0+0 (0)->-6 4/0+0 (90)->0 4/0+90 (90)->0 4/1+0 (0)->-6 ",
       0},
      {"an index that is no place, and no descriptor's",
       4096,
       {{1, 0, attributes, 7}, {0, 0, strings, 2}, {1, 0, attributes, 2}},
       "3/0+0 (0)->-6 3/0+0 (72)->0 4/2+0 (0)->-6 4/2+0 (16)->0 4/2+0 (0)->-6 4/2+0 (16)->0 ",
       1},
      {"a type that is fetched, not parsed",
       140,
       {{16, 1, attributes}},
       "3/0+0 (0)->-6 3/0+0 (40)->0 4/0+0 (0)->-6 4/0+0 (16)->0 ",
       0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Host host(c.tables, WithBuffer(c.buffer_size));
    EXPECT_EQ(host.Start(), STATUS_SUCCESS);
    EXPECT_EQ(host.Calls(), c.calls);
    EXPECT_EQ(Count(host.mira()), c.attributes);
    EXPECT_EQ(host.diagnostics(), "");
    EXPECT_EQ(host.Start(), STATUS_SUCCESS);
    EXPECT_EQ(host.Calls(), "") << "loaded once";
  }
}

TEST(AttributeLoad, PutsChunksTogether) {
  for (const std::uint32_t size : {93u, 94u, 100u, 139u, 140u, 150u, 300u, 400u}) {
    SCOPED_TRACE(size);
    const Bytes attributes = ByteBuilder().U16(9).U8(6).U16(9).U8(0).Table();
    Host host({{0, 0, Strings()}, {1, 0, attributes}}, WithBuffer(size));
    EXPECT_EQ(host.Start(), STATUS_SUCCESS);
    // The directory is read at once and needs 56 bytes of data.
    EXPECT_EQ(host->IsPLDMSupported(), size >= 104);
    std::string name;
    EXPECT_EQ(host->GetAttributeName(9, name), size >= 104 ? STATUS_SUCCESS : STATUS_NOT_SUPPORTED);
    EXPECT_EQ(name, size >= 104 ? "Profile" : "");
  }
}

TEST(AttributeLoad, LeavesTheMachineUnsupportedWhenAFetchFails) {
  struct Case {
    const char* what;
    sim::Fault fault;
    bool supported;
  };
  const auto table_says = [](int nth, std::uint32_t length) {
    return sim::Fault{.operation = "firmware 5/4", .nth = nth, .corrupt = [length](Bytes& reply) {
                        test::CheckedWriter(reply, 44).U32(length);
                      }};
  };
  const auto fails = [](const char* operation, int nth, std::int32_t completion) {
    return sim::Fault{.operation = operation, .nth = nth, .completion = completion};
  };
  const Case cases[] = {
      {"the directory's probe fails", fails("firmware 5/3", 1, -1), false},
      {"it is not supported", fails("firmware 5/3", 1, -2), false},
      {"its read fails", fails("firmware 5/3", 2, -5), false},
      {"a table's probe fails", fails("firmware 5/4", 1, -1), false},
      {"it fails otherwise and says nothing", fails("firmware 5/4", 1, -3), false},
      {"the first chunk fails", fails("firmware 5/4", 2, 7), false},
      {"a later chunk fails", fails("firmware 5/4", 3, -1), false},
      {"the attributes fail", fails("firmware 5/4", 5, -1), false},
      {"a chunk is empty", table_says(3, 0), false},
      {"a chunk is shorter than asked", table_says(2, 20), true},
      {"a chunk is longer than asked", table_says(2, 109), false},
      {"the last chunk has too much", table_says(3, 108), false},
      {"a table is larger than anything", table_says(1, 16 * 1024 * 1024 + 1), false},
      {"the transport fails",
       {.operation = "IWbemServices::ExecMethod", .nth = 4, .result = -1},
       false},
      {"none", {.operation = "LocalFree"}, true}};
  const Bytes strings = ByteBuilder().String(3, std::string(140, 's')).Table();
  const Bytes attributes = ByteBuilder().U16(3).U8(6).U16(3).U8(0).Table();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Host host({{0, 0, strings}, {1, 0, attributes}}, WithBuffer(200));
    host.machine().GetFaults().Add(c.fault);
    EXPECT_EQ(host.Start(), STATUS_SUCCESS) << "that shows in IsPLDMSupported alone";
    EXPECT_EQ(host->IsPLDMSupported(), c.supported);
    EXPECT_EQ(Count(host.mira()), c.supported ? 1u : 0u);
    host.machine().GetFaults().Clear();
    EXPECT_EQ(host.Start(), STATUS_SUCCESS);
    EXPECT_EQ(host->IsPLDMSupported(), c.supported) << "for the life of the object";
  }
}

TEST(AttributeLoad, BeginsEachTableInChunksAtItsStart) {
  const Bytes first = ByteBuilder().String(3, std::string(140, 's')).Table();
  const Bytes second = ByteBuilder().String(4, std::string(140, 't')).Table();
  const Bytes attributes = ByteBuilder().U16(4).U8(6).U16(4).U8(0).Table();
  Host host({{0, 0, first}, {0, 0, second}, {1, 0, attributes}}, WithBuffer(200));
  EXPECT_EQ(host.Start(), STATUS_SUCCESS);
  EXPECT_EQ(host.Calls(),
            "3/0+0 (0)->-6 3/0+0 (72)->0 "
            "4/0+0 (0)->-6 4/0+0 (108)->0 4/0+108 (108)->0 "
            "4/1+0 (0)->-6 4/1+0 (108)->0 4/1+108 (108)->0 "
            "4/2+0 (0)->-6 4/2+0 (12)->0 ");
  std::string name;
  EXPECT_EQ(host->GetAttributeName(4, name), STATUS_SUCCESS);
  EXPECT_EQ(name, std::string(140, 't'));
}

TEST(AttributeLoad, BelievesNoTableLargerThanAnyTransfer) {
  struct Case {
    std::uint32_t stated;
    const char* calls;
  };
  constexpr std::uint32_t kLargest = 16 * 1024 * 1024;
  const Case cases[] = {{kLargest,
                         "3/0+0 (0)->-6 3/0+0 (40)->0 "
                         "4/0+0 (0)->-6 4/0+0 (108)->0 4/0+108 (108)->0 4/0+148 (108)->0 "},
                        {kLargest + 1, "3/0+0 (0)->-6 3/0+0 (40)->0 4/0+0 (0)->-6 "}};
  for (const Case& c : cases) {
    Host host({{0, 0, ByteBuilder().String(3, std::string(140, 's')).Table()}}, WithBuffer(200));
    host.firmware().stated_size = c.stated;
    EXPECT_EQ(host.Start(), STATUS_SUCCESS);
    EXPECT_EQ(host.Calls(), c.calls);
    EXPECT_FALSE(host->IsPLDMSupported());
  }
}

TEST(AttributeLoad, NeedsClass5AndBeingAsked) {
  sim::Profile without = sim::Profile();
  without.supported_classes &= ~0x20u;
  Host host(ThreeTables(), without);
  EXPECT_EQ(host.Start(), STATUS_SUCCESS);
  EXPECT_FALSE(host->IsPLDMSupported());
  EXPECT_EQ(host.Calls(), "");
  Host not_asked;
  EXPECT_EQ(not_asked->Init(false, true, true), STATUS_SUCCESS);
  EXPECT_FALSE(not_asked->IsPLDMSupported());
  EXPECT_EQ(not_asked.Calls(), "");
  EXPECT_EQ(not_asked.Start(), STATUS_SUCCESS);
  EXPECT_TRUE(not_asked->IsPLDMSupported()) << "asked later";
}

TEST(AttributeLoad, SurvivesCorruptReplies) {
  for (const char* const command : {"firmware 5/3", "firmware 5/4", "firmware 5/5"}) {
    for (std::size_t at = 20; at < 140; at += 3) {
      SCOPED_TRACE(command + std::to_string(at));
      Host host(TablesWithTexts(), WithBuffer(400));
      host.firmware().live[1] = {1, 2};
      host.machine().GetFaults().Add({.operation = command,
                                      .nth = 0,
                                      .corrupt = [at](Bytes& reply) { reply.at(at) ^= 0xFF; }});
      host.Start(true, true);
      PLDM::Enumeration attribute;
      attribute.Handle = 1;
      host->GetAttributeValue(attribute);
      host->GetAttributeValueAtBoot(attribute);
      std::string text;
      host->GetAttributeValueAtBoot(4, text);
    }
  }
}

// A directory entry for texts that names the value table: asking for texts reads the values anew.
TEST(AttributeLoad, KeepsItsValuesWhereTextsAreValues) {
  std::vector<Table> tables = ThreeTables();
  tables.push_back({3, 1, {}, 2});
  Host host(tables);
  ASSERT_EQ(host.Start(true, true), STATUS_SUCCESS);
  PLDM::Enumeration attribute;
  attribute.Handle = 1;
  EXPECT_EQ(host->GetAttributeValueAtBoot(attribute), STATUS_SUCCESS);
  EXPECT_EQ(attribute.CurrentIndices, (std::list<std::uint8_t>{0, 2}));
}

TEST(AttributeStore, TellsHowFarAFetchIs) {
  static std::ostringstream told;
  pldm::SetProgress(
      [](unsigned table, unsigned tables, std::uint32_t received, std::uint32_t total) {
        told << table << '/' << tables << ':' << received << '/' << total << ' ';
      });
  const Bytes strings = ByteBuilder().String(3, std::string(140, 's')).Table();
  Host host({{0, 0, strings}, {2, 0, Values()}}, WithBuffer(200));
  host.Start();
  pldm::SetProgress(nullptr);
  EXPECT_EQ(told.str(), "1/2:108/148 1/2:148/148 2/2:84/84 ");
}

TEST(AttributeStore, AnswersWithoutTables) {
  Host host;  // not started
  std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>> handles = {{1, PLDM::BIOSInteger}};
  std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> names = {{"kept", PLDM::BIOSInteger}};
  host->GetAttributeHandlesAndTypes(handles);
  host->GetAttributeNamesAndTypes(names);
  EXPECT_EQ(handles.size(), 1u);
  EXPECT_EQ(names.size(), 1u);
  std::string text = "kept";
  std::list<std::string> list = {"kept"};
  PLDM::Integer attribute;
  attribute.Handle = 3;
  EXPECT_FALSE(host->IsPLDMSupported());
  EXPECT_EQ(host->GetAttributeType(3), PLDM::BIOSUnknownType);
  EXPECT_EQ(host->GetAttributeName(3, text), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(host->GetAttributeValue(attribute), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(host->GetAttributeValueAtBoot(attribute), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(host->GetAttributeValueAtBoot(3, text), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(host.Set(attribute), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(host->GetAttributeDefault(3, text), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(host->GetPossibleValues(3, list), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(list.size(), 1u);
}

TEST(AttributeStore, IsSharedByCopies) {
  LoadedHost host;
  {
    CMiraIntf copy(host.mira());
    EXPECT_EQ(Count(copy), 11u);
    EXPECT_EQ(copy.Init(true, false, false), STATUS_SUCCESS);
  }
  EXPECT_TRUE(host->IsPLDMSupported()) << "the copy has ended";
}

TEST(AttributeQuery, ListsInOrderOfHandles) {
  LoadedHost host;
  std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> names = {{"gone", PLDM::BIOSInteger}};
  host->GetAttributeNamesAndTypes(names);
  const std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> expected = {
      {"Wake", PLDM::BIOSEnumeration},  {"Label", PLDM::BIOSString},
      {"Fan", PLDM::BIOSInteger},       {"BootOrder", PLDM::BIOSBootConfigSetting},
      {"Disk", PLDM::BIOSEnumeration},  {"Net", PLDM::BIOSEnumeration},
      {"Secret", PLDM::BIOSPassword},   {"Group", PLDM::BIOSCollection},
      {"Profile", PLDM::BIOSConfigSet}, {"Locked", PLDM::BIOSEnumerationReadOnly},
      {"", PLDM::BIOSInteger}};
  EXPECT_EQ(names, expected);
  std::string name;
  EXPECT_EQ(host->GetAttributeName(2, name), STATUS_SUCCESS);
  EXPECT_EQ(name, "Label");
  EXPECT_EQ(host->GetAttributeName(77, name), STATUS_ATTRIBUTE_NOT_FOUND);
  EXPECT_EQ(host->GetAttributeType(10), PLDM::BIOSEnumerationReadOnly);
  EXPECT_EQ(host->GetAttributeType(77), PLDM::BIOSUnknownType);
}

TEST(AttributeQuery, GivesValuesAtBootDefaultsAndChoicesAsText) {
  struct Case {
    std::uint16_t handle;
    Status status;
    const char* value;  // behind what was there, where it is appended
    Status known;
    const char* default_text;
    std::list<std::string> choices;
  };
  const Case cases[] = {
      {1,
       STATUS_SUCCESS,
       "was;OffAuto",
       STATUS_SUCCESS,
       "On[fast], Auto",
       {"Off", "On[fast]", "Auto"}},
      {2, STATUS_SUCCESS, "at boot", STATUS_SUCCESS, "none", {}},
      {3, STATUS_SUCCESS, "18446744073709551615", STATUS_SUCCESS, "50", {}},
      {4, STATUS_SUCCESS, "was;Net;Disk;", STATUS_SUCCESS, "", {"Disk", "Net"}},
      {5, STATUS_FAILURE, "was;", STATUS_SUCCESS, "", {}},    // no such choice
      {6, STATUS_FAILURE, "was;", STATUS_SUCCESS, "", {""}},  // a choice without a string
      {7, STATUS_SUCCESS, "hush", STATUS_SUCCESS, "", {}},
      {8, STATUS_SUCCESS, "was;", STATUS_SUCCESS, "", {}},
      {9, STATUS_SUCCESS, "was;", STATUS_SUCCESS, "", {"Disk", "Net"}},
      {10, STATUS_SUCCESS, "was;On", STATUS_SUCCESS, "Off", {"Off", "On[fast]"}},
      {11, STATUS_FAILURE, "was;", STATUS_SUCCESS, "0", {}},                 // no value
      {12, STATUS_SUCCESS, "was;", STATUS_ATTRIBUTE_NOT_FOUND, "-", {"-"}},  // a value alone
      {77, STATUS_FAILURE, "was;", STATUS_ATTRIBUTE_NOT_FOUND, "-", {"-"}}};
  LoadedHost host;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.handle);
    std::string text = "was;";
    EXPECT_EQ(host->GetAttributeValueAtBoot(c.handle, text), c.status);
    EXPECT_EQ(text, c.value);
    text = "-";
    EXPECT_EQ(host->GetAttributeDefault(c.handle, text), c.known);
    EXPECT_EQ(text, c.default_text);
    std::list<std::string> names = {"-"};
    EXPECT_EQ(host->GetPossibleValues(c.handle, names), c.known);
    EXPECT_EQ(names, c.choices);
  }
  EXPECT_EQ(host.Calls(), "") << "all of it is in the tables";
}

// What a read leaves in the object of any type, as one text.
std::string Text(const PLDM::Attribute& attribute) {
  std::ostringstream out;
  out << attribute.Handle << ' ' << attribute.Name << attribute.Suffix;
  const auto list = [&out](const char* what, const auto& values) {
    out << ' ' << what;
    for (auto value : values) {
      if constexpr (std::is_same_v<decltype(value), std::string>) {
        out << ' ' << value;
      } else {
        out << ' ' << unsigned{value};
      }
    }
  };
  const auto text = [&out](const auto& a) {
    out << ' ' << a.MinLength << '-' << a.MaxLength << ' ' << a.Value;
  };
  if (const auto* const e = dynamic_cast<const PLDM::Enumeration*>(&attribute)) {
    list("of", e->PossibleValues);
    list("suffixed", e->SuffixedValues);
    list("default", e->DefaultValues);
    list("at", e->DefaultIndices);
    list("is", e->CurrentIndices);
  } else if (const auto* const s = dynamic_cast<const PLDM::String*>(&attribute)) {
    text(*s);
  } else if (const auto* const p = dynamic_cast<const PLDM::Password*>(&attribute)) {
    text(*p);
  } else if (const auto* const i = dynamic_cast<const PLDM::Integer*>(&attribute)) {
    out << ' ' << i->LowerBound << '-' << i->UpperBound << '/' << i->ScalarIncrement << ' ';
    out << i->Value;
  } else if (const auto* const b = dynamic_cast<const PLDM::BootConfigSetting*>(&attribute)) {
    out << ' ' << +b->MinSources << '-' << +b->MaxSources << ' ' << b->BootConfigType << ' '
        << b->FailThroughMode;
    list("order", b->OrderedSources);
  } else if (const auto* const c = dynamic_cast<const PLDM::Collection*>(&attribute)) {
    out << ' ' << c->CollectionName << ' ' << +c->CollectionType;
    list("members", c->Members);
  } else if (const auto* const m = dynamic_cast<const PLDM::ConfigSet*>(&attribute)) {
    out << ' ' << m->SelectedMember;
  }
  return out.str();
}

TEST(AttributeRead, FillsEachType) {
  struct Case {
    std::uint16_t handle;
    const char* name;
    const char* fixed;  // what is alike at boot and now
    const char* at_boot;
    Bytes live;
    const char* now;
  };
  const Case cases[] = {
      {1,
       "Wake",
       "1 Wake of Off On Auto suffixed On[fast] default On Auto at 1 2 is",
       " 0 2",
       {1, 1},
       " 1"},
      {2, "Label", "2 Label[new] 2-40 ", "at boot", {3, 0, 'n', 'o', 'w'}, "now"},
      {3, "Fan", "3 Fan 10-90/5 ", "18446744073709551615", {60, 1, 0, 0, 0, 0, 0, 0}, "316"},
      {4, "BootOrder", "4 BootOrder 0-2 ", "1 2 order Net Disk", {3, 4, 1, 0}, "3 4 order Disk"},
      {7, "Secret", "7 Secret 4-16 ", "hush", {0, 0}, ""},
      {8, "Group", "8 Group All 9 members", " 1 3", {1, 2, 1}, " 258"},
      {9, "Profile", "9 Profile ", "Net", {0}, "Disk"},
      {10,
       "Locked",
       "10 Locked of Off On suffixed On[fast] default Off at 0 is",
       " 1",
       {1, 0},
       " 0"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    LoadedHost host;
    const auto attribute = PLDM::MakeAttribute(host->GetAttributeType(c.handle));
    attribute->Name = c.name;
    attribute->Handle = 77;  // the name wins
    EXPECT_EQ(host->GetAttributeValueAtBoot(*attribute), STATUS_SUCCESS);
    EXPECT_EQ(Text(*attribute), std::string(c.fixed) + c.at_boot);
    EXPECT_EQ(host.Calls(), "");
    host.firmware().live[attribute->Handle] = c.live;
    attribute->Name.clear();  // by handle
    EXPECT_EQ(host->GetAttributeValue(*attribute), STATUS_SUCCESS);
    EXPECT_EQ(Text(*attribute), std::string(c.fixed) + c.now);
    EXPECT_EQ(host.Calls(), "5/0+0 (162)->0 ");
    EXPECT_EQ(host->GetAttributeValueAtBoot(*attribute), STATUS_SUCCESS);
    EXPECT_EQ(Text(*attribute), std::string(c.fixed) + c.at_boot) << "boot values stay";
  }
}

TEST(AttributeRead, RefusesWithoutACall) {
  struct Case {
    const char* what;
    PLDM::ATTRIBUTE_TYPE type;
    const char* name;
    std::uint16_t handle;
    Status status;
    std::uint16_t resolved;
  };
  const Case cases[] = {
      // First: nothing was exchanged yet that could be read again.
      {"a type that does not exist", static_cast<PLDM::ATTRIBUTE_TYPE>(7), "", 3, STATUS_FAILURE,
       3},
      {"neither name nor handle", PLDM::BIOSInteger, "", 0, STATUS_ATTRIBUTE_NOT_FOUND, 0},
      {"unknown name, known handle", PLDM::BIOSInteger, "Fann", 3, STATUS_ATTRIBUTE_NOT_FOUND, 0},
      {"a name in another case", PLDM::BIOSInteger, "fan", 0, STATUS_ATTRIBUTE_NOT_FOUND, 0},
      {"unknown handle", PLDM::BIOSInteger, "", 77, STATUS_ATTRIBUTE_NOT_FOUND, 77},
      {"an object of another class", PLDM::BIOSString, "Label", 0, STATUS_FAILURE, 2},
      {"an attribute of another type", PLDM::BIOSInteger, "Label", 0, STATUS_FAILURE, 2}};
  LoadedHost host;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    PLDM::Integer attribute;
    attribute.Type = c.type;
    attribute.Name = c.name;
    attribute.Handle = c.handle;
    EXPECT_EQ(host->GetAttributeValue(attribute), c.status);
    EXPECT_EQ(host.Calls(), "");
    EXPECT_EQ(attribute.Handle, c.resolved);
  }
  PLDM::Integer without_value;
  without_value.Handle = 11;
  EXPECT_EQ(host->GetAttributeValueAtBoot(without_value), STATUS_FAILURE);
  host.firmware().live[2] = {200, 0, 'a'};  // the record has no room for 200 characters
  PLDM::String cut;
  cut.Handle = 2;
  EXPECT_EQ(host->GetAttributeValue(cut), STATUS_OUTPUT_MALFORMED);
}

TEST(AttributeRead, FetchesTextsWhenTheyAreFirstWanted) {
  struct Case {
    bool display;
    bool help;
    const wchar_t* display_text;
    const wchar_t* help_text;
    const char* calls;
  };
  const Case cases[] = {
      {false, false, L"", L"", ""},
      {true, false, L"Wake on LAN", L"",
       "4/4+0 (0)->-6 4/4+0 (32)->0 4/5+0 (0)->-6 4/5+0 (24)->0 "},
      {true, true, L"Wake on LAN", L"Lets the LAN wake the machine",
       "4/4+0 (0)->-6 4/4+0 (32)->0 4/5+0 (0)->-6 4/5+0 (24)->0 "
       "4/3+0 (0)->-6 4/3+0 (68)->0 4/5+0 (0)->-6 4/5+0 (24)->0 "},
  };
  for (const Case& c : cases) {
    Host host(TablesWithTexts());
    host.Start(c.display, c.help);
    host.Calls();
    PLDM::Enumeration attribute;
    attribute.Handle = 1;
    EXPECT_EQ(host->GetAttributeValueAtBoot(attribute), STATUS_SUCCESS);
    EXPECT_EQ(attribute.DisplayText, c.display_text);
    EXPECT_EQ(attribute.HelpText, c.help_text);
    EXPECT_EQ(host.Calls(), c.calls);
    EXPECT_EQ(host->GetAttributeValueAtBoot(attribute), STATUS_SUCCESS);
    EXPECT_EQ(host.Calls(), "") << "once";
  }
  Host failing(TablesWithTexts());
  failing.Start(true, true);
  failing.machine().GetFaults().Add({.operation = "firmware 5/4", .nth = 2, .completion = -1});
  PLDM::Enumeration attribute;
  attribute.Handle = 1;
  EXPECT_EQ(failing->GetAttributeValueAtBoot(attribute), STATUS_NOT_SUPPORTED);
  EXPECT_FALSE(failing->IsPLDMSupported());
}

TEST(AttributeCall, MapsCompletionCodes) {
  struct Case {
    std::int32_t completion;
    Status status;
  };
  const Case cases[] = {{-1, STATUS_FUNCTION_ERROR},
                        {-2, STATUS_NOT_SUPPORTED},
                        {-3, STATUS_FUNCTION_NOT_EXECUTED},
                        {-4, STATUS_FAILURE},
                        {-5, STATUS_OUTPUT_MALFORMED},
                        {-6, STATUS_OUTPUT_TOO_SMALL},
                        {-7, STATUS_INVALID_SECURITY_KEY},
                        {-8, STATUS_FAILURE},
                        {-2000000000, STATUS_FAILURE},
                        {-2000000001, STATUS_TRANSPORT_ERROR},
                        {-2147483647 - 1, STATUS_TRANSPORT_ERROR},
                        {1, STATUS_FAILURE}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.completion);
    LoadedHost host;
    host.machine().GetFaults().Add({.operation = "firmware", .nth = 0, .completion = c.completion});
    PLDM::Integer attribute = Fan();
    EXPECT_EQ(host->GetAttributeValue(attribute), c.status);
    EXPECT_EQ(host.Set(attribute), c.status);
  }
}

TEST(AttributeWrite, MapsTheFirmwaresStatus) {
  LoadedHost host;
  std::vector<int> statuses;
  for (host.firmware().status = 0; host.firmware().status < 7; ++host.firmware().status) {
    PLDM::Integer attribute = Fan();
    statuses.push_back(host.Set(attribute));
  }
  EXPECT_EQ(statuses, (std::vector<int>{0, 17, 18, 19, 6, 20, 0}));
}

// An object of the type, made known by `set`.
template <typename T, typename Set>
std::shared_ptr<PLDM::Attribute> Make(const char* name, Set set) {
  auto attribute = std::make_shared<T>();
  attribute->Name = name;
  set(*attribute);
  return attribute;
}

TEST(AttributeWrite, SendsEachType) {
  struct Case {
    std::shared_ptr<PLDM::Attribute> attribute;
    std::uint16_t handle;
    Bytes encoded;
  };
  const Case cases[] = {
      {Make<PLDM::Enumeration>("Wake",
                               [](auto& a) {
                                 a.CurrentIndices = {2, 0};
                               }),
       1,
       {0, 2, 2, 0}},
      {Make<PLDM::String>("Label", [](auto& a) { a.Value = "ab"; }), 2, {1, 2, 0, 'a', 'b'}},
      // Beyond its bounds: that is for the firmware to say.
      {Make<PLDM::Integer>("Fan", [](auto& a) { a.Value = 511; }),
       3,
       {3, 255, 1, 0, 0, 0, 0, 0, 0}},
      {Make<PLDM::BootConfigSetting>("BootOrder",
                                     [](auto& a) {
                                       a.BootConfigType = 1;
                                       a.FailThroughMode = 3;
                                       a.OrderedSources = {"Net", "Floppy", "Disk", "Fan"};
                                     }),
       4,
       {4, 1, 3, 4, 1, 2, 0, 2}},
      {Make<PLDM::Password>("Secret", [](auto& a) { a.Value = "ps"; }), 7, {2, 2, 0, 'p', 's'}},
      {Make<PLDM::Collection>("Group",
                              [](auto& a) {
                                a.Members = {0x102, 3};
                              }),
       8,
       {5, 2, 2, 1, 3, 0}},
      {Make<PLDM::ConfigSet>("Profile", [](auto& a) { a.SelectedMember = "Net"; }), 9, {6, 1}},
      {Make<PLDM::ConfigSet>("", [](auto& a) { a.Handle = 9; }), 9, {6, 2}},
      {Make<PLDM::Integer>("Fann", [](auto& a) { a.Handle = 3; }), 0, {3, 0, 0, 0, 0, 0, 0, 0, 0}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.handle);
    LoadedHost host;
    EXPECT_EQ(host.Set(*c.attribute), STATUS_SUCCESS);
    EXPECT_EQ(host.firmware().last_handle, c.handle);
    EXPECT_EQ(host.firmware().written, c.encoded);
    EXPECT_EQ(c.attribute->Handle, c.handle) << "written back";
  }
}

TEST(AttributeWrite, IsSeenByTheNextReadOnly) {
  LoadedHost host;
  PLDM::Integer fan = Fan(35);
  EXPECT_EQ(host.Set(fan), STATUS_SUCCESS);
  EXPECT_EQ(host->GetAttributeValueAtBoot(fan), STATUS_SUCCESS);
  EXPECT_EQ(fan.Value, 18446744073709551615u);
  EXPECT_EQ(host->GetAttributeValue(fan), STATUS_SUCCESS);
  EXPECT_EQ(fan.Value, 35u);
}

TEST(AttributeWrite, RefusesWhatNoRequestCanCarry) {
  for (const auto& attribute :
       {Make<PLDM::Integer>("Fan", [](auto& a) { a.Type = PLDM::BIOSString; }),
        Make<PLDM::Enumeration>("Wake", [](auto& a) { a.CurrentIndices.assign(256, 0); }),
        Make<PLDM::String>("Label", [](auto& a) { a.Value.assign(65533, 'x'); }),
        Make<PLDM::BootConfigSetting>("BootOrder", [](auto& a) { a.BootConfigType = 256; })}) {
    LoadedHost host;
    EXPECT_EQ(host.Set(*attribute), STATUS_FAILURE);
    EXPECT_EQ(host.Calls(), "");
  }
}

TEST(AttributeWrite, OfAReadOnlyTypeSendsWhatWasExchangedLast) {
  LoadedHost host;
  PLDM::Enumeration locked;
  locked.Type = PLDM::BIOSEnumerationReadOnly;
  locked.Name = "Locked";
  EXPECT_EQ(host.Set(locked), STATUS_FAILURE);
  EXPECT_EQ(host.Calls(), "") << "nothing was exchanged yet";
  host.firmware().live[3] = {7, 0, 0, 0, 0, 0, 0, 0};
  PLDM::Integer fan = Fan();
  EXPECT_EQ(host->GetAttributeValue(fan), STATUS_SUCCESS);
  EXPECT_EQ(host.Set(locked), STATUS_SUCCESS);
  EXPECT_EQ(host.firmware().last_handle, 3);
  EXPECT_EQ(host.firmware().written, (Bytes{3, 7, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(AttributeWrite, TakesAKeyAndKeepsIt) {
  sim::Profile profile;
  profile.class9.text = "setup1";
  profile.class10.text = "system1";
  LoadedHost host(profile);
  PLDM::Integer fan = Fan();
  struct Case {
    const char* what;
    const char* password;
    PwdInfo::PWDTYPE type;
    unsigned key;
    Status status;
    std::uint32_t sent;
    bool from_password;
  };
  const Case cases[] = {
      {"none yet", "", PwdInfo::PWD_NONE, kNoKey, STATUS_SUCCESS, 0, false},
      {"given", "", PwdInfo::PWD_NONE, 0x1234, STATUS_SUCCESS, 0x1234, false},
      {"the one before", "", PwdInfo::PWD_NONE, kNoKey, STATUS_SUCCESS, 0x1234, false},
      {"the password wins", "setup1", PwdInfo::PWD_CLASS9, 0x99, STATUS_SUCCESS, 0, true},
      {"its key stays", "", PwdInfo::PWD_NONE, kNoKey, STATUS_SUCCESS, 0, true},
      {"of class 10", "system1", PwdInfo::PWD_CLASS10, kNoKey, STATUS_SUCCESS, 0, true},
      {"of the wrong class", "system1", PwdInfo::PWD_CLASS12, 0x99, STATUS_SECURITY_KEY_FAILED, 0,
       false},
      {"another one given", "", PwdInfo::PWD_NONE, 0x55, STATUS_SUCCESS, 0x55, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    host.machine().GetFirmware().ClearJournal();
    EXPECT_EQ(host->SetAttributeValue(fan, c.password, c.type, c.key), c.status);
    const auto& journal = host.machine().Journal();
    const bool wrote = !journal.empty() && journal.back().cls == 5;
    EXPECT_EQ(wrote, c.status == STATUS_SUCCESS);
    if (!wrote) continue;
    EXPECT_EQ(journal.back().masked[1], c.from_password) << "the journal hides keys of passwords";
    EXPECT_EQ(journal.back().args[1], c.sent);
  }
}

TEST(AttributeStore, LetsNoExceptionOut) {
  sim::Profile profile;
  profile.supported_classes = 0x80000021;
  Host host(ThreeTables(), profile);
  EXPECT_EQ(host.Start(), STATUS_SUCCESS);
  EXPECT_FALSE(host->IsPLDMSupported());
  EXPECT_EQ(host.diagnostics(),
            "Loading the attribute tables failed: stoi argument out of range\n");
}

}  // namespace
}  // namespace mira
