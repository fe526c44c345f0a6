#include "client/error.h"
#include "client/report/view.h"
#include "client/snapshot/snapshot.h"
#include "client/snapshot/subjects.h"

namespace mira::client {
namespace {

struct ListTitle {
  const char* name;
  const char* title;
};

constexpr ListTitle kListTitles[] = {
    {"entries", "Firmware log"},
    {"messages", "Firmware messages"},
    {"scanCodes", "Scan codes"},
    {"sensors", "Thermal sensors"},
};

// What a machine of this kind does not have is told, but is no failure.
bool IsAbsence(const Json& error) {
  const auto code = ToNumber(At(error, "code"));
  return code == kNotFound || code == kNotSupported;
}

// Subjects that are missing for one reason stand together.
void AddMissing(Json& list, const char* title, const Json& error, bool is_partial) {
  Json entry = {{"subject", title},
                {"kind", is_partial         ? "partial"
                         : IsAbsence(error) ? "absent"
                                            : "missing"},
                {"what", is_partial         ? " could be read in part only"
                         : IsAbsence(error) ? ""
                                            : " could not be read"},
                {"message", PlainAt(error, "message")}};
  for (Json& known : list) {
    if (known["message"] != entry["message"] || known["kind"] != entry["kind"]) continue;
    known["subject"] = PlainAt(known, "subject") + ", " + title;
    return;
  }
  list.push_back(std::move(entry));
}

Json GlanceTile(const char* label, const std::string& value, const std::string& detail,
                const char* section) {
  if (value.empty()) return nullptr;
  return {{"label", label}, {"value", value}, {"detail", detail}, {"section", section}};
}

Json ProcessorTile(const Json& inventory) {
  std::vector<std::string> names;
  std::string detail;
  for (const Json& processor : ListAt(inventory, "processors")) {
    if (At(processor, "populated") == false) continue;
    const std::string version = PlainAt(processor, "version");
    names.push_back(version.empty() ? PlainAt(processor, "family") : version);
    const auto counted = [&](const char* field, const char* one) {
      const auto count = ToNumber(At(processor, field));
      return count ? Counted(static_cast<std::size_t>(*count), one) : "";
    };
    detail = Joined({counted("cores", "core"), counted("threads", "thread")});
  }
  if (names.empty()) return nullptr;
  const bool has_several = names.size() > 1;
  if (has_several && !detail.empty()) detail += " each";
  return GlanceTile(
      "Processor",
      (has_several ? std::to_string(names.size()) + " × " : std::string()) + names.front(), detail,
      "hardware");
}

Json BootTile(const Json& boot) {
  const Json* first = nullptr;
  std::string list_name;
  for (const Json& list : ListAt(boot, "lists")) {
    const Json& options = ListAt(list, "options");
    for (const Json& option : options) {
      if (At(option, "active") == false) continue;
      // Where there are both, the UEFI list is what today's machines start from.
      if (first == nullptr || At(list, "kind") == "uefi") {
        first = &option;
        list_name = PlainAt(list, "name");
      }
      break;
    }
  }
  if (first == nullptr) return nullptr;
  return GlanceTile("Starts first", PlainAt(*first, "description"), "in " + list_name, "boot");
}

Json BatteryTile(const Json& batteries) {
  for (const Json& battery : ListAt(batteries, "batteries")) {
    for (const Json& life : ListAt(battery, "life")) {
      const std::string health = Shown(life, {"", "healthPercent", InPercent});
      const std::string cycles = PlainAt(life, "chargeCycles");
      if (!health.empty()) {
        return GlanceTile("Battery", health + " of its capacity", cycles + " charge cycles",
                          "batteries");
      }
    }
    return GlanceTile("Battery", PlainAt(At(battery, "charging"), "mode"), "charging mode",
                      "batteries");
  }
  return nullptr;
}

Json PasswordTile(const Json& passwords) {
  std::vector<std::string> set;
  const Json view = PasswordsView(passwords);
  for (const Json& password : view) {
    if (IsTrueAt(password, "isSet")) set.push_back(PlainAt(password, "title"));
  }
  if (view.empty()) return nullptr;
  return GlanceTile("BIOS passwords",
                    set.empty() ? "None is set" : Counted(set.size(), "is set", "are set"),
                    Joined(set), "access");
}

Json AttributeTile(const Json& attributes) {
  const Json view = AttributesView(attributes);
  if (view.is_null()) return nullptr;
  return GlanceTile("BIOS attributes", PlainAt(view, "count"),
                    PlainAt(view, "changed") + " changed from the default, " +
                        PlainAt(view, "pending") + " waiting for a restart",
                    "attributes");
}

}  // namespace

Json GlanceView(const Json& snapshot) {
  const Json& inventory = SubjectValue(snapshot, "inventory");
  const Json& bios = At(inventory, "bios");
  const MemoryTotal memory = TotalOf(inventory);
  const Json& drives = ListAt(SubjectValue(snapshot, "drives"), "drives");
  std::vector<std::string> drive_names;
  for (const Json& drive : drives) drive_names.push_back(PlainAt(drive, "description"));
  const std::string released = PlainAt(bios, "releaseDate");
  Json tiles = Json::array();
  for (Json tile :
       {ProcessorTile(inventory),
        GlanceTile("Memory", memory.size, Joined({memory.slots, memory.room}), "memory"),
        GlanceTile("Firmware", PlainAt(bios, "version"), released.empty() ? "" : "of " + released,
                   "hardware"),
        GlanceTile("Drives", drives.empty() ? "" : std::to_string(drives.size()),
                   Joined(drive_names), "access"),
        BootTile(SubjectValue(snapshot, "boot")), BatteryTile(SubjectValue(snapshot, "batteries")),
        PasswordTile(SubjectValue(snapshot, "passwords")),
        AttributeTile(SubjectValue(snapshot, "attributes"))}) {
    if (!tile.is_null()) tiles.push_back(std::move(tile));
  }
  return tiles;
}

Json MissingView(const Json& snapshot) {
  Json list = Json::array();
  for (const Subject& subject : Subjects()) {
    const Json& read = At(At(snapshot, "subjects"), subject.name);
    const Json& error = At(read, "error");
    // Why start-up failed is shown step by step.
    const bool is_shown =
        subject.name == std::string_view(kStartUpSubject) && At(read, "value").is_object();
    if (read.is_null()) {
      AddMissing(list, subject.title, {{"message", "The snapshot does not hold it."}}, false);
    } else if (error.is_object() && !is_shown) {
      AddMissing(list, subject.title, error, read.contains("value"));
    }
  }
  const Json& problems = At(SubjectValue(snapshot, "firmwareLists"), "problems");
  for (const ListTitle& part : kListTitles) {
    const Json& error = At(problems, part.name);
    if (error.is_object()) AddMissing(list, part.title, error, false);
  }
  return list;
}

Json StartUpView(const Json& start_up) {
  if (!start_up.is_object()) return nullptr;
  Json steps = Json::array();
  for (const Json& step : ListAt(start_up, "steps")) {
    const std::string outcome = PlainAt(step, "outcome");
    steps.push_back({{"step", PlainAt(step, "step")},
                     {"outcome", outcome},
                     {"isBad", outcome == "failed"},
                     {"isGood", outcome == "done" || outcome == "known"},
                     {"code", PlainAt(step, "code")},
                     {"meaning", PlainAt(step, "meaning")},
                     {"advice", PlainAt(step, "advice")}});
  }
  Json diagnostics = Json::array();
  for (const Json& line : ListAt(start_up, "diagnostics")) diagnostics.push_back(Plain(line));
  const std::string problem = PlainAt(At(start_up, "error"), "message");
  return {{"message", problem.empty() ? PlainAt(start_up, "message") : problem},
          {"isBad", !problem.empty() || At(start_up, "status") != 0},
          {"steps", std::move(steps)},
          {"diagnostics", std::move(diagnostics)},
          {"fields", FieldsView(start_up, {{"SMBIOS version", "smbiosVersion"},
                                           {"Transfer buffer", "transferBufferSize", InBytes},
                                           {"Instance", "instanceKey"},
                                           {"Announced classes", "announcedClasses"}})}};
}

}  // namespace mira::client
