#ifndef MIRA_BUFFERS_ENTRY_LIST_H_
#define MIRA_BUFFERS_ENTRY_LIST_H_

// The entries of received_data.h out of the bytes that came.

#include <utility>

#include "buffers/received_data.h"
#include "bytes/reader.h"

namespace mira::buffers {

void ReadEntry(bytes::Reader& in, CExtBatteryLife::Entry& entry);
void ReadEntry(bytes::Reader& in, CFirmwareMessages::Entry& entry);
void ReadEntry(bytes::Reader& in, CTabletScanCodes::Entry& entry);
void ReadEntry(bytes::Reader& in, CThermalSensors::Entry& entry);
void ReadEntry(bytes::Reader& in, CLogEntries::Entry& entry);

// Fills the request with the whole entries in `bytes`, if it is one for entries of this kind.
template <typename Request>
void ReadEntries(bytes::ByteSpan bytes, IBIOSData& data) {
  auto* const result = dynamic_cast<Request*>(&data);
  if (result == nullptr) return;
  result->Entries.clear();
  bytes::Reader in(bytes);
  while (in.Left() > 0) {
    typename Request::Entry entry;
    ReadEntry(in, entry);
    if (in.Ok()) result->Entries.push_back(std::move(entry));
  }
}

}  // namespace mira::buffers

#endif  // MIRA_BUFFERS_ENTRY_LIST_H_
