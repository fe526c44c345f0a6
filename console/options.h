#ifndef MIRA_CONSOLE_OPTIONS_H_
#define MIRA_CONSOLE_OPTIONS_H_

// The options that every command takes. They may stand anywhere on the command line.

#include <filesystem>
#include <string>
#include <vector>

namespace mira::console {

struct Options {
  bool simulated = false;
  std::string profile = "laptop";
  bool json = false;
  bool quiet = false;
  std::string value;  // the field of the document that alone is printed; empty: no such wish
  bool yes = false;
  bool what_if = false;
  // Where simulated machines are kept between commands; empty: each command gets a new one.
  std::filesystem::path machines;

  // Whether a program reads what is printed: then nothing but that is printed, and nobody is asked.
  bool IsForPrograms() const { return json || !value.empty(); }
};

struct GlobalOption {
  const char* name;      // "--value"
  const char* argument;  // as help shows it, "FIELD"; empty for a flag
  const char* help;
};
// In the order of the help text.
const std::vector<GlobalOption>& GlobalOptions();
// The help text of all of them.
std::string GlobalOptionsHelp();

// Takes the global options out of the arguments, up to "--". Fills `options` step by step, so that
// an error is printed in the form that was asked for before it. Throws Error (kUsage).
void TakeGlobalOptions(std::vector<std::string>& arguments, Options& options);

// "mira", with the options that name the machine.
std::string ProgramText(const Options& options);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_OPTIONS_H_
