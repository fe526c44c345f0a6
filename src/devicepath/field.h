#ifndef MIRA_DEVICEPATH_FIELD_H_
#define MIRA_DEVICEPATH_FIELD_H_

// The words in which the table of node types is written.
//
//   Node<PCIDevicePath>({1, 1, "Pci", {F<&PCIDevicePath::Function>(4, kHex),
//                                      F<&PCIDevicePath::Device>(5, kHex)}, {5, 4}})

#include <algorithm>
#include <array>
#include <concepts>
#include <memory>
#include <string>
#include <type_traits>

#include "bytes/reader.h"
#include "bytes/writer.h"
#include "devicepath/node_types.h"
#include "devicepath/nodes.h"

namespace mira::devicepath {

// How a member of a record is read from the rest of its node, and written behind what stands there.

template <std::unsigned_integral T>
void Get(bytes::Reader& in, T& member) {
  member = static_cast<T>(in.Number(sizeof(T)));
}
template <std::unsigned_integral T>
void Put(NodeBytes& out, T member) {
  bytes::Append(out, member, sizeof(T));
}

// An array takes what is there, where that is less.
template <std::size_t kSize>
void Get(bytes::Reader& in, std::array<std::uint8_t, kSize>& member) {
  const bytes::ByteSpan taken = in.Take(std::min(kSize, in.Left()));
  std::copy(taken.begin(), taken.end(), member.begin());
}
template <std::size_t kSize>
void Put(NodeBytes& out, const std::array<std::uint8_t, kSize>& member) {
  out.insert(out.end(), member.begin(), member.end());
}

inline void Get(bytes::Reader& in, NodeBytes& member) {
  const bytes::ByteSpan rest = in.Rest();
  member.assign(rest.begin(), rest.end());
}
inline void Put(NodeBytes& out, const NodeBytes& member) {
  out.insert(out.end(), member.begin(), member.end());
}

// A last element that is cut is filled up with zeros.
inline void Get(bytes::Reader& in, std::vector<NodeRecords::IPv6Address>& member) {
  while (in.Left() > 0) Get(in, member.emplace_back());
}
inline void Put(NodeBytes& out, const std::vector<NodeRecords::IPv6Address>& member) {
  for (const NodeRecords::IPv6Address& address : member) Put(out, address);
}

inline void Get(bytes::Reader& in, std::string& member) { member = TakeText(in); }
inline void Put(NodeBytes& out, const std::string& member) {
  out.insert(out.end(), member.begin(), member.end());
  out.push_back(0);
}

inline void Get(bytes::Reader& in, std::u16string& member) {
  bool terminated = false;
  member = TakeWideText(in, &terminated);
  // Half a unit at the node's end is one with a zero half.
  if (!terminated && in.Left() == 1) member += static_cast<char16_t>(in.U8());
}
inline void Put(NodeBytes& out, const std::u16string& member) {
  for (const char16_t unit : member) Put(out, static_cast<std::uint16_t>(unit));
  Put(out, std::uint16_t{0});
}

// A member's class, and the bytes that a node has for it: 0, where it takes what is left.
template <typename T>
struct MemberOf;
template <typename Record, typename T>
struct MemberOf<T Record::*> {
  using Class = Record;
  static constexpr std::size_t kSize = std::is_class_v<T> ? 0 : sizeof(T);
};
template <typename Record, std::size_t kBytes>
struct MemberOf<std::array<std::uint8_t, kBytes> Record::*> {
  using Class = Record;
  static constexpr std::size_t kSize = kBytes;
};

// A field at an offset, as a text shows it.
template <auto kMember>
constexpr Field F(std::size_t offset, Arg arg = {}) {
  using Member = MemberOf<decltype(kMember)>;
  arg.offset = offset;
  if (arg.width == 0) arg.width = Member::kSize;
  return {arg, Member::kSize,
          [](bytes::Reader& in, NodeRecords::GenericDevicePath& record) {
            Get(in, static_cast<typename Member::Class&>(record).*kMember);
          },
          [](const NodeRecords::GenericDevicePath& record, NodeBytes& out) {
            // A record that calls itself another's node has nothing to write.
            const auto* const owner = dynamic_cast<const typename Member::Class*>(&record);
            if (owner != nullptr) Put(out, owner->*kMember);
          }};
}
template <auto kMember>
constexpr Field F(std::size_t offset, const Notation& notation) {
  return F<kMember>(offset, Arg{&notation});
}

// Ways to show a field.
constexpr Arg Named(std::span<const Name> names, const char* fallback = nullptr) {
  Arg arg{&kNamed};
  arg.names = names;
  arg.fallback = fallback;
  return arg;
}
constexpr Arg Or(Arg arg, const char* fallback) {
  arg.fallback = fallback;
  return arg;
}
constexpr Arg Or(const Notation& notation, const char* fallback) {
  return Or(Arg{&notation}, fallback);
}
// Its text may hold commas.
constexpr Arg Rest(const Notation& notation) {
  Arg arg{&notation};
  arg.parts = 0;
  return arg;
}
// Elements of a width.
constexpr Arg List(const Notation& notation, std::size_t width) {
  Arg arg = Rest(notation);
  arg.width = width;
  return arg;
}
// Neither written nor wanted where it is empty.
constexpr Arg Hidden(Arg arg) {
  arg.is_hidden_empty = true;
  arg.fallback = "";
  return arg;
}

// A field of offset 0 where there is none.
constexpr Field FieldAt(const NodeType& type, std::size_t offset) {
  for (const Field& field : type.fields) {
    if (field.arg.offset == offset) return field;
  }
  return {};
}

// The same of a node that has no record; width 0 takes what is left.
constexpr Field Plain(std::size_t offset, std::size_t width, Arg arg) {
  arg.offset = offset;
  if (arg.width == 0) arg.width = width;
  return {arg, width};
}
constexpr Field Plain(std::size_t offset, std::size_t width, const Notation& notation) {
  return Plain(offset, width, Arg{&notation});
}

// A node that only texts know: it is decoded into no record. Fails to compile where an offset is
// not the sum of the sizes before it. Fields behind one that takes what is left have its offset.
constexpr NodeType TextNode(NodeType type) {
  type.shortest = kNodeHeader;
  for (const Field& field : type.fields) {
    if (field.arg.offset == 0) continue;
    if (field.arg.offset != type.shortest) throw "a field's offset is wrong";
    type.shortest += field.size;
  }
  return type;
}

template <typename Record>
constexpr NodeType Node(const NodeType& plain) {
  NodeType type = TextNode(plain);
  type.make = []() -> std::unique_ptr<NodeRecords::GenericDevicePath> {
    return std::make_unique<Record>();
  };
  return type;
}

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_FIELD_H_
