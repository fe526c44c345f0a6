#include "support/files.h"

#include <atomic>
#include <string>

#include "support/new_file.h"

namespace mira::support {
namespace {

// A name beside the file that no other writer uses.
std::filesystem::path NameBeside(const std::filesystem::path& file) {
  static std::atomic<unsigned> count{0};
  std::filesystem::path beside = file;
  beside += '.' + std::to_string(ProcessNumber()) + '-' + std::to_string(++count) + ".new";
  return beside;
}

// The file that a link names in the end, whether it exists or not.
std::filesystem::path Followed(std::filesystem::path file, std::error_code& error) {
  constexpr int kMostLinks = 40;
  for (int i = 0; i < kMostLinks; ++i) {
    std::error_code ignored;
    if (!std::filesystem::is_symlink(file, ignored)) return file;
    const std::filesystem::path next = std::filesystem::read_symlink(file, error);
    if (error) return file;
    file = file.parent_path() / next;
  }
  error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  return file;
}

}  // namespace

std::error_code WriteFileSafely(const std::filesystem::path& file, std::string_view bytes,
                                FileAccess access) {
  std::error_code error;
  const std::filesystem::path target = Followed(file, error);
  if (error) return error;
  const bool exists = std::filesystem::exists(target, error);
  if (std::filesystem::is_directory(target, error)) {
    return std::make_error_code(std::errc::is_a_directory);
  }
  if (exists && !std::filesystem::is_regular_file(target, error)) return WriteInto(target, bytes);

  // A program that ended early may have left such a name behind.
  constexpr int kTries = 100;
  std::filesystem::path beside;
  for (int i = 0; i < kTries; ++i) {
    beside = NameBeside(target);
    error = WriteNewFile(beside, bytes, access, exists ? target : std::filesystem::path());
    if (error != std::errc::file_exists) break;
  }
  if (error == std::errc::file_exists) return error;
  if (!error) error = MoveOver(beside, target);
  if (error) {
    std::error_code ignored;
    std::filesystem::remove(beside, ignored);
  }
  return error;
}

}  // namespace mira::support
