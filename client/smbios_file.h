#ifndef MIRA_CLIENT_SMBIOS_FILE_H_
#define MIRA_CLIENT_SMBIOS_FILE_H_

// The forms in which SMBIOS tables are kept in files, all read into and written from that of the
// firmware table service: an 8-byte header, then the structures.
//
//   std::vector<std::uint8_t> table = TableFromFile(bytes_of_the_file);
//   if (table.empty()) return "no SMBIOS table";
//   WriteFile(ToDump(table));

#include <cstdint>
#include <vector>

#include "bytes/reader.h"

namespace mira::client {

struct SmbiosVersion {
  unsigned major = 0;  // 0.0 where the version is not known
  unsigned minor = 0;
};

// What a firmware means that states one of the well-known wrong versions: 2.31 and 2.33 are 2.3,
// 2.51 is 2.6.
SmbiosVersion RealVersion(unsigned major, unsigned minor);

// Reads the service's own form; a dump that begins with an entry point ("_SM_", "_SM3_", DSP0134
// 5.2, or the legacy "_DMI_") with the table where the entry point says, or at offset 32; the bare
// table; and each of them in hexadecimal text. The version is the real one. Empty for anything
// else.
std::vector<std::uint8_t> TableFromFile(bytes::ByteSpan file);

// The dump that begins with an entry point, the table at offset 32, as 'dmidecode --from-dump'
// reads it.
std::vector<std::uint8_t> ToDump(bytes::ByteSpan firmware_table);

// The service's form of a bare table. `length` is the stated one.
std::vector<std::uint8_t> WithHeader(SmbiosVersion version, std::size_t length,
                                     bytes::ByteSpan table);

// Whether the header states more bytes than follow it.
bool IsCutShort(bytes::ByteSpan firmware_table);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SMBIOS_FILE_H_
