#ifndef MIRA_SIM_BOOT_LISTS_H_
#define MIRA_SIM_BOOT_LISTS_H_

// What a simulated machine boots from, and the named blocks of data that its firmware keeps.

#include <cstdint>
#include <string>
#include <vector>

namespace mira::sim {

inline constexpr std::uint32_t kOptionActive = 1;  // the attribute of an option that is tried

struct BootOption {
  std::uint16_t number;
  std::uint32_t attributes;
  std::u16string description;
  // UEFI: the device path. Legacy: device class and status with a text, see LegacyDevice().
  std::vector<std::uint8_t> path;
  std::vector<std::uint8_t> optional_data = {};
};

struct BootList {
  std::uint8_t value;  // the number that commands name it by
  std::u16string name;
  std::vector<BootOption> options;
  std::vector<std::uint16_t> order;  // the numbers of all options
};

// What a legacy list has in a path's place.
std::vector<std::uint8_t> LegacyDevice(std::uint16_t device_type, std::uint16_t status_flags,
                                       const std::string& description);

// A device of the BIOS boot specification's tables: 16 bytes each.
struct LegacyBootDevice {
  std::uint16_t device_type;
  std::uint16_t status_flags;
  std::uint32_t boot_handler = 0;
  std::uint32_t description = 0;
  std::uint32_t expansion = 0;
};

struct LegacyBoot {
  std::uint8_t max_devices = 8;
  std::vector<LegacyBootDevice> devices;
  // Indices into `devices`.
  std::vector<std::uint8_t> ipl_priority;
  std::vector<std::uint8_t> bcv_priority;
};

// A block of data: the command class that moves it, its name of four characters, its bytes and how
// many there may be.
struct DataBlock {
  std::uint16_t cls;
  std::string name;
  std::vector<std::uint8_t> bytes;
  std::size_t capacity;
};

std::vector<BootList> LaptopBootLists();
LegacyBoot LaptopLegacyBoot();
std::vector<DataBlock> LaptopDataBlocks();

}  // namespace mira::sim

#endif  // MIRA_SIM_BOOT_LISTS_H_
