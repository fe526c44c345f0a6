#include "client/inventory_json.h"

#include <functional>
#include <utility>

namespace mira::client {
namespace {

void Put(Json& json, const char* name, const OptionalText& text) {
  if (text) json[name] = TextJson(*text);
}

void Put(Json& json, const char* name, const OptionalNumber& number) {
  if (number) json[name] = NumberJson(*number);
}

void Put(Json& json, const char* name, const std::optional<bool>& flag) {
  if (flag) json[name] = *flag;
}

// An object of the fields that are there.
template <typename... Fields>
Json Object(const Fields&... fields) {
  Json json = Json::object();
  (Put(json, fields.first, fields.second.get()), ...);
  return json;
}

template <typename Value>
std::pair<const char*, std::reference_wrapper<const Value>> F(const char* name,
                                                              const Value& value) {
  return {name, std::cref(value)};
}

Json ToJson(const BiosInfo& v) {
  return Object(F("vendor", v.vendor), F("version", v.version), F("releaseDate", v.release_date),
                F("romSizeKiB", v.rom_size_kib), F("release", v.release),
                F("embeddedControllerRelease", v.firmware_release), F("uefi", v.is_uefi),
                F("virtualMachine", v.is_virtual_machine));
}

Json ToJson(const SystemInfo& v) {
  return Object(F("manufacturer", v.manufacturer), F("productName", v.product_name),
                F("version", v.version), F("serialNumber", v.serial_number), F("uuid", v.uuid),
                F("wakeUpType", v.wake_up_type), F("skuNumber", v.sku_number),
                F("family", v.family));
}

Json ToJson(const BoardInfo& v) {
  return Object(F("manufacturer", v.manufacturer), F("product", v.product), F("version", v.version),
                F("serialNumber", v.serial_number), F("assetTag", v.asset_tag),
                F("location", v.location), F("type", v.type));
}

Json ToJson(const ChassisInfo& v) {
  return Object(F("manufacturer", v.manufacturer), F("type", v.type), F("lock", v.has_lock),
                F("version", v.version), F("serialNumber", v.serial_number),
                F("assetTag", v.asset_tag), F("skuNumber", v.sku_number),
                F("heightUnits", v.height_units), F("powerCords", v.power_cords));
}

Json ToJson(const ProcessorInfo& v) {
  return Object(F("socket", v.socket), F("populated", v.is_populated), F("status", v.status),
                F("type", v.type), F("family", v.family), F("manufacturer", v.manufacturer),
                F("id", v.id), F("version", v.version), F("cores", v.cores),
                F("coresEnabled", v.cores_enabled), F("threads", v.threads),
                F("threadsEnabled", v.threads_enabled), F("voltageMv", v.voltage_mv),
                F("externalClockMHz", v.external_clock_mhz), F("maxSpeedMHz", v.max_speed_mhz),
                F("currentSpeedMHz", v.current_speed_mhz), F("serialNumber", v.serial_number),
                F("assetTag", v.asset_tag), F("partNumber", v.part_number));
}

Json ToJson(const CacheInfo& v) {
  return Object(F("designation", v.designation), F("level", v.level), F("enabled", v.is_enabled),
                F("mode", v.mode), F("location", v.location),
                F("installedSizeKiB", v.installed_size_kib), F("maxSizeKiB", v.max_size_kib),
                F("speedNs", v.speed_ns), F("errorCorrection", v.error_correction),
                F("type", v.type), F("associativity", v.associativity));
}

Json ToJson(const MemoryArray& v) {
  return Object(F("location", v.location), F("use", v.use),
                F("errorCorrection", v.error_correction), F("maxCapacityKiB", v.max_capacity_kib),
                F("slots", v.slots));
}

Json ToJson(const MemorySlot& v) {
  Json json = Object(
      F("locator", v.locator), F("bankLocator", v.bank_locator), F("populated", v.is_populated),
      F("sizeMiB", v.size_mib), F("sizeKiB", v.size_kib), F("formFactor", v.form_factor),
      F("type", v.type), F("technology", v.technology), F("speedMTs", v.speed_mts),
      F("configuredSpeedMTs", v.configured_speed_mts), F("totalWidthBits", v.total_width_bits),
      F("dataWidthBits", v.data_width_bits), F("ranks", v.ranks),
      F("minVoltageMv", v.min_voltage_mv), F("maxVoltageMv", v.max_voltage_mv),
      F("configuredVoltageMv", v.configured_voltage_mv), F("manufacturer", v.manufacturer),
      F("serialNumber", v.serial_number), F("assetTag", v.asset_tag),
      F("partNumber", v.part_number), F("firmwareVersion", v.firmware_version));
  if (!v.details.empty()) json["typeDetails"] = v.details;
  return json;
}

Json ToJson(const ExpansionSlot& v) {
  return Object(F("designation", v.designation), F("type", v.type), F("width", v.width),
                F("usage", v.usage), F("length", v.length), F("id", v.id), F("address", v.address));
}

Json ToJson(const Port& v) {
  return Object(F("internalDesignator", v.internal_designator),
                F("internalConnector", v.internal_connector),
                F("externalDesignator", v.external_designator),
                F("externalConnector", v.external_connector), F("type", v.type));
}

Json ToJson(const PortableBattery& v) {
  return Object(F("location", v.location), F("manufacturer", v.manufacturer), F("name", v.name),
                F("manufactureDate", v.manufacture_date), F("serialNumber", v.serial_number),
                F("chemistry", v.chemistry), F("designCapacityMWh", v.design_capacity_mwh),
                F("designVoltageMv", v.design_voltage_mv), F("sbdsVersion", v.sbds_version),
                F("maxErrorPercent", v.max_error_percent));
}

Json ToJson(const TpmInfo& v) {
  return Object(F("vendor", v.vendor), F("specVersion", v.spec_version),
                F("firmwareVersion", v.firmware_version), F("description", v.description));
}

Json ToJson(const FirmwareComponent& v) {
  return Object(F("name", v.name), F("version", v.version), F("id", v.id),
                F("releaseDate", v.release_date), F("manufacturer", v.manufacturer),
                F("lowestSupportedVersion", v.lowest_supported_version),
                F("imageSizeBytes", v.image_size_bytes), F("state", v.state),
                F("updatable", v.is_updatable), F("writeProtected", v.is_write_protected));
}

template <typename Part>
Json List(const std::vector<Part>& parts) {
  Json list = Json::array();
  for (const Part& part : parts) list.push_back(ToJson(part));
  return list;
}

}  // namespace

Json ToJson(const Inventory& inventory) {
  Json json = Json::object();
  Put(json, "smbiosVersion", inventory.smbios_version);
  json["complete"] = inventory.is_complete;
  if (inventory.system) json["system"] = ToJson(*inventory.system);
  if (inventory.bios) json["bios"] = ToJson(*inventory.bios);
  json["boards"] = List(inventory.boards);
  json["chassis"] = List(inventory.chassis);
  json["processors"] = List(inventory.processors);
  json["caches"] = List(inventory.caches);
  json["memoryArrays"] = List(inventory.memory_arrays);
  json["memorySlots"] = List(inventory.memory_slots);
  json["slots"] = List(inventory.slots);
  json["ports"] = List(inventory.ports);
  json["batteries"] = List(inventory.batteries);
  json["tpms"] = List(inventory.tpms);
  json["firmware"] = List(inventory.firmware);
  Json strings = Json::array();
  for (const std::string& text : inventory.oem_strings) strings.push_back(TextJson(text));
  json["oemStrings"] = std::move(strings);
  Json others = Json::array();
  for (const auto& [type, count] : inventory.others) {
    others.push_back({{"type", type}, {"count", count}});
  }
  json["otherStructures"] = std::move(others);
  return json;
}

}  // namespace mira::client
