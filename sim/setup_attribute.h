#ifndef MIRA_SIM_SETUP_ATTRIBUTE_H_
#define MIRA_SIM_SETUP_ATTRIBUTE_H_

#include <cstdint>
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
};

}  // namespace mira::sim

#endif  // MIRA_SIM_SETUP_ATTRIBUTE_H_
