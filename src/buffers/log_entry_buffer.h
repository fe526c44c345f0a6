#ifndef MIRA_BUFFERS_LOG_ENTRY_BUFFER_H_
#define MIRA_BUFFERS_LOG_ENTRY_BUFFER_H_

#include <cstdint>

#include "buffers/data_read_buffer.h"

// Class 17 select 24: the firmware's log, a CLogEntries (buffers/received_data.h). The firmware is
// assumed to say how many bytes it takes as for the other lists of the class, and to give it whole.
class CLogEntryBuffer : public CDataReadBuffer {
 public:
  using CDataReadBuffer::CDataReadBuffer;
  void ParseOutputBuffer(IBIOSData& data) override;

 protected:
  bool HasArea(std::uint32_t) const override { return true; }
};

#endif  // MIRA_BUFFERS_LOG_ENTRY_BUFFER_H_
