#include "console/commands/snapshot_profile.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "bytes/text.h"
#include "client/error.h"
#include "client/firmware_list.h"
#include "client/snapshot/other_identity.h"

namespace mira::console {
namespace {

using client::Json;
using client::Readable;

// A subject's value; an empty object where it could not be read.
Json KeptValue(const client::Snapshot& snapshot, const char* subject) {
  const Json& subjects = snapshot.Document().at("subjects");
  const bool has_value = subjects.contains(subject) && subjects[subject].contains("value");
  return has_value ? subjects[subject]["value"] : Json::object();
}

Json KeptList(const client::Snapshot& snapshot, const char* subject, const char* field) {
  return KeptValue(snapshot, subject).value(field, Json::array());
}

// The fields of an object under other names.
using FieldNames = std::initializer_list<std::pair<const char*, const char*>>;
Json Renamed(const Json& object, FieldNames names) {
  Json renamed = Json::object();
  for (const auto& [old_name, new_name] : names) {
    const auto found = object.find(old_name);
    if (found == object.end() || found->is_null()) continue;
    const bool is_text = found->is_object() && found->contains("text");
    renamed[new_name] = is_text ? Json(Readable(*found)) : *found;
  }
  return renamed;
}

Json RenamedList(const Json& list, FieldNames names) {
  Json renamed = Json::array();
  for (const Json& element : list) renamed.push_back(Renamed(element, names));
  return renamed;
}

void AddInterface(const client::Snapshot& snapshot, Json& profile) {
  const Json start = KeptValue(snapshot, client::kStartUpSubject);
  std::uint32_t classes = 0;
  for (const Json& cls : start.value("announcedClasses", Json::array())) {
    if (cls < 31) classes |= std::uint32_t{1} << cls.get<unsigned>();
  }
  constexpr std::uint32_t kAttributeClass = 1U << 5;
  if (KeptList(snapshot, client::kAttributesSubject, "attributes").empty())
    classes &= ~kAttributeClass;
  profile["callingInterface"] = classes != 0;
  profile["supportedClasses"] = classes;
  if (start.value("transferBufferSize", 0U) != 0)
    profile["bufferSize"] = start["transferBufferSize"];
  if (const std::string key = start.value("instanceKey", ""); !key.empty()) {
    profile["instancePath"] = key;
  }
  profile["tokens"] = KeptList(snapshot, client::kTokensSubject, "tokens");
  profile["drives"] = RenamedList(KeptList(snapshot, client::kDrivesSubject, "drives"),
                                  {{"handle", "handle"}, {"description", "description"}});
}

void AddIdentity(const client::Snapshot& snapshot, Json& profile) {
  const Json inventory = KeptValue(snapshot, client::kInventorySubject);
  profile.update(Renamed(inventory.value("system", Json::object()),
                         {{"manufacturer", "manufacturer"}, {"productName", "product"}}));
  profile.update(Renamed(inventory.value("bios", Json::object()),
                         {{"version", "biosVersion"}, {"releaseDate", "biosDate"}}));
  for (const Json& tag : KeptList(snapshot, client::kTagsSubject, "tags")) {
    if (tag.at("value").is_null()) continue;
    const std::string name = tag.at("tag");
    if (name == "extended") {
      profile["extendedTags"][tag.at("command").dump()] = Readable(tag["value"]);
    } else {
      profile[name + "Tag"] = Readable(tag["value"]);
    }
  }
  constexpr std::pair<const char*, const char*> kItems[] = {{"mac", "macAddress"},
                                                            {"eppid", "eppid"},
                                                            {"image-server", "imageServer"},
                                                            {"thin-client", "thinClient"}};
  for (const Json& item : KeptList(snapshot, client::kIdentifiersSubject, "identifiers")) {
    for (const auto& [name, field] : kItems) {
      if (item.at("item") != name || item.at("value").is_null()) continue;
      if (std::string text = Readable(item["value"]); !text.empty()) profile[field] = text;
    }
  }
}

Json DescribedOption(const Json& option) {
  Json described = Renamed(option, {{"number", "number"},
                                    {"attributes", "attributes"},
                                    {"description", "description"},
                                    {"optionalData", "optionalData"}});
  if (option.contains("device")) {
    described["device"] = Renamed(
        option["device"], {{"type", "type"}, {"statusFlag", "status"}, {"description", "name"}});
    return described;
  }
  std::string bytes;
  for (const Json& path : option.at("paths")) bytes += path.at("bytes").get<std::string>();
  described["pathBytes"] = bytes;
  return described;
}

void AddBoot(const client::Snapshot& snapshot, Json& profile) {
  Json lists = Json::array();
  for (const Json& list : KeptList(snapshot, client::kBootSubject, "lists")) {
    if (!list.contains("options")) continue;
    Json described = Renamed(list, {{"list", "value"}, {"name", "name"}, {"order", "order"}});
    Json& options = described["options"] = Json::array();
    for (const Json& option : list["options"]) options.push_back(DescribedOption(option));
    lists.push_back(std::move(described));
  }
  if (!lists.empty()) profile["bootsFrom"] = lists.back().at("value");
  profile["bootLists"] = std::move(lists);
  const Json legacy = KeptValue(snapshot, client::kLegacyBootSubject);
  if (!legacy.contains("devices")) return;
  Json& described = profile["legacyBoot"] = Json::object();
  for (const char* const order : {"iplPriority", "bcvPriority"}) {
    described[order] = bytes::HexText(legacy.at(order).get<std::vector<std::uint8_t>>());
  }
  described["devices"] = RenamedList(legacy["devices"], {{"type", "type"},
                                                         {"statusFlags", "status"},
                                                         {"bootHandler", "bootHandler"},
                                                         {"descriptionAddress", "description"},
                                                         {"expansion", "expansion"}});
}

// A value of several parts has "|" between them.
std::string JoinedParts(const Json& value) {
  if (!value.is_array()) return Readable(value);
  std::string text;
  for (const Json& part : value) text += (text.empty() ? "" : "|") + Readable(part);
  return text;
}

struct KindRow {
  const char* type;
  const char* kind;
  const char* choices;
  const char* lower;
  const char* upper;
};
constexpr KindRow kAttributeKinds[] = {
    {"enumeration", "enumeration", "possibleValues", nullptr, nullptr},
    {"string", "string", nullptr, "minLength", "maxLength"},
    {"password", "password", nullptr, "minLength", "maxLength"},
    {"integer", "integer", nullptr, "lowerBound", "upperBound"},
    {"boot-config", "bootOrder", "possibleSources", "minSources", "maxSources"},
    {"collection", "collection", "collection", nullptr, nullptr},
    {"config-set", "configSet", "members", nullptr, nullptr},
};

Json DescribedAttribute(const Json& item, const KindRow& row) {
  Json described = {{"kind", row.kind},
                    {"name", Readable(item.at("name")) + Readable(item.at("suffix"))},
                    {"readOnly", item.at("readOnly")}};
  described.update(
      Renamed(item, {{"displayName", "display"}, {"help", "help"}, {"increment", "increment"}}));
  if (row.choices != nullptr && item.contains(row.choices)) {
    Json& choices = described["choices"] = Json::array();
    // Of a collection the name alone.
    if (!item[row.choices].is_array()) choices.push_back(Readable(item[row.choices]));
    if (item[row.choices].is_array()) {
      for (const Json& choice : item[row.choices]) choices.push_back(Readable(choice));
    }
  }
  if (row.lower != nullptr) {
    described.update(Renamed(item, {{row.lower, "lower"}, {row.upper, "upper"}}));
  } else if (item.at("value").is_array()) {
    // How many values there may be nobody says: as many as there are choices.
    described["lower"] = 0;
    described["upper"] = std::max(item["value"].size(), described.value("choices", Json()).size());
  } else if (row.choices != nullptr) {
    described["lower"] = described["upper"] = 1;
  }
  const Json& in_force = item.at("atBoot").is_null() ? item.at("value") : item["atBoot"];
  if (!in_force.is_null()) described["value"] = JoinedParts(in_force);
  if (!item.at("default").is_null()) described["default"] = JoinedParts(item["default"]);
  return described;
}

void AddAttributes(const client::Snapshot& snapshot, Json& profile) {
  Json attributes = Json::array();
  Json pending = Json::object();
  for (const Json& item : KeptList(snapshot, client::kAttributesSubject, "attributes")) {
    for (const KindRow& row : kAttributeKinds) {
      if (item.at("type") != row.type) continue;
      attributes.push_back(DescribedAttribute(item, row));
      const bool is_pending = !item.at("atBoot").is_null() && item["atBoot"] != item.at("value");
      if (is_pending) pending[attributes.back().at("name")] = JoinedParts(item["value"]);
    }
  }
  if (!attributes.empty()) profile["attributes"] = std::move(attributes);
  profile["pendingAttributes"] = std::move(pending);
}

Json DayWords(const Json& schedule) {
  Json words = Json::array();
  for (const Json& day : schedule.at("days")) words.push_back(day.at("raw"));
  return words;
}

Json DescribedBattery(const Json& battery) {
  Json described = {{"number", battery.at("battery")}};
  if (const Json& charging = battery.at("charging"); !charging.is_null()) {
    described.update(Renamed(charging, {{"modeCode", "chargingMode"},
                                        {"startLimitPercent", "startLimit"},
                                        {"stopLimitPercent", "stopLimit"}}));
    described["configVersion"] = charging.at("version").at("raw");
    described["chargingDays"] = DayWords(charging);
  }
  if (const Json& peak = battery.at("peakShift"); !peak.is_null()) {
    described.update(Renamed(peak, {{"enabled", "peakShift"},
                                    {"thresholdPercent", "peakThreshold"},
                                    {"lowestThresholdPercent", "lowestPeakThreshold"},
                                    {"highestThresholdPercent", "highestPeakThreshold"}}));
    described["peakDays"] = DayWords(peak);
  }
  for (const Json& life : battery.at("life")) {
    described.update(Renamed(life, {{"chargeCycles", "chargeCycles"},
                                    {"designCapacityMilliwattHours", "designCapacity"},
                                    {"fullChargeCapacityMilliwattHours", "fullChargeCapacity"}}));
  }
  return described;
}

Json DescribedLogEntry(const Json& entry) {
  Json described =
      Renamed(entry, {{"severityCode", "severity"}, {"code", "code"}, {"text", "text"}});
  const CLogEntries::Entry parts = client::LogEntryFromJson(entry);
  described.update({{"year", parts.Year},
                    {"month", parts.Month},
                    {"day", parts.Day},
                    {"hour", parts.Hour},
                    {"minute", parts.Minute},
                    {"second", parts.Second}});
  return described;
}

int Tenths(const Json& celsius) {
  constexpr double kTenths = 10;
  return static_cast<int>(std::lround(celsius.get<double>() * kTenths));
}

void AddFirmwareLists(const client::Snapshot& snapshot, Json& profile) {
  Json& batteries = profile["batteries"] = Json::array();
  for (const Json& battery : KeptList(snapshot, client::kBatteriesSubject, "batteries")) {
    batteries.push_back(DescribedBattery(battery));
  }
  const auto list = [&snapshot](const char* field) {
    return KeptList(snapshot, client::kFirmwareListsSubject, field);
  };
  profile["messages"] = RenamedList(
      list("messages"),
      {{"number", "number"}, {"severityCode", "severity"}, {"seen", "seen"}, {"text", "text"}});
  profile["tabletButtons"] =
      RenamedList(list("scanCodes"), {{"scanCode", "scanCode"}, {"button", "name"}});
  Json& sensors = profile["thermalSensors"] = Json::array();
  for (const Json& sensor : list("sensors")) {
    Json described = Renamed(sensor, {{"number", "number"}, {"location", "location"}});
    described["temperature"] = Tenths(sensor.at("celsius"));
    described["limit"] = Tenths(sensor.at("limitCelsius"));
    sensors.push_back(std::move(described));
  }
  Json& log = profile["log"] = Json::array();
  for (const Json& entry : list("entries")) log.push_back(DescribedLogEntry(entry));
}

}  // namespace

Json ProfileOf(const client::Snapshot& snapshot, bool keeps_identity) {
  if (snapshot.IsRedacted()) {
    throw client::Error(client::kInvalidValue, "redacted-snapshot",
                        "A redacted snapshot no longer has the values that a machine is made of.");
  }
  const client::Snapshot source = keeps_identity ? snapshot : client::WithOtherIdentity(snapshot);
  Json profile = {{"schemaVersion", 1},
                  {"name", "from-snapshot"},
                  {"description", "a machine as it was at " + source.TakenAt()}};
  if (const Json table = KeptValue(source, client::kTableSubject); table.contains("table")) {
    profile["smbiosTable"] = table["table"];
  }
  AddInterface(source, profile);
  AddIdentity(source, profile);
  AddBoot(source, profile);
  AddAttributes(source, profile);
  AddFirmwareLists(source, profile);
  return profile;
}

}  // namespace mira::console
