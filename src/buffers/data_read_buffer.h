#ifndef MIRA_BUFFERS_DATA_READ_BUFFER_H_
#define MIRA_BUFFERS_DATA_READ_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "buffers/received_data.h"

// Four argument words and the key as in the base; and where an answer of any length is read, a
// prepared area of as many bytes as the size argument says, named by the first word. A request that
// is a CReceivedData gets the bytes that came.
class CDataReadBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  // Behind the result words, the bytes in hexadecimal.
  void DisplayOutputBuffer() override;

 protected:
  // Whether the command has an area when there is to be room for `size` bytes.
  virtual bool HasArea(std::uint32_t size) const { return size != 0; }
};

#endif  // MIRA_BUFFERS_DATA_READ_BUFFER_H_
