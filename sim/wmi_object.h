#ifndef MIRA_SIM_WMI_OBJECT_H_
#define MIRA_SIM_WMI_OBJECT_H_

// The objects that the WMI side hands out.

#include <cwctype>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "sim/com_object.h"

namespace mira::sim {

// The enumeration of the Windows headers is wider than an HRESULT.
inline constexpr HRESULT kWmiNotFound = static_cast<HRESULT>(WBEM_E_NOT_FOUND);
inline constexpr HRESULT kWmiInvalidParameter = static_cast<HRESULT>(0x80041008U);
inline constexpr wchar_t kWmiMethod[] = L"DoBFn";

// WMI compares names without regard to case.
struct WmiNameLess {
  bool operator()(const std::wstring& a, const std::wstring& b) const;
};
bool IsSameWmiName(const std::wstring& a, const std::wstring& b);
// A text of the interface; empty for none.
inline std::wstring WmiText(const OLECHAR* text) { return text != nullptr ? text : L""; }

// A class object, an instance, or a method's parameters: named properties, and for the class of the
// method its signatures.
class WmiObject : public ClassObjectBase {
 public:
  using Bytes = std::vector<std::uint8_t>;
  using ObjectPtr = CComPtr<IWbemClassObject>;
  using Value = std::variant<std::monostate, std::wstring, Bytes, ObjectPtr>;

  static CComPtr<WmiObject> Make(const StatePtr& state, const std::wstring& class_name);

  // A property that nobody has set reads as empty.
  void Declare(const std::wstring& name, Value value = {});
  const Value* Find(const std::wstring& name) const;
  void SetSignatures(ObjectPtr in, ObjectPtr out) {
    in_ = std::move(in);
    out_ = std::move(out);
  }

  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                LONG* flavor) override;
  HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** object) override;
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                                      IWbemClassObject** out) override;

 private:
  WmiObject(const StatePtr& state, std::wstring class_name)
      : ClassObjectBase(state), class_name_(std::move(class_name)) {}
  ~WmiObject() override;

  // A property may hold a whole call record. The machine keeps no secret longer than its property.
  static void Wipe(Value& value);
  static void Set(Value& target, Value value);
  HRESULT CopyOut(const Value& from, VARIANT& to) const;
  HRESULT TakeIn(const VARIANT& from, Value& to) const;

  std::wstring class_name_;
  std::map<std::wstring, Value, WmiNameLess> properties_;
  ObjectPtr in_;
  ObjectPtr out_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_WMI_OBJECT_H_
