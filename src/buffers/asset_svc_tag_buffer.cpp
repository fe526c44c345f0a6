#include "buffers/asset_svc_tag_buffer.h"

#include <algorithm>
#include <string>

#include "buffers/console_io.h"

namespace {

constexpr std::size_t kLongestTag = 12;
constexpr std::size_t kCharactersPerWord = 4;
constexpr std::uint16_t kWriteAssetTag = 1;

void AppendWord(std::string& text, std::uint32_t word) {
  for (std::size_t i = 0; i < kCharactersPerWord && (word >> (8 * i) & 0xFF) != 0; ++i) {
    text += static_cast<char>(word >> (8 * i) & 0xFF);
  }
}

}  // namespace

SMBiosCI* CAssetSvcTagBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                              IBIOSData& data) {
  if (IsRead()) return CBuffer::FillInputBuffer(securityKey, size, data);
  const CTagData& request = dynamic_cast<CTagData&>(data);
  SMBiosCI* const record = NewKeyedRecord(kArea, request, securityKey, 4);
  std::uint32_t words[3] = {};
  for (std::size_t i = 0; i < std::min(request.Tag.size(), kLongestTag); ++i) {
    // A character of 0x80 and above is sign-extended and thereby also sets all higher bytes of its
    // word: firmware in the field expects it.
    const auto extended = static_cast<std::uint32_t>(static_cast<signed char>(request.Tag[i]));
    words[i / kCharactersPerWord] |= extended << (8 * (i % kCharactersPerWord));
  }
  record->cbArg1 = words[0];
  record->cbArg2 = words[1];
  record->cbArg3 = words[2];
  size = 0;
  return record;
}

SMBiosCI* CAssetSvcTagBuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                                bool prompt) {
  CTagData data;
  const char* const question = m_wSelect == kWriteAssetTag
                                   ? "Enter the Asset Tag ( <= 12 Characters ) : "
                                   : "Enter the Service Tag ( <= 12 Characters ) : ";
  if (prompt && !IsRead() && !mira::console_io::AskText(question, data.Tag, kLongestTag)) {
    return nullptr;
  }
  return FillInputBuffer(securityKey, size, data);
}

void CAssetSvcTagBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (!IsRead() || !m_pCIBuffer) return;
  CTagData& result = dynamic_cast<CTagData&>(data);
  result.Tag.clear();
  // Each word ends by itself: a short first word does not hide the second.
  AppendWord(result.Tag, m_pCIBuffer->cbRES2);
  AppendWord(result.Tag, m_pCIBuffer->cbRES3);
  AppendWord(result.Tag, m_pCIBuffer->cbRES4);
}
