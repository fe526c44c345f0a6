// The machines that the simulator's build of the C interface opens: simulated ones, or this PC.

#include <filesystem>
#include <memory>
#include <string>

#include "client/c/machine.h"
#include "client/error.h"
#include "sim/clock.h"
#include "sim/kept_machine.h"
#include "sim/machine.h"
#include "sim/profile_file.h"

namespace mira::client::c {
namespace {

std::filesystem::path ToPath(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

sim::Profile Named(const std::string& name) {
  if (const sim::Profile* const profile = sim::FindProfile(name)) return *profile;
  if (name.ends_with(".json")) return sim::LoadProfile(ToPath(name));
  Json known = Json::array();
  for (const sim::Profile& profile : sim::Profiles()) known.push_back(profile.name);
  throw Error(kNotFound, "unknown-profile", "There is no simulated machine called '" + name + "'.",
              name)
      .With("choices", std::move(known));
}

// A built-in machine, by its name; one that a file describes; or the description itself.
sim::Profile Chosen(const Json& simulated) {
  const std::string target = simulated.is_string() ? simulated.get<std::string>() : "simulated";
  try {
    return simulated.is_string() ? Named(target) : sim::ReadProfile(simulated.dump());
  } catch (const sim::StateError& error) {
    throw Error(kInvalidValue, "bad-profile",
                Sentence("'" + target + "' describes no simulated machine: " + error.what()),
                target);
  }
}

class SimulatedMachine : public Machine {
 public:
  SimulatedMachine(const Json& simulated, const std::string& state)
      : name_(simulated.is_string() ? simulated.get<std::string>() : ""),
        machine_(Chosen(simulated)) {
    if (name_.empty()) name_ = machine_.GetProfile().name;
    if (name_.empty()) name_ = "simulated";
    if (!state.empty()) Keep(state);
    session_ = std::make_unique<sim::Session>(machine_);
  }

  void Introduce(Session& session) const override {
    session.SetSimulated(name_);
    session.SetClock([this] { return sim::TimeOf(machine_.GetProfile()); });
  }

  void Check() const override {
    if (!kept_ || kept_->Problem().empty()) return;
    throw Error(kUnexpected, "machine-not-kept",
                "The simulated machine could not be kept: " + kept_->Problem());
  }

 private:
  void Keep(const std::string& state) {
    try {
      kept_ = std::make_unique<sim::KeptMachine>(machine_, ToPath(state));
    } catch (const sim::StateError& error) {
      throw Error(kUnexpected, "machine-unreadable",
                  "The simulated machine in '" + state + "' cannot be read: " + error.what(),
                  state);
    }
  }

  std::string name_;
  sim::Machine machine_;
  std::unique_ptr<sim::KeptMachine> kept_;
  std::unique_ptr<sim::Session> session_;
};

}  // namespace

std::unique_ptr<Machine> OpenMachine(const Json& options) {
  const auto simulated = options.find("simulated");
  if (simulated == options.end()) return std::make_unique<Machine>();
  return std::make_unique<SimulatedMachine>(*simulated, options.value("state", ""));
}

}  // namespace mira::client::c
