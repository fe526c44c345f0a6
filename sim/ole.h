#ifndef MIRA_SIM_OLE_H_
#define MIRA_SIM_OLE_H_

// The OLE automation memory that the machine hands out and takes back: on Windows the system's own,
// elsewhere an implementation with the same bounds checks.

#include "bytes/reader.h"
#include "platform/services.h"

namespace mira::sim {

// The OLE automation part of a service table, without faults or counting; its other members are
// null.
const platform::ServiceTable& Ole();

// The bytes of a string or an array.
bytes::ByteSpan StringBytes(BSTR text);
bytes::ByteSpan ArrayBytes(SAFEARRAY* array);

}  // namespace mira::sim

#endif  // MIRA_SIM_OLE_H_
