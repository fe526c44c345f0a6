#include "client/firmware_list.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <sstream>

#include "client/call.h"
#include "client/commands.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {
namespace {

constexpr double kTenths = 10;  // of a degree

// One of the lists: what the firmware calls it, and its field in documents.
struct ListName {
  std::uint16_t select;
  const char* target;
  const char* field;
};

template <typename List, typename FromJson>
std::vector<typename List::Entry> Read(Session& session, const ListName& name, FromJson from_json) {
  constexpr std::uint16_t kClass = 17;
  if (const Snapshot* const kept = session.Kept()) {
    try {
      return kept->List(kFirmwareListsSubject, name.field, from_json);
    } catch (Error& error) {
      // Where none could be read, the first one's error stands for all.
      if (!error.target.empty()) error.target = name.target;
      throw;
    }
  }
  List list;
  Execute(session, {kClass, name.select}, list, {.target = name.target});
  return std::move(list.Entries);
}

template <typename Entry>
Json ListJson(const std::vector<Entry>& entries) {
  Json list = Json::array();
  for (const Entry& entry : entries) list.push_back(ToJson(entry));
  return list;
}

std::string SeverityName(std::uint8_t severity) {
  static constexpr const char* kNames[] = {"information", "warning", "error"};
  return severity < std::size(kNames) ? kNames[severity] : "severity " + std::to_string(severity);
}

std::string TwoDigits(unsigned number) { return (number < 10 ? "0" : "") + std::to_string(number); }

Json ShowLog(Request& request) {
  Session& session = request.GetSession();
  const std::string list = request.Text("list", "entries");
  if (list == "messages") return {{"messages", ListJson(ReadMessages(session))}};
  if (list == "scan-codes") return {{"scanCodes", ListJson(ReadScanCodes(session))}};
  return {{"entries", ListJson(ReadLog(session))}};
}

Json ShowThermal(Request& request) {
  return {{"sensors", ListJson(ReadThermalSensors(request.GetSession()))}};
}

}  // namespace

std::vector<CLogEntries::Entry> ReadLog(Session& session) {
  return Read<CLogEntries>(session, {24, "log", "entries"}, LogEntryFromJson);
}

std::vector<CFirmwareMessages::Entry> ReadMessages(Session& session) {
  return Read<CFirmwareMessages>(session, {16, "messages", "messages"}, MessageFromJson);
}

std::vector<CTabletScanCodes::Entry> ReadScanCodes(Session& session) {
  return Read<CTabletScanCodes>(session, {18, "tablet scan codes", "scanCodes"}, ScanCodeFromJson);
}

std::vector<CThermalSensors::Entry> ReadThermalSensors(Session& session) {
  return Read<CThermalSensors>(session, {22, "thermal sensors", "sensors"}, ThermalSensorFromJson);
}

Json ToJson(const CLogEntries::Entry& e) {
  const std::string time = std::to_string(e.Year) + "-" + TwoDigits(e.Month) + "-" +
                           TwoDigits(e.Day) + "T" + TwoDigits(e.Hour) + ":" + TwoDigits(e.Minute) +
                           ":" + TwoDigits(e.Second);
  return {{"time", time},
          {"severity", SeverityName(e.Severity)},
          {"severityCode", e.Severity},
          {"code", e.Code},
          {"text", TextJson(e.Text)}};
}

Json ToJson(const CFirmwareMessages::Entry& e) {
  return {{"number", e.Number},
          {"severity", SeverityName(e.Severity)},
          {"severityCode", e.Severity},
          {"seen", e.Seen == 1},
          {"text", TextJson(e.Text)}};
}

Json ToJson(const CTabletScanCodes::Entry& e) {
  return {{"scanCode", e.ScanCode}, {"button", TextJson(e.Button)}};
}

Json ToJson(const CThermalSensors::Entry& e) {
  return {{"number", e.Number},
          {"location", TextJson(e.Location)},
          {"celsius", e.Temperature / kTenths},
          {"limitCelsius", e.Limit / kTenths}};
}

CLogEntries::Entry LogEntryFromJson(const Json& json) {
  CLogEntries::Entry e;
  std::istringstream time(json.at("time").get<std::string>());
  unsigned parts[6] = {};
  for (unsigned& part : parts) {
    time >> part;
    time.get();
  }
  const auto byte = [&parts](std::size_t i) { return static_cast<std::uint8_t>(parts[i]); };
  e.Year = static_cast<std::uint16_t>(parts[0]);
  e.Month = byte(1);
  e.Day = byte(2);
  e.Hour = byte(3);
  e.Minute = byte(4);
  e.Second = byte(5);
  e.Severity = json.at("severityCode");
  e.Code = json.at("code");
  e.Text = TextFromJson(json.at("text"));
  return e;
}

CFirmwareMessages::Entry MessageFromJson(const Json& json) {
  CFirmwareMessages::Entry e;
  e.Number = json.at("number");
  e.Severity = json.at("severityCode");
  e.Seen = json.at("seen").get<bool>() ? 1 : 0;
  e.Text = TextFromJson(json.at("text"));
  return e;
}

CTabletScanCodes::Entry ScanCodeFromJson(const Json& json) {
  CTabletScanCodes::Entry e;
  e.ScanCode = json.at("scanCode");
  e.Button = TextFromJson(json.at("button"));
  return e;
}

CThermalSensors::Entry ThermalSensorFromJson(const Json& json) {
  const auto tenths = [&json](const char* key) {
    const double lowest = std::numeric_limits<std::int16_t>::min();
    const double highest = std::numeric_limits<std::int16_t>::max();
    return static_cast<std::int16_t>(
        std::clamp(std::round(json.at(key).get<double>() * kTenths), lowest, highest));
  };
  CThermalSensors::Entry e;
  e.Number = json.at("number");
  e.Temperature = tenths("celsius");
  e.Limit = tenths("limitCelsius");
  e.Location = TextFromJson(json.at("location"));
  return e;
}

std::vector<Command> FirmwareListCommands() {
  return {
      {.name = "log",
       .summary = "Show the firmware's log, its messages, a tablet's scan codes",
       .arguments = {{.name = "list",
                      .help = "entries (the default), messages or scan-codes",
                      .positional = true,
                      .choices = {"entries", "messages", "scan-codes"}}},
       .run = ShowLog},
      {.name = "thermal", .summary = "Show the thermal sensors", .run = ShowThermal},
  };
}

}  // namespace mira::client
