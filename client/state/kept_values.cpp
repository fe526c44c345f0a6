#include "client/state/kept_values.h"

#include <algorithm>
#include <string>

#include "bytes/text.h"
#include "client/attribute_file.h"

namespace mira::client {
namespace {

constexpr char kMachines[] = "machines";
constexpr char kValues[] = "values";
constexpr char kShown[] = "shown";
constexpr char kWaitedWith[] = "waitedWith";
constexpr char kStart[] = "start";

std::string WithoutBlanks(std::string text) {
  std::erase(text, ' ');
  return text;
}

// Whether firmware is likely to have made one of the other: its letters, its blanks, or its end.
bool AreAlike(const Json& wanted, const Json& kept) {
  const auto is_text = [](const Json& value) { return BytesOfText(value).has_value(); };
  if (!is_text(wanted) || !is_text(kept)) return false;
  const std::string from = WithoutBlanks(Readable(wanted));
  const std::string to = WithoutBlanks(Readable(kept));
  if (to.empty() || ToNumber(kept)) return false;
  constexpr std::size_t kShortestCut = 8;
  return bytes::SameText(from, to) ||
         (to.size() >= kShortestCut && bytes::SameText(from.substr(0, to.size()), to));
}

}  // namespace

KeptValues::KeptValues(Session& session) : session_(session), memory_(session.Recall()) {
  machine_ = MachineJson(session);
  const auto machines = memory_.find(kMachines);
  if (!memory_.is_object() || machines == memory_.end() || !machines->is_array()) {
    memory_ = {{"schemaVersion", 1}, {kMachines, Json::array()}};
  }
}

const Json* KeptValues::FindMachine() const {
  for (const Json& machine : memory_.at(kMachines)) {
    if (machine.is_object() && machine.value("machine", Json()) == machine_) return &machine;
  }
  return nullptr;
}

Json& KeptValues::Machine() {
  is_changed_ = true;
  Json& machines = memory_[kMachines];
  for (Json& machine : machines) {
    if (machine.is_object() && machine.value("machine", Json()) == machine_) return machine;
  }
  machines.push_back({{"machine", machine_}, {kValues, Json::object()}});
  return machines.back();
}

const Json* KeptValues::Find(const Change& change) const {
  const Json* const machine = FindMachine();
  if (machine == nullptr) return nullptr;
  const auto values = machine->find(kValues);
  if (values == machine->end() || !values->is_object()) return nullptr;
  const auto note = values->find(change.target);
  return note != values->end() && note->is_object() ? &*note : nullptr;
}

bool KeptValues::HasShown(const Change& change) const {
  // Another value than at the start is there: the attribute shows what is written.
  if (change.at_boot && *change.at_boot != change.before) return true;
  const Json* const machine = FindMachine();
  if (machine == nullptr) return false;
  const auto shown = machine->find(kShown);
  return shown != machine->end() && shown->is_object() && shown->contains(change.target);
}

bool KeptValues::IsKnown(const Change& change) const {
  const Json* const note = Find(change);
  return note != nullptr && note->value("wanted", Json()) == change.after &&
         note->contains("kept") && (*note)["kept"] == change.before;
}

Stay KeptValues::Judge(const Change& change) const {
  const bool is_pending = change.at_boot && *change.at_boot != change.before;
  if (change.form == ValueForm::kChoice) return is_pending ? Stay::kUntaken : Stay::kUnclear;
  if (change.form == ValueForm::kText && AreAlike(change.after, change.before)) return Stay::kForm;
  if (IsKnown(change)) return Stay::kForm;
  if (change.form == ValueForm::kNumber && HasShown(change)) {
    // What was in force at the start is a value that the firmware can have.
    return change.at_boot && *change.at_boot == change.after ? Stay::kUntaken : Stay::kForm;
  }
  const Json* const note = Find(change);
  if (note == nullptr || !note->contains(kWaitedWith)) return Stay::kUnclear;
  if (note->value("wanted", Json()) != change.after) return Stay::kUnclear;
  // Nothing else was seen since that write: a restart has passed, and the firmware has accepted the
  // same value again without moving.
  const std::string start = session_.StartName();
  const std::string then = note->value(kStart, "");
  return !start.empty() && !then.empty() && start != then ? Stay::kForm : Stay::kUnclear;
}

void KeptValues::NoteKept(const Change& change) {
  Machine()[kValues][change.target] = {{"wanted", change.after},
                                       {"kept", change.kept.value_or(change.before)}};
}

void KeptValues::NoteWaiting(const Change& change) {
  Machine()[kValues][change.target] = {
      {"wanted", change.after}, {kWaitedWith, change.before}, {kStart, session_.StartName()}};
}

void KeptValues::NoteSettled(const Change& change) {
  const Json* const note = Find(change);
  if (note == nullptr) return;
  const bool is_done = note->contains(kWaitedWith) || note->value("wanted", Json()) == change.after;
  if (is_done) Machine()[kValues].erase(change.target);
}

void KeptValues::NoteShown(const Change& change) { Machine()[kShown][change.target] = true; }

void KeptValues::Save() {
  if (is_changed_) session_.Remember(memory_);
  is_changed_ = false;
}

}  // namespace mira::client
