#ifndef MIRA_BUFFERS_LEGACY_BBS_BUFFER_H_
#define MIRA_BUFFERS_LEGACY_BBS_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "buffers/legacy_bbs_data.h"

// Legacy boot priorities, class 3: select 3 reads the IPL priorities, the device table and the BCV
// priorities, each into an area of its own; select 5 writes both priorities.
class CLegacyBBSBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  void DisplayOutputBuffer() override;

 private:
  SMBiosCI* BuildRead(const CLegacyBBSIPLPriority& request);
  SMBiosCI* BuildWrite(const CLegacyBBSIPLPriority& request, std::uint32_t securityKey);
  // What the firmware put into the area from `begin` up to `end`, behind its length word.
  mira::bytes::ByteSpan Area(std::size_t begin, std::size_t end) const;

  // Record offsets of the areas.
  std::uint16_t IPLOffset = 0;
  std::uint16_t TableOffset = 0;
  std::uint16_t BCVOffset = 0;
};

#endif  // MIRA_BUFFERS_LEGACY_BBS_BUFFER_H_
