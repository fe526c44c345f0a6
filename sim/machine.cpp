#include "sim/machine.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "facade/process_state.h"
#include "sim/com_services.h"
#include "sim/ole.h"
#include "sim/smbios_tables.h"

namespace mira::sim {
namespace {

StatePtr& current = InForce();

// Of the state's document.
constexpr std::uint32_t kStateVersion = 1;

constexpr DWORD kInsufficientBuffer = 122;
constexpr DWORD kInvalidFunction = 1;

BSTR WINAPI AllocStringLen(const OLECHAR* text, UINT length) {
  if (current->faults.Fails("SysAllocStringLen")) return nullptr;
  BSTR const result = Ole().SysAllocStringLen(text, length);
  if (result != nullptr) ++current->live.strings;
  return result;
}

void WINAPI FreeString(BSTR text) {
  // A string that cannot be freed stays alive.
  if (current->faults.Fails("SysFreeString") || text == nullptr) return;
  current->Release(StringBytes(text));
  --current->live.strings;
  Ole().SysFreeString(text);
}

UINT WINAPI StringLen(BSTR text) {
  if (const auto failure = current->faults.Fails("SysStringLen")) {
    return static_cast<UINT>(*failure);
  }
  return Ole().SysStringLen(text);
}

HRESULT WINAPI ClearVariant(VARIANT* value) {
  if (const auto failure = current->faults.Fails("VariantClear")) return *failure;
  if (value != nullptr && value->vt == VT_BSTR && value->bstrVal != nullptr) {
    current->Release(StringBytes(value->bstrVal));
    --current->live.strings;
    current->Cleared(value->bstrVal);
  } else if (value != nullptr && (value->vt & VT_ARRAY) != 0 && value->parray != nullptr) {
    current->Release(ArrayBytes(value->parray));
    --current->live.arrays;
    current->Cleared(value->parray);
  } else if (value != nullptr && value->vt == VT_UNKNOWN) {
    current->Cleared(value->punkVal);
  }
  return Ole().VariantClear(value);
}

SAFEARRAY* WINAPI CreateArray(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  if (current->faults.Fails("SafeArrayCreate")) return nullptr;
  SAFEARRAY* const array = Ole().SafeArrayCreate(type, dimensions, bounds);
  if (array != nullptr) ++current->live.arrays;
  return array;
}

HRESULT WINAPI DestroyArray(SAFEARRAY* array) {
  if (const auto failure = current->faults.Fails("SafeArrayDestroy")) return *failure;
  if (array != nullptr) {
    current->Release(ArrayBytes(array));
    --current->live.arrays;
  }
  return Ole().SafeArrayDestroy(array);
}

HRESULT WINAPI PutElement(SAFEARRAY* array, LONG* indices, void* element) {
  if (const auto failure = current->faults.Fails("SafeArrayPutElement")) return *failure;
  return Ole().SafeArrayPutElement(array, indices, element);
}

HRESULT WINAPI AccessData(SAFEARRAY* array, void** data) {
  if (const auto failure = current->faults.Fails("SafeArrayAccessData")) return *failure;
  return Ole().SafeArrayAccessData(array, data);
}

HRESULT WINAPI UnaccessData(SAFEARRAY* array) {
  if (const auto failure = current->faults.Fails("SafeArrayUnaccessData")) return *failure;
  return Ole().SafeArrayUnaccessData(array);
}

UINT WINAPI GetDim(SAFEARRAY* array) {
  if (const auto failure = current->faults.Fails("SafeArrayGetDim")) {
    return static_cast<UINT>(*failure);
  }
  return Ole().SafeArrayGetDim(array);
}

HRESULT WINAPI GetLowerBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (const auto failure = current->faults.Fails("SafeArrayGetLBound")) return *failure;
  return Ole().SafeArrayGetLBound(array, dimension, bound);
}

HRESULT WINAPI GetUpperBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (const auto failure = current->faults.Fails("SafeArrayGetUBound")) return *failure;
  return Ole().SafeArrayGetUBound(array, dimension, bound);
}

UINT WINAPI FirmwareTable(DWORD provider, DWORD, LPVOID buffer, DWORD size) {
  constexpr DWORD kRsmb = 0x52534D42;  // 'RSMB'
  if (const auto failure = current->faults.Fails("GetSystemFirmwareTable")) {
    return static_cast<UINT>(*failure);
  }
  const std::vector<std::uint8_t>& table = current->profile.firmware_table;
  if (provider != kRsmb || table.empty()) {
    current->last_error = kInvalidFunction;
    return 0;
  }
  if (buffer == nullptr || size < table.size()) {
    current->last_error = kInsufficientBuffer;
  } else {
    std::copy(table.begin(), table.end(), static_cast<std::uint8_t*>(buffer));
  }
  return static_cast<UINT>(table.size());
}

// The one SID that is asked for. It is never given back, so it is no allocation.
int administrators_sid = 0;

BOOL WINAPI AllocateSid(SID_IDENTIFIER_AUTHORITY* authority, BYTE count, DWORD s0, DWORD s1, DWORD,
                        DWORD, DWORD, DWORD, DWORD, DWORD, PSID* sid) {
  if (const auto failure = current->faults.Fails("AllocateAndInitializeSid")) {
    current->last_error = static_cast<DWORD>(*failure);
    return FALSE;
  }
  constexpr BYTE kNtAuthority[6] = {0, 0, 0, 0, 0, 5};
  constexpr DWORD kInvalidParameter = 87;
  if (std::memcmp(authority->Value, kNtAuthority, sizeof(kNtAuthority)) != 0 || count != 2 ||
      s0 != SECURITY_BUILTIN_DOMAIN_RID || s1 != DOMAIN_ALIAS_RID_ADMINS) {
    current->last_error = kInvalidParameter;
    return FALSE;
  }
  *sid = &administrators_sid;
  return TRUE;
}

BOOL WINAPI CheckMembership(HANDLE token, PSID sid, BOOL* is_member) {
  current->objections.Accept("CheckTokenMembership", {{"token", token != nullptr, 0}});
  if (const auto failure = current->faults.Fails("CheckTokenMembership")) {
    current->last_error = static_cast<DWORD>(*failure);
    return FALSE;
  }
  *is_member = sid == &administrators_sid && current->profile.is_administrator ? TRUE : FALSE;
  return TRUE;
}

// Texts are handed out as memory of their own, as the allocate flag asks.
DWORD WINAPI FormatText(DWORD flags, LPCVOID, DWORD message_id, DWORD, LPSTR buffer, DWORD, void*) {
  if (current->faults.Fails("FormatMessageA")) return 0;
  if ((flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) == 0 || buffer == nullptr) return 0;
  const std::string text = message_id == ERROR_ACCESS_DENIED
                               ? "Access is denied.\r\n"
                               : "System error " + std::to_string(message_id) + ".\r\n";
  char* const copy = new char[text.size() + 1];
  std::memcpy(copy, text.c_str(), text.size() + 1);
  std::memcpy(buffer, &copy, sizeof(copy));
  ++current->live.strings;
  return static_cast<DWORD>(text.size());
}

HLOCAL WINAPI FreeLocal(HLOCAL memory) {
  if (current->faults.Fails("LocalFree")) return memory;
  if (memory != nullptr) --current->live.strings;
  delete[] static_cast<char*>(memory);
  return nullptr;
}

DWORD WINAPI LastError() {
  if (const auto failure = current->faults.Fails("GetLastError")) {
    return static_cast<DWORD>(*failure);
  }
  return current->last_error;
}

const platform::ServiceTable kServices = {
    .CoInitializeEx = InitializeEx,
    .CoInitializeSecurity = InitializeSecurity,
    .CoCreateInstance = CreateInstance,
    .CoSetProxyBlanket = SetProxyBlanket,
    .CoUninitialize = Uninitialize,
    .SysAllocStringLen = AllocStringLen,
    .SysFreeString = FreeString,
    .SysStringLen = StringLen,
    .VariantClear = ClearVariant,
    .SafeArrayCreate = CreateArray,
    .SafeArrayDestroy = DestroyArray,
    .SafeArrayPutElement = PutElement,
    .SafeArrayAccessData = AccessData,
    .SafeArrayUnaccessData = UnaccessData,
    .SafeArrayGetDim = GetDim,
    .SafeArrayGetLBound = GetLowerBound,
    .SafeArrayGetUBound = GetUpperBound,
    .GetSystemFirmwareTable = FirmwareTable,
    .AllocateAndInitializeSid = AllocateSid,
    .CheckTokenMembership = CheckMembership,
    .FormatMessageA = FormatText,
    .LocalFree = FreeLocal,
    .GetLastError = LastError,
};

}  // namespace

Machine::Machine(const Profile& profile) : state_(std::make_shared<State>(profile)) {
  if (state_->profile.firmware_table.empty()) {
    state_->profile.firmware_table = BuildFirmwareTable(profile);
  }
}

void Machine::Reboot() {
  state_->Transact([this] { state_->firmware.Reboot(); });
}

void Machine::LosePower() {
  state_->Transact([this] { state_->firmware.PowerLoss(); });
}

void Machine::Keep(Fields& fields) const {
  std::uint32_t version = kStateVersion;
  std::string profile = state_->profile.name;
  fields("schemaVersion", version)("profile", profile);
  fields.Require(version == kStateVersion, "this program does not know the version");
  fields.Require(profile == state_->profile.name, "the state is that of another machine");
  state_->firmware.Keep(fields);
}

Node Machine::StateTree() const {
  Node tree;
  Fields fields(Fields::Pass::kSave, tree);
  fields.Whole([&] { Keep(fields); });
  return tree;
}

void Machine::TakeState(const Node& tree) {
  const Node before = StateTree();
  const auto take = [this](Node from) {
    Fields fields(Fields::Pass::kLoad, from);
    fields.Whole([&] { Keep(fields); });
  };
  try {
    take(tree);
  } catch (...) {
    take(before);
    throw;
  }
}

bytes::SecureString Machine::SaveState() const { return WriteJson(StateTree()); }

void Machine::LoadState(const Node& tree) {
  state_->Transact([&] { TakeState(tree); });
}

void Machine::RestoreState(std::string_view saved) { TakeState(ParseJson(saved)); }

Session::Session(Machine& machine, Start start)
    : state_before_(current), services_before_(nullptr) {
  if (start == Start::kForgets) ResetProcessState();
  current = machine.state_;
  services_before_ = platform::SetServices(&kServices);
}

Session::~Session() {
  ResetProcessState();
  platform::SetServices(services_before_);
  current = state_before_;
}

}  // namespace mira::sim
