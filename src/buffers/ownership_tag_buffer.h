#ifndef MIRA_BUFFERS_OWNERSHIP_TAG_BUFFER_H_
#define MIRA_BUFFERS_OWNERSHIP_TAG_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "buffers/tag_data.h"

// Classes 20 and 23: the ownership tag of at most 80 characters; select 0 reads, 1 writes. A longer
// text is cut. A read appends to the request's text.
class COwnershipTagBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  void ParseOutputBuffer(IBIOSData& data) override;
};

#endif  // MIRA_BUFFERS_OWNERSHIP_TAG_BUFFER_H_
