// The setup attributes of the laptop: a row each, grouped as its setup program shows them.

#include <algorithm>
#include <map>
#include <string_view>

#include "sim/firmware/attributes.h"

namespace mira::sim {
namespace {

using Wide = const char16_t*;

struct Row {
  AttributeKind kind;
  const char* name;
  Wide display;
  Wide help;
  const char* choices;
  const char* default_value;
  const char* value;  // null: the default
  std::uint64_t lower;
  std::uint64_t upper;
  std::uint32_t increment = 0;
  bool read_only = false;

  // In force instead of the default.
  constexpr Row Now(const char* text) const {
    Row row = *this;
    row.value = text;
    return row;
  }
  constexpr Row ReadOnly() const {
    Row row = *this;
    row.read_only = true;
    return row;
  }
};

constexpr Row Pick(const char* name, Wide display, Wide help, const char* choices,
                   const char* default_value) {
  return {AttributeKind::kEnumeration, name, display, help, choices, default_value, nullptr, 1, 1};
}

// Up to `most` values at a time.
constexpr Row PickSome(const char* name, Wide display, Wide help, const char* choices,
                       const char* default_value, std::uint64_t most) {
  return {
      AttributeKind::kEnumeration, name, display, help, choices, default_value, nullptr, 0, most};
}

constexpr Row OnOff(const char* name, Wide display, Wide help, bool is_on) {
  return Pick(name, display, help, "Disabled|Enabled", is_on ? "Enabled" : "Disabled");
}

constexpr Row Number(const char* name, Wide display, Wide help, std::uint64_t lower,
                     std::uint64_t upper, std::uint32_t increment, const char* default_value) {
  return {AttributeKind::kInteger, name,    display, help,  "",
          default_value,           nullptr, lower,   upper, increment};
}

constexpr Row Text(const char* name, Wide display, Wide help, std::uint64_t shortest,
                   std::uint64_t longest, const char* default_value) {
  return {AttributeKind::kString, name,    display,  help,   "",
          default_value,          nullptr, shortest, longest};
}

constexpr Row Secret(const char* name, Wide display, Wide help, std::uint64_t shortest,
                     std::uint64_t longest) {
  return {AttributeKind::kPassword, name, display, help, "", "", nullptr, shortest, longest};
}

constexpr Row Order(const char* name, Wide display, Wide help, const char* sources,
                    const char* order) {
  return {AttributeKind::kBootOrder, name, display, help, sources, order, nullptr, 1, 6};
}

// `title` names the collection, beside the attribute's own name.
constexpr Row Group(const char* name, Wide display, Wide help, const char* title,
                    const char* members) {
  return {AttributeKind::kCollection, name, display, help, title, "", members, 0, 8};
}

constexpr Row OneOf(const char* name, Wide display, Wide help, const char* members,
                    const char* member) {
  return {AttributeKind::kConfigSet, name, display, help, members, "", member, 0, 0};
}

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

constexpr Row kDrives[] = {
    Pick("StorageMode", u"Drive controller", u"Changing it may keep the system from starting.",
         "AHCI|RAID", "AHCI"),
    OnOff("Sata0Port", u"SATA port", u"Switches the port on.", true),
    OnOff("M2Slot1", u"M.2 slot 1", u"Switches the slot on.", true),
    OnOff("M2Slot2", u"M.2 slot 2", u"Switches the slot on.", true),
    OnOff("DriveHealthReports", u"Drive health at start", u"Asks the drives for their health.",
          true),
    OnOff("BlockSid", u"Block SID", u"Keeps drives from being taken over after the start.", true),
    OnOff("DriveFreezeLock", u"Freeze lock", u"Drive passwords can be changed in setup only.",
          true),
    OnOff("EraseOnNextStart", u"Erase drives at next start",
          u"All data is lost at the next start. It cannot be brought back.", false),
    Number("SpinDownDelay[Minutes]", u"Drive idle time", u"In minutes; 0 never stops the drive.", 0,
           120, 5, "20"),
    Number("NvmeQueueDepth", u"NVMe queue depth", u"Commands that may wait at a time.", 16, 1024,
           16, "256"),
};

constexpr Row kDevices[] = {
    OnOff("IntegratedCamera", u"Camera", u"Switches the built-in camera on.", true),
    OnOff("IntegratedMicrophone", u"Microphone", u"Switches the built-in microphones on.", true),
    OnOff("IntegratedSpeakers", u"Speakers", u"Switches the built-in speakers on.", true),
    OnOff("SecureDigitalCardReader", u"Card reader", u"Switches the SD card reader on.", true),
    OnOff("SecureDigitalCardReadOnly", u"Card reader read-only",
          u"Cards can be read but not written.", false),
    OnOff("FingerprintReader", u"Fingerprint reader", u"Switches the reader on.", true),
    OnOff("SmartCardReader", u"Smart card reader", u"Switches the reader on.", true),
    OnOff("IntegratedTouchscreen", u"Touch screen", u"Switches touch input on.", true),
    OnOff("IntegratedTouchpad", u"Touch pad", u"Switches the touch pad on.", true),
    Pick("PointingStick", u"Pointing stick", u"Which of the two pointing devices works.",
         "Touch pad|Stick|Both", "Both"),
    OnOff("KeyboardBacklight", u"Keyboard light", u"Lights the keys.", true),
    Pick("KeyboardBacklightLevel", u"Keyboard light level", u"How bright the keys are.",
         "Off|Dim|Bright", "Dim"),
    Pick("KeyboardBacklightTimeout", u"Keyboard light timeout",
         u"When the light goes out without a key.", "5[s]|10[s]|30[s]|60[s]|300[s]|Never", "10[s]"),
    OnOff("FnLock", u"Fn lock", u"F keys act without Fn.", true),
    Pick("FnLockMode", u"Fn lock mode", u"What the F keys do first.", "Standard|Media", "Media"),
    OnOff("NumLockAtStart", u"Num Lock at start", u"The digits of the number pad work.", true),
    OnOff("DockUnderLid", u"Work with closed lid", u"At a dock the closed lid does nothing.", true),
    OnOff("ThunderboltPorts", u"Thunderbolt ports", u"Switches the fast ports on.", true),
    OnOff("ThunderboltAtStart", u"Thunderbolt at start",
          u"Devices behind these ports work before the system does.", false),
    Pick("ThunderboltSecurity", u"Thunderbolt security", u"Which devices may use memory access.",
         "None|User approval|Secure connect|Display only", "User approval"),
    OnOff("PcieTunnel", u"PCIe tunnel", u"Carries PCIe over these ports.", true),
    PickSome("StatusLightSignals", u"Status lights", u"What the status lights show.",
             "Power|Battery|Drive|Wireless|Mute", "Power|Battery", 5),
    PickSome("PrivacyKeys", u"Privacy keys", u"Keys that switch parts off.",
             "Camera[F9]|Microphone[F4]|Screen[F10]", "Camera[F9]|Microphone[F4]", 3),
};

constexpr Row kUsb[] = {
    OnOff("UsbBoot", u"USB before the start", u"USB drives work before the system does.", true),
    OnOff("UsbPortsExternal", u"External USB ports", u"Switches these ports on.", true),
    OnOff("UsbPortLeft", u"Left USB port", u"Switches this port on.", true),
    OnOff("UsbPortRight", u"Right USB port", u"Switches this port on.", true),
    OnOff("UsbPowerShare", u"USB power share", u"Charges devices while the computer sleeps.",
          false),
    Number("UsbPowerShareLimit", u"USB power share limit",
           u"Charging stops when the battery is down to this much, in percent.", 5, 95, 5, "30"),
    OnOff("UsbWake", u"USB wakes the computer", u"A key or a mouse wakes the computer.", false),
    OnOff("UsbCDocks", u"USB-C docks", u"Docks of this maker work in spite of closed ports.", true),
};

constexpr Row kDisplay[] = {
    Number("PanelBrightnessBattery", u"Brightness on battery", u"In percent, in steps of 5.", 0,
           100, 5, "40"),
    Number("PanelBrightnessMains", u"Brightness on mains", u"In percent, in steps of 5.", 0, 100, 5,
           "100"),
    Pick("PrimaryDisplay", u"Primary display", u"Where the start is shown.",
         "Automatic|Panel|External", "Automatic"),
    Pick("GraphicsMemory", u"Graphics memory", u"Memory that is set aside for graphics.",
         "64 MB|128 MB|256 MB|512 MB", "128 MB"),
    OnOff("SwitchableGraphics", u"Switchable graphics", u"Uses the second unit when needed.", true),
    OnOff("PanelSelfRefresh", u"Panel self refresh", u"Saves power while the picture stands still.",
          true),
    OnOff("PrivacyScreen", u"Privacy screen", u"The picture is seen from the front only.", false),
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

constexpr Row kProcessor[] = {
    OnOff("HyperThreading", u"Hyper-threading", u"Two threads a core.", true),
    OnOff("ProcessorTurboMode", u"Turbo mode", u"The clock rises above its base when it can.",
          true),
    OnOff("ProcessorClockSteps", u"Clock steps", u"The clock falls when little is to be done.",
          true),
    OnOff("ProcessorClockByHardware", u"Clock by hardware",
          u"The processor finds its clock itself.", true),
    OnOff("ProcessorIdleStates", u"Idle states", u"The processor sleeps between its tasks.", true),
    Number("ActiveProcessorCores", u"Active cores", u"0 means all.", 0, 12, 2, "0"),
    OnOff("ProcessorVirtualization", u"Virtualization", u"Virtual machines use the hardware.",
          true),
    OnOff("DeviceVirtualization", u"Virtualization of devices",
          u"Virtual machines use devices directly.", true),
    OnOff("TrustedExecution", u"Trusted execution", u"Measured start of virtual machines.", false),
    OnOff("DmaProtection", u"DMA protection", u"Devices reach only the memory given to them.",
          true),
    OnOff("MemoryEncryption", u"Memory encryption", u"Memory is encrypted as a whole.", false),
    Number("PowerLimitSustained[mW]", u"Sustained power", u"In milliwatts.", 9000, 28000, 500,
           "15000"),
    Number("PowerLimitPeak[mW]", u"Peak power", u"In milliwatts, for some seconds.", 15000, 64000,
           500, "55000"),
    Text("MicrocodeRevision", u"Microcode", u"The revision that is loaded.", 0, 16, "")
        .Now("0x00000430")
        .ReadOnly(),
};

constexpr Row kPower[] = {
    Pick("ThermalMode", u"Thermal mode", u"How the fans and the clock react to heat.",
         "Optimized|Cool|Quiet|Performance", "Optimized"),
    Number("FanFloor", u"Lowest fan speed", u"In percent. Above 60 °C the fans run anyway.", 0, 60,
           10, "0"),
    Pick("BatteryChargeMode", u"Battery charging", u"How the battery is charged.",
         "Adaptive|Standard|Express|Mains mostly|Custom", "Adaptive"),
    Number("ChargeStart", u"Custom charge start", u"In percent.", 50, 95, 1, "75"),
    Number("ChargeStop", u"Custom charge stop", u"In percent.", 55, 100, 1, "90"),
    OnOff("PeakShift", u"Peak shift", u"Runs on the battery while power is dear.", false),
    Number("PeakShiftStart", u"Peak shift start", u"Minutes after midnight, in quarters.", 0, 1425,
           15, "1020"),
    Number("PeakShiftEnd", u"Peak shift end", u"Minutes after midnight, in quarters.", 0, 1425, 15,
           "1200"),
    Number("PeakShiftBattery", u"Peak shift limit", u"Ends when the battery is down to this.", 15,
           100, 5, "15"),
    Pick("PowerLoss", u"After a power failure", u"What the computer does when power is back.",
         "Stay off|Start|Last state", "Stay off"),
    Pick("AutomaticStart", u"Start by the clock", u"Starts the computer at a set time.",
         "Disabled|Every day|Weekdays|Chosen days", "Disabled"),
    PickSome("AutomaticStartDays", u"Chosen days",
             u"The days on which the clock starts the computer.",
             "Monday|Tuesday|Wednesday|Thursday|Friday|Saturday|Sunday", "Monday|Friday", 7),
    Number("AutomaticStartTime", u"Time to start", u"Minutes after midnight.", 0, 1439, 1, "480"),
    OnOff("LidSwitch", u"Lid switch", u"Closing the lid is noticed.", true),
    OnOff("StartOnLidOpen", u"Start on opening the lid", u"Opening the lid starts the computer.",
          true),
    OnOff("StartOnPowerAdapter", u"Start on mains", u"The adapter starts the computer.", false),
    OnOff("DeepSleepControl", u"Deep sleep", u"Uses almost no power while off.", true),
    OnOff("BlockSleepState", u"Block sleep", u"The computer does not sleep.", false),
    OnOff("ActiveStatePower", u"Link power saving", u"PCIe links sleep when idle.", true),
    Number("BatteryHealth", u"Battery health", u"In percent of the battery's first capacity.", 0,
           100, 1, "100")
        .Now("93")
        .ReadOnly(),
    Number("BatteryWear[Cycles]", u"Battery cycles", u"How often the battery was charged.", 0,
           65535, 1, "0")
        .Now("118")
        .ReadOnly(),
};

constexpr Row kNetwork[] = {
    OnOff("WirelessLanController", u"Wireless LAN", u"Switches the radio on.", true),
    OnOff("BluetoothController", u"Bluetooth", u"Switches the radio on.", true),
    OnOff("MobileNetworkController", u"Mobile network", u"Switches the modem on.", false),
    OnOff("GlobalPositioningReceiver", u"GPS", u"Switches the receiver on.", false),
    OnOff("WirelessSwitch", u"Wireless switch", u"The key switches the radios.", true),
    OnOff("WirelessOffAtLan", u"No wireless beside LAN",
          u"A cable in the socket switches wireless LAN off.", false),
    OnOff("LanController", u"Wired LAN", u"Switches the socket on.", true),
    Pick("WakeOnLan", u"Wake on LAN", u"Which network starts the computer.",
         "Disabled|LAN|LAN or PXE|WLAN|LAN or WLAN", "Disabled"),
    OnOff("WakeOnDock", u"Wake on dock", u"A dock wakes the computer.", true),
    OnOff("NetworkStack", u"Network before the start", u"Needed to start from a network.", true),
    Text("HttpsBootUrl", u"HTTPS boot address", u"Where the image lies.", 0, 96,
         "https://boot.example.com/image.efi"),
    Text("HttpsBootProxy", u"HTTPS boot proxy", u"Host and port; empty for none.", 0, 64, ""),
    Number("VlanId", u"VLAN", u"0 for none.", 0, 4094, 1, "0"),
    Text("WirelessProfile", u"Wireless profile", u"The network to use before the start.", 0, 32,
         ""),
    Secret("WirelessPassphrase", u"Wireless passphrase",
           u"For the network to use before the start.", 8, 63),
    Number("MacAddress", u"MAC address", u"The address of the socket, as one number.", 0,
           0xFFFFFFFFFFFF, 1, "0")
        .Now("2199023255553")
        .ReadOnly(),
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

}  // namespace

std::vector<SetupAttribute> LaptopAttributes(const Profile& profile) {
  const std::map<std::string_view, std::string> facts = {
      {"{manufacturer}", profile.manufacturer}, {"{product}", profile.product},
      {"{service_tag}", profile.service_tag},   {"{bios_version}", profile.bios_version},
      {"{bios_date}", profile.bios_date},       {"{asset_tag}", profile.asset_tag},
  };
  const std::span<const Row> groups[] = {kSystem, kBoot,    kDrives,   kDevices,
                                         kUsb,    kDisplay, kSecurity, kProcessor,
                                         kPower,  kNetwork, kProfiles};
  std::vector<SetupAttribute> attributes;
  for (const std::span<const Row> group : groups) {
    for (const Row& row : group) {
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
