#include <algorithm>
#include <functional>

#include "bytes/text.h"
#include "client/report/quantity.h"
#include "console/face.h"

namespace mira::console {
namespace {

using client::Plain;

// ---- Sections ----

struct Field {
  const char* label;
  const char* name;
  std::string (*show)(const Json& value) = Plain;
};

// What an object says of a field; empty where it says nothing.
std::string Shown(const Json& object, const Field& field) {
  const auto value = object.find(field.name);
  return value != object.end() ? field.show(*value) : "";
}

// One object as lines; nothing where it has none of the fields.
void WriteFields(std::ostream& out, const std::string& title, const Json& object,
                 const std::vector<Field>& fields) {
  Rows rows;
  for (const Field& field : fields) {
    const std::string text = Shown(object, field);
    if (!text.empty()) rows.push_back({std::string("  ") + field.label, text});
  }
  if (rows.empty()) return;
  out << '\n' << title << '\n';
  WriteTable(out, rows);
}

struct Column {
  const char* heading;
  std::function<std::string(const Json& object)> show;
  bool is_right = false;
};

Column Of(const char* heading, const char* name, std::string (*show)(const Json& value) = Plain,
          bool is_right = false) {
  return {heading,
          [=](const Json& object) {
            return Shown(object, {heading, name, show});
          },
          is_right};
}

// A list of objects as a table, without the columns in which nothing stands.
void WriteObjects(std::ostream& out, const std::string& title, const Json& list,
                  const std::vector<Column>& columns) {
  Rows rows(list.size() + 1);
  std::vector<std::size_t> right;
  for (const Column& column : columns) {
    std::vector<std::string> cells;
    for (const Json& object : list) cells.push_back(column.show(object));
    if (std::all_of(cells.begin(), cells.end(), [](auto& cell) { return cell.empty(); })) continue;
    const std::string margin = rows.front().empty() ? "  " : "";
    if (column.is_right) right.push_back(rows.front().size());
    rows.front().push_back(margin + column.heading);
    for (std::size_t i = 0; i < cells.size(); ++i) rows[i + 1].push_back(margin + cells[i]);
  }
  if (rows.front().empty()) return;
  out << '\n' << title << '\n';
  WriteTable(out, rows, right);
}

constexpr bool kRight = true;

bool IsEmpty(const Json& object) { return !object.value("populated", true); }

// A field of what is in a slot: firmware fills those of an empty one with anything.
Column OfFilled(const char* heading, const char* name) {
  return {heading, [=](const Json& object) {
            return IsEmpty(object) ? std::string() : Shown(object, {heading, name});
          }};
}

// "8", or "6 of 8" where some are switched off.
std::string Enabled(const Json& object, const char* all, const char* enabled) {
  const std::string total = Shown(object, {"", all});
  const std::string on = Shown(object, {"", enabled});
  if (total.empty() || on.empty() || on == total) return total.empty() ? on : total;
  return on + " of " + total;
}

void WriteProcessors(std::ostream& out, const Json& list) {
  WriteObjects(
      out, "Processors", list,
      {Of("Socket", "socket"),
       {"Processor",
        [](const Json& p) {
          if (IsEmpty(p)) return std::string("(empty)");
          const std::string version = Shown(p, {"", "version"});
          return version.empty() ? Shown(p, {"", "family"}) : version;
        }},
       OfFilled("Family", "family"),
       {"Cores", [](const Json& p) { return Enabled(p, "cores", "coresEnabled"); }, kRight},
       {"Threads", [](const Json& p) { return Enabled(p, "threads", "threadsEnabled"); }, kRight},
       Of("Speed", "currentSpeedMHz", client::InMHz, kRight),
       Of("Highest", "maxSpeedMHz", client::InMHz, kRight),
       Of("Voltage", "voltageMv", client::InMillivolts, kRight),
       Of("Status", "status")});
}

std::string SlotSize(const Json& slot) {
  if (IsEmpty(slot)) return "(empty)";
  const std::string size = Shown(slot, {"", "sizeMiB", client::InMiB});
  return size.empty() ? Shown(slot, {"", "sizeKiB", client::InKiB}) : size;
}

// How much memory there is, in how many of the slots, and how much there can be.
void WriteMemoryTotal(std::ostream& out, const Json& document) {
  constexpr std::uint64_t kKiBInMiB = 1024;
  std::uint64_t total = 0;
  std::size_t filled = 0;
  const Json& slots = document.at("memorySlots");
  for (const Json& slot : slots) {
    if (!IsEmpty(slot)) ++filled;
    const auto mib = client::ToNumber(slot.value("sizeMiB", Json()));
    const auto kib = client::ToNumber(slot.value("sizeKiB", Json()));
    total += mib ? *mib * kKiBInMiB : kib.value_or(0);
  }
  if (slots.empty()) return;
  out << "  Total: " << client::InKiB(total) << " in " << filled << " of " << slots.size()
      << " slots";
  std::uint64_t most = 0;
  for (const Json& array : document.at("memoryArrays")) {
    most += client::ToNumber(array.value("maxCapacityKiB", Json())).value_or(0);
  }
  if (most != 0) out << "; room for " << client::InKiB(most);
  out << '\n';
}

void WriteMemory(std::ostream& out, const Json& document) {
  WriteObjects(
      out, "Memory", document.at("memorySlots"),
      {Of("Slot", "locator"),
       Of("Bank", "bankLocator"),
       {"Size", SlotSize, kRight},
       OfFilled("Type", "type"),
       OfFilled("Form", "formFactor"),
       {"Speed",
        [](const Json& slot) {
          if (IsEmpty(slot)) return std::string();
          const std::string now = Shown(slot, {"", "configuredSpeedMTs", client::InTransfers});
          return now.empty() ? Shown(slot, {"", "speedMTs", client::InTransfers}) : now;
        },
        kRight},
       OfFilled("Manufacturer", "manufacturer"),
       OfFilled("Part number", "partNumber"),
       OfFilled("Serial number", "serialNumber")});
  WriteMemoryTotal(out, document);
}

void WriteRest(std::ostream& out, const Json& document) {
  WriteObjects(out, "Caches", document.at("caches"),
               {Of("Level", "level", Plain, kRight), Of("Name", "designation"),
                Of("Size", "installedSizeKiB", client::InKiB, kRight), Of("Type", "type"),
                Of("Associativity", "associativity"), Of("Error correction", "errorCorrection"),
                Of("Mode", "mode")});
  WriteObjects(out, "Expansion slots", document.at("slots"),
               {Of("Slot", "designation"), Of("Type", "type"), Of("Width", "width"),
                Of("Usage", "usage"), Of("Length", "length"), Of("Address", "address")});
  WriteObjects(out, "Ports", document.at("ports"),
               {Of("Outside", "externalDesignator"), Of("Connector", "externalConnector"),
                Of("Inside", "internalDesignator"), Of("Connector", "internalConnector"),
                Of("Type", "type")});
  WriteObjects(out, "Batteries", document.at("batteries"),
               {Of("Name", "name"), Of("Location", "location"), Of("Manufacturer", "manufacturer"),
                Of("Chemistry", "chemistry"),
                Of("Capacity", "designCapacityMWh", client::InMilliwattHours, kRight),
                Of("Voltage", "designVoltageMv", client::InMillivolts, kRight),
                Of("Made", "manufactureDate"), Of("Serial number", "serialNumber")});
  WriteObjects(out, "Trusted platform modules", document.at("tpms"),
               {Of("Vendor", "vendor"), Of("TPM version", "specVersion"),
                Of("Firmware", "firmwareVersion"), Of("Description", "description")});
  WriteObjects(out, "Firmware components", document.at("firmware"),
               {Of("Name", "name"), Of("Version", "version"), Of("Manufacturer", "manufacturer"),
                Of("Date", "releaseDate"), Of("Size", "imageSizeBytes", client::InBytes, kRight),
                Of("State", "state"), Of("Updatable", "updatable")});
  // Firmware leaves some of its strings blank: the document has them, the screen does not.
  bool has_any = false;
  for (const Json& string : document.at("oemStrings")) {
    const std::string text = Plain(string);
    if (text.empty()) continue;
    if (!has_any) out << "\nStrings of the manufacturer\n";
    out << "  " << Escaped(text) << '\n';
    has_any = true;
  }
}

void ShowInventory(const Json& document, std::ostream& out) {
  const Json system = document.value("system", Json::object());
  const std::string maker = Shown(system, {"", "manufacturer"});
  const std::string product = Shown(system, {"", "productName"});
  const std::string title(bytes::Trimmed(maker + " " + product, " "));
  out << (title.empty() ? "A machine that does not say its name" : Escaped(title)) << '\n';
  WriteFields(out, "System", system,
              {{"Version", "version"},
               {"Serial number", "serialNumber"},
               {"UUID", "uuid"},
               {"SKU", "skuNumber"},
               {"Family", "family"},
               {"Started by", "wakeUpType"}});
  WriteFields(out, "Firmware", document.value("bios", Json::object()),
              {{"Vendor", "vendor"},
               {"Version", "version"},
               {"Date", "releaseDate"},
               {"Release", "release"},
               {"Embedded controller", "embeddedControllerRelease"},
               {"ROM size", "romSizeKiB", client::InKiB},
               {"UEFI", "uefi"},
               {"Virtual machine", "virtualMachine"}});
  for (const Json& chassis : document.at("chassis")) {
    WriteFields(out, "Chassis", chassis,
                {{"Type", "type"},
                 {"Manufacturer", "manufacturer"},
                 {"Version", "version"},
                 {"Serial number", "serialNumber"},
                 {"Asset tag", "assetTag"},
                 {"SKU", "skuNumber"},
                 {"Height", "heightUnits", client::InRackUnits},
                 {"Power cords", "powerCords"},
                 {"Lock", "lock"}});
  }
  for (const Json& board : document.at("boards")) {
    WriteFields(out, "Board", board,
                {{"Type", "type"},
                 {"Manufacturer", "manufacturer"},
                 {"Product", "product"},
                 {"Version", "version"},
                 {"Serial number", "serialNumber"},
                 {"Asset tag", "assetTag"},
                 {"Location", "location"}});
  }
  WriteProcessors(out, document.at("processors"));
  WriteMemory(out, document);
  WriteRest(out, document);
  const std::string version = Shown(document, {"", "smbiosVersion"});
  if (!version.empty()) out << "\nAs SMBIOS " << Escaped(version) << " describes it.\n";
}

}  // namespace

std::vector<Face> InventoryFaces() {
  return {{.command = "inventory",
           .examples = "  mira inventory\n  mira --sim inventory --json\n"
                       "  mira inventory --file pc.rsmb",
           .render = ShowInventory}};
}

}  // namespace mira::console
