#include <windows.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

#include "sim/kept_file.h"
#include "sim/state_document.h"

namespace mira::sim {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience{30};
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// The path for people, in UTF-8.
std::string Shown(const std::filesystem::path& file) {
  const std::u8string text = file.u8string();
  return {text.begin(), text.end()};
}

[[noreturn]] void Fail(const std::filesystem::path& file, const char* what, DWORD reason) {
  throw StateError("'" + Shown(file) + "' " + what + ": system error " + std::to_string(reason) +
                   ".");
}

// A file that another program has open for a moment, such as a virus scanner.
bool IsForAMoment(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
         error == ERROR_LOCK_VIOLATION;
}

// Tries again for a while what fails because of other programs. The last error is that of the last
// attempt.
template <typename Attempt>
bool Insist(Attempt attempt) {
  constexpr std::chrono::seconds kAWhile{3};
  const Clock::time_point begin = Clock::now();
  while (!attempt()) {
    const DWORD error = GetLastError();
    if (!IsForAMoment(error) || Clock::now() - begin > kAWhile) {
      SetLastError(error);
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

struct File {
  HANDLE handle;
  ~File() { Close(); }
  void Close() {
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    handle = INVALID_HANDLE_VALUE;
  }
};

}  // namespace

struct FileLock::Handle {
  File file;
};

FileLock::FileLock(const std::filesystem::path& file) {
  std::filesystem::path name = file;
  name += ".lock";
  handle_ = std::make_unique<Handle>(Handle{{INVALID_HANDLE_VALUE}});
  HANDLE& handle = handle_->file.handle;
  const bool is_open = Insist([&] {
    handle = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr,
                         OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return handle != INVALID_HANDLE_VALUE;
  });
  if (!is_open) Fail(name, "cannot be opened", GetLastError());
  const Clock::time_point begin = Clock::now();
  OVERLAPPED first_byte{};
  while (!LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                     &first_byte)) {
    const DWORD error = GetLastError();
    if (error != ERROR_LOCK_VIOLATION && error != ERROR_IO_PENDING &&
        error != ERROR_SHARING_VIOLATION) {
      throw StateError("The drive of '" + Shown(name) +
                       "' has no locks, so no simulated machine can be kept there.");
    }
    if (Clock::now() - begin > kPatience) {
      throw StateError("Another program has kept '" + Shown(name) + "' locked for too long.");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

FileLock::~FileLock() {
  OVERLAPPED first_byte{};
  UnlockFileEx(handle_->file.handle, 0, 1, 0, &first_byte);
}

bytes::SecureString ReadKeptFile(const std::filesystem::path& file, std::size_t most) {
  File in{INVALID_HANDLE_VALUE};
  const bool is_open = Insist([&] {
    in.handle = CreateFileW(file.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
    return in.handle != INVALID_HANDLE_VALUE;
  });
  const DWORD error = is_open ? ERROR_SUCCESS : GetLastError();
  if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return {};
  LARGE_INTEGER size{};
  if (!is_open) Fail(file, "cannot be read", error);
  if (!GetFileSizeEx(in.handle, &size)) Fail(file, "cannot be read", GetLastError());
  bytes::SecureString content;
  std::string& text = content.str();
  text.resize(static_cast<std::size_t>(
      std::min<unsigned long long>(most, static_cast<unsigned long long>(size.QuadPart))));
  DWORD read = 0;
  if (!ReadFile(in.handle, text.data(), static_cast<DWORD>(text.size()), &read, nullptr)) {
    Fail(file, "cannot be read", GetLastError());
  }
  text.resize(read);
  return content;
}

}  // namespace mira::sim
