#include "client/report/view.h"

namespace mira::client {
namespace {

bool IsEmptySocket(const Json& processor) { return At(processor, "populated") == false; }

// "8", or "6 of 8" where some are switched off.
std::string EnabledOf(const Json& object, const char* all, const char* enabled) {
  const std::string total = PlainAt(object, all);
  const std::string on = PlainAt(object, enabled);
  if (total.empty() || on.empty() || on == total) return total.empty() ? on : total;
  return on + " of " + total;
}

std::string ProcessorName(const Json& processor) {
  if (IsEmptySocket(processor)) return "(empty)";
  const std::string version = PlainAt(processor, "version");
  return version.empty() ? PlainAt(processor, "family") : version;
}

void AddHardwareGroup(Json& groups, const char* title, const Json& object,
                      const std::vector<ViewField>& fields) {
  Json view = FieldsView(object, fields);
  if (!view.empty()) groups.push_back({{"title", title}, {"fields", std::move(view)}});
}

Json HardwareGroups(const Json& inventory) {
  Json groups = Json::array();
  AddHardwareGroup(groups, "System", At(inventory, "system"),
                   {{"Manufacturer", "manufacturer"},
                    {"Product", "productName"},
                    {"Version", "version"},
                    {"Serial number", "serialNumber"},
                    {"UUID", "uuid"},
                    {"SKU", "skuNumber"},
                    {"Family", "family"},
                    {"Started by", "wakeUpType"}});
  AddHardwareGroup(groups, "Firmware", At(inventory, "bios"),
                   {{"Vendor", "vendor"},
                    {"Version", "version"},
                    {"Date", "releaseDate"},
                    {"Release", "release"},
                    {"Embedded controller", "embeddedControllerRelease"},
                    {"ROM size", "romSizeKiB", InKiB},
                    {"UEFI", "uefi"},
                    {"Virtual machine", "virtualMachine"}});
  for (const Json& chassis : ListAt(inventory, "chassis")) {
    AddHardwareGroup(groups, "Chassis", chassis,
                     {{"Type", "type"},
                      {"Manufacturer", "manufacturer"},
                      {"Version", "version"},
                      {"Serial number", "serialNumber"},
                      {"Asset tag", "assetTag"},
                      {"SKU", "skuNumber"},
                      {"Lock", "lock"},
                      {"Height", "heightUnits", InRackUnits},
                      {"Power cords", "powerCords"}});
  }
  for (const Json& board : ListAt(inventory, "boards")) {
    AddHardwareGroup(groups, "Board", board,
                     {{"Type", "type"},
                      {"Manufacturer", "manufacturer"},
                      {"Product", "product"},
                      {"Version", "version"},
                      {"Serial number", "serialNumber"},
                      {"Asset tag", "assetTag"},
                      {"Location", "location"}});
  }
  return groups;
}

Json ProcessorTable(const Json& list) {
  const auto of_filled = [](const char* heading, const char* name) {
    return ViewColumn{heading, [=](const Json& p) {
                        return IsEmptySocket(p) ? std::string() : PlainAt(p, name);
                      }};
  };
  return TableView(
      "Processors", list,
      {ColumnOf("Socket", "socket"),
       {"Processor", ProcessorName},
       of_filled("Family", "family"),
       {"Cores", [](const Json& p) { return EnabledOf(p, "cores", "coresEnabled"); }, kIsNumber},
       {"Threads", [](const Json& p) { return EnabledOf(p, "threads", "threadsEnabled"); },
        kIsNumber},
       ColumnOf("Speed", "currentSpeedMHz", InMHz, kIsNumber),
       ColumnOf("Highest", "maxSpeedMHz", InMHz, kIsNumber),
       ColumnOf("Voltage", "voltageMv", InMillivolts, kIsNumber),
       ColumnOf("Status", "status")});
}

}  // namespace

Json HardwareView(const Json& inventory) {
  if (!inventory.is_object()) return nullptr;
  const auto list = [&inventory](const char* name) -> const Json& {
    return ListAt(inventory, name);
  };
  Json tables = Json::array();
  for (Json table :
       {ProcessorTable(list("processors")),
        TableView("Caches", list("caches"),
                  {ColumnOf("Level", "level", Plain, kIsNumber), ColumnOf("Name", "designation"),
                   ColumnOf("Size", "installedSizeKiB", InKiB, kIsNumber), ColumnOf("Type", "type"),
                   ColumnOf("Associativity", "associativity"),
                   ColumnOf("Error correction", "errorCorrection"), ColumnOf("Mode", "mode")}),
        TableView("Expansion slots", list("slots"),
                  {ColumnOf("Slot", "designation"), ColumnOf("Type", "type"),
                   ColumnOf("Width", "width"), ColumnOf("Usage", "usage"),
                   ColumnOf("Length", "length"), ColumnOf("Address", "address")}),
        TableView(
            "Ports", list("ports"),
            {ColumnOf("Outside", "externalDesignator"), ColumnOf("Connector", "externalConnector"),
             ColumnOf("Inside", "internalDesignator"), ColumnOf("Connector", "internalConnector"),
             ColumnOf("Type", "type")}),
        TableView(
            "Trusted platform modules", list("tpms"),
            {ColumnOf("Vendor", "vendor"), ColumnOf("TPM version", "specVersion"),
             ColumnOf("Firmware", "firmwareVersion"), ColumnOf("Description", "description")}),
        TableView("Firmware components", list("firmware"),
                  {ColumnOf("Name", "name"), ColumnOf("Version", "version"),
                   ColumnOf("Manufacturer", "manufacturer"), ColumnOf("Date", "releaseDate"),
                   ColumnOf("Size", "imageSizeBytes", InBytes, kIsNumber),
                   ColumnOf("State", "state"), ColumnOf("Updatable", "updatable")}),
        TableView("Strings of the manufacturer", list("oemStrings"), {{"String", Plain}})}) {
    if (!table.is_null()) tables.push_back(std::move(table));
  }
  return {{"groups", HardwareGroups(inventory)}, {"tables", std::move(tables)}};
}

}  // namespace mira::client
