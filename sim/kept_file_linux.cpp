#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "sim/kept_file.h"
#include "sim/state_document.h"

namespace mira::sim {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience{30};
constexpr mode_t kForThisUser = 0600;

// Locks of this kind are the process's, so its threads exclude each other by other means.
std::recursive_timed_mutex& ThisProcess() {
  static std::recursive_timed_mutex mutex;
  return mutex;
}

[[noreturn]] void Fail(const std::filesystem::path& file, const char* what) {
  const int reason = errno;
  throw StateError("'" + file.string() + "' " + what + ": " + std::strerror(reason) + ".");
}

// Closes the file at the end of a scope.
struct File {
  int number;
  ~File() {
    if (number >= 0) close(number);
  }
};

}  // namespace

struct FileLock::Handle {
  // Taken first and given back last.
  std::unique_lock<std::recursive_timed_mutex> process;
  File file{-1};
};

FileLock::FileLock(const std::filesystem::path& file) {
  std::filesystem::path name = file;
  name += ".lock";
  const auto fail_late = [&name] {
    throw StateError("Another program has kept '" + name.string() + "' locked for too long.");
  };
  handle_ = std::make_unique<Handle>();
  handle_->process = std::unique_lock(ThisProcess(), kPatience);
  if (!handle_->process) fail_late();
  handle_->file.number = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kForThisUser);
  const int number = handle_->file.number;
  if (number < 0) Fail(name, "cannot be opened");
  const Clock::time_point begin = Clock::now();
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  lock.l_len = 1;
  while (fcntl(number, F_SETLK, &lock) != 0) {
    if (errno != EACCES && errno != EAGAIN && errno != EINTR) {
      throw StateError("The drive of '" + name.string() +
                       "' has no locks, so no simulated machine can be kept there.");
    }
    if (Clock::now() - begin > kPatience) fail_late();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

FileLock::~FileLock() = default;

bytes::SecureString ReadKeptFile(const std::filesystem::path& file, std::size_t most) {
  const File in{open(file.c_str(), O_RDONLY | O_CLOEXEC)};
  if (in.number < 0 && errno == ENOENT) return {};
  struct stat status {};
  if (in.number < 0 || fstat(in.number, &status) != 0) Fail(file, "cannot be read");
  bytes::SecureString content;
  std::string& text = content.str();
  text.resize(std::min(most, static_cast<std::size_t>(status.st_size)));
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t size = read(in.number, text.data() + at, text.size() - at);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) Fail(file, "cannot be read");
    if (size == 0) text.resize(at);
    at += static_cast<std::size_t>(size);
  }
  return content;
}

}  // namespace mira::sim
