#ifndef MIRA_SIM_FIRMWARE_HANDLER_H_
#define MIRA_SIM_FIRMWARE_HANDLER_H_

// The firmware model: one handler per command class, each with the state that it keeps. A handler
// sees a call as the firmware does: class, select, four argument words, and the record's bytes for
// arguments that are offsets.
//
//   void TagHandler::Handle(Call& call) {
//     if (call.Select() != 0) return call.Complete(kNotSupported);
//     call.SetResult(2, PackTag(...));
//   }

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "bytes/reader.h"
#include "bytes/writer.h"

namespace mira::sim {

// Completion codes (cbRES1).
inline constexpr std::int32_t kSuccess = 0;
inline constexpr std::int32_t kError = -1;
inline constexpr std::int32_t kNotSupported = -2;
inline constexpr std::int32_t kNotExecuted = -3;
inline constexpr std::int32_t kBadFormat = -5;
inline constexpr std::int32_t kTooSmall = -6;
inline constexpr std::int32_t kInvalidKey = -7;

// One call. The record's length word bounds what the call may touch.
class Call {
 public:
  // `record` is the transfer array: the call reads it and writes its answer into it.
  explicit Call(std::span<std::uint8_t> record);

  // False when the record's length word does not fit the array.
  bool WellFormed() const { return well_formed_; }

  std::uint16_t Class() const { return class_; }
  std::uint16_t Select() const { return select_; }
  // Argument word 1 to 4.
  std::uint32_t Arg(unsigned index) const { return args_[index - 1]; }
  // Whether argument word 1 to 4 is marked as an offset into the record.
  bool IsOffset(unsigned index) const { return (kinds_ >> (8 * (index - 1)) & 0xFF) == 1; }

  // The call's record, from its first byte to the length that it states.
  std::span<std::uint8_t> Record() const { return record_; }
  // The NUL-terminated text at the offset in argument word `index`, where it stands in the record;
  // nothing when the word is no offset, or the text leaves the record.
  std::optional<std::string_view> Text(unsigned index) const;
  // The data area at the offset in argument word `index`: a 32-bit length, then that many bytes.
  // Gives the bytes behind the length word; nothing when the argument is no offset, or the area
  // leaves the record.
  std::optional<std::span<std::uint8_t>> DataArea(unsigned index = 1) const;
  // Answers with a data area: the length word and the bytes. When the area offered is too small,
  // only the length that is needed is written and the call completes with kTooSmall. False then,
  // and when there is no area.
  bool AnswerData(bytes::ByteSpan data, unsigned index = 1);

  void Complete(std::int32_t completion);
  // Result word 2 to 4.
  void SetResult(unsigned index, std::uint32_t value);
  std::uint32_t Result(unsigned index) const;
  std::int32_t Completion() const;

  // Answers a security key in result word 2; the journal then masks it here and wherever it comes
  // back.
  void HandOutKey(std::uint32_t key);
  std::uint32_t HandedOutKey() const { return handed_out_key_; }

 private:
  std::span<std::uint8_t> record_;
  bool well_formed_ = false;
  std::uint16_t class_ = 0;
  std::uint16_t select_ = 0;
  std::uint32_t args_[4] = {};
  std::uint32_t kinds_ = 0;
  std::uint32_t handed_out_key_ = 0;
};

class Fields;

class CommandHandler {
 public:
  virtual ~CommandHandler() = default;
  // Executes the call; a call that completes nothing has succeeded.
  virtual void Handle(Call& call) = 0;
  // The machine restarts: pending becomes current, counters start again.
  virtual void Reboot() {}
  // Declares what the handler keeps beyond a call, each value in a group of the handler's own.
  // Handlers that share a value may both declare it.
  virtual void Keep(Fields&) {}
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_HANDLER_H_
