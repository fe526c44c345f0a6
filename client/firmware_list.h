#ifndef MIRA_CLIENT_FIRMWARE_LIST_H_
#define MIRA_CLIENT_FIRMWARE_LIST_H_

// The lists that the firmware keeps: its log, its messages to the user, a tablet's scan codes and
// the thermal sensors. The layout of their entries is our reading of it.

#include <cstdint>
#include <string>
#include <vector>

#include "buffers/received_data.h"
#include "client/json.h"
#include "client/session.h"

namespace mira::client {

std::vector<CLogEntries::Entry> ReadLog(Session& session);
std::vector<CFirmwareMessages::Entry> ReadMessages(Session& session);
std::vector<CTabletScanCodes::Entry> ReadScanCodes(Session& session);
std::vector<CThermalSensors::Entry> ReadThermalSensors(Session& session);

// {"time", "severity", "severityCode", "code", "text"}
Json ToJson(const CLogEntries::Entry& entry);
CLogEntries::Entry LogEntryFromJson(const Json& json);
// {"number", "severity", "severityCode", "seen", "text"}
Json ToJson(const CFirmwareMessages::Entry& entry);
CFirmwareMessages::Entry MessageFromJson(const Json& json);
// {"scanCode", "button"}
Json ToJson(const CTabletScanCodes::Entry& entry);
CTabletScanCodes::Entry ScanCodeFromJson(const Json& json);
// {"number", "location", "celsius", "limitCelsius"}
Json ToJson(const CThermalSensors::Entry& entry);
CThermalSensors::Entry ThermalSensorFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_FIRMWARE_LIST_H_
