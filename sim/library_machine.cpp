// The machine below the simulator's build of miraintf.dll. The library's services are found when it
// asks for the first of them: those of a simulated machine, the system's, or, where no machine can
// be had, services that fail and say why.

#include <cstring>
#include <memory>
#include <string>

#include "sim/control.h"
#include "sim/host_apartment.h"
#include "sim/mira_sim.h"
#include "sim/ole.h"

namespace mira::sim {
namespace {

using platform::ServiceTable;

class LibraryMachine : public ControlHost {
 public:
  static LibraryMachine& Get() {
    static LibraryMachine& machine = *new LibraryMachine();
    return machine;
  }

  // What serves the library. Looks for a machine unless there is one.
  const ServiceTable& Services() noexcept;
  // Initialises COM, where a host may have been before.
  HRESULT InitializeCom(LPVOID reserved, DWORD flags) noexcept;
  // Why there is none.
  const std::string& Reason() const { return reason_; }

  MachinePtr Machine() override { return machine_ ? machine_ : ProcessMachine::Get().Use(); }
  // A facade holds an initialisation of COM.
  void LetGo(bool force) override {
    if (machine_ && !force && machine_->GetMachine().GetLive().com_scopes > 0) {
      throw ChoiceError(MIRA_SIM_BUSY, "busy", "The host has the library started.");
    }
    session_.reset();
    machine_.reset();
    services_ = nullptr;
  }
  // The library is used by one thread at a time, which is the one that asks.
  bool WhileStill(const std::function<void()>& work) override {
    work();
    return true;
  }

 private:
  void Find();

  MachinePtr machine_;
  std::unique_ptr<Session> session_;
  const ServiceTable* services_ = nullptr;
  std::string reason_;
};

constexpr DWORD kBadEnvironment = 10;
constexpr HRESULT kNoMachine = static_cast<HRESULT>(0x8007000AU);

HRESULT WINAPI RefuseInitialize(LPVOID, DWORD) { return kNoMachine; }

HRESULT WINAPI RefuseSecurity(PSECURITY_DESCRIPTOR, LONG, SOLE_AUTHENTICATION_SERVICE*, void*,
                              DWORD, DWORD, void*, DWORD, void*) {
  return kNoMachine;
}

HRESULT WINAPI RefuseInstance(REFCLSID, IUnknown*, DWORD, REFIID, LPVOID*) { return kNoMachine; }

HRESULT WINAPI RefuseBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD,
                             RPC_AUTH_IDENTITY_HANDLE, DWORD) {
  return kNoMachine;
}

void WINAPI EndNothing() {}

UINT WINAPI RefuseTable(DWORD, DWORD, LPVOID, DWORD) { return 0; }

BOOL WINAPI RefuseSid(SID_IDENTIFIER_AUTHORITY*, BYTE, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD,
                      DWORD, DWORD, PSID*) {
  return FALSE;
}

BOOL WINAPI RefuseMembership(HANDLE, PSID, BOOL*) { return FALSE; }

// The start's first step fails, and writes the text for its error to the host's diagnostics.
DWORD WINAPI ReasonText(DWORD, LPCVOID, DWORD, DWORD, LPSTR buffer, DWORD, void*) {
  const std::string& reason = LibraryMachine::Get().Reason();
  char* const copy = new char[reason.size() + 1];
  std::memcpy(copy, reason.c_str(), reason.size() + 1);
  std::memcpy(buffer, &copy, sizeof(copy));
  return static_cast<DWORD>(reason.size());
}

HLOCAL WINAPI FreeReason(HLOCAL text) {
  delete[] static_cast<char*>(text);
  return nullptr;
}

DWORD WINAPI ReasonCode() { return kBadEnvironment; }

// Strings and arrays can be had without a machine.
const ServiceTable& NoMachine() {
  static const ServiceTable table = [] {
    ServiceTable none = Ole();
    none.CoInitializeEx = RefuseInitialize;
    none.CoInitializeSecurity = RefuseSecurity;
    none.CoCreateInstance = RefuseInstance;
    none.CoSetProxyBlanket = RefuseBlanket;
    none.CoUninitialize = EndNothing;
    none.GetSystemFirmwareTable = RefuseTable;
    none.AllocateAndInitializeSid = RefuseSid;
    none.CheckTokenMembership = RefuseMembership;
    none.FormatMessageA = ReasonText;
    none.LocalFree = FreeReason;
    none.GetLastError = ReasonCode;
    return none;
  }();
  return table;
}

void LibraryMachine::Find() {
  try {
    machine_ = ProcessMachine::Get().Use();
    if (!machine_) {
      services_ = &platform::SystemServices();
      return;
    }
    session_ = std::make_unique<Session>(machine_->GetMachine(), Session::Start::kGoesOn);
    services_ = &platform::Services();
  } catch (const std::exception& error) {
    machine_.reset();
    reason_ = error.what();
  }
}

const ServiceTable& LibraryMachine::Services() noexcept {
  if (services_ == nullptr) Find();
  return services_ != nullptr ? *services_ : NoMachine();
}

HRESULT LibraryMachine::InitializeCom(LPVOID reserved, DWORD flags) noexcept {
  const ServiceTable& services = Services();
  const auto kind = machine_ ? HostApartment() : std::nullopt;
  if (kind) machine_->GetMachine().HostEnters(*kind);
  return services.CoInitializeEx(reserved, flags);
}

HRESULT WINAPI Initialize(LPVOID reserved, DWORD flags) {
  return LibraryMachine::Get().InitializeCom(reserved, flags);
}

// A service that hands its call on to the one of the same name.
template <auto service>
struct HandOn;
template <typename Result, typename... Arguments,
          Result (WINAPI* ServiceTable::*service)(Arguments...)>
struct HandOn<service> {
  static Result WINAPI Call(Arguments... arguments) {
    return (LibraryMachine::Get().Services().*service)(arguments...);
  }
};

const ServiceTable kFound = {
    .CoInitializeEx = Initialize,
    .CoInitializeSecurity = HandOn<&ServiceTable::CoInitializeSecurity>::Call,
    .CoCreateInstance = HandOn<&ServiceTable::CoCreateInstance>::Call,
    .CoSetProxyBlanket = HandOn<&ServiceTable::CoSetProxyBlanket>::Call,
    .CoUninitialize = HandOn<&ServiceTable::CoUninitialize>::Call,
    .SysAllocStringLen = HandOn<&ServiceTable::SysAllocStringLen>::Call,
    .SysFreeString = HandOn<&ServiceTable::SysFreeString>::Call,
    .SysStringLen = HandOn<&ServiceTable::SysStringLen>::Call,
    .VariantClear = HandOn<&ServiceTable::VariantClear>::Call,
    .SafeArrayCreate = HandOn<&ServiceTable::SafeArrayCreate>::Call,
    .SafeArrayDestroy = HandOn<&ServiceTable::SafeArrayDestroy>::Call,
    .SafeArrayPutElement = HandOn<&ServiceTable::SafeArrayPutElement>::Call,
    .SafeArrayAccessData = HandOn<&ServiceTable::SafeArrayAccessData>::Call,
    .SafeArrayUnaccessData = HandOn<&ServiceTable::SafeArrayUnaccessData>::Call,
    .SafeArrayGetDim = HandOn<&ServiceTable::SafeArrayGetDim>::Call,
    .SafeArrayGetLBound = HandOn<&ServiceTable::SafeArrayGetLBound>::Call,
    .SafeArrayGetUBound = HandOn<&ServiceTable::SafeArrayGetUBound>::Call,
    .GetSystemFirmwareTable = HandOn<&ServiceTable::GetSystemFirmwareTable>::Call,
    .AllocateAndInitializeSid = HandOn<&ServiceTable::AllocateAndInitializeSid>::Call,
    .CheckTokenMembership = HandOn<&ServiceTable::CheckTokenMembership>::Call,
    .FormatMessageA = HandOn<&ServiceTable::FormatMessageA>::Call,
    .LocalFree = HandOn<&ServiceTable::LocalFree>::Call,
    .GetLastError = HandOn<&ServiceTable::GetLastError>::Call,
};

// When the library is loaded; the table itself needs no initialisation.
[[maybe_unused]] const bool put_in_force = [] {
  platform::SetServices(&kFound);
  return true;
}();

}  // namespace
}  // namespace mira::sim

MIRA_SIM_API int32_t MIRA_SIM_CALL mira_sim_control(const char* request, uint32_t size,
                                                    const char** document,
                                                    uint32_t* document_size) {
  return mira::sim::ControlForHost(request, size, document, document_size,
                                   mira::sim::LibraryMachine::Get());
}
