// Which connection the type-0xDA objects hold while facades come and go, and what the WMI objects
// keep of a call.

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "facade/mira_intf.h"
#include "platform/services.h"
#include "sim/machine.h"

namespace mira {
namespace {

constexpr std::int32_t Code(std::uint32_t hresult) { return static_cast<std::int32_t>(hresult); }

// A process on a machine, with facades that come and go.
class ComLifetime : public testing::Test {
 protected:
  std::unique_ptr<CMiraIntf> Connected() {
    auto facade = std::make_unique<CMiraIntf>(diagnostics_);
    EXPECT_EQ(facade->Init(false, false, false), STATUS_SUCCESS);
    return facade;
  }
  // The token 0x70 is set on the laptop.
  Status Call(CMiraIntf& facade) {
    CSimpleTokenData data;
    data.Arg1 = 0x70;
    const Status status = facade.ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE);
    if (status == STATUS_SUCCESS) {
      EXPECT_EQ(data.Res2, 1u);
    }
    return status;
  }
  int Preparations() { return machine_.GetFaults().Calls("IWbemClassObject::GetMethod"); }

  sim::Machine machine_;
  sim::Session session_{machine_};
  std::ostringstream diagnostics_;
};

TEST_F(ComLifetime, ObjectsLetGoBeforeTheLastFacadeEndsCom) {
  Connected();
  EXPECT_EQ(machine_.GetLive().references, 0) << "no object may outlive COM";
  CMiraIntf later(diagnostics_);
  EXPECT_EQ(Call(later), STATUS_FAILURE);
  auto* const calling = dynamic_cast<CCallingInterface*>(later.GetBIOSObject(0xDA));
  ASSERT_NE(calling, nullptr);
  SMBiosCI record{};
  record.cbLength = 44;
  EXPECT_EQ(calling->Execute(record, later.GetACPIBufSize(), later.GetACPIInstanceName()),
            CCallingInterface::STATUS_FAILURE);
  EXPECT_EQ(machine_.Journal().size(), 0u);
  EXPECT_EQ(later.Init(false, false, false), STATUS_SUCCESS);
  EXPECT_EQ(Call(later), STATUS_SUCCESS);
}

TEST_F(ComLifetime, ObjectsOfOneFacadeArePreparedOnce) {
  const auto facade = Connected();
  const int prepared = Preparations();
  EXPECT_EQ(Call(*facade), STATUS_SUCCESS);
  EXPECT_EQ(Call(*facade), STATUS_SUCCESS);
  EXPECT_EQ(Preparations(), prepared);
}

// Making a facade forgets that the buffer fix was announced, so the second one probes.
TEST_F(ComLifetime, ASecondFacadeProbes) {
  const auto first = Connected();
  EXPECT_EQ(machine_.Journal().size(), 0u);
  const auto second = Connected();
  ASSERT_EQ(machine_.Journal().size(), 1u);
  EXPECT_EQ(machine_.Journal()[0].cls, 10);
  EXPECT_EQ(machine_.Journal()[0].select, 11);
}

TEST_F(ComLifetime, RepeatedInitGivesTheNewConnection) {
  const auto facade = Connected();
  machine_.GetFaults().Add({.operation = "CoSetProxyBlanket", .result = Code(0x80070005)});
  EXPECT_EQ(facade->Init(false, false, false), STATUS_COM_INIT_FAILED);
  EXPECT_EQ(machine_.GetLive().references, 0);
  EXPECT_EQ(machine_.GetLive().com_scopes, 0);
  EXPECT_EQ(Call(*facade), STATUS_FAILURE);
  EXPECT_EQ(facade->Init(false, false, false), STATUS_SUCCESS);
  EXPECT_EQ(Call(*facade), STATUS_SUCCESS);
}

// The second facade of a thread has no initialisation of its own: whichever ends first ends COM.
TEST_F(ComLifetime, TheFirstEndOnAThreadEndsCom) {
  for (const bool first_ends : {true, false}) {
    SCOPED_TRACE(first_ends);
    sim::Machine machine;
    const sim::Session session(machine);
    auto first = Connected();
    auto second = Connected();
    (first_ends ? first : second).reset();
    CMiraIntf& left = first_ends ? *second : *first;
    EXPECT_EQ(Call(left), STATUS_FAILURE);
    EXPECT_EQ(left.Init(false, false, false), STATUS_SUCCESS);
    EXPECT_EQ(Call(left), STATUS_SUCCESS);
  }
}

TEST_F(ComLifetime, ACopyEndsComAsItsOriginalDoes) {
  const auto facade = Connected();
  { const CMiraIntf copy(*facade); }
  EXPECT_EQ(machine_.GetLive().com_scopes, 0);
  EXPECT_EQ(Call(*facade), STATUS_FAILURE);
}

TEST_F(ComLifetime, PreparationsThatFailKeepNothing) {
  struct Case {
    const char* operation;
    int nth;
  };
  const Case cases[] = {
      {"IWbemServices::GetObject", 1},        {"IWbemServices::GetObject", 2},
      {"IWbemClassObject::GetMethod", 1},     {"IWbemClassObject::SpawnInstance", 1},
      {"IWbemClassObject::SpawnInstance", 2},
  };
  for (const Case& c : cases) {
    // An error, success of another kind, and success with nothing.
    for (const std::int32_t result : {Code(0x80041001), 1, 0}) {
      SCOPED_TRACE(std::string(c.operation) + " " + std::to_string(c.nth) + " " +
                   std::to_string(result));
      sim::Machine machine;
      machine.GetFaults().Add({.operation = c.operation, .nth = c.nth, .result = result});
      const sim::Session session(machine);
      CMiraIntf facade(diagnostics_);
      EXPECT_EQ(facade.Init(false, false, false), STATUS_SUCCESS);
      EXPECT_EQ(Call(facade), STATUS_FAILURE);
      EXPECT_EQ(machine.Journal().size(), 0u);
      EXPECT_EQ(CMiraIntf::GetLastOperation().failure.step, Step::kWmiObjects);
      // The facade and the type-0xDA object hold the connection, and nothing else is held.
      EXPECT_EQ(machine.GetLive().references, 2);
      EXPECT_EQ(facade.Init(false, false, false), STATUS_SUCCESS);
      EXPECT_EQ(Call(facade), STATUS_SUCCESS);
    }
  }
}

TEST_F(ComLifetime, BytesMustBePutWithPlainSuccess) {
  const auto facade = Connected();
  EXPECT_EQ(Call(*facade), STATUS_SUCCESS);
  machine_.GetFaults().Add({.operation = "IWbemClassObject::Put", .result = 1});
  EXPECT_EQ(Call(*facade), STATUS_FAILURE);
  EXPECT_EQ(machine_.Journal().size(), 1u) << "the bytes of the call before are not sent again";
}

TEST_F(ComLifetime, NothingOfAPasswordIsKept) {
  sim::Profile profile;
  profile.class9.text = "right";
  sim::Machine machine(profile);
  const sim::Session session(machine);
  CMiraIntf facade(diagnostics_);
  ASSERT_EQ(facade.Init(false, false, false), STATUS_SUCCESS);
  const int before = machine.GetLive().references;
  EXPECT_EQ(Call(facade), STATUS_SUCCESS);
  EXPECT_EQ(machine.GetLive().references, before + 3)
      << "a plain call keeps what it sent, its answer, and the answer's data";
  const int puts = machine.GetFaults().Calls("IWbemClassObject::Put");
  EXPECT_NE(facade.ValidatePwd("right", PwdInfo::PWD_CLASS9), 0xFFFFFFFFu);
  EXPECT_EQ(machine.GetLive().references, before + 1) << "the answer with the key is released";
  // Three status calls, the verification, and the zeros over its record.
  EXPECT_EQ(machine.GetFaults().Calls("IWbemClassObject::Put") - puts, 4 * 2 + 2);
  EXPECT_EQ(machine.GetLive().arrays, 0);
}

// Where the objects are when COM ends, however a facade gives up its connection.
TEST_F(ComLifetime, NothingOutlivesCom) {
  const char* const failing[] = {nullptr, "CoCreateInstance", "IWbemLocator::ConnectServer",
                                 "CoSetProxyBlanket"};
  for (const char* const operation : failing) {
    SCOPED_TRACE(operation != nullptr ? operation : "nothing fails");
    {
      const auto facade = Connected();
      EXPECT_EQ(Call(*facade), STATUS_SUCCESS);
      if (operation != nullptr) {
        machine_.GetFaults().Add({.operation = operation, .result = Code(0x80070005)});
      }
      facade->Init(false, false, false);
    }
    EXPECT_EQ(machine_.GetLive().outlived, 0);
    EXPECT_EQ(machine_.GetLive().references, 0);
    EXPECT_EQ(machine_.GetLive().com_scopes, 0);
  }
}

// The objects take the connection of a facade on another thread at once, and not that of a guest,
// whose COM ends with the first facade.
TEST_F(ComLifetime, ObjectsGoOverToAFacadeWithAnInitialisationOfItsOwn) {
  auto first = Connected();
  auto guest = Connected();
  std::promise<void> connected;
  std::promise<void> ended;
  std::thread other([&] {
    auto own = Connected();
    connected.set_value();
    ended.get_future().wait();
    EXPECT_EQ(Call(*own), STATUS_SUCCESS);
    own.reset();
  });
  connected.get_future().wait();
  const int prepared = Preparations();
  first.reset();
  EXPECT_EQ(Preparations(), prepared + 1);
  EXPECT_EQ(Call(*guest), STATUS_SUCCESS);
  guest.reset();
  EXPECT_EQ(Preparations(), prepared + 1);
  ended.set_value();
  other.join();
  EXPECT_EQ(machine_.GetLive().references, 0);
  EXPECT_EQ(machine_.GetLive().outlived, 0);
}

TEST_F(ComLifetime, EveryCallInitialisesComOnItsThread) {
  struct Case {
    const char* what;
    std::uint16_t cls;
    std::uint16_t select;
    const char* password;
    Status status;
  };
  const Case cases[] = {
      {"served", 0, 0, "", STATUS_SUCCESS},
      {"refused by the firmware", 0, 9, "", STATUS_FAILURE},
      {"class that is not announced", 13, 0, "", STATUS_NOT_SUPPORTED},
      {"select without a buffer", 2, 7, "", STATUS_NOT_SUPPORTED},
      {"wrong password", 0, 0, "wrong", STATUS_SECURITY_KEY_FAILED},
      {"request of another type", 10, 13, "", STATUS_FAILURE},
  };
  sim::Profile profile;
  profile.class9.text = "right";
  sim::Machine machine(profile);
  const sim::Session session(machine);
  sim::Faults& faults = machine.GetFaults();
  int in_call = -1;
  faults.Add({.operation = "firmware", .nth = 0, .corrupt = [&](std::vector<std::uint8_t>&) {
                in_call = machine.GetLive().com_scopes;
              }});
  CMiraIntf nothing(diagnostics_);
  EXPECT_EQ(Call(nothing), STATUS_FAILURE) << "no calling interface yet";
  EXPECT_EQ(faults.Calls("CoInitializeEx"), 1);
  EXPECT_EQ(faults.Calls("CoUninitialize"), 1);
  const auto facade = Connected();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    in_call = 2;
    const int entered = faults.Calls("CoInitializeEx");
    const int left = faults.Calls("CoUninitialize");
    CSimpleTokenData data;
    data.Arg1 = 0x70;
    EXPECT_EQ(facade->ExecuteDACI(c.cls, c.select, data, c.password, PwdInfo::PWD_CLASS9),
              c.status);
    EXPECT_EQ(in_call, 2) << "COM lasts as long as the call";
    EXPECT_EQ(faults.Calls("CoInitializeEx"), entered + 1);
    EXPECT_EQ(faults.Calls("CoUninitialize"), left + 1);
  }
  // What failed is not undone.
  const int left = faults.Calls("CoUninitialize");
  faults.Add({.operation = "CoInitializeEx", .result = Code(0x8007000E)});
  EXPECT_EQ(Call(*facade), STATUS_SUCCESS);
  EXPECT_EQ(faults.Calls("CoUninitialize"), left);
}

TEST_F(ComLifetime, WorksInTheHostsApartmentAndFromOtherThreads) {
  {
    // The multithreaded apartment is shared.
    const auto facade = Connected();
    std::thread([&] { EXPECT_EQ(Call(*facade), STATUS_SUCCESS); }).join();
  }
  const int left = machine_.GetFaults().Calls("CoUninitialize");
  ASSERT_EQ(platform::Services().CoInitializeEx(nullptr, 2), S_OK);
  const auto facade = Connected();
  EXPECT_EQ(Call(*facade), STATUS_SUCCESS);
  EXPECT_EQ(machine_.GetFaults().Calls("CoUninitialize"), left) << "the host's is left alone";
}

std::vector<DWORD> flags_seen;
const platform::ServiceTable* simulated_services = nullptr;

HRESULT WINAPI NoteFlags(LPVOID reserved, DWORD flags) {
  flags_seen.push_back(flags);
  return simulated_services->CoInitializeEx(reserved, flags);
}

TEST_F(ComLifetime, AsksForTheMultithreadedApartment) {
  platform::ServiceTable table = platform::Services();
  const platform::ServiceTable before = table;
  simulated_services = &before;
  table.CoInitializeEx = NoteFlags;
  const platform::ScopedServices scope(table);
  flags_seen.clear();
  EXPECT_EQ(Call(*Connected()), STATUS_SUCCESS);
  // Without OLE1 DDE (4), speed before memory (8).
  EXPECT_EQ(flags_seen, (std::vector<DWORD>{12, 12}));
}

TEST_F(ComLifetime, ZerosCoverWhatCarriedASecret) {
  sim::Profile profile;
  profile.class9.text = "right";
  sim::Machine machine(profile);
  std::vector<std::string> puts;
  machine.OnPut([&puts](bytes::ByteSpan bytes) { puts.emplace_back(bytes::AsText(bytes)); });
  const sim::Session session(machine);
  CMiraIntf facade(diagnostics_);
  ASSERT_EQ(facade.Init(false, false, false), STATUS_SUCCESS);
  const std::string zeros(4096, '\0');
  EXPECT_NE(facade.ValidatePwd("right", PwdInfo::PWD_CLASS9), 0xFFFFFFFFu);
  ASSERT_EQ(puts.size(), 5u);
  EXPECT_NE(puts[3].find("right"), std::string::npos);
  EXPECT_EQ(puts[4], zeros);
  // The key is as secret as the password.
  puts.clear();
  CSimpleTokenData data;
  data.Arg1 = 0x70;
  data.KeyArgIndex = 3;
  EXPECT_EQ(facade.ExecuteDACI(1, 0, data, "right", PwdInfo::PWD_CLASS9), STATUS_SUCCESS);
  ASSERT_EQ(puts.size(), 7u);
  EXPECT_NE(puts[5], zeros);
  EXPECT_EQ(puts[6], zeros);
}

}  // namespace
}  // namespace mira
