#include "sim/firmware/history.h"

#include <algorithm>
#include <iterator>

#include "bytes/secure.h"
#include "bytes/writer.h"

namespace mira::sim {
namespace {

constexpr std::string_view kMark = "MIRASIM1";

struct Commands {
  std::uint16_t cls;
  std::uint16_t first_select;
  std::uint16_t last_select;
};
constexpr Commands kChanging[] = {
    {1, 0, 2},    {2, 1, 1},    {3, 1, 1},   {3, 5, 5},  {3, 7, 7},  {3, 12, 13}, {5, 6, 6},
    {6, 5, 5},    {7, 5, 9},    {8, 19, 19}, {9, 4, 5},  {10, 4, 5}, {10, 7, 9},  {10, 13, 14},
    {10, 16, 16}, {10, 30, 31}, {11, 1, 1},  {11, 3, 3}, {11, 5, 5}, {11, 7, 7},  {11, 9, 9},
    {12, 4, 5},   {17, 14, 14}, {20, 1, 1},  {21, 2, 2}, {23, 1, 1}, {26, 1, 1},
};

void Put(std::vector<std::uint8_t>& out, bytes::ByteSpan item) {
  const std::size_t at = out.size();
  out.resize(at + sizeof(std::uint32_t) + item.size());
  bytes::Writer writer(out, at);
  writer.U32(static_cast<std::uint32_t>(item.size()));
  writer.Bytes(item);
}

bytes::ByteSpan Get(bytes::Reader& in) {
  const std::size_t size = in.U32();
  return in.Take(size);
}

}  // namespace

bool History::Changes(bytes::ByteSpan record) {
  bytes::Reader in(record);
  const std::uint16_t cls = in.U16();
  const std::uint16_t select = in.U16();
  // Attributes that are passwords are checked and not kept: nor is their text here.
  constexpr std::size_t kAttributeType = 72;
  constexpr std::uint8_t kPassword = 2;
  in.Seek(kAttributeType);
  if (cls == 5 && in.U8() == kPassword) return false;
  return std::any_of(std::begin(kChanging), std::end(kChanging), [&](const Commands& row) {
    return row.cls == cls && select >= row.first_select && select <= row.last_select;
  });
}

History::~History() {
  for (Event& event : events_) bytes::Wipe(event.data(), event.size());
}

std::optional<History::Event> History::Outcome(Event record, std::int32_t completion) {
  if (completion == 0) return record;
  // Which of the texts behind the fixed part was wrong: where it begins is said by an argument word
  // (0: by none, it is the first), where it ends by another (0: with the record).
  struct WrongText {
    std::uint16_t select;
    std::int32_t completion;
    unsigned from_argument;
    unsigned to_argument;
  };
  static constexpr WrongText kWrong[] = {
      {4, 2, 0, 0},  {5, 2, 0, 0},  {7, 2, 0, 0},  {13, 3, 0, 3}, {30, 3, 0, 3}, {14, 3, 0, 4},
      {31, 3, 0, 4}, {13, 4, 3, 0}, {30, 4, 3, 0}, {14, 4, 4, 0}, {31, 4, 4, 0},
  };
  constexpr std::size_t kFixedSize = 44;
  constexpr std::size_t kKinds = 36;
  bytes::Reader in(record);
  const std::uint16_t cls = in.U16();
  const std::uint16_t select = in.U16();
  const auto* const wrong = std::find_if(
      std::begin(kWrong), std::end(kWrong),
      [&](const WrongText& row) { return row.select == select && row.completion == completion; });
  const bool is_password = cls == 9 || cls == 10 || cls == 12;
  if (!is_password || wrong == std::end(kWrong)) {
    bytes::Wipe(record.data(), record.size());
    return std::nullopt;
  }
  const auto offset = [&](unsigned argument, std::size_t otherwise) {
    if (argument == 0 || bytes::Reader(record, kKinds + argument - 1).U8() != 1) return otherwise;
    return std::min<std::size_t>(bytes::Reader(record, 4 * argument).U32(), record.size());
  };
  const std::size_t end = offset(wrong->to_argument, record.size());
  // Any other text of that length is wrong as well.
  constexpr std::uint8_t kAnything = 0x7F;
  for (std::size_t i = offset(wrong->from_argument, kFixedSize); i < end; ++i) {
    if (record[i] != 0) record[i] = kAnything;
  }
  return record;
}

std::vector<std::uint8_t> History::Save(std::string_view profile) const {
  std::vector<std::uint8_t> saved(kMark.begin(), kMark.end());
  Put(saved, bytes::AsBytes(profile));
  for (const Event& event : events_) Put(saved, event);
  return saved;
}

std::optional<History> History::Load(bytes::ByteSpan saved, std::string_view profile) {
  bytes::Reader in(saved);
  if (bytes::AsText(in.Take(kMark.size())) != kMark) return std::nullopt;
  if (bytes::AsText(Get(in)) != profile) return std::nullopt;
  History history;
  while (in.Left() > 0) {
    const bytes::ByteSpan event = Get(in);
    history.Add(Event(event.begin(), event.end()));
  }
  if (!in.Ok()) return std::nullopt;
  return history;
}

}  // namespace mira::sim
