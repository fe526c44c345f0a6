// The setup attributes of the laptop's processor, power and network.

#include "sim/firmware/laptop_rows.h"

namespace mira::sim::laptop {
namespace {

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

}  // namespace

std::vector<std::span<const Row>> PowerGroups() { return {kProcessor, kPower, kNetwork}; }

}  // namespace mira::sim::laptop
