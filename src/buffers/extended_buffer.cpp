#include "buffers/extended_buffer.h"

#include <algorithm>

using mira::bytes::Reader;

SMBiosCI* CExtendedBuffer::NewKeyedRecord(std::uint64_t length, const CSimpleTokenData& data,
                                          std::uint32_t securityKey, unsigned key_argument) {
  CSimpleTokenData words = data;
  words.KeyArgIndex = securityKey != 0 ? key_argument : 0;
  return NewRecord(length, words, securityKey);
}

SMBiosCI* CExtendedBuffer::Sized(std::uint32_t& size) const {
  if (m_pCIBuffer) size = m_pCIBuffer->cbLength;
  return m_pCIBuffer.get();
}

SMBiosCI* CExtendedBuffer::NewRead(std::uint32_t room, const CSimpleTokenData& data,
                                   std::uint32_t securityKey, unsigned argument) {
  SMBiosCI* const record = NewRecord(std::uint64_t{kData} + room, data, securityKey);
  if (record == nullptr) return nullptr;
  mira::transport::SetArgOffset(*record, argument, kArea);
  InitExtendedBuffer(DataArea());
  return record;
}

mira::bytes::ByteSpan CExtendedBuffer::ReceivedData() const {
  // A record without the area has received nothing.
  Reader in = Reader::Lenient(Record(), kArea);
  const std::size_t length = in.U32();
  return in.Take(std::min(length, in.Left()));
}
