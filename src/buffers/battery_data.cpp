#include "buffers/battery_data.h"

BATTERY_INFO::~BATTERY_INFO() = default;
ADV_BATT_CONFIG::~ADV_BATT_CONFIG() = default;
PEAK_SHIFT_CONFIG::~PEAK_SHIFT_CONFIG() = default;

namespace mira::battery {
namespace {

constexpr unsigned kQuartersPerHour = 4;
constexpr unsigned kMinutesPerQuarter = 15;
constexpr std::uint8_t kLastQuarter = 24 * kQuartersPerHour;

std::string TwoDigits(unsigned number) { return (number < 10 ? "0" : "") + std::to_string(number); }

}  // namespace

std::optional<DayTimes> UnpackDay(std::uint32_t word) {
  const DayTimes times{static_cast<std::uint8_t>(word), static_cast<std::uint8_t>(word >> 8),
                       static_cast<std::uint8_t>(word >> 16)};
  if (word >> 24 != 0 || times.end > kLastQuarter || times.charge_from > kLastQuarter ||
      (times.begin >= times.end && word != 0)) {
    return std::nullopt;
  }
  return times;
}

std::uint32_t PackDay(const DayTimes& times) {
  return std::uint32_t{times.begin} | std::uint32_t{times.end} << 8 |
         std::uint32_t{times.charge_from} << 16;
}

std::string TimeText(std::uint8_t quarter_hours) {
  return TwoDigits(quarter_hours / kQuartersPerHour) + ":" +
         TwoDigits(quarter_hours % kQuartersPerHour * kMinutesPerQuarter);
}

std::string DayText(std::uint32_t word) {
  if (word == 0) return "off";
  const std::optional<DayTimes> times = UnpackDay(word);
  if (!times) return "unknown";
  const std::string text = TimeText(times->begin) + " - " + TimeText(times->end);
  return times->charge_from == 0 ? text : text + ", charging from " + TimeText(times->charge_from);
}

std::string VersionText(std::uint32_t version) {
  return std::to_string(version >> 16) + "." + std::to_string(version & 0xFFFF);
}

}  // namespace mira::battery
