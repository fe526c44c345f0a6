#ifndef MIRA_CONSOLE_SAVED_FIELD_H_
#define MIRA_CONSOLE_SAVED_FIELD_H_

#include <string>

#include "console/command.h"
#include "console/face.h"

namespace mira::console {

// Moves what is in a document's field to a file: in the field's place the document says where it is
// ("savedTo", "savedBytes"), and whether it would be there but for --what-if ("whatIf"). Does
// nothing without the field, nor where text goes to standard output. Throws Error when the file
// cannot be written.
void SaveField(const Options& options, const Face& face, const std::string& file, Json& document);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_SAVED_FIELD_H_
