#include <windows.h>

#include <algorithm>

#include "support/append.h"
#include "support/new_file.h"

namespace mira::support {
namespace {

std::error_code LastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

// Writes everything and closes the handle.
std::error_code WriteAndClose(HANDLE handle, std::string_view bytes, bool to_disk) {
  constexpr std::size_t kLargestStep = 1 << 20;
  std::error_code error;
  while (!bytes.empty() && !error) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kLargestStep));
    if (WriteFile(handle, bytes.data(), size, &written, nullptr)) {
      bytes.remove_prefix(written);
    } else {
      error = LastError();
    }
  }
  if (!error && to_disk && !FlushFileBuffers(handle)) error = LastError();
  if (!CloseHandle(handle) && !error) error = LastError();
  return error;
}

}  // namespace

std::error_code WriteNewFile(const std::filesystem::path& file, std::string_view bytes, FileAccess,
                             const std::filesystem::path&) {
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle != INVALID_HANDLE_VALUE) return WriteAndClose(handle, bytes, true);
  return GetLastError() == ERROR_FILE_EXISTS ? std::make_error_code(std::errc::file_exists)
                                             : LastError();
}

std::error_code WriteInto(const std::filesystem::path& file, std::string_view bytes) {
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  return handle == INVALID_HANDLE_VALUE ? LastError() : WriteAndClose(handle, bytes, false);
}

std::error_code AppendToDisk(const std::filesystem::path& file, std::string_view bytes) {
  const HANDLE handle = CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  return handle == INVALID_HANDLE_VALUE ? LastError() : WriteAndClose(handle, bytes, true);
}

std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  // Whoever reads the old file just now, such as a scanner, keeps it from being replaced.
  constexpr int kTries = 50;
  constexpr DWORD kPause = 20;  // milliseconds
  for (int i = 0;; ++i) {
    if (MoveFileExW(from.c_str(), to.c_str(), kFlags)) return {};
    const std::error_code error = LastError();
    const bool is_in_use = error.value() == static_cast<int>(ERROR_SHARING_VIOLATION) ||
                           error.value() == static_cast<int>(ERROR_ACCESS_DENIED);
    if (!is_in_use || i == kTries) return error;
    Sleep(kPause);
  }
}

unsigned long ProcessNumber() { return GetCurrentProcessId(); }

}  // namespace mira::support
