#ifndef MIRA_CONSOLE_SAVED_FIELD_H_
#define MIRA_CONSOLE_SAVED_FIELD_H_

#include <string>

#include "console/command.h"

namespace mira::console {

// Moves the bytes in a document's field to a file: in the field's place the document says where
// they are ("savedTo", "savedBytes"), and whether they would be there but for --what-if ("whatIf").
// Does nothing without the field. Throws Error when the file cannot be written.
void SaveField(const Options& options, const char* field, const std::string& file, Json& document);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_SAVED_FIELD_H_
