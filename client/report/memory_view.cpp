#include <cstdint>

#include "client/report/view.h"

namespace mira::client {
namespace {

constexpr std::uint64_t kKiBInMiB = 1024;

bool IsEmptySlot(const Json& slot) { return At(slot, "populated") == false; }

std::uint64_t KiBOf(const Json& slot) {
  const auto mib = ToNumber(At(slot, "sizeMiB"));
  if (mib) return *mib * kKiBInMiB;
  return ToNumber(At(slot, "sizeKiB")).value_or(0);
}

Json ModuleView(const Json& slot) {
  std::string speed = Shown(slot, {"", "configuredSpeedMTs", InTransfers});
  const std::string most = Shown(slot, {"", "speedMTs", InTransfers});
  if (speed.empty()) speed = most;
  const bool is_slowed = !most.empty() && most != speed;
  return {{"size", KiBOf(slot) != 0 ? InKiB(KiBOf(slot)) : "unknown size"},
          {"kind", Joined({PlainAt(slot, "type"), PlainAt(slot, "formFactor")}, " ")},
          {"speed", is_slowed ? speed + " of " + most : speed},
          {"maker", PlainAt(slot, "manufacturer")},
          {"part", PlainAt(slot, "partNumber")},
          {"serial", PlainAt(slot, "serialNumber")}};
}

}  // namespace

MemoryTotal TotalOf(const Json& inventory) {
  std::uint64_t total = 0;
  std::size_t filled = 0;
  const Json& slots = ListAt(inventory, "memorySlots");
  for (const Json& slot : slots) {
    if (IsEmptySlot(slot)) continue;
    ++filled;
    total += KiBOf(slot);
  }
  std::uint64_t most = 0;
  for (const Json& array : ListAt(inventory, "memoryArrays")) {
    most += ToNumber(At(array, "maxCapacityKiB")).value_or(0);
  }
  if (slots.empty()) return {};
  return {InKiB(total), std::to_string(filled) + " of " + Counted(slots.size(), "slot") + " filled",
          most != 0 ? "room for " + InKiB(most) : ""};
}

Json MemoryView(const Json& inventory) {
  const MemoryTotal total = TotalOf(inventory);
  if (total.slots.empty()) return nullptr;
  Json slots = Json::array();
  for (const Json& slot : ListAt(inventory, "memorySlots")) {
    slots.push_back({{"locator", PlainAt(slot, "locator")},
                     {"bank", PlainAt(slot, "bankLocator")},
                     {"module", IsEmptySlot(slot) ? Json() : ModuleView(slot)}});
  }
  return {{"total", total.size},
          {"detail", Joined({total.slots, total.room})},
          {"slots", std::move(slots)},
          {"arrays", TableView("Memory arrays", ListAt(inventory, "memoryArrays"),
                               {ColumnOf("Use", "use"), ColumnOf("Location", "location"),
                                ColumnOf("Slots", "slots", Plain, true),
                                ColumnOf("Room", "maxCapacityKiB", InKiB, true),
                                ColumnOf("Error correction", "errorCorrection")})}};
}

}  // namespace mira::client
