#ifndef MIRA_BUFFERS_C17_BUFFER_H_
#define MIRA_BUFFERS_C17_BUFFER_H_

#include <cstdint>

#include "buffers/data_read_buffer.h"

// Class 17: battery life (select 5), messages (16), tablet scan codes (18), thermal sensors (22),
// each a list of entries (buffers/received_data.h). Select 14 marks a message as seen and has no
// area.
//
// Of the firmware it is assumed that it answers a record without enough room with the length that
// it needs, in the area's length word, and with any completion code.
class C17Buffer : public CDataReadBuffer {
 public:
  using CDataReadBuffer::CDataReadBuffer;
  void ParseOutputBuffer(IBIOSData& data) override;

 protected:
  bool HasArea(std::uint32_t size) const override;
};

#endif  // MIRA_BUFFERS_C17_BUFFER_H_
