#include <algorithm>
#include <utility>

#include "buffers/battery_data.h"
#include "client/battery.h"
#include "client/call.h"

namespace mira::client {
namespace {

constexpr callif::Command kWrite = {8, 19};
constexpr char kAssumption[] =
    "The codes of charging modes and the layout of a day's word are in no standard: they are this "
    "program's reading, and this machine's firmware may read them otherwise.";

constexpr CodeMeaning kBatteryMeanings[] = {
    {-1, kRefused, "configuration-refused", "The firmware refused the configuration."},
};

std::string Percent(unsigned value) { return std::to_string(value) + "%"; }

void Write(Session& session, std::uint16_t number, const BatteryCharging& charging) {
  ADV_BATT_CONFIG data;
  data.Command = BATTERY_SET_ADVANCED;
  data.BatteryNumber = number;
  data.Version = charging.version;
  data.ChargingMode = charging.mode;
  data.StartChargingLimit = charging.start_limit;
  data.StopChargingLimit = charging.stop_limit;
  data.DaySchedule = charging.days;
  Execute(session, kWrite, data, {.target = BatteryName(number), .meanings = kBatteryMeanings});
}

void Write(Session& session, std::uint16_t number, const BatteryPeakShift& peak_shift) {
  PEAK_SHIFT_CONFIG data;
  data.Command = BATTERY_SET_PEAK_SHIFT;
  data.BatteryNumber = number;
  data.Version = peak_shift.version;
  data.Enabled = peak_shift.enabled;
  data.CurrentThreshold = peak_shift.threshold;
  data.MinimumThreshold = peak_shift.lowest_threshold;
  data.MaximumThreshold = peak_shift.highest_threshold;
  data.DaySchedule = peak_shift.days;
  Execute(session, kWrite, data, {.target = BatteryName(number), .meanings = kBatteryMeanings});
}

void Edit(const DayEdits& edits, BatteryDays& days) {
  for (const auto& [day, word] : edits.words) days[day] = word;
}

void Edit(const BatteryEdit& edit, BatteryCharging& charging) {
  charging.mode = edit.mode.value_or(charging.mode);
  charging.start_limit = edit.start_limit.value_or(charging.start_limit);
  charging.stop_limit = edit.stop_limit.value_or(charging.stop_limit);
  Edit(edit.days, charging.days);
}

void Edit(const BatteryEdit& edit, BatteryPeakShift& peak_shift) {
  peak_shift.enabled = edit.peak_shift.value_or(peak_shift.enabled);
  peak_shift.threshold = edit.peak_threshold.value_or(peak_shift.threshold);
  Edit(edit.peak_days, peak_shift.days);
}

// What is set of a configuration: names and values, in the order in which they are shown.
using Values = std::vector<std::pair<std::string, Json>>;

void AddDays(const char* what, const DayEdits& edits, const BatteryDays& days, Values& values) {
  for (const auto& [day, word] : edits.words) {
    values.emplace_back(std::string(what) + " on " + battery::kDays[day], DayJson(day, days[day]));
  }
}

Values ValuesOf(const BatteryEdit& edit, const BatteryCharging& charging) {
  Values values;
  if (edit.mode) values.emplace_back("charging mode", BatteryModeName(charging.mode));
  if (edit.start_limit) values.emplace_back("start limit percent", charging.start_limit);
  if (edit.stop_limit) values.emplace_back("stop limit percent", charging.stop_limit);
  AddDays("charging", edit.days, charging.days, values);
  return values;
}

Values ValuesOf(const BatteryEdit& edit, const BatteryPeakShift& peak_shift) {
  Values values;
  if (edit.peak_shift) values.emplace_back("peak shift", peak_shift.enabled);
  if (edit.peak_threshold) {
    values.emplace_back("peak shift threshold percent", peak_shift.threshold);
  }
  AddDays("peak shift", edit.peak_days, peak_shift.days, values);
  return values;
}

void Check(const BatteryEdit& edit, const BatteryCharging& charging, bool whole,
           const std::string& target) {
  constexpr char kCustom[] = "custom";
  // Of a whole configuration the firmware judges: in other modes the limits may be any.
  if (whole || (!edit.start_limit && !edit.stop_limit)) return;
  const std::string mode = BatteryModeName(charging.mode);
  if (mode != kCustom) {
    throw Error(kInvalidValue, "limits-not-in-use",
                "The limits count in the mode 'custom' alone; the mode is '" + mode + "'.", target)
        .With("mode", mode);
  }
  if (charging.start_limit < charging.stop_limit) return;
  throw Error(kInvalidValue, "bad-limits",
              Percent(charging.start_limit) + " to " + Percent(charging.stop_limit) +
                  " is not possible: charging must stop above the limit at which it starts.",
              target);
}

void Check(const BatteryEdit& edit, const BatteryPeakShift& peak_shift, bool,
           const std::string& target) {
  const bool is_within = peak_shift.threshold >= peak_shift.lowest_threshold &&
                         peak_shift.threshold <= peak_shift.highest_threshold;
  if (!edit.peak_threshold || is_within) return;
  throw Error(kInvalidValue, "bad-threshold",
              Percent(peak_shift.threshold) + " is not possible: the threshold lies between " +
                  Percent(peak_shift.lowest_threshold) + " and " +
                  Percent(peak_shift.highest_threshold) + ".",
              target)
      .With("lowestPercent", peak_shift.lowest_threshold)
      .With("highestPercent", peak_shift.highest_threshold);
}

template <typename Config>
Step StepFor(Session& session, Config (*read)(Session&, std::uint16_t), std::uint16_t number,
             const BatteryEdit& edit, bool whole) {
  const std::string target = BatteryName(number);
  const Config before = read(session, number);
  Config after = before;
  Edit(edit, after);
  Check(edit, after, whole, target);
  Step step;
  const Values old_values = ValuesOf(edit, before);
  const Values new_values = ValuesOf(edit, after);
  for (std::size_t i = 0; i < old_values.size(); ++i) {
    step.changes.push_back({.target = target + " " + old_values[i].first,
                            .before = old_values[i].second,
                            .after = new_values[i].second});
  }
  step.read = [read, number, edit](Session& s) {
    std::vector<Json> values;
    for (auto& [name, value] : ValuesOf(edit, read(s, number))) values.push_back(std::move(value));
    return values;
  };
  // A write sends the whole record, so what was not asked for goes as it is now.
  step.write = [read, number, edit](Session& s, const Key&) {
    Config config = read(s, number);
    Edit(edit, config);
    Write(s, number, config);
  };
  return step;
}

}  // namespace

void PlanBattery(Session& session, std::uint16_t number, const BatteryEdit& edit, bool whole,
                 Plan& plan) {
  plan.needs_key = false;
  // So that a battery that is not there is called so.
  const Battery battery = ReadBattery(session, number);
  if (edit.SetsCharging()) {
    if (!battery.charging) throw Error(*battery.charging_problem);
    plan.steps.push_back(StepFor(session, ReadCharging, number, edit, whole));
  }
  if (edit.SetsPeakShift()) {
    if (!battery.peak_shift) throw Error(*battery.peak_shift_problem);
    plan.steps.push_back(StepFor(session, ReadPeakShift, number, edit, whole));
  }
  const bool lays_out = edit.lays_out_mode || edit.days.lays_out || edit.peak_days.lays_out;
  if (lays_out && !session.IsSimulated()) plan.subject["assumption"] = kAssumption;
}

}  // namespace mira::client
