#include "transport/wmi_object.h"

#include "transport/com_error.h"

namespace mira::transport {

HRESULT GetProperty(IWbemClassObject* object, const wchar_t* name, platform::Variant& value) {
  const CComBSTR property = MakeBstr(name);
  return object->Get(property, 0, &value, nullptr, nullptr);
}

CComPtr<IWbemClassObject> EmbeddedObject(IWbemClassObject* object, const wchar_t* name,
                                         HRESULT& result) {
  platform::Variant value;
  CComPtr<IWbemClassObject> embedded;
  result = GetProperty(object, name, value);
  if (FAILED(result) || value.Object() == nullptr) return embedded;
  void* found = nullptr;
  result = value.Object()->QueryInterface(IID_IWbemClassObject, &found);
  if (SUCCEEDED(result)) embedded.Attach(static_cast<IWbemClassObject*>(found));
  return embedded;
}

}  // namespace mira::transport
