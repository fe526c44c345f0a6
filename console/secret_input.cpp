#include "console/secret_input.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

#if defined(_WIN32)
#include <io.h>
#include <stdio.h>

#include "platform/com.h"
#else
#include <termios.h>
#include <unistd.h>
#endif

namespace mira::console {
namespace {

constexpr std::size_t kLongestSecret = 1024;

bool ReadLine(std::istream& in, bytes::SecureString& line) {
  // Reserved once, so that no copy of a shorter part stays behind.
  line.str().reserve(kLongestSecret);
  for (char c = 0; in.get(c) && c != '\n';) {
    if (line.size() == kLongestSecret) return false;
    line.str().push_back(c);
  }
  if (line.str().ends_with('\r')) line.str().pop_back();
  return true;
}

#if defined(_WIN32)

// Echo is off for a scope, when standard input is a console.
class NoEcho {
 public:
  NoEcho() : console_(GetStdHandle(STD_INPUT_HANDLE)) {
    is_terminal_ = _isatty(_fileno(stdin)) != 0 && GetConsoleMode(console_, &before_) != 0;
    if (is_terminal_) SetConsoleMode(console_, before_ & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
  }
  ~NoEcho() {
    if (is_terminal_) SetConsoleMode(console_, before_);
  }
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;
  bool IsTerminal() const { return is_terminal_; }

 private:
  HANDLE console_;
  DWORD before_ = 0;
  bool is_terminal_ = false;
};

#else

class NoEcho {
 public:
  NoEcho() {
    is_terminal_ = isatty(STDIN_FILENO) != 0 && tcgetattr(STDIN_FILENO, &before_) == 0;
    if (!is_terminal_) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  ~NoEcho() {
    if (is_terminal_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
  }
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;
  bool IsTerminal() const { return is_terminal_; }

 private:
  termios before_{};
  bool is_terminal_ = false;
};

#endif

}  // namespace

bool ReadWithoutEcho(const std::string& prompt, bytes::SecureString& line) {
  const NoEcho no_echo;
  if (!no_echo.IsTerminal()) return false;
  std::cerr << prompt << std::flush;
  const bool read = ReadLine(std::cin, line) && std::cin.good();
  std::cerr << '\n';
  return read;
}

std::shared_ptr<SecretSource> AddSecretOptions(CLI::App& app, const std::string& name) {
  auto source = std::make_shared<SecretSource>();
  CLI::Option_group* const group = app.add_option_group("Where the " + name + " comes from");
  group->add_flag("--" + name + "-stdin", source->from_stdin, "the first line of standard input");
  group->add_option("--" + name + "-file", source->file, "the first line of a file");
  group->add_option("--" + name + "-env", source->variable, "an environment variable, by name");
  group->require_option(0, 1);
  return source;
}

bytes::SecureString ReadSecret(Context& context, const SecretSource& source,
                               const std::string& prompt) {
  bytes::SecureString secret;
  bool read = false;
  std::string target;
  if (source.from_stdin) {
    target = "standard input";
    read = ReadLine(context.In(), secret);
  } else if (!source.file.empty()) {
    target = source.file;
    std::ifstream file(source.file, std::ios::binary);
    read = file.good() && ReadLine(file, secret);
  } else if (!source.variable.empty()) {
    target = source.variable;
    const char* const value = std::getenv(source.variable.c_str());
    read = value != nullptr;
    if (read) secret = bytes::SecureString(std::string_view(value));
  } else if (context.IsJson() || !ReadWithoutEcho(prompt, secret)) {
    throw CommandError(kPassword, "password-needed", "A password is needed.", "",
                       "Without a terminal, give it by --password-stdin, --password-file or "
                       "--password-env.");
  } else {
    return secret;
  }
  if (!read) {
    throw CommandError(kPassword, "password-unreadable",
                       "No password could be read from " + target + ".", target);
  }
  return secret;
}

}  // namespace mira::console
