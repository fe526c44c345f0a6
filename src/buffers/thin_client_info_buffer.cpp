#include "buffers/thin_client_info_buffer.h"

#include "bytes/reader.h"
#include "bytes/writer.h"

namespace {

constexpr std::uint32_t kGet = 0;
constexpr std::uint32_t kRoom = 20;

}  // namespace

SMBiosCI* CThinClientInfoBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                                 IBIOSData& data) {
  const CThinClientInfo& request = dynamic_cast<CThinClientInfo&>(data);
  const std::uint64_t room = std::uint64_t{size} + kRoom;
  const std::uint64_t text_size = std::uint64_t{request.Tag.size()} + 1;
  if (request.Arg1 != kGet && text_size > room) return nullptr;
  SMBiosCI* const record = NewRecord(kData + room, request, securityKey);
  if (record == nullptr) return nullptr;
  // A key in one of these words would turn a write into a read, or the reverse.
  record->cbArg1 = request.Arg1;
  record->cbArg2 = request.Arg2;
  mira::transport::SetArgOffset(*record, 3, kArea);
  if (request.Arg1 == kGet) {
    InitExtendedBuffer(DataArea());
  } else {
    mira::bytes::Writer out(Record(), kArea);
    out.U32(static_cast<std::uint32_t>(text_size));
    out.Text(request.Tag);
    if (!out.Ok()) return nullptr;
  }
  return Sized(size);
}

void CThinClientInfoBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (!m_pCIBuffer || m_pCIBuffer->cbArg1 != kGet || CompletionCode() != 0) return;
  mira::bytes::Reader in(Record(), kData);
  dynamic_cast<CThinClientInfo&>(data).Tag = in.FixedText(in.Left());
}
