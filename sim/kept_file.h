#ifndef MIRA_SIM_KEPT_FILE_H_
#define MIRA_SIM_KEPT_FILE_H_

// A file that programs share, whatever system they were built for: a lock beside it that native
// programs and those under Wine respect alike. It is written by support::WriteFileSafely.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

#include "bytes/secure.h"

namespace mira::sim {

// Holds the lock for a scope. It is a file of its own, "NAME.lock", that is never renamed or
// removed. Waits while another program or thread has it; throws StateError when that takes longer
// than half a minute, or when the drive has no locks.
class FileLock {
 public:
  explicit FileLock(const std::filesystem::path& file);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

// The file's first bytes, `most` at most; empty when there is no file. Throws StateError when it
// cannot be read.
bytes::SecureString ReadKeptFile(const std::filesystem::path& file, std::size_t most);

// Removes what programs that were ended while they wrote have left beside the file. The caller has
// the lock.
void RemoveRemains(const std::filesystem::path& file);

// Files are told from each other by this text: no two calls give the same one.
std::string UniqueText();

}  // namespace mira::sim

#endif  // MIRA_SIM_KEPT_FILE_H_
