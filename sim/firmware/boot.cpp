#include "sim/firmware/boot.h"

#include <algorithm>
#include <string>

#include "bytes/writer.h"
#include "sim/device_path_builder.h"

namespace mira::sim {
namespace {

constexpr unsigned kKeyArgument = 3;
constexpr std::uint32_t kLegacyEntrySize = 16;

using bytes::Append;

void Append(std::vector<std::uint8_t>& out, bytes::ByteSpan bytes) {
  out.insert(out.end(), bytes.begin(), bytes.end());
}

// An option as a list's answer holds it: number, size of the rest, EFI_LOAD_OPTION.
void Append(std::vector<std::uint8_t>& out, const BootOption& option) {
  const std::vector<std::uint8_t> description = Utf16Bytes(option.description);
  const std::size_t path = option.path.size();
  Append(out, option.number, 2);
  Append(out, 6 + description.size() + path + option.optional_data.size(), 4);
  Append(out, option.attributes, 4);
  Append(out, path, 2);
  Append(out, description);
  Append(out, option.path);
  Append(out, option.optional_data);
}

const BootOption* Find(const BootList& list, std::uint32_t number) {
  const auto found =
      std::find_if(list.options.begin(), list.options.end(),
                   [number](const BootOption& option) { return option.number == number; });
  return found != list.options.end() ? &*found : nullptr;
}

bool IsPermutation(bytes::ByteSpan priority, std::size_t devices) {
  std::vector<bool> seen(devices);
  for (const std::uint8_t index : priority) {
    if (index >= devices || seen[index]) return false;
    seen[index] = true;
  }
  return priority.size() == devices;
}

}  // namespace

struct BootHandler::Command {
  std::uint16_t select;
  bool changes;
  void (BootHandler::*execute)(Call& call);
};

BootHandler::BootHandler(std::shared_ptr<Security> security, const Profile& profile)
    : security_(std::move(security)),
      legacy_(profile.legacy_boot),
      chosen_(profile.boots_from),
      in_use_(profile.boots_from) {
  for (const BootList& list : profile.boot_lists) lists_.push_back({list, list.order, list.order});
}

void BootHandler::Handle(Call& call) {
  static constexpr Command kCommands[] = {
      {0, false, &BootHandler::TellChosenList},  {1, true, &BootHandler::ChooseList},
      {2, false, &BootHandler::TellLegacySizes}, {3, false, &BootHandler::ReadLegacy},
      {5, true, &BootHandler::WriteLegacy},      {7, true, &BootHandler::ChooseNextStart},
      {8, false, &BootHandler::TellNextStart},   {9, false, &BootHandler::ReadLists},
      {10, false, &BootHandler::TellFirst},      {11, false, &BootHandler::ReadOptions},
      {12, true, &BootHandler::WriteOrder},      {13, true, &BootHandler::RestoreOrder},
  };
  for (const Command& command : kCommands) {
    if (command.select != call.Select()) continue;
    if (command.changes && !security_->Accepts(call.Arg(kKeyArgument))) {
      return call.Complete(kInvalidKey);
    }
    return (this->*command.execute)(call);
  }
  call.Complete(kNotSupported);
}

void BootHandler::Reboot() {
  for (List& list : lists_) list.in_force = list.stored.order;
  in_use_ = next_start_ ? next_start_->list : chosen_;
  next_start_.reset();
}

void BootHandler::Keep(Fields& fields) {
  fields.Group("boot", [&] {
    fields("chosenList", chosen_)("listInUse", in_use_)("nextStart", next_start_);
    // The two priorities are stored one after the other.
    fields.Parts("legacy", [&] {
      fields("iplPriority", legacy_.ipl_priority)("bcvPriority", legacy_.bcv_priority);
    });
    fields.Group("lists", [&] {
      NumberNames name;
      for (List& list : lists_) {
        fields.Group(name(list.stored.value), [&] {
          fields("order", list.stored.order)("inForce", list.in_force);
          for (const auto* const order : {&list.stored.order, &list.in_force}) {
            fields.Require(std::is_permutation(order->begin(), order->end(), list.delivered.begin(),
                                               list.delivered.end()),
                           "an order names every option once");
          }
        });
      }
    });
  });
}

BootHandler::List* BootHandler::FindList(Call& call) {
  const auto found = std::find_if(lists_.begin(), lists_.end(), [&](const List& list) {
    return list.stored.value == call.Arg(1);
  });
  if (found != lists_.end()) return &*found;
  call.Complete(kError);
  return nullptr;
}

void BootHandler::TellChosenList(Call& call) {
  call.SetResult(2, chosen_);
  call.SetResult(3, in_use_);
}

void BootHandler::ChooseList(Call& call) {
  if (const List* const list = FindList(call)) chosen_ = list->stored.value;
}

void BootHandler::TellLegacySizes(Call& call) {
  call.SetResult(2, legacy_.max_devices);
  call.SetResult(3, kLegacyEntrySize);
  call.SetResult(4, static_cast<std::uint32_t>(legacy_.devices.size()));
}

void BootHandler::ReadLegacy(Call& call) {
  std::vector<std::uint8_t> table;
  for (const LegacyBootDevice& device : legacy_.devices) {
    Append(table, device.device_type, 2);
    Append(table, device.status_flags, 2);
    Append(table, device.boot_handler, 4);
    Append(table, device.description, 4);
    Append(table, device.expansion, 4);
  }
  const bytes::ByteSpan answers[] = {legacy_.ipl_priority, table, legacy_.bcv_priority};
  for (unsigned i = 0; i < 3; ++i) {
    if (!call.AnswerData(answers[i], i + 1)) return;
  }
}

void BootHandler::WriteLegacy(Call& call) {
  const std::size_t devices = legacy_.devices.size();
  if (!call.IsOffset(1) || !call.IsOffset(2)) return call.Complete(kBadFormat);
  bytes::Reader in(call.Record());
  bytes::ByteSpan lists[2];
  for (unsigned i = 0; i < 2; ++i) {
    in.Seek(call.Arg(i + 1));
    lists[i] = in.Take(devices);
  }
  // The second list ends where the record does, and the first where the second begins.
  if (!in.Ok() || in.Left() != 0 || call.Arg(2) - call.Arg(1) != devices) {
    return call.Complete(kBadFormat);
  }
  for (const bytes::ByteSpan list : lists) {
    if (!IsPermutation(list, devices)) return call.Complete(kError);
  }
  legacy_.ipl_priority.assign(lists[0].begin(), lists[0].end());
  legacy_.bcv_priority.assign(lists[1].begin(), lists[1].end());
}

void BootHandler::ChooseNextStart(Call& call) {
  const List* const list = FindList(call);
  if (list == nullptr) return;
  const BootOption* const option = Find(list->stored, call.Arg(2));
  if (option == nullptr) return call.Complete(kError);
  next_start_ = {list->stored.value, option->number};
}

void BootHandler::TellNextStart(Call& call) {
  if (!next_start_) return call.Complete(kError);
  call.SetResult(2, next_start_->list);
  call.SetResult(3, next_start_->option);
}

void BootHandler::ReadLists(Call& call) {
  std::vector<std::uint8_t> answer;
  Append(answer, lists_.size(), 1);
  for (const List& list : lists_) answer.push_back(list.stored.value);
  for (const List& list : lists_) Append(answer, Utf16Bytes(list.stored.name));
  call.AnswerData(answer, 1);
}

void BootHandler::TellFirst(Call& call) {
  const List* const list = FindList(call);
  if (list == nullptr) return;
  for (const std::uint16_t number : list->in_force) {
    const BootOption* const option = Find(list->stored, number);
    if (option == nullptr || (option->attributes & kOptionActive) == 0) continue;
    call.SetResult(2, number);
    return call.SetResult(3, static_cast<std::uint32_t>(list->stored.options.size()));
  }
  call.Complete(kError);
}

void BootHandler::ReadOptions(Call& call) {
  const List* const list = FindList(call);
  if (list == nullptr) return;
  std::vector<std::uint8_t> answer;
  Append(answer, list->stored.options.size(), 4);
  for (const std::uint16_t number : list->stored.order) Append(answer, number, 2);
  for (const BootOption& option : list->stored.options) Append(answer, option);
  call.AnswerData(answer, 2);
}

void BootHandler::WriteOrder(Call& call) {
  List* const list = FindList(call);
  if (list == nullptr) return;
  if (!call.IsOffset(2)) return call.Complete(kBadFormat);
  bytes::Reader in(call.Record(), call.Arg(2));
  if (!in.Ok() || in.Left() % 2 != 0) return call.Complete(kBadFormat);
  std::vector<std::uint16_t> order;
  while (in.Left() != 0) order.push_back(in.U16());
  if (!std::is_permutation(order.begin(), order.end(), list->stored.order.begin(),
                           list->stored.order.end())) {
    return call.Complete(kError);
  }
  list->stored.order = order;
}

void BootHandler::RestoreOrder(Call& call) {
  if (List* const list = FindList(call)) list->stored.order = list->delivered;
}

}  // namespace mira::sim
