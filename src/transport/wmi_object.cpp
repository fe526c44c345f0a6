#include "transport/wmi_object.h"

#include "transport/com_error.h"

namespace mira::transport {

bool GetProperty(IWbemClassObject* object, const wchar_t* name, platform::Variant& value) {
  const CComBSTR property = MakeBstr(name);
  return SUCCEEDED(object->Get(property, 0, &value, nullptr, nullptr));
}

CComPtr<IWbemClassObject> EmbeddedObject(IWbemClassObject* object, const wchar_t* name) {
  platform::Variant value;
  CComPtr<IWbemClassObject> embedded;
  if (!GetProperty(object, name, value) || value.Object() == nullptr) return embedded;
  void* found = nullptr;
  if (SUCCEEDED(value.Object()->QueryInterface(IID_IWbemClassObject, &found))) {
    embedded.Attach(static_cast<IWbemClassObject*>(found));
  }
  return embedded;
}

}  // namespace mira::transport
