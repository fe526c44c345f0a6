#include "buffers/legacy_bbs_buffer.h"

#include <algorithm>
#include <iostream>
#include <limits>

#include "buffers/console_io.h"
#include "bytes/reader.h"
#include "bytes/writer.h"

namespace {

using mira::bytes::ByteSpan;
using mira::bytes::Reader;
using mira::bytes::Slice;
using mira::transport::SetArgOffset;

enum Select : std::uint16_t { kReadIpl = 3, kReadBcv = 4, kWriteIpl = 5, kWriteBcv = 6 };

// Entries of the device table follow one another at this distance, whatever length the request
// names for them.
constexpr std::size_t kEntryStride = 16;

void PrintUnreachable() {
  std::cout << "The code should not reach here! Contact the developer..." << std::endl;
}

}  // namespace

CLegacyBBSIPLPriority::~CLegacyBBSIPLPriority() = default;

SMBiosCI* CLegacyBBSBuffer::BuildRead(const CLegacyBBSIPLPriority& request) {
  // Products of two words fit into 64 bits, and the sums below do once the product is no larger
  // than a record.
  const std::uint64_t table = std::uint64_t{request.MaxDevices} * request.EntryLength;
  if (table > m_dwBufSize) return nullptr;
  const std::uint64_t list = kLengthWord + std::uint64_t{request.MaxDevices};
  const std::uint64_t table_offset = kArea + list;
  const std::uint64_t bcv_offset = table_offset + kLengthWord + table;
  const std::uint64_t length = bcv_offset + list;
  if (length > m_dwBufSize || bcv_offset > std::numeric_limits<std::uint16_t>::max()) {
    return nullptr;
  }
  SMBiosCI* const record = NewRecord(length);
  if (record == nullptr) return nullptr;
  IPLOffset = kArea;
  TableOffset = static_cast<std::uint16_t>(table_offset);
  BCVOffset = static_cast<std::uint16_t>(bcv_offset);
  SetArgOffset(*record, 1, IPLOffset);
  SetArgOffset(*record, 2, TableOffset);
  SetArgOffset(*record, 3, BCVOffset);
  const auto bytes = Record();
  InitExtendedBuffer(bytes.subspan(IPLOffset, TableOffset - IPLOffset));
  InitExtendedBuffer(bytes.subspan(TableOffset, BCVOffset - TableOffset));
  InitExtendedBuffer(bytes.subspan(BCVOffset));
  return record;
}

SMBiosCI* CLegacyBBSBuffer::BuildWrite(const CLegacyBBSIPLPriority& request,
                                       std::uint32_t securityKey) {
  const std::uint32_t count = request.Count;
  if (request.IPLPriority.size() < count || request.BCVPriority.size() < count) return nullptr;
  SMBiosCI* const record = NewRecord(kArea + 2 * std::uint64_t{count}, request, securityKey);
  if (record == nullptr) return nullptr;
  SetArgOffset(*record, 1, kArea);
  SetArgOffset(*record, 2, kArea + count);
  mira::bytes::Writer out(Record(), kArea);
  out.Bytes(Slice(request.IPLPriority, 0, count));
  out.Bytes(Slice(request.BCVPriority, 0, count));
  return out.Ok() ? record : nullptr;
}

SMBiosCI* CLegacyBBSBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                            IBIOSData& data) {
  const CLegacyBBSIPLPriority& request = dynamic_cast<CLegacyBBSIPLPriority&>(data);
  const bool reads = m_wSelect == kReadIpl || m_wSelect == kReadBcv;
  SMBiosCI* const record = reads ? BuildRead(request) : BuildWrite(request, securityKey);
  return record == nullptr ? nullptr : Sized(size);
}

SMBiosCI* CLegacyBBSBuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                              bool prompt) {
  CLegacyBBSIPLPriority data;
  switch (m_wSelect) {
    case kReadIpl:
    case kReadBcv:
      if (!prompt) break;
      std::cout << (m_wSelect == kReadIpl ? "Enter the details for BBS IPL Priority:"
                                          : "Enter the details for BBS BCV Priority:")
                << std::flush;
      if (!mira::console_io::AskNumber(
              "What is the maximum (system) number of Devices supported ? ", data.MaxDevices) ||
          !mira::console_io::AskNumber("How long (in Bytes) is each table entry? ",
                                       data.EntryLength)) {
        return nullptr;
      }
      break;
    case kWriteIpl:
    case kWriteBcv:
      break;
    default:
      PrintUnreachable();
      return nullptr;
  }
  return FillInputBuffer(securityKey, size, data);
}

ByteSpan CLegacyBBSBuffer::Area(std::size_t begin, std::size_t end) const {
  // An area without a length word is empty.
  Reader in = Reader::Lenient(Slice(Record(), begin, end - begin));
  const std::size_t length = in.U32();
  return in.Take(std::min(length, in.Left()));
}

void CLegacyBBSBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  CLegacyBBSIPLPriority& result = dynamic_cast<CLegacyBBSIPLPriority&>(data);
  if (m_wSelect != kReadIpl || !m_pCIBuffer) return;
  const ByteSpan ipl = Area(IPLOffset, TableOffset);
  const ByteSpan table = Area(TableOffset, BCVOffset);
  const ByteSpan bcv = Area(BCVOffset, Record().size());
  const std::size_t count =
      std::min({std::size_t{result.Count}, ipl.size(), table.size() / kEntryStride, bcv.size()});
  result.Count = static_cast<std::uint32_t>(count);
  const ByteSpan ipl_bytes = ipl.first(count);
  const ByteSpan bcv_bytes = bcv.first(count);
  result.IPLPriority.assign(ipl_bytes.begin(), ipl_bytes.end());
  result.BCVPriority.assign(bcv_bytes.begin(), bcv_bytes.end());
  result.DeviceTable.clear();
  for (Reader in(table.first(count * kEntryStride)); in.Left() > 0;) {
    result.DeviceTable.push_back({in.U16(), in.U16(), in.U32(), in.U32(), in.U32()});
  }
}

void CLegacyBBSBuffer::DisplayOutputBuffer() {
  switch (m_wSelect) {
    case kReadIpl:
      break;
    case kReadBcv:
    case kWriteIpl:
    case kWriteBcv:
      CBuffer::DisplayOutputBuffer();
      break;
    default:
      PrintUnreachable();
  }
}
