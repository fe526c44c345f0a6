#ifndef MIRA_BUFFERS_SECRET_PROMPT_H_
#define MIRA_BUFFERS_SECRET_PROMPT_H_

// Prompts of the command buffers for passwords. Whether answers show is the host's business, since
// the terminal is the host's: it lends a switch.
//
//   mira::buffers::SetEchoSwitch([](bool shows) { ... });

#include <cstddef>
#include <string>

#include "platform/api.h"

namespace mira::buffers {

// Called with false before a secret is asked for, and with true once it is answered.
using EchoSwitch = void (*)(bool shows);

// Null, as at the start: answers show as the terminal is set. Not synchronised.
MIRA_API void SetEchoSwitch(EchoSwitch echo_switch) noexcept;

// Answers do not show for a scope.
class HiddenAnswers {
 public:
  HiddenAnswers();
  ~HiddenAnswers();
  HiddenAnswers(const HiddenAnswers&) = delete;
  HiddenAnswers& operator=(const HiddenAnswers&) = delete;
};

// As AskWord and AskText of console_io, without showing the answer.
bool AskSecretWord(const char* prompt, std::string& text);
bool AskSecretText(const char* prompt, std::string& text, std::size_t longest);

}  // namespace mira::buffers

#endif  // MIRA_BUFFERS_SECRET_PROMPT_H_
