#include "client/boot.h"

#include <algorithm>
#include <iterator>

#include "buffers/uefi_boot_data.h"
#include "bytes/text.h"
#include "bytes/utf16.h"
#include "client/call.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {
namespace {

constexpr callif::Command kReadLists = {3, 9};
constexpr callif::Command kReadOptions = {3, 11};

bool IsUefi(std::u16string_view name, const std::string& kind) {
  if (!kind.empty()) return kind == "uefi";
  const std::string text = bytes::Utf8(name);
  if (bytes::ContainsText(text, "uefi")) return true;
  return !bytes::ContainsText(text, "legacy") && !bytes::ContainsText(text, "bios");
}

std::optional<BootDevice> DeviceOf(const CUEFILOList::LoadOption& option) {
  if (option.FilePath.empty()) return std::nullopt;
  const auto* const device =
      dynamic_cast<const CUEFILOList::LegacyFilePathList*>(option.FilePath.front().get());
  if (device == nullptr) return std::nullopt;
  return BootDevice{device->DeviceType, device->StatusFlag, device->Description};
}

BootOption OptionOf(const CUEFILOList::LoadOption& received, bool is_uefi) {
  BootOption option;
  option.number = received.Index;
  option.attributes = received.Attributes;
  option.description = received.Description;
  devicepath::Problem problem;
  auto whole = devicepath::DecodeLoadOption(received.Option, &problem);
  // What the firmware sends is no file of a variable, whatever its first bytes look like.
  if (whole && whole->variable_attributes) whole.reset();
  if (whole) option.optional_data = std::move(whole->optional_data);
  if (!is_uefi) {
    option.device = DeviceOf(received);
  } else if (whole) {
    option.paths = std::move(whole->paths);
  } else {
    if (problem.message.empty()) problem.message = "The paths are malformed.";
    option.paths = {{devicepath::DevicePathToText(received.FilePath), {}, std::nullopt}};
    option.problem = std::move(problem);
  }
  return option;
}

// Bytes as the text that they may be: UTF-16 where every unit is a plain character, else byte by
// byte, with a dot for what is none.
std::string PlainText(bytes::ByteSpan bytes) {
  const auto is_plain = [](unsigned unit) { return unit >= 0x20 && unit < 0x7F; };
  std::string wide;
  bytes::Reader in(bytes);
  while (in.Left() >= 2) {
    const std::uint16_t unit = in.U16();
    if (unit == 0 && in.Left() == 0 && !wide.empty()) return wide;
    if (!is_plain(unit)) break;
    wide += static_cast<char>(unit);
    if (in.Left() == 0) return wide;
  }
  std::string text;
  for (const std::uint8_t byte : bytes) text += is_plain(byte) ? static_cast<char>(byte) : '.';
  return text;
}

Json ProblemJson(const devicepath::Problem& problem) {
  return {{"offset", problem.offset}, {"message", problem.message}};
}

BootLists KeptBootLists(const Snapshot& kept, const std::string& kind) {
  const BootLists lists = {.lists = kept.List(kBootSubject, "lists", BootListFromJson),
                           .complete = kept.Value(kBootSubject).at("complete")};
  for (const BootList& list : lists.lists) {
    if (kind.empty() || list.is_uefi == (kind == "uefi")) continue;
    throw NotInSnapshot("options of list " + std::to_string(list.number) + " as " + kind + " ones");
  }
  return lists;
}

BootOptions KeptBootOptions(const Snapshot& kept, const BootList& list) {
  for (const Json& json : kept.Value(kBootSubject).at("lists")) {
    // A firmware may give two lists one number.
    const BootList kept_list = BootListFromJson(json);
    if (kept_list.number != list.number || kept_list.name != list.name) continue;
    if (json.contains("error")) throw ErrorFromJson(json["error"]);
    return BootOptionsFromJson(json);
  }
  throw NotInSnapshot("list " + std::to_string(list.number));
}

// What stands for bytes in documents. Throws Error.
std::vector<std::uint8_t> BytesFromJson(const Json& json) {
  if (auto bytes = FromHexText(json.get<std::string>())) return std::move(*bytes);
  throw MalformedSnapshot("It has no bytes where they belong.");
}

devicepath::Problem ProblemFromJson(const Json& json) {
  return {.offset = json.at("offset"), .message = json.at("message")};
}

devicepath::Path PathFromJson(const Json& json) {
  devicepath::Path path{json.at("text"), BytesFromJson(json.at("bytes")), std::nullopt};
  if (json.contains("problem")) path.problem = ProblemFromJson(json["problem"]);
  return path;
}

}  // namespace

BootLists ReadBootLists(Session& session, const std::string& kind) {
  if (session.Kept() != nullptr) return KeptBootLists(*session.Kept(), kind);
  CUEFIBootList data;
  Execute(session, kReadLists, data, {.target = "boot lists"});
  BootLists lists;
  lists.complete = data.IsComplete;
  for (const CUEFIBootList::Item& item : data.Items) {
    lists.lists.push_back({item.Enum, item.Name, IsUefi(item.Name, kind)});
  }
  return lists;
}

BootList FindBootList(const BootLists& lists, const std::string& text) {
  const auto& all = lists.lists;
  auto found = std::find_if(all.begin(), all.end(), [&text](const BootList& list) {
    return bytes::SameText(bytes::Utf8(list.name), text);
  });
  if (found != all.end()) return *found;
  const auto number = bytes::ParseNumber(text);
  found = std::find_if(all.begin(), all.end(),
                       [&number](const BootList& list) { return list.number == number; });
  if (found != all.end()) return *found;
  std::string known;
  Json list_json = Json::array();
  for (const BootList& list : all) {
    known += (known.empty() ? " The lists are: " : ", ") + std::to_string(list.number) + " (" +
             bytes::Utf8(list.name) + ")";
    list_json.push_back(ToJson(list));
  }
  throw Error(kNotFound, "no-list",
              "There is no boot list '" + text + "'." +
                  (known.empty() ? " The firmware has none." : known + "."),
              text)
      .With("lists", std::move(list_json));
}

BootOptions ReadBootOptions(Session& session, const BootList& list) {
  if (session.Kept() != nullptr) return KeptBootOptions(*session.Kept(), list);
  CUEFILOList data;
  data.ListEnum = list.number;
  data.IsUEFI = list.is_uefi;
  Execute(session, kReadOptions, data, {.target = "list " + std::to_string(list.number)});
  BootOptions options;
  options.list = list;
  options.order = data.BootOrder;
  options.complete = data.IsComplete;
  for (const CUEFILOList::LoadOption& option : data.Options) {
    options.options.push_back(OptionOf(option, list.is_uefi));
  }
  const auto place = [&options](const BootOption& option) {
    return std::find(options.order.begin(), options.order.end(), *option.number);
  };
  std::stable_sort(options.options.begin(), options.options.end(),
                   [&](const BootOption& a, const BootOption& b) { return place(a) < place(b); });
  return options;
}

std::string BootDeviceName(std::uint16_t type) {
  struct Row {
    std::uint16_t type;
    const char* name;
  };
  static constexpr Row kRows[] = {
      {1, "floppy"},
      {2, "hard disk"},
      {3, "CD-ROM"},
      {4, "PCMCIA"},
      {5, "USB"},
      {6, "network"},
      {0x80, "bootstrap entry vector"},
  };
  const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                       [type](const Row& r) { return r.type == type; });
  return row != std::end(kRows) ? row->name : "type 0x" + bytes::HexNumber(type);
}

Json WideTextJson(std::u16string_view text) {
  const std::string utf8 = bytes::Utf8(text);
  if (bytes::Utf16(utf8) == text) return utf8;
  std::vector<std::uint8_t> units;
  for (const char16_t unit : text) {
    units.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    units.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return {{"text", utf8}, {"bytes", bytes::HexText(units)}};
}

Json ToJson(const BootList& list) {
  return {{"list", list.number},
          {"name", WideTextJson(list.name)},
          {"kind", list.is_uefi ? "uefi" : "legacy"}};
}

Json ToJson(const devicepath::Path& path) {
  Json json = {{"text", path.text}, {"bytes", bytes::HexText(path.bytes)}};
  if (path.problem) json["problem"] = ProblemJson(*path.problem);
  return json;
}

Json ToJson(const BootOption& option) {
  Json json = Json::object();
  if (option.number) json["number"] = *option.number;
  json["active"] = option.IsActive();
  json["attributes"] = option.attributes;
  json["description"] = WideTextJson(option.description);
  json["path"] = option.paths.empty() ? Json() : Json(option.paths.front().text);
  Json paths = Json::array();
  for (const devicepath::Path& path : option.paths) paths.push_back(ToJson(path));
  json["paths"] = std::move(paths);
  if (option.device) {
    json["device"] = {{"type", option.device->type},
                      {"typeName", BootDeviceName(option.device->type)},
                      {"statusFlag", option.device->status_flag},
                      {"description", TextJson(option.device->description)}};
  }
  json["optionalData"] = bytes::HexText(option.optional_data);
  json["optionalDataText"] = PlainText(option.optional_data);
  if (option.variable_attributes) json["variableAttributes"] = *option.variable_attributes;
  if (option.problem) json["problem"] = ProblemJson(*option.problem);
  return json;
}

Json ToJson(const BootOptions& options) {
  Json json = ToJson(options.list);
  json["complete"] = options.complete;
  json["order"] = options.order;
  Json list = Json::array();
  for (const BootOption& option : options.options) list.push_back(ToJson(option));
  json["options"] = std::move(list);
  return json;
}

std::u16string WideTextFromJson(const Json& json) {
  if (json.is_string()) {
    if (auto text = bytes::Utf16(json.get_ref<const std::string&>())) return std::move(*text);
    throw MalformedSnapshot("It has a text that is no UTF-8.");
  }
  std::u16string text;
  const std::vector<std::uint8_t> units = BytesFromJson(json.at("bytes"));
  for (std::size_t i = 0; i + 1 < units.size(); i += 2) {
    text += static_cast<char16_t>(units[i] | units[i + 1] << 8);
  }
  return text;
}

BootList BootListFromJson(const Json& json) {
  return {.number = json.at("list"),
          .name = WideTextFromJson(json.at("name")),
          .is_uefi = json.at("kind") == "uefi"};
}

BootOption BootOptionFromJson(const Json& json) {
  BootOption option;
  if (json.contains("number")) option.number = json["number"].get<std::uint16_t>();
  option.attributes = json.at("attributes");
  option.description = WideTextFromJson(json.at("description"));
  for (const Json& path : json.at("paths")) option.paths.push_back(PathFromJson(path));
  if (json.contains("device")) {
    const Json& device = json["device"];
    option.device = BootDevice{device.at("type"), device.at("statusFlag"),
                               TextFromJson(device.at("description"))};
  }
  option.optional_data = BytesFromJson(json.at("optionalData"));
  if (json.contains("problem")) option.problem = ProblemFromJson(json["problem"]);
  if (json.contains("variableAttributes")) option.variable_attributes = json["variableAttributes"];
  return option;
}

BootOptions BootOptionsFromJson(const Json& json) {
  BootOptions options;
  options.list = BootListFromJson(json);
  options.order = json.at("order").get<std::vector<std::uint16_t>>();
  for (const Json& option : json.at("options")) {
    options.options.push_back(BootOptionFromJson(option));
  }
  options.complete = json.at("complete");
  return options;
}

}  // namespace mira::client
