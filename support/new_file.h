#ifndef MIRA_SUPPORT_NEW_FILE_H_
#define MIRA_SUPPORT_NEW_FILE_H_

// The system's own side of WriteFileSafely.

#include <filesystem>
#include <string_view>
#include <system_error>

#include "support/files.h"

namespace mira::support {

// Writes a file that does not exist yet (file_exists when it does) and brings it to the disk. With
// `like`, a file that exists, it gets that one's permissions.
std::error_code WriteNewFile(const std::filesystem::path& file, std::string_view bytes,
                             FileAccess access, const std::filesystem::path& like);

// Writes into what exists and cannot be replaced.
std::error_code WriteInto(const std::filesystem::path& file, std::string_view bytes);

// Puts a file in the place of another, which may exist.
std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to);

// Differs between programs that run at the same time.
unsigned long ProcessNumber();

}  // namespace mira::support

#endif  // MIRA_SUPPORT_NEW_FILE_H_
