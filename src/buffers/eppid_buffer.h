#ifndef MIRA_BUFFERS_EPPID_BUFFER_H_
#define MIRA_BUFFERS_EPPID_BUFFER_H_

#include <array>
#include <cstdint>

#include "buffers/extended_buffer.h"

// The electronic piece-part identification: 23 characters.
struct MIRA_API CEPPID : CSimpleTokenData {
  ~CEPPID() override;

  std::array<char, 23> EPPID{};
};

// Class 21: select 1 reads the ePPID, 2 writes it with its checksum.
class CEPPIDBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  void DisplayOutputBuffer() override;
};

#endif  // MIRA_BUFFERS_EPPID_BUFFER_H_
