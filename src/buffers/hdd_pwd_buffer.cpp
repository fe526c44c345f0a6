#include "buffers/hdd_pwd_buffer.h"

#include <iostream>

#include "buffers/code_text.h"
#include "buffers/console_io.h"
#include "buffers/secret_prompt.h"
#include "buffers/string_arguments.h"
#include "bytes/reader.h"
#include "bytes/secure.h"

namespace {

using mira::buffers::CodeText;
using mira::buffers::StringArguments;
using mira::transport::kFixedRecordSize;

constexpr std::uint32_t kListAreaSize = 260;
constexpr std::size_t kDrives = 48;  // record offset of the first drive
constexpr std::int32_t kLastCode = 8;

// Selects 28, 30 and 31 are encoded like 11, 13 and 14; prompts, display and texts know the latter
// alone.
enum class Operation { kNone, kList, kVerify, kChange };

Operation OperationOf(std::uint16_t select) {
  switch (select) {
    case 11:
    case 28:
      return Operation::kList;
    case 13:
    case 30:
      return Operation::kVerify;
    case 14:
    case 31:
      return Operation::kChange;
    default:
      return Operation::kNone;
  }
}

constexpr CodeText kTexts[] = {
    {1, 13, "Invalid HDD Handle!"},
    {1, 14, "Invalid HDD Handle!"},
    {2, 13, "Interface Unavailable!"},
    {2, 14, "Interface Unavailable!"},
    {3, 13, "Password is incorrect!"},
    {3, 14, "Old Password is incorrect!"},
    {4, 13, "Admin Password is incorrect!"},
    {4, 14, "Admin Password is incorrect!"},
    {5, 14, "New password is Malformed!"},
    {6, 14, "Password cannot be deleted!"},
    {7, 13, "HDD is not present!"},
    {7, 14, "HDD is not present!"},
    {8, 14, "Unable to set password; Maximum Security Mode (Secure Erase) unavailable!"},
};

bool PromptVerify(CHDDPwd& data) {
  bool needs_admin = false;
  return mira::console_io::AskHex("Enter the HDD Handle : 0x", data.HDDHandle) &&
         mira::buffers::AskSecretWord("Enter the HDD Password : ", data.Password) &&
         mira::console_io::AskYes(
             "Is Admin Password required as per cbClass 10, cbSelect 12 (y/n) ? ", needs_admin) &&
         (!needs_admin ||
          mira::buffers::AskSecretWord("Enter Admin Password : ", data.AdminPassword));
}

bool PromptChange(CHDDPwd& data) {
  constexpr std::uint32_t kHighestMode = 1;
  bool is_set = false;
  bool sets_new = false;
  bool needs_admin = false;
  return mira::console_io::AskHex("Enter the HDD Handle : 0x", data.HDDHandle) &&
         mira::console_io::AskYes("Is a password already set (y/n)? ", is_set) &&
         (!is_set ||
          mira::buffers::AskSecretWord("Enter the Current HDD Password : ", data.Password)) &&
         mira::console_io::AskYes("Do you want to set new password (y/n)? ", sets_new) &&
         (!sets_new ||
          mira::buffers::AskSecretWord("Enter the new HDD Password : ", data.NewPassword)) &&
         mira::console_io::AskYes(
             "Is Admin Password required as per cbClass 10, cbSelect 12 (y/n) ? ", needs_admin) &&
         (needs_admin ? mira::buffers::AskSecretWord("Enter Admin Password : ", data.AdminPassword)
                      : mira::console_io::AskNumber("Enter the ATA Security Mode ( 0 / 1) : ",
                                                    data.ATASecurityMode, 0, kHighestMode));
}

}  // namespace

CHDDPwd& CHDDPwd::operator=(const CHDDPwd& other) {
  CSimpleTokenData::operator=(other);
  HDDHandle = other.HDDHandle;
  mira::bytes::Replace(Password, other.Password);
  mira::bytes::Replace(NewPassword, other.NewPassword);
  mira::bytes::Replace(AdminPassword, other.AdminPassword);
  ATASecurityMode = other.ATASecurityMode;
  HDDList = other.HDDList;
  return *this;
}

CHDDPwd::~CHDDPwd() {
  mira::bytes::Wipe(Password);
  mira::bytes::Wipe(NewPassword);
  mira::bytes::Wipe(AdminPassword);
}

SMBiosCI* CHDDPwdBuffer::FillInputBuffer(std::uint32_t, std::uint32_t& size, IBIOSData& data) {
  const Operation operation = OperationOf(m_wSelect);
  if (operation == Operation::kNone) return m_pCIBuffer.get();
  const CHDDPwd& request = dynamic_cast<CHDDPwd&>(data);
  SMBiosCI* record = nullptr;
  if (operation == Operation::kList) {
    record = NewRecord(kFixedRecordSize + kListAreaSize);
    mira::transport::SetArgOffset(*record, 1, kFixedRecordSize);
    InitExtendedBuffer(DataArea());
  } else {
    StringArguments strings({{2, request.Password}});
    const bool is_change = operation == Operation::kChange;
    if (is_change) strings.Add(3, request.NewPassword);
    const unsigned admin_argument = is_change ? 4 : 3;
    if (!request.AdminPassword.empty()) strings.Add(admin_argument, request.AdminPassword);
    record = NewRecord(strings.RecordLength());
    if (record == nullptr) return nullptr;
    record->cbArg1 = request.HDDHandle;
    if (is_change) record->cbArg4 = request.ATASecurityMode;
    if (!strings.Write(*record, Record())) return nullptr;
  }
  size = record->cbLength;
  return record;
}

SMBiosCI* CHDDPwdBuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                           bool prompt) {
  CHDDPwd data;
  bool answered = true;
  switch (m_wSelect) {
    case 11:
      break;
    case 13:
      answered = !prompt || PromptVerify(data);
      break;
    case 14:
      answered = !prompt || PromptChange(data);
      break;
    default:
      return m_pCIBuffer.get();
  }
  return answered ? FillInputBuffer(securityKey, size, data) : nullptr;
}

std::list<std::pair<std::uint8_t, std::string>> CHDDPwdBuffer::ReadDrives() const {
  std::list<std::pair<std::uint8_t, std::string>> drives;
  mira::bytes::Reader in(Record(), kDrives);
  // The count is the firmware's word; the record's bytes bound it.
  for (std::uint32_t left = m_pCIBuffer ? m_pCIBuffer->cbRES2 : 0; left > 0; --left) {
    const std::uint8_t handle = in.U8();
    const std::string_view description = in.CString();
    if (!in.Ok()) break;
    drives.emplace_back(handle, description);
  }
  return drives;
}

void CHDDPwdBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (OperationOf(m_wSelect) != Operation::kList) return;
  CHDDPwd& result = dynamic_cast<CHDDPwd&>(data);
  result.HDDList.splice(result.HDDList.end(), ReadDrives());
}

void CHDDPwdBuffer::DisplayOutputBuffer() {
  CBuffer::DisplayOutputBuffer();
  if (m_wSelect != 11) return;
  for (const auto& [handle, description] : ReadDrives()) {
    // The handle is shown as a signed byte widened to 32 bits, on purpose.
    const auto widened = static_cast<std::uint32_t>(static_cast<std::int8_t>(handle));
    std::cout << std::endl
              << "HDD Handle : " << std::hex << widened << std::dec
              << "\t HDD Description : " << description;
  }
}

void CHDDPwdBuffer::DisplayReturnCode() {
  const std::int32_t code = CompletionCode();
  if (code >= 1 && code <= kLastCode) {
    mira::buffers::PrintCodeText(kTexts, code, m_wSelect);
  } else {
    CBuffer::DisplayReturnCode();
  }
}
