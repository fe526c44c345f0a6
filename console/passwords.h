#ifndef MIRA_CONSOLE_PASSWORDS_H_
#define MIRA_CONSOLE_PASSWORDS_H_

// What the commands about passwords share.

#include <cstdint>
#include <span>
#include <string>

#include "bytes/secure.h"
#include "console/command.h"

namespace mira::console {

// A BIOS password as the firmware describes it.
struct PasswordState {
  bool installed = false;
  std::uint32_t max_length = 0;
  bool uses_scan_codes = false;
};
// Throws CommandError when the firmware does not tell.
PasswordState ReadPasswordState(CMiraIntf& mira, std::uint16_t cls);

// The text in the form in which the firmware takes it. Throws CommandError for characters that no
// key types.
bytes::SecureString AsSent(const bytes::SecureString& text, bool uses_scan_codes);

// What a completion code of one function means.
struct CodeMeaning {
  std::int32_t code;
  ExitStatus exit_status;
  const char* name;
  const char* message;
  const char* hint;
};
// Throws CommandError for a call that did not succeed.
void ThrowUnlessDone(Status status, std::int32_t completion, std::span<const CodeMeaning> meanings,
                     const std::string& target);

// Says that it was done, in text or as a document.
ExitStatus ReportDone(Context& context, const std::string& sentence, const Json& document);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_PASSWORDS_H_
