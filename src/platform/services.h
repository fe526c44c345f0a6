#ifndef MIRA_PLATFORM_SERVICES_H_
#define MIRA_PLATFORM_SERVICES_H_

// Every operating-system service that the library uses, in one table. By default the table holds
// the real services; a host, a test or the simulated machine puts another in force and so can
// answer, observe or fail each call.
//
//   mira::platform::ServiceTable table = mira::platform::Services();
//   table.CoInitializeEx = RefuseToStart;  // HRESULT WINAPI RefuseToStart(LPVOID, DWORD)
//   mira::platform::ScopedServices scope(table);   // in force until the end of the scope

#include "platform/api.h"
#include "platform/com.h"

namespace mira::platform {

// One function pointer per service, under the service's own name and with its signature.
struct ServiceTable {
  // COM
  HRESULT(WINAPI* CoInitializeEx)(LPVOID reserved, DWORD flags);
  HRESULT(WINAPI* CoInitializeSecurity)
  (PSECURITY_DESCRIPTOR descriptor, LONG service_count, SOLE_AUTHENTICATION_SERVICE* services,
   void* reserved1, DWORD authn_level, DWORD imp_level, void* auth_list, DWORD capabilities,
   void* reserved3);
  HRESULT(WINAPI* CoCreateInstance)
  (REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, LPVOID* object);
  HRESULT(WINAPI* CoSetProxyBlanket)
  (IUnknown* proxy, DWORD authn_service, DWORD authz_service, OLECHAR* principal, DWORD authn_level,
   DWORD imp_level, RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities);
  void(WINAPI* CoUninitialize)();

  // OLE automation
  BSTR(WINAPI* SysAllocStringLen)(const OLECHAR* text, UINT length);
  void(WINAPI* SysFreeString)(BSTR text);
  UINT(WINAPI* SysStringLen)(BSTR text);
  HRESULT(WINAPI* VariantClear)(VARIANT* value);
  SAFEARRAY*(WINAPI* SafeArrayCreate)(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
  HRESULT(WINAPI* SafeArrayDestroy)(SAFEARRAY* array);
  HRESULT(WINAPI* SafeArrayPutElement)(SAFEARRAY* array, LONG* indices, void* element);
  HRESULT(WINAPI* SafeArrayAccessData)(SAFEARRAY* array, void** data);
  HRESULT(WINAPI* SafeArrayUnaccessData)(SAFEARRAY* array);
  UINT(WINAPI* SafeArrayGetDim)(SAFEARRAY* array);
  HRESULT(WINAPI* SafeArrayGetLBound)(SAFEARRAY* array, UINT dimension, LONG* bound);
  HRESULT(WINAPI* SafeArrayGetUBound)(SAFEARRAY* array, UINT dimension, LONG* bound);

  // Firmware table: size in bytes of the table, or of the buffer filled; 0 on failure.
  UINT(WINAPI* GetSystemFirmwareTable)(DWORD provider, DWORD id, LPVOID buffer, DWORD size);

  // Security and messages
  BOOL(WINAPI* AllocateAndInitializeSid)
  (SID_IDENTIFIER_AUTHORITY* authority, BYTE count, DWORD s0, DWORD s1, DWORD s2, DWORD s3,
   DWORD s4, DWORD s5, DWORD s6, DWORD s7, PSID* sid);
  BOOL(WINAPI* CheckTokenMembership)(HANDLE token, PSID sid, BOOL* is_member);
  DWORD(WINAPI* FormatMessageA)
  (DWORD flags, LPCVOID source, DWORD message_id, DWORD language_id, LPSTR buffer, DWORD size,
   void* arguments);
  HLOCAL(WINAPI* LocalFree)(HLOCAL memory);
  DWORD(WINAPI* GetLastError)();
};

// The table in force. Copy it to build a variation.
MIRA_API const ServiceTable& Services() noexcept;

// The system's own services. On Linux COM and WMI answer "not available", and the firmware table is
// read from the kernel's DMI tables where they are readable.
MIRA_API const ServiceTable& SystemServices() noexcept;

// Puts `table` in force (null: the system's own) and returns what was in force before (null: the
// system's own). The table is not copied and must outlive its use. Not synchronised: change it
// while no facade call runs.
MIRA_API const ServiceTable* SetServices(const ServiceTable* table) noexcept;

// Puts a copy of a table in force for a scope.
class ScopedServices {
 public:
  explicit ScopedServices(const ServiceTable& table)
      : table_(table), before_(SetServices(&table_)) {}
  ~ScopedServices() { SetServices(before_); }
  ScopedServices(const ScopedServices&) = delete;
  ScopedServices& operator=(const ScopedServices&) = delete;

 private:
  ServiceTable table_;
  const ServiceTable* before_;
};

}  // namespace mira::platform

#endif  // MIRA_PLATFORM_SERVICES_H_
