#ifndef MIRA_PLATFORM_COM_TYPES_H_
#define MIRA_PLATFORM_COM_TYPES_H_

// The COM and OLE automation types that the library uses. On Windows they are the system's;
// elsewhere the few declarations below stand in for them, so that the same sources build and are
// tested without Windows.

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// The order matters: the headers below need the one above.
#include <oleauto.h>
#include <wbemidl.h>

#else

#include <cstddef>
#include <cstdint>

using HRESULT = std::int32_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = std::uint32_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;
using BYTE = std::uint8_t;
using BOOL = std::int32_t;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using CIMTYPE = LONG;
using OLECHAR = wchar_t;
using BSTR = OLECHAR*;
using LPCWSTR = const OLECHAR*;
using LPSTR = char*;
using LPVOID = void*;
using LPCVOID = const void*;
using HANDLE = void*;
using HLOCAL = void*;
using PSID = void*;
using PSECURITY_DESCRIPTOR = void*;
using RPC_AUTH_IDENTITY_HANDLE = void*;

#define WINAPI
#define STDMETHODCALLTYPE
#define FAILED(hr) (static_cast<HRESULT>(hr) < 0)
#define SUCCEEDED(hr) (static_cast<HRESULT>(hr) >= 0)

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

// Status codes, as winerror.h and wbemcli.h number them.
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001U);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003U);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005U);
inline constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005U);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000EU);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057U);
inline constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000BU);
inline constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008U);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154U);
inline constexpr HRESULT RPC_E_CHANGED_MODE = static_cast<HRESULT>(0x80010106U);
inline constexpr HRESULT RPC_E_TOO_LATE = static_cast<HRESULT>(0x80010119U);
inline constexpr HRESULT WBEM_S_NO_ERROR = 0;
inline constexpr HRESULT WBEM_S_FALSE = 1;
inline constexpr HRESULT WBEM_E_FAILED = static_cast<HRESULT>(0x80041001U);
inline constexpr HRESULT WBEM_E_NOT_FOUND = static_cast<HRESULT>(0x80041002U);
inline constexpr HRESULT WBEM_E_NOT_SUPPORTED = static_cast<HRESULT>(0x8004100CU);
inline constexpr HRESULT WBEM_E_INVALID_NAMESPACE = static_cast<HRESULT>(0x8004100EU);
inline constexpr HRESULT WBEM_E_INVALID_CLASS = static_cast<HRESULT>(0x80041010U);

// Arguments of CoInitializeEx, CoCreateInstance, CoInitializeSecurity and CoSetProxyBlanket.
inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD COINIT_DISABLE_OLE1DDE = 4;
inline constexpr DWORD COINIT_SPEED_OVER_MEMORY = 8;
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr DWORD RPC_C_AUTHN_LEVEL_DEFAULT = 0;
inline constexpr DWORD RPC_C_AUTHN_LEVEL_CALL = 3;
inline constexpr DWORD RPC_C_IMP_LEVEL_IMPERSONATE = 3;
inline constexpr DWORD RPC_C_AUTHN_WINNT = 10;
inline constexpr DWORD RPC_C_AUTHZ_NONE = 0;
inline constexpr DWORD EOAC_NONE = 0;
inline constexpr LONG WBEM_FLAG_SHALLOW = 1;

// Arguments of the security and message services.
inline constexpr DWORD SECURITY_BUILTIN_DOMAIN_RID = 32;
inline constexpr DWORD DOMAIN_ALIAS_RID_ADMINS = 544;
inline constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x0100;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_CALL_NOT_IMPLEMENTED = 120;

struct SID_IDENTIFIER_AUTHORITY {
  BYTE Value[6];
};

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
  friend bool operator==(const GUID&, const GUID&) = default;
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline constexpr IID IID_IUnknown{0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IWbemLocator{
    0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
inline constexpr IID IID_IWbemServices{
    0x9556DC99, 0x828C, 0x11CF, {0xA3, 0x7E, 0x00, 0xAA, 0x00, 0x32, 0x40, 0xC7}};
inline constexpr IID IID_IEnumWbemClassObject{
    0x027947E1, 0xD731, 0x11CE, {0xA3, 0x57, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};
inline constexpr IID IID_IWbemClassObject{
    0xDC12A681, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
inline constexpr CLSID CLSID_WbemLocator{
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;

 protected:
  ~IUnknown() = default;  // COM objects end through Release
};

enum : VARTYPE {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I4 = 3,
  VT_BSTR = 8,
  VT_BOOL = 11,
  VT_UNKNOWN = 13,
  VT_UI1 = 17,
  VT_ARRAY = 0x2000,
};

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  void* pvData;
  SAFEARRAYBOUND rgsabound[1];
};

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONG lVal;
    BYTE bVal;
    VARIANT_BOOL boolVal;
    BSTR bstrVal;
    IUnknown* punkVal;
    SAFEARRAY* parray;
    std::uint64_t reserved_[2];
  };
};

#endif  // defined(_WIN32)

#endif  // MIRA_PLATFORM_COM_TYPES_H_
