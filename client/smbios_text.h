#ifndef MIRA_CLIENT_SMBIOS_TEXT_H_
#define MIRA_CLIENT_SMBIOS_TEXT_H_

#include <cstdint>
#include <string_view>
#include <vector>

namespace mira::client {

// The bytes of a hexadecimal dump: pairs of digits, with or without blanks between them, an offset
// in front of each line and the characters behind it ("|...|", or two blanks and the text). A line
// "*" repeats the one before it up to the next offset. Empty for any other text.
std::vector<std::uint8_t> FromHexDump(std::string_view text);

// The table of a listing that shows each structure as hexadecimal ("Handle 0x0000, DMI type 0, 24
// bytes", "Header and Data:", "Strings:"), in the form of the firmware table service. Empty for any
// other text.
std::vector<std::uint8_t> FromListing(std::string_view text);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SMBIOS_TEXT_H_
