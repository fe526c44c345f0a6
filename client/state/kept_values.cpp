#include "client/state/kept_values.h"

#include <algorithm>
#include <utility>

#include "bytes/text.h"
#include "client/attribute_file.h"

namespace mira::client {
namespace {

constexpr char kMachines[] = "machines";
constexpr char kValues[] = "values";

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

const Json* KeptValues::Find(const Change& change) const {
  for (const Json& machine : memory_.at(kMachines)) {
    if (!machine.is_object() || machine.value("machine", Json()) != machine_) continue;
    const auto values = machine.find(kValues);
    if (values == machine.end() || !values->is_object()) return nullptr;
    const auto note = values->find(change.target);
    const bool is_it =
        note != values->end() && note->is_object() && note->value("wanted", Json()) == change.after;
    return is_it ? &*note : nullptr;
  }
  return nullptr;
}

Json& KeptValues::NoteOf(const Change& change) {
  is_changed_ = true;
  Json& machines = memory_[kMachines];
  const auto found = std::find_if(machines.begin(), machines.end(), [this](const Json& machine) {
    return machine.is_object() && machine.value("machine", Json()) == machine_;
  });
  if (found == machines.end()) {
    machines.push_back({{"machine", machine_}, {kValues, Json::object()}});
    return machines.back()[kValues][change.target];
  }
  return (*found)[kValues][change.target];
}

bool KeptValues::IsKnown(const Change& change) const {
  const Json* const note = Find(change);
  return note != nullptr && note->contains("kept") && (*note)["kept"] == change.before;
}

bool KeptValues::IsForm(const Change& change) const {
  if (change.at_boot && *change.at_boot != change.before) return true;
  if (AreAlike(change.after, change.before)) return true;
  const Json* const note = Find(change);
  if (note == nullptr) return false;
  if (note->contains("kept")) return (*note)["kept"] == change.before;
  // It has waited, and a restart has made another value of it.
  if (note->value("waitedWith", Json()) != change.before) return true;
  const std::string start = session_.StartName();
  return !start.empty() && note->value("start", "") != start;
}

void KeptValues::NoteKept(const Change& change) {
  NoteOf(change) = {{"wanted", change.after}, {"kept", change.kept.value_or(change.before)}};
}

void KeptValues::NoteWaiting(const Change& change) {
  NoteOf(change) = {
      {"wanted", change.after}, {"waitedWith", change.before}, {"start", session_.StartName()}};
}

void KeptValues::Save() {
  if (is_changed_) session_.Remember(memory_);
  is_changed_ = false;
}

}  // namespace mira::client
