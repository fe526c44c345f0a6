#ifndef MIRA_DEVICEPATH_NODE_TYPES_H_
#define MIRA_DEVICEPATH_NODE_TYPES_H_

// What the node types of device paths look like: one table, from which nodes are read into records,
// written as text and read from text.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "bytes/reader.h"
#include "devicepath/notation.h"
#include "devicepath/records.h"

namespace mira::devicepath {

inline constexpr std::size_t kNodeHeader = 4;
inline constexpr std::uint8_t kEndType = 0x7F;
inline constexpr std::uint8_t kEndOfPath = 0xFF;
inline constexpr std::uint8_t kEndOfInstance = 0x01;

// A field of a node: where it stands, how a text shows it (without a notation, not at all), and how
// its record's member is read and written.
struct Field {
  Arg arg;
  std::size_t size = 0;  // in bytes; 0: it takes what is left
  void (*read)(bytes::Reader& in, NodeRecords::GenericDevicePath& record) = nullptr;
  void (*write)(const NodeRecords::GenericDevicePath& record, NodeBytes& out) = nullptr;
};

inline constexpr std::size_t kMostArgs = 9;

// The name of a type whose texts are all special forms.
inline constexpr std::string_view kNoPlainForm = "?";

struct NodeType {
  std::uint8_t type = 0;
  std::uint8_t subtype = 0;
  std::string_view name;
  Field fields[kMostArgs] = {};
  // The offsets of the fields in the text's order, where that is not the node's.
  std::uint8_t order[kMostArgs] = {};
  std::size_t older = 0;     // the size of an older form, which ends earlier
  std::size_t shortest = 0;  // the size of its fields
  // Null where no record holds such a node.
  std::unique_ptr<NodeRecords::GenericDevicePath> (*make)() = nullptr;
};

// What the bytes of a node must hold for a form to be its own.
struct Condition {
  std::size_t offset = 0;
  std::size_t width = 0;
  std::uint64_t value = 0;
};

inline constexpr std::size_t kMostConditions = 2;

// One form of one node type. The first that fits a node writes it; the first with its name that can
// take a text's arguments reads it. A form with an empty name is written without brackets.
struct Form {
  std::uint8_t type = 0;
  std::uint8_t subtype = 0;
  std::string_view name;
  Arg args[kMostArgs] = {};
  Condition conditions[kMostConditions] = {};
  std::size_t size = 0;       // of a form that nodes of one size alone have
  bool is_only_read = false;  // another form writes such nodes

  std::span<const Arg> Args() const;
};

const NodeType* FindNodeType(std::uint8_t type, std::uint8_t subtype);

// By type and subtype, special forms before the plain one.
std::span<const Form> Forms();
std::span<const Form> FormsOf(std::uint8_t type, std::uint8_t subtype);

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_NODE_TYPES_H_
