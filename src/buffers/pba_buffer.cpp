#include "buffers/pba_buffer.h"

#include <algorithm>
#include <iostream>
#include <string>

#include "buffers/console_io.h"
#include "buffers/password_data.h"
#include "buffers/pba_items.h"
#include "buffers/pba_texts.h"
#include "buffers/secret_prompt.h"
#include "buffers/string_arguments.h"
#include "bytes/reader.h"
#include "bytes/secure.h"
#include "bytes/writer.h"

using mira::buffers::AskSecretText;
using mira::buffers::AskSecretWord;
using mira::buffers::Items;
using mira::bytes::ByteSpan;
using mira::bytes::Reader;
using mira::bytes::Writer;
using mira::console_io::AskHex;
using mira::console_io::AskNumber;
using mira::transport::kFixedRecordSize;
using mira::transport::SetArgOffset;

namespace {

constexpr std::uint16_t kVerify = 4;
constexpr std::uint16_t kChange = 5;
constexpr std::uint32_t kLongestField = 64 * 1024;

constexpr char kAskLength[] = "What is the maximum password length (see cbSelect = 3 ) ? ";
constexpr char kAskKey[] = "Enter the PBA Config Key (See cbSelect = 7 ; Function = 1) : 0x";

}  // namespace

struct CPBABuffer::Select {
  std::uint16_t number;
  bool asks;
  SMBiosCI* (CPBABuffer::*build)(std::uint32_t securityKey);
  void (CPBABuffer::*display)() const = nullptr;  // shown behind the base lines
};

const CPBABuffer::Select CPBABuffer::kSelects[] = {
    {kVerify, true, &CPBABuffer::PromptPassword},
    {kChange, true, &CPBABuffer::PromptPasswordChange},
    {7, true, &CPBABuffer::PromptConfiguration},
    {8, true, &CPBABuffer::PromptAddUser, &CPBABuffer::DisplayUser},
    {9, true, &CPBABuffer::PromptDeleteUser},
    {15, false, &CPBABuffer::BuildAuthenticatedUser},
    {16, true, &CPBABuffer::PromptCredential, &CPBABuffer::DisplayCredential},
    {17, true, &CPBABuffer::PromptExistence},
    {18, true, &CPBABuffer::PromptLookUp},
};

const CPBABuffer::Select* CPBABuffer::FindSelect() const {
  const auto* const found =
      std::find_if(std::begin(kSelects), std::end(kSelects),
                   [this](const Select& select) { return select.number == m_wSelect; });
  return found != std::end(kSelects) ? found : nullptr;
}

SMBiosCI* CPBABuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                      IBIOSData& data) {
  if (m_wSelect != kVerify && m_wSelect != kChange) return m_pCIBuffer.get();
  const CVerifyPwdData& request = dynamic_cast<CVerifyPwdData&>(data);
  const CChangePwdData* const change =
      m_wSelect == kChange ? &dynamic_cast<CChangePwdData&>(data) : nullptr;
  const std::uint32_t field = request.MaxPwdLen;
  // Of a change each text may fill its field: the new one is written over the old one's NUL, and
  // its own NUL is the record's last byte. A text to be verified has its NUL inside the field.
  const auto fits = [&](const std::string& text) {
    return change != nullptr ? text.size() <= field : text.size() < field;
  };
  if (field > kLongestField || !fits(request.Password) ||
      (change != nullptr && !fits(change->NewPassword))) {
    return nullptr;
  }
  const std::uint64_t length = change != nullptr ? std::uint64_t{2} * field + kFixedRecordSize + 1
                                                 : std::uint64_t{field} + kFixedRecordSize;
  SMBiosCI* const record = NewRecord(length, request, securityKey);
  SetArgOffset(*record, 1, kFixedRecordSize);
  Writer out(Record(), kFixedRecordSize);
  if (!request.Password.empty()) out.Text(request.Password);
  if (change != nullptr && !change->NewPassword.empty()) {
    out.Seek(kFixedRecordSize + field);
    out.Text(change->NewPassword);
  }
  if (!out.Ok()) return nullptr;
  size = record->cbLength;
  return record;
}

SMBiosCI* CPBABuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                        bool prompt) {
  const Select* const select = FindSelect();
  if (select == nullptr) return m_pCIBuffer.get();
  // Without prompts there are no answers to build a record from.
  if (select->asks && !prompt) return nullptr;
  SMBiosCI* const record = (this->*select->build)(securityKey);
  if (record != nullptr) size = record->cbLength;
  return record;
}

SMBiosCI* CPBABuffer::PromptPassword(std::uint32_t securityKey) {
  CVerifyPwdData data;
  std::uint32_t size = 0;
  const bool answered = AskSecretWord("Enter the Password : ", data.Password) &&
                        AskNumber(kAskLength, data.MaxPwdLen);
  return answered ? FillInputBuffer(securityKey, size, data) : nullptr;
}

SMBiosCI* CPBABuffer::PromptPasswordChange(std::uint32_t securityKey) {
  CChangePwdData data;
  std::uint32_t size = 0;
  const bool answered = AskNumber(kAskLength, data.MaxPwdLen) &&
                        AskSecretText("Enter the Old Password : ", data.Password, kLongestField) &&
                        AskSecretText("Enter the new Password : ", data.NewPassword, kLongestField);
  return answered ? FillInputBuffer(securityKey, size, data) : nullptr;
}

SMBiosCI* CPBABuffer::PromptConfiguration(std::uint32_t) {
  constexpr std::uint32_t kGetKey = 1;
  constexpr std::uint32_t kClear = 2;
  std::uint32_t function = 0;
  if (!AskNumber("Enter the Function (0 - Status, 1 - Get, 2 - Clear) : ", function, 0, kClear)) {
    return nullptr;
  }
  if (function == kGetKey) {
    mira::bytes::SecureString password;
    if (!AskSecretWord("Enter the Password : ", password.str())) return nullptr;
    const mira::buffers::StringArguments strings({{2, password}});
    SMBiosCI* const record = NewRecord(strings.RecordLength());
    if (record == nullptr) return nullptr;
    record->cbArg1 = function;
    return strings.Write(*record, Record()) ? record : nullptr;
  }
  std::uint32_t key = 0;
  if (function == kClear && !AskHex("Enter the PBA Config Key (See Function 1) : 0x", key)) {
    return nullptr;
  }
  SMBiosCI* const record = NewRecord(kFixedRecordSize);
  record->cbArg1 = function;
  record->cbArg2 = key;
  return record;
}

SMBiosCI* CPBABuffer::NewItemRecord(std::uint32_t configuration_key, unsigned argument,
                                    ByteSpan items, std::uint32_t behind) {
  SMBiosCI* const record = NewRecord(std::uint64_t{kFixedRecordSize} + items.size() + behind);
  if (record == nullptr) return nullptr;
  record->cbArg1 = configuration_key;
  SetArgOffset(*record, argument, kFixedRecordSize);
  Writer out(Record(), kFixedRecordSize);
  out.Bytes(items);
  return out.Ok() ? record : nullptr;
}

SMBiosCI* CPBABuffer::PromptAddUser(std::uint32_t) {
  constexpr std::uint32_t kBitmaps = 8;
  constexpr std::uint32_t kAnswerArea = 28;
  std::uint32_t key = 0;
  std::uint32_t permitted = 0;
  std::uint32_t required = 0;
  Items items;
  if (!AskHex(kAskKey, key) || !items.Ask(mira::buffers::kUserId) ||
      !items.Ask(mira::buffers::kPassphrase) ||
      !AskHex("Enter the 32-bit Permitted Authentication Bitmap (see cbSelect = 7, Function 0) : "
              "0x",
              permitted) ||
      !AskHex("Enter the 32-bit Required Authentication Bitmap (subset of Permitted) : 0x",
              required)) {
    return nullptr;
  }
  SMBiosCI* const record = NewItemRecord(key, 2, items.Bytes(), kBitmaps + kAnswerArea);
  if (record == nullptr) return nullptr;
  const auto bitmaps = static_cast<std::uint32_t>(kFixedRecordSize + items.Bytes().size());
  SetArgOffset(*record, 3, bitmaps);
  SetArgOffset(*record, 4, bitmaps + kBitmaps);
  Writer out(Record(), bitmaps);
  out.U32(permitted);
  out.U32(required);
  InitExtendedBuffer(Record().subspan(bitmaps + kBitmaps));
  return out.Ok() ? record : nullptr;
}

SMBiosCI* CPBABuffer::PromptDeleteUser(std::uint32_t) {
  std::uint32_t key = 0;
  Items items;
  if (!AskHex(kAskKey, key) || !items.Ask(mira::buffers::kUserId)) return nullptr;
  return NewItemRecord(key, 2, items.Bytes());
}

SMBiosCI* CPBABuffer::BuildAuthenticatedUser(std::uint32_t) {
  constexpr std::uint32_t kUserIdArea = 12;
  constexpr std::uint32_t kPassphraseArea = 132;
  SMBiosCI* const record = NewRecord(kFixedRecordSize + kUserIdArea + kPassphraseArea);
  SetArgOffset(*record, 1, kFixedRecordSize);
  SetArgOffset(*record, 2, kFixedRecordSize + kUserIdArea);
  InitExtendedBuffer(DataArea().first(kUserIdArea));
  InitExtendedBuffer(DataArea().subspan(kUserIdArea));
  return record;
}

SMBiosCI* CPBABuffer::PromptCredential(std::uint32_t) {
  constexpr std::uint64_t kOverhead = 48;
  std::uint32_t size = 0;
  std::uint32_t bitmap = 0;
  if (!AskNumber("Enter the Credential Buffer Size : ", size) ||
      !AskHex("Enter the Authentication Bitmap : 0x", bitmap)) {
    return nullptr;
  }
  SMBiosCI* const record = NewRecord(size + kOverhead);
  if (record == nullptr) return nullptr;
  record->cbArg1 = bitmap;
  SetArgOffset(*record, 2, kFixedRecordSize);
  InitExtendedBuffer(DataArea());
  return record;
}

SMBiosCI* CPBABuffer::PromptExistence(std::uint32_t) {
  constexpr std::uint32_t kIsUserId = 1;
  constexpr std::uint32_t kIsKey = 2;
  std::uint32_t key = 0;
  std::uint32_t kind = 0;
  Items items;
  if (!AskHex(kAskKey, key) ||
      !AskNumber("Enter the choice of input (1 - User ID ; 2 - User Key) : ", kind, kIsUserId,
                 kIsKey) ||
      !items.Ask(kind == kIsUserId ? mira::buffers::kExistingUserId
                                   : mira::buffers::kExistingKey)) {
    return nullptr;
  }
  SMBiosCI* const record = NewItemRecord(key, 3, items.Bytes());
  if (record != nullptr) record->cbArg2 = kind;
  return record;
}

SMBiosCI* CPBABuffer::PromptLookUp(std::uint32_t) {
  std::uint32_t key = 0;
  Items items;
  if (!AskHex(kAskKey, key) || !items.Ask(mira::buffers::kUserId) ||
      !items.Ask(mira::buffers::kPassphrase)) {
    return nullptr;
  }
  return NewItemRecord(key, 2, items.Bytes());
}

void CPBABuffer::DisplayUser() const { mira::buffers::PrintUserItems(DataArea()); }

void CPBABuffer::DisplayCredential() const {
  constexpr std::int32_t kTooSmall = -6;
  Reader in(Record(), kFixedRecordSize);
  const std::uint32_t length = in.U32();
  if (!in.Ok()) return;
  if (CompletionCode() == kTooSmall) {
    std::cout << "Required Buffer Size is : 0x" << std::hex << length << std::dec << std::endl;
  } else if (CompletionCode() == 0) {
    std::cout << "Logon Credential is : ";
    mira::buffers::PrintSignedBytes(in.Take(std::min<std::size_t>(length, in.Left())));
  }
}

void CPBABuffer::DisplayOutputBuffer() {
  CBuffer::DisplayOutputBuffer();
  const Select* const select = FindSelect();
  if (select != nullptr && select->display != nullptr) (this->*select->display)();
}

void CPBABuffer::DisplayReturnCode() {
  if (!mira::buffers::PrintPbaText(CompletionCode(), m_wSelect)) CBuffer::DisplayReturnCode();
}
