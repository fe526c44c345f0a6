#include "pldm/aci_info2_buffer.h"

#include <iostream>
#include <limits>
#include <numeric>
#include <utility>

#include "bytes/reader.h"
#include "bytes/writer.h"
#include "pldm/table_parser.h"

using mira::bytes::ByteSpan;
using mira::bytes::Reader;
using mira::bytes::Writer;
using mira::pldm::TableDescriptor;

namespace {

// The request block of selects 5 and 6, from the start of the data.
constexpr char kBlockSignature[] = "$ACIPLDM";
constexpr std::size_t kBlockChecksum = 8;
constexpr std::size_t kBlockSize = 12;
constexpr std::uint32_t kBlockVersion = 0x00020001;
constexpr std::uint32_t kBlockValue =
    24;  // also where the answer to a read begins, with its status
constexpr std::uint32_t kStatusByte = 1;
constexpr std::uint32_t kReadBlockSize = 162;
constexpr std::uint16_t kReadValueSize = 128;

const char* TableName(const TableDescriptor& table) {
  switch (table.type) {
    case mira::pldm::kStringTable:
      return "PLDM String Table";
    case mira::pldm::kAttributeTable:
      return "PLDM Attribute Table";
    case mira::pldm::kValueTable:
      return "PLDM Value Table";
    case mira::pldm::kStringData:
    case mira::pldm::kNamedStringData:
      if (table.string_kind == mira::pldm::kHelpStrings) return "Help String";
      if (table.string_kind == mira::pldm::kDisplayStrings) return "Display String";
      return "";
    default:
      return "";
  }
}

void Display(const TableDescriptor& table) {
  std::cout << "Type : " << TableName(table) << std::endl;
  std::cout << "Reserved :" << std::hex;
  for (const unsigned byte : table.reserved) std::cout << " 0x" << byte;
  std::cout << std::dec << std::endl;
  std::cout << "Table Index : " << unsigned{table.index} << std::endl;
  // Decimal behind the prefix, on purpose.
  std::cout << "Table Size  : 0x" << table.size << std::endl;
  std::cout << "Table Address : 0x" << std::hex << table.address << std::dec << std::endl;
  std::cout << std::endl;
}

}  // namespace

SMBiosCI* CACIInfo2Buffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                           IBIOSData& data) {
  const CACIInfo2Record& request = dynamic_cast<CACIInfo2Record&>(data);
  m_pCIBuffer.reset();
  switch (m_wSelect) {
    case kReadHeader:
      return NewTableRead(size) != nullptr ? Sized(size) : nullptr;
    case kReadTable:
      if (const TableDescriptor* const table = request.CurrentDescriptor()) {
        if (SMBiosCI* const record = NewTableRead(size)) {
          record->cbArg3 = table->index;
          record->cbArg4 = request.Received;
          return Sized(size);
        }
      }
      return nullptr;
    case kReadValue:
      return request.Exchange && NewValueRead(size, request) != nullptr ? Sized(size) : nullptr;
    case kWriteValue:
      return request.Exchange && NewValueWrite(size, request, securityKey) != nullptr ? Sized(size)
                                                                                      : nullptr;
    default:
      return nullptr;
  }
}

SMBiosCI* CACIInfo2Buffer::NewTableRead(std::uint32_t size) {
  return NewRead(size, CSimpleTokenData{}, 0, 1);
}

SMBiosCI* CACIInfo2Buffer::NewValueRecord(std::uint64_t length, std::uint16_t handle,
                                          std::uint32_t block_size, std::size_t value_size) {
  SMBiosCI* const record = NewRecord(length);
  if (record == nullptr) return nullptr;
  mira::transport::SetArgOffset(*record, 1, kArea);
  Writer out(Record(), kArea);
  out.U32(record->cbLength - kArea);
  out.Bytes(mira::bytes::AsBytes(kBlockSignature));
  out.Seek(kData + kBlockSize);
  out.U32(block_size);
  out.U32(kBlockVersion);
  out.U16(handle);
  out.U16(static_cast<std::uint16_t>(value_size));
  return out.Ok() ? record : nullptr;
}

// The bytes of the block add up to 0.
bool CACIInfo2Buffer::Seal(std::size_t block_size) {
  const ByteSpan block = mira::bytes::Slice(Record(), kData, block_size);
  Writer out(Record(), kData + kBlockChecksum);
  out.U8(static_cast<std::uint8_t>(0u - std::accumulate(block.begin(), block.end(), 0u)));
  return out.Ok();
}

SMBiosCI* CACIInfo2Buffer::NewValueRead(std::uint32_t size, const CACIInfo2Record& data) {
  SMBiosCI* const record = NewValueRecord(std::uint64_t{size} + kData + kReadBlockSize,
                                          data.Exchange->handle, kReadBlockSize, kReadValueSize);
  return record != nullptr && Seal(kReadBlockSize) ? record : nullptr;
}

SMBiosCI* CACIInfo2Buffer::NewValueWrite(std::uint32_t size, const CACIInfo2Record& data,
                                         std::uint32_t securityKey) {
  const mira::pldm::IntPLDMAttributeValue& value = *data.Exchange;
  if (!mira::pldm::IsEncodable(value)) return nullptr;
  const auto value_size = static_cast<std::uint32_t>(mira::pldm::EncodedSize(value));
  const std::uint32_t block_size = kBlockValue + value_size + kStatusByte;
  SMBiosCI* const record = NewValueRecord(std::uint64_t{size} + kData + block_size, value.handle,
                                          block_size, value_size);
  if (record == nullptr) return nullptr;
  record->cbArg2 = securityKey != 0 ? securityKey : data.Arg2;
  Writer out(Record(), kData + kBlockValue);
  mira::pldm::Encode(value, out);
  return out.Ok() && Seal(Record().size() - kData) ? record : nullptr;
}

SMBiosCI* CACIInfo2Buffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool) {
  if (m_wSelect == kReadHeader) {
    CACIInfo2Record record;
    FillInputBuffer(securityKey, size, record);
  }
  return m_pCIBuffer.get();
}

void CACIInfo2Buffer::ParseOutputBuffer(IBIOSData& data) {
  CACIInfo2Record& result = dynamic_cast<CACIInfo2Record&>(data);
  CBuffer::ParseOutputBuffer(result);
  if (!m_pCIBuffer) return;
  switch (m_wSelect) {
    case kReadHeader:
      result.DecodeHeader(ReceivedData());
      break;
    case kReadTable:
      if (result.Assembly) {
        AppendChunk(result);
      } else {
        ParseTable(result);
      }
      break;
    case kReadValue:
      ParseValue(result);
      break;
    case kWriteValue: {
      result.ExchangeStatus.reset();
      if (!result.Exchange) break;
      Reader in(Record(), kData + kBlockValue + mira::pldm::EncodedSize(*result.Exchange));
      const std::uint8_t status = in.U8();
      if (in.Ok()) result.ExchangeStatus = status;
      break;
    }
    default:
      break;
  }
}

// A chunk without bytes, or with more than its room or the table holds, is left out: the reader of
// chunks sees that nothing was received.
void CACIInfo2Buffer::AppendChunk(CACIInfo2Record& data) {
  Reader in(Record(), kArea);
  const std::uint32_t length = in.U32();
  const ByteSpan chunk = in.Take(length);
  if (!in.Ok() || length > data.Expected - data.Received) return;
  Writer out(mira::transport::RecordBytes(data.Assembly), kData + data.Received);
  out.Bytes(chunk);
  if (!out.Ok()) return;
  data.Received += length;
  if (data.Received != data.Expected) return;
  m_pCIBuffer = std::move(data.Assembly);
  Writer length_word(Record(), kArea);
  length_word.U32(data.Expected);
  if (length_word.Ok()) ParseTable(data);
}

void CACIInfo2Buffer::ParseTable(CACIInfo2Record& data) {
  const TableDescriptor* const table = data.CurrentDescriptor();
  if (table == nullptr) return;
  // Of strings a length that is negative as a signed number means none.
  constexpr std::uint32_t kLongestStrings = std::numeric_limits<std::int32_t>::max();
  // Without an area nothing was received, whatever its length.
  const std::uint32_t length = Reader::Lenient(Record(), kArea).U32();
  const ByteSpan bytes = ReceivedData();
  const ByteSpan strings = length <= kLongestStrings ? bytes : ByteSpan();
  switch (table->type) {
    case mira::pldm::kStringTable:
      mira::pldm::ParseStringTable(strings, data.Tables);
      break;
    case mira::pldm::kAttributeTable:
      mira::pldm::ParseAttributeTable(bytes, data.Tables);
      break;
    case mira::pldm::kValueTable:
      mira::pldm::ParseValueTable(bytes, data.Tables);
      break;
    case mira::pldm::kStringData:
      if (table->string_kind == mira::pldm::kDisplayStrings) {
        mira::pldm::ParseStringData(strings, data.Tables.display_strings);
      } else if (table->string_kind == mira::pldm::kHelpStrings) {
        mira::pldm::ParseStringData(strings, data.Tables.help_strings);
      }
      break;
    default:
      break;
  }
}

void CACIInfo2Buffer::ParseValue(CACIInfo2Record& data) const {
  data.ExchangeStatus.reset();
  if (!data.Exchange) return;
  Reader in(Record(), kData + kBlockValue);
  const std::uint8_t status = in.U8();
  auto value = mira::pldm::ReadValue(in, data.Exchange->handle, data.Exchange->type);
  if (!in.Ok() || !value) return;
  data.ExchangeStatus = status;
  data.Exchange = std::move(value);
}

void CACIInfo2Buffer::DisplayOutputBuffer() {
  if (!m_pCIBuffer || m_wSelect != kReadHeader || CompletionCode() != 0) return;
  CBuffer::DisplayOutputBuffer();
  CACIInfo2Record record;
  record.DecodeHeader(ReceivedData());
  std::cout << "Signature : " << record.Signature.data() << std::endl;
  std::cout << "Version : " << unsigned{record.Version[0]} << "." << unsigned{record.Version[1]}
            << std::endl;
  std::cout << "Signatur 2 : " << record.Signature2.data() << std::endl;
  std::cout << "Size : " << record.HeaderSize << std::endl;
  std::cout << "ACI Features : 0x" << std::hex << record.Features << std::dec << std::endl;
  std::cout << "Checksum : " << unsigned{record.Checksum} << std::endl;
  std::cout << "No. of Tables : " << record.Descriptors.size() << std::endl;
  for (std::size_t i = 0; i < record.Descriptors.size(); ++i) {
    std::cout << "Table Description Record : " << i + 1 << std::endl;
    Display(record.Descriptors[i]);
  }
}
