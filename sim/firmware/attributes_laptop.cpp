// The setup attributes of the laptop: a row each, grouped as its setup program shows them.

#include <algorithm>
#include <map>
#include <string_view>

#include "sim/firmware/attributes.h"
#include "sim/firmware/laptop_rows.h"

namespace mira::sim {

namespace laptop {
namespace {

constexpr Row kSystem[] = {
    // "{…}" stands for what the profile says.
    Text("SystemManufacturer", u"Manufacturer", u"Who made this computer.", 0, 32, "")
        .Now("{manufacturer}")
        .ReadOnly(),
    Text("SystemProduct", u"Product name", u"The model of this computer.", 0, 32, "")
        .Now("{product}")
        .ReadOnly(),
    Text("ServiceTag", u"Service tag", u"Identifies this computer towards the service.", 0, 16, "")
        .Now("{service_tag}")
        .ReadOnly(),
    Text("FirmwareVersion", u"Firmware version", u"The installed version.", 0, 16, "")
        .Now("{bios_version}")
        .ReadOnly(),
    Text("FirmwareDate", u"Firmware date", u"When the installed version was built.", 10, 10,
         "01/01/2026")
        .Now("{bios_date}")
        .ReadOnly(),
    Text("AssetTag", u"Asset tag", u"A number that the owner gives to the computer.", 0, 16, "")
        .Now("{asset_tag}"),
    Text("OwnershipTag", u"Ownership tag", u"Shown while the computer starts.", 0, 60, ""),
    Text("DepartmentName", u"Department", u"Free text for the administrator.", 0, 40, "")
        .Now("Front counter"),
    Text("SiteCode[EU]", u"Site code", u"Four to eight characters that name the site.", 4, 8,
         "NF01"),
    Number("FirstPowerOnDate", u"First power-on date", u"Year, month and day as one number.", 0,
           99991231, 1, "0")
        .Now("20260402")
        .ReadOnly(),
    Number("PowerOnHours", u"Power-on time", u"In hours, counted since the first start.", 0,
           0xFFFFFFFF, 1, "0")
        .Now("1873")
        .ReadOnly(),
    Number("MemorySize[MB]", u"Installed memory", u"The memory found at start, in megabytes.", 0,
           1048576, 1, "0")
        .Now("32768")
        .ReadOnly(),
    Number("ProcessorCores", u"Processor cores", u"The cores that the processor has.", 1, 64, 1,
           "1")
        .Now("12")
        .ReadOnly(),
    Pick("MemoryChannelMode", u"Memory channels", u"How the modules are interleaved.",
         "Single|Dual", "Single")
        .Now("Dual")
        .ReadOnly(),
    Pick("ChassisKind", u"Chassis", u"The kind of this computer.", "Laptop|Desktop|Tablet",
         "Laptop")
        .ReadOnly(),
};

constexpr Row kBoot[] = {
    OnOff("UEFI NVMe SSD", u"Start from the built-in drive", u"Offers the drive in the boot order.",
          true),
    OnOff("UEFI USB Device", u"Start from USB", u"Offers USB drives in the boot order.", true),
    OnOff("UEFI PXE IPv4", u"Start from the network, IPv4", u"Offers PXE over IPv4.", true),
    OnOff("UEFI PXE IPv6", u"Start from the network, IPv6", u"Offers PXE over IPv6.", false),
    OnOff("UEFI HTTPS Boot", u"Start over HTTPS", u"Offers an image from a web server.", false),
    OnOff("UEFI SD Card", u"Start from the card reader", u"Offers SD cards in the boot order.",
          false),
    Order("BootOrder", u"Boot order", u"Where an operating system is looked for, first to last.",
          "UEFI NVMe SSD|UEFI USB Device|UEFI PXE IPv4|UEFI PXE IPv6|UEFI HTTPS Boot|UEFI SD Card",
          "UEFI NVMe SSD|UEFI USB Device|UEFI PXE IPv4"),
    Order("RecoveryBootOrder", u"Recovery boot order",
          u"Where the recovery system is looked for; the maker sets it.",
          "UEFI USB Device|UEFI NVMe SSD|UEFI HTTPS Boot", "UEFI USB Device|UEFI NVMe SSD")
        .ReadOnly(),
    Pick("BootMode", u"Boot mode", u"This computer starts UEFI systems only.", "UEFI", "UEFI")
        .ReadOnly(),
    Pick("FastStart", u"Fast start", u"How much is tested at start.", "Minimal|Thorough|Automatic",
         "Automatic"),
    OnOff("QuietStart", u"Logo instead of messages", u"Shows the logo while starting.", true),
    Number("SetupPromptTime[Seconds]", u"Time for the setup key",
           u"How long the start waits for a key, in seconds.", 0, 10, 1, "2"),
    OnOff("StartMenuKey", u"F12 boot menu", u"Lets the user choose a boot source once.", true),
    OnOff("WarnWithoutBattery", u"Warn without a battery", u"Stops when no battery is found.",
          false),
    OnOff("StopOnAdapterWarning", u"Warn on a weak power adapter",
          u"Tells when the adapter gives less power than needed.", true),
    OnOff("StopOnKeyboardError", u"Stop on keyboard errors", u"Stops when a key is stuck.", true),
    Pick("ErrorAction", u"On warnings and errors", u"What happens when the self test finds some.",
         "Prompt|Continue on warnings|Continue", "Prompt"),
    Number("StartRetries", u"Start attempts", u"How often the boot order is tried.", 1, 10, 1, "3"),
    OnOff("MacPassThrough", u"Own MAC address at docks",
          u"Docks use the address of the computer instead of their own.", true),
};

constexpr Row kSecurity[] = {
    Pick("TrustedPlatformModule", u"TPM", u"The security chip.", "Off|On", "On"),
    OnOff("TpmHashSha256", u"TPM SHA-256", u"Measures the start with SHA-256.", true),
    OnOff("TpmClearSkipsPrompt", u"Clear the TPM without a prompt",
          u"Nobody is asked when a program clears the chip.", false),
    Pick("TpmVersion", u"TPM version", u"The version of the chip.", "1.2|2.0", "2.0").ReadOnly(),
    OnOff("ChassisIntrusion", u"Opened chassis", u"Tells when the computer was opened.", true),
    OnOff("ChassisIntrusionStop", u"Stop after opening",
          u"The computer does not start before somebody confirms.", false),
    OnOff("SetupLockout", u"Lock setup", u"Setup opens with its password only.", false),
    OnOff("MasterPasswordLockout", u"No master password",
          u"The service cannot open the computer. Forgotten passwords stay forgotten.", false),
    OnOff("StrongPasswords", u"Strong passwords", u"New passwords have 8 or more characters.",
          false),
    Number("PasswordMinLength", u"Shortest password", u"In characters.", 4, 32, 1, "4"),
    Number("PasswordMaxLength", u"Longest password", u"In characters.", 4, 32, 1, "32"),
    OnOff("PasswordBypass", u"Restart without password",
          u"A restart, unlike a start, does not ask for the passwords.", false),
    OnOff("UserPasswordChange", u"Users change passwords",
          u"The system password can be changed without the setup password.", true),
    OnOff("UefiCapsuleUpdates", u"Updates by capsule", u"The system may bring firmware updates.",
          true),
    OnOff("FirmwareDowngrade", u"Older firmware", u"Allows to go back to an older version.", true),
    OnOff("SecureBoot", u"Secure boot", u"Starts signed systems only.", true),
    Pick("SecureBootMode", u"Secure boot mode", u"Whether violations stop the start.",
         "Deployed|Audit", "Deployed"),
    OnOff("SecureBootExpertKeys", u"Own secure boot keys", u"Keys can be changed in setup.", false),
    OnOff("ThirdPartyUefiCa", u"Third-party certificates", u"Starts what other makers have signed.",
          true),
    OnOff("SmmProtection", u"Protected firmware memory", u"Keeps the system out of it.", true),
    Pick("TheftTracking", u"Theft tracking", u"Switching it off for good cannot be undone.",
         "Disabled|Enabled|Off for good", "Enabled"),
    OnOff("ExecuteDisable", u"Execute disable", u"Data is not executed.", true).ReadOnly(),
    Secret("OwnerPassword", u"Owner password", u"The owner proves the ownership with it.", 4, 32),
    Secret("RemoteWipePin", u"Remote wipe PIN", u"Confirms a wipe from afar.", 6, 12),
    Secret("FactoryPassword", u"Factory password", u"The maker sets it.", 8, 32).ReadOnly(),
};

constexpr Row kProfiles[] = {
    Group("BalancedProfile", u"Balanced", u"The settings of this profile.", "Balanced use",
          "ThermalMode|ProcessorTurboMode|PanelBrightnessBattery"),
    Group("QuietProfile", u"Quiet", u"The settings of this profile.", "Quiet use",
          "ThermalMode|ProcessorTurboMode|FanFloor|KeyboardBacklight"),
    Group("TravelProfile", u"Travel", u"The settings of this profile.", "Use on battery",
          "BatteryChargeMode|WirelessLanController|BluetoothController|PanelBrightnessBattery"),
    Group("FactoryResetScope", u"Reset by the service", u"What the service resets.",
          "Kept by the maker", "SecureBoot|TrustedPlatformModule")
        .ReadOnly(),
    OneOf("ActiveProfile", u"Active profile", u"The profile that is in use.",
          "BalancedProfile|QuietProfile|TravelProfile", "BalancedProfile"),
    OneOf("FactoryProfile", u"Profile as delivered", u"The profile that a reset brings back.",
          "BalancedProfile|QuietProfile", "BalancedProfile")
        .ReadOnly(),
};

// In the order of the setup program, which is that of the attributes' handles.
std::vector<std::span<const Row>> AllGroups() {
  std::vector<std::span<const Row>> groups = {kSystem, kBoot};
  const auto add = [&groups](const std::vector<std::span<const Row>>& more) {
    groups.insert(groups.end(), more.begin(), more.end());
  };
  add(DeviceGroups());
  add({kSecurity});
  add(PowerGroups());
  add({kProfiles});
  return groups;
}

}  // namespace
}  // namespace laptop

std::vector<SetupAttribute> LaptopAttributes(const Profile& profile) {
  const std::map<std::string_view, std::string> facts = {
      {"{manufacturer}", profile.manufacturer}, {"{product}", profile.product},
      {"{service_tag}", profile.service_tag},   {"{bios_version}", profile.bios_version},
      {"{bios_date}", profile.bios_date},       {"{asset_tag}", profile.asset_tag},
  };
  std::vector<SetupAttribute> attributes;
  for (const std::span<const laptop::Row> group : laptop::AllGroups()) {
    for (const laptop::Row& row : group) {
      SetupAttribute& added = attributes.emplace_back();
      added = {row.kind,          row.name,  row.display, row.help,      Parts(row.choices), "",
               row.default_value, row.lower, row.upper,   row.increment, row.read_only};
      const char* const value = row.value != nullptr ? row.value : row.default_value;
      const auto fact = facts.find(value);
      added.value = value;
      if (fact == facts.end()) continue;
      // A profile's texts may be longer than the attribute that shows them, or not printable.
      added.value = fact->second.substr(0, static_cast<std::size_t>(row.upper));
      std::replace_if(
          added.value.begin(), added.value.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    }
  }
  return attributes;
}

}  // namespace mira::sim
