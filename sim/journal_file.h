#ifndef MIRA_SIM_JOURNAL_FILE_H_
#define MIRA_SIM_JOURNAL_FILE_H_

// What went by on a machine, in a file that programs share: an entry a line, the newest at the end.
// Of a file that grows beyond its bound the older half is forgotten. Nothing is ever restored from
// it.
//
//   JournalFile journal("laptop.journal");
//   journal.Note(entry);
//   journal.Flush();

#include <filesystem>
#include <string>
#include <vector>

#include "sim/journal.h"
#include "sim/state_document.h"

namespace mira::sim {

// Whoever calls has the lock of the machine's file, except for Note.
class JournalFile {
 public:
  static constexpr std::size_t kBound = 1024 * 1024;

  explicit JournalFile(std::filesystem::path file) : file_(std::move(file)) {}

  void Note(const JournalEntry& entry);
  void Note(const OperationEntry& entry);
  // Whether there is something that the file does not have.
  bool IsPending() const { return !pending_.empty(); }
  // Writes what was noted. A journal that cannot be written is none: nothing fails for it.
  void Flush();
  // Line by line; what a program that was ended has written in part is left out.
  std::vector<Node> Read() const;
  void Clear();

 private:
  std::filesystem::path file_;
  std::string pending_;
};

// As it stands in the file.
Node ToNode(const JournalEntry& entry);
Node ToNode(const OperationEntry& entry);

}  // namespace mira::sim

#endif  // MIRA_SIM_JOURNAL_FILE_H_
