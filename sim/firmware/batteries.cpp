#include "sim/firmware/batteries.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "sim/firmware/fields.h"

namespace mira::sim {
namespace {

using Days = std::array<std::uint32_t, 7>;

constexpr std::size_t kConfigSize = 32;  // version and seven days

std::uint8_t ByteOf(std::uint32_t word, unsigned index) {
  return static_cast<std::uint8_t>(word >> (8 * index));
}

void AnswerConfig(Call& call, std::uint32_t word, std::uint32_t version, const Days& days) {
  std::uint8_t config[kConfigSize];
  bytes::Writer out(config);
  out.U32(version);
  for (const std::uint32_t day : days) out.U32(day);
  if (out.Ok() && call.AnswerData(config, 2)) call.SetResult(2, word);
}

// A day is 0, or begins before it ends, at 24:00 (quarter hour 96) at the latest. Only peak shift
// says when the battery may be charged again.
bool IsDay(std::uint32_t word, bool has_charge_time) {
  constexpr std::uint8_t kLast = 96;
  const std::uint8_t charge_from = ByteOf(word, 2);
  return word == 0 || (ByteOf(word, 0) < ByteOf(word, 1) && ByteOf(word, 1) <= kLast &&
                       charge_from <= (has_charge_time ? kLast : 0) && ByteOf(word, 3) == 0);
}

// The days of the configuration in argument 3. Completes the call when it is none.
std::optional<Days> TakeDays(Call& call, std::uint32_t version, bool has_charge_time) {
  const auto area = call.DataArea(3);
  if (!area || area->size() != kConfigSize) {
    call.Complete(kBadFormat);
    return std::nullopt;
  }
  bytes::Reader in(*area);
  bool is_valid = in.U32() == version;
  Days days;
  for (std::uint32_t& day : days) {
    day = in.U32();
    is_valid = is_valid && IsDay(day, has_charge_time);
  }
  if (in.Ok() && is_valid) return days;
  call.Complete(kError);
  return std::nullopt;
}

void WriteCharging(Call& call, Battery& battery) {
  constexpr unsigned kModes = 5;
  constexpr unsigned kLowestStart = 50;
  constexpr unsigned kHighestStop = 100;
  constexpr unsigned kSmallestGap = 5;
  const std::uint32_t word = call.Arg(2);
  const std::uint8_t mode = ByteOf(word, 0);
  const std::uint8_t start = ByteOf(word, 1);
  const std::uint8_t stop = ByteOf(word, 2);
  const auto days = TakeDays(call, battery.config_version, false);
  if (!days) return;
  if (mode < 1 || mode > kModes || start < kLowestStart || stop > kHighestStop ||
      start + kSmallestGap > stop || ByteOf(word, 3) != 0) {
    return call.Complete(kError);
  }
  battery.charging_mode = mode;
  battery.start_limit = start;
  battery.stop_limit = stop;
  battery.charging_days = *days;
}

void WritePeakShift(Call& call, Battery& battery) {
  const std::uint32_t word = call.Arg(2);
  const std::uint8_t threshold = ByteOf(word, 1);
  const auto days = TakeDays(call, battery.config_version, true);
  if (!days) return;
  if (ByteOf(word, 0) > 1 || ByteOf(word, 2) != battery.lowest_peak_threshold ||
      ByteOf(word, 3) != battery.highest_peak_threshold ||
      threshold < battery.lowest_peak_threshold || threshold > battery.highest_peak_threshold) {
    return call.Complete(kError);
  }
  battery.peak_shift = ByteOf(word, 0) == 1;
  battery.peak_threshold = threshold;
  battery.peak_days = *days;
}

}  // namespace

void BatteryHandler::Keep(Fields& fields) {
  fields.Group("batteries", [&] {
    NumberNames name;
    for (Battery& b : batteries_) {
      fields.Group(name(b.number), [&] {
        fields.Parts("charging", [&] {
          fields("mode", b.charging_mode)("start", b.start_limit)("stop", b.stop_limit);
          fields("days", b.charging_days);
        });
        fields.Parts("peakShift", [&] {
          fields("on", b.peak_shift)("threshold", b.peak_threshold)("days", b.peak_days);
        });
      });
    }
  });
}

void BatteryHandler::Handle(Call& call) {
  const bool is_read = call.Select() == 18;
  if (!is_read && call.Select() != 19) return call.Complete(kNotSupported);
  const auto found = std::find_if(batteries_.begin(), batteries_.end(), [&](const Battery& b) {
    return b.number == ByteOf(call.Arg(1), 1);
  });
  if (found == batteries_.end()) return call.Complete(kError);
  is_read ? Read(call, *found) : Write(call, *found);
}

void BatteryHandler::Read(Call& call, const Battery& b) {
  switch (ByteOf(call.Arg(1), 0)) {
    case 0:
    case 3:
      return AnswerConfig(call,
                          std::uint32_t{b.charging_mode} | std::uint32_t{b.start_limit} << 8 |
                              std::uint32_t{b.stop_limit} << 16,
                          b.config_version, b.charging_days);
    case 4:
      return AnswerConfig(call,
                          (b.peak_shift ? 1u : 0u) | std::uint32_t{b.peak_threshold} << 8 |
                              std::uint32_t{b.lowest_peak_threshold} << 16 |
                              std::uint32_t{b.highest_peak_threshold} << 24,
                          b.config_version, b.peak_days);
    default:
      return call.Complete(kNotSupported);
  }
}

void BatteryHandler::Write(Call& call, Battery& battery) {
  switch (ByteOf(call.Arg(1), 0)) {
    case 0:
      return WriteCharging(call, battery);
    case 1:
      return WritePeakShift(call, battery);
    default:
      return call.Complete(kNotSupported);
  }
}

}  // namespace mira::sim
