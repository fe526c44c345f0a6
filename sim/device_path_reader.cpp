#include "sim/device_path_reader.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "bytes/text.h"
#include "sim/device_path_builder.h"
#include "sim/state_document.h"

namespace mira::sim {
namespace {

// The arguments of one node, taken from first to last.
class Arguments {
 public:
  Arguments(std::string_view node, std::string_view list) : node_(node), rest_(list) {}

  std::string_view Text() {
    if (!rest_) Fail("lacks an argument");
    const std::size_t end = std::min(rest_->find(','), rest_->size());
    const std::string_view text = rest_->substr(0, end);
    rest_ = end == rest_->size() ? std::nullopt : std::optional(rest_->substr(end + 1));
    return text;
  }
  template <typename T>
  T Number() {
    const auto value = bytes::ParseNumber(Text(), std::numeric_limits<T>::max());
    if (!value) Fail("has no such number");
    return static_cast<T>(*value);
  }
  // Pairs of hexadecimal digits; '-' between them is passed over.
  std::vector<std::uint8_t> Bytes() {
    if (!rest_) return {};
    std::string digits(Text());
    std::erase(digits, '-');
    if (digits.size() % 2 != 0) Fail("has half a byte");
    auto bytes = bytes::ParseHexText(digits);
    if (!bytes) Fail("has no such bytes");
    return *std::move(bytes);
  }
  template <std::size_t kSize>
  std::array<std::uint8_t, kSize> Bytes() {
    const std::vector<std::uint8_t> bytes = Bytes();
    std::array<std::uint8_t, kSize> array{};
    if (bytes.size() < kSize) Fail("has too few bytes");
    std::copy_n(bytes.begin(), kSize, array.begin());
    return array;
  }
  std::string_view Guid() {
    const std::string_view guid = Text();
    std::string digits(guid);
    std::erase(digits, '-');
    if (guid.size() != 36 || digits.size() != 32 || !bytes::ParseHexText(digits)) {
      Fail("has no GUID");
    }
    return guid;
  }
  Ipv4 Address() {
    std::string_view text = Text();
    Ipv4 address{};
    for (std::uint8_t& part : address) {
      const std::size_t end = std::min(text.find('.'), text.size());
      const auto number = bytes::ParseDigits(text.substr(0, end), 10, 255);
      if (!number) Fail("has no such address");
      part = static_cast<std::uint8_t>(*number);
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!text.empty()) Fail("has no such address");
    return address;
  }
  void End() const {
    if (rest_ && !rest_->empty()) Fail("has too many arguments");
  }
  [[noreturn]] void Fail(const char* what) const {
    throw StateError("the node '" + std::string(node_) + "' " + what);
  }

 private:
  std::string_view node_;
  std::optional<std::string_view> rest_;
};

std::uint16_t Protocol(Arguments& arguments) {
  const std::string_view text = arguments.Text();
  if (text == "UDP") return 17;
  if (text == "TCP") return 6;
  arguments.Fail("has an unknown protocol");
}

struct Form {
  std::string_view name;
  void (*add)(DevicePath& path, Arguments& in);
};

constexpr Form kForms[] = {
    {"PciRoot", [](DevicePath& p, Arguments& in) { p.PciRoot(in.Number<std::uint32_t>()); }},
    {"Pci",
     [](DevicePath& p, Arguments& in) {
       const auto device = in.Number<std::uint8_t>();
       p.Pci(device, in.Number<std::uint8_t>());
     }},
    {"USB",
     [](DevicePath& p, Arguments& in) {
       const auto port = in.Number<std::uint8_t>();
       p.Usb(port, in.Number<std::uint8_t>());
     }},
    {"Sata",
     [](DevicePath& p, Arguments& in) {
       const auto port = in.Number<std::uint16_t>();
       const auto multiplier = in.Number<std::uint16_t>();
       p.Sata(port, multiplier, in.Number<std::uint16_t>());
     }},
    {"NVMe",
     [](DevicePath& p, Arguments& in) {
       const auto id = in.Number<std::uint32_t>();
       std::uint64_t eui = 0;
       for (const std::uint8_t byte : in.Bytes<8>()) eui = eui << 8 | byte;
       p.NvmeNamespace(id, eui);
     }},
    {"MAC",
     [](DevicePath& p, Arguments& in) {
       const auto address = in.Bytes<6>();
       p.Mac(address, in.Number<std::uint8_t>());
     }},
    {"IPv4",
     [](DevicePath& p, Arguments& in) {
       const Ipv4 remote = in.Address();
       const std::uint16_t protocol = Protocol(in);
       const bool is_static = in.Text() == "Static";
       const Ipv4 local = in.Address();
       const Ipv4 gateway = in.Address();
       p.Ipv4Address(local, remote, protocol, is_static, gateway, in.Address());
     }},
    {"Uri", [](DevicePath& p, Arguments& in) { p.Uri(in.Text()); }},
    {"HD",
     [](DevicePath& p, Arguments& in) {
       const auto number = in.Number<std::uint32_t>();
       if (in.Text() != "GPT") in.Fail("is no GPT partition");
       const std::string_view guid = in.Guid();
       const auto start = in.Number<std::uint64_t>();
       p.GptPartition(number, guid, start, in.Number<std::uint64_t>());
     }},
    {"CDROM",
     [](DevicePath& p, Arguments& in) {
       const auto entry = in.Number<std::uint32_t>();
       const auto start = in.Number<std::uint64_t>();
       p.CdRom(entry, start, in.Number<std::uint64_t>());
     }},
    {"Fv", [](DevicePath& p, Arguments& in) { p.FirmwareVolume(in.Guid()); }},
    {"FvFile", [](DevicePath& p, Arguments& in) { p.FirmwareFile(in.Guid()); }},
    {"VenHw",
     [](DevicePath& p, Arguments& in) {
       const std::string_view guid = in.Guid();
       p.VendorHardware(guid, in.Bytes());
     }},
    {"VenMsg",
     [](DevicePath& p, Arguments& in) {
       const std::string_view guid = in.Guid();
       p.VendorMessaging(guid, in.Bytes());
     }},
    {"VenMedia",
     [](DevicePath& p, Arguments& in) {
       const std::string_view guid = in.Guid();
       p.VendorMedia(guid, in.Bytes());
     }},
    {"Path",
     [](DevicePath& p, Arguments& in) {
       const auto type = in.Number<std::uint8_t>();
       const auto sub_type = in.Number<std::uint8_t>();
       p.Node(type, sub_type, in.Bytes());
     }},
};

void AddNode(DevicePath& path, std::string_view node) {
  const std::size_t open = node.find('(');
  if (open == std::string_view::npos) {
    if (!node.starts_with('\\')) {
      throw StateError("'" + std::string(node) + "' is no node; a file begins with '\\'");
    }
    path.File(std::u16string(node.begin(), node.end()));
    return;
  }
  const std::string_view name = node.substr(0, open);
  if (!node.ends_with(')')) throw StateError("the node '" + std::string(node) + "' is not closed");
  Arguments arguments(node, node.substr(open + 1, node.size() - open - 2));
  for (const Form& form : kForms) {
    if (form.name != name) continue;
    form.add(path, arguments);
    return arguments.End();
  }
  throw StateError("the node '" + std::string(node) + "' is of no known kind; Path(...) takes any");
}

}  // namespace

std::vector<std::uint8_t> ReadDevicePath(std::string_view text) {
  DevicePath path;
  while (!text.empty()) {
    // A slash in brackets belongs to an argument, such as an address of the web.
    std::size_t end = 0;
    for (int depth = 0; end < text.size() && (depth > 0 || (text[end] != '/' && text[end] != ','));
         ++end) {
      depth += text[end] == '(' ? 1 : text[end] == ')' ? -1 : 0;
    }
    AddNode(path, text.substr(0, end));
    text.remove_prefix(end);
    if (text.starts_with(",/")) {
      path.NextInstance();
      text.remove_prefix(2);
    } else if (text.starts_with('/')) {
      text.remove_prefix(1);
    } else if (!text.empty()) {
      throw StateError("a ',' stands between two nodes");
    }
  }
  return path.Finish();
}

}  // namespace mira::sim
