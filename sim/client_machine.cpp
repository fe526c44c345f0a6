// The machines that the simulator's build of the C interface opens: simulated ones, or this PC; and
// how a program controls them.

#include <memory>
#include <string>

#include "client/c/engine.h"
#include "client/c/machine.h"
#include "client/error.h"
#include "sim/chosen_profile.h"
#include "sim/clock.h"
#include "sim/control.h"
#include "sim/machine.h"
#include "sim/mira_sim.h"
#include "sim/process_machine.h"

namespace mira::client::c {
namespace {

// The one that is open, if it is a simulated one. The engine's thread sets it while it opens and
// closes; others look at it while the engine is still.
sim::MachinePtr& Opened() {
  static sim::MachinePtr& opened = *new sim::MachinePtr();
  return opened;
}

Error ErrorOf(const sim::ChoiceError& error) {
  Error refusal(static_cast<ExitStatus>(error.status), error.name, error.what(), error.target);
  if (refusal.name != "unknown-profile") return refusal;
  Json known = Json::array();
  for (const sim::Profile& profile : sim::Profiles()) known.push_back(profile.name);
  refusal.With("choices", std::move(known));
  return refusal;
}

class SimulatedMachine : public Machine {
 public:
  explicit SimulatedMachine(sim::MachinePtr machine)
      : machine_(std::move(machine)),
        session_(std::make_unique<sim::Session>(machine_->GetMachine())) {
    Opened() = machine_;
  }
  ~SimulatedMachine() override {
    session_.reset();
    Opened().reset();
  }

  void Introduce(Session& session) const override {
    session.SetSimulated(machine_->Name());
    session.SetClock([this] { return sim::TimeOf(machine_->GetMachine().GetProfile()); });
  }

  void Check() const override {
    if (const std::string problem = machine_->Problem(); !problem.empty()) {
      throw Error(kUnexpected, "machine-not-kept",
                  "The simulated machine could not be kept: " + problem);
    }
  }

 private:
  sim::MachinePtr machine_;
  std::unique_ptr<sim::Session> session_;
};

// Null: this PC.
sim::MachinePtr Wanted(const Json& options) {
  const auto simulated = options.find("simulated");
  if (simulated == options.end()) return sim::ProcessMachine::Get().Use();
  const std::filesystem::path file = sim::FilePath(options.value("state", ""));
  return simulated->is_string() ? sim::MakeNamed(simulated->get<std::string>(), file)
                                : sim::MakeDescribed(simulated->dump(), file);
}

class EngineHost : public sim::ControlHost {
 public:
  sim::MachinePtr Machine() override {
    return Opened() ? Opened() : sim::ProcessMachine::Get().Use();
  }
  // With its last handle the library has forgotten the machine.
  void LetGo(bool) override {
    if (!is_open_) return;
    throw sim::ChoiceError(MIRA_SIM_BUSY, "busy", "The host has a machine open.");
  }
  bool WhileStill(const std::function<void()>& work) override {
    return Engine::Get().WhileStill([&](bool is_open) {
      is_open_ = is_open;
      work();
    });
  }

 private:
  bool is_open_ = false;
};

}  // namespace

std::unique_ptr<Machine> OpenMachine(const Json& options) {
  try {
    sim::MachinePtr machine = Wanted(options);
    if (!machine) return std::make_unique<Machine>();
    return std::make_unique<SimulatedMachine>(std::move(machine));
  } catch (const sim::ChoiceError& error) {
    throw ErrorOf(error);
  }
}

}  // namespace mira::client::c

MIRA_SIM_API int32_t MIRA_SIM_CALL mira_sim_control(const char* request, uint32_t size,
                                                    const char** document,
                                                    uint32_t* document_size) {
  mira::client::c::EngineHost host;
  return mira::sim::ControlForHost(request, size, document, document_size, host);
}
