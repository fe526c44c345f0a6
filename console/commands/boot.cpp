#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <set>

#include "buffers/device_path_text.h"
#include "buffers/uefi_boot_data.h"
#include "bytes/utf16.h"
#include "console/changes.h"
#include "console/commands.h"
#include "console/input_file.h"
#include "console/key_password.h"
#include "console/passwords.h"
#include "console/table_text.h"

namespace mira::console {
namespace {

constexpr std::uint16_t kClass = 3;
constexpr std::uint16_t kListsSelect = 9;
constexpr std::uint16_t kOptionsSelect = 11;
constexpr std::uint16_t kOrderSelect = 12;
constexpr std::uint32_t kKeyArgument = 3;

constexpr CodeMeaning kOrderMeanings[] = {
    {-1, kRefused, "order-refused", "The firmware refused the order.",
     "It takes every option of the list exactly once."},
};

struct Arguments {
  std::string list;
  std::string kind;
  std::string order;
  std::string input;
  bool force = false;
  bool is_path = false;
  std::shared_ptr<KeySource> key;
};

struct BootList {
  std::uint8_t number;
  std::string name;
  bool is_uefi;
};

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// The firmware tells a list's kind by its name alone.
bool IsUefi(const std::string& name, const std::string& kind) {
  if (!kind.empty()) return kind == "uefi";
  const std::string lower = Lower(name);
  if (lower.find("uefi") != std::string::npos) return true;
  return lower.find("legacy") == std::string::npos && lower.find("bios") == std::string::npos;
}

std::vector<BootList> ReadLists(CMiraIntf& mira, const std::string& kind = "") {
  CUEFIBootList data;
  const Status status = mira.ExecuteDACI(kClass, kListsSelect, data, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, data.Res1, {}, "boot lists");
  std::vector<BootList> lists;
  for (const CUEFIBootList::Item& item : data.Items) {
    const std::string name = bytes::Utf8(item.Name);
    lists.push_back({item.Enum, name, IsUefi(name, kind)});
  }
  return lists;
}

// By name in any case, or by number.
BootList FindList(const std::vector<BootList>& lists, const std::string& text) {
  constexpr std::uint32_t kLargest = 0xFF;
  std::string known;
  for (const BootList& list : lists) {
    if (Lower(list.name) == Lower(text)) return list;
    known += (known.empty() ? "" : ", ") + std::to_string(list.number) + " (" + list.name + ")";
  }
  if (!text.empty() && std::isdigit(static_cast<unsigned char>(text[0])) != 0) {
    const std::uint32_t number = ParseNumber(text, "boot list", kLargest);
    for (const BootList& list : lists) {
      if (list.number == number) return list;
    }
  }
  throw CommandError(kNotFound, "no-list", "There is no boot list '" + text + "'.", text,
                     known.empty() ? "The firmware has none." : "The lists are: " + known + ".");
}

Json ToJson(const BootList& list) {
  return {{"list", list.number}, {"name", list.name}, {"kind", list.is_uefi ? "uefi" : "legacy"}};
}

ExitStatus List(Context& context) {
  Json document = Json::array();
  Rows table = {{"List", "Kind", "Name"}};
  for (const BootList& list : ReadLists(context.Ready())) {
    document.push_back(ToJson(list));
    table.push_back({std::to_string(list.number), list.is_uefi ? "UEFI" : "legacy", list.name});
  }
  if (context.IsJson()) {
    context.Print({{"lists", document}});
  } else if (document.empty()) {
    context.Out() << "(none)\n";
  } else {
    WriteTable(context.Out(), table, {0});
  }
  return kDone;
}

void ReadOptions(CMiraIntf& mira, const BootList& list, CUEFILOList& data) {
  data.ListEnum = list.number;
  data.IsUEFI = list.is_uefi;
  const Status status = mira.ExecuteDACI(kClass, kOptionsSelect, data, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, data.Res1, {}, "list " + std::to_string(list.number));
}

// Whether every option was read that the firmware's answer begins with.
bool IsComplete(const CUEFILOList& data) { return data.Options.size() >= data.BootOrder.size(); }

std::string NumberText(std::uint16_t number) { return Hex(number, 4); }

std::string OrderText(const std::vector<std::uint16_t>& order) {
  std::string text;
  for (const std::uint16_t number : order) {
    text += (text.empty() ? "" : ",") + NumberText(number);
  }
  return text;
}

std::string HexText(bytes::ByteSpan bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
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

// What is shown of an option, whether the firmware told it or a file.
struct ShownOption {
  std::optional<std::uint16_t> number;
  std::uint32_t attributes = 0;
  std::string description;
  std::string path;  // of UEFI options
  const CUEFILOList::LegacyFilePathList* device = nullptr;
  std::vector<std::uint8_t> optional_data;

  bool IsActive() const { return (attributes & boot::LoadOption::kActive) != 0; }
};

ShownOption Shown(const boot::LoadOption& option) {
  return {.number = std::nullopt,
          .attributes = option.attributes,
          .description = bytes::Utf8(option.description),
          .path = option.path,
          .optional_data = option.optional_data};
}

ShownOption Shown(const CUEFILOList::LoadOption& option, bool is_uefi) {
  ShownOption shown = {.number = option.Index,
                       .attributes = option.Attributes,
                       .description = bytes::Utf8(option.Description),
                       .path = is_uefi ? boot::DevicePathText(option.FilePath) : "",
                       .optional_data = {}};
  if (!is_uefi && !option.FilePath.empty()) {
    shown.device =
        dynamic_cast<const CUEFILOList::LegacyFilePathList*>(option.FilePath.front().get());
  }
  // The whole option also holds the path's later instances and the optional data.
  if (const auto whole = boot::DecodeLoadOption(option.Option)) {
    if (is_uefi) shown.path = whole->path;
    shown.optional_data = whole->optional_data;
  }
  return shown;
}

Json ToJson(const ShownOption& option) {
  Json document = Json::object();
  if (option.number) document["number"] = *option.number;
  document["active"] = option.IsActive();
  document["attributes"] = option.attributes;
  document["description"] = option.description;
  document["path"] = option.path.empty() ? Json() : Json(option.path);
  if (option.device != nullptr) {
    document["device"] = {{"type", option.device->DeviceType},
                          {"statusFlag", option.device->StatusFlag},
                          {"description", ToUtf8(option.device->Description)}};
  }
  document["optionalData"] = HexText(option.optional_data);
  document["optionalDataText"] = PlainText(option.optional_data);
  return document;
}

void Write(std::ostream& out, const ShownOption& option) {
  if (option.number) out << NumberText(*option.number) << (option.IsActive() ? " * " : "   ");
  out << option.description << '\n';
  out << "  Attributes : " << Hex(option.attributes, 8)
      << (option.IsActive() ? " (active)\n" : " (not active)\n");
  if (option.device != nullptr) {
    out << "  Device : type " << Hex(option.device->DeviceType) << ", status "
        << Hex(option.device->StatusFlag, 4) << ", '" << ToUtf8(option.device->Description)
        << "'\n";
  } else {
    out << "  Path : " << option.path << '\n';
  }
  if (!option.optional_data.empty()) {
    out << "  Optional data : " << HexText(option.optional_data)
        << "\n  Optional data as text : " << PlainText(option.optional_data) << '\n';
  }
}

// The options in boot order, those that it leaves out at the end.
std::vector<const CUEFILOList::LoadOption*> InOrder(const CUEFILOList& data) {
  std::vector<const CUEFILOList::LoadOption*> sorted;
  for (const CUEFILOList::LoadOption& option : data.Options) sorted.push_back(&option);
  const auto place = [&data](const CUEFILOList::LoadOption* option) {
    return std::find(data.BootOrder.begin(), data.BootOrder.end(), option->Index);
  };
  std::stable_sort(sorted.begin(), sorted.end(),
                   [&](const auto* a, const auto* b) { return place(a) < place(b); });
  return sorted;
}

ExitStatus Show(Context& context, const Arguments& a) {
  CMiraIntf& mira = context.Ready();
  std::vector<BootList> lists = ReadLists(mira, a.kind);
  if (!a.list.empty()) lists = {FindList(lists, a.list)};
  Json documents = Json::array();
  for (const BootList& list : lists) {
    CUEFILOList data;
    ReadOptions(mira, list, data);
    Json options = Json::array();
    std::ostream& out = context.Out();
    if (!context.IsJson()) {
      out << (documents.empty() ? "" : "\n") << "List " << unsigned{list.number} << " : "
          << list.name << (list.is_uefi ? " (UEFI)" : " (legacy)")
          << "\nOrder : " << OrderText(data.BootOrder) << '\n';
    }
    for (const CUEFILOList::LoadOption* const option : InOrder(data)) {
      const ShownOption shown = Shown(*option, list.is_uefi);
      options.push_back(ToJson(shown));
      if (!context.IsJson()) Write(out, shown);
    }
    if (!context.IsJson() && !IsComplete(data)) {
      out << "(The firmware's answer is malformed behind these options.)\n";
    }
    Json document = ToJson(list);
    document["complete"] = IsComplete(data);
    document["order"] = data.BootOrder;
    document["options"] = std::move(options);
    documents.push_back(std::move(document));
  }
  if (context.IsJson()) {
    context.Print({{"lists", documents}});
  } else if (documents.empty()) {
    context.Out() << "(none)\n";
  }
  return kDone;
}

// An entry of an order as it was typed.
struct Entry {
  std::string text;
  std::uint16_t number;
};

std::vector<Entry> ParseOrder(const std::string& text) {
  constexpr std::string_view kVariable = "boot";  // "Boot0003", as the firmware's variable is named
  constexpr std::uint32_t kLargest = 0xFFFF;
  std::vector<Entry> entries;
  std::istringstream in(text + ',');
  for (std::string entry; std::getline(in, entry, ',');) {
    const std::size_t from = entry.find_first_not_of(' ');
    entry =
        from == std::string::npos ? "" : entry.substr(from, entry.find_last_not_of(' ') + 1 - from);
    const std::string number =
        Lower(entry).starts_with(kVariable) ? "0x" + entry.substr(kVariable.size()) : entry;
    try {
      entries.push_back(
          {entry, static_cast<std::uint16_t>(ParseNumber(number, "option number", kLargest))});
    } catch (const CommandError&) {
      throw CommandError(kUsage, "bad-number", "'" + entry + "' is no option number.", entry,
                         "Option numbers are decimal, hexadecimal with 0x, or like Boot0003, with "
                         "commas between them.");
    }
  }
  return entries;
}

// Names what keeps the entries from being a permutation of the list's options.
void CheckPermutation(const std::vector<Entry>& entries, const CUEFILOList& data,
                      const std::string& target) {
  if (!IsComplete(data)) {
    throw CommandError(kUnexpected, "malformed-answer",
                       "The firmware's answer is malformed, so the order cannot be checked.",
                       target, "--force sends it as it is.");
  }
  std::map<std::uint16_t, std::string> present;
  for (const auto& option : data.Options) present[option.Index] = bytes::Utf8(option.Description);
  std::string unknown;
  std::string missing;
  std::string doubled;
  const auto name = [](std::string& list, const std::string& text) {
    list += (list.empty() ? " " : ", ") + text;
  };
  std::set<std::uint16_t> seen;
  for (const Entry& entry : entries) {
    if (!seen.insert(entry.number).second) {
      name(doubled, entry.text);
    } else if (!present.contains(entry.number)) {
      name(unknown, entry.text);
    }
  }
  for (const auto& [number, description] : present) {
    if (!seen.contains(number)) name(missing, NumberText(number) + " (" + description + ")");
  }
  std::string message;
  for (const auto& [what, list] : {std::pair("Unknown:", unknown), std::pair("Missing:", missing),
                                   std::pair("Doubled:", doubled)}) {
    if (!list.empty()) message += ' ' + (what + list) + '.';
  }
  if (message.empty()) return;
  throw CommandError(kInvalidValue, "no-permutation",
                     "The order must name every option of the list once." + message, target,
                     "--force sends it as it is.");
}

ExitStatus Order(Context& context, const Arguments& a) {
  const std::vector<Entry> entries = ParseOrder(a.order);
  CMiraIntf& mira = context.Ready();
  const BootList list = FindList(ReadLists(mira), a.list);
  CUEFILOList present;
  ReadOptions(mira, list, present);
  const std::string target =
      "boot order of list " + std::to_string(list.number) + " (" + list.name + ")";
  if (!a.force) CheckPermutation(entries, present, target);

  CUEFILOList data;
  std::string typed;
  for (const Entry& entry : entries) {
    data.BootOrder.push_back(entry.number);
    typed += (typed.empty() ? "" : ",") + entry.text;
  }
  const std::string before = OrderText(present.BootOrder);
  Json document = {{"list", list.number}, {"before", present.BootOrder}, {"after", data.BootOrder}};
  if (!a.force && data.BootOrder == present.BootOrder) {
    document["changed"] = false;
    return ReportDone(context, "The " + target + " is already " + before + ".", document);
  }

  const KeyPassword password = ReadKeyPassword(context, *a.key);
  const Changes changes = {{target, before, typed}};
  if (!Approve(context, changes)) return ReportWhatIf(context, changes);

  data.ListEnum = list.number;
  data.IsUEFI = list.is_uefi;
  data.Count = static_cast<std::uint32_t>(data.BootOrder.size());
  data.KeyArgIndex = kKeyArgument;
  const Status status =
      mira.ExecuteDACI(kClass, kOrderSelect, data, password.text.str(), password.type);
  ThrowUnlessDone(status, data.Res1, kOrderMeanings, target);
  document["changed"] = true;
  return ReportDone(context,
                    "The " + target + " is now " + typed + ".\nIt was " + before +
                        "; 'mira boot order " + std::to_string(list.number) + ' ' + before +
                        "' puts it back.",
                    document);
}

// Bytes as they are, or in hexadecimal: text holds no NUL, an option and a path always do.
std::vector<std::uint8_t> ReadBytes(Context& context, const std::string& path) {
  std::vector<std::uint8_t> content = LoadFileOrInput(context, path);
  if (std::find(content.begin(), content.end(), 0) != content.end()) return content;
  std::string_view text = bytes::AsText(content);
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  content = FromHexDump(text);
  if (content.empty()) {
    throw CommandError(kInvalidValue, "no-bytes",
                       "'" + path + "' holds neither bytes of firmware nor hexadecimal.", path);
  }
  return content;
}

ExitStatus Decode(Context& context, const Arguments& a) {
  const std::vector<std::uint8_t> content = ReadBytes(context, a.input);
  if (a.is_path) {
    const std::string path = boot::DevicePathText(content);
    return ReportDone(context, path, {{"path", path}});
  }
  const auto option = boot::DecodeLoadOption(content);
  if (!option) {
    throw CommandError(kInvalidValue, "no-load-option", "'" + a.input + "' holds no load option.",
                       a.input,
                       "Attributes, a description and a device path are wanted; --path "
                       "decodes a device path alone.");
  }
  const ShownOption shown = Shown(*option);
  if (context.IsJson()) {
    context.Print({{"option", ToJson(shown)}});
  } else {
    Write(context.Out(), shown);
  }
  return kDone;
}

ExitStatus Encode(Context& context, const Arguments& a) {
  const auto path = boot::DevicePathFromText(a.input);
  if (!path) {
    throw CommandError(kInvalidValue, "no-path", "'" + a.input + "' is no device path.", a.input,
                       "Nodes like PciRoot(0x0), with '/' between them, are wanted.");
  }
  const std::string hex = HexText(*path);
  return ReportDone(context, hex, {{"path", boot::DevicePathText(*path)}, {"bytes", hex}});
}

std::shared_ptr<Arguments> Describe(CLI::App& app, const char* example) {
  app.footer(std::string("Examples:\n") + example);
  return std::make_shared<Arguments>();
}

}  // namespace

void AddBoot(CLI::App& app, Command& command) {
  constexpr char kListHelp[] = "a boot list by its number or its name";
  app.require_subcommand(1);
  app.footer(
      "Examples:\n  mira boot list\n  mira boot show 1\n  mira boot order 1 2,0,1\n"
      "  mira boot decode Boot0001.bin");

  CLI::App& list = *app.add_subcommand("list", "List the boot lists");
  list.footer("Example:\n  mira --sim boot list --json");
  command.Run(list, List);

  CLI::App& show = *app.add_subcommand("show", "Show the options of a list in boot order");
  auto arguments =
      Describe(show, "  mira --sim boot show\n  mira --sim boot show 'UEFI Boot' --json");
  show.add_option("LIST", arguments->list, std::string(kListHelp) + "; without it, all lists");
  show.add_option("--kind", arguments->kind,
                  "what the options are, uefi or legacy, where the list's name does not tell")
      ->check(CLI::IsMember({"uefi", "legacy"}));
  command.Run(show, [arguments](Context& c) { return Show(c, *arguments); });

  CLI::App& order = *app.add_subcommand("order", "Set the order of a list");
  arguments = Describe(order,
                       "  mira --sim boot order 0 3,2,1,0 --what-if\n"
                       "  mira boot order 1 0x0002,0x0000,0x0001 --yes\n"
                       "  mira boot order 1 Boot0002,Boot0000,Boot0001 --password-env SETUP_PW");
  order.add_option("LIST", arguments->list, kListHelp)->required();
  order
      .add_option("ORDER", arguments->order,
                  "all option numbers with commas between them: decimal, with 0x, or Boot####")
      ->required();
  order.add_flag("--force", arguments->force, "send the order without checking it");
  arguments->key = AddKeyOptions(order);
  command.Run(order, [arguments](Context& c) { return Order(c, *arguments); });

  CLI::App& decode =
      *app.add_subcommand("decode", "Decode a load option from a file; works offline");
  arguments =
      Describe(decode, "  mira boot decode Boot0001.bin\n  mira boot decode - < option.hex");
  decode.add_option("FILE", arguments->input, "bytes, or hexadecimal; '-' is standard input")
      ->required();
  decode.add_flag("--path", arguments->is_path, "the file holds a device path alone");
  command.Run(decode, [arguments](Context& c) { return Decode(c, *arguments); });

  CLI::App& encode = *app.add_subcommand("encode", "Give a device path's bytes; works offline");
  arguments =
      Describe(encode, "  mira boot encode 'PciRoot(0x0)/Pci(0x1F,0x2)/Sata(0x0,0xFFFF,0x0)'");
  encode.add_option("PATH", arguments->input, "the path in the standard's text form")->required();
  command.Run(encode, [arguments](Context& c) { return Encode(c, *arguments); });
}

}  // namespace mira::console
