#ifndef MIRA_BUFFERS_PBA_ITEMS_H_
#define MIRA_BUFFERS_PBA_ITEMS_H_

// The information items of the pre-boot selects: a user ID, a passphrase or a user key, each as a
// format byte and its value. A record carries them one after another without gaps.
//
//   Items items;
//   if (!items.Ask(kUserId) || !items.Ask(kPassphrase)) return nullptr;
//   Writer(record, offset).Bytes(items.Bytes());

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bytes/reader.h"

namespace mira::buffers {

// The prompts for one item.
struct ItemPrompts {
  const char* format;
  const char* text;
  const char* binary;
  std::size_t binary_size;  // bytes of a binary value
  bool is_secret;           // the value is typed without echo
};
extern const ItemPrompts kUserId;
extern const ItemPrompts kPassphrase;
// Select 17 asks for either with prompts of its own.
extern const ItemPrompts kExistingUserId;
extern const ItemPrompts kExistingKey;

// Items typed at the console. They may be secrets, so their memory is wiped.
class Items {
 public:
  Items();
  ~Items();
  Items(const Items&) = delete;
  Items& operator=(const Items&) = delete;

  // Asks for one more item. False when the input ended before it was complete.
  bool Ask(const ItemPrompts& prompts);
  bytes::ByteSpan Bytes() const { return bytes_; }

 private:
  // Grows the memory without leaving a copy of the items behind.
  void MakeRoom(std::size_t more);

  std::vector<std::uint8_t> bytes_;
};

// Prints a user-ID item and the passphrase item behind it, as far as they are whole.
void PrintUserItems(bytes::ByteSpan items);

// Prints each byte in hexadecimal with a blank behind it. Bytes are sign-extended to 32 bits first,
// on purpose.
void PrintSignedBytes(bytes::ByteSpan bytes);

}  // namespace mira::buffers

#endif  // MIRA_BUFFERS_PBA_ITEMS_H_
