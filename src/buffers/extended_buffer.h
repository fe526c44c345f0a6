#ifndef MIRA_BUFFERS_EXTENDED_BUFFER_H_
#define MIRA_BUFFERS_EXTENDED_BUFFER_H_

// What command buffers with more than four plain argument words have in common: one data area
// behind the fixed part (a 32-bit length, then the data), and a key in a word of its own.

#include <cstdint>

#include "buffers/buffer.h"
#include "bytes/reader.h"

class CExtendedBuffer : public CBuffer {
 public:
  using CBuffer::CBuffer;

 protected:
  static constexpr std::uint32_t kArea = mira::transport::kFixedRecordSize;
  static constexpr std::uint32_t kLengthWord = 4;
  static constexpr std::uint32_t kData = kArea + kLengthWord;

  // The four words of the request, and the key, if there is one, in word `key_argument` whatever
  // KeyArgIndex says.
  SMBiosCI* NewKeyedRecord(std::uint64_t length, const CSimpleTokenData& data,
                           std::uint32_t securityKey, unsigned key_argument);

  // The record of a call with an area, whose length it stores in `size`. Null, and `size` as it
  // was, when there is no record.
  SMBiosCI* Sized(std::uint32_t& size) const;

  // A read of as many bytes as `room`: the words and key of the request as in the base, the area
  // named by `argument` and prepared for the firmware.
  SMBiosCI* NewRead(std::uint32_t room, const CSimpleTokenData& data, std::uint32_t securityKey,
                    unsigned argument);

  // The bytes behind the length word: as many as it says, and no more than the record has.
  mira::bytes::ByteSpan ReceivedData() const;
};

#endif  // MIRA_BUFFERS_EXTENDED_BUFFER_H_
