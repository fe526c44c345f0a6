#include "transport/connection.h"

#include "bytes/reader.h"
#include "platform/variant.h"
#include "transport/com_error.h"
#include "transport/operation_log.h"
#include "transport/wmi_object.h"

namespace mira::transport {
namespace {

using platform::Services;
using platform::Variant;

// Writes the line of a failed step. The stream is decimal again afterwards.
void WriteFailure(std::ostream& diag, const char* text, std::uint32_t code) {
  diag << text << std::hex << code << std::dec << std::endl;
}

void Fail(std::ostream& diag, Step step, const char* text, HRESULT code) {
  OperationLog::Get().Fail(step, CodeKind::kHresult, code);
  WriteFailure(diag, text, static_cast<std::uint32_t>(code));
}

bool ReadDataBlock(IWbemClassObject* instance, Discovery& found) {
  constexpr std::size_t kSignatureSize = 8;
  constexpr std::size_t kSizeOffset = 12;
  HRESULT result = S_OK;
  const CComPtr<IWbemClassObject> block = EmbeddedObject(instance, L"QDATA", result);
  Variant value;
  if (!block || FAILED(GetProperty(block, L"Bytes", value))) return false;
  const platform::ByteArrayAccess access(value);
  bytes::Reader in(access.Bytes());
  const std::string_view signature = bytes::AsText(in.Take(kSignatureSize));
  in.Seek(kSizeOffset);
  const std::uint32_t buffer_size = in.U32();
  const std::uint32_t fix = in.U32();
  if (!in.Ok() || signature != "TARN WMI") return false;
  found.found = true;
  found.buffer_size = buffer_size;
  found.buffer_fix = fix == 1;
  return true;
}

}  // namespace

Attempt Connect(std::ostream& diag) {
  const auto& system = Services();
  OperationLog& log = OperationLog::Get();
  Attempt attempt;
  // Made first: where it cannot be made, COM is not initialised in vain.
  const CComBSTR wmi = MakeBstr(L"ROOT\\WMI");
  attempt.initialized = system.CoInitializeEx(nullptr, kApartment);
  const HRESULT initialized = attempt.initialized;
  if (FAILED(initialized) && initialized != RPC_E_CHANGED_MODE) {
    log.Fail(Step::kComInitialisation, CodeKind::kHresult, initialized);
    WriteFailure(diag, "Error initializing COM!! ", system.GetLastError());
    return attempt;
  }
  log.Done(Step::kComInitialisation, CodeKind::kHresult, initialized);
  if (initialized == S_FALSE) system.CoUninitialize();
  if (initialized != S_OK) {
    log.Pass(Step::kComSecurity, StepOutcome::kSkipped);
  } else {
    const HRESULT secured =
        system.CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                    RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    if (FAILED(secured) && secured != RPC_E_TOO_LATE) {
      Fail(diag, Step::kComSecurity, "Failed to initialize COM security. Error code = 0x", secured);
      return attempt;
    }
    log.Done(Step::kComSecurity, CodeKind::kHresult, secured);
  }

  void* created = nullptr;
  const HRESULT located = system.CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                                  IID_IWbemLocator, &created);
  if (FAILED(located) || created == nullptr) {
    Fail(diag, Step::kWmiLocator, "Failed to create IWbemLocator object. Err code = 0x", located);
    return attempt;
  }
  CComPtr<IWbemLocator> locator;
  locator.Attach(static_cast<IWbemLocator*>(created));
  log.Done(Step::kWmiLocator);

  CComPtr<IWbemServices> connected;
  const HRESULT result =
      locator->ConnectServer(wmi, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &connected);
  if (FAILED(result) || !connected) {
    Fail(diag, Step::kWmiConnection, "Could not connect. Error code = 0x", result);
    return attempt;
  }
  log.Done(Step::kWmiConnection);

  const HRESULT blanket = system.CoSetProxyBlanket(connected, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE,
                                                   nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                                   RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
  if (FAILED(blanket)) {
    Fail(diag, Step::kProxyBlanket, "Could not set proxy blanket. Error code = 0x", blanket);
    return attempt;
  }
  log.Done(Step::kProxyBlanket);
  attempt.services = connected;
  return attempt;
}

Discovery FindInstance(IWbemServices* services) {
  constexpr LONG kTimeoutMilliseconds = 1000;
  Discovery found;
  CComPtr<IEnumWbemClassObject> instances;
  const CComBSTR class_name = MakeBstr(L"WMI_Query");
  found.result = services->CreateInstanceEnum(class_name, WBEM_FLAG_SHALLOW, nullptr, &instances);
  if (FAILED(found.result) || !instances) return found;
  for (;;) {
    CComPtr<IWbemClassObject> instance;
    ULONG returned = 0;
    found.result = instances->Next(kTimeoutMilliseconds, 1, &instance, &returned);
    if (found.result != S_OK || !instance) break;
    if (!ReadDataBlock(instance, found)) continue;
    Variant path;
    if (SUCCEEDED(GetProperty(instance, L"__RELPATH", path)) && path.Text() != nullptr) {
      found.relative_path = MakeBstr(path.Text());
    }
    break;
  }
  return found;
}

}  // namespace mira::transport
