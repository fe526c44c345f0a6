#include "client/legacy_boot.h"

#include "buffers/legacy_bbs_data.h"
#include "client/boot.h"
#include "client/call.h"
#include "client/commands.h"
#include "client/order.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {
namespace {

constexpr callif::Command kReadSizes = {3, 2};
constexpr callif::Command kReadPriorities = {3, 3};
constexpr callif::Command kWritePriorities = {3, 5};
constexpr std::uint32_t kKeyArgument = 3;
constexpr std::uint16_t kHighestPlace = 0xFF;
constexpr char kTarget[] = "legacy boot priorities";

constexpr CodeMeaning kLegacyMeanings[] = {
    {-1, kRefused, "order-refused",
     "The firmware refused the order. It takes every device exactly once."},
};

using Priorities = std::vector<std::uint8_t>;

// One of the two orders.
struct PriorityKind {
  const char* argument;
  const char* target;
  Priorities LegacyBoot::*priorities;
};
constexpr PriorityKind kKinds[] = {
    {"ipl", "IPL priority", &LegacyBoot::ipl},
    {"bcv", "BCV priority", &LegacyBoot::bcv},
};

Orderables DevicesOf(const LegacyBoot& boot, const PriorityKind& kind) {
  Orderables all{.things = {}, .what = "device", .highest = kHighestPlace};
  for (const std::uint8_t place : boot.*kind.priorities) {
    const bool is_listed = place < boot.devices.size();
    all.things.push_back(
        {place, is_listed ? BootDeviceName(boot.devices[place].type) : "unlisted"});
  }
  return all;
}

std::vector<Json> ValuesOf(const LegacyBoot& boot) {
  std::vector<Json> values;
  for (const PriorityKind& kind : kKinds) values.emplace_back(boot.*kind.priorities);
  return values;
}

void Write(Session& session, const LegacyBoot& boot, const Key& key) {
  CLegacyBBSIPLPriority data;
  data.IPLPriority = boot.ipl;
  data.BCVPriority = boot.bcv;
  data.Count = static_cast<std::uint32_t>(boot.ipl.size());
  data.KeyArgIndex = kKeyArgument;
  Execute(session, kWritePriorities, data,
          {.target = kTarget, .meanings = kLegacyMeanings, .key = &key});
}

Json ShowLegacyBoot(Request& request) { return ToJson(ReadLegacyBoot(request.GetSession())); }

Json SetLegacyBoot(Request& request) {
  if (!request.Has("ipl") && !request.Has("bcv")) {
    throw Error(kUsage, "nothing-to-set", "Nothing to set was given.", kTarget);
  }
  Plan plan = PlanLegacyBoot(request.GetSession(), request.Texts("ipl"), request.Texts("bcv"),
                             request.Flag("force"));
  return request.Carry(plan);
}

}  // namespace

LegacyBoot ReadLegacyBoot(Session& session) {
  if (const Snapshot* const kept = session.Kept()) {
    return LegacyBootFromJson(kept->Value(kLegacyBootSubject));
  }
  CSimpleTokenData sizes;
  Execute(session, kReadSizes, sizes, {.target = kTarget});
  CLegacyBBSIPLPriority data;
  data.MaxDevices = data.Count = sizes.Res2;
  data.EntryLength = sizes.Res3;
  Execute(session, kReadPriorities, data, {.target = kTarget});
  LegacyBoot boot{{}, data.IPLPriority, data.BCVPriority};
  for (const CLegacyBBSIPLPriority::DeviceEntry& entry : data.DeviceTable) {
    boot.devices.push_back({entry.First, entry.Second, entry.Third, entry.Fourth, entry.Fifth});
  }
  return boot;
}

Plan PlanLegacyBoot(Session& session, const std::vector<std::string>& ipl,
                    const std::vector<std::string>& bcv, bool force) {
  const LegacyBoot before = ReadLegacyBoot(session);
  LegacyBoot after = before;
  const std::vector<std::string>* const given[] = {&ipl, &bcv};
  for (std::size_t i = 0; i < std::size(kKinds); ++i) {
    if (given[i]->empty()) continue;
    const PriorityKind& kind = kKinds[i];
    const Orderables all = DevicesOf(before, kind);
    const std::vector<OrderEntry> entries = ParseOrder(*given[i], all);
    if (!force) RequirePermutation(entries, all, kind.target);
    const std::vector<std::uint16_t> places = NumbersOf(entries, all, kind.target);
    (after.*kind.priorities).assign(places.begin(), places.end());
  }
  if (after.ipl.size() != after.bcv.size()) {
    throw Error(kInvalidValue, "lengths-differ", "Both orders must have the same length.", kTarget)
        .With("iplLength", after.ipl.size())
        .With("bcvLength", after.bcv.size());
  }
  Plan plan;
  plan.force = force;
  Step step;
  const std::vector<Json> old_values = ValuesOf(before);
  const std::vector<Json> new_values = ValuesOf(after);
  for (std::size_t i = 0; i < std::size(kKinds); ++i) {
    step.changes.push_back(
        {.target = kKinds[i].target, .before = old_values[i], .after = new_values[i]});
  }
  step.read = [](Session& s) { return ValuesOf(ReadLegacyBoot(s)); };
  step.write = [after](Session& s, const Key& key) { Write(s, after, key); };
  plan.steps.push_back(std::move(step));
  return plan;
}

Json ToJson(const LegacyBoot& boot) {
  Json devices = Json::array();
  for (std::size_t i = 0; i < boot.devices.size(); ++i) {
    const LegacyBootDevice& device = boot.devices[i];
    devices.push_back({{"device", i},
                       {"type", device.type},
                       {"typeName", BootDeviceName(device.type)},
                       {"statusFlags", device.status_flags},
                       {"bootHandler", device.boot_handler},
                       {"descriptionAddress", device.description},
                       {"expansion", device.expansion}});
  }
  return {{"devices", std::move(devices)}, {"iplPriority", boot.ipl}, {"bcvPriority", boot.bcv}};
}

LegacyBoot LegacyBootFromJson(const Json& json) {
  LegacyBoot boot{{}, json.at("iplPriority"), json.at("bcvPriority")};
  for (const Json& device : json.at("devices")) {
    boot.devices.push_back({device.at("type"), device.at("statusFlags"), device.at("bootHandler"),
                            device.at("descriptionAddress"), device.at("expansion")});
  }
  return boot;
}

std::vector<Command> LegacyBootCommands() {
  static constexpr char kOrderHelp[] =
      "all devices with commas between them: places in the table, or names of types";
  return {
      {.name = "boot.legacy.show",
       .summary = "Show the legacy boot priorities",
       .run = ShowLegacyBoot,
       .is_default = true},
      {.name = "boot.legacy.set",
       .summary = "Set the legacy boot priorities",
       .effect = Effect::kChanges,
       .arguments = {{.name = "ipl", .type = Type::kTexts, .help = kOrderHelp},
                     {.name = "bcv", .type = Type::kTexts, .help = kOrderHelp},
                     {.name = "force",
                      .type = Type::kFlag,
                      .help = "send the orders without checking them"},
                     kClass10},
       .secrets = {"password"},
       .run = SetLegacyBoot},
  };
}

}  // namespace mira::client
