#ifndef MIRA_BUFFERS_THIN_CLIENT_INFO_BUFFER_H_
#define MIRA_BUFFERS_THIN_CLIENT_INFO_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "buffers/tag_data.h"

// Class 26 select 1: the thin client's text. Arg1 is 0 to read it, anything else to write it. The
// record has room for 20 bytes and what the size argument adds; a text that does not fit with its
// NUL is refused.
class CThinClientInfoBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  void ParseOutputBuffer(IBIOSData& data) override;
};

#endif  // MIRA_BUFFERS_THIN_CLIENT_INFO_BUFFER_H_
