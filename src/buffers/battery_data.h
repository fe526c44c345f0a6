#ifndef MIRA_BUFFERS_BATTERY_DATA_H_
#define MIRA_BUFFERS_BATTERY_DATA_H_

// The battery charging configuration (class 8: select 18 reads, 19 writes).
//
//   ADV_BATT_CONFIG config;
//   config.Command = BATTERY_GET_ADVANCED;
//   mira.ExecuteDACI(8, 18, config, "", PwdInfo::PWD_NONE);
//   std::cout << mira::battery::DayText(config.DaySchedule[0]);  // Sunday

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "buffers/bios_data.h"
#include "platform/api.h"

// The firmware numbers the commands of select 18 and of select 19 apart.
enum BatteryCommand : std::uint16_t {
  BATTERY_GET_ADVANCED = 0,
  BATTERY_GET_ADVANCED_3 = 3,
  BATTERY_GET_PEAK_SHIFT = 4,
  BATTERY_SET_ADVANCED = 0,
  BATTERY_SET_PEAK_SHIFT = 1,
};

struct MIRA_API BATTERY_INFO : CSimpleTokenData {
  ~BATTERY_INFO() override;

  std::uint16_t Command = 0;        // its low byte counts
  std::uint16_t BatteryNumber = 0;  // see the SMBIOS structures of type 22
};

// Charging mode, limits and a schedule: commands 0 and 3 of select 18, command 0 of select 19.
struct MIRA_API ADV_BATT_CONFIG : BATTERY_INFO {
  ~ADV_BATT_CONFIG() override;

  std::uint32_t Version = 0;
  std::array<std::uint32_t, 7> DaySchedule{};  // Sunday first
  std::uint8_t ChargingMode = 0;               // codes: the firmware's; see docs/identity.md
  std::uint8_t StartChargingLimit = 0;         // percent
  std::uint8_t StopChargingLimit = 0;          // percent
};

// Peak shift: command 4 of select 18, command 1 of select 19.
struct MIRA_API PEAK_SHIFT_CONFIG : BATTERY_INFO {
  ~PEAK_SHIFT_CONFIG() override;

  bool Enabled = false;
  std::uint8_t CurrentThreshold = 0;  // percent, as the other two
  std::uint8_t MinimumThreshold = 0;
  std::uint8_t MaximumThreshold = 0;
  std::uint32_t Version = 0;
  std::array<std::uint32_t, 7> DaySchedule{};  // Sunday first
};

namespace mira::battery {

// The names of the schedule's days, Sunday first.
inline constexpr const char* kDays[7] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                         "Thursday", "Friday", "Saturday"};

// A day in quarter hours (0 to 96), in the word's bytes 0 to 2; a word of 0 is off. No standard
// lays the word out: this form is the simulated firmware's own, and a real machine's may be
// another.
struct DayTimes {
  std::uint8_t begin = 0;
  std::uint8_t end = 0;
  std::uint8_t charge_from = 0;  // when the battery may be charged again (peak shift); 0: not said
  bool operator==(const DayTimes&) const = default;
};

// Nothing when the word is no day in this form: a time past 24:00, an end before its begin, a byte
// that should be 0.
MIRA_API std::optional<DayTimes> UnpackDay(std::uint32_t word);
MIRA_API std::uint32_t PackDay(const DayTimes& times);

// "08:15"
MIRA_API std::string TimeText(std::uint8_t quarter_hours);
// "off", "08:00 - 17:30", "08:00 - 17:30, charging from 21:00", or "unknown".
MIRA_API std::string DayText(std::uint32_t word);

// "1.0": the upper half of the word, then the lower.
MIRA_API std::string VersionText(std::uint32_t version);

}  // namespace mira::battery

#endif  // MIRA_BUFFERS_BATTERY_DATA_H_
