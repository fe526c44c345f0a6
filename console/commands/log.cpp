#include <algorithm>
#include <iterator>
#include <memory>

#include "console/commands.h"
#include "console/firmware_list.h"

namespace mira::console {
namespace {

std::string SeverityName(std::uint8_t severity) {
  static constexpr const char* kNames[] = {"information", "warning", "error"};
  return severity < std::size(kNames) ? kNames[severity] : "severity " + std::to_string(severity);
}

std::string TwoDigits(unsigned number) { return (number < 10 ? "0" : "") + std::to_string(number); }

std::string Date(const CLogEntries::Entry& e) {
  return std::to_string(e.Year) + "-" + TwoDigits(e.Month) + "-" + TwoDigits(e.Day);
}

std::string Time(const CLogEntries::Entry& e) {
  return TwoDigits(e.Hour) + ":" + TwoDigits(e.Minute) + ":" + TwoDigits(e.Second);
}

ListText ReadEntries(CMiraIntf& mira) {
  ListText shown{.table = {{"Date", "Time", "Severity", "Code", "Text"}}};
  for (const auto& e : ReadList<CLogEntries>(mira, 24, "log").Entries) {
    const std::string severity = SeverityName(e.Severity);
    const std::string text = ToUtf8(e.Text);
    shown.list.push_back({{"time", Date(e) + "T" + Time(e)},
                          {"severity", severity},
                          {"severityCode", e.Severity},
                          {"code", e.Code},
                          {"text", text}});
    shown.table.push_back({Date(e), Time(e), severity, Hex(e.Code, 4), text});
  }
  return shown;
}

ListText ReadMessages(CMiraIntf& mira) {
  ListText shown{.table = {{"Number", "Severity", "Seen", "Text"}}};
  for (const auto& e : ReadList<CFirmwareMessages>(mira, 16, "messages").Entries) {
    const std::string severity = SeverityName(e.Severity);
    const bool seen = e.Seen == 1;
    const std::string text = ToUtf8(e.Text);
    shown.list.push_back({{"number", e.Number},
                          {"severity", severity},
                          {"severityCode", e.Severity},
                          {"seen", seen},
                          {"text", text}});
    shown.table.push_back({std::to_string(e.Number), severity, seen ? "yes" : "no", text});
  }
  return shown;
}

ListText ReadScanCodes(CMiraIntf& mira) {
  ListText shown{.table = {{"Scan code", "Button"}}};
  for (const auto& e : ReadList<CTabletScanCodes>(mira, 18, "tablet scan codes").Entries) {
    const std::string button = ToUtf8(e.Button);
    shown.list.push_back({{"scanCode", e.ScanCode}, {"button", button}});
    shown.table.push_back({Hex(e.ScanCode, 4), button});
  }
  return shown;
}

struct List {
  const char* name;  // on the command line
  const char* key;   // in the document
  ListText (*read)(CMiraIntf& mira);
};
constexpr List kLists[] = {
    {"entries", "entries", ReadEntries},
    {"messages", "messages", ReadMessages},
    {"scan-codes", "scanCodes", ReadScanCodes},
};
}  // namespace

void AddLog(CLI::App& app, Command& command) {
  const auto name = std::make_shared<std::string>(kLists[0].name);
  app.add_option("LIST", *name, "entries (the default), messages or scan-codes")
      ->check(CLI::IsMember({kLists[0].name, kLists[1].name, kLists[2].name}));
  app.footer("Examples:\n  mira log\n  mira --sim log messages --json");
  command.Run(app, [name](Context& context) {
    const List& list =
        *std::find_if(std::begin(kLists), std::end(kLists),
                      [&name](const List& candidate) { return candidate.name == *name; });
    return ShowList(context, list.key, list.read(context.Ready()));
  });
}

}  // namespace mira::console
