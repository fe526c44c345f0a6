// One call from the host to the firmware and back, and the tokens of the calling interface.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "buffers/legacy_bbs_data.h"
#include "facade/mira_intf.h"
#include "sim/machine.h"
#include "sim/smbios_builder.h"
#include "smbios/structure_copy.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using test::Host;

sim::Profile WithTable(sim::SmbiosTable table) {
  sim::Profile profile;
  profile.firmware_table = table.Finish();
  return profile;
}

sim::Structure CallingInterface(std::uint16_t handle, std::uint32_t classes,
                                const std::vector<sim::Token>& tokens) {
  sim::Structure structure(218, handle);
  structure.Word(0xB2).Byte(0x4D).DWord(classes);
  for (const sim::Token& token : tokens) {
    structure.Word(token.id).Word(token.location).Word(token.value);
  }
  return structure;
}

TEST(Call, ReachesTheFirmwareAndComesBack) {
  Host host;
  ASSERT_EQ(host.init_status(), STATUS_SUCCESS);
  CSimpleTokenData write;
  write.Arg1 = 0x70;
  write.Arg2 = 0x55AA;
  EXPECT_EQ(host->ExecuteDACI(1, 0, write, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  CSimpleTokenData pending;
  pending.Arg1 = 0x70;
  EXPECT_EQ(host->ExecuteDACI(0, 0, pending, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ(pending.Res1, 0);
  EXPECT_EQ(pending.Res2, 0x55AAu);
  CSimpleTokenData current = pending;
  EXPECT_EQ(host->ExecuteDACI(0, 1, current, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ(current.Res2, 1u) << "in force only after a restart";
  host.machine().Reboot();
  EXPECT_EQ(host->ExecuteDACI(0, 1, current, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ(current.Res2, 0x55AAu);

  const auto& journal = host.machine().Journal();
  ASSERT_EQ(journal.size(), 4u);
  EXPECT_EQ(journal[0].cls, 1);
  EXPECT_EQ(journal[0].args[1], 0x55AAu);
  EXPECT_EQ(journal[0].record_length, 44u);
}

TEST(Call, ReportsWhatWentWrong) {
  struct Case {
    const char* what;
    std::uint16_t cls;
    std::uint16_t select;
    std::uint32_t location;
    Status status;
    std::int32_t completion;
    std::size_t firmware_calls;
  };
  const Case cases[] = {
      {"served", 0, 0, 0x70, STATUS_SUCCESS, 0, 1},
      {"unknown location", 0, 0, 0x7777, STATUS_FAILURE, -1, 1},
      {"unknown select", 0, 9, 0x70, STATUS_FAILURE, -2, 1},
      {"class that is not announced", 13, 0, 0, STATUS_NOT_SUPPORTED, 0, 0},
      {"select without a buffer", 2, 7, 0, STATUS_NOT_SUPPORTED, 0, 0},
      {"class 64 is not checked, but has no buffer", 64, 0, 0, STATUS_NOT_SUPPORTED, 0, 0},
      {"class 3 select 4 asks first, then has no buffer", 3, 4, 0, STATUS_NOT_SUPPORTED, 0, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Host host;
    CSimpleTokenData data;
    data.Arg1 = c.location;
    EXPECT_EQ(host->ExecuteDACI(c.cls, c.select, data, "", PwdInfo::PWD_NONE), c.status);
    EXPECT_EQ(data.Res1, c.completion);
    EXPECT_EQ(host.machine().Journal().size(), c.firmware_calls);
    EXPECT_EQ(host.diagnostics(), "");
  }
}

TEST(Call, ReportsTransportFailuresAsSuch) {
  const char* const operations[] = {"IWbemServices::ExecMethod", "IWbemClassObject::Put",
                                    "SafeArrayCreate",           "SafeArrayPutElement",
                                    "SafeArrayAccessData",       "IUnknown::QueryInterface"};
  for (const char* const operation : operations) {
    SCOPED_TRACE(operation);
    Host host;
    host.machine().GetFaults().Add(
        {.operation = operation, .nth = 0, .result = static_cast<std::int32_t>(0x80041001)});
    CSimpleTokenData data;
    data.Arg1 = 0x70;
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
    EXPECT_EQ(data.Res1, -3) << "did not execute";
    host.machine().GetFaults().Clear();
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  }
}

TEST(Call, SurvivesCorruptReplies) {
  const std::vector<std::function<void(std::vector<std::uint8_t>&)>> corruptions = {
      [](auto& reply) { reply.clear(); },
      [](auto& reply) { reply.resize(43); },
      [](auto& reply) { std::fill(reply.begin(), reply.end(), std::uint8_t{0xFF}); },
      [](auto& reply) { reply.resize(100000, 0xAA); },
  };
  for (const auto& corrupt : corruptions) {
    Host host;
    host.machine().GetFaults().Add({.operation = "firmware 0/0", .nth = 1, .corrupt = corrupt});
    CSimpleTokenData data;
    data.Arg1 = 0x70;
    const Status status = host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE);
    EXPECT_EQ(status, data.Res1 == 0 ? STATUS_SUCCESS : STATUS_FAILURE);
  }
}

TEST(Call, DiagnosesAMissingOrForeignInterface) {
  {
    Host host(WithTable(sim::SmbiosTable(3, 2).Add(sim::Structure(0, 1))));
    CSimpleTokenData data;
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
    EXPECT_EQ(host.diagnostics(), "Unable to get DA Type Object!\n");
    std::map<std::uint16_t, CDAToken> tokens;
    tokens.emplace(1, CDAToken(1, 2, 3));
    host->GetAllDATokens(tokens);
    EXPECT_TRUE(tokens.empty());
  }
  {
    Host host(WithTable(sim::SmbiosTable(3, 2).Add(sim::Structure(0, 1))));
    CBIOSObject* const foreign =
        new CBIOSObject(smbios::CopyStructure(sim::Structure(218, 7).Build()));
    CMiraIntf::m_mapBIOSTable[218] = foreign;
    CSimpleTokenData data;
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
    EXPECT_EQ(host.diagnostics(), "Down cast failed!\n");
  }
}

TEST(Call, LetsNoExceptionOut) {
  struct Foreign : IBIOSData {};
  {
    Host host;
    Foreign foreign;
    EXPECT_EQ(host->ExecuteDACI(0, 0, foreign, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
    EXPECT_EQ(host.diagnostics().substr(0, 20), "ExecuteDACI failed: ");
    EXPECT_EQ(host.diagnostics().find('\n'), host.diagnostics().size() - 1) << "one line";
  }
  {
    sim::Profile profile;
    profile.supported_classes = 0x80000001;
    Host host(profile);
    CSimpleTokenData data;
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
    EXPECT_EQ(host.diagnostics(), "ExecuteDACI failed: stoi argument out of range\n");
  }
}

TEST(Call, RefusesBuffersThatNoFirmwareHas) {
  struct Case {
    std::uint32_t size;
    Status status;
  };
  const Case cases[] = {{32, STATUS_FAILURE},
                        {44, STATUS_SUCCESS},
                        {16 * 1024 * 1024, STATUS_SUCCESS},
                        {16 * 1024 * 1024 + 1, STATUS_FAILURE},
                        {0xFFFFFFFF, STATUS_FAILURE}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    sim::Profile profile;
    profile.buffer_size = c.size;
    Host host(profile);
    CSimpleTokenData data;
    data.Arg1 = 0x70;
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), c.status);
    EXPECT_EQ(host.machine().Journal().size(), c.status == STATUS_SUCCESS ? 1u : 0u);
  }
}

TEST(CallingInterface, ReadsItsTokens) {
  struct Case {
    const char* what;
    std::vector<sim::Token> tokens;
    std::vector<std::uint16_t> ids;
  };
  const Case cases[] = {
      {"ascending on output", {{5, 1, 1}, {3, 1, 1}, {0xFFFF, 0, 0}}, {3, 5}},
      {"empty table", {{0xFFFF, 0, 0}, {3, 1, 1}}, {}},
      {"no terminator", {{3, 1, 1}, {4, 1, 1}}, {3, 4}},
      {"a repeated id stops the parse", {{3, 1, 1}, {4, 1, 1}, {3, 9, 9}, {5, 1, 1}}, {3, 4}},
      {"nothing counts behind the terminator", {{3, 1, 1}, {0xFFFF, 0, 0}, {4, 1, 1}}, {3}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Host host(WithTable(sim::SmbiosTable(3, 2).Add(CallingInterface(1, 1, c.tokens))));
    std::map<std::uint16_t, CDAToken> tokens;
    host->GetAllDATokens(tokens);
    std::vector<std::uint16_t> ids;
    for (const auto& [id, token] : tokens) ids.push_back(id);
    EXPECT_EQ(ids, c.ids);
  }
}

TEST(CallingInterface, LooksAlongItsChain) {
  Host host(WithTable(sim::SmbiosTable(3, 2)
                          .Add(CallingInterface(1, 0x9, {{3, 0x10, 1}, {0xFFFF, 0, 0}}))
                          .Add(CallingInterface(2, 0x2, {{3, 0x20, 2}, {4, 0x21, 3}}))));
  auto* const calling = dynamic_cast<CCallingInterface*>(host->GetBIOSObject(218));
  ASSERT_NE(calling, nullptr);
  std::uint16_t id = 0;
  std::uint16_t location = 0;
  std::uint16_t value = 0;
  ASSERT_NE(calling->GetDAToken(3), nullptr);
  calling->GetDAToken(3)->TokenInfo(id, location, value);
  EXPECT_EQ(location, 0x10) << "of equal ids the first stays";
  ASSERT_NE(calling->GetDAToken(4), nullptr);
  EXPECT_EQ(calling->GetDAToken(5), nullptr);
  EXPECT_TRUE(calling->IsCommandSupported(0));
  EXPECT_TRUE(calling->IsCommandSupported(3));
  EXPECT_TRUE(calling->IsCommandSupported(35));
  EXPECT_FALSE(calling->IsCommandSupported(1));

  AttributeMap attributes;
  calling->GetAttributes(attributes);
  const AttributeMap expected = {
      {1, {{"CommandIOAddress", "178"}, {"CommandIOCode", "77"}, {"SupportedCommands", "9"}}},
      {2, {{"CommandIOAddress", "178"}, {"CommandIOCode", "77"}, {"SupportedCommands", "2"}}}};
  EXPECT_EQ(attributes, expected);

  const std::string banner =
      "------------------------------------ Calling Interface : Type 0xDA "
      "------------------------------------\n";
  const std::string dashes = std::string(103, '-') + "\n";
  const std::string second = banner +
                             "Type : da\nLength : 17\nHandle : 2\n"
                             "Command I/O Address : 178\nCommand I/O Code : 77\n"
                             "Supported Commands : 2\n"
                             "DA Token Information  - Token : 3\tValue : 2\tLocation : 20\n"
                             "DA Token Information  - Token : 4\tValue : 3\tLocation : 21\n" +
                             dashes;
  std::ostringstream dump;
  calling->Display(dump);
  // Behind its own tokens an object shows the next object, and then that object's tokens once more.
  EXPECT_EQ(dump.str(), banner +
                            "Type : da\nLength : 17\nHandle : 1\n"
                            "Command I/O Address : 178\nCommand I/O Code : 77\n"
                            "Supported Commands : 9\n"
                            "DA Token Information  - Token : 3\tValue : 1\tLocation : 10\n" +
                            second +
                            "DA Token Information  - Token : 3\tValue : 2\tLocation : 20\n"
                            "DA Token Information  - Token : 4\tValue : 3\tLocation : 21\n" +
                            dashes);
}

// What is announced is the published attribute of the first object's handle, so of objects with one
// handle the last one's classes count.
TEST(CallingInterface, AnnouncesWhatTheLastObjectOfItsHandleSays) {
  struct Case {
    const char* what;
    std::uint16_t handles[3];
    Status class0;
    Status class1;
    Status class2;
  };
  constexpr Status kNo = STATUS_NOT_SUPPORTED;
  const Case cases[] = {
      {"one handle", {1, 1, 1}, kNo, kNo, STATUS_FAILURE},
      {"the last has another", {1, 1, 2}, kNo, STATUS_SUCCESS, kNo},
      {"the first has its own", {1, 2, 2}, STATUS_SUCCESS, kNo, kNo},
      {"the first and the last", {1, 2, 1}, kNo, kNo, STATUS_FAILURE},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::SmbiosTable table(3, 2);
    for (int i = 0; i < 3; ++i) {
      table.Add(CallingInterface(c.handles[i], 1u << i, {{0xFFFF, 0, 0}}));
    }
    Host host(WithTable(table.Add(sim::Structure(177, 9).Word(2).Word(0).Word(0).Word(0))));
    ASSERT_EQ(host.init_status(), STATUS_SUCCESS);
    const auto call = [&host](std::uint16_t cls) {
      CSimpleTokenData data;
      data.Arg1 = 0x70;
      return host->ExecuteDACI(cls, 0, data, "", PwdInfo::PWD_NONE);
    };
    EXPECT_EQ(call(0), c.class0);
    EXPECT_EQ(call(1), c.class1);
    EXPECT_EQ(call(2), c.class2) << "its request is another type's";
  }
}

// A call that only asks for the answer's size is no place for a key.
TEST(Call, SendsTheKeyWithTheLastCallOnly) {
  sim::Profile profile;
  profile.class9.text = "right";
  constexpr std::uint16_t kProbed[] = {5, 16, 18, 22, 24};
  for (const std::uint16_t select : kProbed) {
    SCOPED_TRACE(select);
    Host host(profile);
    CSimpleTokenData data;
    data.KeyArgIndex = 4;
    host->ExecuteDACI(17, select, data, "right", PwdInfo::PWD_CLASS9);
    const auto& journal = host.machine().Journal();
    ASSERT_GE(journal.size(), 2u);
    const sim::JournalEntry& probe = journal[journal.size() - 2];
    EXPECT_EQ(probe.cls, 17);
    EXPECT_EQ(probe.select, select);
    EXPECT_FALSE(probe.masked[3]);
    EXPECT_EQ(probe.args[3], 0u);
    EXPECT_TRUE(journal.back().masked[3]);
  }
  // Nor is the one that asks how many devices there are.
  Host host(profile);
  CLegacyBBSIPLPriority priorities;
  priorities.MaxDevices = 8;
  priorities.EntryLength = 16;
  priorities.Count = 4;
  priorities.KeyArgIndex = 4;
  EXPECT_EQ(host->ExecuteDACI(3, 3, priorities, "right", PwdInfo::PWD_CLASS9), STATUS_SUCCESS);
  const auto& journal = host.machine().Journal();
  ASSERT_GE(journal.size(), 2u);
  const sim::JournalEntry& sizes = journal[journal.size() - 2];
  EXPECT_EQ(sizes.cls, 3);
  EXPECT_EQ(sizes.select, 2);
  EXPECT_FALSE(sizes.masked[3]);
}

TEST(CallingInterface, ShowsLongChainsOnce) {
  const auto shown = [](int objects) {
    sim::SmbiosTable table(3, 2);
    for (int i = 0; i < objects; ++i) {
      table.Add(CallingInterface(static_cast<std::uint16_t>(i), 1, {{0xFFFF, 0, 0}}));
    }
    Host host(WithTable(table));
    std::ostringstream dump;
    host->GetBIOSObject(218)->Display(dump);
    int count = 0;
    const std::string text = dump.str();
    for (std::size_t at = text.find("Calling"); at != std::string::npos;
         at = text.find("Calling", at + 1)) {
      ++count;
    }
    return count;
  };
  EXPECT_EQ(shown(1), 1);
  EXPECT_EQ(shown(3), 4);
  EXPECT_EQ(shown(8), 128);
  EXPECT_EQ(shown(9), 9);
  EXPECT_EQ(shown(2000), 2000);
}

}  // namespace
}  // namespace mira
