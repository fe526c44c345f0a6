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

// What a record with a chunk needs of the transfer buffer beside the chunk.
constexpr std::uint32_t kChunkOverhead = 92;

// A machine whose table trickles in more pieces than this is given up.
constexpr int kMostChunks = 0x10000;

Progress told = nullptr;

// One fetch: what is read, and where its bytes go.
class Fetch {
 public:
  Fetch(const Target& target, std::uint32_t key, Command command, unsigned table,
        std::unique_ptr<CACIInfo2Record>& record)
      : target_(target), key_(key), command_(command), table_(table), record_(record) {}

  // Without success the record is discarded, unless the machine was not asked at all.
  void Run() {
    if (!target_.calling.IsCommandSupported(kClass)) return;
    if (!record_) record_ = std::make_unique<CACIInfo2Record>();
    EndChunks();  // a read that an exception ended may have left some
    if (!Probe() || !(TakesChunks() ? ReadChunks() : ReadAtOnce())) record_.reset();
  }

 private:
  // How many bytes there are.
  bool Probe() {
    std::uint32_t size = 0;
    OneCall call(target_, command_, 0, size, *record_);
    if (!call.Sent()) return false;
    if (!call.Succeeded() &&
        (call.CompletionCode() == kError || call.CompletionCode() == kNotSupported)) {
      return false;
    }
    required_ = bytes::Reader(call.Buffer().Record(), transport::kFixedRecordSize).U32();
    return required_ <= transport::kMaxTransferSize;
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
    record_->Expected = required_;
    record_->Assembly = transport::MakeRecord(command_.cls, command_.select, required_ + kHeader);
    bool receives = true;
    for (int chunk = 0; receives && record_->Received < required_ && chunk < kMostChunks; ++chunk) {
      const std::uint32_t before = record_->Received;
      std::uint32_t size = ChunkRoom();
      OneCall call(target_, command_, 0, size, *record_);
      if (!call.Sent()) break;
      // A call that failed has brought nothing, whatever its data area holds.
      if (!call.Succeeded()) {
        bytes::Writer(call.Buffer().Record(), transport::kFixedRecordSize).U32(0);
      }
      call.Buffer().ParseOutputBuffer(*record_);
      receives = record_->Received > before;
      if (receives) Tell(record_->Received);
    }
    const bool complete = record_->Received == required_;
    EndChunks();
    return complete;
  }

  void EndChunks() {
    record_->Received = 0;
    record_->Assembly.reset();
  }

  bool ReadAtOnce() {
    std::uint32_t size = required_;
    OneCall call(target_, command_, key_, size, *record_);
    if (!call.Succeeded()) return false;
    call.Buffer().ParseOutputBuffer(*record_);
    Tell(required_);
    return true;
  }

  void Tell(std::uint32_t received) const {
    if (told == nullptr || table_ == 0) return;
    told(table_, static_cast<unsigned>(record_->Descriptors.size()), received, required_);
  }

  const Target& target_;
  std::uint32_t key_;
  Command command_;
  unsigned table_;  // counted from 1; 0 is the directory
  std::unique_ptr<CACIInfo2Record>& record_;
  std::uint32_t required_ = 0;
};

// Fetches the tables that `wanted` chooses, until one of them fails.
template <typename Wanted>
void FetchEach(const Target& target, std::uint32_t key, std::unique_ptr<CACIInfo2Record>& record,
               Wanted wanted) {
  for (std::size_t i = 0; record && i < record->Descriptors.size(); ++i) {
    const TableDescriptor& table = record->Descriptors[i];
    if (!wanted(table) || table.index >= record->Descriptors.size()) continue;
    record->CurrentTable = table.index;
    Fetch(target, key, kReadTable, static_cast<unsigned>(i + 1), record).Run();
  }
}

}  // namespace

void SetProgress(Progress progress) noexcept { told = progress; }

void FetchTables(const Target& target, std::uint32_t key,
                 std::unique_ptr<CACIInfo2Record>& record) {
  Fetch(target, key, kReadHeader, 0, record).Run();
  FetchEach(target, key, record,
            [](const TableDescriptor& table) { return table.type != kStringData; });
}

void FetchStringData(const Target& target, std::uint32_t key, StringKind kind,
                     std::unique_ptr<CACIInfo2Record>& record) {
  const std::uint8_t other = kind == kHelpStrings ? kDisplayStrings : kHelpStrings;
  FetchEach(target, key, record, [other](const TableDescriptor& table) {
    return table.type == kStringData && table.string_kind != other;
  });
}

}  // namespace mira::pldm
