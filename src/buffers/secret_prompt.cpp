#include "buffers/secret_prompt.h"

#include "buffers/console_io.h"

namespace mira::buffers {
namespace {

EchoSwitch current = nullptr;

void Show(bool shows) {
  if (current != nullptr) current(shows);
}

}  // namespace

void SetEchoSwitch(EchoSwitch echo_switch) noexcept { current = echo_switch; }

HiddenAnswers::HiddenAnswers() { Show(false); }
HiddenAnswers::~HiddenAnswers() { Show(true); }

bool AskSecretWord(const char* prompt, std::string& text) {
  const HiddenAnswers hidden;
  return console_io::AskWord(prompt, text);
}

bool AskSecretText(const char* prompt, std::string& text, std::size_t longest) {
  const HiddenAnswers hidden;
  return console_io::AskText(prompt, text, longest);
}

}  // namespace mira::buffers
