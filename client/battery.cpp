#include "client/battery.h"

#include <algorithm>
#include <iterator>

#include "buffers/battery_data.h"
#include "buffers/received_data.h"
#include "bytes/text.h"
#include "client/call.h"
#include "client/snapshot/snapshot.h"
#include "smbios/bios_object.h"

namespace mira::client {
namespace {

constexpr callif::Command kRead = {8, 18};
constexpr callif::Command kReadLife = {17, 5};
constexpr std::uint16_t kHighestNumber = 0xFF;

struct Mode {
  std::uint8_t code;
  const char* name;
};
constexpr Mode kModes[] = {
    {1, "standard"}, {2, "express"}, {3, "mains"}, {4, "adaptive"}, {5, "custom"},
};

Error NoBattery(std::uint16_t number, std::size_t listed) {
  if (listed == 0) {
    return Error(kNotFound, "no-batteries", "This machine has no batteries.", "battery")
        .With("listed", listed);
  }
  return Error(kNotFound, "no-battery",
               "The firmware does not know this battery; the machine lists " +
                   std::to_string(listed) + ".",
               BatteryName(number))
      .With("listed", listed);
}

// The batteries of a snapshot.
std::vector<Battery> KeptBatteries(const Snapshot& kept) {
  return kept.List(kBatteriesSubject, "batteries", BatteryFromJson);
}

Battery KeptBattery(const Snapshot& kept, std::uint16_t number) {
  const std::vector<Battery> batteries = KeptBatteries(kept);
  const auto found = std::find_if(batteries.begin(), batteries.end(),
                                  [number](const Battery& b) { return b.number == number; });
  if (found == batteries.end()) throw NoBattery(number, batteries.size());
  if (!found->charging && !found->peak_shift && found->charging_problem) {
    throw *found->charging_problem;
  }
  return *found;
}

std::size_t ListedBatteries(Session& session) {
  constexpr unsigned char kPortableBattery = 22;
  std::size_t count = 0;
  for (const CBIOSObject* battery = session.Ready().GetBIOSObject(kPortableBattery);
       battery != nullptr; battery = battery->getNextObj()) {
    ++count;
  }
  return count;
}

// Empty where the firmware does not say. Throws Error where it was not heard.
std::vector<BatteryLife> ReadLife(Session& session, std::uint16_t number) {
  CExtBatteryLife data;
  try {
    Execute(session, kReadLife, data, {.target = BatteryName(number)});
  } catch (const Error& error) {
    if (error.status == kTransportFailed || error.status == kUnexpected) throw;
    return {};
  }
  std::vector<BatteryLife> life;
  for (const CExtBatteryLife::Entry& entry : data.Entries) {
    if (entry.Battery != number) continue;
    life.push_back({entry.ChargeCycles, entry.DesignCapacity, entry.FullChargeCapacity});
  }
  return life;
}

Json VersionJson(std::uint32_t version) {
  return {{"text", battery::VersionText(version)}, {"raw", version}};
}

Json DaysJson(const BatteryDays& days) {
  Json list = Json::array();
  for (std::size_t day = 0; day < days.size(); ++day) list.push_back(DayJson(day, days[day]));
  return list;
}

BatteryDays DaysOf(const Json& schedule) {
  const Json& list = schedule.at("days");
  BatteryDays days{};
  for (std::size_t day = 0; day < days.size(); ++day) days[day] = list.at(day).at("raw");
  return days;
}

Json LifeJson(const BatteryLife& life) {
  constexpr std::uint64_t kWhole = 100;
  Json json = {{"chargeCycles", life.charge_cycles},
               {"designCapacityMilliwattHours", life.design_capacity},
               {"fullChargeCapacityMilliwattHours", life.full_charge_capacity}};
  json["healthPercent"] = life.design_capacity == 0
                              ? Json()
                              : Json(life.full_charge_capacity * kWhole / life.design_capacity);
  json["assumedLayout"] = true;
  return json;
}

}  // namespace

std::string BatteryName(std::uint16_t number) { return "battery " + std::to_string(number); }

std::string BatteryModeName(std::uint8_t code) {
  const auto* const mode = std::find_if(std::begin(kModes), std::end(kModes),
                                        [code](const Mode& m) { return m.code == code; });
  return mode != std::end(kModes) ? mode->name : "mode " + std::to_string(code);
}

std::uint8_t ParseBatteryMode(const std::string& name) {
  std::string names;
  Json choices = Json::array();
  for (const Mode& mode : kModes) {
    if (bytes::SameText(mode.name, name)) return mode.code;
    names += (names.empty() ? "" : ", ") + std::string(mode.name);
    choices.push_back(mode.name);
  }
  throw Error(kInvalidValue, "unknown-mode",
              "'" + name + "' is not a charging mode. The modes are: " + names + ".", name)
      .With("choices", std::move(choices));
}

std::vector<std::uint16_t> FindBatteries(Session& session, const std::string& text) {
  if (!bytes::SameText(text, "all")) {
    const auto number = bytes::ParseNumber(text, kHighestNumber);
    if (number) return {static_cast<std::uint16_t>(*number)};
    throw Error(kUsage, "bad-argument",
                "'" + text + "' is not a battery number: give one from 0 to 255, or 'all'.",
                "battery")
        .With("argument", "battery");
  }
  std::vector<std::uint16_t> numbers;
  if (const Snapshot* const kept = session.Kept()) {
    for (const Battery& battery : KeptBatteries(*kept)) numbers.push_back(battery.number);
    return numbers;
  }
  const std::size_t count = std::clamp<std::size_t>(ListedBatteries(session), 1, kHighestNumber);
  for (std::size_t i = 1; i <= count; ++i) numbers.push_back(static_cast<std::uint16_t>(i));
  return numbers;
}

BatteryCharging ReadCharging(Session& session, std::uint16_t number) {
  ADV_BATT_CONFIG data;
  data.Command = BATTERY_GET_ADVANCED;
  data.BatteryNumber = number;
  Execute(session, kRead, data, {.target = BatteryName(number)});
  return {data.Version, data.ChargingMode, data.StartChargingLimit, data.StopChargingLimit,
          data.DaySchedule};
}

BatteryPeakShift ReadPeakShift(Session& session, std::uint16_t number) {
  PEAK_SHIFT_CONFIG data;
  data.Command = BATTERY_GET_PEAK_SHIFT;
  data.BatteryNumber = number;
  Execute(session, kRead, data, {.target = BatteryName(number)});
  return {data.Version,          data.Enabled,          data.CurrentThreshold,
          data.MinimumThreshold, data.MaximumThreshold, data.DaySchedule};
}

Battery ReadBattery(Session& session, std::uint16_t number) {
  constexpr std::int32_t kUnknownBattery = -1;
  if (const Snapshot* const kept = session.Kept()) return KeptBattery(*kept, number);
  session.Ready();
  Battery battery;
  battery.number = number;
  try {
    battery.charging = ReadCharging(session, number);
  } catch (const Error& error) {
    battery.charging_problem = error;
  }
  try {
    battery.peak_shift = ReadPeakShift(session, number);
  } catch (const Error& error) {
    battery.peak_shift_problem = error;
  }
  if (battery.charging || battery.peak_shift) {
    try {
      battery.life = ReadLife(session, number);
    } catch (const Error& error) {
      battery.life_problem = error;
    }
    return battery;
  }
  const Error& problem = *battery.charging_problem;
  const std::size_t listed = ListedBatteries(session);
  if (problem.completion != kUnknownBattery || (number >= 1 && number <= listed)) throw problem;
  Error unknown = NoBattery(number, listed);
  unknown.completion = problem.completion;
  throw unknown;
}

Json ToJson(const BatteryCharging& charging) {
  return {{"version", VersionJson(charging.version)},
          {"mode", BatteryModeName(charging.mode)},
          {"modeCode", charging.mode},
          {"startLimitPercent", charging.start_limit},
          {"stopLimitPercent", charging.stop_limit},
          {"days", DaysJson(charging.days)}};
}

Json ToJson(const BatteryPeakShift& peak_shift) {
  return {{"version", VersionJson(peak_shift.version)},
          {"enabled", peak_shift.enabled},
          {"thresholdPercent", peak_shift.threshold},
          {"lowestThresholdPercent", peak_shift.lowest_threshold},
          {"highestThresholdPercent", peak_shift.highest_threshold},
          {"days", DaysJson(peak_shift.days)}};
}

Json ToJson(const Battery& battery) {
  Json json = {{"battery", battery.number}};
  json["charging"] = battery.charging ? ToJson(*battery.charging) : Json();
  if (battery.charging_problem) json["chargingProblem"] = ToJson(*battery.charging_problem);
  json["peakShift"] = battery.peak_shift ? ToJson(*battery.peak_shift) : Json();
  if (battery.peak_shift_problem) json["peakShiftProblem"] = ToJson(*battery.peak_shift_problem);
  Json life = Json::array();
  for (const BatteryLife& entry : battery.life) life.push_back(LifeJson(entry));
  json["life"] = std::move(life);
  if (battery.life_problem) json["lifeProblem"] = ToJson(*battery.life_problem);
  return json;
}

Battery BatteryFromJson(const Json& json) {
  Battery battery;
  battery.number = json.at("battery");
  if (const Json& charging = json.at("charging"); !charging.is_null()) {
    battery.charging = BatteryCharging{charging.at("version").at("raw"), charging.at("modeCode"),
                                       charging.at("startLimitPercent"),
                                       charging.at("stopLimitPercent"), DaysOf(charging)};
  }
  if (const Json& peak = json.at("peakShift"); !peak.is_null()) {
    battery.peak_shift =
        BatteryPeakShift{peak.at("version").at("raw"),       peak.at("enabled"),
                         peak.at("thresholdPercent"),        peak.at("lowestThresholdPercent"),
                         peak.at("highestThresholdPercent"), DaysOf(peak)};
  }
  if (json.contains("chargingProblem")) {
    battery.charging_problem = ErrorFromJson(json["chargingProblem"]);
  }
  if (json.contains("peakShiftProblem")) {
    battery.peak_shift_problem = ErrorFromJson(json["peakShiftProblem"]);
  }
  if (json.contains("lifeProblem")) battery.life_problem = ErrorFromJson(json["lifeProblem"]);
  for (const Json& life : json.at("life")) {
    battery.life.push_back({life.at("chargeCycles"), life.at("designCapacityMilliwattHours"),
                            life.at("fullChargeCapacityMilliwattHours")});
  }
  return battery;
}

}  // namespace mira::client
