#include "sim/firmware/handler.h"

#include <stdexcept>

namespace mira::sim {
namespace {

// Offsets in the record.
constexpr std::size_t kCompletion = 20;
constexpr std::size_t kKinds = 36;
constexpr std::size_t kLength = 40;
constexpr std::size_t kFixedSize = 44;

std::size_t PlaceOf(unsigned result) { return kCompletion + sizeof(std::uint32_t) * (result - 1); }

}  // namespace

Call::Call(std::span<std::uint8_t> record) {
  bytes::Reader in(record);
  class_ = in.U16();
  select_ = in.U16();
  for (std::uint32_t& arg : args_) arg = in.U32();
  in.Seek(kKinds);
  kinds_ = in.U32();
  in.Seek(kLength);
  const std::uint32_t length = in.U32();
  well_formed_ = in.Ok() && length >= kFixedSize && length <= record.size();
  record_ = record.first(well_formed_ ? length : 0);
}

std::optional<std::string_view> Call::Text(unsigned index) const {
  if (!IsOffset(index)) return std::nullopt;
  bytes::Reader in(record_, Arg(index));
  const std::string_view text = in.CString();
  if (!in.Ok()) return std::nullopt;
  return text;
}

std::optional<std::span<std::uint8_t>> Call::DataArea(unsigned index) const {
  if (!IsOffset(index)) return std::nullopt;
  bytes::Reader in(record_, Arg(index));
  const std::uint32_t length = in.U32();
  if (!in.Ok() || length > in.Left()) return std::nullopt;
  return record_.subspan(in.Offset(), length);
}

bool Call::AnswerData(bytes::ByteSpan data, unsigned index) {
  const auto area = DataArea(index);
  if (!area) {
    Complete(kBadFormat);
    return false;
  }
  bytes::Writer out(record_, Arg(index));
  out.U32(static_cast<std::uint32_t>(data.size()));
  const bool fits = data.size() <= area->size();
  if (fits) out.Bytes(data);
  if (out.Ok() && fits) return true;
  Complete(kTooSmall);
  return false;
}

void Call::Complete(std::int32_t completion) {
  SetResult(1, static_cast<std::uint32_t>(completion));
}

void Call::SetResult(unsigned index, std::uint32_t value) {
  bytes::Writer out(record_, PlaceOf(index));
  out.U32(value);
  if (!out.Ok()) throw std::logic_error("a record has no such result");
}

std::uint32_t Call::Result(unsigned index) const {
  bytes::Reader in(record_, PlaceOf(index));
  const std::uint32_t result = in.U32();
  if (!in.Ok()) throw std::logic_error("a record has no such result");
  return result;
}

void Call::HandOutKey(std::uint32_t key) {
  handed_out_key_ = key;
  SetResult(2, key);
}

std::int32_t Call::Completion() const { return static_cast<std::int32_t>(Result(1)); }

}  // namespace mira::sim
