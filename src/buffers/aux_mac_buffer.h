#ifndef MIRA_BUFFERS_AUX_MAC_BUFFER_H_
#define MIRA_BUFFERS_AUX_MAC_BUFFER_H_

#include <array>
#include <cstdint>

#include "buffers/extended_buffer.h"

// The auxiliary MAC address as text, one character a byte, without separators.
struct MIRA_API CMACAddr : CSimpleTokenData {
  ~CMACAddr() override;

  std::array<char, 12> MAC{};
};

// Class 11: select 6 reads the address, 7 writes it.
class CAuxMACBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  void ParseOutputBuffer(IBIOSData& data) override;
};

#endif  // MIRA_BUFFERS_AUX_MAC_BUFFER_H_
