#ifndef MIRA_CLIENT_DAY_SCHEDULE_H_
#define MIRA_CLIENT_DAY_SCHEDULE_H_

// The days of a battery's schedules, as texts and JSON.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "client/json.h"

namespace mira::client {

// What some days are to be set to: by the day's number, Sunday is 0, its word.
struct DayEdits {
  std::map<std::size_t, std::uint32_t> words;
  bool lays_out = false;  // a word was made from times
};

// Whether the days of a schedule say from when the battery may be charged again.
enum class ChargeTime { kNone, kPossible };

// Adds what "DAYS=TIMES" says. DAYS is a day's name or its first three letters, two of them with a
// dash between ("fri-mon" is four days), weekdays, weekend or all. TIMES is off, 08:00-17:30, with
// a charging time 08:00-17:30,21:00, or a day's word as the firmware has it: 0x00004420. Throws
// Error (kInvalidValue), whose "reason" says what is wrong.
void ParseDays(const std::string& text, ChargeTime charge_time, DayEdits& edits);

// {"day", "raw", "text"}, and "begin", "end" and "chargeFrom" of a day that has them.
Json DayJson(std::size_t day, std::uint32_t word);
// Adds the days of a list of such objects. "raw" decides; without it, begin, end and chargeFrom do,
// or the text "off". Throws Error for what is no day, and for a day twice.
void DaysFromJson(const Json& list, const std::string& target, DayEdits& edits);

}  // namespace mira::client

#endif  // MIRA_CLIENT_DAY_SCHEDULE_H_
