#ifndef MIRA_BUFFERS_ASSET_SVC_TAG_BUFFER_H_
#define MIRA_BUFFERS_ASSET_SVC_TAG_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "buffers/tag_data.h"

// Class 11: asset tag (select 0 reads, 1 writes) and service tag (2 reads, 3 writes), at most 12
// characters, packed into argument and result words. A longer text is cut.
class CAssetSvcTagBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;

 private:
  bool IsRead() const { return m_wSelect % 2 == 0; }
};

#endif  // MIRA_BUFFERS_ASSET_SVC_TAG_BUFFER_H_
