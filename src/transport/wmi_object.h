#ifndef MIRA_TRANSPORT_WMI_OBJECT_H_
#define MIRA_TRANSPORT_WMI_OBJECT_H_

#include "platform/com_ptr.h"
#include "platform/variant.h"

namespace mira::transport {

// The class object that an object embeds under `name`; empty on any failure. Throws ComError when
// the name's string cannot be made.
CComPtr<IWbemClassObject> EmbeddedObject(IWbemClassObject* object, const wchar_t* name);

// Reads a property. Throws ComError when the name's string cannot be made.
bool GetProperty(IWbemClassObject* object, const wchar_t* name, platform::Variant& value);

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_WMI_OBJECT_H_
