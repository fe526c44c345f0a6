#ifndef MIRA_TRANSPORT_WMI_OBJECT_H_
#define MIRA_TRANSPORT_WMI_OBJECT_H_

#include "platform/com_ptr.h"
#include "platform/variant.h"

namespace mira::transport {

// Reads a property. Throws ComError when the name's string cannot be made.
HRESULT GetProperty(IWbemClassObject* object, const wchar_t* name, platform::Variant& value);

// The class object that an object embeds under `name`; empty on any failure, with what the service
// that failed said in `result` (S_OK: there is no object). Throws ComError when the name's string
// cannot be made.
CComPtr<IWbemClassObject> EmbeddedObject(IWbemClassObject* object, const wchar_t* name,
                                         HRESULT& result);

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_WMI_OBJECT_H_
