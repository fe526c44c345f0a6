// Start-up: what Init does, what it says when a step fails, and that nothing is left over.

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "facade/mira_intf.h"
#include "facade/process_state.h"
#include "sim/machine.h"
#include "sim/smbios_builder.h"

namespace mira {
namespace {

constexpr std::int32_t Code(std::uint32_t hresult) { return static_cast<std::int32_t>(hresult); }

void ExpectNothingLeft(const sim::Machine& machine) {
  EXPECT_EQ(machine.GetLive().references, 0);
  EXPECT_EQ(machine.GetLive().strings, 0);
  EXPECT_EQ(machine.GetLive().arrays, 0);
}

// One Init on a machine: its status and what it wrote.
struct Started {
  Status status;
  std::string diagnostics;
};
Started Start(sim::Machine& machine) {
  std::ostringstream diagnostics;
  const sim::Session session(machine);
  CMiraIntf mira(diagnostics);
  const Status status = mira.Init(false, false, false);
  return {status, diagnostics.str()};
}

TEST(Init, SucceedsOnTheLaptopAndKeepsCom) {
  sim::Machine machine;
  {
    std::ostringstream diagnostics;
    const sim::Session session(machine);
    {
      CMiraIntf mira(diagnostics);
      EXPECT_EQ(mira.GetACPIBufSize(), 0u);
      EXPECT_EQ(mira.GetBIOSObject(0), nullptr);
      EXPECT_EQ(mira.Init(false, false, false), STATUS_SUCCESS);
      EXPECT_EQ(diagnostics.str(), "");
      EXPECT_EQ(mira.GetACPIBufSize(), 4096u);
      EXPECT_EQ(std::wstring(mira.GetACPIInstanceName()),
                L".InstanceName=\"ACPI\\\\PNP0C14\\\\MIRA_0\"");
      ASSERT_NE(mira.GetBIOSObject(17), nullptr);
      ASSERT_NE(mira.GetBIOSObject(17)->getNextObj(), nullptr);
      EXPECT_EQ(mira.GetBIOSObject(17)->getNextObj()->getHandle(), 0x1101);
      EXPECT_EQ(mira.GetBIOSObject(17)->getNextObj()->getNextObj(), nullptr);
      ASSERT_NE(mira.GetBIOSObject(127), nullptr);
      EXPECT_EQ(mira.GetBIOSObject(200), nullptr);
      EXPECT_EQ(machine.GetLive().com_scopes, 1);
    }
    EXPECT_EQ(machine.GetLive().com_scopes, 0);
    // The registry outlives the facade.
    CMiraIntf later(diagnostics);
    EXPECT_NE(later.GetBIOSObject(0), nullptr);
  }
  ExpectNothingLeft(machine);
}

TEST(Init, ReportsEachFailureByStatusAndLine) {
  struct Case {
    const char* operation;
    std::int32_t result;
    Status status;
    const char* line;
  };
  const Case cases[] = {
      {"AllocateAndInitializeSid", 5, STATUS_NOT_ADMIN, "Access is denied.\n"},
      {"CheckTokenMembership", 1314, STATUS_NOT_ADMIN, "System error 1314.\n"},
      {"CoInitializeEx", Code(0x80004005), STATUS_COM_INIT_FAILED, "Error initializing COM!! 0\n"},
      {"CoInitializeEx", Code(0x80010106), STATUS_SUCCESS, ""},
      {"CoInitializeEx", 1, STATUS_SUCCESS, ""},
      {"CoInitializeSecurity", Code(0x80070005), STATUS_COM_INIT_FAILED,
       "Failed to initialize COM security. Error code = 0x80070005\n"},
      {"CoInitializeSecurity", Code(0x80010119), STATUS_SUCCESS, ""},
      {"CoCreateInstance", Code(0x80040154), STATUS_COM_INIT_FAILED,
       "Failed to create IWbemLocator object. Err code = 0x80040154\n"},
      {"IWbemLocator::ConnectServer", Code(0x8004100E), STATUS_COM_INIT_FAILED,
       "Could not connect. Error code = 0x8004100e\n"},
      {"CoSetProxyBlanket", Code(0x80070005), STATUS_COM_INIT_FAILED,
       "Could not set proxy blanket. Error code = 0x80070005\n"},
      {"GetSystemFirmwareTable", 0, STATUS_SMBIOS_READ_FAILED, ""},
      {"GetSystemFirmwareTable", 7, STATUS_SMBIOS_READ_FAILED, ""},
      {"IWbemServices::CreateInstanceEnum", Code(0x80041010), STATUS_WMI_INSTANCE_NOT_FOUND, ""},
      {"IEnumWbemClassObject::Next", Code(0x80041001), STATUS_WMI_INSTANCE_NOT_FOUND, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.operation) + " " + std::to_string(c.result));
    sim::Machine machine;
    machine.GetFaults().Add({.operation = c.operation, .nth = 1, .result = c.result});
    const Started started = Start(machine);
    EXPECT_EQ(started.status, c.status);
    EXPECT_EQ(started.diagnostics, c.line);
    ExpectNothingLeft(machine);
  }
}

TEST(Init, LeavesComAsTheStepsSay) {
  struct Case {
    const char* operation;
    std::int32_t result;
    int security_calls;
    int uninitialize_calls;  // the facade's destructor included
  };
  // Every failure behind CoInitializeEx calls CoUninitialize once, whatever CoInitializeEx had
  // answered.
  const Case cases[] = {
      {"CoUninitialize", 0, 1, 1},  // which cannot fail
      {"CoInitializeEx", Code(0x80004005), 0, 0},
      {"CoInitializeEx", Code(0x80010106), 0, 1},
      {"CoInitializeEx", 1, 0, 2},
      {"CoInitializeSecurity", Code(0x80070005), 1, 1},
      {"CoCreateInstance", Code(0x80040154), 1, 1},
      {"IWbemLocator::ConnectServer", Code(0x8004100E), 1, 1},
      {"CoSetProxyBlanket", Code(0x80070005), 1, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.operation) + " " + std::to_string(c.result));
    sim::Machine machine;
    machine.GetFaults().Add({.operation = c.operation, .nth = 1, .result = c.result});
    Start(machine);
    EXPECT_EQ(machine.GetFaults().Calls("CoInitializeSecurity"), c.security_calls);
    EXPECT_EQ(machine.GetFaults().Calls("CoUninitialize"), c.uninitialize_calls);
  }
}

TEST(Init, TellsTheErrorWhenTheSystemHasNoTextForIt) {
  sim::Machine machine;
  machine.GetFaults().Add({.operation = "CheckTokenMembership", .nth = 1, .result = 5});
  machine.GetFaults().Add({.operation = "FormatMessageA", .nth = 1, .result = 0});
  const Started started = Start(machine);
  EXPECT_EQ(started.status, STATUS_NOT_ADMIN);
  EXPECT_EQ(started.diagnostics, "The administrator check failed with error 5\n");
}

TEST(Init, AnswersForEachKindOfMachine) {
  struct Case {
    const char* profile;
    Status status;
  };
  const Case cases[] = {
      {"laptop", STATUS_SUCCESS},
      {"standard-user", STATUS_NOT_ADMIN},
      {"no-calling-interface", STATUS_WMI_INSTANCE_NOT_FOUND},
      {"unannounced-fix", STATUS_SUCCESS},
      {"acpi-off", STATUS_ACPI_NOT_SUPPORTED},
      {"locked", STATUS_SUCCESS},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.profile);
    sim::Machine machine(*sim::FindProfile(c.profile));
    const Started started = Start(machine);
    EXPECT_EQ(started.status, c.status);
    EXPECT_EQ(started.diagnostics, "");
    ExpectNothingLeft(machine);
  }
}

TEST(Init, ProbesWhenTheBufferFixIsNotAnnounced) {
  struct Case {
    const char* what;
    std::uint32_t buffer_fix;
    std::uint16_t flags;
    bool flag_check;
    bool probe_fails;
    Status status;
    std::size_t probes;
  };
  const Case cases[] = {
      {"announced", 1, 2, false, false, STATUS_SUCCESS, 0},
      {"announced by exactly 1 only", 2, 2, false, false, STATUS_SUCCESS, 1},
      {"probe succeeds", 0, 2, false, false, STATUS_SUCCESS, 1},
      {"probe fails", 0, 2, false, true, STATUS_ACPI_NOT_SUPPORTED, 1},
      {"the host forbids the probe", 0, 2, true, false, STATUS_ACPI_NOT_SUPPORTED, 0},
      {"announced, the probe forbidden", 1, 2, true, false, STATUS_SUCCESS, 0},
      {"flag clear although the probe succeeds", 0, 0xFFFD, false, false, STATUS_ACPI_NOT_SUPPORTED,
       1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::Profile profile;
    profile.buffer_fix = c.buffer_fix;
    profile.bios_flags0 = c.flags;
    sim::Machine machine(profile);
    if (c.probe_fails) machine.GetFaults().Add({.operation = "firmware 10/11", .completion = -1});
    bFlagCheck = c.flag_check;
    EXPECT_EQ(Start(machine).status, c.status);
    bFlagCheck = false;
    EXPECT_EQ(machine.Journal().size(), c.probes);
    if (c.probes > 0) {
      EXPECT_EQ(machine.Journal()[0].cls, 10);
      EXPECT_EQ(machine.Journal()[0].select, 11);
      EXPECT_EQ(machine.Journal()[0].record_length, 304u);
    }
    ExpectNothingLeft(machine);
  }
}

TEST(Init, NeedsTheFlagsStructure) {
  sim::Profile profile;
  profile.buffer_fix = 0;
  profile.firmware_table = sim::SmbiosTable(3, 2).Add(sim::Structure(0, 1)).Finish();
  sim::Machine machine(profile);
  EXPECT_EQ(Start(machine).status, STATUS_ACPI_NOT_SUPPORTED);
  EXPECT_TRUE(machine.Journal().empty()) << "no probe without the structure";
}

TEST(Init, TakesAnInstanceOnlyWithSizeAndKey) {
  struct Case {
    const wchar_t* path;
    std::uint32_t buffer_size;
    Status status;
    const wchar_t* key;
  };
  const Case cases[] = {
      {L"WMI_Query.Key=1", 512, STATUS_SUCCESS, L".Key=1"},
      {L"WMI_Query.Key=1", 0, STATUS_WMI_INSTANCE_NOT_FOUND, L".Key=1"},
      {L"WMI_Query", 512, STATUS_WMI_INSTANCE_NOT_FOUND, L""},
      {L"\\\\PC\\ROOT\\WMI:WMI_Query=WMI_Query", 512, STATUS_SUCCESS, L"=WMI_Query"},
      {L"Other.Key=1", 512, STATUS_SUCCESS, L"Other.Key=1"},
  };
  for (const Case& c : cases) {
    sim::Profile profile;
    profile.instance_path = c.path;
    profile.buffer_size = c.buffer_size;
    sim::Machine machine(profile);
    std::ostringstream diagnostics;
    const sim::Session session(machine);
    CMiraIntf mira(diagnostics);
    EXPECT_EQ(mira.Init(false, false, false), c.status);
    const CComBSTR& key = mira.GetACPIInstanceName();
    EXPECT_EQ(std::wstring(key.m_str, key.Length()), c.key);
  }
}

TEST(Init, MayBeRepeatedAndReadsTheMachineOnce) {
  sim::Machine machine;
  {
    std::ostringstream diagnostics;
    const sim::Session session(machine);
    CMiraIntf mira(diagnostics);
    machine.GetFaults().Add(
        {.operation = "IWbemServices::CreateInstanceEnum", .nth = 1, .result = Code(0x80041001)});
    EXPECT_EQ(mira.Init(false, false, false), STATUS_WMI_INSTANCE_NOT_FOUND);
    EXPECT_EQ(mira.Init(false, false, false), STATUS_SUCCESS);
    EXPECT_EQ(mira.Init(false, false, false), STATUS_SUCCESS);
    EXPECT_EQ(machine.GetFaults().Calls("GetSystemFirmwareTable"), 2) << "size, then data";
    EXPECT_EQ(machine.GetFaults().Calls("IWbemServices::CreateInstanceEnum"), 2);
    // A copy shares the connection and uninitialises COM once more, as the original does.
    const CMiraIntf copy(mira);
  }
  ExpectNothingLeft(machine);
}

TEST(Registry, SurvivesATableCutAtAnyByte) {
  const std::vector<std::uint8_t> whole = sim::Machine().GetProfile().firmware_table;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    sim::Profile profile;
    profile.firmware_table.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    if (profile.firmware_table.empty()) profile.firmware_table.push_back(0);
    sim::Machine machine(profile);
    std::ostringstream dump;
    {
      const sim::Session session(machine);
      CMiraIntf mira(dump);
      const Status status = mira.Init(false, false, false);
      mira.Display(dump);
      // A cut between two structures leaves a complete table without an end-of-table structure.
      if (status == STATUS_SUCCESS) {
        EXPECT_NE(mira.GetBIOSObject(0), nullptr) << size;
      }
    }
    ExpectNothingLeft(machine);
  }
}

TEST(Registry, TakesOnlyWholeTables) {
  const auto table = [] { return sim::SmbiosTable(3, 2).Add(sim::Structure(0, 1)); };
  std::vector<std::uint8_t> without_end = table().WithoutEnd();
  std::vector<std::uint8_t> zeros_behind = without_end;
  zeros_behind.insert(zeros_behind.end(), 40, 0);
  std::vector<std::uint8_t> noise_behind = zeros_behind;
  noise_behind.push_back(1);
  std::vector<std::uint8_t> noise_after_end = table().Finish();
  noise_after_end.insert(noise_after_end.end(), {9, 9, 9});
  std::vector<std::uint8_t> no_terminator = without_end;
  no_terminator.pop_back();

  struct Case {
    const char* what;
    std::vector<std::uint8_t> bytes;
    bool is_read;
  };
  const Case cases[] = {
      {"no end-of-table structure", without_end, true},
      {"zeros instead of the end", zeros_behind, true},
      {"noise instead of the end", noise_behind, false},
      {"noise behind the end", noise_after_end, true},
      {"no pair of NULs", no_terminator, false},
      {"length below 4", {0, 3, 2, 0, 6, 0, 0, 0, 0, 3, 0, 0, 0, 0}, false},
      {"length beyond the table", {0, 3, 2, 0, 6, 0, 0, 0, 0, 9, 0, 0, 0, 0}, false},
      {"header alone", {0, 3, 2, 0, 0, 0, 0, 0}, false},
      {"less than a header", {0, 3, 2, 0, 0, 0, 0}, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::Profile profile;
    profile.firmware_table = c.bytes;
    sim::Machine machine(profile);
    EXPECT_EQ(Start(machine).status != STATUS_SMBIOS_READ_FAILED, c.is_read);
  }
}

}  // namespace
}  // namespace mira
