#ifndef MIRA_SIM_CONTROL_COMMANDS_H_
#define MIRA_SIM_CONTROL_COMMANDS_H_

// What mira_sim_control() can be asked for.
//
//   for (const ControlCommand& command : ControlCommands()) std::cout << command.name << '\n';

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "sim/control.h"
#include "sim/firmware/fields.h"

namespace mira::sim {

ChoiceError BadRequest(const std::string& why);

// A request being served: its arguments, and what is answered.
class ControlRequest {
 public:
  ControlRequest(Node arguments, ControlHost& of) : host(of), arguments_(std::move(arguments)) {
    answer.Become(Node::Kind::kObject);
    answer.Add("schemaVersion").SetNumber(1);
    answer.Add("simulated").SetFlag(true);
  }

  // Reads what `declare` names; what else there is, is a mistake. Throws StateError.
  template <typename Declare>
  void Parse(Declare declare) {
    Fields fields(Fields::Pass::kLoadSome, arguments_);
    fields.Whole([&] { declare(fields); });
  }
  // The same for those who have nothing of their own to say about a mistake.
  template <typename Declare>
  void Read(Declare declare) {
    try {
      Parse(declare);
    } catch (const StateError& error) {
      throw BadRequest(error.what());
    }
  }
  // An argument of any kind; null when it is missing.
  Node Take(std::string_view name) {
    const Node* const found = arguments_.Find(name);
    Node taken = found != nullptr ? *found : Node();
    std::erase_if(arguments_.Items(), [name](const Node& member) { return member.Name() == name; });
    return taken;
  }
  // Throws ChoiceError where the process works on no simulated machine.
  MachinePtr Machine();

  ControlHost& host;
  Node answer;

 private:
  Node arguments_;
};

struct ControlCommand {
  std::string_view name;
  void (*run)(ControlRequest& request);
};
std::span<const ControlCommand> ControlCommands();

}  // namespace mira::sim

#endif  // MIRA_SIM_CONTROL_COMMANDS_H_
