#ifndef MIRA_CLIENT_SNAPSHOT_REDACT_PATH_H_
#define MIRA_CLIENT_SNAPSHOT_REDACT_PATH_H_

#include <cstdint>
#include <vector>

#include "bytes/reader.h"
#include "client/snapshot/placeholders.h"
#include "devicepath/text.h"

namespace mira::client {

// A device path with nothing in it but what is known to be harmless: how a device is connected, and
// file names of common words. Addresses, identifiers, names and data of vendors become zeros or
// placeholders. What stands behind a malformed place is left out.
devicepath::Path RedactPath(bytes::ByteSpan path, Placeholders& placeholders);

// The MAC addresses, signatures of partitions and numbers of drives in a path.
std::vector<std::vector<std::uint8_t>> PathIdentifiers(bytes::ByteSpan path);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_REDACT_PATH_H_
