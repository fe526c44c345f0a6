#include "sim/clock.h"

#include <algorithm>

namespace mira::sim {

std::string TimeOf(const Profile& profile) {
  const auto two = [](unsigned number) {
    return std::string(number < 10 ? "0" : "") + std::to_string(number);
  };
  std::string newest = "2026-01-01T00:00:00Z";
  for (const LogEntry& entry : profile.log) {
    const auto& [month, day, hour, minute, second] = entry.time;
    newest = std::max(newest, std::to_string(entry.year) + "-" + two(month) + "-" + two(day) + "T" +
                                  two(hour) + ":" + two(minute) + ":" + two(second) + "Z");
  }
  return newest;
}

}  // namespace mira::sim
