#ifndef MIRA_BUFFERS_BUFFER_FACTORY_H_
#define MIRA_BUFFERS_BUFFER_FACTORY_H_

// Which commands the library knows how to encode, with which buffer class, and what else a caller
// has to know of a command.
//
//   std::unique_ptr<CBuffer> buffer(CreateBuffer(17, 22, mira.GetACPIBufSize()));
//   const bool has_unknown_length = TraitsOf(17, 22).preparation == CommandTraits::kProbe;

#include <cstdint>

#include "buffers/buffer.h"
#include "platform/api.h"

// A new buffer for the command, or null when the pair is not supported or memory is short. The
// caller owns it. For class 10 selects 21 to 24 a line on standard output says that they are not
// implemented.
MIRA_API CBuffer* CreateBuffer(std::uint16_t cls, std::uint16_t select, std::uint32_t bufSize);

struct CommandTraits {
  // What has to be called before the command.
  enum Preparation {
    kNone,
    // The command itself, without a key: the first word behind the fixed part of the answered
    // record is the number of bytes that the answer takes.
    kProbe,
    // Class 3 select 2, whose answer goes into the request.
    kLegacyBootInfo,
  };
  Preparation preparation = kNone;
  bool has_prompts = true;  // false: CBuffer::PromptInputBuffer builds no record
};

// Also for commands that have no buffer.
MIRA_API CommandTraits TraitsOf(std::uint16_t cls, std::uint16_t select) noexcept;

#endif  // MIRA_BUFFERS_BUFFER_FACTORY_H_
