#include <algorithm>
#include <optional>

#include "client/battery.h"
#include "client/commands.h"

namespace mira::client {
namespace {

constexpr std::uint64_t kWhole = 100;  // percent

constexpr const char* kSettings[] = {"mode",      "start",         "stop",   "day",
                                     "peakShift", "peakThreshold", "peakDay"};

bool Sets(Request& request) {
  for (const char* const name : kSettings) {
    if (request.Has(name)) return true;
  }
  return false;
}

Json ShowBatteries(Request& request) {
  Session& session = request.GetSession();
  const std::vector<std::uint16_t> numbers = FindBatteries(session, request.Text("battery", "1"));
  Json list = Json::array();
  std::optional<Error> first_problem;
  bool has_any = false;
  for (const std::uint16_t number : numbers) {
    try {
      list.push_back(ToJson(ReadBattery(session, number)));
      has_any = true;
    } catch (const Error& error) {
      // Of several batteries, one that cannot be read is no reason to hide the others.
      Battery unreadable;
      unreadable.number = number;
      unreadable.charging_problem = unreadable.peak_shift_problem = error;
      list.push_back(ToJson(unreadable));
      if (!first_problem) first_problem = error;
    }
  }
  if (!has_any) throw Error(*first_problem);
  return {{"batteries", std::move(list)}};
}

std::optional<std::uint8_t> PercentOf(Request& request, const char* name) {
  if (!request.Has(name)) return std::nullopt;
  return static_cast<std::uint8_t>(request.Number(name));
}

BatteryEdit EditOf(Request& request) {
  BatteryEdit edit;
  if (request.Has("mode")) {
    edit.mode = ParseBatteryMode(request.Text("mode"));
    edit.lays_out_mode = true;
  }
  edit.start_limit = PercentOf(request, "start");
  edit.stop_limit = PercentOf(request, "stop");
  for (const std::string& day : request.Texts("day")) ParseDays(day, ChargeTime::kNone, edit.days);
  if (request.Has("peakShift")) edit.peak_shift = request.Text("peakShift") == "on";
  edit.peak_threshold = PercentOf(request, "peakThreshold");
  for (const std::string& day : request.Texts("peakDay")) {
    ParseDays(day, ChargeTime::kPossible, edit.peak_days);
  }
  return edit;
}

// The edits of a file, those of the wanted batteries alone.
std::vector<NumberedEdit> FileEdits(Request& request) {
  std::vector<NumberedEdit> edits =
      BatteryEditsFromJson(ParseJson(request.Text("from"), "The configuration"));
  if (!request.Has("battery")) return edits;
  const auto numbers = FindBatteries(request.GetSession(), request.Text("battery"));
  std::vector<NumberedEdit> wanted;
  for (const std::uint16_t number : numbers) {
    const auto found = std::find_if(edits.begin(), edits.end(),
                                    [number](const auto& e) { return e.number == number; });
    if (found == edits.end()) {
      throw Error(kNotFound, "not-in-file",
                  "The configuration has no battery " + std::to_string(number) + ".",
                  "battery " + std::to_string(number));
    }
    wanted.push_back(std::move(*found));
  }
  return wanted;
}

Json SetBatteries(Request& request) {
  const bool has_file = request.Has("from");
  if (!has_file && !Sets(request)) {
    throw Error(kUsage, "nothing-to-set", "Nothing to set was given.", "battery");
  }
  if (has_file && Sets(request)) {
    throw Error(kUsage, "bad-argument",
                "A whole configuration and single settings exclude each other.", "from")
        .With("argument", "from");
  }
  Session& session = request.GetSession();
  std::vector<NumberedEdit> edits;
  if (has_file) {
    edits = FileEdits(request);
  } else {
    const BatteryEdit edit = EditOf(request);
    for (const std::uint16_t number : FindBatteries(session, request.Text("battery", "1"))) {
      edits.push_back({number, edit});
    }
  }
  Plan plan;
  Json numbers = Json::array();
  for (const NumberedEdit& edit : edits) {
    PlanBattery(session, edit.number, edit.edit, has_file, plan);
    numbers.push_back(edit.number);
  }
  plan.subject["batteries"] = std::move(numbers);
  return request.Carry(plan);
}

}  // namespace

std::vector<Command> BatteryCommands() {
  const Argument battery = {.name = "battery",
                            .help = "which battery, counted from 1 (the default), or all"};
  const auto percent = [](const char* name, const char* help) {
    return Argument{.name = name, .type = Type::kNumber, .help = help, .max = kWhole};
  };
  return {
      {.name = "battery.show",
       .summary = "Show a battery's configuration and its age",
       .arguments = {battery},
       .run = ShowBatteries,
       .is_default = true},
      {.name = "battery.set",
       .summary = "Set how a battery is charged",
       .effect = Effect::kChanges,
       .arguments =
           {battery,
            {.name = "mode", .help = "standard, express, mains, adaptive or custom"},
            percent("start", "percentage below which it is charged"),
            percent("stop", "percentage at which charging stops"),
            {.name = "day", .type = Type::kTexts, .help = "a day's schedule; may be repeated"},
            {.name = "peakShift", .help = "on or off", .choices = {"on", "off"}},
            percent("peakThreshold", "percentage down to which the battery serves in peak hours"),
            {.name = "peakDay",
             .type = Type::kTexts,
             .help = "a day's peak hours; may be repeated"},
            {.name = "from",
             .type = Type::kContent,
             .help = "the configuration in a file, as it was shown in JSON"}},
       .run = SetBatteries},
  };
}

}  // namespace mira::client
