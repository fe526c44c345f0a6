#include "console/manual.h"

#include <sstream>

#include "console/exit_status.h"
#include "console/options.h"
#include "console/outline.h"
#include "sim/profile.h"

namespace mira::console {
namespace {

// A text that troff sets as it is.
std::string Plain(const std::string& text) {
  std::string plain;
  bool starts_line = true;
  for (const char c : text) {
    if (starts_line && (c == '.' || c == '\'')) plain += "\\&";
    starts_line = c == '\n';
    if (c == '\\') {
      plain += "\\e";
    } else if (c == '-') {
      plain += "\\-";
    } else if (c == '\'') {
      plain += "\\(aq";
    } else if (c == '"') {
      plain += "\\(dq";
    } else {
      plain += c;
    }
  }
  return plain;
}

std::string Bold(const std::string& text) { return "\\fB" + Plain(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Plain(text) + "\\fR"; }

void WriteItem(std::ostream& out, const std::string& head, const std::string& text) {
  out << ".TP\n" << head << '\n' << Plain(text) << '\n';
}

void WriteGlobalOptions(std::ostream& out) {
  out << ".SH OPTIONS OF EVERY COMMAND\nThey may stand anywhere on the command line.\n";
  for (const GlobalOption& option : GlobalOptions()) {
    const std::string argument = option.argument;
    std::string head = Bold(option.name);
    if (argument.starts_with('[')) {
      head += "[=" + Italic(argument.substr(2, argument.size() - 3)) + "]";
    } else if (!argument.empty()) {
      head += " " + Italic(argument);
    }
    WriteItem(out, head, option.help);
  }
}

// "ORDER", "[--force]", in the order in which they are declared.
void WriteSynopsis(std::ostream& out, const OutlineCommand& command) {
  out << Bold(command.path);
  for (const OutlineArgument& argument : command.arguments) {
    if (argument.name == "--help") continue;
    std::string text = argument.is_option ? Bold(argument.name) : Italic(argument.name);
    if (argument.is_option && argument.takes_value) text += " " + Italic("VALUE");
    if (argument.takes_many) text += " ...";
    out << ' ' << (argument.is_required ? text : "[" + text + "]");
  }
  out << '\n';
}

void WriteCommand(std::ostream& out, const OutlineCommand& command) {
  out << ".SS " << Plain(command.path.substr(command.path.find(' ') + 1)) << '\n'
      << Plain(command.summary) << ".\n";
  const bool runs = command.verbs.empty();
  if (runs) {
    out << ".PP\n";
    WriteSynopsis(out, command);
  }
  for (const OutlineArgument& argument : command.arguments) {
    if (argument.name == "--help") continue;
    std::string help = argument.help;
    for (std::size_t i = 0; i < argument.choices.size(); ++i) {
      help += (i == 0 ? ": " : ", ") + argument.choices[i];
    }
    WriteItem(out, argument.is_option ? Bold(argument.name) : Italic(argument.name), help);
  }
  const std::string global = GlobalOptionsHelp();
  std::string footer = command.footer.substr(0, command.footer.find(global));
  while (footer.ends_with('\n')) footer.pop_back();
  // Those of a group's commands follow.
  if (runs && !footer.empty()) out << ".PP\n.nf\n" << Plain(footer) << "\n.fi\n";
}

}  // namespace

std::string ManualPage() {
  std::ostringstream out;
  out << ".TH MIRA 1 \"\" \"mira " << MIRA_VERSION << "\" \"User Commands\"\n"
      << ".SH NAME\nmira \\- read and change a PC\\(aqs firmware settings\n"
      << ".SH SYNOPSIS\n"
      << Bold("mira") << " [" << Bold("--sim") << "[=" << Italic("PROFILE") << "] | "
      << Bold("--real") << "] " << Italic("COMMAND") << " [" << Italic("ARGUMENTS") << "]\n"
      << ".SH DESCRIPTION\n";
  const auto outline = Outline();
  out << Plain(outline.front().summary) << "\n.PP\n"
      << Plain("What changes the machine shows the old and the new value and asks first.") << '\n';
  WriteGlobalOptions(out);
  out << ".SH COMMANDS\n";
  for (std::size_t i = 1; i < outline.size(); ++i) WriteCommand(out, outline[i]);
  out << ".SH SIMULATED MACHINES\n";
  for (const sim::Profile& profile : sim::Profiles()) {
    WriteItem(out, Bold(profile.name), profile.description);
  }
  out << ".SH EXIT STATUS\n";
  for (const ExitStatusText& row : kExitStatusTexts) {
    WriteItem(out, Bold(std::to_string(row.status)), row.meaning);
  }
  out << ".SH ENVIRONMENT\n";
  WriteItem(out, Bold("MIRA_SIM_STATE"),
            "The folder that simulated machines are kept in between commands. If it is set to "
            "nothing, every command finds a new machine.");
  return out.str();
}

}  // namespace mira::console
