#ifndef MIRA_BUFFERS_BUFFER_FACTORY_H_
#define MIRA_BUFFERS_BUFFER_FACTORY_H_

// Which commands the library knows how to encode, and with which buffer class.

#include <cstdint>

#include "buffers/buffer.h"
#include "platform/api.h"

// A new buffer for the command, or null when the pair is not supported or memory is short. The
// caller owns it. For class 10 selects 21 to 24 a line on standard output says that they are not
// implemented.
MIRA_API CBuffer* CreateBuffer(std::uint16_t cls, std::uint16_t select, std::uint32_t bufSize);

#endif  // MIRA_BUFFERS_BUFFER_FACTORY_H_
