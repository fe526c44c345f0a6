#include "sim/profile.h"

#include <algorithm>

namespace mira::sim {

const std::vector<Profile>& Profiles() {
  static const std::vector<Profile> profiles = [] {
    const Profile laptop;
    Profile no_wmi = laptop;
    no_wmi.name = "no-calling-interface";
    no_wmi.description = "a PC of another make: SMBIOS only, no calling interface behind WMI";
    no_wmi.has_wmi_instance = false;
    no_wmi.has_calling_interface = false;
    Profile probed = laptop;
    probed.name = "unannounced-fix";
    probed.description =
        "older firmware that does not announce its buffer handling; Init probes it";
    probed.buffer_fix = 0;
    Profile refused = laptop;
    refused.name = "acpi-off";
    refused.description = "firmware whose flags say that calls through WMI are not supported";
    refused.bios_flags0 = 0x0001;
    Profile user = laptop;
    user.name = "standard-user";
    user.description = "the laptop, used without administrator rights";
    user.is_administrator = false;
    Profile locked = laptop;
    locked.name = "locked";
    locked.description =
        "the laptop with passwords: setup (class 9) \"setup1\", system (class 10) "
        "\"system1\", drive 1 \"drive1\"";
    locked.class9.text = "setup1";
    locked.class10.text = "system1";
    locked.drives[0].password = "drive1";
    Profile scan_codes = laptop;
    scan_codes.name = "scan-codes";
    scan_codes.description =
        "the laptop with firmware that takes keyboard scan codes: setup (class 9) \"setup1\"";
    scan_codes.passwords_are_scan_codes = true;
    scan_codes.class9.text = "\x1F\x12\x14\x16\x19\x02";
    Profile pre_boot = laptop;
    pre_boot.name = "pre-boot";
    pre_boot.description =
        "the laptop with a system (class 10) password \"system1\" and the pre-boot user \"anna\" "
        "(\"sesame\"), who has authenticated";
    pre_boot.class10.text = "system1";
    pre_boot.pre_boot.users = {{.id = "anna", .passphrase = "sesame"}};
    pre_boot.pre_boot.authenticates = "anna";
    Profile no_attributes = laptop;
    no_attributes.name = "no-attributes";
    no_attributes.description = "older firmware without BIOS attributes (class 5)";
    no_attributes.supported_classes &= ~(1u << 5);
    Profile pending = laptop;
    pending.name = "pending-attributes";
    pending.description = "the laptop, two of whose BIOS attributes were changed since it started";
    pending.pending_attributes = {{"WakeOnLan", "LAN"}, {"PanelBrightnessBattery", "55"}};
    return std::vector<Profile>{laptop, no_wmi,     probed,   refused,       user,
                                locked, scan_codes, pre_boot, no_attributes, pending};
  }();
  return profiles;
}

const Profile* FindProfile(std::string_view name) {
  const auto& profiles = Profiles();
  const auto found = std::find_if(profiles.begin(), profiles.end(),
                                  [name](const Profile& p) { return p.name == name; });
  return found != profiles.end() ? &*found : nullptr;
}

}  // namespace mira::sim
