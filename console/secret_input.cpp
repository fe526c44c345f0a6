#include "console/secret_input.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include "console/hints.h"
#include "console/terminal.h"

namespace mira::console {
namespace {

constexpr std::size_t kLongestSecret = 1024;

bool ReadLine(std::istream& in, bytes::SecureString& line) {
  if (!in.good() || in.peek() == std::istream::traits_type::eof()) return false;
  // Reserved once, so that no copy of a shorter part stays behind.
  line.str().reserve(kLongestSecret);
  for (char c = 0; in.get(c) && c != '\n';) {
    if (line.size() == kLongestSecret) return false;
    line.str().push_back(c);
  }
  if (line.str().ends_with('\r')) line.str().pop_back();
  // What marks a file as UTF-8 is no part of its text.
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (line.str().starts_with(kMark)) line.str().erase(0, kMark.size());
  return true;
}

// Everything that is there.
bool ReadDocument(std::istream& in, bytes::SecureString& text) {
  constexpr std::size_t kLongestDocument = 64 * 1024;
  text.str().reserve(kLongestDocument);
  for (char c = 0; in.get(c);) {
    if (text.size() == kLongestDocument) return false;
    text.str().push_back(c);
  }
  return !text.empty();
}

bool ReadForm(std::istream& in, SecretForm form, bytes::SecureString& text) {
  return form == SecretForm::kDocument ? ReadDocument(in, text) : ReadLine(in, text);
}

bool ReadFile(const std::string& path, SecretForm form, bytes::SecureString& line) {
  std::ifstream file;
  // Without a buffer of its own, no copy stays behind in the stream.
  file.rdbuf()->pubsetbuf(nullptr, 0);
  file.open(ToPath(path), std::ios::binary);
  return ReadForm(file, form, line);
}

bool ReadVariable(const std::string& name, bytes::SecureString& line) {
  const char* const value = std::getenv(name.c_str());
  if (value == nullptr) return false;
  line = bytes::SecureString(std::string_view(value));
  return true;
}

// UTF-16, which no password is sent in, has its byte order mark, or NUL bytes, in its first line.
bool IsUtf16(std::string_view line) {
  return line.starts_with("\xFF\xFE") || line.starts_with("\xFE\xFF") ||
         line.find('\0') != std::string_view::npos;
}

Error NotPlain(const SecretSource& source, const std::string& target) {
  const bool is_password = source.name.ends_with("password");
  return Error(is_password ? kPassword : kInvalidValue,
               (is_password ? "password" : source.name) + "-unreadable",
               "'" + target + "' is UTF-16 text, or none at all: save the " + source.name +
                   " as ASCII or UTF-8.",
               target);
}

Error Unreadable(const SecretSource& source, const std::string& target) {
  const bool is_password = source.name.ends_with("password");
  const std::string kind = is_password ? "password" : source.name;
  std::error_code error;
  const bool is_missing = source.file && !std::filesystem::exists(ToPath(*source.file), error);
  const ExitStatus status = is_password ? kPassword : is_missing ? kNotFound : kInvalidValue;
  return Error(status, kind + "-unreadable", "No " + kind + " could be read from '" + target + "'.",
               target);
}

}  // namespace

std::shared_ptr<SecretSource> AddSecretOptions(CLI::App& app, const std::string& name,
                                               SecretForm form) {
  auto source = std::make_shared<SecretSource>();
  source->name = name;
  source->form = form;
  const bool is_line = form == SecretForm::kLine;
  CLI::Option* const from_stdin =
      app.add_flag("--" + name + "-stdin", source->from_stdin,
                   is_line ? "take it from the first line of standard input"
                           : "take them from standard input, a JSON object");
  // An empty name was given, too: it is one that cannot be read.
  CLI::Option* const file = app.add_option_function<std::string>(
      "--" + name + "-file", [source](const std::string& path) { source->file = path; },
      is_line ? "take it from the first line of a file" : "take them from a file, a JSON object");
  CLI::Option* const variable = app.add_option_function<std::string>(
      "--" + name + "-env", [source](const std::string& text) { source->variable = text; },
      is_line ? "take it from an environment variable, by name"
              : "take them from an environment variable, by name");
  from_stdin->excludes(file)->excludes(variable);
  file->excludes(variable);
  for (CLI::Option* const option : {from_stdin, file, variable}) {
    option->group("Where the " + name + (is_line ? " comes" : " come") +
                  " from (never the command line)");
  }
  return source;
}

std::string OptionNames(const SecretSource& source) {
  const std::string option = "--" + source.name;
  return option + "-stdin, " + option + "-file or " + option + "-env";
}

bool ReadWithoutEcho(const std::string& prompt, bytes::SecureString& line) {
  const NoEcho no_echo;
  if (!no_echo.IsOff()) return false;
  WriteToTerminal(prompt);
  const bool read = ReadLine(std::cin, line);
  WriteToTerminal("\n");
  return read;
}

bytes::SecureString ReadSecret(Context& context, const SecretSource& source,
                               const std::string& prompt) {
  bytes::SecureString secret;
  bool read = false;
  std::string target;
  if (source.from_stdin) {
    target = "standard input";
    const bool is_typed = &context.In() == &std::cin && StandardInputIsTerminal();
    read = is_typed ? ReadWithoutEcho(prompt, secret) : ReadForm(context.In(), source.form, secret);
  } else if (source.file) {
    target = *source.file;
    read = ReadFile(*source.file, source.form, secret);
  } else if (source.variable) {
    target = *source.variable;
    read = ReadVariable(*source.variable, secret);
  } else if (!context.IsInteractive() || !ReadWithoutEcho(prompt, secret)) {
    throw WithHint(Error(kPassword, "password-needed", "A password is needed."),
                   "Without a terminal, give it by " + OptionNames(source) + ".");
  } else {
    return secret;
  }
  if (!read) throw Unreadable(source, target);
  if (IsUtf16(secret.str())) throw NotPlain(source, target);
  return secret;
}

}  // namespace mira::console
