#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>

#include "console/terminal.h"

namespace mira::console {

struct NoEcho::Mode {
  termios value;
};

bool StandardInputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

void MakeStandardInputBinary() {}  // it always does

void WriteToTerminal(const std::string& text) { std::ofstream("/dev/tty") << text << std::flush; }

SilentOutput::SilentOutput() : before_(dup(STDOUT_FILENO)) {
  std::fflush(stdout);
  const int nowhere = open("/dev/null", O_WRONLY);
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
}

SilentOutput::~SilentOutput() {
  std::fflush(stdout);
  dup2(before_, STDOUT_FILENO);
  close(before_);
}

namespace {

// Somebody who interrupts a prompt wants to see again what is typed.
termios shown;
constexpr int kEndings[] = {SIGINT, SIGQUIT, SIGTERM, SIGHUP};

void ShowAndEnd(int ending) {
  tcsetattr(STDIN_FILENO, TCSANOW, &shown);
  std::signal(ending, SIG_DFL);
  std::raise(ending);
}

}  // namespace

NoEcho::NoEcho() {
  termios mode{};
  if (tcgetattr(STDIN_FILENO, &mode) != 0) return;
  shown = mode;
  for (const int ending : kEndings) std::signal(ending, ShowAndEnd);
  mode.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  if (tcsetattr(STDIN_FILENO, TCSAFLUSH, &mode) == 0) {
    before_ = std::make_unique<Mode>(Mode{shown});
  }
}

NoEcho::~NoEcho() {
  if (before_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_->value);
  for (const int ending : kEndings) std::signal(ending, SIG_DFL);
}

}  // namespace mira::console
