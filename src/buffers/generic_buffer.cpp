#include "buffers/generic_buffer.h"

#include <algorithm>

#include "bytes/reader.h"
#include "bytes/writer.h"

CGenericData::~CGenericData() = default;

SMBiosCI* CGenericBuffer::FillInputBuffer(std::uint32_t, std::uint32_t& size, IBIOSData& data) {
  const CGenericData& request = dynamic_cast<CGenericData&>(data);
  if (!request.IsRead && request.Data == nullptr && request.DataLength != 0) return nullptr;
  CSimpleTokenData words = request;
  words.KeyArgIndex = 0;
  SMBiosCI* const record = NewRecord(std::uint64_t{kData} + request.DataLength, words, 0);
  if (record == nullptr) return nullptr;
  mira::transport::SetArgOffset(*record, request.BufferArgIndex, kArea);
  if (request.IsRead) {
    InitExtendedBuffer(DataArea());
  } else {
    mira::bytes::Writer out(Record(), kArea);
    out.Bytes({request.Data, request.DataLength});
    if (!out.Ok()) return nullptr;
  }
  return Sized(size);
}

void CGenericBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  CGenericData& result = dynamic_cast<CGenericData&>(data);
  if (!result.IsRead || result.DataLength == 0 || result.Data == nullptr) return;
  const auto received = mira::bytes::Slice(ReceivedData(), 0, result.DataLength);
  std::copy(received.begin(), received.end(), result.Data);
  result.DataLength = static_cast<std::uint32_t>(received.size());
}
