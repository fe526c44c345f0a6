#include "sim/kept_file.h"

#include <atomic>
#include <chrono>
#include <string>
#include <system_error>
#include <vector>

#include "support/new_file.h"

namespace mira::sim {
namespace {

constexpr std::string_view kNew = ".new";

}  // namespace

std::string UniqueText() {
  static std::atomic<unsigned> count{0};
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto ticks = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
  return std::to_string(support::ProcessNumber()) + "-" + std::to_string(ticks) + "-" +
         std::to_string(++count);
}

void RemoveRemains(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
  const std::filesystem::path::string_type name = file.filename().native();
  std::vector<std::filesystem::path> remains;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::filesystem::path candidate = entry->path().filename();
    const auto& text = candidate.native();
    if (text.size() > name.size() && text.compare(0, name.size(), name) == 0 &&
        candidate.extension() == kNew) {
      remains.push_back(entry->path());
    }
  }
  for (const auto& remain : remains) std::filesystem::remove(remain, error);
}

}  // namespace mira::sim
