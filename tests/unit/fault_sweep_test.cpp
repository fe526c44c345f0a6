// One service fails, whichever and whenever: the status tells it, nothing is left behind, and the
// next attempt works. Where no COM string can be made the out-of-memory error is raised; it cannot
// cross into a host with a C++ runtime of its own, so the library is linked statically here.

#include "tests/support/fault_sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "facade/mira_intf.h"
#include "sim/machine.h"
#include "transport/com_error.h"

namespace mira {
namespace {

using test::FaultSweep;
using test::SingleFault;

constexpr std::int32_t Code(std::uint32_t hresult) { return static_cast<std::int32_t>(hresult); }
constexpr std::int32_t kChangedMode = Code(0x80010106);
constexpr std::int32_t kTooLate = Code(0x80010119);

// What an operation ends with: nothing when it raised the out-of-memory error.
using Ended = std::optional<Status>;

template <typename Operation>
Ended Try(Operation operation) {
  try {
    return operation();
  } catch (const transport::ComError& error) {
    EXPECT_EQ(error.Error(), static_cast<HRESULT>(0x8007000EU));
    return std::nullopt;
  }
}

Ended StartUp(CMiraIntf& mira) {
  return Try([&] { return mira.Init(false, false, false); });
}

// Reads the token 0x70, which is set on the laptop.
Ended Call(CMiraIntf& mira) {
  CSimpleTokenData data;
  data.Arg1 = 0x70;
  const Ended ended = Try([&] { return mira.ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE); });
  if (ended == STATUS_SUCCESS) {
    EXPECT_EQ(data.Res1, 0);
    EXPECT_EQ(data.Res2, 1u);
  }
  return ended;
}

// What Init answers where a service fails: by the service's calls in start-up, the last status
// for all further ones.
struct Expected {
  std::string_view operation;
  std::vector<Status> statuses;
};
const Expected kStartUp[] = {
    {"AllocateAndInitializeSid", {STATUS_NOT_ADMIN}},
    {"CheckTokenMembership", {STATUS_NOT_ADMIN}},
    {"CoInitializeEx", {STATUS_COM_INIT_FAILED}},
    {"CoInitializeSecurity", {STATUS_COM_INIT_FAILED}},
    {"CoCreateInstance", {STATUS_COM_INIT_FAILED}},
    {"IWbemLocator::ConnectServer", {STATUS_COM_INIT_FAILED}},
    {"CoSetProxyBlanket", {STATUS_COM_INIT_FAILED}},
    {"GetSystemFirmwareTable", {STATUS_SMBIOS_READ_FAILED}},
    // Without its WMI objects the calling interface is there, and its calls fail.
    {"IWbemServices::GetObject", {STATUS_SUCCESS}},
    {"IWbemClassObject::GetMethod", {STATUS_SUCCESS}},
    {"IWbemClassObject::SpawnInstance", {STATUS_SUCCESS}},
    {"IWbemServices::CreateInstanceEnum", {STATUS_WMI_INSTANCE_NOT_FOUND}},
    {"IEnumWbemClassObject::Next", {STATUS_WMI_INSTANCE_NOT_FOUND}},
    // The first block is another driver's; one that cannot be read is passed by.
    {"IWbemClassObject::Get", {STATUS_SUCCESS, STATUS_SUCCESS, STATUS_WMI_INSTANCE_NOT_FOUND}},
    {"SafeArrayGetDim", {STATUS_SUCCESS, STATUS_WMI_INSTANCE_NOT_FOUND}},
    {"SafeArrayGetLBound", {STATUS_SUCCESS, STATUS_WMI_INSTANCE_NOT_FOUND}},
    {"SafeArrayGetUBound", {STATUS_SUCCESS, STATUS_WMI_INSTANCE_NOT_FOUND}},
    {"SafeArrayAccessData", {STATUS_SUCCESS, STATUS_WMI_INSTANCE_NOT_FOUND}},
    // The locator's own query comes first.
    {"IUnknown::QueryInterface",
     {STATUS_COM_INIT_FAILED, STATUS_SUCCESS, STATUS_WMI_INSTANCE_NOT_FOUND}},
};

Status ExpectedOfStartUp(const SingleFault& fault) {
  if (fault.result == kTooLate) return STATUS_SUCCESS;
  if (fault.operation == "CoInitializeEx" && (fault.result == kChangedMode || fault.result == 1)) {
    return STATUS_SUCCESS;
  }
  for (const Expected& row : kStartUp) {
    if (row.operation != fault.operation) continue;
    const auto nth = static_cast<std::size_t>(fault.nth);
    return nth <= row.statuses.size() ? row.statuses[nth - 1] : row.statuses.back();
  }
  ADD_FAILURE() << "unexpected in start-up: " << fault.operation;
  return STATUS_SUCCESS;
}

bool IsOneOf(const std::string& operation, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), operation) != names.end();
}

void ExpectNothingLeft(const sim::Machine& machine, int com_scopes) {
  const sim::Live& live = machine.GetLive();
  EXPECT_EQ(live.references, 0);
  EXPECT_EQ(live.strings, 0);
  EXPECT_EQ(live.arrays, 0);
  EXPECT_EQ(live.com_scopes, com_scopes);
  EXPECT_EQ(live.outlived, 0) << "objects are released before COM ends";
}

TEST(SingleFaults, AreToldAndLeaveNothingBehind) {
  sim::Machine machine;
  int balance = 0;
  const auto before = [&machine](const std::string& operation) {
    return machine.GetFaults().Calls(operation);
  };
  std::map<std::string, int> in_start_up;
  const FaultSweep sweep(machine, [&] {
    const sim::Session session(machine);
    std::ostringstream diagnostics;
    CMiraIntf mira(diagnostics);
    EXPECT_EQ(StartUp(mira), STATUS_SUCCESS);
    for (const std::string_view operation : sim::Faults::Operations()) {
      in_start_up[std::string(operation)] = before(std::string(operation));
    }
    EXPECT_EQ(Call(mira), STATUS_SUCCESS);
  });
  EXPECT_GT(sweep.Size(), 100u);
  sweep.ForEach([&](const SingleFault& fault) {
    {
      const sim::Session session(machine);
      std::ostringstream diagnostics;
      CMiraIntf mira(diagnostics);
      const Ended started = StartUp(mira);
      const Ended called = Call(mira);
      const bool no_string = fault.operation == "SysAllocStringLen";
      const bool fails_in_start_up = fault.nth <= in_start_up[fault.operation];
      if (!fails_in_start_up) {
        EXPECT_EQ(started, STATUS_SUCCESS);
        // A thread that is initialised already is called on all the same.
        const Ended expected = no_string                             ? Ended()
                               : fault.operation == "CoInitializeEx" ? Ended(STATUS_SUCCESS)
                                                                     : Ended(STATUS_FAILURE);
        EXPECT_EQ(called, expected);
      } else if (no_string) {
        EXPECT_TRUE(!started || started == STATUS_WMI_INSTANCE_NOT_FOUND);
        EXPECT_EQ(called, STATUS_FAILURE);
      } else {
        EXPECT_EQ(started, ExpectedOfStartUp(fault));
        const bool has_objects =
            !IsOneOf(fault.operation, {"IWbemServices::GetObject", "IWbemClassObject::GetMethod",
                                       "IWbemClassObject::SpawnInstance"});
        EXPECT_EQ(called,
                  started == STATUS_SUCCESS && has_objects ? STATUS_SUCCESS : STATUS_FAILURE);
        // Where another had initialised the thread, what ends it is the facade all the same.
        if (fault.operation == "CoInitializeEx" && started == STATUS_SUCCESS) --balance;
      }
      // Size, key and flag are known together or not at all.
      const bool knows_size = mira.GetACPIBufSize() != 0;
      EXPECT_EQ(mira.GetACPIInstanceName().Length() != 0, knows_size);
      EXPECT_EQ(CMiraIntf::m_bIsWMIACPIBufferFixPresent, knows_size);

      // What was read of the table when a string could not be made stays, as if it were all.
      const bool is_half_read =
          !CMiraIntf::m_mapBIOSTable.empty() && mira.GetBIOSObject(0xDA) == nullptr;
      EXPECT_TRUE(!is_half_read || no_string);
      EXPECT_EQ(StartUp(mira), STATUS_SUCCESS);
      EXPECT_EQ(Call(mira), is_half_read ? STATUS_FAILURE : STATUS_SUCCESS);
    }
    ExpectNothingLeft(machine, balance);
  });
  for (const sim::JournalEntry& entry : machine.Journal()) {
    EXPECT_EQ(entry.cls, 0) << "the buffer fix is announced: nothing is probed";
  }
}

}  // namespace
}  // namespace mira
