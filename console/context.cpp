#include <charconv>
#include <fstream>
#include <iostream>
#include <string_view>

#include "bytes/secure.h"
#include "console/command.h"
#include "console/input_file.h"
#include "console/terminal.h"
#include "facade/process_state.h"

namespace mira::console {

Context::Context(Options options, std::istream& in, std::ostream& out)
    : options_(std::move(options)), in_(in), out_(out) {
  if (!options_.simulated) return;
  const sim::Profile* const profile = sim::FindProfile(options_.profile);
  if (profile == nullptr) {
    std::string known;
    for (const sim::Profile& p : sim::Profiles()) known += (known.empty() ? "" : ", ") + p.name;
    throw CommandError(kNotFound, "unknown-profile",
                       "There is no simulated machine called '" + options_.profile + "'.",
                       options_.profile, "The machines are: " + known + ".");
  }
  machine_ = std::make_unique<sim::Machine>(*profile);
  std::error_code error;
  if (const auto file = MachineFile(); std::filesystem::exists(file, error)) {
    machine_is_unreadable_ = !machine_->RestoreState(LoadFile(PathText(file)));
    changes_before_ = machine_->Changes();
  }
  session_ = std::make_unique<sim::Session>(*machine_);
}

Context::~Context() {
  opened_.mira.reset();
  session_.reset();
  ResetProcessState();
}

std::filesystem::path Context::MachineFile() const {
  if (!machine_ || options_.machines.empty()) return {};
  return options_.machines / (options_.profile + ".machine");
}

void Context::CheckMachine() const {
  if (!machine_is_unreadable_) return;
  const std::string file = PathText(MachineFile());
  throw CommandError(kUnexpected, "machine-unreadable",
                     "The simulated machine in '" + file + "' cannot be read.", file,
                     "'mira --sim=" + options_.profile + " sim reset' starts over with a new one.");
}

void Context::KeepMachine() {
  const std::filesystem::path file = MachineFile();
  if (file.empty() || machine_is_unreadable_ || machine_->Changes() == changes_before_) return;
  std::error_code error;
  std::filesystem::create_directories(file.parent_path(), error);
  // Written beside and moved there, so that a command that is interrupted leaves a whole machine.
  std::filesystem::path fresh = file;
  fresh += ".new";
  std::vector<std::uint8_t> saved = machine_->SaveState();
  std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
  std::filesystem::permissions(
      fresh, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, error);
  out.write(reinterpret_cast<const char*>(saved.data()),
            static_cast<std::streamsize>(saved.size()));
  out.close();
  bytes::Wipe(saved.data(), saved.size());
  if (out) std::filesystem::rename(fresh, file, error);
  if (!out || error) {
    throw CommandError(kUnexpected, "machine-not-kept",
                       "The simulated machine could not be written to '" + PathText(file) + "'.",
                       PathText(file), "MIRA_SIM_STATE names another folder, or none.");
  }
  changes_before_ = machine_->Changes();
}

bool Context::IsInteractive() const {
  return !options_.json && &in_ == &std::cin && StandardInputIsTerminal();
}

Opened& Context::Open(bool load_attributes, bool load_texts) {
  if (opened_.mira) return opened_;
  CheckMachine();
  opened_.mira = std::make_unique<CMiraIntf>(diagnostics_);
  opened_.status = opened_.mira->Init(load_attributes, load_texts, load_texts);
  opened_.diagnostics = TakeDiagnostics();
  return opened_;
}

CMiraIntf& Context::Ready(bool load_attributes, bool load_texts) {
  Opened& opened = Open(load_attributes, load_texts);
  if (opened.status != STATUS_SUCCESS) throw InitError(opened);
  return *opened.mira;
}

std::vector<std::string> Context::TakeDiagnostics() {
  std::vector<std::string> lines;
  std::istringstream text(diagnostics_.str());
  for (std::string line; std::getline(text, line);) lines.push_back(ToUtf8(line));
  diagnostics_.str("");
  return lines;
}

void Context::Print(const Json& document) {
  Json whole = {{"schemaVersion", 1}};
  if (options_.simulated) whole["simulated"] = true;
  whole.update(document);
  WriteJson(out_, whole);
}

ExitStatus Context::Fail(const CommandError& error, const Json& document) {
  if (!IsJson()) throw error;
  Json whole = document;
  whole["error"] = ErrorJson(error);
  Print(whole);
  return error.status;
}

void Command::Run(CLI::App& app, Action action) {
  app.callback([this, action = std::move(action)] { chosen_ = action; });
}

Json ErrorJson(const CommandError& error) {
  return {{"code", static_cast<int>(error.status)},
          {"name", error.name},
          {"message", ToUtf8(std::string_view(error.what()))},
          {"target", ToUtf8(std::string_view(error.target))},
          {"hint", ToUtf8(std::string_view(error.hint))}};
}

std::uint32_t ParseNumber(const std::string& text, const std::string& what, std::uint32_t largest,
                          std::uint32_t smallest) {
  std::string_view digits = text;
  const bool is_hex = digits.starts_with("0x") || digits.starts_with("0X");
  if (is_hex) digits.remove_prefix(2);
  std::uint32_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, is_hex ? 16 : 10);
  if (error != std::errc() || end != digits.data() + digits.size() || value < smallest ||
      value > largest) {
    throw CommandError(kUsage, "bad-number", "'" + text + "' is no " + what + ".", text,
                       "A number from " + std::to_string(smallest) + " to " +
                           std::to_string(largest) + " is wanted, in decimal or with 0x.");
  }
  return value;
}

}  // namespace mira::console
