#ifndef MIRA_SIM_SETUP_ATTRIBUTE_H_
#define MIRA_SIM_SETUP_ATTRIBUTE_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace mira::sim {

// The attribute types of DSP0247.
enum class AttributeKind : std::uint8_t {
  kEnumeration = 0,
  kString = 1,
  kPassword = 2,
  kInteger = 3,
  kBootOrder = 4,
  kCollection = 5,
  kConfigSet = 6,
};

// What an attribute depends on: it is read-only unless another has this value.
struct AttributeLock {
  std::string attribute = {};  // empty: on none
  std::string value = {};
  bool after_restart = false;  // the value of the last start counts, not that of now
};

enum class KeptLetters : std::uint8_t { kAsWritten, kUpper, kLower };

// What the firmware makes of a value that it takes.
struct AttributeNorm {
  KeptLetters letters = KeptLetters::kAsWritten;   // of a text
  std::uint64_t step = 0;                          // an integer is rounded down to a multiple of it
  std::map<std::string, std::string> values = {};  // others that stand for the written ones
  bool operator==(const AttributeNorm&) const = default;
};

// One setup attribute of a simulated machine. Values are texts here: an integer in decimal, a value
// of several parts with "|" between them.
struct SetupAttribute {
  AttributeKind kind = AttributeKind::kEnumeration;
  std::string name = {};  // the "[…]" behind a name or a choice is its suffix
  std::u16string display = {};
  std::u16string help = {};
  // Possible values, boot sources, or the members of a set. Sources and members are names of other
  // attributes.
  std::vector<std::string> choices = {};
  std::string value = {};          // in force when the machine starts first; a password shows none
  std::string default_value = {};  // enumerations, strings, integers
  // Smallest and largest: integer, length of a text, number of boot sources, of a collection's
  // members, of an enumeration's values at a time.
  std::uint64_t lower = 0;
  std::uint64_t upper = 0;
  std::uint32_t increment = 0;  // of integers, counted from the smallest
  bool read_only = false;
  AttributeLock unless = {};         // beside it, read_only does not count
  bool value_after_restart = false;  // a new value shows at the next start
  AttributeNorm norm = {};
  std::vector<std::string> resets = {};  // attributes that a new value of it gives their defaults
};

}  // namespace mira::sim

#endif  // MIRA_SIM_SETUP_ATTRIBUTE_H_
