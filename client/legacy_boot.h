#ifndef MIRA_CLIENT_LEGACY_BOOT_H_
#define MIRA_CLIENT_LEGACY_BOOT_H_

// The legacy boot priorities: the order in which the firmware tries the devices of the BIOS boot
// specification to load a system from (IPL), and that in which it lets them connect to the disk
// services (BCV). Both are lists of places in the table of devices.

#include <cstdint>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

// What the table's entries mean is the BIOS boot specification's; the firmware's may be another.
struct LegacyBootDevice {
  std::uint16_t type = 0;
  std::uint16_t status_flags = 0;
  std::uint32_t boot_handler = 0;  // addresses, segment and offset
  std::uint32_t description = 0;
  std::uint32_t expansion = 0;
};

struct LegacyBoot {
  std::vector<LegacyBootDevice> devices;
  std::vector<std::uint8_t> ipl;
  std::vector<std::uint8_t> bcv;
};

LegacyBoot ReadLegacyBoot(Session& session);

// The plan to set one of the orders or both: devices by their places in the table, or by the names
// of types that one device alone has. An empty list leaves that order as it is. Throws Error, which
// names unknown, missing and doubled ones, unless each device stands in the order once; with
// `force` only for those without a number.
Plan PlanLegacyBoot(Session& session, const std::vector<std::string>& ipl,
                    const std::vector<std::string>& bcv, bool force = false);

// {"devices": [{"device", "type", "typeName", …}], "iplPriority", "bcvPriority"}
Json ToJson(const LegacyBoot& boot);
LegacyBoot LegacyBootFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_LEGACY_BOOT_H_
