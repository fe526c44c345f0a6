#include "devicepath/load_option.h"

#include <limits>

#include "bytes/writer.h"
#include "devicepath/nodes.h"

namespace mira::devicepath {
namespace {

using bytes::ByteSpan;
using bytes::Reader;

constexpr std::size_t kHeader = sizeof(std::uint32_t) + sizeof(std::uint16_t);

// The option that begins at `start`.
std::optional<LoadOption> Decode(ByteSpan bytes, std::size_t start, Problem& problem) {
  LoadOption option;
  Reader in(bytes, start);
  option.attributes = in.U32();
  const std::size_t list_size = in.U16();
  if (!in.Ok()) {
    problem = {start, "The bytes end within the attributes and the length of the paths."};
    return std::nullopt;
  }
  bool terminated = false;
  option.description = TakeWideText(in, &terminated);
  if (!terminated) {
    problem = {start + kHeader, "The description has no end."};
    return std::nullopt;
  }
  const std::size_t list_start = in.Offset();
  if (list_size > in.Left()) {
    problem = {list_start, "The paths have " + std::to_string(list_size) + " bytes, but only " +
                               std::to_string(in.Left()) + " are left."};
    return std::nullopt;
  }
  option.paths = DecodePaths(in.Take(list_size));
  for (Path& path : option.paths) {
    if (path.problem) path.problem->offset += list_start;
  }
  const ByteSpan rest = in.Rest();
  option.optional_data.assign(rest.begin(), rest.end());
  return option;
}

// The attributes of a variable that the operating system can read and that keeps its value, and
// none that the standard does not know.
bool AreVariableAttributes(std::uint32_t attributes) {
  constexpr std::uint32_t kKeptAndVisible = 0x07;
  constexpr std::uint32_t kKnown = 0xFF;
  return (attributes & kKeptAndVisible) == kKeptAndVisible && attributes <= kKnown;
}

}  // namespace

std::optional<LoadOption> DecodeLoadOption(ByteSpan bytes, Problem* problem) {
  Problem here;
  std::optional<LoadOption> option = Decode(bytes, 0, here);
  const bool is_whole = option && option->FirstProblem() == nullptr;
  const std::uint32_t first_word = Reader::Lenient(bytes).U32();  // 0 is no variable's
  if (!is_whole && AreVariableAttributes(first_word)) {
    // Read from its start, such a file has the option's attributes for the paths' length.
    Problem behind;
    if (auto of_file = Decode(bytes, sizeof(first_word), behind)) {
      of_file->variable_attributes = first_word;
      return of_file;
    }
    // No load option has these attributes.
    option.reset();
    here = behind;
  }
  if (!option && problem != nullptr) *problem = here;
  return option;
}

std::optional<std::vector<std::uint8_t>> EncodeLoadOption(const LoadOption& option) {
  std::size_t list_size = 0;
  for (const Path& path : option.paths) list_size += path.bytes.size();
  if (list_size > std::numeric_limits<std::uint16_t>::max() ||
      option.description.find(u'\0') != std::u16string::npos) {
    return std::nullopt;
  }
  const std::size_t text_size = (option.description.size() + 1) * sizeof(char16_t);
  std::vector<std::uint8_t> bytes(kHeader + text_size + list_size + option.optional_data.size());
  bytes::Writer out(bytes);
  out.U32(option.attributes);
  out.U16(static_cast<std::uint16_t>(list_size));
  for (const char16_t unit : option.description) out.U16(unit);
  out.U16(0);
  for (const Path& path : option.paths) out.Bytes(path.bytes);
  out.Bytes(option.optional_data);
  if (!out.Ok()) return std::nullopt;
  return bytes;
}

}  // namespace mira::devicepath
