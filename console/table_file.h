#ifndef MIRA_CONSOLE_TABLE_FILE_H_
#define MIRA_CONSOLE_TABLE_FILE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace mira::console {

// An SMBIOS table from a file, in the form of the firmware table service (8-byte header, then the
// structures). Takes that form itself; a dump that begins with an entry point ("_SM_", "_SM3_",
// DSP0134 5.2) with the table where the entry point says, or at offset 32; the bare table; and each
// of them in hexadecimal text. Throws CommandError.
std::vector<std::uint8_t> LoadTableFile(const std::string& path);

// The same for bytes at hand; empty when they are none of these forms.
std::vector<std::uint8_t> NormalizeTable(std::vector<std::uint8_t> bytes);

// A table in the form of the firmware table service from a bare one. Version 0.0 is an unknown one.
std::vector<std::uint8_t> WithHeader(std::uint8_t major, std::uint8_t minor, std::size_t length,
                                     const std::vector<std::uint8_t>& table);

// Whether the header states more bytes than follow it.
bool IsCutShort(const std::vector<std::uint8_t>& table);

void SaveTableFile(const std::string& path, const std::vector<std::uint8_t>& table);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_TABLE_FILE_H_
