#ifndef MIRA_CONSOLE_TERMINAL_H_
#define MIRA_CONSOLE_TERMINAL_H_

#include <memory>
#include <string>

namespace mira::console {

bool StandardInputIsTerminal();

// Standard input gives its bytes as they are, line ends included.
void MakeStandardInputBinary();

// Writes to the terminal itself, so that a question is seen although the outputs are redirected.
void WriteToTerminal(const std::string& text);

// What is written to standard output goes nowhere, for a scope: the library shows some things there
// that belong into no document.
class SilentOutput {
 public:
  SilentOutput();
  ~SilentOutput();
  SilentOutput(const SilentOutput&) = delete;
  SilentOutput& operator=(const SilentOutput&) = delete;

 private:
  int before_;
};

// What is typed at the terminal does not show, for a scope.
class NoEcho {
 public:
  NoEcho();
  ~NoEcho();
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;
  // False when standard input is no terminal.
  bool IsOff() const { return before_ != nullptr; }

 private:
  struct Mode;
  std::unique_ptr<Mode> before_;
};

}  // namespace mira::console

#endif  // MIRA_CONSOLE_TERMINAL_H_
