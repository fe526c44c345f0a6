#include "client/firmware_list.h"

#include <iterator>

#include "client/call.h"
#include "client/commands.h"

namespace mira::client {
namespace {

template <typename List>
auto Read(Session& session, std::uint16_t select, const char* target) {
  constexpr std::uint16_t kClass = 17;
  List list;
  Execute(session, {kClass, select}, list, {.target = target});
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
  return Read<CLogEntries>(session, 24, "log");
}

std::vector<CFirmwareMessages::Entry> ReadMessages(Session& session) {
  return Read<CFirmwareMessages>(session, 16, "messages");
}

std::vector<CTabletScanCodes::Entry> ReadScanCodes(Session& session) {
  return Read<CTabletScanCodes>(session, 18, "tablet scan codes");
}

std::vector<CThermalSensors::Entry> ReadThermalSensors(Session& session) {
  return Read<CThermalSensors>(session, 22, "thermal sensors");
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
  constexpr double kTenths = 10;
  return {{"number", e.Number},
          {"location", TextJson(e.Location)},
          {"celsius", e.Temperature / kTenths},
          {"limitCelsius", e.Limit / kTenths}};
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
