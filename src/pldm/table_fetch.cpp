#include "pldm/table_fetch.h"

#include "bytes/reader.h"
#include "bytes/writer.h"
#include "pldm/progress.h"

namespace mira::pldm {
namespace {

using callif::Command;
using callif::OneCall;
using callif::Target;

constexpr std::uint16_t kClass = 5;
constexpr Command kReadHeader = {kClass, 3};
constexpr Command kReadTable = {kClass, 4};

constexpr std::int32_t kError = -1;
constexpr std::int32_t kNotSupported = -2;

// Bytes of the transfer buffer that a record takes in addition to its chunk.
constexpr std::uint32_t kChunkOverhead = 92;

// A table that comes in more chunks than this is given up.
constexpr int kMostChunks = 0x10000;

ProgressCallback progress_callback = nullptr;
void* progress_context = nullptr;

Progress simple_callback = nullptr;

// One fetch: what is read, and where its bytes go.
class Fetch {
 public:
  Fetch(const Target& target, std::uint32_t key, Command command, unsigned table,
        std::unique_ptr<CACIInfo2Record>& record)
      : target_(target), key_(key), command_(command), table_(table), record_(record) {}

  // Without success the record is discarded, unless the machine was not asked at all, or no more.
  void Run() {
    if (!callif::IsAnnounced(target_, command_)) return;
    if (!record_) record_ = std::make_unique<CACIInfo2Record>();
    const bool complete = Probe() && (TakesChunks() ? ReadChunks() : ReadAtOnce());
    if (!complete && !cancelled_) record_.reset();
  }

  bool Cancelled() const { return cancelled_; }

 private:
  // However a read in chunks ends, also by an exception: the next table begins with its first byte.
  class ChunkScope {
   public:
    explicit ChunkScope(CACIInfo2Record& record) : record_(record) {}
    ~ChunkScope() {
      record_.Received = 0;
      record_.Assembly.reset();
    }
    ChunkScope(const ChunkScope&) = delete;
    ChunkScope& operator=(const ChunkScope&) = delete;

   private:
    CACIInfo2Record& record_;
  };

  // How many bytes there are.
  bool Probe() {
    std::uint32_t size = 0;
    OneCall call(target_, command_, 0, size, *record_);
    if (!call.Sent()) return false;
    if (!call.Succeeded() &&
        (call.CompletionCode() == kError || call.CompletionCode() == kNotSupported)) {
      return false;
    }
    bytes::Reader answer(call.Buffer().Record(), transport::kFixedRecordSize);
    required_ = answer.U32();
    return answer.Ok() && required_ <= transport::kMaxTransferSize;
  }

  std::uint32_t ChunkRoom() const {
    return target_.buffer_size > kChunkOverhead ? target_.buffer_size - kChunkOverhead : 0;
  }

  // Only tables of strings come in chunks; the others are read at once, whatever their size.
  bool TakesChunks() const {
    const TableDescriptor* const table = record_->CurrentDescriptor();
    return ChunkRoom() < required_ && table != nullptr &&
           (table->type == kStringData || table->type == kStringTable);
  }

  bool ReadChunks() {
    constexpr std::uint32_t kHeader = transport::kFixedRecordSize + sizeof(std::uint32_t);
    const ChunkScope scope(*record_);
    record_->Expected = required_;
    record_->Assembly = transport::MakeRecord(command_.cls, command_.select, required_ + kHeader);
    bool receives = true;
    for (int chunk = 0;
         receives && !cancelled_ && record_->Received < required_ && chunk < kMostChunks; ++chunk) {
      const std::uint32_t before = record_->Received;
      std::uint32_t size = ChunkRoom();
      OneCall call(target_, command_, 0, size, *record_);
      if (!call.Sent()) break;
      // A call that failed has brought nothing, whatever its data area holds.
      if (!call.Succeeded()) {
        bytes::Writer length_word(call.Buffer().Record(), transport::kFixedRecordSize);
        length_word.U32(0);
        if (!length_word.Ok()) break;
      }
      call.Buffer().ParseOutputBuffer(*record_);
      receives = record_->Received > before;
      if (receives) Report(record_->Received);
    }
    return record_->Received == required_;
  }

  bool ReadAtOnce() {
    std::uint32_t size = required_;
    OneCall call(target_, command_, key_, size, *record_);
    if (!call.Succeeded()) return false;
    call.Buffer().ParseOutputBuffer(*record_);
    Report(required_);
    return true;
  }

  void Report(std::uint32_t received) {
    if (table_ == 0) return;
    const auto tables = static_cast<unsigned>(record_->Descriptors.size());
    if (simple_callback != nullptr) simple_callback(table_, tables, received, required_);
    if (progress_callback != nullptr) {
      cancelled_ = progress_callback(progress_context, table_, tables, received, required_) !=
                   ProgressAnswer::kContinue;
    }
  }

  const Target& target_;
  std::uint32_t key_;
  Command command_;
  unsigned table_;  // counted from 1; 0 is the directory
  std::unique_ptr<CACIInfo2Record>& record_;
  std::uint32_t required_ = 0;
  bool cancelled_ = false;
};

// Fetches the tables that `wanted` chooses, until one of them fails. False when it was cancelled.
template <typename Wanted>
bool FetchEach(const Target& target, std::uint32_t key, std::unique_ptr<CACIInfo2Record>& record,
               Wanted wanted) {
  for (std::size_t i = 0; record && i < record->Descriptors.size(); ++i) {
    const TableDescriptor& table = record->Descriptors[i];
    if (!wanted(table) || table.index >= record->Descriptors.size()) continue;
    record->CurrentTable = table.index;
    Fetch fetch(target, key, kReadTable, static_cast<unsigned>(i + 1), record);
    fetch.Run();
    if (fetch.Cancelled()) return false;
  }
  return true;
}

}  // namespace

void SetProgress(ProgressCallback callback, void* context) noexcept {
  simple_callback = nullptr;
  progress_callback = callback;
  progress_context = context;
}

void SetProgress(Progress progress) noexcept {
  SetProgress(nullptr, nullptr);
  simple_callback = progress;
}

bool FetchTables(const Target& target, std::uint32_t key,
                 std::unique_ptr<CACIInfo2Record>& record) {
  Fetch(target, key, kReadHeader, 0, record).Run();
  const bool finished = FetchEach(
      target, key, record, [](const TableDescriptor& table) { return table.type != kStringData; });
  if (!finished) record.reset();
  return finished;
}

bool FetchStringData(const Target& target, std::uint32_t key, StringKind kind,
                     std::unique_ptr<CACIInfo2Record>& record) {
  const std::uint8_t other = kind == kHelpStrings ? kDisplayStrings : kHelpStrings;
  const bool finished = FetchEach(target, key, record, [other](const TableDescriptor& table) {
    return table.type == kStringData && table.string_kind != other;
  });
  if (!finished && record) {
    Tables& tables = record->Tables;
    (kind == kHelpStrings ? tables.help_strings : tables.display_strings).clear();
  }
  return finished;
}

}  // namespace mira::pldm
