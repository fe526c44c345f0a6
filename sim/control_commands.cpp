#include "sim/control_commands.h"

#include <optional>

#include "sim/chosen_profile.h"
#include "sim/mira_sim.h"

namespace mira::sim {
namespace {

ChoiceError WrongArgument(const char* argument, const std::string& why) {
  return ChoiceError(MIRA_SIM_USAGE, "bad-argument", why, argument);
}

void PutLive(Node& node, const Live& live) {
  node.Become(Node::Kind::kObject);
  node.Add("references").SetNumber(live.references);
  node.Add("outlived").SetNumber(live.outlived);
  node.Add("strings").SetNumber(live.strings);
  node.Add("arrays").SetNumber(live.arrays);
  node.Add("variants").SetNumber(live.variants);
  node.Add("comInitialisations").SetNumber(live.com_scopes);
}

// What was handed out, and what COM was used for as no real system takes it.
void PutUse(Node& answer, Machine& machine) {
  PutLive(answer.Add("live"), machine.GetLive());
  Node& objections = answer.Add("objections");
  objections.Become(Node::Kind::kList);
  for (const std::string& text : machine.GetObjections().Texts()) {
    objections.AddItem().SetText(text);
  }
}

// Ends the process's work with its machine, and tells what was left then.
void LeaveMachine(ControlRequest& request, const MachinePtr& machine, bool force) {
  request.host.LetGo(force);
  if (machine) PutUse(request.answer, machine->GetMachine());
}

void ChooseMachine(ControlRequest& request) {
  const Node machine = request.Take("machine");
  std::string state;
  bool force = false;
  request.Read([&](Fields& fields) { fields("state", state)("force", force); });
  const std::filesystem::path file = FilePath(state);
  std::function<MachinePtr()> make;
  if (machine.GetKind() == Node::Kind::kText) {
    make = [name = machine.Text(), file] { return MakeNamed(name, file); };
  } else if (machine.GetKind() == Node::Kind::kObject) {
    make = [json = WriteJson(machine).str(), file] { return MakeDescribed(json, file); };
  } else if (machine.GetKind() != Node::Kind::kNull) {
    throw WrongArgument("machine",
                        "'machine' is a machine's name, a file, its description or null.");
  }
  const MachinePtr made = make ? make() : nullptr;
  request.host.LetGo(force);
  ProcessMachine::Get().Choose(std::move(make), made);
  Node& name = request.answer.Add("machine");
  if (made) name.SetText(made->Name());
}

void ShowMachine(ControlRequest& request) {
  request.Read([](Fields&) {});
  const MachinePtr machine = request.Machine();
  Machine& shown = machine->GetMachine();
  request.answer.Add("machine").SetText(machine->Name());
  request.answer.Add("description").SetText(shown.GetProfile().description);
  request.answer.Add("boots").SetNumber(shown.GetFirmware().BootCount());
  request.answer.Add("off").SetFlag(shown.GetFirmware().IsOff());
  const std::u8string file = machine->File().u8string();
  Node& kept = request.answer.Add("keptIn");
  if (!file.empty()) kept.SetText(std::string(file.begin(), file.end()));
}

void ForgetMachine(ControlRequest& request) {
  bool force = false;
  request.Read([&](Fields& fields) { fields("force", force); });
  const MachinePtr machine = request.Machine();
  LeaveMachine(request, machine, force);
  request.answer.Add("machine").SetText(machine->Name());
  ProcessMachine::Get().Forget();
}

void RebootMachine(ControlRequest& request) {
  bool loses_power = false;
  request.Read([&](Fields& fields) { fields("powerLoss", loses_power); });
  Machine& machine = request.Machine()->GetMachine();
  if (loses_power) {
    machine.LosePower();
  } else {
    machine.Reboot();
  }
  request.answer.Add("boots").SetNumber(machine.GetFirmware().BootCount());
}

void PutFault(Node& node, SharedFault fault) {
  Fields fields(Fields::Pass::kSave, node);
  fields.Whole([&] { Describe(fields, fault); });
}

void AddFault(ControlRequest& request) {
  SharedFault wanted;
  const Node operation = request.Take("operation");
  if (operation.GetKind() != Node::Kind::kText) {
    throw WrongArgument("operation", "'operation' is missing.");
  }
  wanted.fault.operation = Faults::NameOf(operation.Text());
  try {
    request.Parse([&](Fields& fields) { Describe(fields, wanted); });
    if (!Faults::DoesSomething(wanted.fault)) throw StateError("it does nothing");
  } catch (const StateError& error) {
    throw ChoiceError(MIRA_SIM_INVALID_VALUE, "bad-fault",
                      "The fault cannot be: " + std::string(error.what()) + ".",
                      wanted.fault.operation);
  }
  PutFault(request.answer.Add("fault"), request.Machine()->AddFault(wanted.fault));
}

std::optional<std::uint32_t> FaultNumber(ControlRequest& request) {
  std::optional<std::uint32_t> number;
  request.Read([&](Fields& fields) { fields("number", number); });
  return number;
}

void ListFaults(ControlRequest& request) {
  const auto number = FaultNumber(request);
  Node& list = request.answer.Add("faults");
  list.Become(Node::Kind::kList);
  for (const SharedFault& fault : request.Machine()->ListFaults()) {
    if (!number || *number == fault.number) PutFault(list.AddItem(), fault);
  }
}

void ClearFaults(ControlRequest& request) {
  const auto number = FaultNumber(request);
  const std::size_t cleared = request.Machine()->ClearFaults(number);
  if (number && cleared == 0) {
    throw ChoiceError(MIRA_SIM_NOT_FOUND, "no-such-fault",
                      "There is no fault with the number " + std::to_string(*number) + ".",
                      "number");
  }
  request.answer.Add("cleared").SetNumber(static_cast<std::int64_t>(cleared));
}

void ReadJournal(ControlRequest& request) {
  std::optional<std::uint32_t> cls;
  std::optional<std::uint32_t> select;
  std::optional<std::string> operation;
  bool clears = false;
  request.Read([&](Fields& fields) {
    fields("class", cls)("select", select)("operation", operation)("clear", clears);
  });
  const auto is_number = [](const Node& entry, const char* name, const auto& wanted) {
    const Node* const found = entry.Find(name);
    return !wanted || (found != nullptr && found->Number() == *wanted);
  };
  const auto is_wanted = [&](const Node& entry) {
    const Node* const found = entry.Find("operation");
    return is_number(entry, "class", cls) && is_number(entry, "select", select) &&
           (!operation || (found != nullptr && found->Text() == *operation));
  };
  const MachinePtr machine = request.Machine();
  std::vector<Node> entries = machine->Journal();
  std::erase_if(entries, [&](const Node& entry) { return !is_wanted(entry); });
  request.answer.Add("count").SetNumber(static_cast<std::int64_t>(entries.size()));
  Node& list = request.answer.Add("entries");
  list.Become(Node::Kind::kList);
  list.Items() = std::move(entries);
  if (clears) machine->ClearJournal();
}

void ClearJournal(ControlRequest& request) {
  request.Read([](Fields&) {});
  request.Machine()->ClearJournal();
}

void ShowLive(ControlRequest& request) {
  request.Read([](Fields&) {});
  PutUse(request.answer, request.Machine()->GetMachine());
}

void ListOperations(ControlRequest& request) {
  request.Read([](Fields&) {});
  Node& list = request.answer.Add("operations");
  list.Become(Node::Kind::kList);
  for (const auto& [name, calls] : request.Machine()->GetMachine().GetFaults().AllCalls()) {
    Node& operation = list.AddItem();
    operation.Become(Node::Kind::kObject);
    operation.Add("operation").SetText(name);
    operation.Add("calls").SetNumber(calls);
  }
}

constexpr ControlCommand kControlCommands[] = {
    {"fault.add", AddFault},           {"fault.clear", ClearFaults},
    {"fault.list", ListFaults},        {"journal.clear", ClearJournal},
    {"journal.read", ReadJournal},     {"live", ShowLive},
    {"machine.choose", ChooseMachine}, {"machine.forget", ForgetMachine},
    {"machine.reboot", RebootMachine}, {"machine.show", ShowMachine},
    {"operations", ListOperations},
};

}  // namespace

ChoiceError BadRequest(const std::string& why) {
  return ChoiceError(MIRA_SIM_USAGE, "bad-request", "The request cannot be read: " + why + ".");
}

MachinePtr ControlRequest::Machine() {
  if (MachinePtr machine = host.Machine()) return machine;
  throw ChoiceError(MIRA_SIM_NOT_FOUND, "no-machine", "The process works on this PC.");
}

std::span<const ControlCommand> ControlCommands() { return kControlCommands; }

}  // namespace mira::sim
