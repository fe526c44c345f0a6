#include "console/commands.h"
#include "console/firmware_list.h"

namespace mira::console {
namespace {

std::string Degrees(std::int16_t tenths) {
  const int size = tenths < 0 ? -int{tenths} : int{tenths};
  return (tenths < 0 ? "-" : "") + std::to_string(size / 10) + "." + std::to_string(size % 10);
}

ListText ReadSensors(CMiraIntf& mira) {
  constexpr double kTenths = 10;
  ListText shown{.table = {{"Sensor", "Location", "Degrees C", "Limit"}}};
  for (const auto& e : ReadList<CThermalSensors>(mira, 22, "thermal sensors").Entries) {
    const std::string location = ToUtf8(e.Location);
    shown.list.push_back({{"number", e.Number},
                          {"location", location},
                          {"celsius", e.Temperature / kTenths},
                          {"limitCelsius", e.Limit / kTenths}});
    shown.table.push_back(
        {std::to_string(e.Number), location, Degrees(e.Temperature), Degrees(e.Limit)});
  }
  return shown;
}

}  // namespace

void AddThermal(CLI::App& app, Command& command) {
  app.footer("Example:\n  mira --sim thermal --json");
  command.Run(app, [](Context& context) {
    return ShowList(context, "sensors", ReadSensors(context.Ready()));
  });
}

}  // namespace mira::console
