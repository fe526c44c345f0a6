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
    return std::vector<Profile>{laptop, no_wmi, probed, refused, user, locked};
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
