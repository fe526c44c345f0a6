#ifndef MIRA_SUPPORT_FILES_H_
#define MIRA_SUPPORT_FILES_H_

// Files that are there as a whole or not at all.
//
//   if (const std::error_code error = WriteFileSafely(path, text)) Report(error.message());

#include <filesystem>
#include <string_view>
#include <system_error>

namespace mira::support {

enum class FileAccess {
  kUsual,   // as the file was; of a new one, what the system gives to new files
  kPrivate  // readable and writable by the user alone (mode 0600; on Windows as the folder says)
};

// Writes the bytes beside the file, under a name of their own, brings them to the disk and moves
// them to the file's place, so that neither a failure nor a second writer leaves half a file. On
// failure the old file is untouched and nothing is left behind.
//
// A link stays a link: the file that it names is replaced. What is no regular file, such as a pipe
// or a device, cannot be replaced and is written into.
//
// The folder must exist. Keeps no copy of the bytes. May be called on any thread.
std::error_code WriteFileSafely(const std::filesystem::path& file, std::string_view bytes,
                                FileAccess access = FileAccess::kUsual);

}  // namespace mira::support

#endif  // MIRA_SUPPORT_FILES_H_
