#include "callif/password.h"

#include <array>
#include <memory>

#include "buffers/buffer.h"
#include "buffers/buffer_factory.h"
#include "buffers/password_data.h"

namespace mira::callif {
namespace {

constexpr std::uint8_t kEscape = 0x01;
constexpr std::uint8_t kSpace = 0x39;
constexpr std::uint8_t kControlTwo = 0x03;  // NUL is typed as Ctrl+2

// Set-1 make codes of the printable keys, row by row: the unshifted characters, their shifted
// twins, the first code.
struct KeyRow {
  const char* plain;
  const char* shifted;
  std::uint8_t first;
};
constexpr KeyRow kRows[] = {
    {"1234567890-=", "!@#$%^&*()_+", 0x02},
    {"qwertyuiop[]", "QWERTYUIOP{}", 0x10},
    {"asdfghjkl;'`", "ASDFGHJKL:\"~", 0x1E},
    {"\\zxcvbnm,./", "|ZXCVBNM<>?", 0x2B},
};

constexpr std::array<std::uint8_t, 128> MakeTable() {
  std::array<std::uint8_t, 128> table{};
  for (const KeyRow& row : kRows) {
    for (std::size_t i = 0; row.plain[i] != '\0'; ++i) {
      const std::uint8_t code = static_cast<std::uint8_t>(row.first + i);
      table[static_cast<std::size_t>(row.plain[i])] = code;
      table[static_cast<std::size_t>(row.shifted[i])] = code;
    }
  }
  // Control characters are their letter's key with control held; a few have a key of their own.
  for (std::size_t c = 1; c < 27; ++c) table[c] = table['a' + c - 1];
  table['\0'] = kControlTwo;
  table['\b'] = 0x0E;
  table['\t'] = 0x0F;
  table['\r'] = 0x1C;
  table['\n'] = 0x1C;
  table[0x1B] = kEscape;
  table[0x1C] = table['\\'];
  table[0x1D] = table[']'];
  table[0x1E] = table['6'];
  table[0x1F] = table['-'];
  table[' '] = kSpace;
  table[0x7F] = 0x0E;
  return table;
}

constexpr std::array<std::uint8_t, 128> kScanCodes = MakeTable();

}  // namespace

bool ToScanCodes(const std::string& text, bytes::SecureString& codes) {
  codes = bytes::SecureString(text);
  for (char& c : codes.str()) {
    const std::size_t index = static_cast<unsigned char>(c);
    if (index >= kScanCodes.size()) {
      codes.Clear();
      return false;
    }
    c = static_cast<char>(kScanCodes[index]);
  }
  return true;
}

}  // namespace mira::callif

namespace {

constexpr std::uint16_t kStatusSelect = 3;
constexpr std::uint16_t kVerifySelect = 4;

// Builds, executes and reads one call; result word 2, or nothing when it failed.
bool CallForWord(CCallingInterface& calling, std::uint32_t buffer_size, const CComBSTR& key,
                 std::uint16_t cls, std::uint16_t select, IBIOSData& data, std::uint32_t& word) {
  const std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, buffer_size));
  std::uint32_t size = 0;
  SMBiosCI* const record = buffer ? buffer->FillInputBuffer(0, size, data) : nullptr;
  if (record == nullptr ||
      calling.Execute(*record, buffer_size, key) != CCallingInterface::STATUS_SUCCESS ||
      record->cbRES1 != 0) {
    return false;
  }
  word = record->cbRES2;
  return true;
}

}  // namespace

CPwdContext::CPwdContext(CCallingInterface& calling, std::uint32_t bufSize,
                         const CComBSTR& instanceKey)
    : calling_(calling),
      buffer_size_(bufSize),
      instance_key_(instanceKey),
      class10_(ReadStatus(10)),
      class9_(ReadStatus(9)),
      class12_(ReadStatus(12)) {}

CPwdContext::Entry CPwdContext::ReadStatus(std::uint16_t cls) {
  CSimpleTokenData data;
  std::uint32_t status = 0;
  if (!CallForWord(calling_, buffer_size_, instance_key_, cls, kStatusSelect, data, status)) {
    return {};
  }
  // One flag serves all passwords: the last status read decides.
  uses_scan_codes_ = (status >> 24 & 1) == 0;
  return {(status & 0xFF) == 0, status >> 8 & 0xFF, status >> 16 & 0xFF};
}

const CPwdContext::Entry& CPwdContext::For(std::uint16_t cls) const {
  switch (cls) {
    case 10:
      return class10_;
    case 12:
      return class12_;
    default:
      return class9_;
  }
}

std::uint32_t CPwdContext::GetSecurityKey(const std::string& password, bool class10) {
  const std::uint16_t cls = class10 ? 10 : 9;
  if (!For(cls).installed) return 0;
  if (password.empty() || password.size() > For(cls).max_length) return kNoKey;
  if (!uses_scan_codes_) return VerifyPassword(password, cls);
  mira::bytes::SecureString codes;
  return mira::callif::ToScanCodes(password, codes) ? VerifyPassword(codes.str(), cls) : kNoKey;
}

std::uint32_t CPwdContext::VerifyPassword(const std::string& password, std::uint16_t cls) {
  CVerifyPwdData data;
  data.Password = password;
  data.MaxPwdLen = For(cls).max_length + 1;
  std::uint32_t key = 0;
  return CallForWord(calling_, buffer_size_, instance_key_, cls, kVerifySelect, data, key) ? key
                                                                                           : kNoKey;
}

void CPwdContext::Fill(PwdInfo& info) const {
  info = PwdInfo{};
  info.installed = (class9_.installed ? PwdInfo::PWD_CLASS9 : 0u) |
                   (class10_.installed ? PwdInfo::PWD_CLASS10 : 0u) |
                   (class12_.installed ? PwdInfo::PWD_CLASS12 : 0u);
  info.class9SecondLength = class9_.second_length;
  info.class9MaxLength = class9_.max_length;
  info.class10SecondLength = class10_.second_length;
  info.class10MaxLength = class10_.max_length;
  info.class12SecondLength = class12_.second_length;
  info.class12MaxLength = class12_.max_length;
}
