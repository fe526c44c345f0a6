#include "buffers/pba_buffer.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "buffers/code_text.h"
#include "buffers/console_io.h"
#include "buffers/password_data.h"
#include "buffers/secret_prompt.h"
#include "buffers/string_arguments.h"
#include "bytes/reader.h"
#include "bytes/secure.h"
#include "bytes/writer.h"

namespace {

using mira::buffers::CodeText;
using mira::bytes::ByteSpan;
using mira::bytes::Reader;
using mira::bytes::SecureString;
using mira::transport::kFixedRecordSize;
using mira::transport::SetArgOffset;

constexpr std::uint32_t kLongestField = 64 * 1024;
constexpr std::uint32_t kAnyNumber = std::numeric_limits<std::uint32_t>::max();

// Formats of an information item: one byte, then the value.
constexpr std::uint32_t kBinary = 0;
constexpr std::uint32_t kText = 1;
constexpr std::size_t kBinaryUserId = 8;
constexpr std::size_t kBinaryKey = 16;

constexpr char kAskKey[] = "Enter the PBA Config Key (See cbSelect = 7 ; Function = 1) : 0x";
constexpr char kAskBinaryUserId[] =
    "Enter 8 Bytes of User ID (in binary format pressing \"Enter\" Key after each byte) : 0x";
constexpr char kAskBinaryKey[] =
    "Enter 16 Bytes of Passphrase (in binary format pressing \"Enter\" Key after each byte) : 0x";

// What is asked for one item.
struct ItemPrompts {
  const char* type;
  const char* text;
  const char* binary;
  std::size_t binary_size;
  bool is_secret;
};
constexpr ItemPrompts kUserId = {
    "Enter the type of User ID (0 - Binary ; 1 - ASCIIZ) : ",
    "Enter the User ID or User Name (in ASCIIZ format) : ", kAskBinaryUserId, kBinaryUserId, false};
constexpr ItemPrompts kPassphrase = {"Enter the type of Passphrase (0 - Binary ; 1 - ASCIIZ) : ",
                                     "Enter the Passpharse : ", kAskBinaryKey, kBinaryKey, true};
constexpr ItemPrompts kExistingUserId = {
    "Enter the type of input (0 - Binary ; 1 - ASCIIZ) : ",
    "Enter the information (in ASCIIZ format) : ", kAskBinaryUserId, kBinaryUserId, false};
constexpr ItemPrompts kExistingKey = {"Enter the type of input (0 - Binary ; 1 - ASCIIZ) : ",
                                      "Enter the information (in ASCIIZ format) : ", kAskBinaryKey,
                                      kBinaryKey, true};

constexpr CodeText kTexts[] = {
    {1, 7, "Incorrect PBA Config Key!"},
    {1, 8, "Incorrect PBA Config Key!"},
    {1, 9, "Incorrect PBA Config Key!"},
    {1, 10, "Incorrect PBA Config Key!"},
    {1, 17, "Incorrect PBA Config Key!"},
    {1, 18, "Incorrect PBA Config Key!"},
    {1, 15, "No user is Authenticated via PBA!"},
    {2, 4, "Password is not Correct!"},
    {2, 5, " The (OLD?) Password is incorrect!"},
    {2, 7, "Incorrect Password Supplied!"},
    {2, 8, "No room to add another PBA user!"},
    {2, 9, "No such PBA user!"},
    {2, 15, "Incorrect User ID!"},
    {2, 16, "Invalid bitmap\xEF\xBF\xBDno user authenticated with the given method!"},
    {2, 17, "Invalid info format byte (in byte 0 of the cbARG3 buffer)!"},
    {2, 18, "ID and key not in PBA database!"},
    {3, 5, "Password not changed - new password does not meet the criteria!"},
    {3, 7, "System user password not set!"},
    {3, 8, "System user password not set!"},
    {3, 16,
     "Invalid call\xEF\xBF\xBDthe function was already called successfully once before with the "
     "given bitmap!"},
    {3, 17, "Invalid Info Type (in cbARG2)!"},
    {4, 7, "Invalid Function (in cbArg1)!"},
    {4, 8, "Unsupported User ID Format!"},
    {4, 9, "Unsupported User ID Format!"},
    {4, 18, "Unsupported User ID Format!"},
    {4, 17, "The ID/key does not exist in the database!"},
    {5, 8, "Unsupported Key Format!"},
    {5, 9, "Unsupported Key Format!"},
    {5, 18, "Unsupported Key Format!"},
    {6, 8, "User Key already in the database!"},
    {7, 8, "User ID already in the database!"},
    {8, 8, "Permitted bitmap has no valid bit set!"},
    {9, 8, "Required bitmap is not a subset of the permitted bitmap!"},
};
constexpr std::int32_t kLastCode = 9;

// Items typed at the console; they may be secrets.
class Items {
 public:
  Items() { bytes_.reserve(4096); }
  ~Items() { mira::bytes::Wipe(bytes_.data(), bytes_.capacity()); }
  Items(const Items&) = delete;
  Items& operator=(const Items&) = delete;

  bool Ask(const ItemPrompts& prompts) {
    std::uint32_t format = 0;
    if (!mira::console_io::AskNumber(prompts.type, format, kBinary, kText)) return false;
    bytes_.push_back(static_cast<std::uint8_t>(format));
    std::optional<mira::buffers::HiddenAnswers> hidden;
    if (prompts.is_secret) hidden.emplace();
    if (format == kText) {
      SecureString text;
      if (!mira::console_io::AskWord(prompts.text, text.str())) return false;
      const ByteSpan bytes = mira::bytes::AsBytes(text);
      MakeRoom(bytes.size() + 1);
      bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
      bytes_.push_back(0);
      return true;
    }
    // The prompt stands once; each byte is a line of its own.
    for (std::size_t i = 0; i < prompts.binary_size; ++i) {
      std::uint32_t byte = 0;
      if (!mira::console_io::AskHex(i == 0 ? prompts.binary : "", byte)) return false;
      bytes_.push_back(static_cast<std::uint8_t>(byte));
    }
    return true;
  }

  ByteSpan Bytes() const { return bytes_; }

 private:
  // Without leaving a copy of what there is behind.
  void MakeRoom(std::size_t more) {
    if (bytes_.capacity() - bytes_.size() >= more) return;
    std::vector<std::uint8_t> larger;
    larger.reserve(2 * bytes_.size() + more);
    larger.assign(bytes_.begin(), bytes_.end());
    mira::bytes::Wipe(bytes_.data(), bytes_.size());
    bytes_.swap(larger);
  }

  std::vector<std::uint8_t> bytes_;
};

// Bytes are shown as signed ones widened to 32 bits, on purpose.
void PrintBytes(ByteSpan bytes) {
  std::cout << std::hex;
  for (const std::uint8_t byte : bytes) {
    std::cout << static_cast<std::uint32_t>(static_cast<std::int8_t>(byte)) << ' ';
  }
  std::cout << std::dec;
}

}  // namespace

SMBiosCI* CPBABuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                      IBIOSData& data) {
  constexpr std::uint16_t kVerify = 4;
  constexpr std::uint16_t kChange = 5;
  if (m_wSelect != kVerify && m_wSelect != kChange) return m_pCIBuffer.get();
  const CVerifyPwdData& request = dynamic_cast<CVerifyPwdData&>(data);
  const CChangePwdData* const change =
      m_wSelect == kChange ? &dynamic_cast<CChangePwdData&>(data) : nullptr;
  // A password with its NUL must end inside its field.
  const std::uint32_t field = request.MaxPwdLen;
  const auto fits = [field](const std::string& text) { return text.size() < field; };
  if (field > kLongestField || !fits(request.Password) ||
      (change != nullptr && !fits(change->NewPassword))) {
    return nullptr;
  }
  const std::uint64_t length = change != nullptr ? std::uint64_t{2} * field + kFixedRecordSize + 1
                                                 : std::uint64_t{field} + kFixedRecordSize;
  SMBiosCI* const record = NewRecord(length, request, securityKey);
  SetArgOffset(*record, 1, kFixedRecordSize);
  mira::bytes::Writer out(Record(), kFixedRecordSize);
  if (!request.Password.empty()) out.Text(request.Password);
  if (change != nullptr && !change->NewPassword.empty()) {
    out.Seek(kFixedRecordSize + field);
    out.Text(change->NewPassword);
  }
  size = record->cbLength;
  return record;
}

SMBiosCI* CPBABuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                        bool prompt) {
  // Without prompting there are no answers to build a record from; select 15 asks nothing.
  if (!prompt && m_wSelect != 15) return nullptr;
  SMBiosCI* record = nullptr;
  switch (m_wSelect) {
    case 4:
      return PromptPassword(securityKey, size);
    case 5:
      return PromptPasswordChange(securityKey, size);
    case 7:
      record = PromptConfiguration();
      break;
    case 8:
      record = PromptAddUser();
      break;
    case 9:
      record = PromptDeleteUser();
      break;
    case 15:
      record = BuildAuthenticatedUser();
      break;
    case 16:
      record = PromptCredential();
      break;
    case 17:
      record = PromptExistence();
      break;
    case 18:
      record = PromptLookUp();
      break;
    default:
      return m_pCIBuffer.get();
  }
  if (record != nullptr) size = record->cbLength;
  return record;
}

SMBiosCI* CPBABuffer::PromptPassword(std::uint32_t securityKey, std::uint32_t& size) {
  CVerifyPwdData data;
  if (!mira::buffers::AskSecretWord("Enter the Password : ", data.Password) ||
      !mira::console_io::AskNumber("What is the maximum password length (see cbSelect = 3 ) ? ",
                                   data.MaxPwdLen)) {
    return nullptr;
  }
  return FillInputBuffer(securityKey, size, data);
}

SMBiosCI* CPBABuffer::PromptPasswordChange(std::uint32_t securityKey, std::uint32_t& size) {
  CChangePwdData data;
  if (!mira::console_io::AskNumber("What is the maximum password length (see cbSelect = 3 ) ? ",
                                   data.MaxPwdLen) ||
      !mira::buffers::AskSecretText("Enter the Old Password : ", data.Password, kLongestField) ||
      !mira::buffers::AskSecretText("Enter the new Password : ", data.NewPassword, kLongestField)) {
    return nullptr;
  }
  return FillInputBuffer(securityKey, size, data);
}

SMBiosCI* CPBABuffer::PromptConfiguration() {
  constexpr std::uint32_t kGetKey = 1;
  constexpr std::uint32_t kClear = 2;
  std::uint32_t function = 0;
  if (!mira::console_io::AskNumber(
          "Enter the Function (0 - Status, 1 - Get, 2 - Clear) : ", function, 0, kClear)) {
    return nullptr;
  }
  if (function == kGetKey) {
    SecureString password;
    if (!mira::buffers::AskSecretWord("Enter the Password : ", password.str())) return nullptr;
    const mira::buffers::StringArguments strings({{2, password}});
    SMBiosCI* const record = NewRecord(strings.RecordLength());
    if (record == nullptr) return nullptr;
    record->cbArg1 = function;
    strings.Write(*record, Record());
    return record;
  }
  std::uint32_t key = 0;
  if (function == kClear &&
      !mira::console_io::AskHex("Enter the PBA Config Key (See Function 1) : 0x", key)) {
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
  mira::bytes::Writer(Record(), kFixedRecordSize).Bytes(items);
  return record;
}

SMBiosCI* CPBABuffer::PromptAddUser() {
  constexpr std::uint32_t kBitmaps = 8;
  constexpr std::uint32_t kAnswerArea = 28;
  std::uint32_t key = 0;
  std::uint32_t permitted = 0;
  std::uint32_t required = 0;
  Items items;
  if (!mira::console_io::AskHex(kAskKey, key) || !items.Ask(kUserId) || !items.Ask(kPassphrase) ||
      !mira::console_io::AskHex("Enter the 32-bit Permitted Authentication Bitmap (see cbSelect = "
                                "7, Function 0) : 0x",
                                permitted) ||
      !mira::console_io::AskHex(
          "Enter the 32-bit Required Authentication Bitmap (subset of Permitted) : 0x", required)) {
    return nullptr;
  }
  SMBiosCI* const record = NewItemRecord(key, 2, items.Bytes(), kBitmaps + kAnswerArea);
  if (record == nullptr) return nullptr;
  const auto bitmaps = static_cast<std::uint32_t>(kFixedRecordSize + items.Bytes().size());
  SetArgOffset(*record, 3, bitmaps);
  SetArgOffset(*record, 4, bitmaps + kBitmaps);
  mira::bytes::Writer out(Record(), bitmaps);
  out.U32(permitted);
  out.U32(required);
  InitExtendedBuffer(Record().subspan(bitmaps + kBitmaps));
  return record;
}

SMBiosCI* CPBABuffer::PromptDeleteUser() {
  std::uint32_t key = 0;
  Items items;
  if (!mira::console_io::AskHex(kAskKey, key) || !items.Ask(kUserId)) return nullptr;
  return NewItemRecord(key, 2, items.Bytes());
}

SMBiosCI* CPBABuffer::BuildAuthenticatedUser() {
  constexpr std::uint32_t kUserIdArea = 12;
  constexpr std::uint32_t kPassphraseArea = 132;
  SMBiosCI* const record = NewRecord(kFixedRecordSize + kUserIdArea + kPassphraseArea);
  SetArgOffset(*record, 1, kFixedRecordSize);
  SetArgOffset(*record, 2, kFixedRecordSize + kUserIdArea);
  InitExtendedBuffer(DataArea().first(kUserIdArea));
  InitExtendedBuffer(DataArea().subspan(kUserIdArea));
  return record;
}

SMBiosCI* CPBABuffer::PromptCredential() {
  constexpr std::uint64_t kOverhead = 48;
  std::uint32_t size = 0;
  std::uint32_t bitmap = 0;
  if (!mira::console_io::AskNumber("Enter the Credential Buffer Size : ", size, 0, kAnyNumber) ||
      !mira::console_io::AskHex("Enter the Authentication Bitmap : 0x", bitmap)) {
    return nullptr;
  }
  SMBiosCI* const record = NewRecord(size + kOverhead);
  if (record == nullptr) return nullptr;
  record->cbArg1 = bitmap;
  SetArgOffset(*record, 2, kFixedRecordSize);
  InitExtendedBuffer(DataArea());
  return record;
}

SMBiosCI* CPBABuffer::PromptExistence() {
  constexpr std::uint32_t kIsUserId = 1;
  constexpr std::uint32_t kIsKey = 2;
  std::uint32_t key = 0;
  std::uint32_t kind = 0;
  Items items;
  if (!mira::console_io::AskHex(kAskKey, key) ||
      !mira::console_io::AskNumber(
          "Enter the choice of input (1 - User ID ; 2 - User Key) : ", kind, kIsUserId, kIsKey) ||
      !items.Ask(kind == kIsUserId ? kExistingUserId : kExistingKey)) {
    return nullptr;
  }
  SMBiosCI* const record = NewItemRecord(key, 3, items.Bytes());
  if (record != nullptr) record->cbArg2 = kind;
  return record;
}

SMBiosCI* CPBABuffer::PromptLookUp() {
  std::uint32_t key = 0;
  Items items;
  if (!mira::console_io::AskHex(kAskKey, key) || !items.Ask(kUserId) || !items.Ask(kPassphrase)) {
    return nullptr;
  }
  return NewItemRecord(key, 2, items.Bytes());
}

void CPBABuffer::DisplayUser() const {
  struct Row {
    const char* binary;
    const char* text;
    std::size_t size;
  };
  constexpr Row kRows[] = {{"Binary User Id is : 0x", "ASCIIZ User ID is : ", kBinaryUserId},
                           {"Binary Passphrase is : 0x", "ASCIIZ Passphrase is : ", kBinaryKey}};
  Reader in(Record(), kFixedRecordSize);
  for (const Row& row : kRows) {
    const std::uint8_t format = in.U8();
    if (format == kBinary) {
      const ByteSpan value = in.Take(row.size);
      if (!in.Ok()) return;
      std::cout << row.binary;
      PrintBytes(value);
      std::cout << std::endl;
    } else if (format == kText) {
      const std::string_view value = in.CString();
      if (!in.Ok()) return;
      std::cout << row.text << value.substr(0, row.size) << std::flush;
    } else {
      return;
    }
  }
}

void CPBABuffer::DisplayCredential() const {
  constexpr std::int32_t kTooSmall = -6;
  Reader in(Record(), kFixedRecordSize);
  const std::uint32_t length = in.U32();
  if (!in.Ok()) return;
  if (CompletionCode() == kTooSmall) {
    std::cout << "Required Buffer Size is : 0x" << std::hex << length << std::dec << std::endl;
  } else if (CompletionCode() == 0) {
    std::cout << "Logon Credential is : ";
    PrintBytes(in.Take(std::min<std::size_t>(length, in.Left())));
  }
}

void CPBABuffer::DisplayOutputBuffer() {
  constexpr std::uint16_t kAddUser = 8;
  constexpr std::uint16_t kCredential = 16;
  CBuffer::DisplayOutputBuffer();
  if (m_wSelect == kAddUser) DisplayUser();
  if (m_wSelect == kCredential) DisplayCredential();
}

void CPBABuffer::DisplayReturnCode() {
  const std::int32_t code = CompletionCode();
  if (code >= 1 && code <= kLastCode) {
    mira::buffers::PrintCodeText(kTexts, code, m_wSelect);
  } else {
    CBuffer::DisplayReturnCode();
  }
}
