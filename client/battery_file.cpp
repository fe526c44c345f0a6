#include <algorithm>
#include <initializer_list>
#include <limits>
#include <string_view>

#include "client/battery.h"

namespace mira::client {
namespace {

constexpr std::uint64_t kSchema = 1;

Error BadFile(const std::string& target, const std::string& message) {
  return Error(kInvalidValue, "bad-configuration", message, target);
}

// Throws Error for a value that is no object, and for a key that the object does not have.
void RequireKeys(const Json& object, std::initializer_list<std::string_view> keys,
                 const std::string& target) {
  if (!object.is_object())
    throw BadFile(target, "The configuration of " + target + " is not an object.");
  for (const auto& [key, value] : object.items()) {
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) continue;
    throw Error(kInvalidValue, "unknown-key",
                "The configuration of " + target + " has an unknown key, '" + key + "'.", target)
        .With("unknown", Json::array({key}));
  }
}

std::optional<std::uint8_t> ByteOf(const Json& object, const char* key, const std::string& target,
                                   std::uint64_t highest) {
  const auto found = object.find(key);
  if (found == object.end()) return std::nullopt;
  const auto number = ToNumber(*found);
  if (number && *number <= highest) return static_cast<std::uint8_t>(*number);
  throw BadFile(target, std::string("'") + key + "' of " + target + " is not a number from 0 to " +
                            std::to_string(highest) + ".");
}

constexpr std::uint64_t kPercent = 100;

std::optional<std::uint8_t> ModeOf(const Json& charging, const std::string& target) {
  const auto code = ByteOf(charging, "modeCode", target, std::numeric_limits<std::uint8_t>::max());
  const auto name = charging.find("mode");
  if (name == charging.end()) return code;
  if (!name->is_string()) throw BadFile(target, "'mode' of " + target + " is not a text.");
  const std::string& text = name->get_ref<const std::string&>();
  if (!code) return ParseBatteryMode(text);
  if (BatteryModeName(*code) == text) return code;
  throw BadFile(target, "'mode' and 'modeCode' of " + target + " say different things.");
}

void AddCharging(const Json& charging, const std::string& target, BatteryEdit& edit) {
  RequireKeys(charging,
              {"version", "mode", "modeCode", "startLimitPercent", "stopLimitPercent", "days"},
              target);
  edit.mode = ModeOf(charging, target);
  edit.lays_out_mode = edit.mode && !charging.contains("modeCode");
  edit.start_limit = ByteOf(charging, "startLimitPercent", target, kPercent);
  edit.stop_limit = ByteOf(charging, "stopLimitPercent", target, kPercent);
  if (charging.contains("days")) DaysFromJson(charging["days"], target + " charging", edit.days);
}

void AddPeakShift(const Json& peak_shift, const std::string& target, BatteryEdit& edit) {
  RequireKeys(peak_shift,
              {"version", "enabled", "thresholdPercent", "lowestThresholdPercent",
               "highestThresholdPercent", "days"},
              target);
  if (const auto enabled = peak_shift.find("enabled"); enabled != peak_shift.end()) {
    if (!enabled->is_boolean()) {
      throw BadFile(target, "'enabled' of " + target + " is neither true nor false.");
    }
    edit.peak_shift = enabled->get<bool>();
  }
  edit.peak_threshold = ByteOf(peak_shift, "thresholdPercent", target, kPercent);
  if (peak_shift.contains("days")) {
    DaysFromJson(peak_shift["days"], target + " peak shift", edit.peak_days);
  }
}

NumberedEdit EditOf(const Json& battery) {
  RequireKeys(battery,
              {"battery", "charging", "chargingProblem", "peakShift", "peakShiftProblem", "life",
               "lifeProblem"},
              "a battery");
  const auto number =
      ByteOf(battery, "battery", "a battery", std::numeric_limits<std::uint8_t>::max());
  if (!number) throw BadFile("battery", "A battery of the configuration has no number.");
  const std::string target = "battery " + std::to_string(*number);
  NumberedEdit edit{*number, {}};
  const auto part = [&battery](const char* key) {
    const auto found = battery.find(key);
    return found != battery.end() && !found->is_null() ? &*found : nullptr;
  };
  if (const Json* const charging = part("charging")) AddCharging(*charging, target, edit.edit);
  if (const Json* const peak = part("peakShift")) AddPeakShift(*peak, target, edit.edit);
  return edit;
}

}  // namespace

std::vector<NumberedEdit> BatteryEditsFromJson(const Json& document) {
  RequireKeys(document, {"schemaVersion", "simulated", "from", "batteries"}, "the batteries");
  if (const auto schema = document.find("schemaVersion"); schema != document.end()) {
    const auto number = ToNumber(*schema);
    if (!number || *number > kSchema) {
      throw Error(kInvalidValue, "newer-schema",
                  "The configuration is of version " + Readable(*schema) +
                      "; this program knows version " + std::to_string(kSchema) + ".")
          .With("schemaVersion", *schema);
    }
  }
  const auto batteries = document.find("batteries");
  if (batteries == document.end() || !batteries->is_array() || batteries->empty()) {
    throw BadFile("batteries", "The configuration names no battery.");
  }
  std::vector<NumberedEdit> edits;
  for (const Json& battery : *batteries) {
    NumberedEdit edit = EditOf(battery);
    const bool is_doubled = std::any_of(edits.begin(), edits.end(), [&edit](const auto& other) {
      return other.number == edit.number;
    });
    if (is_doubled) {
      throw BadFile("batteries",
                    "The configuration has battery " + std::to_string(edit.number) + " twice.")
          .With("doubled", Json::array({edit.number}));
    }
    edits.push_back(std::move(edit));
  }
  return edits;
}

}  // namespace mira::client
