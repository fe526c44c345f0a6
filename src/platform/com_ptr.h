#ifndef MIRA_PLATFORM_COM_PTR_H_
#define MIRA_PLATFORM_COM_PTR_H_

// COM pointers and strings. A host that already has ATL's CComPtr and CComBSTR gets those; the ones
// below have the same size and the members that the library's interface needs.
//
//   CComPtr<IWbemServices> services;
//   locator->ConnectServer(path, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services);
//   CComBSTR name(L"QDATA");                // SysAllocString, freed at the end of the scope

#include "platform/com.h"
#include "platform/services.h"

#if defined(__ATLBASE_H__)

using ATL::CComBSTR;
using ATL::CComPtr;

#else

#include <cwchar>
#include <utility>

// A counted reference to a COM object.
template <typename T>
class CComPtr {
 public:
  CComPtr() = default;
  CComPtr(T* object) : p(object) {  // NOLINT(google-explicit-constructor): as ATL's
    if (p) p->AddRef();
  }
  CComPtr(const CComPtr& other) : CComPtr(other.p) {}
  CComPtr(CComPtr&& other) noexcept : p(std::exchange(other.p, nullptr)) {}
  ~CComPtr() { Release(); }
  CComPtr& operator=(CComPtr other) noexcept {
    std::swap(p, other.p);
    return *this;
  }

  void Release() {
    if (T* const object = std::exchange(p, nullptr)) object->Release();
  }
  // Takes over a reference that the caller already holds.
  void Attach(T* object) {
    Release();
    p = object;
  }
  T* Detach() { return std::exchange(p, nullptr); }
  // For out parameters; the pointer is empty then.
  T** operator&() { return &p; }
  T* operator->() const { return p; }
  operator T*() const { return p; }  // NOLINT(google-explicit-constructor): as ATL's

  T* p = nullptr;
};

// An owned BSTR. A null BSTR counts as the empty string.
class CComBSTR {
 public:
  CComBSTR() = default;
  // On a failed allocation the string stays null.
  explicit CComBSTR(const OLECHAR* text) {
    if (text) {
      m_str =
          mira::platform::Services().SysAllocStringLen(text, static_cast<UINT>(std::wcslen(text)));
    }
  }
  CComBSTR(const CComBSTR& other) : m_str(other.Copy()) {}
  CComBSTR(CComBSTR&& other) noexcept : m_str(std::exchange(other.m_str, nullptr)) {}
  ~CComBSTR() { Empty(); }
  CComBSTR& operator=(CComBSTR other) noexcept {
    std::swap(m_str, other.m_str);
    return *this;
  }

  void Empty() {
    if (BSTR const text = std::exchange(m_str, nullptr))
      mira::platform::Services().SysFreeString(text);
  }
  void Attach(BSTR text) {
    Empty();
    m_str = text;
  }
  BSTR Detach() { return std::exchange(m_str, nullptr); }
  // A new BSTR with the same text, or null.
  BSTR Copy() const {
    return m_str ? mira::platform::Services().SysAllocStringLen(m_str, Length()) : nullptr;
  }
  unsigned int Length() const { return m_str ? mira::platform::Services().SysStringLen(m_str) : 0; }
  operator BSTR() const { return m_str; }  // NOLINT(google-explicit-constructor): as ATL's

  BSTR m_str = nullptr;
};

#endif  // defined(__ATLBASE_H__)

#endif  // MIRA_PLATFORM_COM_PTR_H_
