#include "buffers/pba_items.h"

#include <iostream>
#include <optional>
#include <string_view>

#include "buffers/console_io.h"
#include "buffers/secret_prompt.h"
#include "bytes/secure.h"

namespace mira::buffers {
namespace {

enum Format : std::uint32_t { kBinary = 0, kText = 1 };

constexpr std::size_t kBinaryUserId = 8;
constexpr std::size_t kBinaryKey = 16;

constexpr char kAskFormat[] = "Enter the type of input (0 - Binary ; 1 - ASCIIZ) : ";
constexpr char kAskText[] = "Enter the information (in ASCIIZ format) : ";
constexpr char kAskBinaryUserId[] =
    "Enter 8 Bytes of User ID (in binary format pressing \"Enter\" Key after each byte) : 0x";
constexpr char kAskBinaryKey[] =
    "Enter 16 Bytes of Passphrase (in binary format pressing \"Enter\" Key after each byte) : 0x";

// What is printed before a value, and how many of its characters or bytes follow.
struct Label {
  const char* binary;
  const char* text;
  std::size_t size;
};
constexpr Label kLabels[] = {
    {"Binary User Id is : 0x", "ASCIIZ User ID is : ", kBinaryUserId},
    {"Binary Passphrase is : 0x", "ASCIIZ Passphrase is : ", kBinaryKey},
};

}  // namespace

const ItemPrompts kUserId = {
    "Enter the type of User ID (0 - Binary ; 1 - ASCIIZ) : ",
    "Enter the User ID or User Name (in ASCIIZ format) : ", kAskBinaryUserId, kBinaryUserId, false};
const ItemPrompts kPassphrase = {"Enter the type of Passphrase (0 - Binary ; 1 - ASCIIZ) : ",
                                 "Enter the Passpharse : ", kAskBinaryKey, kBinaryKey, true};
const ItemPrompts kExistingUserId = {kAskFormat, kAskText, kAskBinaryUserId, kBinaryUserId, false};
const ItemPrompts kExistingKey = {kAskFormat, kAskText, kAskBinaryKey, kBinaryKey, true};

Items::Items() {
  constexpr std::size_t kUsualSize = 4096;
  bytes_.reserve(kUsualSize);
}

Items::~Items() { bytes::Wipe(bytes_.data(), bytes_.capacity()); }

bool Items::Ask(const ItemPrompts& prompts) {
  std::uint32_t format = kBinary;
  if (!console_io::AskNumber(prompts.format, format, kBinary, kText)) return false;
  std::optional<HiddenAnswers> hidden;
  if (prompts.is_secret) hidden.emplace();
  if (format == kText) {
    bytes::SecureString text;
    if (!console_io::AskWord(prompts.text, text.str())) return false;
    const bytes::ByteSpan characters = bytes::AsBytes(text);
    MakeRoom(characters.size() + 2);
    bytes_.push_back(kText);
    bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    bytes_.push_back(0);
    return true;
  }
  MakeRoom(prompts.binary_size + 1);
  bytes_.push_back(kBinary);
  // The prompt is printed once; each byte is a line of its own and keeps its low eight bits.
  for (std::size_t i = 0; i < prompts.binary_size; ++i) {
    std::uint32_t byte = 0;
    if (!console_io::AskHex(i == 0 ? prompts.binary : "", byte)) return false;
    bytes_.push_back(static_cast<std::uint8_t>(byte));
  }
  return true;
}

void Items::MakeRoom(std::size_t more) {
  if (bytes_.capacity() - bytes_.size() >= more) return;
  std::vector<std::uint8_t> larger;
  larger.reserve(2 * bytes_.size() + more);
  larger.assign(bytes_.begin(), bytes_.end());
  bytes::Wipe(bytes_.data(), bytes_.capacity());
  bytes_.swap(larger);
}

void PrintUserItems(bytes::ByteSpan items) {
  bytes::Reader in(items);
  for (const Label& label : kLabels) {
    const std::uint8_t format = in.U8();
    if (!in.Ok()) return;
    if (format == kBinary) {
      const bytes::ByteSpan value = in.Take(label.size);
      if (!in.Ok()) return;
      std::cout << label.binary;
      PrintSignedBytes(value);
      std::cout << std::endl;
    } else if (format == kText) {
      const std::string_view value = in.CString();
      if (!in.Ok()) return;
      std::cout << label.text << value.substr(0, label.size) << std::flush;
    } else {
      return;
    }
  }
}

void PrintSignedBytes(bytes::ByteSpan bytes) {
  std::cout << std::hex;
  for (const std::uint8_t byte : bytes) {
    std::cout << static_cast<std::uint32_t>(static_cast<std::int8_t>(byte)) << ' ';
  }
  std::cout << std::dec;
}

}  // namespace mira::buffers
