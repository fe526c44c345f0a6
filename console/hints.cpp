// What to do about an error, by its name. The client layer names no option of a program; here the
// program's own are named.

#include "console/hints.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "client/nearest.h"

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
    {"call-not-made", "'{mira} info' shows what this machine offers."},
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
    {"no-battery", "Batteries are counted from 1, as '{mira} smbios --type 22' lists them."},
    {"attribute-not-found",
     "'{mira} attr list PART' finds attributes by parts of their names and display names."},
    {"malformed-file", "'{mira} attr export' shows the form."},
    {"password", "'{mira} attr set' asks for its value."},
    {"secret-twice", "One source for each is enough."},
    {"read-only", "'{mira} attr set --force' sends the value anyway."},
    {"secret-in-the-open", "Give it by --value-stdin, --value-file or --value-env."},
    {"value-needed", "Without a terminal, give it by --value-stdin, --value-file or --value-env."},
    {"machine-unreadable",
     "'{mira} sim reset' starts over with a new one; MIRA_SIM_STATE names another folder, or "
     "none."},
    {"machine-not-kept", "MIRA_SIM_STATE names another folder, or none."},
    {"not-simulated", "--sim or --sim=PROFILE names one."},
    {"no-attributes",
     "'{mira} info' lists the command classes that the firmware announces; attributes need class "
     "5."},
    {"no-calling-interface", "Only SMBIOS commands work here."},
    {"no-load-option",
     "A load option has attributes, a description and a device path; --path decodes a device path "
     "alone."},
    {"no-path", "A path consists of nodes like PciRoot(0x0) with '/' between them."},
    {"no-permutation", "--force sends the order as it is."},
    {"no-structure", "'{mira} smbios --attributes' lists what there is."},
    {"no-table",
     "It may be a table saved by '{mira} smbios --save', a dump with its entry point, or a bare "
     "table, each as bytes or in hexadecimal."},
    {"not-administrator", "Start the program from an elevated prompt."},
    {"not-supported", "'{mira} info' lists the command classes that the firmware announces."},
    {"smbios-failed",
     "On Linux only root may read it; '{mira} smbios --file TABLE' decodes a saved one."},
    {"bad-argument", "--help shows how it is used."},
    {"missing-argument", "--help shows how it is used."},
    {"nothing-to-set", "--help lists the options."},
    {"password-needed",
     "Without a terminal, give it by --password-stdin, --password-file or --password-env."},
};

constexpr char kOwn[] = "hint";

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

}  // namespace

client::Error WithHint(client::Error error, const std::string& hint) {
  error.With(kOwn, client::ToUtf8(hint));
  return error;
}

std::string HintOf(const client::Error& error, const Options& options) {
  const auto own = error.details.find(kOwn);
  return own != error.details.end() ? own->get<std::string>() : HintFor(error.name, options);
}

client::Json ErrorJson(const client::Error& error, const Options& options) {
  client::Json json = client::ToJson(error);
  FillHints(json, options);
  return json;
}

void FillHints(client::Json& value, const Options& options) {
  if (!value.is_structured()) return;
  for (client::Json& part : value) FillHints(part, options);
  if (!value.is_object()) return;
  const auto hint = value.find("hint");
  const auto name = value.find("name");
  if (hint == value.end() || name == value.end() || *hint != "" || !name->is_string()) return;
  *hint = HintFor(name->get<std::string>(), options);
}

std::string Suggest(const std::string& word, const std::vector<std::string>& names,
                    const std::string& otherwise) {
  const auto nearest = client::Nearest(word, names);
  return nearest ? "Did you mean '" + *nearest + "'?" : otherwise;
}

}  // namespace mira::console
