#ifndef MIRA_CALLIF_COMMANDS_H_
#define MIRA_CALLIF_COMMANDS_H_

// Which commands are dispatched in a way of their own, for the dispatcher and for test consoles
// that drive buffers themselves.

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace mira::callif {

// Served without being announced: the bitmap of classes has no bit for it.
inline constexpr std::uint16_t kUncheckedClass = 64;

struct Command {
  std::uint16_t cls;
  std::uint16_t select;
  bool operator==(const Command&) const = default;
};

// Whether the command is a read of variable length: a first call without key asks how many bytes
// there are, and has the answer behind the fixed part of its record.
constexpr bool IsProbed(Command command) {
  constexpr Command kProbed[] = {{3, 9},   {3, 11},  {11, 8},  {17, 5},
                                 {17, 16}, {17, 18}, {17, 22}, {17, 24}};
  return std::find(std::begin(kProbed), std::end(kProbed), command) != std::end(kProbed);
}

}  // namespace mira::callif

#endif  // MIRA_CALLIF_COMMANDS_H_
