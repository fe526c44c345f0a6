#ifndef MIRA_CONSOLE_FIELD_H_
#define MIRA_CONSOLE_FIELD_H_

// One field of a document, for scripts: "transferBufferSize", "tags.0.value". A list that holds one
// thing needs no index: "attributes.value"; where it is the document's only list, it needs no name
// either: "value".

#include <string>

#include "client/json.h"

namespace mira::console {

// Throws Error (kUsage) that names the field that is missing and the nearest that are there.
const client::Json& FindField(const client::Json& document, const std::string& path);
bool HasField(const client::Json& document, const std::string& path);

// The field as it is printed: a text of either form and a number as they are, escaped; nothing for
// null; what has parts as JSON on one line.
std::string FieldText(const client::Json& value);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_FIELD_H_
