#include "buffers/tag_ex_buffer.h"

#include <limits>
#include <string>

#include "buffers/console_io.h"
#include "bytes/writer.h"

SMBiosCI* CTagEx::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size, IBIOSData& data) {
  const CTagData& request = dynamic_cast<CTagData&>(data);
  if (m_wSelect == kRead) {
    SMBiosCI* const record = NewRead(size, request, securityKey, 2);
    if (record != nullptr) record->cbArg1 = request.Arg1;
    return Sized(size);
  }
  // The text lies at the area's start without a length word, but the record has room for one.
  const std::uint64_t length = std::uint64_t{kData} + request.Tag.size() + 1;
  SMBiosCI* const record = NewKeyedRecord(length, request, securityKey, 3);
  if (record == nullptr) return nullptr;
  mira::transport::SetArgOffset(*record, 2, kArea);
  mira::bytes::Writer out(Record(), kArea);
  out.Text(request.Tag);
  return out.Ok() ? Sized(size) : nullptr;
}

SMBiosCI* CTagEx::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) {
  CTagData data;
  if (prompt) {
    if (!mira::console_io::AskNumber("Enter the Tag Command value :", data.Arg1)) return nullptr;
    if (m_wSelect != kRead && !mira::console_io::AskText("Enter the Tag to be set : ", data.Tag,
                                                         std::numeric_limits<std::size_t>::max())) {
      return nullptr;
    }
  }
  return FillInputBuffer(securityKey, size, data);
}

void CTagEx::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (m_wSelect == kRead) {
    dynamic_cast<CTagData&>(data).Tag += mira::bytes::AsText(ReceivedData());
  }
}
