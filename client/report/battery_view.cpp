#include <algorithm>
#include <cstdint>
#include <optional>

#include "bytes/text.h"
#include "client/report/view.h"

namespace mira::client {
namespace {

constexpr std::uint64_t kMinutesInHour = 60;
constexpr std::uint64_t kMinutesInDay = 24 * kMinutesInHour;

// The minute of the day that "17:30" is.
std::optional<std::uint64_t> MinuteOf(const Json& time) {
  const std::string text = Plain(time);
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) return std::nullopt;
  const auto hour = bytes::ParseDigits(text.substr(0, colon), 10, 24);
  const auto minute = bytes::ParseDigits(text.substr(colon + 1), 10, 59);
  if (!hour || !minute) return std::nullopt;
  const std::uint64_t minutes = *hour * kMinutesInHour + *minute;
  return minutes <= kMinutesInDay ? std::optional(minutes) : std::nullopt;
}

// A day's bars in minutes. Hours that end before they begin go over midnight.
Json BarsOf(const Json& day) {
  const auto begin = MinuteOf(At(day, "begin"));
  const auto end = MinuteOf(At(day, "end"));
  Json bars = Json::array();
  if (!begin || !end) return bars;
  const auto add = [&bars](std::uint64_t from, std::uint64_t to) {
    if (from < to) bars.push_back({{"from", from}, {"width", to - from}});
  };
  if (*begin <= *end) {
    add(*begin, *end);
  } else {
    add(0, *end);
    add(*begin, kMinutesInDay);
  }
  return bars;
}

Json DayView(const Json& day) {
  const auto raw = ToNumber(At(day, "raw"));
  const auto charge = MinuteOf(At(day, "chargeFrom"));
  return {{"day", PlainAt(day, "day")},
          {"text", PlainAt(day, "text")},
          {"raw", raw ? "0x" + bytes::HexNumber(*raw, 8) : ""},
          {"isOff", At(day, "text") == "off"},
          {"bars", BarsOf(day)},
          {"charge", charge ? Json(*charge) : Json()}};
}

Json WeekView(const Json& part, const char* title, const char* kind, const char* legend) {
  Json days = Json::array();
  for (const Json& day : ListAt(part, "days")) days.push_back(DayView(day));
  if (days.empty()) return nullptr;
  const bool is_idle =
      std::all_of(days.begin(), days.end(), [](auto& day) { return IsTrueAt(day, "isOff"); });
  return {{"title", title},
          {"isIdle", is_idle},
          {"kind", kind},
          {"legend", legend},
          {"days", std::move(days)}};
}

// A scale from 0 to 100 with a part of it filled.
Json GaugeView(std::string label, std::string text, const Json& from, const Json& to) {
  constexpr std::uint64_t kWhole = 100;
  Json view = {{"label", std::move(label)}, {"text", std::move(text)}};
  const auto low = ToNumber(from);
  const auto high = ToNumber(to);
  if (low && high && *low <= *high && *high <= kWhole) {
    view["bar"] = {{"from", *low}, {"width", *high - *low}};
  }
  return view;
}

Json GaugesView(const Json& charging, const Json& peak_shift, const Json& life) {
  Json gauges = Json::array();
  if (charging.is_object()) {
    const Json& start = At(charging, "startLimitPercent");
    const Json& stop = At(charging, "stopLimitPercent");
    gauges.push_back(
        GaugeView("Charges", "from " + InPercent(start) + " to " + InPercent(stop), start, stop));
  }
  if (peak_shift.is_object()) {
    const Json& threshold = At(peak_shift, "thresholdPercent");
    gauges.push_back(GaugeView("Peak shift uses it down to", InPercent(threshold), threshold, 100));
  }
  for (const Json& answer : life) {
    const Json& health = At(answer, "healthPercent");
    const std::string full =
        Joined({Shown(answer, {"", "fullChargeCapacityMilliwattHours", InMilliwattHours}),
                Shown(answer, {"", "designCapacityMilliwattHours", InMilliwattHours})},
               " of ");
    const std::string percent = health.is_null() ? "" : InPercent(health);
    gauges.push_back(GaugeView("Health", Joined({percent, full}), 0, health));
  }
  return gauges;
}

Json BatteryView(const Json& battery) {
  const Json& charging = At(battery, "charging");
  const Json& peak_shift = At(battery, "peakShift");
  const Json& life = ListAt(battery, "life");
  Json fields = Json::array();
  const auto add = [&fields](const char* label, const std::string& value) {
    if (!value.empty()) fields.push_back({{"label", label}, {"value", value}});
  };
  add("Charging mode", PlainAt(charging, "mode"));
  if (peak_shift.is_object()) {
    add("Peak shift", IsTrueAt(peak_shift, "enabled") ? "on" : "off");
  }
  bool is_assumed = false;
  for (const Json& answer : life) {
    add("Charge cycles", PlainAt(answer, "chargeCycles"));
    is_assumed = is_assumed || IsTrueAt(answer, "assumedLayout");
  }
  Json problems = Json::array();
  for (const char* const name : {"chargingProblem", "peakShiftProblem", "lifeProblem"}) {
    const std::string message = PlainAt(At(battery, name), "message");
    if (!message.empty()) problems.push_back(message);
  }
  Json weeks = Json::array();
  for (Json week : {WeekView(charging, "Charging by the hours of work", "work", "hours of work"),
                    WeekView(peak_shift, "Peak shift", "peak", "on battery")}) {
    if (!week.is_null()) weeks.push_back(std::move(week));
  }
  return {{"title", "Battery " + PlainAt(battery, "battery")},
          {"fields", std::move(fields)},
          {"gauges", GaugesView(charging, peak_shift, life)},
          {"isAssumed", is_assumed},
          {"weeks", std::move(weeks)},
          {"problems", std::move(problems)}};
}

}  // namespace

Json BatteriesView(const Json& batteries) {
  Json list = Json::array();
  for (const Json& battery : ListAt(batteries, "batteries")) list.push_back(BatteryView(battery));
  if (list.empty()) return nullptr;
  return {{"batteries", std::move(list)}};
}

}  // namespace mira::client
