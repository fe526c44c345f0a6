#ifndef MIRA_CLIENT_INVENTORY_H_
#define MIRA_CLIENT_INVENTORY_H_

// The machine as today's standard reads its SMBIOS table (DSP0134 3.7), from the table's bytes. A
// field that the firmware does not state is absent: it lies beyond its structure's length, names no
// string, or holds the value that the standard calls unknown. Texts are the firmware's bytes.
//
//   const Inventory machine = ReadInventory(smbios::ReadFirmwareTable());
//   for (const MemorySlot& slot : machine.memory_slots) Show(slot.locator, slot.size_mib);

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bytes/reader.h"

namespace mira::client {

using OptionalText = std::optional<std::string>;
using OptionalNumber = std::optional<std::uint64_t>;

// DSP0134 7.1
struct BiosInfo {
  OptionalText vendor, version, release_date;
  OptionalNumber rom_size_kib;
  OptionalText release;           // "1.8": of the firmware
  OptionalText firmware_release;  // of the embedded controller
  std::optional<bool> is_uefi, is_virtual_machine;
};

// 7.2
struct SystemInfo {
  OptionalText manufacturer, product_name, version, serial_number;
  OptionalText uuid;  // as RFC 9562 writes it, in lower case
  OptionalText wake_up_type, sku_number, family;
};

// 7.3
struct BoardInfo {
  OptionalText manufacturer, product, version, serial_number, asset_tag, location, type;
};

// 7.4
struct ChassisInfo {
  OptionalText manufacturer, type;
  std::optional<bool> has_lock;
  OptionalText version, serial_number, asset_tag, sku_number;
  OptionalNumber height_units, power_cords;
};

// 7.5
struct ProcessorInfo {
  OptionalText socket, type, family, manufacturer, id, version, status;
  std::optional<bool> is_populated;
  OptionalNumber voltage_mv, external_clock_mhz, max_speed_mhz, current_speed_mhz;
  OptionalText serial_number, asset_tag, part_number;
  OptionalNumber cores, cores_enabled, threads, threads_enabled;
};

// 7.8
struct CacheInfo {
  OptionalText designation;
  OptionalNumber level;
  std::optional<bool> is_enabled;
  OptionalText mode, location, type, associativity, error_correction;
  OptionalNumber max_size_kib, installed_size_kib, speed_ns;
};

// 7.17
struct MemoryArray {
  OptionalText location, use, error_correction;
  OptionalNumber max_capacity_kib, slots;
};

// 7.18
struct MemorySlot {
  OptionalText locator, bank_locator;
  std::optional<bool> is_populated;
  OptionalNumber size_mib;  // a size that is no whole number of MiB stands in size_kib
  OptionalNumber size_kib;
  OptionalText form_factor, type, technology;
  std::vector<std::string> details;
  OptionalNumber total_width_bits, data_width_bits, speed_mts, configured_speed_mts, ranks;
  OptionalNumber min_voltage_mv, max_voltage_mv, configured_voltage_mv;
  OptionalText manufacturer, serial_number, asset_tag, part_number, firmware_version;
};

// 7.10
struct ExpansionSlot {
  OptionalText designation, type, width, usage, length;
  OptionalNumber id;
  OptionalText address;  // "0000:00:1f.0"
};

// 7.9
struct Port {
  OptionalText internal_designator, internal_connector, external_designator, external_connector,
      type;
};

// 7.23
struct PortableBattery {
  OptionalText location, manufacturer, manufacture_date, serial_number, name, chemistry;
  OptionalNumber design_capacity_mwh, design_voltage_mv, max_error_percent;
  OptionalText sbds_version;
};

// 7.44
struct TpmInfo {
  OptionalText vendor, spec_version, firmware_version, description;
};

// 7.46
struct FirmwareComponent {
  OptionalText name, version, id, release_date, manufacturer, lowest_supported_version, state;
  OptionalNumber image_size_bytes;
  std::optional<bool> is_updatable, is_write_protected;
};

struct Inventory {
  OptionalText smbios_version;  // "3.2"
  bool is_complete = false;     // else the table is malformed, or cut short, behind what was read
  std::optional<BiosInfo> bios;
  std::optional<SystemInfo> system;
  std::vector<BoardInfo> boards;
  std::vector<ChassisInfo> chassis;
  std::vector<ProcessorInfo> processors;
  std::vector<CacheInfo> caches;
  std::vector<MemoryArray> memory_arrays;
  std::vector<MemorySlot> memory_slots;
  std::vector<ExpansionSlot> slots;
  std::vector<Port> ports;
  std::vector<PortableBattery> batteries;
  std::vector<TpmInfo> tpms;
  std::vector<FirmwareComponent> firmware;
  std::vector<std::string> oem_strings;  // 7.12
  // How many structures there are of each type that stands nowhere above.
  std::map<std::uint8_t, std::size_t> others;
};

// `firmware_table` is in the form of the firmware table service (8-byte header, then the
// structures), as client/smbios_file.h gives it. Of a malformed table what comes before the damage.
Inventory ReadInventory(bytes::ByteSpan firmware_table);

}  // namespace mira::client

#endif  // MIRA_CLIENT_INVENTORY_H_
