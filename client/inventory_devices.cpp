// Expansion slots, ports, batteries, TPM and firmware components.

#include <cstdio>

#include "client/inventory_names.h"
#include "client/inventory_parts.h"

namespace mira::client {
namespace {

constexpr const char* kSlotWidths[] = {"Other",  "Unknown", "8-bit", "16-bit", "32-bit",
                                       "64-bit", "128-bit", "x1",    "x2",     "x4",
                                       "x8",     "x12",     "x16",   "x32"};
constexpr const char* kSlotUsages[] = {"Other", "Unknown", "Available", "In Use", "Unavailable"};
constexpr const char* kSlotLengths[] = {
    "Other", "Unknown", "Short", "Long", "2.5\" Drive Form Factor", "3.5\" Drive Form Factor"};
constexpr const char* kChemistries[] = {
    "Other",       "Unknown",  "Lead Acid",      "Nickel Cadmium", "Nickel Metal Hydride",
    "Lithium Ion", "Zinc Air", "Lithium Polymer"};
constexpr const char* kFirmwareStates[] = {
    "Other",  "Unknown",         "Disabled",      "Enabled",
    "Absent", "Standby Offline", "Standby Spare", "Unavailable Offline"};

template <typename... Values>
std::string Format(const char* format, Values... values) {
  char text[64];
  const int size = std::snprintf(text, sizeof(text), format, values...);
  return std::string(text, static_cast<std::size_t>(size));
}

// Segment, bus, device and function; all ones where the slot has none.
OptionalText Address(const StructureFields& fields) {
  const auto segment = fields.Word(0x0D);
  const auto bus = fields.Byte(0x0F);
  const auto device = fields.Byte(0x10);
  if (!segment || !bus || !device) return std::nullopt;
  if (*segment == 0xFFFF && *bus == 0xFF && *device == 0xFF) return std::nullopt;
  return Format("%04x:%02x:%02x.%x", unsigned{*segment}, unsigned{*bus}, *device >> 3u,
                *device & 7u);
}

// Days in bits 0 to 4, months in bits 5 to 8, years since 1980 above.
OptionalText SbdsDate(const StructureFields& fields) {
  const auto date = fields.Known(0x12, 2, {0});
  if (!date) return std::nullopt;
  return Format("%04u-%02u-%02u", static_cast<unsigned>(1980 + (*date >> 9)),
                static_cast<unsigned>(*date >> 5 & 0x0F), static_cast<unsigned>(*date & 0x1F));
}

}  // namespace

ExpansionSlot ReadExpansionSlot(const StructureFields& fields) {
  ExpansionSlot slot;
  slot.designation = fields.String(0x04);
  if (const auto code = fields.Byte(0x05)) slot.type = SlotTypeName(*code);
  if (const auto code = fields.Byte(0x06)) slot.width = NameOf(kSlotWidths, 1, *code);
  if (const auto code = fields.Byte(0x07)) slot.usage = NameOf(kSlotUsages, 1, *code);
  if (const auto code = fields.Byte(0x08)) slot.length = NameOf(kSlotLengths, 1, *code);
  slot.id = fields.Word(0x09);
  slot.address = Address(fields);
  return slot;
}

Port ReadPort(const StructureFields& fields) {
  Port port;
  port.internal_designator = fields.String(0x04);
  if (const auto code = fields.Byte(0x05)) port.internal_connector = ConnectorTypeName(*code);
  port.external_designator = fields.String(0x06);
  if (const auto code = fields.Byte(0x07)) port.external_connector = ConnectorTypeName(*code);
  if (const auto code = fields.Byte(0x08)) port.type = PortTypeName(*code);
  return port;
}

PortableBattery ReadPortableBattery(const StructureFields& fields) {
  constexpr std::uint8_t kSeeSbdsChemistry = 2;
  PortableBattery battery;
  battery.location = fields.String(0x04);
  battery.manufacturer = fields.String(0x05);
  battery.manufacture_date = fields.String(0x06);
  if (!battery.manufacture_date) battery.manufacture_date = SbdsDate(fields);
  battery.serial_number = fields.String(0x07);
  if (const auto serial = fields.Word(0x10); serial && !battery.serial_number) {
    battery.serial_number = Format("%04X", unsigned{*serial});
  }
  battery.name = fields.String(0x08);
  if (const auto code = fields.Byte(0x09)) battery.chemistry = NameOf(kChemistries, 1, *code);
  if (fields.Byte(0x09) == kSeeSbdsChemistry && fields.String(0x14)) {
    battery.chemistry = fields.String(0x14);
  }
  if (const auto capacity = fields.Known(0x0A, 2, {0})) {
    const std::uint64_t multiplier = fields.Byte(0x15).value_or(1);
    battery.design_capacity_mwh = *capacity * (multiplier != 0 ? multiplier : 1);
  }
  battery.design_voltage_mv = fields.Known(0x0C, 2, {0});
  battery.sbds_version = fields.String(0x0E);
  battery.max_error_percent = fields.Known(0x0F, 1, {0xFF});
  return battery;
}

TpmInfo ReadTpm(const StructureFields& fields) {
  TpmInfo info;
  const std::string_view vendor = bytes::FixedText(bytes::AsText(fields.Bytes(0x04, 4)));
  if (!vendor.empty()) info.vendor = vendor;
  const auto major = fields.Byte(0x08);
  const auto minor = fields.Byte(0x09);
  if (major && minor) info.spec_version = Format("%u.%u", unsigned{*major}, unsigned{*minor});
  // 1.2 gives its version as the structure of its own standard, whose last two bytes are the
  // firmware's; 2.0 as two words, the higher one first.
  const auto firmware = fields.DWord(0x0A);
  if (firmware && major == 1) {
    info.firmware_version = Format("%u.%u", *firmware >> 16 & 0xFF, *firmware >> 24);
  } else if (firmware && major == 2) {
    info.firmware_version = Format("%u.%u", *firmware >> 16, *firmware & 0xFFFF);
  }
  info.description = fields.String(0x12);
  return info;
}

FirmwareComponent ReadFirmwareComponent(const StructureFields& fields) {
  FirmwareComponent component;
  component.name = fields.String(0x04);
  component.version = fields.String(0x05);
  component.id = fields.String(0x07);
  component.release_date = fields.String(0x09);
  component.manufacturer = fields.String(0x0A);
  component.lowest_supported_version = fields.String(0x0B);
  component.image_size_bytes = fields.Known(0x0C, 8, {0xFFFFFFFFFFFFFFFF});
  if (const auto characteristics = fields.Word(0x14)) {
    component.is_updatable = (*characteristics & 0x01) != 0;
    component.is_write_protected = (*characteristics & 0x02) != 0;
  }
  if (const auto code = fields.Byte(0x16)) component.state = NameOf(kFirmwareStates, 1, *code);
  return component;
}

}  // namespace mira::client
