#include "client/day_schedule.h"

#include <iterator>
#include <limits>
#include <optional>
#include <string_view>

#include "buffers/battery_data.h"
#include "bytes/text.h"
#include "client/error.h"

namespace mira::client {
namespace {

constexpr std::size_t kDayCount = std::size(battery::kDays);
constexpr std::uint8_t kMidnight = 96;  // at the day's end, in quarter hours

Error BadSchedule(const std::string& text, const char* reason, const std::string& message) {
  return Error(kInvalidValue, "bad-schedule", "'" + text + "': " + message, text)
      .With("reason", reason);
}

std::optional<std::size_t> DayOf(std::string_view name) {
  constexpr std::size_t kShort = 3;
  for (std::size_t day = 0; day < kDayCount; ++day) {
    const std::string_view full = battery::kDays[day];
    if (bytes::SameText(name, full) || bytes::SameText(name, full.substr(0, kShort))) return day;
  }
  return std::nullopt;
}

// First and last day; a range may go over the end of the week.
std::optional<std::pair<std::size_t, std::size_t>> RangeOf(std::string_view name) {
  struct Group {
    const char* name;
    std::size_t first;
    std::size_t last;
  };
  static constexpr Group kGroups[] = {{"all", 0, 6}, {"weekdays", 1, 5}, {"weekend", 6, 0}};
  for (const Group& group : kGroups) {
    if (bytes::SameText(name, group.name)) return std::pair(group.first, group.last);
  }
  const std::size_t dash = name.find('-');
  const auto first = DayOf(name.substr(0, dash));
  const auto last = dash == std::string_view::npos ? first : DayOf(name.substr(dash + 1));
  if (!first || !last) return std::nullopt;
  return std::pair(*first, *last);
}

// A time of day in quarter hours.
std::uint8_t ParseTime(const std::string& whole, std::string_view text) {
  constexpr unsigned kHours = 24;
  constexpr unsigned kMinutes = 60;
  constexpr unsigned kQuarter = 15;
  const std::size_t colon = text.find(':');
  const auto hours = bytes::ParseDigits(text.substr(0, colon), 10, kHours);
  const auto minutes = colon == std::string_view::npos
                           ? std::nullopt
                           : bytes::ParseDigits(text.substr(colon + 1), 10, kMinutes - 1);
  const bool is_time = hours && minutes && text.size() - colon == 3 &&
                       *hours * kMinutes + *minutes <= kHours * kMinutes;
  if (!is_time) {
    throw BadSchedule(whole, "no-time",
                      "'" + std::string(text) + "' is not a time from 00:00 to 24:00.");
  }
  if (*minutes % kQuarter != 0) {
    throw BadSchedule(whole, "no-quarter-hour",
                      "'" + std::string(text) +
                          "' is not a quarter hour; schedules are kept in quarter "
                          "hours.");
  }
  return static_cast<std::uint8_t>((*hours * kMinutes + *minutes) / kQuarter);
}

std::uint32_t PackTimes(const std::string& whole, std::string_view begin, std::string_view end,
                        std::optional<std::string_view> charge_from, ChargeTime charge_time) {
  battery::DayTimes times;
  times.begin = ParseTime(whole, begin);
  times.end = ParseTime(whole, end);
  if (times.begin == times.end) {
    throw BadSchedule(whole, "empty", "It ends when it begins.");
  }
  if (times.begin > times.end) {
    throw BadSchedule(whole, "ends-before-it-begins",
                      "It ends before it begins, or crosses midnight: a day's schedule lies within "
                      "the day, " +
                          battery::TimeText(0) + " to " + battery::TimeText(kMidnight) + ".");
  }
  if (!charge_from) return battery::PackDay(times);
  if (charge_time == ChargeTime::kNone) {
    throw BadSchedule(whole, "no-charge-time",
                      "Peak shift alone has a time from which the battery may be charged again.");
  }
  times.charge_from = ParseTime(whole, *charge_from);
  if (times.charge_from == 0) {
    throw BadSchedule(
        whole, "charge-time-zero",
        "The battery cannot be charged again from 00:00: its word has no form for that. "
        "24:00 is the day's end.");
  }
  return battery::PackDay(times);
}

std::uint32_t ParseTimes(const std::string& whole, std::string_view text, ChargeTime charge_time,
                         bool& lays_out) {
  if (bytes::SameText(text, "off")) return 0;
  if (bytes::WithoutHexPrefix(text)) {
    const auto word = bytes::ParseNumber(text, std::numeric_limits<std::uint32_t>::max());
    if (word) return static_cast<std::uint32_t>(*word);
    throw BadSchedule(whole, "no-word", "'" + std::string(text) + "' is not a 32-bit day word.");
  }
  lays_out = true;
  const std::size_t comma = text.find(',');
  const std::string_view hours = text.substr(0, comma);
  const std::size_t dash = hours.find('-');
  if (dash == std::string_view::npos) {
    throw BadSchedule(whole, "no-time",
                      "A begin and an end are wanted, with a dash between, or 'off'.");
  }
  return PackTimes(
      whole, hours.substr(0, dash), hours.substr(dash + 1),
      comma == std::string_view::npos ? std::nullopt : std::optional(text.substr(comma + 1)),
      charge_time);
}

std::optional<std::string_view> TextField(const Json& object, const char* name) {
  const auto found = object.find(name);
  if (found == object.end() || !found->is_string()) return std::nullopt;
  return found->get_ref<const std::string&>();
}

std::uint32_t WordFromJson(const Json& day, const std::string& target, bool& lays_out) {
  const auto begin = TextField(day, "begin");
  const auto end = TextField(day, "end");
  std::optional<std::uint32_t> times;
  if (begin && end) {
    times = PackTimes(target, *begin, *end, TextField(day, "chargeFrom"), ChargeTime::kPossible);
  }
  if (const auto raw = day.find("raw"); raw != day.end()) {
    const auto word = ToNumber(*raw);
    if (!word || *word > std::numeric_limits<std::uint32_t>::max()) {
      throw BadSchedule(target, "no-word", "'raw' is not a 32-bit day word.");
    }
    if (times && *times != *word) {
      throw BadSchedule(target, "contradiction", "'raw' and the times say different things.");
    }
    return static_cast<std::uint32_t>(*word);
  }
  if (times) {
    lays_out = true;
    return *times;
  }
  const auto text = TextField(day, "text");
  if (text && bytes::SameText(*text, "off")) return 0;
  throw BadSchedule(target, "no-time", "The day has neither 'raw' nor 'begin' and 'end'.");
}

}  // namespace

void ParseDays(const std::string& text, ChargeTime charge_time, DayEdits& edits) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) {
    throw BadSchedule(text, "no-day", "A day is wanted, then '=' and its times.");
  }
  const auto range = RangeOf(std::string_view(text).substr(0, equals));
  if (!range) {
    throw BadSchedule(
        text, "unknown-day",
        "'" + text.substr(0, equals) +
            "' is not a day: names of days, their first three letters, two of them with "
            "a dash between, weekdays, weekend and all are.");
  }
  const std::uint32_t word =
      ParseTimes(text, std::string_view(text).substr(equals + 1), charge_time, edits.lays_out);
  for (std::size_t day = range->first;; day = (day + 1) % kDayCount) {
    edits.words[day] = word;
    if (day == range->second) return;
  }
}

Json DayJson(std::size_t day, std::uint32_t word) {
  const auto times = battery::UnpackDay(word);
  std::string text = battery::DayText(word);
  if (!times) text += " (0x" + bytes::HexNumber(word, 8) + ")";
  Json json = {{"day", battery::kDays[day]}, {"raw", word}, {"text", text}};
  if (!times || word == 0) return json;
  json["begin"] = battery::TimeText(times->begin);
  json["end"] = battery::TimeText(times->end);
  if (times->charge_from != 0) json["chargeFrom"] = battery::TimeText(times->charge_from);
  return json;
}

void DaysFromJson(const Json& list, const std::string& target, DayEdits& edits) {
  if (!list.is_array()) throw BadSchedule(target, "no-day", "'days' is not a list.");
  for (const Json& entry : list) {
    const auto name = entry.is_object() ? TextField(entry, "day") : std::nullopt;
    const auto day = name ? DayOf(*name) : std::nullopt;
    if (!day) {
      throw BadSchedule(target, "unknown-day",
                        "An entry of 'days' has no 'day' with a day's name.");
    }
    const std::string day_target = target + " on " + battery::kDays[*day];
    if (edits.words.contains(*day)) {
      throw BadSchedule(day_target, "doubled", "The day is there twice.");
    }
    edits.words[*day] = WordFromJson(entry, day_target, edits.lays_out);
  }
}

}  // namespace mira::client
