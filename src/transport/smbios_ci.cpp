#include "transport/smbios_ci.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "bytes/secure.h"

namespace mira::transport {

void RecordDeleter::operator()(SMBiosCI* record) const noexcept {
  bytes::Wipe(record, size);
  ::operator delete(record);
}

RecordPtr MakeRecord(std::uint16_t cls, std::uint16_t select, std::uint32_t length) {
  const std::uint32_t size = std::max(length, kFixedRecordSize);
  void* const block = ::operator new(size);
  std::memset(block, 0, size);
  RecordPtr record(::new (block) SMBiosCI{}, RecordDeleter{size});
  record->cbClass = cls;
  record->cbSelect = select;
  record->cbLength = size;
  return record;
}

void SetArg(SMBiosCI& record, unsigned index, std::uint32_t value) {
  switch (index) {
    case 1:
      record.cbArg1 = value;
      break;
    case 2:
      record.cbArg2 = value;
      break;
    case 3:
      record.cbArg3 = value;
      break;
    case 4:
      record.cbArg4 = value;
      break;
    default:
      break;
  }
}

void SetArgOffset(SMBiosCI& record, unsigned index, std::uint32_t offset) {
  SetArg(record, index, offset);
  if (index >= 1 && index <= 4) record.cbArgKinds |= std::uint32_t{1} << (8 * (index - 1));
}

}  // namespace mira::transport
