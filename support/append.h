#ifndef MIRA_SUPPORT_APPEND_H_
#define MIRA_SUPPORT_APPEND_H_

#include <filesystem>
#include <string_view>
#include <system_error>

namespace mira::support {

// Writes the bytes behind a file's end and brings them to the disk. A new file is for the user
// alone (mode 0600; on Windows as the folder says).
std::error_code AppendToDisk(const std::filesystem::path& file, std::string_view bytes);

}  // namespace mira::support

#endif  // MIRA_SUPPORT_APPEND_H_
