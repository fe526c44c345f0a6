#ifndef MIRA_SIM_PROFILE_H_
#define MIRA_SIM_PROFILE_H_

// What a simulated machine is made of. The defaults describe a business laptop; change what a test
// or a demonstration needs:
//
//   mira::sim::Profile profile = *mira::sim::FindProfile("laptop");
//   profile.is_administrator = false;
//   mira::sim::Machine machine(profile);

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sim/boot_lists.h"
#include "sim/setup_attribute.h"

namespace mira::sim {

struct Token {
  std::uint16_t id;
  std::uint16_t location;
  std::uint16_t value;
};

// A BIOS password as the firmware keeps it: characters, or where scan codes are in force, those.
struct Password {
  std::string text = "";  // empty: not installed
  std::uint8_t max_length = 32;
  std::uint8_t min_length = 4;
};

struct Drive {
  std::uint8_t handle;
  std::string description;
  std::string password = "";  // empty: none is set
  bool present = true;
  bool answers = true;               // its interface can be reached
  bool can_clear = true;             // a password that is set can be removed again
  bool has_maximum_security = true;  // takes security mode 1
};

// A user who may authenticate before the boot.
struct PreBootUser {
  std::string id;          // 1 to 8 bytes
  std::string passphrase;  // 1 to 16 bytes
  std::uint32_t permitted = 1;
  std::uint32_t required = 1;
};

struct PreBoot {
  std::uint32_t methods = 0x7;  // ways to authenticate, a bit each
  std::size_t capacity = 4;     // users
  std::vector<PreBootUser> users;
  // Who authenticates whenever the machine starts, if that user is known, and how.
  std::string authenticates;
  std::uint32_t method = 1;
  std::string credential = "logon credential";  // what the operating system may fetch once
};

// A battery with its charging configuration. Day words are as docs/identity.md lays them out.
struct Battery {
  std::uint8_t number = 1;  // of the battery's SMBIOS structure, counted from 1
  std::uint16_t charge_cycles = 143;
  std::uint32_t design_capacity = 63000;  // mWh, as the next
  std::uint32_t full_charge_capacity = 58170;
  std::uint32_t config_version = 0x00010000;
  std::uint8_t charging_mode = 1;  // 1 to 5
  std::uint8_t start_limit = 50;   // percent, as all limits and thresholds
  std::uint8_t stop_limit = 90;
  std::array<std::uint32_t, 7> charging_days = {0, 0x4420, 0x4420, 0x4420, 0x4420, 0x4420, 0};
  bool peak_shift = false;
  std::uint8_t peak_threshold = 30;
  std::uint8_t lowest_peak_threshold = 15;
  std::uint8_t highest_peak_threshold = 100;
  std::array<std::uint32_t, 7> peak_days = {0, 0, 0, 0, 0, 0, 0};
};

struct FirmwareMessage {
  std::uint16_t number;
  std::uint8_t severity;  // 0 information, 1 warning, 2 error
  std::string text;
  bool seen = false;
};

struct ThermalSensor {
  std::uint16_t number;
  std::int16_t temperature;  // tenths of a degree Celsius, as the limit
  std::int16_t limit;
  std::string location;
};

struct TabletButton {
  std::uint16_t scan_code;
  std::string name;
};

struct LogEntry {
  std::uint16_t year;
  std::array<std::uint8_t, 5> time;  // month, day, hour, minute, second
  std::uint8_t severity;             // as a message's
  std::uint16_t code;
  std::string text;
};

struct Profile {
  std::string name = "laptop";
  std::string description = "a business laptop with a calling interface";

  // The user
  bool is_administrator = true;

  // The firmware table as the system serves it, with its 8-byte header; empty: the laptop's own.
  std::vector<std::uint8_t> firmware_table;
  std::uint8_t smbios_major = 3;
  std::uint8_t smbios_minor = 2;

  // The WMI side
  bool has_wmi_instance = true;
  std::uint32_t buffer_size = 4096;  // bytes of the transfer buffer
  std::uint32_t buffer_fix = 1;      // 1: announced
  std::wstring instance_path = L"WMI_Query.InstanceName=\"ACPI\\\\PNP0C14\\\\MIRA_0\"";

  // The calling interface
  bool has_calling_interface = true;
  // Bit n: class n is announced and served. Bit 31 stays clear: a host reads the bitmap as a signed
  // number.
  std::uint32_t supported_classes = 0x05F71FFF;
  std::uint16_t bios_flags0 =
      0x0003;  // of structure type 177; bit 1: calls through WMI are supported
  std::vector<Token> tokens = {
      {0x0058, 0x0070, 0x0001}, {0x0059, 0x0071, 0x0000}, {0x007D, 0x0072, 0x0000},
      {0x00D1, 0x0074, 0x0001}, {0x0135, 0x0078, 0x0002}, {0x014B, 0x0079, 0x0001},
      {0x01BD, 0x0080, 0x0000}, {0x02E3, 0x0091, 0x0001},
  };

  // Passwords of command classes 9, 10 and 12, and of the drives
  Password class9;
  Password class10;
  Password class12;
  bool passwords_are_scan_codes = false;
  int wrong_passwords_until_locked = 3;  // then nothing is verified until the machine restarts
  std::uint32_t key_seed = 0x1D872B41;   // security keys follow from it
  std::vector<Drive> drives = {{0x01, "M.2 PCIe SSD-0"}, {0x82, "SATA-1"}};
  PreBoot pre_boot;

  // What it boots from, and the blocks of data that its firmware keeps
  std::vector<BootList> boot_lists = LaptopBootLists();
  std::uint8_t boots_from = 1;  // one of the lists
  LegacyBoot legacy_boot = LaptopLegacyBoot();
  std::vector<DataBlock> data_blocks = LaptopDataBlocks();
  // Class 5. Empty: the laptop's own, for which clear bit 5 of supported_classes if none are
  // wanted.
  std::vector<SetupAttribute> attributes;
  // Names and values, written since the machine has started.
  std::vector<std::pair<std::string, std::string>> pending_attributes;

  // The machine's identity
  std::string manufacturer = "Northfield Systems";
  std::string product = "Meridian 14 G3";
  std::string service_tag = "7KX2M91";
  std::string asset_tag = "NF-004711";
  std::string ownership_tag = "Property of the Northfield Library";
  std::map<std::uint32_t, std::string> extended_tags = {{0, "Reading room, desk 12"}, {1, ""}};
  std::string image_server = "images.northfield.example";
  std::string mac_address = "02A1B2C3D4E5";       // 12 hexadecimal digits
  std::string eppid = "NF0F4D1K4873461Q0012A00";  // 23 characters
  std::string thin_client = "kiosk-07";           // at most 19 characters
  std::string bios_version = "1.8.2";
  std::string bios_date = "03/14/2026";

  // Batteries, and what class 17 tells
  std::vector<Battery> batteries = {{}};
  std::vector<FirmwareMessage> messages = {
      {1, 0, "The firmware was updated to 1.8.2."},
      {2, 1, "The battery has lost a tenth of its capacity."},
  };
  std::vector<TabletButton> tablet_buttons = {
      {0xE05B, "Home"}, {0xE02E, "Volume -"}, {0xE030, "Volume +"}};
  std::vector<ThermalSensor> thermal_sensors = {
      {1, 473, 1000, "CPU"}, {2, 391, 850, "Memory"}, {3, -55, 700, "Wireless card"}};
  std::vector<LogEntry> log = {
      {2026, {3, 16, 7, 58, 3}, 0, 0x0101, "Firmware updated"},
      {2026, {4, 2, 12, 30, 41}, 1, 0x0207, "Fan 1 stalled once"},
      {2026, {4, 9, 23, 5, 0}, 2, 0x0302, "Shut down: too hot"},
  };
};

// The profiles by name, for listing and for FindProfile().
const std::vector<Profile>& Profiles();
// Null for an unknown name.
const Profile* FindProfile(std::string_view name);

}  // namespace mira::sim

#endif  // MIRA_SIM_PROFILE_H_
