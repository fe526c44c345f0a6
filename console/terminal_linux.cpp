#include <termios.h>
#include <unistd.h>

#include <fstream>

#include "console/terminal.h"

namespace mira::console {

struct NoEcho::Mode {
  termios value;
};

bool StandardInputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

void WriteToTerminal(const std::string& text) { std::ofstream("/dev/tty") << text << std::flush; }

NoEcho::NoEcho() {
  termios mode{};
  if (tcgetattr(STDIN_FILENO, &mode) != 0) return;
  before_ = std::make_unique<Mode>(Mode{mode});
  mode.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  tcsetattr(STDIN_FILENO, TCSAFLUSH, &mode);
}

NoEcho::~NoEcho() {
  if (before_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_->value);
}

}  // namespace mira::console
