#ifndef MIRA_BUFFERS_GENERIC_BUFFER_H_
#define MIRA_BUFFERS_GENERIC_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "buffers/generic_data.h"

// A block of bytes: class 2 select 1, class 6 select 5. A read has a length word in front of the
// bytes, a write has not: its bytes stand where the read's length word does.
class CGenericBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  void ParseOutputBuffer(IBIOSData& data) override;
};

#endif  // MIRA_BUFFERS_GENERIC_BUFFER_H_
