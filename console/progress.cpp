#include "console/progress.h"

#include "console/terminal.h"
#include "pldm/progress.h"

namespace mira::console {
namespace {

Progress* current = nullptr;

void ShowFetch(unsigned table, unsigned tables, std::uint32_t received, std::uint32_t total) {
  if (current == nullptr) return;
  current->Show(
      "Reading attribute table " + std::to_string(table) + " of " + std::to_string(tables),
      received, total);
}

}  // namespace

Progress::Progress(Context& context) : is_shown_(context.IsInteractive()) {
  if (!is_shown_) return;
  current = this;
  pldm::SetProgress(ShowFetch);
}

Progress::~Progress() {
  if (!is_shown_) return;
  pldm::SetProgress(nullptr);
  current = nullptr;
  Clear();
}

void Progress::Show(const std::string& what, std::size_t done, std::size_t total) {
  if (!is_shown_ || total == 0) return;
  const std::uint64_t percent = std::uint64_t{done} * 100 / total;
  const std::string line = what + ": " + std::to_string(percent) + " %";
  if (line == line_) return;
  const std::size_t rest = line_.size() > line.size() ? line_.size() - line.size() : 0;
  WriteToTerminal("\r" + line + std::string(rest, ' '));
  line_ = line;
}

void Progress::Clear() {
  if (line_.empty()) return;
  WriteToTerminal("\r" + std::string(line_.size(), ' ') + "\r");
  line_.clear();
}

}  // namespace mira::console
