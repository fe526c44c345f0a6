#ifndef MIRA_CONSOLE_SECRET_INPUT_H_
#define MIRA_CONSOLE_SECRET_INPUT_H_

// Where a command gets a password from. Never from the command line, where other processes read it.
//
//   auto source = AddSecretOptions(app);  // --password-stdin, --password-file, --password-env
//   bytes::SecureString password = ReadSecret(context, *source, "Password : ");

#include <memory>
#include <optional>
#include <string>

#include "bytes/secure.h"
#include "console/command.h"

namespace mira::console {

enum class SecretForm { kLine, kDocument };

struct SecretSource {
  std::string name = "password";  // of the options
  SecretForm form = SecretForm::kLine;
  bool from_stdin = false;
  std::optional<std::string> file;
  std::optional<std::string> variable;
  bool Given() const { return from_stdin || file || variable; }
};

// The options are called "--NAME-stdin", "--NAME-file" and "--NAME-env". Of two secrets taken from
// standard input, the one read first has the first line.
std::shared_ptr<SecretSource> AddSecretOptions(CLI::App& app, const std::string& name = "password",
                                               SecretForm form = SecretForm::kLine);

// "--password-stdin, --password-file or --password-env", as they are called.
std::string OptionNames(const SecretSource& source);

// The first line of the source, or all of it where it is a document; without one, a line typed at a
// prompt without echo. Throws Error when there is neither a source nor a terminal: status 5 for a
// password; for what else cannot be read, 3 where the file is not found, or 6.
bytes::SecureString ReadSecret(Context& context, const SecretSource& source,
                               const std::string& prompt);

// A line typed at the terminal without echo. False when standard input is no terminal, or its input
// ended.
bool ReadWithoutEcho(const std::string& prompt, bytes::SecureString& line);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_SECRET_INPUT_H_
