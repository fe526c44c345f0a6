#include <fcntl.h>
#include <io.h>
#include <stdio.h>

#include <fstream>

#include "console/terminal.h"
#include "platform/com.h"

namespace mira::console {

struct NoEcho::Mode {
  DWORD value;
};

bool StandardInputIsTerminal() {
  // The null device counts as a character device; only a console has a mode.
  DWORD mode = 0;
  return _isatty(_fileno(stdin)) != 0 && GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
}

void MakeStandardInputBinary() { _setmode(_fileno(stdin), _O_BINARY); }

void WriteToTerminal(const std::string& text) { std::ofstream("CONOUT$") << text << std::flush; }

SilentOutput::SilentOutput() : before_(_dup(_fileno(stdout))) {
  fflush(stdout);
  const int nowhere = _open("NUL", _O_WRONLY);
  _dup2(nowhere, _fileno(stdout));
  _close(nowhere);
}

SilentOutput::~SilentOutput() {
  fflush(stdout);
  _dup2(before_, _fileno(stdout));
  _close(before_);
}

namespace {

// Somebody who interrupts a prompt wants to see again what is typed.
DWORD shown = 0;

BOOL WINAPI ShowAndEnd(DWORD) {
  SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), shown);
  return FALSE;  // the usual end follows
}

}  // namespace

NoEcho::NoEcho() {
  const HANDLE console = GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode) == 0) return;
  if (SetConsoleMode(console, mode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT)) != 0) {
    before_ = std::make_unique<Mode>(Mode{mode});
    shown = mode;
    SetConsoleCtrlHandler(ShowAndEnd, TRUE);
  }
}

NoEcho::~NoEcho() {
  if (!before_) return;
  SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), before_->value);
  SetConsoleCtrlHandler(ShowAndEnd, FALSE);
}

}  // namespace mira::console
