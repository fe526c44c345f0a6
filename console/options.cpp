#include "console/options.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "client/error.h"

namespace mira::console {
namespace {

using client::Error;
using enum client::ExitStatus;

constexpr std::string_view kSimulated = "--sim=";
constexpr std::string_view kValue = "--value";

void CheckTogether(bool real, const Options& options) {
  if (real && options.simulated) {
    throw Error(kUsage, "usage", "--sim and --real exclude each other.");
  }
  const int forms =
      (options.json ? 1 : 0) + (options.quiet ? 1 : 0) + (options.value.empty() ? 0 : 1);
  if (forms > 1) {
    throw Error(kUsage, "usage", "--json, --quiet and --value exclude each other.");
  }
}

}  // namespace

const std::vector<GlobalOption>& GlobalOptions() {
  static const std::vector<GlobalOption> options = {
      {"--sim", "[=PROFILE]", "work on a simulated machine"},
      {"--real", "", "work on this PC (the default)"},
      {"--json", "", "print one JSON document; never ask"},
      {"--value", "FIELD", "print one field of that document; never ask"},
      {"--quiet", "", "print errors only"},
      {"--yes", "", "do not ask before a change"},
      {"--what-if", "", "check and show a change, write nothing"},
  };
  return options;
}

std::string GlobalOptionsHelp() {
  constexpr std::size_t kWidth = 17;
  std::string text = "Options of every command:\n";
  for (const GlobalOption& option : GlobalOptions()) {
    std::string name = option.name;
    const bool is_attached = *option.argument == '[';
    if (*option.argument != 0) name += (is_attached ? "" : " ") + std::string(option.argument);
    name.resize(std::max(name.size(), kWidth), ' ');
    text += "  " + name + option.help + "\n";
  }
  return text;
}

void TakeGlobalOptions(std::vector<std::string>& arguments, Options& options) {
  bool real = false;
  struct Flag {
    std::string_view name;
    bool& is_set;
  };
  const Flag flags[] = {{"--sim", options.simulated}, {"--real", real},
                        {"--json", options.json},     {"--quiet", options.quiet},
                        {"--yes", options.yes},       {"--what-if", options.what_if}};
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  std::vector<std::string> rest;
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    const auto* const flag = std::find_if(std::begin(flags), std::end(flags),
                                          [&](const Flag& f) { return *argument == f.name; });
    if (flag != std::end(flags)) {
      flag->is_set = true;
    } else if (argument->starts_with(kSimulated)) {
      options.simulated = true;
      options.profile = argument->substr(kSimulated.size());
    } else if (*argument == kValue || argument->starts_with(std::string(kValue) + "=")) {
      const bool is_attached = argument->size() > kValue.size();
      if (!is_attached && std::next(argument) != end) ++argument;
      options.value = is_attached ? argument->substr(kValue.size() + 1) : *argument;
      if (options.value.empty() || options.value.starts_with("--")) {
        options.value.clear();
        throw Error(kUsage, "usage", "--value needs the name of a field.", "--value");
      }
    } else {
      rest.push_back(std::move(*argument));
    }
  }
  rest.insert(rest.end(), end, arguments.end());
  arguments = std::move(rest);
  CheckTogether(real, options);
}

std::string ProgramText(const Options& options) {
  if (!options.simulated) return "mira";
  return options.profile == Options().profile ? "mira --sim" : "mira --sim=" + options.profile;
}

}  // namespace mira::console
