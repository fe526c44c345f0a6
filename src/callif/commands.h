#ifndef MIRA_CALLIF_COMMANDS_H_
#define MIRA_CALLIF_COMMANDS_H_

// The two numbers that name a command, and the class with a dispatch of its own. The traits of each
// command are in buffers/buffer_factory.h.
//
//   constexpr mira::callif::Command kReadAssetTag = {11, 0};

#include <cstdint>

#include "buffers/buffer_factory.h"

namespace mira::callif {

// Served without being announced: the bitmap of classes has no bit for it.
inline constexpr std::uint16_t kUncheckedClass = 64;

struct Command {
  std::uint16_t cls;
  std::uint16_t select;
  bool operator==(const Command&) const = default;
};

// Whether the command is a read whose length a first call without a key asks for.
inline bool IsProbed(Command command) {
  return TraitsOf(command.cls, command.select).preparation == CommandTraits::kProbe;
}

}  // namespace mira::callif

#endif  // MIRA_CALLIF_COMMANDS_H_
