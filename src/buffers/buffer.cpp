#include "buffers/buffer.h"

#include <iomanip>
#include <iostream>
#include <iterator>

#include "buffers/console_io.h"
#include "bytes/reader.h"
#include "bytes/writer.h"

using mira::transport::kFixedRecordSize;
using mira::transport::kMaxTransferSize;

IBIOSData::~IBIOSData() = default;
CSimpleTokenData::~CSimpleTokenData() = default;

CBuffer::CBuffer(std::uint16_t cls, std::uint16_t select, std::uint32_t bufSize)
    : m_wClass(cls), m_wSelect(select), m_dwBufSize(bufSize) {}

CBuffer::~CBuffer() = default;

SMBiosCI* CBuffer::NewRecord(std::uint64_t length) {
  m_pCIBuffer.reset();
  if (length > kMaxTransferSize) return nullptr;
  m_pCIBuffer =
      mira::transport::MakeRecord(m_wClass, m_wSelect, static_cast<std::uint32_t>(length));
  return m_pCIBuffer.get();
}

SMBiosCI* CBuffer::NewRecord(std::uint64_t length, const CSimpleTokenData& data,
                             std::uint32_t securityKey) {
  SMBiosCI* const record = NewRecord(length);
  if (record == nullptr) return nullptr;
  record->cbArg1 = data.Arg1;
  record->cbArg2 = data.Arg2;
  record->cbArg3 = data.Arg3;
  record->cbArg4 = data.Arg4;
  mira::transport::SetArg(*record, data.KeyArgIndex, securityKey);
  return record;
}

mira::bytes::MutableByteSpan CBuffer::DataArea() const {
  const auto record = Record();
  return record.empty() ? record : record.subspan(kFixedRecordSize);
}

std::int32_t CBuffer::CompletionCode() const { return m_pCIBuffer ? m_pCIBuffer->cbRES1 : 0; }

void CBuffer::InitExtendedBuffer(mira::bytes::MutableByteSpan area) {
  constexpr std::uint32_t kSignature = 0x49435344;  // "DSCI"
  constexpr std::size_t kWord = 4;
  if (area.size() < kWord) return;
  mira::bytes::Writer out(area);
  out.U32(static_cast<std::uint32_t>(area.size() - kWord));
  for (std::size_t words = area.size() / kWord - 1; words > 0; --words) out.U32(kSignature);
  static_cast<void>(out.Ok());  // the words were counted, so they fit
}

SMBiosCI* CBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                   IBIOSData& data) {
  NewRecord(kFixedRecordSize, dynamic_cast<CSimpleTokenData&>(data), securityKey);
  size = 0;
  return m_pCIBuffer.get();
}

SMBiosCI* CBuffer::PromptInputBuffer(std::uint32_t, std::uint32_t& size, bool prompt) {
  static constexpr const char* kPrompts[] = {"Arg1 : 0x", "Arg2 : 0x", "Arg3 : 0x", "Arg4 : 0x"};
  SMBiosCI* const record = NewRecord(kFixedRecordSize);
  size = 0;
  if (!prompt) return record;
  for (unsigned i = 0; i < std::size(kPrompts); ++i) {
    std::uint32_t value = 0;
    if (!mira::console_io::AskHex(kPrompts[i], value)) return nullptr;
    mira::transport::SetArg(*record, i + 1, value);
  }
  return record;
}

void CBuffer::ParseOutputBuffer(IBIOSData& data) {
  CSimpleTokenData& result = dynamic_cast<CSimpleTokenData&>(data);
  if (!m_pCIBuffer) return;
  result.Res1 = m_pCIBuffer->cbRES1;
  result.Res2 = m_pCIBuffer->cbRES2;
  result.Res3 = m_pCIBuffer->cbRES3;
  result.Res4 = m_pCIBuffer->cbRES4;
}

void CBuffer::DisplayOutputBuffer() {
  if (!m_pCIBuffer) return;
  std::cout << "cbRES1 : " << m_pCIBuffer->cbRES1 << "\t";
  DisplayReturnCode();
  std::cout << std::hex << std::endl;
  const std::pair<const char*, std::uint32_t> words[] = {{"cbRES2", m_pCIBuffer->cbRES2},
                                                         {"cbRES3", m_pCIBuffer->cbRES3},
                                                         {"cbRES4", m_pCIBuffer->cbRES4}};
  for (const auto& [name, word] : words) {
    std::cout << name << " : Byte 0 - " << (word & 0xFF) << "\t Byte 1 - " << (word >> 8 & 0xFF)
              << "\t Byte 2 - " << (word >> 16 & 0xFF) << "\t Byte 3 - " << (word >> 24)
              << std::endl;
    if (name == words[2].first) std::cout << std::dec;
    std::cout << std::endl;
  }
}

void CBuffer::DisplayReturnCode() {
  struct Row {
    std::int32_t code;
    const char* text;
  };
  static constexpr Row kTexts[] = {
      {0, " The function completed successfully!"},
      {-1, " The function ended in error (possibly function-specific)!"},
      {-2, " The function is not supported by the system!"},
      {-3, " The function did not execute!"},
      // -4 has no text.
      {-5, " The output buffer used by the function was not properly formatted!"},
      {-6, " The output buffer used by the function was not large enough!"},
      {-7, " Invalid security key!"},
  };
  if (!m_pCIBuffer) return;
  for (const Row& row : kTexts) {
    if (row.code == CompletionCode()) std::cout << row.text << std::endl;
  }
}
