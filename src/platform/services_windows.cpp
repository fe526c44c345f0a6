#include "platform/services.h"

namespace mira::platform {
namespace {

// Three services take pointer types that the table spells as plain pointers.
HRESULT WINAPI InitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG service_count,
                                  SOLE_AUTHENTICATION_SERVICE* services, void* reserved1,
                                  DWORD authn_level, DWORD imp_level, void* auth_list,
                                  DWORD capabilities, void* reserved3) {
  return ::CoInitializeSecurity(descriptor, service_count, services, reserved1, authn_level,
                                imp_level, auth_list, capabilities, reserved3);
}

DWORD WINAPI FormatMessageText(DWORD flags, LPCVOID source, DWORD message_id, DWORD language_id,
                               LPSTR buffer, DWORD size, void* arguments) {
  return ::FormatMessageA(flags, source, message_id, language_id, buffer, size,
                          static_cast<va_list*>(arguments));
}

HRESULT WINAPI PutElement(SAFEARRAY* array, LONG* indices, void* element) {
  return ::SafeArrayPutElement(array, indices, element);
}

}  // namespace

const ServiceTable& SystemServices() noexcept {
  static const ServiceTable table = {
      .CoInitializeEx = ::CoInitializeEx,
      .CoInitializeSecurity = InitializeSecurity,
      .CoCreateInstance = ::CoCreateInstance,
      .CoSetProxyBlanket = ::CoSetProxyBlanket,
      .CoUninitialize = ::CoUninitialize,
      .SysAllocStringLen = ::SysAllocStringLen,
      .SysFreeString = ::SysFreeString,
      .SysStringLen = ::SysStringLen,
      .VariantClear = ::VariantClear,
      .SafeArrayCreate = ::SafeArrayCreate,
      .SafeArrayDestroy = ::SafeArrayDestroy,
      .SafeArrayPutElement = PutElement,
      .SafeArrayAccessData = ::SafeArrayAccessData,
      .SafeArrayUnaccessData = ::SafeArrayUnaccessData,
      .SafeArrayGetDim = ::SafeArrayGetDim,
      .SafeArrayGetLBound = ::SafeArrayGetLBound,
      .SafeArrayGetUBound = ::SafeArrayGetUBound,
      .GetSystemFirmwareTable = ::GetSystemFirmwareTable,
      .AllocateAndInitializeSid = ::AllocateAndInitializeSid,
      .CheckTokenMembership = ::CheckTokenMembership,
      .FormatMessageA = FormatMessageText,
      .LocalFree = ::LocalFree,
      .GetLastError = ::GetLastError,
  };
  return table;
}

}  // namespace mira::platform
