#ifndef MIRA_FUZZ_SUPPORT_PROMPTED_COMMANDS_H_
#define MIRA_FUZZ_SUPPORT_PROMPTED_COMMANDS_H_

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "buffers/buffer_factory.h"

namespace mira::fuzz {

// Every class and select that has a buffer with prompts.
inline std::vector<std::pair<std::uint16_t, std::uint16_t>> PromptedCommands(
    std::uint32_t transfer_size) {
  std::vector<std::pair<std::uint16_t, std::uint16_t>> pairs;
  for (std::uint16_t cls = 0; cls < 32; ++cls) {
    for (std::uint16_t select = 0; select < 32; ++select) {
      const std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, transfer_size));
      if (buffer != nullptr && TraitsOf(cls, select).has_prompts) pairs.emplace_back(cls, select);
    }
  }
  return pairs;
}

}  // namespace mira::fuzz

#endif  // MIRA_FUZZ_SUPPORT_PROMPTED_COMMANDS_H_
