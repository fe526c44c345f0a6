#ifndef MIRA_BUFFERS_IMAGE_SERVER_DATA_BUFFER_H_
#define MIRA_BUFFERS_IMAGE_SERVER_DATA_BUFFER_H_

// The image server's text of at most 511 characters, class 11: select 4 reads, 5 writes. Only the
// console form of the request has room for the text, so hosts drive the buffer themselves:
//
//   std::unique_ptr<CBuffer> buffer(CreateBuffer(11, 4, mira.GetACPIBufSize()));
//   SMBiosCI* record = buffer->PromptInputBuffer(0, size, false);  // the text: from offset 48
//   calling->Execute(*record, mira.GetACPIBufSize(), mira.GetACPIInstanceName());

#include <cstdint>

#include "buffers/extended_buffer.h"

class CImageServerDataBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void DisplayOutputBuffer() override;
};

#endif  // MIRA_BUFFERS_IMAGE_SERVER_DATA_BUFFER_H_
