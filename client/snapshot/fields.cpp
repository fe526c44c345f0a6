#include "client/snapshot/fields.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

namespace mira::client {
namespace {

using enum Meaning;
using enum Redaction;

constexpr FieldRule kFieldRules[] = {
    {"startUp.version", kMetadata, kKeep},
    {"startUp.profile", kMetadata, kReplace, "profile"},
    {"startUp.status", kSetting, kKeep},
    {"startUp.statusName", kSetting, kKeep},
    {"startUp.message", kMetadata, kSentence},
    {"startUp.diagnostics.*", kMetadata, kSentence},
    {"startUp.steps.*.step", kMetadata, kKeep},
    {"startUp.steps.*.outcome", kMetadata, kKeep},
    {"startUp.steps.*.code", kMetadata, kKeep},
    {"startUp.steps.*.meaning", kMetadata, kKeep},
    {"startUp.steps.*.advice", kMetadata, kKeep},
    {"startUp.smbiosVersion", kSetting, kKeep},
    {"startUp.transferBufferSize", kSetting, kKeep},
    {"startUp.instanceKey", kIdentity, kReplace, "instance"},
    {"startUp.announcedClasses.*", kSetting, kKeep},
    {"inventory.processors.*.currentSpeedMHz", kReading},
    {"inventory.**.serialNumber", kIdentity},
    {"inventory.**.assetTag", kIdentity},
    {"inventory.**.uuid", kIdentity},
    {"inventory.oemStrings.*", kIdentity},
    {"table.smbiosVersion", kMetadata, kKeep},
    {"table.complete", kMetadata, kKeep},
    {"table.table", kMetadata},
    {"tokens.tokens.*.id", kSetting, kKeep},
    {"tokens.tokens.*.location", kSetting, kKeep},
    {"tokens.tokens.*.value", kSetting, kKeep},
    {"passwords.passwords.*.class", kSetting, kKeep},
    {"passwords.passwords.*.installed", kSetting, kKeep},
    {"passwords.passwords.*.maxLength", kSetting, kKeep},
    {"passwords.passwords.*.secondLength", kSetting, kKeep},
    {"drives.drives.*.handle", kSetting, kKeep},
    {"drives.drives.*.description", kSetting, kCommon, "drive"},
    {"tags.tags.*.tag", kSetting, kKeep},
    {"tags.tags.*.command", kSetting, kKeep},
    {"tags.tags.ownership.value", kSetting, kReplace, "tag"},
    {"tags.tags.*.value", kIdentity, kReplace, "tag"},
    {"identifiers.identifiers.*.item", kSetting, kKeep},
    {"identifiers.identifiers.image-server.value", kSetting, kReplace, "identifier"},
    {"identifiers.identifiers.*.value", kIdentity, kReplace, "identifier"},
    {"batteries.batteries.*.battery", kSetting, kKeep},
    {"batteries.batteries.*.charging.version.text", kMetadata, kKeep},
    {"batteries.batteries.*.charging.version.raw", kMetadata, kKeep},
    {"batteries.batteries.*.charging.mode", kSetting, kKeep},
    {"batteries.batteries.*.charging.modeCode", kSetting, kKeep},
    {"batteries.batteries.*.charging.startLimitPercent", kSetting, kKeep},
    {"batteries.batteries.*.charging.stopLimitPercent", kSetting, kKeep},
    {"batteries.batteries.*.charging.days.*.*", kSetting, kKeep},
    {"batteries.batteries.*.peakShift.version.text", kMetadata, kKeep},
    {"batteries.batteries.*.peakShift.version.raw", kMetadata, kKeep},
    {"batteries.batteries.*.peakShift.enabled", kSetting, kKeep},
    {"batteries.batteries.*.peakShift.thresholdPercent", kSetting, kKeep},
    {"batteries.batteries.*.peakShift.lowestThresholdPercent", kSetting, kKeep},
    {"batteries.batteries.*.peakShift.highestThresholdPercent", kSetting, kKeep},
    {"batteries.batteries.*.peakShift.days.*.*", kSetting, kKeep},
    {"batteries.batteries.*.life.*.chargeCycles", kReading, kKeep},
    {"batteries.batteries.*.life.*.designCapacityMilliwattHours", kSetting, kKeep},
    {"batteries.batteries.*.life.*.fullChargeCapacityMilliwattHours", kReading, kKeep},
    {"batteries.batteries.*.life.*.healthPercent", kReading, kKeep},
    {"batteries.batteries.*.life.*.assumedLayout", kMetadata, kKeep},
    {"boot.complete", kMetadata, kKeep},
    {"boot.lists.*.list", kSetting, kKeep},
    {"boot.lists.*.name", kSetting, kCommon, "list"},
    {"boot.lists.*.kind", kSetting, kKeep},
    {"boot.lists.*.complete", kMetadata, kKeep},
    {"boot.lists.*.order", kSetting, kKeep},
    {"boot.lists.*.order.*", kSetting, kKeep},
    {"boot.lists.*.options.*.number", kMetadata, kKeep},
    {"boot.lists.*.options.*.active", kSetting, kKeep},
    {"boot.lists.*.options.*.attributes", kSetting, kKeep},
    {"boot.lists.*.options.*.description", kSetting, kCommon, "option"},
    {"boot.lists.*.options.*.path", kMetadata},
    {"boot.lists.*.options.*.paths.*", kIdentity},
    {"boot.lists.*.options.*.paths.*.text", kIdentity},
    {"boot.lists.*.options.*.paths.*.bytes", kIdentity},
    {"boot.lists.*.options.*.device.type", kSetting, kKeep},
    {"boot.lists.*.options.*.device.typeName", kSetting, kKeep},
    {"boot.lists.*.options.*.device.statusFlag", kSetting, kKeep},
    {"boot.lists.*.options.*.device.description", kSetting, kCommon, "device"},
    {"boot.lists.*.options.*.optionalDataText", kMetadata},
    {"boot.lists.*.options.*.problem.offset", kMetadata, kKeep},
    {"boot.lists.*.options.*.problem.message", kMetadata, kSentence},
    {"legacyBoot.devices.*.device", kSetting, kKeep},
    {"legacyBoot.devices.*.type", kSetting, kKeep},
    {"legacyBoot.devices.*.typeName", kSetting, kKeep},
    {"legacyBoot.devices.*.statusFlags", kSetting, kKeep},
    {"legacyBoot.devices.*.bootHandler", kMetadata},
    {"legacyBoot.devices.*.descriptionAddress", kMetadata},
    {"legacyBoot.devices.*.expansion", kMetadata},
    {"legacyBoot.iplPriority.*", kSetting, kKeep},
    {"legacyBoot.bcvPriority.*", kSetting, kKeep},
    {"attributes.attributes.*.handle", kMetadata, kKeep},
    {"attributes.attributes.*.name", kMetadata, kCommon, "attribute"},
    {"attributes.attributes.*.suffix", kMetadata, kCommon, "suffix"},
    {"attributes.attributes.*.type", kSetting, kKeep},
    {"attributes.attributes.*.readOnly", kSetting, kKeep},
    {"attributes.attributes.*.bootConfigType", kSetting, kKeep},
    {"attributes.attributes.*.failThroughMode", kSetting, kKeep},
    {"attributes.attributes.*.bootConfigTypeAtBoot", kReading, kKeep},
    {"attributes.attributes.*.failThroughModeAtBoot", kReading, kKeep},
    {"attributes.attributes.*.restartPending", kReading, kKeep},
    {"attributes.attributes.*.atBoot", kReading},
    {"attributes.attributes.*.displayName", kMetadata, kCommon, "display"},
    {"attributes.attributes.*.help", kMetadata, kSentence},
    {"attributes.attributes.*.minLength", kSetting, kKeep},
    {"attributes.attributes.*.maxLength", kSetting, kKeep},
    {"attributes.attributes.*.lowerBound", kSetting, kKeep},
    {"attributes.attributes.*.upperBound", kSetting, kKeep},
    {"attributes.attributes.*.increment", kSetting, kKeep},
    {"attributes.attributes.*.minSources", kSetting, kKeep},
    {"attributes.attributes.*.maxSources", kSetting, kKeep},
    {"attributes.attributes.*.possibleValues.*", kSetting, kCommon, "value"},
    {"attributes.attributes.*.possibleSources.*", kSetting, kCommon, "source"},
    {"attributes.attributes.*.members.*", kSetting, kCommon, "attribute"},
    {"attributes.attributes.*.collection", kSetting, kCommon, "collection"},
    {"attributes.unreadable.*.handle", kMetadata, kKeep},
    {"attributes.unreadable.*.attribute", kMetadata, kCommon, "attribute"},
    {"attributes.unreadable.*.type", kMetadata, kKeep},
    {"attributes.unreadable.*.readOnly", kMetadata, kKeep},
    {"firmwareLists.entries.*.time", kReading, kKeep},
    {"firmwareLists.entries.*.severity", kReading, kKeep},
    {"firmwareLists.entries.*.severityCode", kReading, kKeep},
    {"firmwareLists.entries.*.code", kReading, kKeep},
    {"firmwareLists.entries.*.text", kReading, kCommon, "message"},
    {"firmwareLists.messages.*.number", kReading, kKeep},
    {"firmwareLists.messages.*.severity", kReading, kKeep},
    {"firmwareLists.messages.*.severityCode", kReading, kKeep},
    {"firmwareLists.messages.*.seen", kReading, kKeep},
    {"firmwareLists.messages.*.text", kReading, kCommon, "message"},
    {"firmwareLists.scanCodes.*.scanCode", kSetting, kKeep},
    {"firmwareLists.scanCodes.*.button", kSetting, kCommon, "button"},
    {"firmwareLists.sensors.*.number", kSetting, kKeep},
    {"firmwareLists.sensors.*.location", kSetting, kCommon, "sensor"},
    {"firmwareLists.sensors.*.celsius", kReading, kKeep},
    {"firmwareLists.sensors.*.limitCelsius", kSetting, kKeep},
};
constexpr FieldRule kUnlisted = {""};

// Whether a path is that of a rule: "*" fits one part, "**" any number of them.
bool Fits(std::string_view rule, std::string_view path) {
  while (!rule.empty() && !path.empty()) {
    const std::string_view wanted = rule.substr(0, rule.find('.'));
    const std::string_view part = path.substr(0, path.find('.'));
    rule.remove_prefix(std::min(wanted.size() + 1, rule.size()));
    if (wanted == "**") {
      for (std::string_view rest = path;; rest.remove_prefix(rest.find('.') + 1)) {
        if (Fits(rule, rest)) return true;
        if (rest.find('.') == std::string_view::npos) return false;
      }
    }
    if (wanted != "*" && wanted != part) return false;
    path.remove_prefix(std::min(part.size() + 1, path.size()));
  }
  return rule.empty() && path.empty();
}

}  // namespace

const char* Name(Meaning meaning) {
  switch (meaning) {
    case kIdentity:
      return "identity";
    case kReading:
      return "reading";
    case kMetadata:
      return "metadata";
    case kSetting:
      break;
  }
  return "setting";
}

const FieldRule& RuleOf(const std::string& path) {
  // Attributes are many, and their paths few.
  static thread_local std::map<std::string, const FieldRule*> known;
  const auto [place, is_new] = known.try_emplace(path, &kUnlisted);
  if (!is_new) return *place->second;
  const auto* const found =
      std::find_if(std::begin(kFieldRules), std::end(kFieldRules),
                   [&path](const FieldRule& rule) { return Fits(rule.path, path); });
  if (found != std::end(kFieldRules)) place->second = found;
  return *place->second;
}

}  // namespace mira::client
