#include "devicepath/node_types.h"

#include <algorithm>
#include <array>

#include "devicepath/node_table.h"

namespace mira::devicepath {
namespace {

using table::kNodeTypes;

// ---- Special forms ----

// An argument is its field, which its offset names; what is set here is another way to show it.
// With a width it is a part of the bytes that no record has.
struct Special {
  std::uint8_t type;
  std::uint8_t subtype;
  std::string_view name;
  Arg args[kMostArgs] = {};
  Condition conditions[kMostConditions] = {};  // width 0: the field's
  std::size_t size = 0;  // of nodes of one size alone, which take all arguments
  bool is_only_read = false;
};

constexpr Arg At(std::size_t offset) {
  Arg arg;
  arg.offset = offset;
  return arg;
}
constexpr Arg At(std::size_t offset, Arg arg, std::size_t width = 0) {
  arg.offset = offset;
  if (width != 0) arg.width = width;
  return arg;
}
constexpr Arg At(std::size_t offset, const Notation& notation, std::size_t width = 0) {
  return At(offset, Arg{&notation}, width);
}
constexpr Arg Bits(std::size_t offset, std::span<const Name> names, unsigned shift,
                   std::uint64_t mask, const char* fallback) {
  Arg arg = Named(names, fallback);
  arg.notation = &kNamedBits;
  arg.offset = offset;
  arg.shift = shift;
  arg.mask = mask;
  return arg;
}
constexpr Arg Literal(std::size_t offset, std::span<const Name> name) {
  Arg arg = Named(name);
  arg.notation = &kLiteral;
  arg.offset = offset;
  return arg;
}

constexpr Name kDigests[] = {{0, "None"}, {1, "CRC32C"}};
constexpr Name kAuthentications[] = {{0, "CHAP_BI"}, {2, "CHAP_UNI"}, {1, "None"}, {3, "None"}};
constexpr Name kFlows[] = {{0, "None"}, {1, "Hardware"}, {2, "XonXoff"}};
constexpr Name kMbr[] = {{0, "MBR"}};
constexpr Name kGpt[] = {{0, "GPT"}};
constexpr Name kZero[] = {{0, "0"}};
constexpr Name kVendorService[] = {{0xFF, "0xFF"}};

constexpr Special Pnp(std::string_view name, std::uint64_t number) {
  return {2, 1, name, {At(8)}, {{4, 0, number << 16 | 0x41D0}}};
}
constexpr Special Usb(std::string_view name, std::uint64_t device_class) {
  return {3, 15, name, {At(4), At(6), At(9), At(10)}, {{8, 0, device_class}}};
}
constexpr Special UsbApplication(std::string_view name, std::uint64_t subclass) {
  return {3, 15, name, {At(4), At(6), At(10)}, {{8, 0, 254}, {9, 0, subclass}}};
}
// A kind of vendor node, which its GUID, here as two numbers, stands for. Its name is understood,
// but written as VenMsg.
constexpr Special Vendor(std::string_view name, std::uint64_t low, std::uint64_t high,
                         std::initializer_list<Arg> args = {}) {
  Special form{3, 10, name, {}, {{4, 8, low}, {12, 8, high}}};
  std::copy(args.begin(), args.end(), form.args);
  form.is_only_read = true;
  return form;
}
constexpr Special MemoryDisk(std::string_view name, std::uint64_t low, std::uint64_t high) {
  return {4, 9, name, {At(4), At(12), At(36)}, {{20, 8, low}, {28, 8, high}}};
}

// The format is written by its signature's kind, and read as both.
constexpr Special Partition(std::span<const Name> format, Arg signature, Condition first,
                            Condition second = {}) {
  return {4, 1, "HD", {At(4), Literal(40, format), signature, At(8), At(16)}, {first, second}};
}

// In the order of the node types.
constexpr Special kSpecials[] = {
    Pnp("PciRoot", 0x0A03),
    Pnp("PcieRoot", 0x0A08),
    Pnp("Floppy", 0x0604),
    Pnp("Keyboard", 0x0301),
    Pnp("Serial", 0x0501),
    Pnp("ParallelPort", 0x0401),

    {2, 2, "AcpiExp", {At(4), At(12, Or(kEisaOrZero, "0")), At(16, Or(Rest(kAcpiUidText), ""))}},
    {2, 2, "AcpiEx", {At(4), At(12), At(8), At(16)}},

    Vendor("VenPcAnsi", 0x11D2F9BEE0C14753, 0x4DC13F2790000C9A),
    Vendor("VenVt100", 0x11D3B419DFA66065, 0x4DC13F2790002D9A),
    Vendor("VenVt100Plus", 0x4C7657E07BAEC70B, 0x438308289E2F878E),
    Vendor("VenUtf8", 0x4ACF8BECAD15A0D6, 0x882D7EE71DD073A0),
    Vendor("DebugPort", 0x41EC3858EBA4E8D2, 0xD06096BA472681A2),
    Vendor("UartFlowCtrl", 0x4C89542F37499A9D, 0xE4942014DA3526A0,
           {At(20, Named(kFlows, "None"), 4)}),
    Vendor("SAS", 0x11D9008BD487DDB4, 0x4DCAFF831000DCAF,
           {At(24, kHex, 8), At(32, Or(kHex, "0"), 8), At(42, Or(kHex, "0"), 2),
            At(40, table::Topology(), 2), At(20, Or(kHex, "0"), 4)}),

    {3, 12, "IPv4", {At(8), At(16), At(18), At(4)}, {}, 19},
    {3, 13, "IPv6", {At(20), At(40), At(42), At(4)}, {}, 43},

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

    {3,
     19,
     "iSCSI",
     {At(18), At(16), At(8), Bits(6, kDigests, 1, 1, "None"), Bits(6, kDigests, 3, 1, "None"),
      Bits(6, kAuthentications, 11, 3, "None"), At(4)}},

    {3, 31, "Dns", {At(5, kIpv4List)}, {{4, 0, 0}}},
    {3, 31, "Dns", {At(5)}, {{4, 0, 1}}},

    {3, 33, "RestService", {Literal(4, kVendorService), At(5), At(6), At(22)}, {{4, 0, 0xFF}}},
    {3, 33, "RestService", {At(4), At(5)}, {}, 6},

    Partition(kMbr, At(24, kHex8, 4), {41, 0, 1}, {40, 0, 1}),
    Partition(kMbr, At(24, kHex8, 4), {41, 0, 1}),
    Partition(kGpt, At(24), {41, 0, 2}, {40, 0, 2}),
    Partition(kGpt, At(24), {41, 0, 2}),
    {4, 1, "HD", {At(4), At(41), Literal(24, kZero), At(8), At(16)}},

    MemoryDisk("VirtualDisk", 0x624B45FC77AB535A, 0x6EF9D181B2F76055),
    MemoryDisk("VirtualCD", 0x87CE41753D5ABD30, 0xBBC423E5ADD2646D),
    MemoryDisk("PersistentVirtualDisk", 0x69D34D075CEA02C9, 0xF996E0FB96449F26),
    MemoryDisk("PersistentVirtualCD", 0xBB4842CD08018188, 0x3DED3DD587530F10),
};

// ---- The table of forms ----

constexpr Arg Resolved(const NodeType& type, Arg arg) {
  const Field field = FieldAt(type, arg.offset);
  if (field.arg.offset == 0) {
    if (!arg.is_shown || arg.width == 0) throw "no field has this offset";
    return arg;
  }
  if (!arg.is_shown) return field.arg;
  if (arg.width == 0) arg.width = field.arg.width;
  if (field.size == 0) arg.parts = field.arg.parts;
  return arg;
}

constexpr Form PlainForm(const NodeType& type) {
  Form form{type.type, type.subtype, type.name};
  std::size_t count = 0;
  if (type.order[0] != 0) {
    for (const std::uint8_t offset : type.order) {
      if (offset != 0) form.args[count++] = Resolved(type, At(offset));
    }
    return form;
  }
  for (const Field& field : type.fields) {
    if (field.arg.is_shown) form.args[count++] = field.arg;
  }
  return form;
}

constexpr Form SpecialForm(const NodeType& type, const Special& special) {
  Form form{special.type, special.subtype, special.name};
  form.size = special.size;
  form.is_only_read = special.is_only_read;
  std::size_t count = 0;
  for (const Arg& arg : special.args) {
    if (arg.offset == 0) continue;
    form.args[count] = Resolved(type, arg);
    // A form of one size is known by the number of its arguments.
    if (special.size != 0) form.args[count].fallback = nullptr;
    ++count;
  }
  count = 0;
  for (Condition condition : special.conditions) {
    if (condition.offset == 0) continue;
    if (condition.width == 0) condition.width = FieldAt(type, condition.offset).size;
    form.conditions[count++] = condition;
  }
  return form;
}

constexpr std::size_t kFormCount =
    std::size(kSpecials) + static_cast<std::size_t>(std::count_if(
                               std::begin(kNodeTypes), std::end(kNodeTypes),
                               [](const NodeType& t) { return t.name != kNoPlainForm; }));

constexpr unsigned Key(std::uint8_t type, std::uint8_t subtype) {
  return unsigned{type} << 8 | subtype;
}

// Fails to compile where special forms are out of order or belong to no node type.
constexpr std::array<Form, kFormCount> MakeForms() {
  std::array<Form, kFormCount> forms{};
  std::size_t count = 0;
  std::size_t special = 0;
  for (const NodeType& type : kNodeTypes) {
    for (; special < std::size(kSpecials) &&
           Key(kSpecials[special].type, kSpecials[special].subtype) == Key(type.type, type.subtype);
         ++special) {
      forms[count++] = SpecialForm(type, kSpecials[special]);
    }
    if (type.name != kNoPlainForm) forms[count++] = PlainForm(type);
  }
  if (special != std::size(kSpecials)) throw "a special form is out of order";
  return forms;
}

constexpr std::array<Form, kFormCount> kForms = MakeForms();

constexpr auto kByKey = [](const auto& a, const auto& b) {
  return Key(a.type, a.subtype) < Key(b.type, b.subtype);
};
static_assert(std::is_sorted(std::begin(kNodeTypes), std::end(kNodeTypes), kByKey));

}  // namespace

std::span<const Arg> Form::Args() const {
  const Arg* const end =
      std::find_if(std::begin(args), std::end(args), [](const Arg& arg) { return !arg.is_shown; });
  return {args, end};
}

const NodeType* FindNodeType(std::uint8_t type, std::uint8_t subtype) {
  const auto* const found = std::lower_bound(
      std::begin(kNodeTypes), std::end(kNodeTypes), Key(type, subtype),
      [](const NodeType& row, unsigned key) { return Key(row.type, row.subtype) < key; });
  const bool is_known =
      found != std::end(kNodeTypes) && found->type == type && found->subtype == subtype;
  return is_known ? found : nullptr;
}

std::span<const Form> Forms() { return kForms; }

std::span<const Form> FormsOf(std::uint8_t type, std::uint8_t subtype) {
  const unsigned key = Key(type, subtype);
  const auto begin = std::lower_bound(
      kForms.begin(), kForms.end(), key,
      [](const Form& row, unsigned wanted) { return Key(row.type, row.subtype) < wanted; });
  const auto end = std::find_if(
      begin, kForms.end(), [key](const Form& row) { return Key(row.type, row.subtype) != key; });
  return {begin, end};
}

}  // namespace mira::devicepath
