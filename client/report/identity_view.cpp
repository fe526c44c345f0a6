#include <cstdint>

#include "bytes/text.h"
#include "client/report/view.h"

namespace mira::client {
namespace {

struct NameText {
  const char* name;
  const char* text;
};

template <std::size_t kCount>
std::string TextFor(const NameText (&rows)[kCount], const std::string& name) {
  for (const NameText& row : rows) {
    if (name == row.name) return row.text;
  }
  return name;
}

constexpr NameText kTags[] = {{"asset", "Asset tag"},
                              {"service", "Service tag"},
                              {"ownership", "Ownership tag"},
                              {"extended", "Extended tag"}};
constexpr NameText kIdentifiers[] = {{"mac", "MAC address"},
                                     {"eppid", "ePPID"},
                                     {"image-server", "Image server"},
                                     {"thin-client", "Thin client"}};
// The classes of the calling interface under which the firmware keeps its passwords.
constexpr NameText kPasswordClasses[] = {
    {"9", "Setup password"}, {"10", "System password"}, {"12", "Third password"}};

Json ToField(const std::string& label, const Json& entry) {
  const std::string problem =
      Joined({PlainAt(At(entry, "problem"), "message"), PlainAt(At(entry, "error"), "message")});
  const std::string value = PlainAt(entry, "value");
  Json field = {{"label", label}};
  if (!problem.empty()) {
    field["note"] = problem;
  } else if (value.empty()) {
    field["note"] = "empty";
  } else {
    field["value"] = value;
  }
  return field;
}

std::string Temperature(const Json& value) { return Plain(value) + " °C"; }
std::string HexOf(const Json& value) {
  const auto number = ToNumber(value);
  return number ? "0x" + bytes::HexNumber(*number, 4) : Plain(value);
}

}  // namespace

Json PasswordsView(const Json& passwords) {
  Json list = Json::array();
  for (const Json& password : ListAt(passwords, "passwords")) {
    const bool is_set = IsTrueAt(password, "installed");
    list.push_back({{"title", TextFor(kPasswordClasses, PlainAt(password, "class"))},
                    {"class", PlainAt(password, "class")},
                    {"isSet", is_set},
                    {"state", is_set ? "set" : "not set"},
                    {"longest", PlainAt(password, "maxLength")}});
  }
  return list;
}

Json IdentityView(const Json& tags, const Json& identifiers) {
  Json fields = Json::array();
  for (const Json& tag : ListAt(tags, "tags")) {
    const std::string command = PlainAt(tag, "command");
    std::string label = TextFor(kTags, PlainAt(tag, "tag"));
    if (!command.empty() && command != "0") label += " " + command;
    fields.push_back(ToField(label, tag));
  }
  for (const Json& identifier : ListAt(identifiers, "identifiers")) {
    fields.push_back(ToField(TextFor(kIdentifiers, PlainAt(identifier, "item")), identifier));
  }
  return fields;
}

Json FirmwareListsView(const Json& lists) {
  Json tables = Json::array();
  for (Json table :
       {TableView("Log", ListAt(lists, "entries"),
                  {ColumnOf("Time", "time"), ColumnOf("Severity", "severity"),
                   ColumnOf("Code", "code", HexOf, kIsNumber), ColumnOf("Text", "text")}),
        TableView("Messages", ListAt(lists, "messages"),
                  {ColumnOf("Number", "number", Plain, kIsNumber), ColumnOf("Severity", "severity"),
                   ColumnOf("Seen", "seen"), ColumnOf("Text", "text")}),
        TableView("Thermal sensors", ListAt(lists, "sensors"),
                  {ColumnOf("Sensor", "number", Plain, kIsNumber), ColumnOf("Place", "location"),
                   ColumnOf("Temperature", "celsius", Temperature, kIsNumber),
                   ColumnOf("Limit", "limitCelsius", Temperature, kIsNumber)}),
        TableView(
            "Scan codes", ListAt(lists, "scanCodes"),
            {ColumnOf("Button", "button"), ColumnOf("Scan code", "scanCode", HexOf, kIsNumber)})}) {
    if (!table.is_null()) tables.push_back(std::move(table));
  }
  return tables;
}

Json TokensView(const Json& tokens) {
  return TableView("Tokens", ListAt(tokens, "tokens"),
                   {ColumnOf("Token", "id", HexOf, kIsNumber),
                    ColumnOf("Location", "location", HexOf, kIsNumber),
                    ColumnOf("Value", "value", HexOf, kIsNumber)});
}

}  // namespace mira::client
