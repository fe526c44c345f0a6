#include "console/face.h"

namespace mira::console {
namespace {

using client::Readable;

std::string Percent(const Json& value) { return Readable(value) + "%"; }

void AddCharging(const Json& charging, Rows& rows) {
  rows.push_back({"Charging mode", Readable(charging.at("mode"))});
  rows.push_back({"Starts charging at", Percent(charging.at("startLimitPercent"))});
  rows.push_back({"Stops charging at", Percent(charging.at("stopLimitPercent"))});
  rows.push_back({"Charging configuration", Readable(charging.at("version"))});
}

void AddPeakShift(const Json& peak_shift, Rows& rows) {
  rows.push_back({"Peak shift", peak_shift.at("enabled") == true ? "on" : "off"});
  rows.push_back(
      {"Peak shift threshold", Percent(peak_shift.at("thresholdPercent")) + " (" +
                                   Percent(peak_shift.at("lowestThresholdPercent")) + " to " +
                                   Percent(peak_shift.at("highestThresholdPercent")) + ")"});
  rows.push_back({"Peak shift configuration", Readable(peak_shift.at("version"))});
}

void AddLife(const Json& life, Rows& rows) {
  rows.push_back({"Charge cycles", Readable(life.at("chargeCycles"))});
  std::string full = Readable(life.at("fullChargeCapacityMilliwattHours")) + " of " +
                     Readable(life.at("designCapacityMilliwattHours")) + " mWh";
  if (!life.at("healthPercent").is_null()) full += ", " + Percent(life["healthPercent"]);
  rows.push_back({"Full charge", full + " (if the firmware's answer is laid out as assumed)"});
}

// A part that cannot be read says why.
const Json* Part(const Json& battery, const char* key, const char* heading, Rows& rows) {
  const Json& part = battery.at(key);
  if (!part.is_null()) return &part;
  const auto problem = battery.find(key + std::string("Problem"));
  rows.push_back({heading, problem != battery.end() ? "(" + Readable(problem->at("message")) + ")"
                                                    : "(none)"});
  return nullptr;
}

void WriteDays(const Json* charging, const Json* peak_shift, std::ostream& out) {
  constexpr std::size_t kDays = 7;
  Rows rows = {{"Day"}};
  for (std::size_t i = 0; i < kDays; ++i) rows.push_back({});
  const auto add = [&rows](const char* heading, const Json* part) {
    if (part == nullptr) return;
    rows[0].insert(rows[0].end(), {heading, "Raw"});
    std::size_t row = 1;
    for (const Json& day : part->at("days")) {
      if (rows[row].empty()) rows[row].push_back(Readable(day.at("day")));
      rows[row].push_back(Readable(day.at("text")));
      rows[row].push_back(Hex(day.at("raw").get<unsigned>(), 8));
      ++row;
    }
  };
  add("Charging", charging);
  add("Peak shift", peak_shift);
  if (rows[0].size() > 1) WriteTable(out, rows);
}

void ShowBatteries(const Json& document, std::ostream& out) {
  const char* separator = "";
  for (const Json& battery : document.at("batteries")) {
    out << separator;
    separator = "\n";
    Rows rows = {{"Battery", Readable(battery.at("battery"))}};
    const Json* const charging = Part(battery, "charging", "Charging", rows);
    if (charging != nullptr) AddCharging(*charging, rows);
    const Json* const peak_shift = Part(battery, "peakShift", "Peak shift", rows);
    if (peak_shift != nullptr) AddPeakShift(*peak_shift, rows);
    for (const Json& life : battery.at("life")) AddLife(life, rows);
    if (const auto problem = battery.find("lifeProblem"); problem != battery.end()) {
      rows.push_back({"Life", "(" + Readable(problem->at("message")) + ")"});
    }
    WriteTable(out, rows);
    if (charging == nullptr && peak_shift == nullptr) continue;
    out << '\n';
    WriteDays(charging, peak_shift, out);
  }
}

}  // namespace

std::vector<Face> BatteryFaces() {
  return {
      {"battery.show", "  mira --sim battery show\n  mira --sim battery show --battery all --json",
       ShowBatteries},
      {"battery.set",
       "  mira --sim battery set --mode custom --start 60 --stop 85 --what-if\n"
       "  mira --sim battery set --peak-shift on --peak-day mon-fri=08:00-17:30,21:00 "
       "--day weekend=off --yes\n"
       "  mira battery set --from battery.json\n"
       "A day's schedule is DAYS=off or DAYS=08:00-17:30, in quarter hours, or a day's word as it\n"
       "is shown: DAYS=0x00004420. DAYS is a day's name, its first three letters, two of them "
       "like\n"
       "mon-fri, weekdays, weekend or all. Peak hours may add the time from which the battery may\n"
       "charge again: DAYS=08:00-17:30,21:00. A file is what 'show --json' wrote."},
  };
}

}  // namespace mira::console
