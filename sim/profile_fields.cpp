#include "sim/profile_fields.h"

#include <limits>
#include <string>

#include "bytes/text.h"
#include "sim/device_path_reader.h"

namespace mira::sim {
namespace {

// A map whose keys are other things than texts; `to_key` refuses what is none.
template <typename Map, typename ToText, typename ToKey>
void DescribeMap(Fields& fields, std::string_view name, Map& map, ToText to_text, ToKey to_key) {
  std::map<std::string, std::string> texts;
  for (const auto& [key, value] : map) texts[to_text(key)] = value;
  if (!fields.Has(name)) return;
  fields(name, texts);
  if (!fields.IsLoading()) return;
  map.clear();
  for (const auto& [key, value] : texts) map.insert(map.end(), {to_key(key), value});
}

}  // namespace

// Found through the arguments' namespace.
void Describe(Fields& f, Token& token) {
  f.Must("id", token.id).Must("location", token.location).Must("value", token.value);
}

void Describe(Fields& f, Password& password) {
  f("text", password.text)("longest", password.max_length)("shortest", password.min_length);
}

void Describe(Fields& f, Drive& drive) {
  f.Must("handle", drive.handle).Must("description", drive.description);
  f("password", drive.password)("present", drive.present)("answers", drive.answers);
  f("canClear", drive.can_clear)("hasMaximumSecurity", drive.has_maximum_security);
}

void Describe(Fields& f, PreBootUser& user) {
  f.Must("id", user.id).Must("passphrase", user.passphrase);
  f("permitted", user.permitted)("required", user.required);
  f.Require(!user.id.empty() && user.id.size() <= 8, "an ID has 1 to 8 bytes");
  f.Require(!user.passphrase.empty() && user.passphrase.size() <= 16,
            "a passphrase has 1 to 16 bytes");
}

void Describe(Fields& f, PreBoot& pre_boot) {
  auto capacity = static_cast<std::uint32_t>(pre_boot.capacity);
  f("methods", pre_boot.methods)("capacity", capacity)("users", pre_boot.users);
  f("authenticates", pre_boot.authenticates)("method", pre_boot.method);
  f("credential", pre_boot.credential);
  pre_boot.capacity = capacity;
}

void Describe(Fields& f, Battery& b) {
  f("number", b.number)("chargeCycles", b.charge_cycles)("designCapacity", b.design_capacity);
  f("fullChargeCapacity", b.full_charge_capacity)("configVersion", b.config_version);
  f("chargingMode", b.charging_mode)("startLimit", b.start_limit)("stopLimit", b.stop_limit);
  f("chargingDays", b.charging_days)("peakShift", b.peak_shift)("peakThreshold", b.peak_threshold);
  f("lowestPeakThreshold", b.lowest_peak_threshold);
  f("highestPeakThreshold", b.highest_peak_threshold)("peakDays", b.peak_days);
}

void Describe(Fields& f, FirmwareMessage& message) {
  f.Must("number", message.number).Must("text", message.text);
  f("severity", message.severity)("seen", message.seen);
}

void Describe(Fields& f, ThermalSensor& sensor) {
  f.Must("number", sensor.number).Must("location", sensor.location);
  f("temperature", sensor.temperature)("limit", sensor.limit);
}

void Describe(Fields& f, TabletButton& button) {
  f.Must("scanCode", button.scan_code).Must("name", button.name);
}

void Describe(Fields& f, LogEntry& entry) {
  auto& [month, day, hour, minute, second] = entry.time;
  f.Must("year", entry.year).Must("month", month).Must("day", day);
  f("hour", hour)("minute", minute)("second", second);
  f("severity", entry.severity)("code", entry.code).Must("text", entry.text);
}

void Describe(Fields& f, BootOption& option) {
  if (f.IsLoading()) option.attributes = kOptionActive;
  f.Must("number", option.number)("attributes", option.attributes);
  f.Must("description", option.description);
  if (f.IsLoading() && f.Has("path")) {
    std::string text;
    f("path", text);
    try {
      option.path = ReadDevicePath(text);
    } catch (const StateError& error) {
      f.Require(false, error.what());
    }
  }
  if (f.IsLoading() && f.Has("device")) {
    std::uint16_t type = 0;
    std::uint16_t status = 0;
    std::string name;
    f.Group("device", [&] { f.Must("type", type).Must("status", status).Must("name", name); });
    option.path = LegacyDevice(type, status, name);
  }
  f("pathBytes", option.path)("optionalData", option.optional_data);
}

void Describe(Fields& f, BootList& list) {
  f.Must("value", list.value).Must("name", list.name).Must("options", list.options);
  f.Must("order", list.order);
}

void Describe(Fields& f, LegacyBootDevice& device) {
  f.Must("type", device.device_type).Must("status", device.status_flags);
  f("bootHandler", device.boot_handler)("description", device.description);
  f("expansion", device.expansion);
}

void Describe(Fields& f, LegacyBoot& legacy) {
  f("maxDevices", legacy.max_devices)("devices", legacy.devices);
  f("iplPriority", legacy.ipl_priority)("bcvPriority", legacy.bcv_priority);
}

void Describe(Fields& f, DataBlock& block) {
  auto capacity = static_cast<std::uint32_t>(block.capacity);
  f.Must("class", block.cls).Must("name", block.name)("bytes", block.bytes);
  f.Must("capacity", capacity);
  f.Require(block.name.size() == 4, "a block's name has four characters");
  f.Require(block.cls == 2 || block.cls == 6, "classes 2 and 6 move blocks");
  block.capacity = capacity;
}

void Describe(Fields& f, AttributeLock& lock) {
  f.Must("attribute", lock.attribute).Must("value", lock.value);
  f("afterRestart", lock.after_restart);
}

void Describe(Fields& f, AttributeNorm& norm) {
  f.Choice("letters", norm.letters, {"asWritten", "upper", "lower"});
  f("step", norm.step)("values", norm.values);
}

void Describe(Fields& f, SetupAttribute& attribute) {
  f.Choice(
      "kind", attribute.kind,
      {"enumeration", "string", "password", "integer", "bootOrder", "collection", "configSet"});
  f.Must("name", attribute.name)("display", attribute.display)("help", attribute.help);
  f("choices", attribute.choices)("value", attribute.value)("default", attribute.default_value);
  f("lower", attribute.lower)("upper", attribute.upper)("increment", attribute.increment);
  f("readOnly", attribute.read_only);
  // Said where they are so.
  if (f.IsLoading() || !attribute.unless.attribute.empty()) {
    f("readOnlyUnless", attribute.unless);
  }
  if (f.IsLoading() || attribute.value_after_restart) {
    f("valueAfterRestart", attribute.value_after_restart);
  }
  if (f.IsLoading() || attribute.norm != AttributeNorm()) f("normalizes", attribute.norm);
  if (f.IsLoading() || !attribute.resets.empty()) f("resets", attribute.resets);
  f.Require(attribute.upper >= attribute.lower, "the limits are 0 at least, and in order");
}

namespace {

void DescribeMachine(Fields& f, Profile& p) {
  f("administrator", p.is_administrator)("smbiosTable", p.firmware_table);
  f("smbiosMajor", p.smbios_major)("smbiosMinor", p.smbios_minor);
  std::string path(p.instance_path.begin(), p.instance_path.end());
  f("wmiInstance", p.has_wmi_instance)("instancePath", path);
  if (f.IsLoading()) p.instance_path.assign(path.begin(), path.end());
  f("bufferSize", p.buffer_size)("bufferFix", p.buffer_fix);
  f("callingInterface", p.has_calling_interface)("biosFlags", p.bios_flags0);
  f("supportedClasses", p.supported_classes)("tokens", p.tokens);
}

void DescribePasswords(Fields& f, Profile& p) {
  auto wrong = static_cast<std::uint32_t>(p.wrong_passwords_until_locked);
  f("class9Password", p.class9)("class10Password", p.class10)("class12Password", p.class12);
  f("scanCodes", p.passwords_are_scan_codes)("wrongPasswordsUntilLocked", wrong);
  f("keySeed", p.key_seed)("drives", p.drives)("preBoot", p.pre_boot);
  f.Require(wrong <= 1000, "the lock-out comes after 1000 wrong passwords at most");
  p.wrong_passwords_until_locked = static_cast<int>(wrong);
}

void DescribeIdentity(Fields& f, Profile& p) {
  f("manufacturer", p.manufacturer)("product", p.product)("serviceTag", p.service_tag);
  f("assetTag", p.asset_tag)("ownershipTag", p.ownership_tag);
  DescribeMap(
      f, "extendedTags", p.extended_tags,
      [](std::uint32_t number) { return std::to_string(number); },
      [&f](const std::string& text) {
        const auto number = bytes::ParseDigits(text, 10, std::numeric_limits<std::uint32_t>::max());
        f.Require(number.has_value(), "tags have numbers");
        return static_cast<std::uint32_t>(number.value_or(0));
      });
  f("imageServer", p.image_server)("macAddress", p.mac_address)("eppid", p.eppid);
  f("thinClient", p.thin_client)("biosVersion", p.bios_version)("biosDate", p.bios_date);
  f.Require(p.eppid.size() == 23, "an ePPID has 23 characters");
}

}  // namespace

void Describe(Fields& f, Profile& p) {
  f("name", p.name)("description", p.description);
  DescribeMachine(f, p);
  DescribePasswords(f, p);
  f("bootLists", p.boot_lists)("bootsFrom", p.boots_from)("legacyBoot", p.legacy_boot);
  f("dataBlocks", p.data_blocks)("attributes", p.attributes);
  const auto same = [](const std::string& text) { return text; };
  DescribeMap(f, "pendingAttributes", p.pending_attributes, same, same);
  DescribeIdentity(f, p);
  f("batteries", p.batteries)("messages", p.messages)("tabletButtons", p.tablet_buttons);
  f("thermalSensors", p.thermal_sensors)("log", p.log);
}

}  // namespace mira::sim
