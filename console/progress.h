#ifndef MIRA_CONSOLE_PROGRESS_H_
#define MIRA_CONSOLE_PROGRESS_H_

// How far a long command is, on the terminal only: one line that is overwritten, and gone at the
// end.

#include <cstddef>
#include <string>

#include "console/command.h"

namespace mira::console {

class Progress {
 public:
  // From now on, the library's fetching of attribute tables shows, too. One at a time.
  explicit Progress(Context& context);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // "Reading attributes: 40 %"
  void Show(const std::string& what, std::size_t done, std::size_t total);
  // Removes the line, for other output.
  void Clear();

 private:
  bool is_shown_;
  std::string line_;
};

}  // namespace mira::console

#endif  // MIRA_CONSOLE_PROGRESS_H_
