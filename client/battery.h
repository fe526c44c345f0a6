#ifndef MIRA_CLIENT_BATTERY_H_
#define MIRA_CLIENT_BATTERY_H_

// How the batteries are charged, and how they age. Batteries are counted from 1, as the SMBIOS
// structures of type 22 list them.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/day_schedule.h"
#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

using BatteryDays = std::array<std::uint32_t, 7>;  // the firmware's words, Sunday first

// "battery 1"
std::string BatteryName(std::uint16_t number);

struct BatteryCharging {
  std::uint32_t version = 0;
  std::uint8_t mode = 0;         // a code
  std::uint8_t start_limit = 0;  // percent; limits count in the mode "custom"
  std::uint8_t stop_limit = 0;   // percent
  BatteryDays days{};
};

struct BatteryPeakShift {
  std::uint32_t version = 0;
  bool enabled = false;
  std::uint8_t threshold = 0;  // percent, as the other two
  std::uint8_t lowest_threshold = 0;
  std::uint8_t highest_threshold = 0;
  BatteryDays days{};
};

struct BatteryLife {
  std::uint16_t charge_cycles = 0;
  std::uint32_t design_capacity = 0;       // mWh
  std::uint32_t full_charge_capacity = 0;  // mWh
};

struct Battery {
  std::uint16_t number = 1;
  std::optional<BatteryCharging> charging;  // nothing where it cannot be read
  std::optional<Error> charging_problem;
  std::optional<BatteryPeakShift> peak_shift;
  std::optional<Error> peak_shift_problem;
  std::optional<Error>
      life_problem;  // it was not heard; a firmware that says nothing is no problem
  // Empty where the firmware does not say. Its layout is an assumption of this library.
  std::vector<BatteryLife> life;
};

// "standard", …; "mode 7" for a code without a name.
std::string BatteryModeName(std::uint8_t code);

// The numbers of the batteries that a text names: one, or "all".
std::vector<std::uint16_t> FindBatteries(Session& session, const std::string& text);
// What can be read of one. Throws Error when that is nothing: kNotFound where the machine does not
// list the battery either.
Battery ReadBattery(Session& session, std::uint16_t number);
BatteryCharging ReadCharging(Session& session, std::uint16_t number);
BatteryPeakShift ReadPeakShift(Session& session, std::uint16_t number);

// What is to be set of a battery; what is missing stays.
struct BatteryEdit {
  std::optional<std::uint8_t> mode;
  std::optional<std::uint8_t> start_limit;
  std::optional<std::uint8_t> stop_limit;
  DayEdits days;
  std::optional<bool> peak_shift;
  std::optional<std::uint8_t> peak_threshold;
  DayEdits peak_days;
  bool lays_out_mode = false;  // the mode's code was found by its name

  bool SetsCharging() const { return mode || start_limit || stop_limit || !days.words.empty(); }
  bool SetsPeakShift() const { return peak_shift || peak_threshold || !peak_days.words.empty(); }
};
// The code of a mode's name. Throws Error.
std::uint8_t ParseBatteryMode(const std::string& name);
// What the JSON of a battery says, as ToJson gives it; what only the firmware decides is passed
// over. Throws Error for unknown keys and for values that are none.
struct NumberedEdit {
  std::uint16_t number;
  BatteryEdit edit;
};
std::vector<NumberedEdit> BatteryEditsFromJson(const Json& document);

// Adds to the plan what sets a battery. Throws Error for what cannot be: limits that are no limits
// or do not count in the mode, a threshold beyond its bounds. `whole` says that the edit is a whole
// configuration, whose limits are kept whatever the mode is.
void PlanBattery(Session& session, std::uint16_t number, const BatteryEdit& edit, bool whole,
                 Plan& plan);

// {"battery", "charging", "peakShift", "life"}; "chargingProblem", "peakShiftProblem".
Json ToJson(const Battery& battery);
Json ToJson(const BatteryCharging& charging);
Json ToJson(const BatteryPeakShift& peak_shift);
Battery BatteryFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_BATTERY_H_
