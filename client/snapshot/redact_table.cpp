#include "client/snapshot/redact_table.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "client/smbios_file.h"
#include "client/snapshot/vocabulary.h"
#include "client/structure_fields.h"
#include "smbios/table.h"

namespace mira::client {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Bytes of a formatted area that are harmless (DSP0134 7): sizes, speeds, types, states, numbers of
// strings. Not there: UUIDs, what the standard leaves to the maker, and lists of lengths of their
// own.
struct HarmlessBytes {
  std::uint8_t type;
  std::uint8_t begin;
  std::uint8_t end;
};
constexpr HarmlessBytes kHarmlessBytes[] = {
    {0, 0x04, 0x1A},  {1, 0x04, 0x08},  {1, 0x18, 0x1B},  {2, 0x04, 0x0E},    {3, 0x04, 0x0D},
    {3, 0x11, 0x13},  {4, 0x04, 0x34},  {7, 0x04, 0x1B},  {8, 0x04, 0x09},    {9, 0x04, 0x12},
    {11, 0x04, 0x05}, {12, 0x04, 0x05}, {13, 0x04, 0x06}, {13, 0x15, 0x16},   {16, 0x04, 0x17},
    {17, 0x04, 0x5C}, {19, 0x04, 0x1F}, {20, 0x04, 0x23}, {21, 0x04, 0x07},   {22, 0x04, 0x10},
    {22, 0x14, 0x16}, {24, 0x04, 0x05}, {32, 0x0A, 0x0B}, {39, 0x04, 0x16},   {41, 0x04, 0x0B},
    {43, 0x08, 0x1B}, {44, 0x04, 0x06}, {45, 0x04, 0x18}, {0xDA, 0x04, 0xFF},
};

constexpr std::uint8_t kSystemType = 1;
constexpr std::size_t kUuidOffset = 0x08;
constexpr std::size_t kUuidSize = 16;

// What a string is called whose number stands in a field. Texts that name one machine are replaced
// even where they consist of common words.
enum class TextKind { kNames, kVersion, kDate, kModel };
struct StringField {
  std::uint8_t type;
  std::uint8_t offset;
  const char* kind;
  TextKind is = TextKind::kModel;
};
constexpr StringField kStringFields[] = {
    {0, 0x04, "vendor"},
    {0, 0x05, "version", TextKind::kVersion},
    {0, 0x08, "date", TextKind::kDate},
    {1, 0x04, "manufacturer"},
    {1, 0x05, "product"},
    {1, 0x06, "version"},
    {1, 0x07, "serial", TextKind::kNames},
    {1, 0x19, "sku"},
    {1, 0x1A, "family"},
    {2, 0x04, "manufacturer"},
    {2, 0x05, "product"},
    {2, 0x06, "version"},
    {2, 0x07, "serial", TextKind::kNames},
    {2, 0x08, "asset", TextKind::kNames},
    {2, 0x0A, "location"},
    {3, 0x04, "manufacturer"},
    {3, 0x06, "version"},
    {3, 0x07, "serial", TextKind::kNames},
    {3, 0x08, "asset", TextKind::kNames},
    {4, 0x04, "socket"},
    {4, 0x07, "manufacturer"},
    {4, 0x10, "processor"},
    {4, 0x20, "serial", TextKind::kNames},
    {4, 0x21, "asset", TextKind::kNames},
    {4, 0x22, "part"},
    {17, 0x10, "locator"},
    {17, 0x11, "bank"},
    {17, 0x17, "manufacturer"},
    {17, 0x18, "serial", TextKind::kNames},
    {17, 0x19, "asset", TextKind::kNames},
    {17, 0x1A, "part"},
    {17, 0x2B, "version"},
    {22, 0x04, "location"},
    {22, 0x05, "manufacturer"},
    {22, 0x06, "date", TextKind::kDate},
    {22, 0x07, "serial", TextKind::kNames},
    {22, 0x08, "battery"},
    {39, 0x08, "serial", TextKind::kNames},
    {39, 0x09, "asset", TextKind::kNames},
};

bool IsHarmless(TextKind kind, std::string_view text) {
  switch (kind) {
    case TextKind::kNames:
      return false;
    case TextKind::kVersion:
      return IsVersionText(text);
    case TextKind::kDate:
      return IsDateText(text);
    case TextKind::kModel:
      break;
  }
  return IsCommonText(text);
}

// The field whose number a string is; the strictest of several.
const StringField* FieldOf(const StructureFields& fields, std::size_t number) {
  const StringField* found = nullptr;
  for (const StringField& field : kStringFields) {
    if (field.type != fields.Type() || fields.Byte(field.offset) != number) continue;
    if (found == nullptr || field.is < found->is) found = &field;
  }
  return found;
}

class TableRedaction {
 public:
  explicit TableRedaction(Placeholders& placeholders) : placeholders_(placeholders) {}

  // The bytes of a structure with its string set.
  Bytes Redact(bytes::ByteSpan structure) {
    const StructureFields fields(structure);
    Bytes result = Formatted(fields, structure.first(structure[1]));
    const std::vector<std::string> strings = fields.Strings();
    for (std::size_t i = 0; i < strings.size(); ++i) {
      const std::string text = String(strings[i], FieldOf(fields, i + 1));
      result.insert(result.end(), text.begin(), text.end());
      result.push_back(0);
    }
    if (strings.empty()) result.push_back(0);
    result.push_back(0);
    return result;
  }

 private:
  Bytes Formatted(const StructureFields& fields, bytes::ByteSpan bytes) {
    constexpr std::size_t kHeader = 4;
    Bytes result(bytes.size(), 0);
    const auto copy = [&](std::size_t begin, std::size_t end) {
      end = std::min(end, bytes.size());
      for (std::size_t i = begin; i < end; ++i) result[i] = bytes[i];
    };
    copy(0, kHeader);
    for (const HarmlessBytes& harmless : kHarmlessBytes) {
      if (harmless.type == fields.Type()) copy(harmless.begin, harmless.end);
    }
    if (fields.Type() == kSystemType) {
      const Bytes uuid = placeholders_.OfBytes(fields.Bytes(kUuidOffset, kUuidSize), "uuid");
      std::copy(uuid.begin(), uuid.end(), result.begin() + (uuid.empty() ? 0 : kUuidOffset));
    }
    return result;
  }

  std::string String(const std::string& text, const StringField* field) {
    const TextKind is = field != nullptr ? field->is : TextKind::kModel;
    if (text.find_first_not_of(' ') == std::string::npos || IsHarmless(is, text)) return text;
    return placeholders_.Of(text, field != nullptr ? field->kind : "text");
  }

  Placeholders& placeholders_;
};

}  // namespace

Bytes RedactTable(bytes::ByteSpan firmware_table, Placeholders& placeholders) {
  if (firmware_table.size() < smbios::kFirmwareHeaderSize) return {};
  TableRedaction redaction(placeholders);
  Bytes structures;
  smbios::TableWalk walk(firmware_table.subspan(smbios::kFirmwareHeaderSize));
  auto step = walk.Next();
  for (; step == smbios::TableWalk::Step::kStructure; step = walk.Next()) {
    const Bytes structure = redaction.Redact(walk.Structure());
    structures.insert(structures.end(), structure.begin(), structure.end());
  }
  // What is malformed, or was cut short, stays so.
  if (step == smbios::TableWalk::Step::kMalformed) structures.push_back(0xFF);
  const std::size_t missing = IsCutShort(firmware_table) ? 1 : 0;
  Bytes result =
      WithHeader({firmware_table[1], firmware_table[2]}, structures.size() + missing, structures);
  result[0] = firmware_table[0];
  result[3] = firmware_table[3];
  return result;
}

}  // namespace mira::client
