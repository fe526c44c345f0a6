// What to do about an error, by its name. The client layer names no option of a program; here the
// program's own are named.

#include "console/hints.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace mira::console {
namespace {

struct Row {
  const char* name;
  const char* hint;  // "{mira}" stands for the program with its options for the machine
};
constexpr Row kRows[] = {
    {"acpi-not-supported", "Only SMBIOS commands work here."},
    {"attribute-limits", "It breaks one of the attribute's limits; '{mira} attr get' shows them."},
    {"attribute-read-only", "The attribute is read-only."},
    {"ambiguous-option", "--list says which list is meant."},
    {"call-not-made", "'{mira} info' shows what the machine says of itself."},
    {"bad-limits", "Choose other limits with --start and --stop."},
    {"bad-number",
     "Numbers are decimal, hexadecimal with 0x, or like Boot0003, with commas between them."},
    {"bad-schedule",
     "A schedule is DAYS=off, DAYS=08:00-17:30 or DAYS=0x00004420, in quarter hours; peak hours "
     "may add a charging time: DAYS=08:00-17:30,21:00."},
    {"com-failed", "Check that the Windows Management Instrumentation service runs."},
    {"configuration-refused",
     "Its limits may be narrower, or lie closer together than the firmware allows."},
    {"confirmation-needed", "--yes goes ahead, --what-if shows what would be written."},
    {"limits-not-in-use", "--mode custom sets the mode along with them."},
    {"malformed-answer", "'{mira} boot order' takes --force, which sends an order as it is."},
    {"no-battery", "They are counted from 1, as '{mira} smbios --type 22' lists them."},
    {"attribute-not-found", "'{mira} attr list' lists them."},
    {"malformed-file", "'{mira} attr export' shows the form."},
    {"password", "'{mira} attr set' asks for its value."},
    {"read-only", "'{mira} attr set --force' sends the value anyway."},
    {"secret-in-the-open", "Give it by --value-stdin, --value-file or --value-env."},
    {"value-needed", "Without a terminal, give it by --value-stdin, --value-file or --value-env."},
    {"no-attributes",
     "'{mira} info' lists the command classes that the firmware announces; attributes need class "
     "5."},
    {"no-calling-interface", "Only SMBIOS commands work here."},
    {"no-load-option",
     "Attributes, a description and a device path are wanted; --path decodes a device path alone."},
    {"no-path", "Nodes like PciRoot(0x0), with '/' between them, are wanted."},
    {"no-permutation", "--force sends the order as it is."},
    {"no-structure", "'{mira} smbios --attributes' lists what there is."},
    {"no-table",
     "A table saved by '{mira} smbios --save', a dump with its entry point, a bare table, or one "
     "of these in hexadecimal is wanted."},
    {"not-administrator", "Start the program from an elevated prompt."},
    {"not-supported", "'{mira} info' lists the command classes that the firmware announces."},
    {"smbios-failed", "On Linux only root may; '{mira} smbios --file TABLE' decodes a saved one."},
    {"bad-argument", "--help shows how it is used."},
    {"missing-argument", "--help shows how it is used."},
    {"nothing-to-set", "--help shows what there is."},
    {"password-needed",
     "Without a terminal, give it by --password-stdin, --password-file or --password-env."},
};

}  // namespace

std::string HintFor(std::string_view error_name, const Options& options) {
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                       [error_name](const Row& r) { return error_name == r.name; });
  if (row == std::end(kRows)) return "";
  constexpr std::string_view kProgram = "{mira}";
  std::string hint = row->hint;
  const std::string program = ProgramText(options);
  for (std::size_t at = 0; (at = hint.find(kProgram, at)) != std::string::npos;) {
    hint.replace(at, kProgram.size(), program);
    at += program.size();
  }
  return hint;
}

CommandError WithHint(const client::Error& error, const Options& options) {
  if (const auto* const own = dynamic_cast<const CommandError*>(&error)) return *own;
  return {error, HintFor(error.name, options)};
}

std::string ProgramText(const Options& options) {
  if (!options.simulated) return "mira";
  return options.profile == Options().profile ? "mira --sim" : "mira --sim=" + options.profile;
}

}  // namespace mira::console
