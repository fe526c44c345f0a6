#ifndef MIRA_CLIENT_SNAPSHOT_REDACT_TABLE_H_
#define MIRA_CLIENT_SNAPSHOT_REDACT_TABLE_H_

#include <cstdint>
#include <vector>

#include "bytes/reader.h"
#include "client/snapshot/placeholders.h"

namespace mira::client {

// An SMBIOS table (in the form of the firmware table service, as what is given back) with nothing
// in it but what is known to be harmless: of each structure the fields of the standard that
// describe the model, and numbers of strings; strings of common words; zeros and placeholders for
// the rest. Handles and lengths of formatted areas stay, and the header states the new length. What
// stands behind a malformed place is left out.
std::vector<std::uint8_t> RedactTable(bytes::ByteSpan firmware_table, Placeholders& placeholders);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_REDACT_TABLE_H_
