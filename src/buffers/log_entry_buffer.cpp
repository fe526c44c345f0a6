#include "buffers/log_entry_buffer.h"

#include "buffers/entry_list.h"

void CLogEntryBuffer::ParseOutputBuffer(IBIOSData& data) {
  CDataReadBuffer::ParseOutputBuffer(data);
  mira::buffers::ReadEntries<CLogEntries>(ReceivedData(), data);
}
