#ifndef MIRA_CONSOLE_ATTRIBUTE_IMPORT_H_
#define MIRA_CONSOLE_ATTRIBUTE_IMPORT_H_

#include <functional>
#include <string>

#include "console/attributes.h"

namespace mira::console {

struct ImportOptions {
  std::string file;  // "-": standard input
  bool dry_run = false;
  bool stop_on_error = false;
};

// Gives the security key for writes. Where nothing is written, none is needed.
using KeyGiver = std::function<unsigned int(CMiraIntf& mira, bool can_do_without)>;

// Brings the attributes to the values of a file: {"attributes": [{"name", "value"}, …]} as 'mira
// attr export' writes it, or {"attributes": {NAME: value, …}}. Every value is checked first; the
// difference is shown; then each is written. An attribute that cannot be brought to its value is
// named and does not keep the others from it. `obtain_key` is asked when something is to be
// written.
ExitStatus ImportAttributes(Context& context, const ImportOptions& options,
                            const KeyGiver& obtain_key);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_ATTRIBUTE_IMPORT_H_
