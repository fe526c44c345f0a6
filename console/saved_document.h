#ifndef MIRA_CONSOLE_SAVED_DOCUMENT_H_
#define MIRA_CONSOLE_SAVED_DOCUMENT_H_

#include <string>

#include "client/command.h"
#include "console/command.h"
#include "console/face.h"

namespace mira::console {

// Writes a command's document to a file, "-" for standard output, and says so. What could be read
// in part is written, too; where nothing could be, and with --what-if, an old file stays.
ExitStatus SaveDocument(Context& context, const Face& face, const client::Result& result,
                        const std::string& file);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_SAVED_DOCUMENT_H_
