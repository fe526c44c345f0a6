#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "support/append.h"
#include "support/new_file.h"

namespace mira::support {
namespace {

std::error_code LastError() { return {errno, std::generic_category()}; }

// Writes everything and closes the descriptor.
std::error_code WriteAndClose(int descriptor, std::string_view bytes, bool to_disk) {
  std::error_code error;
  while (!bytes.empty() && !error) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      error = LastError();
    }
  }
  // Some file systems have no such thing.
  if (!error && to_disk && ::fsync(descriptor) != 0 && errno != EINVAL) error = LastError();
  if (::close(descriptor) != 0 && !error) error = LastError();
  return error;
}

// A new name outlasts a loss of power, on the file systems that can see to it.
void FolderToDisk(const std::filesystem::path& folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  static_cast<void>(::fsync(descriptor));
  ::close(descriptor);
}

}  // namespace

std::error_code WriteNewFile(const std::filesystem::path& file, std::string_view bytes,
                             FileAccess access, const std::filesystem::path& like) {
  constexpr mode_t kPrivate = S_IRUSR | S_IWUSR;
  constexpr mode_t kUsual = kPrivate | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  const mode_t mode = access == FileAccess::kPrivate ? kPrivate : kUsual;
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  if (descriptor < 0) return LastError();
  struct stat old {};
  if (access == FileAccess::kUsual && !like.empty() && ::stat(like.c_str(), &old) == 0) {
    constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
    if (::fchmod(descriptor, old.st_mode & kPermissions) != 0) {
      const std::error_code error = LastError();
      ::close(descriptor);
      return error;
    }
  }
  return WriteAndClose(descriptor, bytes, true);
}

std::error_code WriteInto(const std::filesystem::path& file, std::string_view bytes) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CLOEXEC);
  return descriptor < 0 ? LastError() : WriteAndClose(descriptor, bytes, false);
}

std::error_code AppendToDisk(const std::filesystem::path& file, std::string_view bytes) {
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC;
  const int descriptor = ::open(file.c_str(), kFlags, S_IRUSR | S_IWUSR);
  return descriptor < 0 ? LastError() : WriteAndClose(descriptor, bytes, true);
}

std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code error;
  std::filesystem::rename(from, to, error);
  if (!error) FolderToDisk(to.has_parent_path() ? to.parent_path() : ".");
  return error;
}

unsigned long ProcessNumber() { return static_cast<unsigned long>(::getpid()); }

}  // namespace mira::support
