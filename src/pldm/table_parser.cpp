#include "pldm/table_parser.h"

#include <iostream>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace mira::pldm {
namespace {

using bytes::ByteSpan;
using bytes::Reader;
using bytes::Writer;

constexpr std::size_t kSmallestRest = 8;
constexpr std::size_t kTypeByte = 1;
constexpr std::size_t kCountByte = 1;
constexpr std::size_t kLengthWord = 2;

// Fields that both attributes and values have.
void ReadBytes(Reader& in, std::size_t count, Indices& list) {
  const ByteSpan taken = in.Take(count);
  list.assign(taken.begin(), taken.end());
}

void ReadHandles(Reader& in, std::size_t count, Handles& list) {
  Reader handles(in.Take(count * sizeof(std::uint16_t)));
  list.resize(handles.Left() / sizeof(std::uint16_t));
  for (char16_t& handle : list) handle = handles.U16();
}

void ReadText(Reader& in, std::string& text) {
  const std::size_t length = in.U16();
  text = bytes::AsText(in.Take(length));
}

// Behind handle, type and name of an entry of the attribute table.
void Read(Reader& in, IntBIOSEnumeration& attribute) {
  ReadHandles(in, in.U8(), attribute.possible_handles);
  ReadBytes(in, in.U8(), attribute.default_indices);
}

template <typename Text>
void ReadTextAttribute(Reader& in, Text& attribute) {
  attribute.string_type = in.U8();
  attribute.min_length = in.U16();
  attribute.max_length = in.U16();
  ReadText(in, attribute.default_text);
}
void Read(Reader& in, IntBIOSString& attribute) { ReadTextAttribute(in, attribute); }
void Read(Reader& in, IntBIOSPassword& attribute) { ReadTextAttribute(in, attribute); }

void Read(Reader& in, IntBIOSInteger& attribute) {
  attribute.lower_bound = in.U64();
  attribute.upper_bound = in.U64();
  attribute.scalar_increment = in.U32();
  attribute.default_value = in.U64();
}

void Read(Reader& in, IntBIOSBootConfigSetting& attribute) {
  attribute.boot_config_type = in.U8();
  attribute.supported_modes = in.U8();
  attribute.min_sources = in.U8();
  attribute.max_sources = in.U8();
  ReadHandles(in, in.U8(), attribute.possible_handles);
}

void Read(Reader& in, IntBIOSCollection& attribute) {
  attribute.collection_name_handle = in.U16();
  attribute.max_attributes = in.U8();
  attribute.collection_type = in.U8();
}

void Read(Reader& in, IntBIOSConfigSet& attribute) {
  ReadHandles(in, in.U8(), attribute.member_handles);
}

// Behind handle and type of an entry of the value table; what a write request carries behind the
// type.
void Read(Reader& in, IntBIOSEnumerationValue& value) { ReadBytes(in, in.U8(), value.indices); }
void Read(Reader& in, IntBIOSStringValue& value) { ReadText(in, value.text); }
void Read(Reader& in, IntBIOSPasswordValue& value) { ReadText(in, value.text); }
void Read(Reader& in, IntBIOSIntegerValue& value) { value.value = in.U64(); }
void Read(Reader& in, IntBIOSBootConfigSettingValue& value) {
  value.boot_config_type = in.U8();
  value.fail_through_mode = in.U8();
  ReadBytes(in, in.U8(), value.ordered_indices);
}
void Read(Reader& in, IntBIOSCollectionValue& value) { ReadHandles(in, in.U8(), value.members); }
void Read(Reader& in, IntBIOSConfigSetValue& value) { value.index = in.U8(); }

void WriteIndices(const Indices& indices, Writer& out) {
  out.U8(static_cast<std::uint8_t>(indices.size()));
  for (const std::uint8_t index : indices) out.U8(index);
}

void WriteText(const std::string& text, Writer& out) {
  out.U16(static_cast<std::uint16_t>(text.size()));
  out.Bytes(bytes::AsBytes(text));
}

void Write(const IntBIOSEnumerationValue& value, Writer& out) { WriteIndices(value.indices, out); }
void Write(const IntBIOSStringValue& value, Writer& out) { WriteText(value.text, out); }
void Write(const IntBIOSPasswordValue& value, Writer& out) { WriteText(value.text, out); }
void Write(const IntBIOSIntegerValue& value, Writer& out) { out.U64(value.value); }
void Write(const IntBIOSBootConfigSettingValue& value, Writer& out) {
  out.U8(value.boot_config_type);
  out.U8(value.fail_through_mode);
  WriteIndices(value.ordered_indices, out);
}
void Write(const IntBIOSCollectionValue& value, Writer& out) {
  out.U8(static_cast<std::uint8_t>(value.members.size()));
  for (const std::uint16_t handle : value.members) out.U16(handle);
}
void Write(const IntBIOSConfigSetValue& value, Writer& out) { out.U8(value.index); }

// How many things a value lists, and how large what stands around and for each of them is.
struct Extent {
  std::size_t fixed;
  std::size_t count = 0;
  std::size_t size = 1;
  std::size_t longest = std::numeric_limits<std::uint8_t>::max();
};

constexpr std::size_t kLongestText = std::numeric_limits<std::uint16_t>::max() -
                                     (kTypeByte + kLengthWord);  // the request counts in 16 bits

Extent ExtentOf(const IntBIOSEnumerationValue& value) { return {kCountByte, value.indices.size()}; }
Extent ExtentOf(const IntBIOSStringValue& value) {
  return {kLengthWord, value.text.size(), 1, kLongestText};
}
Extent ExtentOf(const IntBIOSPasswordValue& value) {
  return {kLengthWord, value.text.size(), 1, kLongestText};
}
Extent ExtentOf(const IntBIOSIntegerValue& value) { return {sizeof(value.value)}; }
Extent ExtentOf(const IntBIOSBootConfigSettingValue& value) {
  return {2 + kCountByte, value.ordered_indices.size()};
}
Extent ExtentOf(const IntBIOSCollectionValue& value) {
  return {kCountByte, value.members.size(), sizeof(std::uint16_t)};
}
Extent ExtentOf(const IntBIOSConfigSetValue& value) { return {sizeof(value.index)}; }

// What the tables need to know of a type; the rows stand in the order of the types' numbers.
struct Kind {
  std::unique_ptr<IntPLDMAttribute> (*read_attribute)(Reader& in);
  std::unique_ptr<IntPLDMAttributeValue> (*make_value)();
  std::unique_ptr<IntPLDMAttributeValue> (*read_value)(Reader& in);
  Extent (*extent)(const IntPLDMAttributeValue& value);
  void (*write_value)(const IntPLDMAttributeValue& value, Writer& out);
};

template <typename T, typename Base>
std::unique_ptr<Base> ReadNew(Reader& in) {
  auto object = std::make_unique<T>();
  Read(in, *object);
  return object;
}

template <typename A, typename V>
constexpr Kind MakeKind() {
  return {
      ReadNew<A, IntPLDMAttribute>,
      []() -> std::unique_ptr<IntPLDMAttributeValue> { return std::make_unique<V>(); },
      ReadNew<V, IntPLDMAttributeValue>,
      [](const IntPLDMAttributeValue& value) { return ExtentOf(dynamic_cast<const V&>(value)); },
      [](const IntPLDMAttributeValue& value, Writer& out) {
        Write(dynamic_cast<const V&>(value), out);
      },
  };
}

constexpr Kind kKinds[] = {
    MakeKind<IntBIOSEnumeration, IntBIOSEnumerationValue>(),
    MakeKind<IntBIOSString, IntBIOSStringValue>(),
    MakeKind<IntBIOSPassword, IntBIOSPasswordValue>(),
    MakeKind<IntBIOSInteger, IntBIOSIntegerValue>(),
    MakeKind<IntBIOSBootConfigSetting, IntBIOSBootConfigSettingValue>(),
    MakeKind<IntBIOSCollection, IntBIOSCollectionValue>(),
    MakeKind<IntBIOSConfigSet, IntBIOSConfigSetValue>(),
};
static_assert(std::size(kKinds) == PLDM::BIOSConfigSet + 1);

// Null, after the line that says so, for a type that does not exist.
const Kind* FindKind(PLDM::ATTRIBUTE_TYPE type) {
  if (PLDM::IsKnown(type)) return &kKinds[PLDM::WritableForm(type)];
  DiagnoseType();
  return nullptr;
}

// Null for a value that cannot be written: its type is read-only.
const Kind* FindWritableKind(const IntPLDMAttributeValue& value) {
  return PLDM::IsKnown(value.type) && !PLDM::IsReadOnly(value.type) ? &kKinds[value.type] : nullptr;
}

template <typename ReadEntry>
void Walk(ByteSpan data, ReadEntry read_entry) {
  Reader in(data);
  while (in.Left() >= kSmallestRest) read_entry(in);
}

}  // namespace

void DiagnoseType() {
  std::cout << "Flow shouldn't reach here; contact the developer!!" << std::endl;
}

void ParseStringTable(ByteSpan data, Tables& tables) {
  Walk(data, [&](Reader& in) {
    const std::uint16_t handle = in.U16();
    const std::size_t length = in.U16();
    const std::string_view text = bytes::AsText(in.Take(length));
    if (in.Ok()) tables.AddString(handle, text);
  });
}

void ParseStringData(ByteSpan data, Tables::WideIndex& index) {
  Walk(data, [&](Reader& in) {
    const std::uint16_t handle = in.U16();
    const std::size_t length = in.U16();
    Reader characters(in.Take(length * sizeof(char16_t)));
    if (!in.Ok()) return;
    std::u16string text(characters.Left() / sizeof(char16_t), u'\0');
    for (char16_t& character : text) character = characters.U16();
    index.insert_or_assign(handle, std::move(text));
  });
}

void ParseAttributeTable(ByteSpan data, Tables& tables) {
  Walk(data, [&](Reader& in) {
    const std::uint16_t handle = in.U16();
    const auto type = static_cast<PLDM::ATTRIBUTE_TYPE>(in.U8());
    const std::uint16_t name_handle = in.U16();
    const Kind* const kind = FindKind(type);
    if (kind == nullptr) return;
    std::unique_ptr<IntPLDMAttribute> attribute = kind->read_attribute(in);
    if (!in.Ok()) return;
    attribute->handle = handle;
    attribute->type = type;
    attribute->name_handle = name_handle;
    tables.AddAttribute(std::move(attribute));
  });
}

void ParseValueTable(ByteSpan data, Tables& tables) {
  Walk(data, [&](Reader& in) {
    const std::uint16_t handle = in.U16();
    const auto type = static_cast<PLDM::ATTRIBUTE_TYPE>(in.U8());
    if (auto value = ReadValue(in, handle, type)) tables.AddValue(std::move(value));
  });
}

std::unique_ptr<IntPLDMAttributeValue> MakeValue(PLDM::ATTRIBUTE_TYPE type) {
  const Kind* const kind = FindKind(type);
  if (kind == nullptr) return nullptr;
  std::unique_ptr<IntPLDMAttributeValue> value = kind->make_value();
  value->type = type;
  return value;
}

std::unique_ptr<IntPLDMAttributeValue> ReadValue(Reader& in, std::uint16_t handle,
                                                 PLDM::ATTRIBUTE_TYPE type) {
  const Kind* const kind = FindKind(type);
  if (kind == nullptr) return nullptr;
  std::unique_ptr<IntPLDMAttributeValue> value = kind->read_value(in);
  value->handle = handle;
  value->type = type;
  return in.Ok() ? std::move(value) : nullptr;
}

std::size_t EncodedSize(const IntPLDMAttributeValue& value) {
  const Kind* const kind = FindWritableKind(value);
  if (kind == nullptr) return kTypeByte;
  const Extent extent = kind->extent(value);
  return kTypeByte + extent.fixed + extent.count * extent.size;
}

bool IsEncodable(const IntPLDMAttributeValue& value) {
  const Kind* const kind = FindWritableKind(value);
  if (kind == nullptr) return true;
  const Extent extent = kind->extent(value);
  return extent.count <= extent.longest;
}

void Encode(const IntPLDMAttributeValue& value, Writer& out) {
  out.U8(static_cast<std::uint8_t>(value.type));
  if (const Kind* const kind = FindWritableKind(value)) {
    kind->write_value(value, out);
  } else {
    DiagnoseType();
  }
}

}  // namespace mira::pldm
