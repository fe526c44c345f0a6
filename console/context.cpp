#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string_view>

#include "console/command.h"
#include "console/field.h"
#include "console/hints.h"
#include "console/interrupt.h"
#include "console/profile_choice.h"
#include "console/terminal.h"
#include "facade/process_state.h"
#include "sim/chosen_profile.h"
#include "sim/clock.h"
#include "support/files.h"

namespace mira::console {
Context::Context(Options options, std::istream& in, std::ostream& out)
    : options_(std::move(options)), in_(in), out_(out) {
  if (!options_.simulated) return;
  machine_ = std::make_unique<sim::Machine>(ChosenProfile(options_.profile));
  if (const auto file = MachineFile(); !file.empty()) {
    try {
      kept_ = std::make_unique<sim::KeptMachine>(*machine_, file);
    } catch (const sim::StateError& error) {
      unreadable_ = error.what();
    }
  }
  session_ = std::make_unique<sim::Session>(*machine_);
}

client::Session& Context::GetSession() {
  if (client_) return *client_;
  client_ = std::make_unique<client::Session>(
      [this](const std::string& what, std::size_t done, std::size_t total) {
        ShowProgress(what, done, total);
        return !IsInterrupted();
      });
  KeepMemory();
  if (machine_) {
    client_->SetSimulated(options_.profile);
    client_->SetClock([this] { return sim::TimeOf(machine_->GetProfile()); });
    client_->SetStartName([this] { return std::to_string(machine_->GetFirmware().BootCount()); });
  }
  return *client_;
}

// What is remembered of machines lies beside the simulated ones.
void Context::KeepMemory() {
  if (options_.machines.empty()) return;
  const std::filesystem::path file =
      options_.machines / (machine_ ? sim::KeptName(options_.profile).replace_extension(".kept")
                                    : std::filesystem::path("kept-values.json"));
  client_->SetMemory({.load = [file]() -> Json {
                        std::ifstream in(file, std::ios::binary);
                        const std::string text{std::istreambuf_iterator<char>(in), {}};
                        try {
                          return client::ParseJson(text, "The memory");
                        } catch (const Error&) {
                          // Whatever it was, it is no memory.
                          return nullptr;
                        }
                      },
                      .save =
                          [file](const Json& memory) {
                            // What cannot be remembered is found out again.
                            std::error_code error;
                            std::filesystem::create_directories(file.parent_path(), error);
                            error = support::WriteFileSafely(file, client::ToText(memory),
                                                             support::FileAccess::kPrivate);
                          }});
}

Context::~Context() {
  client_.reset();
  session_.reset();
  kept_.reset();
  ResetProcessState();
}

std::filesystem::path Context::MachineFile() const {
  if (!machine_ || options_.machines.empty()) return {};
  return options_.machines / sim::KeptName(options_.profile);
}

void Context::CheckMachine() const {
  if (unreadable_.empty()) return;
  const std::string file = PathText(MachineFile());
  throw Error(
      kUnexpected, "machine-unreadable",
      client::Sentence("The simulated machine in '" + file + "' cannot be read: " + unreadable_),
      file);
}

void Context::CheckKept() const {
  if (!kept_ || kept_->Problem().empty()) return;
  throw Error(kUnexpected, "machine-not-kept",
              client::Sentence("The simulated machine could not be kept: " + kept_->Problem()),
              PathText(MachineFile()));
}

bool Context::IsInteractive() const {
  return !options_.IsForPrograms() && &in_ == &std::cin && StandardInputIsTerminal();
}

void Context::ShowProgress(const std::string& what, std::size_t done, std::size_t total) {
  if (!IsInteractive() || options_.quiet || total == 0) return;
  constexpr std::size_t kNarrow = 40;
  const std::uint64_t percent = std::uint64_t{done} * 100 / total;
  std::string line = what.substr(0, kNarrow - 7) + ": " + std::to_string(percent) + " %";
  if (line == progress_line_) return;
  const std::size_t before = progress_line_.size();
  const std::size_t rest = before > line.size() ? before - line.size() : 0;
  WriteToTerminal("\r" + line + std::string(rest, ' '));
  progress_line_ = std::move(line);
}

void Context::ClearProgress() {
  if (progress_line_.empty()) return;
  WriteToTerminal("\r" + std::string(progress_line_.size(), ' ') + "\r");
  progress_line_.clear();
}

Json Context::Whole(const Json& document) const {
  Json whole = {{"schemaVersion", 1}};
  if (options_.simulated) whole["simulated"] = true;
  whole.update(document);
  return whole;
}

void Context::Print(const Json& document) {
  const Json whole = Whole(document);
  if (options_.value.empty()) {
    WriteJson(out_, whole);
  } else {
    out_ << FieldText(FindField(whole, options_.value)) << '\n';
  }
}

ExitStatus Context::Fail(const Error& error, const Json& document) {
  Json whole = Whole(document);
  if (options_.json) {
    whole["error"] = ErrorJson(error, options_);
    WriteJson(out_, whole);
    return error.status;
  }
  if (!options_.value.empty() && HasField(whole, options_.value)) Print(document);
  throw error;
}

}  // namespace mira::console
