#ifndef MIRA_BUFFERS_TAG_EX_BUFFER_H_
#define MIRA_BUFFERS_TAG_EX_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "buffers/tag_data.h"

// Class 11: the extended tag that Arg1 names; select 8 reads a text of any length, 9 writes it. A
// read appends to the request's text.
class CTagEx : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;

 private:
  static constexpr std::uint16_t kRead = 8;
};

#endif  // MIRA_BUFFERS_TAG_EX_BUFFER_H_
