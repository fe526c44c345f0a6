#ifndef MIRA_PLDM_ACI_INFO2_RECORD_H_
#define MIRA_PLDM_ACI_INFO2_RECORD_H_

// The request record of class 5: the directory of the BIOS tables, what was parsed of them, the
// state of a table that comes in chunks, and the one value that a call exchanges.

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "buffers/bios_data.h"
#include "bytes/reader.h"
#include "pldm/tables.h"
#include "transport/smbios_ci.h"

namespace mira::pldm {

enum TableType : std::uint8_t {
  kStringTable = 0,
  kAttributeTable = 1,
  kValueTable = 2,
  kStringData = 3,        // help or display texts; read when first asked for
  kNamedStringData = 16,  // named like string data, read like a table, and not parsed
};

// Which texts a string-data table holds.
enum StringKind : std::uint8_t { kHelpStrings = 0, kDisplayStrings = 1 };

struct TableDescriptor {
  std::uint8_t type = 0;
  std::uint8_t string_kind = 0;
  std::array<std::uint8_t, 4> reserved{};
  std::uint8_t unused = 0;
  std::uint8_t index = 0;  // the number that a read of the table names
  std::uint32_t size = 0;
  std::uint32_t address = 0;  // on the firmware's side
};

}  // namespace mira::pldm

struct CACIInfo2Record : CSimpleTokenData {
  ~CACIInfo2Record() override;

  // Replaces the directory by the one in `data`, as far as the bytes go.
  void DecodeHeader(mira::bytes::ByteSpan data);
  // The descriptor at the current table index; null where there is none.
  const mira::pldm::TableDescriptor* CurrentDescriptor() const;

  static constexpr std::uint8_t kNoTable = 255;

  std::array<char, 5> Signature{};  // with a NUL behind the four characters
  std::array<std::uint8_t, 2> Version{};
  std::uint16_t HeaderWord = 0;
  std::array<char, 5> Signature2{};
  std::uint32_t HeaderSize = 0;
  std::uint32_t Features = 0;
  std::uint8_t Checksum = 0;  // shown, not verified
  mira::pldm::Tables Tables;
  std::uint8_t CurrentTable = kNoTable;
  // A read in chunks: the bytes received, where they are put together (null when no such read is
  // under way), the bytes expected.
  std::uint32_t Received = 0;
  mira::transport::RecordPtr Assembly;
  std::uint32_t Expected = 0;
  // The value of the read or write under way, or of the last one; null before the first.
  std::unique_ptr<mira::pldm::IntPLDMAttributeValue> Exchange;
  // The firmware's answer to the exchange; nothing when it did not hold what it should.
  std::optional<std::uint8_t> ExchangeStatus;
  std::vector<mira::pldm::TableDescriptor> Descriptors;
};

#endif  // MIRA_PLDM_ACI_INFO2_RECORD_H_
