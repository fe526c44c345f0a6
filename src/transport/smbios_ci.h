#ifndef MIRA_TRANSPORT_SMBIOS_CI_H_
#define MIRA_TRANSPORT_SMBIOS_CI_H_

// The calling-interface record: what one firmware call sends and receives. A fixed part of 44
// bytes, then, in longer records, a data area. A record is one zero-filled block of exactly its
// stated length.
//
//   mira::transport::RecordPtr record = mira::transport::MakeRecord(11, 0, 44);
//   record->cbArg1 = 1;
//   mira::bytes::Writer area(mira::transport::RecordBytes(record), 44);

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "bytes/reader.h"
#include "bytes/writer.h"

// Little-endian, without padding; sent to the firmware as it lies in memory.
struct SMBiosCI {
  std::uint16_t cbClass;
  std::uint16_t cbSelect;
  std::uint32_t cbArg1;
  std::uint32_t cbArg2;
  std::uint32_t cbArg3;
  std::uint32_t cbArg4;
  std::int32_t cbRES1;  // completion code: 0 success, below 0 general, above 0 function-specific
  std::uint32_t cbRES2;
  std::uint32_t cbRES3;
  std::uint32_t cbRES4;
  std::uint32_t
      cbArgKinds;          // byte n is 1 when argument word n + 1 holds an offset into this record
  std::uint32_t cbLength;  // bytes of the whole record, 44 without a data area
};
static_assert(sizeof(SMBiosCI) == 44);

namespace mira::transport {

inline constexpr std::uint32_t kFixedRecordSize = 44;

// No firmware offers a transfer buffer this large; a larger size is taken for damage.
inline constexpr std::uint32_t kMaxTransferSize = 16 * 1024 * 1024;

// Releases a record, wiping it first: it may have carried a password or a security key. It
// remembers the record's true size, since the firmware may write anything into the length word.
struct RecordDeleter {
  std::uint32_t size = 0;
  void operator()(SMBiosCI* record) const noexcept;
};
using RecordPtr = std::unique_ptr<SMBiosCI, RecordDeleter>;

// A zero-filled record of `length` bytes (at least 44) with class, select and length set. Throws
// std::bad_alloc.
RecordPtr MakeRecord(std::uint16_t cls, std::uint16_t select, std::uint32_t length);

// All bytes of a record; none of a null one.
inline bytes::MutableByteSpan RecordBytes(const RecordPtr& record) {
  return {reinterpret_cast<std::uint8_t*>(record.get()), record ? record.get_deleter().size : 0};
}

// Marks argument word `index` (1 to 4) as an offset into the record and sets it.
void SetArgOffset(SMBiosCI& record, unsigned index, std::uint32_t offset);

// Sets argument word `index`; any index but 1 to 4 sets nothing.
void SetArg(SMBiosCI& record, unsigned index, std::uint32_t value);

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_SMBIOS_CI_H_
