#include "buffers/device_path_text.h"

#include <algorithm>
#include <limits>
#include <span>

#include "buffers/device_path_nodes.h"
#include "buffers/device_path_notation.h"

namespace mira::boot {
namespace {

using bytes::ByteSpan;
using bytes::Reader;
using Bytes = NodeBytes;

// ---- Arguments ----

constexpr Arg H(std::size_t offset, std::size_t width) { return {&kHex, offset, width}; }
constexpr Arg D(std::size_t offset, std::size_t width) { return {&kDecimal, offset, width}; }
constexpr Arg Guid(std::size_t offset) { return {&kGuid, offset, 16}; }
constexpr Arg Ip4(std::size_t offset) { return {&kIpv4, offset, 4}; }
constexpr Arg Ip6(std::size_t offset) { return {&kIpv6, offset, 16}; }
constexpr Arg Named(std::size_t offset, std::size_t width, std::span<const Name> names) {
  return {&kNamed, offset, width, names};
}
constexpr Arg Bits(std::size_t offset, std::size_t width, std::span<const Name> names,
                   unsigned shift, std::uint64_t mask) {
  return {&kNamedBits, offset, width, names, shift, mask};
}
constexpr Arg Literal(std::span<const Name> name) { return {&kLiteral, 0, 0, name}; }
// What is left of the node or, of fixed width, may hold commas.
constexpr Arg Rest(const Notation& notation, std::size_t offset, std::size_t width = 0) {
  return {&notation, offset, width, {}, 0, 0, true, false};
}
constexpr Arg Optional(Arg arg) {
  arg.is_optional = true;
  return arg;
}
constexpr Arg Data(std::size_t offset) { return Optional(Rest(kRestBytes, offset)); }

constexpr Name kChannels[] = {{0, "Primary"}, {1, "Secondary"}};
constexpr Name kDrives[] = {{0, "Master"}, {1, "Slave"}};
constexpr Name kProtocols[] = {{6, "TCP"}, {17, "UDP"}};
constexpr Name kAddressKinds[] = {{0, "DHCP"}, {1, "Static"}};
constexpr Name kOrigins[] = {
    {0, "Static"}, {1, "StatelessAutoConfigure"}, {2, "StatefulAutoConfigure"}};
constexpr Name kDefault[] = {{0, "DEFAULT"}};
constexpr Name kParities[] = {{0, "D"}, {1, "N"}, {2, "E"}, {3, "O"}, {4, "M"}, {5, "S"}};
constexpr Name kStopBits[] = {{0, "D"}, {1, "1"}, {2, "1.5"}, {3, "2"}};
constexpr Name kDigests[] = {{0, "None"}, {1, "CRC32C"}};
constexpr Name kAuthentications[] = {{0, "CHAP_BI"}, {2, "CHAP_UNI"}, {1, "None"}, {3, "None"}};
constexpr Name kIscsiProtocols[] = {{0, "TCP"}, {1, "reserved"}};
constexpr Name kBootDevices[] = {{1, "Floppy"}, {2, "HD"},  {3, "CDROM"},
                                 {4, "PCMCIA"}, {5, "USB"}, {6, "Network"}};
constexpr Name kMbr[] = {{0, "MBR"}};
constexpr Name kGpt[] = {{0, "GPT"}};
constexpr Name kZero[] = {{0, "0"}};

// ---- Node types ----

// What the bytes of a node must hold for a form to be its own.
struct Condition {
  std::size_t offset = 0;
  std::size_t width = 0;
  std::uint64_t value = 0;
};

constexpr std::size_t kMostArgs = 8;
constexpr std::size_t kMostConditions = 2;

// One form of one node type. The first that fits a node writes it; the first with its name that can
// take a text's arguments reads it. A form without a name is written without brackets.
struct Form {
  std::uint8_t type;
  std::uint8_t subtype;
  const char* name;
  Arg args[kMostArgs] = {};
  Condition conditions[kMostConditions] = {};
  std::size_t size = 0;  // of a form that nodes of one size alone have

  std::span<const Arg> Args() const {
    const Arg* const end = std::find_if(std::begin(args), std::end(args),
                                        [](const Arg& arg) { return arg.notation == nullptr; });
    return {args, end};
  }
};

constexpr Condition Pnp(std::uint64_t number) { return {4, 4, number << 16 | 0x41D0}; }

constexpr Form Usb(const char* name, std::uint64_t device_class) {
  return {3, 15, name, {H(4, 2), H(6, 2), H(9, 1), H(10, 1)}, {{8, 1, device_class}}};
}
constexpr Form UsbApplication(const char* name, std::uint64_t subclass) {
  return {3, 15, name, {H(4, 2), H(6, 2), H(10, 1)}, {{8, 1, 254}, {9, 1, subclass}}};
}

// A GUID partition table's entry, or a master boot record's.
constexpr Arg kGptArgs[] = {D(4, 4), Literal(kGpt), Guid(24), H(8, 8), H(16, 8)};
constexpr Arg kMbrArgs[] = {D(4, 4), Literal(kMbr), {&kHex8, 24, 4}, H(8, 8), H(16, 8)};
constexpr Form Partition(const Arg (&args)[5], Condition format, Condition signature = {}) {
  return {4, 1, "HD", {args[0], args[1], args[2], args[3], args[4]}, {format, signature}};
}

// A disk in memory of the kind that its GUID, here as two numbers, stands for.
constexpr Form MemoryDisk(const char* name, std::uint64_t low, std::uint64_t high) {
  return {4, 9, name, {H(4, 8), H(12, 8), D(36, 2)}, {{20, 8, low}, {28, 8, high}}};
}

// A terminal's name that is understood but not written.
constexpr Form Terminal(const char* name, std::uint64_t low, std::uint64_t high) {
  return {3, 10, name, {}, {{4, 8, low}, {12, 8, high}}};
}

constexpr Arg kProtocol4 = Named(16, 2, kProtocols);
constexpr Arg kKind4 = Named(18, 1, kAddressKinds);
constexpr Arg kProtocol6 = Named(40, 2, kProtocols);
constexpr Arg kOrigin6 = Named(42, 1, kOrigins);
constexpr Arg kBaudRate = {&kNamedDecimal, 8, 8, kDefault};
constexpr Arg kDataBits = {&kNamedDecimal, 16, 1, kDefault};
constexpr Arg kParity = Named(17, 1, kParities);
constexpr Arg kStop = Named(18, 1, kStopBits);
constexpr Arg kIscsiLun = {&kPrefixedBytes, 8, 8};
constexpr Arg kHeaderDigest = Bits(6, 2, kDigests, 1, 1);
constexpr Arg kDataDigest = Bits(6, 2, kDigests, 3, 1);
constexpr Arg kAuthentication = Bits(6, 2, kAuthentications, 11, 3);
constexpr Arg kIscsiProtocol = Named(4, 2, kIscsiProtocols);
constexpr Arg kSasAddress = {&kPrefixedBytes, 4, 8};
constexpr Arg kSasLun = {&kPrefixedBytes, 12, 8};

constexpr Form kForms[] = {
    {1, 1, "Pci", {H(5, 1), H(4, 1)}},
    {1, 2, "PcCard", {H(4, 1)}},
    {1, 3, "MemoryMapped", {H(4, 4), H(8, 8), H(16, 8)}},
    {1, 4, "VenHw", {Guid(4), Data(20)}},
    {1, 5, "Ctrl", {H(4, 4)}},
    {1, 6, "BMC", {H(4, 1), H(5, 8)}},

    {2, 1, "PciRoot", {H(8, 4)}, {Pnp(0x0A03)}},
    {2, 1, "PcieRoot", {H(8, 4)}, {Pnp(0x0A08)}},
    {2, 1, "Floppy", {H(8, 4)}, {Pnp(0x0604)}},
    {2, 1, "Keyboard", {H(8, 4)}, {Pnp(0x0301)}},
    {2, 1, "Serial", {H(8, 4)}, {Pnp(0x0501)}},
    {2, 1, "ParallelPort", {H(8, 4)}, {Pnp(0x0401)}},
    {2, 1, "Acpi", {{&kEisa, 4, 4}, H(8, 4)}, {{4, 2, 0x41D0}}},
    {2, 1, "Acpi", {{&kHex8, 4, 4}, H(8, 4)}},
    {2, 2, "AcpiExp", {{&kEisa, 4, 4}, {&kEisaOrZero, 12, 4}, Rest(kAcpiUidText, 16)}},
    {2, 2, "AcpiEx", {{&kEisa, 4, 4}, {&kEisa, 12, 4}, H(8, 4), Rest(kAcpiTexts, 16)}},
    {2, 3, "AcpiAdr", {H(4, 4), Optional(Rest(kHexList, 8, 4))}},

    {3, 1, "Ata", {Named(4, 1, kChannels), Named(5, 1, kDrives), H(6, 2)}},
    {3, 2, "Scsi", {H(4, 2), H(6, 2)}},
    {3, 3, "Fibre", {H(8, 8), H(16, 8)}},
    {3, 4, "I1394", {{&kDigits, 8, 8}}},
    {3, 5, "USB", {H(4, 1), H(5, 1)}},
    {3, 6, "I2O", {H(4, 4)}},
    {3, 9, "Infiniband", {H(4, 4), Guid(8), H(24, 8), H(32, 8), H(40, 8)}},
    {3, 10, "VenMsg", {Guid(4), Data(20)}},
    Terminal("VenPcAnsi", 0x11D2F9BEE0C14753, 0x4DC13F2790000C9A),
    Terminal("VenVt100", 0x11D3B419DFA66065, 0x4DC13F2790002D9A),
    Terminal("VenVt100Plus", 0x4C7657E07BAEC70B, 0x438308289E2F878E),
    Terminal("VenUtf8", 0x4ACF8BECAD15A0D6, 0x882D7EE71DD073A0),
    {3, 11, "MAC", {{&kMac, 4, 32}, H(36, 1)}},
    {3, 12, "IPv4", {Ip4(8), kProtocol4, kKind4, Ip4(4), Ip4(19), Ip4(23)}},
    {3, 12, "IPv4", {Ip4(8), kProtocol4, kKind4, Ip4(4)}, {}, 19},
    {3, 13, "IPv6", {Ip6(20), kProtocol6, kOrigin6, Ip6(4), H(43, 1), Ip6(44)}},
    {3, 13, "IPv6", {Ip6(20), kProtocol6, kOrigin6, Ip6(4)}, {}, 43},
    {3, 14, "Uart", {kBaudRate, kDataBits, kParity, kStop}},
    Usb("UsbAudio", 1),
    Usb("UsbCDCControl", 2),
    Usb("UsbHID", 3),
    Usb("UsbImage", 6),
    Usb("UsbPrinter", 7),
    Usb("UsbMassStorage", 8),
    Usb("UsbHub", 9),
    Usb("UsbCDCData", 10),
    Usb("UsbSmartCard", 11),
    Usb("UsbVideo", 14),
    Usb("UsbDiagnostic", 220),
    Usb("UsbWireless", 224),
    UsbApplication("UsbDeviceFirmwareUpdate", 1),
    UsbApplication("UsbIrdaBridge", 2),
    UsbApplication("UsbTestAndMeasurement", 3),
    {3, 15, "UsbClass", {H(4, 2), H(6, 2), H(8, 1), H(9, 1), H(10, 1)}},
    {3, 16, "UsbWwid", {H(6, 2), H(8, 2), H(4, 2), Rest(kQuoted, 10)}},
    {3, 17, "Unit", {H(4, 1)}},
    {3, 18, "Sata", {H(4, 2), H(6, 2), H(8, 2)}},
    {3,
     19,
     "iSCSI",
     {Rest(kText, 18), H(16, 2), kIscsiLun, kHeaderDigest, kDataDigest, kAuthentication,
      kIscsiProtocol}},
    {3, 20, "Vlan", {D(4, 2)}},
    {3, 21, "FibreEx", {{&kPrefixedBytes, 8, 8}, {&kPrefixedBytes, 16, 8}}},
    {3, 22, "SasEx", {kSasAddress, kSasLun, H(22, 2), Rest(kSasTopology, 20, 2)}},
    {3, 23, "NVMe", {H(4, 4), {&kDashedBytes, 8, 8}}},
    {3, 24, "Uri", {Rest(kText, 4)}},
    {3, 25, "UFS", {H(4, 1), H(5, 1)}},
    {3, 26, "SD", {H(4, 1)}},
    {3, 27, "Bluetooth", {{&kBytes, 4, 6}}},
    {3, 28, "Wi-Fi", {Rest(kFixedText, 4, 32)}},
    {3, 29, "eMMC", {H(4, 1)}},
    {3, 30, "BluetoothLE", {{&kBytes, 4, 6}, {&kHex2, 10, 1}}},
    {3, 31, "Dns", {Rest(kIpv4List, 5, 16)}, {{4, 1, 0}}},
    {3, 31, "Dns", {Rest(kIpv6List, 5, 16)}, {{4, 1, 1}}},

    // The format is written by its signature's kind; whoever types it means the format, too. What
    // is neither kind has no signature.
    Partition(kMbrArgs, {41, 1, 1}, {40, 1, 1}),
    Partition(kMbrArgs, {41, 1, 1}),
    Partition(kGptArgs, {41, 1, 2}, {40, 1, 2}),
    Partition(kGptArgs, {41, 1, 2}),
    {4, 1, "HD", {D(4, 4), D(41, 1), Literal(kZero), H(8, 8), H(16, 8)}},
    {4, 2, "CDROM", {H(4, 4), H(8, 8), H(16, 8)}},
    {4, 3, "VenMedia", {Guid(4), Data(20)}},
    {4, 4, "", {Rest(kWideText, 4)}},
    {4, 5, "Media", {Guid(4)}},
    {4, 6, "FvFile", {Guid(4)}},
    {4, 7, "Fv", {Guid(4)}},
    {4, 8, "Offset", {H(8, 8), H(16, 8)}},
    MemoryDisk("VirtualDisk", 0x624B45FC77AB535A, 0x6EF9D181B2F76055),
    MemoryDisk("VirtualCD", 0x87CE41753D5ABD30, 0xBBC423E5ADD2646D),
    MemoryDisk("PersistentVirtualDisk", 0x69D34D075CEA02C9, 0xF996E0FB96449F26),
    MemoryDisk("PersistentVirtualCD", 0xBB4842CD08018188, 0x3DED3DD587530F10),
    {4, 9, "RamDisk", {H(4, 8), H(12, 8), D(36, 2), Guid(20)}},

    {5, 1, "BBS", {Named(4, 2, kBootDevices), Rest(kTextWithNul, 8), H(6, 2)}},
};

// Nodes without a form, by their type; without a type of these, by the last.
struct Generic {
  std::uint8_t type;
  const char* name;
};
constexpr Generic kGenerics[] = {
    {1, "HardwarePath"}, {2, "AcpiPath"}, {3, "Msg"}, {4, "MediaPath"}, {5, "BbsPath"}};
constexpr std::string_view kAnyType = "Path";

// ---- Writing ----

bool WriteForm(const Form& form, ByteSpan node, std::string& text) {
  for (const Condition& condition : form.conditions) {
    Reader in(node, condition.offset);
    if (in.Number(condition.width) != condition.value || !in.Ok()) return false;
  }
  std::string list;
  for (const Arg& arg : form.Args()) {
    std::string one;
    if (!arg.notation->write(arg, node, one)) return false;
    if (arg.is_optional && one.empty()) continue;
    if (&arg != form.args) list += ',';
    list += one;
  }
  text += form.name[0] == '\0' ? list : form.name + ('(' + list + ')');
  return true;
}

void WriteNode(std::uint8_t type, std::uint8_t subtype, ByteSpan node, std::string& text) {
  bool has_form = false;
  for (const Form& form : kForms) {
    if (form.type != type || form.subtype != subtype) continue;
    const bool fits = form.size == 0 || form.size == node.size();
    if (fits && WriteForm(form, node, text)) return;
    has_form = true;
  }
  const Generic* const generic =
      std::find_if(std::begin(kGenerics), std::end(kGenerics),
                   [&](const Generic& row) { return !has_form && row.type == type; });
  if (generic == std::end(kGenerics)) {
    text.append(kAnyType) += '(' + std::to_string(type) + ',';
  } else {
    text.append(generic->name) += '(';
  }
  text += std::to_string(subtype);
  const ByteSpan data = bytes::Slice(node, kNodeHeader);
  if (!data.empty()) text += ',' + HexBytes(data);
  text += ')';
}

// ---- Reading ----

bool ReadForm(const Form& form, std::string_view inner, const std::vector<std::string_view>& parts,
              Bytes& node) {
  const std::span<const Arg> args = form.Args();
  node = {form.type, form.subtype, 0, 0};
  for (const Condition& condition : form.conditions) {
    if (condition.width > 0) SetField(condition.offset, condition.width, condition.value, node);
  }
  if (args.empty()) return Trimmed(inner).empty();
  const bool has_rest =
      std::any_of(args.begin(), args.end(), [](const Arg& arg) { return arg.takes_rest; });
  const bool lacks_one = parts.size() + 1 == args.size() && args.back().is_optional;
  if (!lacks_one && (has_rest ? parts.size() < args.size() : parts.size() != args.size())) {
    return false;
  }
  std::size_t next = 0;
  for (const Arg& arg : args) {
    if (next == parts.size()) break;
    std::string_view text = parts[next++];
    if (arg.takes_rest) {
      // It takes what the arguments behind it leave.
      const std::size_t behind = static_cast<std::size_t>(&args.back() - &arg);
      next = parts.size() - behind;
      const char* const end = parts[next - 1].data() + parts[next - 1].size();
      text = {text.data(), static_cast<std::size_t>(end - text.data())};
    }
    if (!arg.notation->read(arg, text, node)) return false;
  }
  return true;
}

bool ReadGeneric(std::optional<std::uint8_t> type, const std::vector<std::string_view>& parts,
                 Bytes& node) {
  std::size_t next = 0;
  const auto byte = [&]() -> std::optional<std::uint64_t> {
    if (next == parts.size()) return std::nullopt;
    return ParseNumber(parts[next++], 0xFF);
  };
  const std::optional<std::uint64_t> first = type ? *type : byte();
  const std::optional<std::uint64_t> subtype = byte();
  if (!first || !subtype || *first == kEndType) return false;
  node = {static_cast<std::uint8_t>(*first), static_cast<std::uint8_t>(*subtype), 0, 0};
  if (next == parts.size()) return true;
  return next + 1 == parts.size() && SetBytes(kNodeHeader, ParseHexBytes(parts[next]), node);
}

// A node that is written with a name and brackets.
bool ReadNamed(std::string_view text, Bytes& node) {
  const std::size_t bracket = text.find('(');
  const std::string_view name = text.substr(0, bracket);
  const std::string_view inner = text.substr(bracket + 1, text.size() - bracket - 2);
  const std::vector<std::string_view> parts = Split(inner, ',');
  for (const Form& form : kForms) {
    if (SameWord(name, form.name) && ReadForm(form, inner, parts, node)) return true;
  }
  for (const Generic& row : kGenerics) {
    if (SameWord(name, row.name)) return ReadGeneric(row.type, parts, node);
  }
  return SameWord(name, kAnyType) && ReadGeneric(std::nullopt, parts, node);
}

bool IsNameCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
}

// Whether a node may end here: at the path's end, before a slash or, between instances, before a
// comma, which people may or may not follow up with a slash.
bool IsBoundary(std::string_view text, std::size_t at, bool needs_slash) {
  return at == text.size() || text[at] == '/' ||
         (text[at] == ',' && (!needs_slash || text.substr(at).starts_with(",/")));
}

// Where the name and its brackets at the start of the text end: where the brackets pair and, since
// a device's description may hold single ones, where the first stands that may end a node. Both are
// 0 where there is no such place.
struct NamedLengths {
  std::size_t paired = 0;
  std::size_t first = 0;
};

NamedLengths FindNamed(std::string_view text) {
  NamedLengths lengths;
  std::size_t at = 0;
  while (at < text.size() && IsNameCharacter(text[at])) ++at;
  if (at == 0 || at == text.size() || text[at] != '(') return lengths;
  std::size_t depth = 0;
  for (bool pairs = true; at < text.size() && (pairs || lengths.first == 0); ++at) {
    if (text[at] == '(') ++depth;
    if (text[at] != ')') continue;
    if (lengths.first == 0 && IsBoundary(text, at + 1, true)) lengths.first = at + 1;
    if (!pairs || --depth > 0) continue;
    pairs = false;
    if (IsBoundary(text, at + 1, false)) lengths.paired = at + 1;
  }
  return lengths;
}

// A comma belongs to a file's name unless a slash follows.
std::size_t FileLength(std::string_view text) {
  return std::min({text.find('/'), text.find(",/"), text.size()});
}

bool AppendNode(Bytes& node, Bytes& path) {
  if (node.size() > std::numeric_limits<std::uint16_t>::max()) return false;
  SetField(2, sizeof(std::uint16_t), node.size(), node);
  path.insert(path.end(), node.begin(), node.end());
  return true;
}

bool AppendEnd(std::uint8_t subtype, Bytes& path) {
  Bytes node = {kEndType, subtype, 0, 0};
  return AppendNode(node, path);
}

}  // namespace

std::string DevicePathText(const CUEFILOList::DevicePath& path) {
  std::string text;
  for (const auto& record : path) {
    if (!record) continue;
    if (!text.empty()) text += '/';
    const Bytes node = EncodeNode(*record);
    WriteNode(node[0], node[1], node, text);
  }
  return text;
}

std::string DevicePathText(ByteSpan path) {
  std::string text;
  Reader in(path);
  while (const std::optional<RawNode> node = NextNode(in)) {
    if (node->type == kEndType) {
      if (node->subtype != kEndOfInstance) break;
      text += ',';
      continue;
    }
    if (!text.empty()) text += '/';
    WriteNode(node->type, node->subtype, node->bytes, text);
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> DevicePathFromText(std::string_view text) {
  Bytes path;
  while (!text.empty()) {
    if (text[0] == '/') {
      text.remove_prefix(1);
      continue;
    }
    if (text[0] == ',') {
      AppendEnd(kEndOfInstance, path);
      text.remove_prefix(1);
      continue;
    }
    Bytes node;
    std::size_t length = 0;
    const NamedLengths lengths = FindNamed(text);
    for (const std::size_t named : {lengths.paired, lengths.first}) {
      if (length == 0 && named != 0 && ReadNamed(text.substr(0, named), node)) length = named;
    }
    if (length == 0) {
      if (lengths.paired != 0 || lengths.first != 0) return std::nullopt;
      length = FileLength(text);
      node = {4, 4, 0, 0};
      if (!kWideText.read(Rest(kWideText, kNodeHeader), text.substr(0, length), node)) {
        return std::nullopt;
      }
    }
    if (!AppendNode(node, path)) return std::nullopt;
    text.remove_prefix(length);
  }
  AppendEnd(kEndOfPath, path);
  return path;
}

std::optional<LoadOption> DecodeLoadOption(ByteSpan bytes) {
  LoadOption option;
  Reader in(bytes);
  option.attributes = in.U32();
  const std::size_t path_size = in.U16();
  bool terminated = false;
  option.description = TakeWideText(in, &terminated);
  const ByteSpan path = in.Take(path_size);
  if (!in.Ok() || !terminated) return std::nullopt;
  const ByteSpan rest = in.Rest();
  option.path_bytes.assign(path.begin(), path.end());
  option.path = DevicePathText(path);
  option.optional_data.assign(rest.begin(), rest.end());
  return option;
}

}  // namespace mira::boot
