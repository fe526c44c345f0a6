#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/services.h"

namespace mira::platform {
namespace {

thread_local DWORD last_error = 0;

// The kernel serves the entry point and the bare table; the firmware table service puts eight bytes
// before the table.
std::vector<unsigned char> ReadKernelTable() {
  const auto read = [](const char* path) {
    std::ifstream file(path, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(file), {});
  };
  const std::vector<unsigned char> entry = read("/sys/firmware/dmi/tables/smbios_entry_point");
  const std::vector<unsigned char> table = read("/sys/firmware/dmi/tables/DMI");
  // DSP0134 5.2: the version stands at offset 7 of a "_SM3_" entry point, at offset 6 of a "_SM_"
  // one.
  const bool is_64_bit = entry.size() >= 9 && std::memcmp(entry.data(), "_SM3_", 5) == 0;
  const std::size_t version = is_64_bit ? 7 : 6;
  if (table.empty() || entry.size() < version + 2) return {};
  std::vector<unsigned char> result(8);
  result[1] = entry[version];
  result[2] = entry[version + 1];
  for (unsigned i = 0; i < 4; ++i) {
    result[4 + i] = static_cast<unsigned char>(table.size() >> (8 * i));
  }
  result.insert(result.end(), table.begin(), table.end());
  return result;
}

UINT WINAPI GetTable(DWORD provider, DWORD, LPVOID buffer, DWORD size) {
  constexpr DWORD kRsmb = 0x52534D42;  // 'RSMB'
  const std::vector<unsigned char> table =
      provider == kRsmb ? ReadKernelTable() : std::vector<unsigned char>();
  if (table.empty()) {
    last_error = ERROR_CALL_NOT_IMPLEMENTED;
    return 0;
  }
  if (buffer != nullptr && size >= table.size())
    std::copy(table.begin(), table.end(), static_cast<unsigned char*>(buffer));
  return static_cast<UINT>(table.size());
}

}  // namespace

const ServiceTable& SystemServices() noexcept {
  static const ServiceTable table = {
      .CoInitializeEx = [](LPVOID, DWORD) -> HRESULT { return E_NOTIMPL; },
      .CoInitializeSecurity = [](PSECURITY_DESCRIPTOR, LONG, SOLE_AUTHENTICATION_SERVICE*, void*,
                                 DWORD, DWORD, void*, DWORD,
                                 void*) -> HRESULT { return E_NOTIMPL; },
      .CoCreateInstance = [](REFCLSID, IUnknown*, DWORD, REFIID, LPVOID*) -> HRESULT {
        return E_NOTIMPL;
      },
      .CoSetProxyBlanket = [](IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD,
                              RPC_AUTH_IDENTITY_HANDLE, DWORD) -> HRESULT { return E_NOTIMPL; },
      .CoUninitialize = [] {},
      .SysAllocStringLen = [](const OLECHAR*, UINT) -> BSTR { return nullptr; },
      .SysFreeString = [](BSTR) {},
      .SysStringLen = [](BSTR) -> UINT { return 0; },
      .VariantClear = [](VARIANT*) -> HRESULT { return E_NOTIMPL; },
      .SafeArrayCreate = [](VARTYPE, UINT, SAFEARRAYBOUND*) -> SAFEARRAY* { return nullptr; },
      .SafeArrayDestroy = [](SAFEARRAY*) -> HRESULT { return E_NOTIMPL; },
      .SafeArrayPutElement = [](SAFEARRAY*, LONG*, void*) -> HRESULT { return E_NOTIMPL; },
      .SafeArrayAccessData = [](SAFEARRAY*, void**) -> HRESULT { return E_NOTIMPL; },
      .SafeArrayUnaccessData = [](SAFEARRAY*) -> HRESULT { return E_NOTIMPL; },
      .SafeArrayGetDim = [](SAFEARRAY*) -> UINT { return 0; },
      .SafeArrayGetLBound = [](SAFEARRAY*, UINT, LONG*) -> HRESULT { return E_NOTIMPL; },
      .SafeArrayGetUBound = [](SAFEARRAY*, UINT, LONG*) -> HRESULT { return E_NOTIMPL; },
      .GetSystemFirmwareTable = GetTable,
      .AllocateAndInitializeSid = [](SID_IDENTIFIER_AUTHORITY*, BYTE, DWORD, DWORD, DWORD, DWORD,
                                     DWORD, DWORD, DWORD, DWORD, PSID*) -> BOOL {
        last_error = ERROR_CALL_NOT_IMPLEMENTED;
        return FALSE;
      },
      .CheckTokenMembership = [](HANDLE, PSID, BOOL*) -> BOOL {
        last_error = ERROR_CALL_NOT_IMPLEMENTED;
        return FALSE;
      },
      .FormatMessageA = [](DWORD, LPCVOID, DWORD, DWORD, LPSTR, DWORD, void*) -> DWORD {
        return 0;
      },
      .LocalFree = [](HLOCAL memory) -> HLOCAL { return memory; },
      .GetLastError = []() -> DWORD { return last_error; },
  };
  return table;
}

}  // namespace mira::platform
