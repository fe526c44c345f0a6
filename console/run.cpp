#include <algorithm>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "console/command.h"
#include "console/hints.h"
#include "console/parser.h"
#include "console/profile_choice.h"
#include "console/terminal.h"
#include "transport/com_error.h"

namespace mira::console {
namespace {

// "-h" and "mira help COMMAND" are asked as "--help".
void TakeHelp(std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  std::replace(arguments.begin(), end, std::string("-h"), std::string("--help"));
  if (arguments.empty() || arguments.front() != "help") return;
  arguments.erase(arguments.begin());
  arguments.emplace_back("--help");
}

// "--sim laptop" leaves a word over, which names a machine.
std::string UsageHint(const std::vector<std::string>& arguments, const Options& options) {
  const auto profile =
      std::find_if(arguments.begin(), arguments.end(),
                   [](const std::string& word) { return sim::FindProfile(word) != nullptr; });
  if (!options.simulated || profile == arguments.end()) return "--help shows how it is used.";
  return "Did you mean '--sim=" + *profile + "'?";
}

void PrintText(const char* name, const std::string& text, const Options& options,
               std::ostream& out) {
  if (options.json) {
    Json document = {{"schemaVersion", 1}};
    if (options.simulated) document["simulated"] = true;
    document[name] = text;
    WriteJson(out, document);
  } else {
    out << text << (text.ends_with('\n') ? "" : "\n");
  }
}

// What the command did to the machine goes into `done`, however it ends.
ExitStatus Run(std::vector<std::string> arguments, const Options& options, std::istream& in,
               std::ostream& out, WhatWasDone& done) {
  if (options.simulated) CheckProfileName(options.profile);
  Command command;
  const std::unique_ptr<CLI::App> app = MakeParser(command);
  TakeHelp(arguments);
  if (arguments.empty()) arguments = {"--help"};
  CheckNames(*app, arguments);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app->parse(arguments);
  } catch (const CLI::CallForHelp&) {
    // That of the innermost command that was named.
    PrintText("help", app->help(), options, out);
    return kDone;
  } catch (const CLI::CallForVersion& version) {
    PrintText("version", version.what(), options, out);
    return kDone;
  } catch (const CLI::ParseError& error) {
    throw WithHint(Error(kUsage, "usage", client::Sentence(error.what())),
                   UsageHint(arguments, options));
  }
  Context context(options, in, out);
  // What a command says of calls that could not be kept is not the cause.
  try {
    const ExitStatus status = command.Chosen()(context);
    done = context.Done();
    context.CheckKept();
    return status;
  } catch (const Error&) {
    done = context.Done();
    context.CheckKept();
    throw;
  }
}

// Prints what the command itself prints, or with --quiet not even that: the library shows some
// things on standard output by itself.
ExitStatus RunBare(const std::vector<std::string>& arguments, const Options& options,
                   std::istream& in, std::ostream& out, WhatWasDone& done) {
  std::ostringstream printed;
  const auto print = [&] {
    if (!options.quiet) out << printed.str();
  };
  try {
    std::optional<SilentOutput> silent;
    if (&out == &std::cout) silent.emplace();
    const ExitStatus status = Run(arguments, options, in, printed, done);
    silent.reset();
    print();
    return status;
  } catch (...) {
    print();
    throw;
  }
}

void PrintError(const Error& error, const Options& options, std::ostream& out, std::ostream& err) {
  if (options.json) {
    Json document = {{"schemaVersion", 1}};
    if (options.simulated) document["simulated"] = true;
    document["error"] = ErrorJson(error, options);
    WriteJson(out, document);
    return;
  }
  // Sentences quote texts of firmware and files.
  err << "mira: " << Escaped(ToUtf8(std::string_view(error.what())));
  if (const std::string hint = HintOf(error, options); !hint.empty()) {
    err << ' ' << Escaped(ToUtf8(hint));
  }
  err << '\n';
}

// The end of the sentence on an output that could not be written.
const char* Consequence(WhatWasDone done) {
  switch (done) {
    case WhatWasDone::kChanged:
      return ", but the change was made.";
    case WhatWasDone::kChangedInPart:
      return ", but a part of the change was made.";
    case WhatWasDone::kUnknown:
      return ", and whether the change was made is unknown.";
    case WhatWasDone::kCalled:
      return ", but the call was made.";
    case WhatWasDone::kNothing:
      break;
  }
  return ": what was asked for is not there.";
}

}  // namespace

int RunConsole(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const std::filesystem::path& machines) {
  Options options;
  options.machines = machines;
  const auto fail = [&](const Error& error) {
    PrintError(error, options, out, err);
    return error.status;
  };
  ExitStatus status = kUnexpected;
  WhatWasDone done = WhatWasDone::kNothing;
  try {
    std::vector<std::string> rest = arguments;
    TakeGlobalOptions(rest, options);
    const bool is_bare = options.quiet || options.IsForPrograms();
    status = is_bare ? RunBare(rest, options, in, out, done) : Run(rest, options, in, out, done);
  } catch (const Error& error) {
    status = fail(error);
  } catch (const transport::ComError&) {
    status = fail(Error(kUnexpected, "out-of-memory", "The system ran out of memory."));
  } catch (const std::bad_cast&) {
    status = fail(
        Error(kUnexpected, "unexpected", "The command met data of a kind that it does not take."));
  } catch (const std::exception& error) {
    status = fail(Error(kUnexpected, "unexpected",
                        std::string("The program failed unexpectedly: ") + error.what()));
  }
  out.flush();
  if (!out) {
    err << "mira: The output could not be written" << Consequence(done) << '\n';
    if (status == kDone) status = kUnexpected;
  }
  return status;
}

}  // namespace mira::console
