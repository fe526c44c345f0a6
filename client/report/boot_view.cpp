#include <algorithm>
#include <cstdint>

#include "bytes/text.h"
#include "client/report/view.h"

namespace mira::client {
namespace {

std::string OptionNumber(const Json& number) {
  const auto known = ToNumber(number);
  return known ? "0x" + bytes::HexNumber(*known, 4) : "";
}

Json OptionView(const Json& option) {
  Json paths = Json::array();
  for (const Json& path : ListAt(option, "paths")) {
    std::string text = PlainAt(path, "text");
    std::string problem = PlainAt(At(path, "problem"), "message");
    if (text.empty() && problem.empty()) continue;
    paths.push_back({{"text", std::move(text)}, {"problem", std::move(problem)}});
  }
  std::string words = paths.empty() ? "" : PathInWords(PlainAt(paths.front(), "text"));
  if (words.empty()) words = PlainAt(At(option, "device"), "description");
  return {{"description", PlainAt(option, "description")},
          {"number", OptionNumber(At(option, "number"))},
          {"isOff", At(option, "active") == false},
          {"words", std::move(words)},
          {"device", PlainAt(At(option, "device"), "typeName")},
          {"paths", std::move(paths)},
          {"problem", PlainAt(At(option, "problem"), "message")},
          {"data", PlainAt(option, "optionalDataText")}};
}

// The options in the order's sequence; those that it does not name, and names without an option,
// are told apart.
Json BootListView(const Json& list) {
  const Json& options = ListAt(list, "options");
  std::vector<bool> is_used(options.size());
  Json ordered = Json::array();
  Json missing = Json::array();
  for (const Json& number : ListAt(list, "order")) {
    const auto found = std::find_if(options.begin(), options.end(), [&](const Json& option) {
      return At(option, "number") == number;
    });
    if (found == options.end()) {
      ordered.push_back({{"isMissing", true}, {"number", OptionNumber(number)}});
      continue;
    }
    is_used[static_cast<std::size_t>(found - options.begin())] = true;
    ordered.push_back(OptionView(*found));
  }
  Json others = Json::array();
  for (std::size_t i = 0; i < options.size(); ++i) {
    if (!is_used[i]) others.push_back(OptionView(options[i]));
  }
  return {{"name", PlainAt(list, "name")},
          {"kind", At(list, "kind") == "uefi" ? "UEFI" : "legacy"},
          {"options", std::move(ordered)},
          {"others", std::move(others)},
          {"isCut", At(list, "complete") == false},
          {"problem", PlainAt(At(list, "error"), "message")}};
}

Json PriorityView(const Json& legacy, const char* title, const char* name) {
  Json devices = Json::array();
  for (const Json& number : ListAt(legacy, name)) {
    const Json& known = ListAt(legacy, "devices");
    const auto found = std::find_if(known.begin(), known.end(), [&](const Json& device) {
      return At(device, "device") == number;
    });
    const std::string type = found != known.end() ? PlainAt(*found, "typeName") : "";
    devices.push_back(Joined({"Device " + Plain(number), type}));
  }
  if (devices.empty()) return nullptr;
  return {{"title", title}, {"devices", std::move(devices)}};
}

// ---- Device paths ----

// How the words of a node are made of its arguments, counted from 0.
struct NodeWords {
  const char* name;
  const char* before;  // stands alone where `argument` is negative
  int argument = -1;
};

// Nodes that say where a controller sits are left out: what hangs on it is of interest.
constexpr NodeWords kNodeWords[] = {
    {"NVMe", "NVMe drive, namespace ", 0},
    {"Sata", "SATA port ", 0},
    {"Scsi", "SCSI target ", 0},
    {"UFS", "UFS target ", 0},
    {"SD", "SD slot ", 0},
    {"eMMC", "eMMC slot ", 0},
    {"USB", "USB port ", 0},
    {"UsbClass", "USB device"},
    {"UsbWwid", "USB device"},
    {"HD", "partition ", 0},
    {"CDROM", "CD-ROM entry ", 0},
    {"MAC", "network adapter ", 0},
    {"IPv4", "IPv4"},
    {"IPv6", "IPv6"},
    {"Wi-Fi", "wireless network ", 0},
    {"Bluetooth", "Bluetooth device ", 0},
    {"Uri", "", 0},
    {"iSCSI", "iSCSI target ", 0},
    {"Fv", "firmware volume"},
    {"FvFile", "file in the firmware"},
    {"VenHw", "device of the maker's own"},
    {"VenMedia", "medium of the maker's own"},
    {"RamDisk", "RAM disk"},
    {"BBS", "legacy device ", 0},
};

std::string InDecimal(const std::string& argument) {
  const auto number = bytes::ParseNumber(argument);
  return number ? std::to_string(*number) : argument;
}

std::string NodeInWords(const std::string& node) {
  const std::size_t open = node.find('(');
  if (open == std::string::npos) return node.find_first_of("\\.") != std::string::npos ? node : "";
  const std::string name = node.substr(0, open);
  for (const NodeWords& words : kNodeWords) {
    if (name != words.name) continue;
    if (words.argument < 0) return words.before;
    const std::size_t end = std::min(node.find_first_of(",)", open + 1), node.size());
    return words.before + InDecimal(node.substr(open + 1, end - open - 1));
  }
  return "";
}

// A slash within brackets, as a URI has it, ends no node.
std::vector<std::string> NodesOf(const std::string& path) {
  std::vector<std::string> nodes(1);
  int depth = 0;
  for (const char c : path) {
    if (c == '(') ++depth;
    if (c == ')' && depth > 0) --depth;
    if (c == '/' && depth == 0) {
      nodes.emplace_back();
    } else {
      nodes.back() += c;
    }
  }
  return nodes;
}

}  // namespace

std::string PathInWords(const std::string& path) {
  std::vector<std::string> words;
  for (const std::string& node : NodesOf(path)) words.push_back(NodeInWords(node));
  return Joined(words, " › ");
}

Json BootView(const Json& boot, const Json& legacy) {
  Json lists = Json::array();
  for (const Json& list : ListAt(boot, "lists")) lists.push_back(BootListView(list));
  Json priorities = Json::array();
  for (Json priority : {PriorityView(legacy, "Legacy priority of boot devices", "iplPriority"),
                        PriorityView(legacy, "Legacy priority of drives", "bcvPriority")}) {
    if (!priority.is_null()) priorities.push_back(std::move(priority));
  }
  if (lists.empty() && priorities.empty()) return nullptr;
  return {{"lists", std::move(lists)}, {"priorities", std::move(priorities)}};
}

}  // namespace mira::client
