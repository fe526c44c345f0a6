#ifndef MIRA_BUFFERS_SKYPORT_BUFFER_H_
#define MIRA_BUFFERS_SKYPORT_BUFFER_H_

#include "buffers/data_read_buffer.h"

// Class 7, selects 5 to 9. Nothing is assumed of what the firmware does with them: a call carries
// four argument words and the key and brings four result words. A caller who drives the buffer and
// asks for room also gets an area for the firmware to fill, named by the first argument word.
class CSkyportBuffer : public CDataReadBuffer {
 public:
  using CDataReadBuffer::CDataReadBuffer;
};

#endif  // MIRA_BUFFERS_SKYPORT_BUFFER_H_
