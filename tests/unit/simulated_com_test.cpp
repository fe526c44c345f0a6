// The simulated machine is as strict about COM as a real one: apartments, the end of COM,
// arguments.

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

#include "platform/com_ptr.h"
#include "sim/machine.h"
#include "tests/support/objections.h"
#include "transport/com_error.h"

namespace mira {
namespace {

using platform::Services;
using transport::MakeBstr;

constexpr HRESULT Code(std::uint32_t hresult) { return static_cast<HRESULT>(hresult); }
constexpr HRESULT kNotInitialized = Code(0x800401F0);
constexpr HRESULT kDisconnected = Code(0x80010108);
constexpr HRESULT kWrongThread = Code(0x8001010E);
constexpr HRESULT kInvalidParameter = Code(0x80041008);

constexpr DWORD kMany = 12;
constexpr DWORD kSingle = 2;

template <typename Work>
void OnAnotherThread(Work work) {
  std::thread(work).join();
}

HRESULT Enter(DWORD flags) { return Services().CoInitializeEx(nullptr, flags); }
void Leave() { Services().CoUninitialize(); }

CComPtr<IWbemLocator> MakeLocator() {
  void* made = nullptr;
  EXPECT_EQ(Services().CoCreateInstance(CLSID_WbemLocator, nullptr, 1, IID_IWbemLocator, &made),
            S_OK);
  CComPtr<IWbemLocator> locator;
  locator.Attach(static_cast<IWbemLocator*>(made));
  return locator;
}

CComPtr<IWbemServices> Connect() {
  CComPtr<IWbemServices> services;
  EXPECT_EQ(MakeLocator()->ConnectServer(MakeBstr(L"ROOT\\WMI"), nullptr, nullptr, nullptr, 0,
                                         nullptr, nullptr, &services),
            S_OK);
  return services;
}

HRESULT Use(IWbemServices* services) {
  CComPtr<IWbemClassObject> object;
  return services->GetObject(MakeBstr(L"BDat"), 0, nullptr, &object, nullptr);
}

class SimulatedCom : public testing::Test {
 protected:
  void ExpectObjections(std::size_t count) { EXPECT_EQ(objections_.Take().size(), count); }

  test::ExpectedObjections objections_;
  sim::Machine machine_;
  sim::Session session_{machine_};
};

TEST_F(SimulatedCom, CountsInitialisationsPerThread) {
  EXPECT_EQ(Enter(kMany), S_OK);
  EXPECT_EQ(Enter(kMany), S_FALSE);
  EXPECT_EQ(Enter(kSingle), RPC_E_CHANGED_MODE);
  OnAnotherThread([] {
    EXPECT_EQ(Enter(kSingle), S_OK);
    EXPECT_EQ(Enter(kMany), RPC_E_CHANGED_MODE);
    Leave();
    EXPECT_EQ(Enter(kMany), S_OK);
    Leave();
  });
  EXPECT_EQ(machine_.GetLive().com_scopes, 2);
  Leave();
  EXPECT_EQ(Enter(kMany), S_FALSE);
  Leave();
  Leave();
  EXPECT_EQ(Enter(kMany), S_OK);
  Leave();
  Leave();
  EXPECT_EQ(machine_.GetLive().com_scopes, -1) << "what is too much is counted";
  ExpectObjections(0);
}

TEST_F(SimulatedCom, SharesTheMultithreadedApartmentUntilItsLastThreadLeaves) {
  ASSERT_EQ(Enter(kMany), S_OK);
  CComPtr<IWbemServices> services = Connect();
  OnAnotherThread([&] {
    EXPECT_EQ(Use(services), S_OK) << "a thread that did not initialise COM is in it";
    EXPECT_EQ(Enter(kMany), S_OK);
    EXPECT_EQ(Use(services), S_OK);
    Leave();
  });
  std::promise<void> entered;
  std::promise<void> left;
  std::thread last([&] {
    EXPECT_EQ(Enter(kMany), S_OK);
    entered.set_value();
    left.get_future().wait();
    EXPECT_EQ(Use(services), S_OK) << "it lives on with this thread";
    Leave();
  });
  entered.get_future().wait();
  Leave();
  left.set_value();
  last.join();
  ExpectObjections(0);
  EXPECT_EQ(machine_.GetLive().outlived, 1);

  EXPECT_EQ(Use(services), kNotInitialized);
  EXPECT_EQ(Enter(kMany), S_OK);
  EXPECT_EQ(Use(services), kDisconnected) << "the new apartment is another one";
  ExpectObjections(2);
  EXPECT_EQ(Use(Connect()), S_OK);
  Leave();
  services.Release();
  ExpectObjections(0);
}

TEST_F(SimulatedCom, KeepsASingleThreadedApartmentToItsThread) {
  ASSERT_EQ(Enter(kSingle), S_OK);
  const CComPtr<IWbemServices> services = Connect();
  EXPECT_EQ(Use(services), S_OK);
  OnAnotherThread([&] {
    EXPECT_EQ(Use(services), kNotInitialized);
    EXPECT_EQ(Enter(kMany), S_OK);
    EXPECT_EQ(Use(services), kWrongThread);
    Leave();
  });
  ExpectObjections(2);
  Leave();
  EXPECT_EQ(Use(services), kNotInitialized);
  ExpectObjections(1);
}

TEST_F(SimulatedCom, FixesTheSecurityOfTheProcessOnce) {
  const auto secure = [] {
    return Services().CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 3, nullptr, 0,
                                           nullptr);
  };
  EXPECT_EQ(secure(), kNotInitialized);
  ExpectObjections(1);
  ASSERT_EQ(Enter(kMany), S_OK);
  EXPECT_EQ(secure(), S_OK);
  EXPECT_EQ(secure(), RPC_E_TOO_LATE);
  Leave();
  ASSERT_EQ(Enter(kMany), S_OK);
  Connect();
  EXPECT_EQ(secure(), RPC_E_TOO_LATE) << "a connection has fixed it";
  Leave();
  ExpectObjections(0);
}

// What the table's calls have to call.
struct Client {
  CComPtr<IWbemLocator> locator = MakeLocator();
  CComPtr<IWbemServices> services = Connect();
  CComPtr<IWbemClassObject> object;
  CComPtr<IEnumWbemClassObject> instances;
  CComBSTR name = MakeBstr(L"ROOT\\WMI");
  CComBSTR data = MakeBstr(L"BDat");
  CComBSTR query = MakeBstr(L"WMI_Query");
  CComBSTR method = MakeBstr(L"DoBFn");
  CComBSTR bytes = MakeBstr(L"Bytes");
};

HRESULT Connected(Client& c, const wchar_t* name, BSTR user, LONG flags) {
  CComPtr<IWbemServices> services;
  return c.locator->ConnectServer(MakeBstr(name), user, nullptr, nullptr, flags, nullptr, nullptr,
                                  &services);
}

HRESULT Created(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid) {
  void* made = nullptr;
  return Services().CoCreateInstance(clsid, outer, context, iid, &made);
}

HRESULT Blanket(IUnknown* proxy, DWORD authn, DWORD authz, DWORD level, DWORD imp, DWORD caps) {
  return Services().CoSetProxyBlanket(proxy, authn, authz, nullptr, level, imp, nullptr, caps);
}

HRESULT Secured(LONG services, DWORD level, DWORD imp, DWORD caps) {
  return Services().CoInitializeSecurity(nullptr, services, nullptr, nullptr, level, imp, nullptr,
                                         caps, nullptr);
}

HRESULT Next(Client& c, LONG timeout, ULONG count) {
  IWbemClassObject* objects[2] = {};
  ULONG returned = 0;
  return c.instances->Next(timeout, count, objects, &returned);
}

TEST_F(SimulatedCom, ObjectsToArgumentsThatNothingIsUsedWith) {
  struct Case {
    HRESULT (*call)(Client& client);
    HRESULT result;
    const char* objection;
  };
  const Case cases[] = {
      {[](Client&) { return Services().CoInitializeEx(nullptr, 16); }, E_INVALIDARG,
       "CoInitializeEx: unknown flags is 16, not 0"},
      {[](Client& c) { return Services().CoInitializeEx(&c, 12); }, E_INVALIDARG,
       "CoInitializeEx: reserved is 1, not 0"},
      {[](Client&) { return Secured(0, 0, 3, 0); }, E_INVALIDARG,
       "CoInitializeSecurity: number of services is 0, not -1"},
      {[](Client&) { return Secured(-1, 1, 3, 0); }, E_INVALIDARG,
       "CoInitializeSecurity: authentication level is 1, not 0"},
      {[](Client&) { return Secured(-1, 0, 2, 0); }, E_INVALIDARG,
       "CoInitializeSecurity: impersonation level is 2, not 3"},
      {[](Client&) { return Secured(-1, 0, 3, 64); }, E_INVALIDARG,
       "CoInitializeSecurity: capabilities is 64, not 0"},
      {[](Client&) { return Created(CLSID_WbemLocator, nullptr, 4, IID_IWbemLocator); },
       REGDB_E_CLASSNOTREG, "CoCreateInstance: context is 4, not 1"},
      {[](Client&) { return Created(IID_IWbemLocator, nullptr, 1, IID_IWbemLocator); },
       REGDB_E_CLASSNOTREG, "CoCreateInstance: is the WMI locator is 0, not 1"},
      {[](Client& c) { return Created(CLSID_WbemLocator, c.locator, 1, IID_IWbemLocator); },
       Code(0x80040110), "CoCreateInstance: outer object is 1, not 0"},
      {[](Client&) { return Created(CLSID_WbemLocator, nullptr, 1, IID_IWbemServices); },
       E_NOINTERFACE, "CoCreateInstance: interface is the locator's is 0, not 1"},
      {[](Client& c) { return Connected(c, L"ROOT\\CIMV2", nullptr, 0); }, Code(0x8004100E),
       "IWbemLocator::ConnectServer: namespace is ROOT\\WMI is 0, not 1"},
      {[](Client& c) { return Connected(c, L"ROOT\\WMI", c.name, 0); }, kInvalidParameter,
       "IWbemLocator::ConnectServer: user is 1, not 0"},
      {[](Client& c) { return Connected(c, L"ROOT\\WMI", nullptr, 128); }, kInvalidParameter,
       "IWbemLocator::ConnectServer: flags is 128, not 0"},
      {[](Client& c) { return Blanket(c.locator, 10, 0, 3, 3, 0); }, E_INVALIDARG,
       "CoSetProxyBlanket: the object is no WMI connection"},
      {[](Client& c) { return Blanket(c.services, 9, 0, 3, 3, 0); }, E_INVALIDARG,
       "CoSetProxyBlanket: authentication service is 9, not 10"},
      {[](Client& c) { return Blanket(c.services, 10, 1, 3, 3, 0); }, E_INVALIDARG,
       "CoSetProxyBlanket: authorisation service is 1, not 0"},
      {[](Client& c) { return Blanket(c.services, 10, 0, 2, 3, 0); }, E_INVALIDARG,
       "CoSetProxyBlanket: authentication level is 2, not 3"},
      {[](Client& c) { return Blanket(c.services, 10, 0, 3, 2, 0); }, E_INVALIDARG,
       "CoSetProxyBlanket: impersonation level is 2, not 3"},
      {[](Client& c) { return Blanket(c.services, 10, 0, 3, 3, 1); }, E_INVALIDARG,
       "CoSetProxyBlanket: capabilities is 1, not 0"},
      {[](Client& c) { return Blanket(c.services, 10, 0, 3, 3, 0); }, S_OK, nullptr},
      {[](Client& c) {
         CComPtr<IEnumWbemClassObject> found;
         return c.services->CreateInstanceEnum(c.query, 0, nullptr, &found);
       },
       kInvalidParameter, "IWbemServices::CreateInstanceEnum: flags is 0, not 1"},
      {[](Client& c) { return Next(c, -1, 1); }, kInvalidParameter,
       "IEnumWbemClassObject::Next: timeout is -1, not 1000"},
      {[](Client& c) { return Next(c, 1000, 2); }, kInvalidParameter,
       "IEnumWbemClassObject::Next: count is 2, not 1"},
      {[](Client& c) {
         CComPtr<IWbemClassObject> object;
         return c.services->GetObject(c.data, 16, nullptr, &object, nullptr);
       },
       kInvalidParameter, "IWbemServices::GetObject: flags is 16, not 0"},
      {[](Client& c) {
         CComPtr<IWbemClassObject> in;
         return c.object->GetMethod(c.method, 0, &in, nullptr);
       },
       kInvalidParameter, "IWbemClassObject::GetMethod: asks for the output is 0, not 1"},
      {[](Client& c) {
         CComPtr<IWbemClassObject> object;
         return c.object->SpawnInstance(1, &object);
       },
       kInvalidParameter, "IWbemClassObject::SpawnInstance: flags is 1, not 0"},
      {[](Client& c) { return c.object->Get(c.bytes, 1, nullptr, nullptr, nullptr); },
       kInvalidParameter, "IWbemClassObject::Get: flags is 1, not 0"},
      {[](Client& c) {
         VARIANT value{};
         return c.object->Put(c.bytes, 0, &value, 8209);
       },
       kInvalidParameter, "IWbemClassObject::Put: type is 8209, not 0"},
      {[](Client& c) {
         CComPtr<IWbemClassObject> out;
         return c.services->ExecMethod(c.data, c.method, 16, nullptr, c.object, &out, nullptr);
       },
       kInvalidParameter, "IWbemServices::ExecMethod: flags is 16, not 0"},
  };
  ASSERT_EQ(Enter(kMany), S_OK);
  {
    Client client;
    ASSERT_EQ(client.services->GetObject(client.data, 0, nullptr, &client.object, nullptr), S_OK);
    ASSERT_EQ(client.services->CreateInstanceEnum(client.query, 1, nullptr, &client.instances),
              S_OK);
    for (const Case& c : cases) {
      SCOPED_TRACE(c.objection != nullptr ? c.objection : "no objection");
      EXPECT_EQ(c.call(client), c.result);
      std::vector<std::string> expected;
      if (c.objection != nullptr) expected.push_back(c.objection);
      EXPECT_EQ(objections_.Take(), expected);
    }
  }
  Leave();
  EXPECT_EQ(machine_.GetLive().references, 0);
  EXPECT_EQ(machine_.GetObjections().Texts().size(), std::size(cases) - 1);
}

}  // namespace
}  // namespace mira
