#include <algorithm>
#include <cctype>
#include <iterator>
#include <optional>
#include <string_view>

#include "buffers/battery_data.h"
#include "buffers/received_data.h"
#include "console/changes.h"
#include "console/commands.h"
#include "console/passwords.h"

namespace mira::console {
namespace {

constexpr std::uint16_t kClass = 8;
constexpr std::uint16_t kRead = 18;
constexpr std::uint16_t kWrite = 19;

constexpr CodeMeaning kReadMeanings[] = {
    {-1, kNotFound, "no-battery", "The firmware knows no such battery.",
     "They are counted from 1, as 'mira smbios --type 22' lists them."},
};
constexpr CodeMeaning kWriteMeanings[] = {
    {-1, kRefused, "refused", "The firmware refused the configuration.",
     "Its limits may be narrower, or lie closer together than it allows."},
};

struct Mode {
  std::uint8_t code;
  const char* name;
};
constexpr Mode kModes[] = {
    {1, "standard"}, {2, "express"}, {3, "mains"}, {4, "adaptive"}, {5, "custom"},
};

std::string ModeName(std::uint8_t code) {
  for (const Mode& mode : kModes) {
    if (mode.code == code) return mode.name;
  }
  return "mode " + std::to_string(code);
}

std::string Percent(std::uint8_t value) { return std::to_string(value) + "%"; }

std::string OnOff(bool on) { return on ? "on" : "off"; }

CommandError Invalid(const std::string& text, const std::string& hint) {
  return CommandError(kInvalidValue, "invalid-value", "'" + text + "' is not possible here.", text,
                      hint);
}

std::uint8_t ParseMode(const std::string& text) {
  std::string names;
  for (const Mode& mode : kModes) {
    if (mode.name == text) return mode.code;
    names += (names.empty() ? "" : ", ") + std::string(mode.name);
  }
  throw Invalid(text, "The charging modes are: " + names + ".");
}

std::uint8_t ParsePercent(const std::string& text) {
  constexpr std::uint32_t kWhole = 100;
  return static_cast<std::uint8_t>(ParseNumber(text, "percentage", kWhole));
}

constexpr char kDayHint[] = "A schedule is DAY=off or DAY=08:00-17:30, in quarter hours.";
constexpr char kPeakDayHint[] =
    "A schedule is DAY=off, DAY=08:00-17:30 or DAY=08:00-17:30,21:00, in quarter hours.";

// A time in quarter hours.
std::optional<std::uint8_t> ParseTime(std::string_view text) {
  constexpr std::uint8_t kLast = 96;
  for (std::uint8_t quarter = 0; quarter <= kLast; ++quarter) {
    if (battery::TimeText(quarter) == text) return quarter;
  }
  return std::nullopt;
}

// A day's word; nothing for a text that is none.
std::optional<std::uint32_t> ParseTimes(std::string_view text, bool has_charge_time) {
  if (text == "off") return 0;
  battery::DayTimes times;
  if (const std::size_t comma = text.find(','); comma != std::string_view::npos) {
    const auto charge_from = ParseTime(text.substr(comma + 1));
    if (!has_charge_time || !charge_from) return std::nullopt;
    times.charge_from = *charge_from;
    text = text.substr(0, comma);
  }
  const std::size_t dash = text.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto begin = ParseTime(text.substr(0, dash));
  const auto end = ParseTime(text.substr(dash + 1));
  if (!begin || !end || *begin >= *end) return std::nullopt;
  times.begin = *begin;
  times.end = *end;
  return battery::PackDay(times);
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  });
  return text;
}

using Days = std::array<std::uint32_t, 7>;

// Puts "DAY=TIMES" into the schedule.
void SetDay(Days& days, const std::string& text, bool has_charge_time) {
  constexpr std::size_t kShort = 3;
  const char* const hint = has_charge_time ? kPeakDayHint : kDayHint;
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) throw Invalid(text, hint);
  const std::string day = Lower(text.substr(0, equals));
  const auto word = ParseTimes(std::string_view(text).substr(equals + 1), has_charge_time);
  if (!word) throw Invalid(text, hint);
  bool found = false;
  for (std::size_t i = 0; i < days.size(); ++i) {
    const std::string name = Lower(battery::kDays[i]);
    if (day != "all" && day != name && day != name.substr(0, kShort)) continue;
    days[i] = *word;
    found = true;
  }
  if (!found) throw Invalid(text, hint);
}

// The configuration of one battery.
class BatteryConfig {
 public:
  BatteryConfig(Context& context, const std::string& number)
      : mira_(context.Ready()), target_("battery " + number) {
    constexpr std::uint32_t kLargest = 0xFF;
    charging.BatteryNumber = peak_shift.BatteryNumber =
        static_cast<std::uint16_t>(ParseNumber(number, "battery number", kLargest));
    charging.Command = BATTERY_GET_ADVANCED;
    peak_shift.Command = BATTERY_GET_PEAK_SHIFT;
    Call(kRead, charging, kReadMeanings);
    Call(kRead, peak_shift, kReadMeanings);
  }

  void WriteCharging() {
    charging.Command = BATTERY_SET_ADVANCED;
    Call(kWrite, charging, kWriteMeanings);
  }
  void WritePeakShift() {
    peak_shift.Command = BATTERY_SET_PEAK_SHIFT;
    Call(kWrite, peak_shift, kWriteMeanings);
  }

  // Empty where the firmware does not tell.
  std::vector<CExtBatteryLife::Entry> Life() const {
    constexpr std::uint16_t kLifeClass = 17;
    constexpr std::uint16_t kLifeSelect = 5;
    CExtBatteryLife life;
    mira_.ExecuteDACI(kLifeClass, kLifeSelect, life, "", PwdInfo::PWD_NONE);
    std::erase_if(life.Entries, [this](const auto& e) { return e.Battery != Number(); });
    return life.Entries;
  }

  std::uint16_t Number() const { return charging.BatteryNumber; }
  const std::string& Target() const { return target_; }

  ADV_BATT_CONFIG charging;
  PEAK_SHIFT_CONFIG peak_shift;

 private:
  void Call(std::uint16_t select, BATTERY_INFO& data, std::span<const CodeMeaning> meanings) {
    const Status status = mira_.ExecuteDACI(kClass, select, data, "", PwdInfo::PWD_NONE);
    ThrowUnlessDone(status, data.Res1, meanings, target_);
  }

  CMiraIntf& mira_;
  std::string target_;
};

Json DaysJson(const Days& days) {
  Json list = Json::array();
  for (std::size_t i = 0; i < days.size(); ++i) {
    Json day = {{"day", battery::kDays[i]}, {"raw", days[i]}, {"text", battery::DayText(days[i])}};
    const auto times = battery::UnpackDay(days[i]);
    if (times && days[i] != 0) {
      day["begin"] = battery::TimeText(times->begin);
      day["end"] = battery::TimeText(times->end);
      if (times->charge_from != 0) day["chargeFrom"] = battery::TimeText(times->charge_from);
    }
    list.push_back(day);
  }
  return list;
}

Json VersionJson(std::uint32_t version) {
  return {{"text", battery::VersionText(version)}, {"raw", version}};
}

void ShowJson(Context& context, const BatteryConfig& b) {
  Json life = Json::array();
  for (const CExtBatteryLife::Entry& e : b.Life()) {
    life.push_back({{"chargeCycles", e.ChargeCycles},
                    {"designCapacity", e.DesignCapacity},
                    {"fullChargeCapacity", e.FullChargeCapacity}});
  }
  context.Print({{"battery", b.Number()},
                 {"charging",
                  {{"version", VersionJson(b.charging.Version)},
                   {"mode", ModeName(b.charging.ChargingMode)},
                   {"modeCode", b.charging.ChargingMode},
                   {"startLimit", b.charging.StartChargingLimit},
                   {"stopLimit", b.charging.StopChargingLimit},
                   {"days", DaysJson(b.charging.DaySchedule)}}},
                 {"peakShift",
                  {{"version", VersionJson(b.peak_shift.Version)},
                   {"enabled", b.peak_shift.Enabled},
                   {"threshold", b.peak_shift.CurrentThreshold},
                   {"lowestThreshold", b.peak_shift.MinimumThreshold},
                   {"highestThreshold", b.peak_shift.MaximumThreshold},
                   {"days", DaysJson(b.peak_shift.DaySchedule)}}},
                 {"life", life}});
}

ExitStatus Show(Context& context, const std::string& number) {
  const BatteryConfig b(context, number);
  if (context.IsJson()) {
    ShowJson(context, b);
    return kDone;
  }
  std::ostream& out = context.Out();
  Rows table = {
      {"Charging mode", ModeName(b.charging.ChargingMode)},
      {"Starts charging at", Percent(b.charging.StartChargingLimit)},
      {"Stops charging at", Percent(b.charging.StopChargingLimit)},
      {"Charging configuration", battery::VersionText(b.charging.Version)},
      {"Peak shift", OnOff(b.peak_shift.Enabled)},
      {"Peak shift threshold", Percent(b.peak_shift.CurrentThreshold) + " (" +
                                   Percent(b.peak_shift.MinimumThreshold) + " to " +
                                   Percent(b.peak_shift.MaximumThreshold) + ")"},
      {"Peak shift configuration", battery::VersionText(b.peak_shift.Version)},
  };
  for (const CExtBatteryLife::Entry& e : b.Life()) {
    table.push_back({"Charge cycles", std::to_string(e.ChargeCycles)});
    table.push_back({"Full charge", std::to_string(e.FullChargeCapacity) + " of " +
                                        std::to_string(e.DesignCapacity) + " mWh"});
  }
  WriteTable(out, table);
  out << '\n';
  Rows days = {{"Day", "Charging", "Raw", "Peak shift", "Raw"}};
  for (std::size_t i = 0; i < b.charging.DaySchedule.size(); ++i) {
    const std::uint32_t charging = b.charging.DaySchedule[i];
    const std::uint32_t peak = b.peak_shift.DaySchedule[i];
    days.push_back({battery::kDays[i], battery::DayText(charging), Hex(charging, 8),
                    battery::DayText(peak), Hex(peak, 8)});
  }
  WriteTable(out, days);
  return kDone;
}

struct Arguments {
  std::string number = "1";
  std::string mode;
  std::string start;
  std::string stop;
  std::vector<std::string> days;
  std::string peak_shift;
  std::string peak_threshold;
  std::vector<std::string> peak_days;
};

void AddDayChanges(Changes& changes, const std::string& what, const Days& before,
                   const Days& after) {
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == after[i]) continue;
    changes.push_back({what + " on " + battery::kDays[i],
                       battery::DayText(before[i]) + " (" + Hex(before[i], 8) + ")",
                       battery::DayText(after[i]) + " (" + Hex(after[i], 8) + ")"});
  }
}

// Puts what was asked for into the configuration and gives the differences.
Changes SetCharging(ADV_BATT_CONFIG& config, const Arguments& a) {
  const ADV_BATT_CONFIG before = config;
  if (!a.mode.empty()) config.ChargingMode = ParseMode(a.mode);
  if (!a.start.empty()) config.StartChargingLimit = ParsePercent(a.start);
  if (!a.stop.empty()) config.StopChargingLimit = ParsePercent(a.stop);
  for (const std::string& day : a.days) SetDay(config.DaySchedule, day, false);
  const bool sets_limits = !a.start.empty() || !a.stop.empty();
  if (sets_limits && config.StartChargingLimit >= config.StopChargingLimit) {
    throw Invalid(Percent(config.StartChargingLimit) + " to " + Percent(config.StopChargingLimit),
                  "Charging must stop above the limit at which it starts.");
  }
  Changes changes;
  if (before.ChargingMode != config.ChargingMode) {
    changes.push_back(
        {"charging mode", ModeName(before.ChargingMode), ModeName(config.ChargingMode)});
  }
  if (before.StartChargingLimit != config.StartChargingLimit) {
    changes.push_back(
        {"start limit", Percent(before.StartChargingLimit), Percent(config.StartChargingLimit)});
  }
  if (before.StopChargingLimit != config.StopChargingLimit) {
    changes.push_back(
        {"stop limit", Percent(before.StopChargingLimit), Percent(config.StopChargingLimit)});
  }
  AddDayChanges(changes, "charging", before.DaySchedule, config.DaySchedule);
  return changes;
}

Changes SetPeakShift(PEAK_SHIFT_CONFIG& config, const Arguments& a) {
  const PEAK_SHIFT_CONFIG before = config;
  if (!a.peak_shift.empty()) config.Enabled = a.peak_shift == "on";
  if (!a.peak_threshold.empty()) {
    config.CurrentThreshold = ParsePercent(a.peak_threshold);
    if (config.CurrentThreshold < config.MinimumThreshold ||
        config.CurrentThreshold > config.MaximumThreshold) {
      throw Invalid(a.peak_threshold, "The threshold lies between " +
                                          Percent(config.MinimumThreshold) + " and " +
                                          Percent(config.MaximumThreshold) + ".");
    }
  }
  for (const std::string& day : a.peak_days) SetDay(config.DaySchedule, day, true);
  Changes changes;
  if (before.Enabled != config.Enabled) {
    changes.push_back({"peak shift", OnOff(before.Enabled), OnOff(config.Enabled)});
  }
  if (before.CurrentThreshold != config.CurrentThreshold) {
    changes.push_back({"peak shift threshold", Percent(before.CurrentThreshold),
                       Percent(config.CurrentThreshold)});
  }
  AddDayChanges(changes, "peak shift", before.DaySchedule, config.DaySchedule);
  return changes;
}

ExitStatus Set(Context& context, const Arguments& a) {
  if (a.mode.empty() && a.start.empty() && a.stop.empty() && a.days.empty() &&
      a.peak_shift.empty() && a.peak_threshold.empty() && a.peak_days.empty()) {
    throw CommandError(kUsage, "usage", "Nothing to set was given.", "battery",
                       "'mira battery set --help' shows what there is.");
  }
  BatteryConfig b(context, a.number);
  const Changes charging = SetCharging(b.charging, a);
  const Changes peak_shift = SetPeakShift(b.peak_shift, a);
  Changes all = charging;
  all.insert(all.end(), peak_shift.begin(), peak_shift.end());
  return MakeChanges(context, all, {{"battery", b.Number()}}, [&] {
    if (!charging.empty()) b.WriteCharging();
    if (peak_shift.empty()) return;
    try {
      b.WritePeakShift();
    } catch (const CommandError& error) {
      if (charging.empty()) throw;
      throw CommandError(kAppliedInPart, "applied-in-part",
                         std::string("Charging was set, peak shift was not: ") + error.what(),
                         b.Target(), error.hint);
    }
  });
}

void AddNumber(CLI::App& app, std::string& number) {
  app.add_option("--battery", number, "which battery, counted from 1 (the default)");
}

}  // namespace

void AddBattery(CLI::App& app, Command& command) {
  app.require_subcommand(1);
  app.footer(
      "Examples:\n  mira battery show\n"
      "  mira battery set --mode custom --start 60 --stop 85 --what-if");

  auto arguments = std::make_shared<Arguments>();
  CLI::App& show = *app.add_subcommand("show", "Show a battery's configuration and its age");
  AddNumber(show, arguments->number);
  show.footer("Example:\n  mira --sim battery show --battery 1 --json");
  command.Run(show, [arguments](Context& c) { return Show(c, arguments->number); });

  arguments = std::make_shared<Arguments>();
  CLI::App& set = *app.add_subcommand("set", "Set how a battery is charged");
  AddNumber(set, arguments->number);
  set.add_option("--mode", arguments->mode, "standard, express, mains, adaptive or custom");
  set.add_option("--start", arguments->start, "percent below which it is charged");
  set.add_option("--stop", arguments->stop, "percent at which charging stops");
  set.add_option("--day", arguments->days, "a day's schedule; may be repeated")
      ->allow_extra_args(false);
  set.add_option("--peak-shift", arguments->peak_shift, "on or off")
      ->check(CLI::IsMember({"on", "off"}));
  set.add_option("--peak-threshold", arguments->peak_threshold,
                 "percent down to which the battery serves in peak hours");
  set.add_option("--peak-day", arguments->peak_days, "a day's peak hours; may be repeated")
      ->allow_extra_args(false);
  set.footer(
      "A day's schedule is DAY=off or DAY=08:00-17:30, in quarter hours; DAY is the day's name, "
      "its\n"
      "first three letters, or 'all'. Peak hours may add the time from which the battery may "
      "charge\n"
      "again: DAY=08:00-17:30,21:00.\n"
      "Example:\n  mira --sim battery set --peak-shift on --peak-day "
      "mon=08:00-17:30,21:00 --day all=off --yes");
  command.Run(set, [arguments](Context& c) { return Set(c, *arguments); });
}

}  // namespace mira::console
