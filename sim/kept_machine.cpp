#include "sim/kept_machine.h"

#include <system_error>

#include "sim/kept_file.h"
#include "support/files.h"

namespace mira::sim {
namespace {

constexpr std::size_t kLargest = 64 * 1024 * 1024;
// The file begins with a text that no other state has, so that a look at its first bytes tells
// whether another program has changed the machine.
constexpr std::string_view kHead = "{\n  \"stamp\": \"";
constexpr std::size_t kHeadSize = 128;

std::string StampOf(std::string_view content) {
  if (!content.starts_with(kHead)) return {};
  const std::string_view rest = content.substr(kHead.size());
  return std::string(rest.substr(0, rest.find('"')));
}

std::filesystem::path Beside(std::filesystem::path file, const char* extension) {
  return file.replace_extension(extension);
}

// Writes the journal at the end of a transaction, whatever became of it.
struct Flushed {
  JournalFile& journal;
  ~Flushed() {
    try {
      journal.Flush();
    } catch (const std::exception&) {
      return;
    }
  }
};

}  // namespace

KeptMachine::KeptMachine(Machine& machine, std::filesystem::path file)
    : machine_(machine),
      file_(std::move(file)),
      faults_(Beside(file_, ".faults")),
      journal_(Beside(file_, ".journal")) {
  std::error_code error;
  if (file_.has_parent_path()) std::filesystem::create_directories(file_.parent_path(), error);
  const FileLock lock(file_);
  RemoveRemains(file_);
  first_ = machine_.StateTree();
  last_ = first_;
  Refresh();
  machine_.SetStorage(this);
  machine_.GetFaults().SetSource(&faults_);
}

KeptMachine::~KeptMachine() {
  machine_.GetFaults().SetSource(nullptr);
  machine_.SetStorage(nullptr);
  FlushJournal();
}

void KeptMachine::FlushJournal() {
  if (!journal_.IsPending()) return;
  try {
    const FileLock lock(file_);
    journal_.Flush();
  } catch (const std::exception&) {
    return;
  }
}

// What succeeds is written with the next call; what fails may be the last that the program does.
void KeptMachine::Note(const OperationEntry& entry) {
  journal_.Note(entry);
  if (entry.result < 0) FlushJournal();
}

std::vector<Node> KeptMachine::Journal() {
  const FileLock lock(file_);
  journal_.Flush();
  return journal_.Read();
}

void KeptMachine::ClearJournal() {
  const FileLock lock(file_);
  journal_.Clear();
}

void KeptMachine::Refresh() {
  const bytes::SecureString head = ReadKeptFile(file_, kHeadSize);
  if (head.empty()) {
    std::error_code error;
    if (std::filesystem::exists(file_, error)) throw StateError("it is empty");
    // There is no file, or no longer.
    if (!stamp_.empty()) machine_.TakeState(first_);
    last_ = first_;
    stamp_.clear();
    return;
  }
  const std::string stamp = StampOf(head.str());
  if (!stamp.empty() && stamp == stamp_) return;
  Node state = ParseJson(ReadKeptFile(file_, kLargest).str());
  if (state.Find("stamp") == nullptr) throw StateError("it has no stamp");
  std::erase_if(state.Items(), [](const Node& member) { return member.Name() == "stamp"; });
  machine_.TakeState(state);
  last_ = std::move(state);
  stamp_ = stamp;
}

void KeptMachine::Write(const Node& state) {
  const std::string stamp = UniqueText();
  Node document;
  document.Become(Node::Kind::kObject);
  document.Add("stamp").SetText(stamp);
  document.Items().insert(document.Items().end(), state.Items().begin(), state.Items().end());
  const bytes::SecureString text = WriteJson(document);
  if (const std::error_code error =
          support::WriteFileSafely(file_, text.str(), support::FileAccess::kPrivate)) {
    throw StateError("it cannot be written: " + error.message());
  }
  stamp_ = stamp;
  last_ = state;
}

void KeptMachine::Transact(const std::function<void()>& work) {
  problem_.clear();
  faults_.ForgetProblem();
  try {
    const FileLock lock(file_);
    const Flushed flushed{journal_};
    Refresh();
    try {
      work();
      const Node state = machine_.StateTree();
      if (!(state == last_)) Write(state);
    } catch (...) {
      machine_.TakeState(last_);
      throw;
    }
  } catch (const std::exception& error) {
    problem_ = error.what();
    throw;
  }
}

bool KeptMachine::IsThere(const std::filesystem::path& file) {
  std::error_code error;
  return std::filesystem::exists(file, error) ||
         std::filesystem::exists(Beside(file, ".faults"), error) ||
         std::filesystem::exists(Beside(file, ".journal"), error);
}

void KeptMachine::Reset(const std::filesystem::path& file) {
  if (!IsThere(file)) return;
  FaultFile(Beside(file, ".faults")).Clear();
  const FileLock lock(file);
  RemoveRemains(file);
  JournalFile(Beside(file, ".journal")).Clear();
  std::error_code error;
  std::filesystem::remove(file, error);
  if (error) throw StateError("The machine's file could not be removed.");
}

}  // namespace mira::sim
