#include "buffers/eppid_buffer.h"

#include <algorithm>
#include <iostream>
#include <numeric>

#include "bytes/reader.h"
#include "bytes/writer.h"

namespace {

constexpr std::uint16_t kRead = 1;
constexpr std::uint32_t kAreaSize = 30;  // "PPID", size, 0, text, checksum
constexpr std::uint32_t kText = 50;      // offset in the record
constexpr std::uint32_t kTextSize = 23;

// All bytes and the checksum add up to 0x55.
std::uint8_t Checksum(mira::bytes::ByteSpan text) {
  return static_cast<std::uint8_t>(0x55u - std::accumulate(text.begin(), text.end(), 0u));
}

}  // namespace

CEPPID::~CEPPID() = default;

SMBiosCI* CEPPIDBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                        IBIOSData& data) {
  const CEPPID& request = dynamic_cast<CEPPID&>(data);
  SMBiosCI* const record = NewRecord(kArea + kAreaSize, request, securityKey);
  mira::transport::SetArgOffset(*record, 1, kArea);
  mira::bytes::Writer out(Record(), kArea);
  out.Bytes(mira::bytes::AsBytes("PPID"));
  out.U8(kAreaSize);
  out.U8(0);
  if (m_wSelect != kRead) {
    const auto text = mira::bytes::AsBytes({request.EPPID.data(), request.EPPID.size()});
    out.Bytes(text);
    out.U8(Checksum(text));
  }
  return out.Ok() ? Sized(size) : nullptr;
}

void CEPPIDBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (m_wSelect != kRead) return;
  const auto text = mira::bytes::Slice(Record(), kText, kTextSize);
  std::copy(text.begin(), text.end(), dynamic_cast<CEPPID&>(data).EPPID.begin());
}

void CEPPIDBuffer::DisplayOutputBuffer() {
  CBuffer::DisplayOutputBuffer();
  std::cout << "ePPID is : " << mira::bytes::AsText(mira::bytes::Slice(Record(), kText, kTextSize))
            << std::endl;
}
