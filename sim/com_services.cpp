#include "sim/com_services.h"

#include <string_view>

#include "platform/com_ptr.h"
#include "sim/com_object.h"
#include "sim/wmi.h"

namespace mira::sim {
namespace {

constexpr DWORD kSingleThreaded = 2;
constexpr DWORD kWithoutOle1Dde = 4;
constexpr DWORD kSpeedOverMemory = 8;
constexpr HRESULT kNoAggregation = static_cast<HRESULT>(0x80040110U);

bool HasCom(State& state, std::string_view operation) {
  if (state.apartments.Current()) return true;
  state.objections.Add(operation, "COM is not initialised");
  return false;
}

}  // namespace

StatePtr& InForce() {
  static StatePtr state;
  return state;
}

HRESULT WINAPI InitializeEx(LPVOID reserved, DWORD flags) {
  using Kind = Apartments::Kind;
  constexpr DWORD kKnown = kSingleThreaded | kWithoutOle1Dde | kSpeedOverMemory;
  State& state = *InForce();
  const auto forced = state.faults.Fails("CoInitializeEx");
  if (!state.objections.Accept("CoInitializeEx", {{"reserved", reserved != nullptr, 0},
                                                  {"unknown flags", flags & ~kKnown, 0}})) {
    return E_INVALIDARG;
  }
  Apartments& apartments = state.apartments;
  const bool single = (flags & kSingleThreaded) != 0;
  const Kind kind = single ? Kind::kSingleThreaded : Kind::kMultithreaded;
  if (forced) {
    // An answer that only an initialised thread gets tells what the host did with it before.
    if (!apartments.HasEntered() && *forced == S_FALSE) apartments.Enter(kind);
    if (!apartments.HasEntered() && *forced == RPC_E_CHANGED_MODE) {
      apartments.Enter(single ? Kind::kMultithreaded : Kind::kSingleThreaded);
    }
    if (FAILED(*forced)) return *forced;
  }
  const HRESULT entered = apartments.Enter(kind);
  if (SUCCEEDED(entered)) ++state.live.com_scopes;
  return forced.value_or(entered);
}

void WINAPI Uninitialize() {
  State& state = *InForce();
  state.faults.Hit("CoUninitialize");
  --state.live.com_scopes;
  if (const ApartmentPtr ended = state.apartments.Leave()) state.live.outlived += ended->references;
}

HRESULT WINAPI InitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG service_count,
                                  SOLE_AUTHENTICATION_SERVICE* services, void* reserved1,
                                  DWORD authn_level, DWORD imp_level, void* auth_list,
                                  DWORD capabilities, void* reserved3) {
  constexpr std::string_view kName = "CoInitializeSecurity";
  State& state = *InForce();
  const auto forced = state.faults.Fails(kName);
  if (!HasCom(state, kName)) return kNotInitialized;
  if (!state.objections.Accept(kName, {{"descriptor", descriptor != nullptr, 0},
                                       {"number of services", service_count, -1},
                                       {"services", services != nullptr, 0},
                                       {"first reserved", reserved1 != nullptr, 0},
                                       {"authentication level", authn_level, 0},
                                       {"impersonation level", imp_level, 3},
                                       {"authentication list", auth_list != nullptr, 0},
                                       {"capabilities", capabilities, 0},
                                       {"last reserved", reserved3 != nullptr, 0}})) {
    return E_INVALIDARG;
  }
  if (forced) return *forced;
  return state.apartments.FixSecurity() ? S_OK : RPC_E_TOO_LATE;
}

HRESULT WINAPI CreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                              LPVOID* object) {
  constexpr std::string_view kName = "CoCreateInstance";
  State& state = *InForce();
  const auto forced = state.faults.Fails(kName);
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!HasCom(state, kName)) return kNotInitialized;
  if (!state.objections.Accept(kName, {{"is the WMI locator", clsid == CLSID_WbemLocator, 1},
                                       {"context", context, 1}})) {
    return REGDB_E_CLASSNOTREG;
  }
  if (!state.objections.Accept(kName, {{"outer object", outer != nullptr, 0}})) {
    return kNoAggregation;
  }
  if (!state.objections.Accept(kName, {{"interface is the locator's", iid == IID_IWbemLocator, 1}}))
    return E_NOINTERFACE;
  if (forced) return *forced;
  CComPtr<IWbemLocator> locator;
  locator.Attach(MakeLocator(InForce()));
  return locator->QueryInterface(iid, object);
}

HRESULT WINAPI SetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service,
                               OLECHAR* principal, DWORD authn_level, DWORD imp_level,
                               RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
  constexpr std::string_view kName = "CoSetProxyBlanket";
  const auto* const services = dynamic_cast<ServicesBase*>(proxy);
  if (services == nullptr) {
    InForce()->objections.Add(kName, "the object is no WMI connection");
    return E_INVALIDARG;
  }
  return services
      ->Refused(kName, E_INVALIDARG,
                {{"authentication service", authn_service, 10},
                 {"authorisation service", authz_service, 0},
                 {"principal", principal != nullptr, 0},
                 {"authentication level", authn_level, 3},
                 {"impersonation level", imp_level, 3},
                 {"identity", identity != nullptr, 0},
                 {"capabilities", capabilities, 0}})
      .value_or(S_OK);
}

}  // namespace mira::sim
