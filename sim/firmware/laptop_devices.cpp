// The setup attributes of the laptop's devices: a row each, grouped as its setup program shows
// them.

#include "sim/firmware/laptop_rows.h"

namespace mira::sim::laptop {
namespace {

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

}  // namespace

std::vector<std::span<const Row>> DeviceGroups() { return {kDrives, kDevices, kUsb, kDisplay}; }

}  // namespace mira::sim::laptop
