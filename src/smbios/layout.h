#ifndef MIRA_SMBIOS_LAYOUT_H_
#define MIRA_SMBIOS_LAYOUT_H_

// A structure class states its layout as a list of fields; the frame reads, publishes and shows
// them. Adding a field is adding a line:
//
//   constexpr Field kFields[] = {
//       {0x04, "Socket Designation", "SocketDesignation", Kind::kString},
//       {0x05, "Cache Configuration", nullptr, Kind::kWord, {.hex = true}},
//   };
//   constinit const Layout CCacheInfo::kLayout("Cache Information", "7", kFields);
//
// The offsets are those that the standard prints. They must follow one another without a gap: a
// list in which one is wrong does not compile. Fields are read there whatever the structure's
// length: those of a short structure come from its string set and from the zero bytes behind it.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"
#include "smbios/layout_object.h"
#include "smbios/text_out.h"

namespace mira::smbios {

// A structure's bytes as the texts of fields need them. Offsets count from the structure's start;
// reads beyond the structure find the zero bytes that follow every copy.
class StructureView {
 public:
  StructureView(const unsigned char* raw, unsigned char length) : raw_(raw), length_(length) {}

  // Of the formatted area.
  std::size_t Length() const { return length_; }
  std::uint64_t Number(std::size_t offset, std::size_t width) const {
    return bytes::LittleEndian(Bytes(offset, width));
  }
  std::uint8_t Byte(std::size_t offset) const { return Bytes(offset, 1)[0]; }
  std::uint16_t Word(std::size_t offset) const {
    return static_cast<std::uint16_t>(Number(offset, 2));
  }
  std::uint32_t DWord(std::size_t offset) const {
    return static_cast<std::uint32_t>(Number(offset, 4));
  }
  bytes::ByteSpan Bytes(std::size_t offset, std::size_t width) const {
    reach_ = std::max(reach_, offset + width);
    return {raw_ + offset, width};
  }
  // String `number` (from 1) of the string set; empty for 0 and for numbers beyond the set.
  std::string_view String(std::size_t number) const;
  // The string behind `text`, which String() or NextString() gave; empty beyond the set.
  std::string_view NextString(std::string_view text) const {
    // Two NULs end the set: nothing but the first of its strings is ever empty.
    if (text.empty() && text.data() != FirstString()) return text;
    return text.data() + text.size() + 1;
  }

  // Where the farthest read outside the string set ended since the last call.
  std::size_t TakeReach() const { return std::exchange(reach_, 0); }

 private:
  const char* FirstString() const { return reinterpret_cast<const char*>(raw_ + length_); }

  const unsigned char* raw_;
  unsigned char length_;
  mutable std::size_t reach_ = 0;
  // The string that was asked for last: fields mostly name them in their order.
  mutable std::size_t known_number_ = 0;
  mutable std::string_view known_;
};

using Attributes = AttributeMap::mapped_type;

// What a field holds: its bytes, and the number (or string number) that up to eight of them make.
struct Value {
  bytes::ByteSpan bytes;
  std::uint64_t number;
};

// Writes the text of a field. False: the field is left out.
using Text = bool (*)(const StructureView& structure, const Value& value, TextOut& out);
// Whether a field is shown in the dump.
using Condition = bool (*)(const StructureView& structure);

enum class Kind : std::uint8_t {
  kNone,  // no bytes of its own: a value computed from the field that stands at its offset
  kByte,
  kWord,
  kDWord,
  kQWord,
  kString,      // a string number
  kCharacters,  // four characters
  kBytes,       // `size` bytes
};

constexpr std::size_t Width(Kind kind, std::uint8_t size) {
  switch (kind) {
    case Kind::kNone:
      return 0;
    case Kind::kByte:
    case Kind::kString:
      return 1;
    case Kind::kWord:
      return 2;
    case Kind::kDWord:
    case Kind::kCharacters:
      return 4;
    case Kind::kQWord:
      return 8;
    case Kind::kBytes:
      return size;
  }
  return 0;
}

// A text that may be missing.
struct Label {
  constexpr Label(const char* label) : text(label != nullptr ? std::string_view(label) : "") {}
  constexpr explicit operator bool() const { return !text.empty(); }
  std::string_view text;
};

// What few fields need.
struct Extras {
  std::uint8_t size = 0;        // of kBytes
  bool hex = false;             // the dump shows the number in hexadecimal
  Label unit = "";              // behind the number, in the dump and in the published value
  bool bare = false;            // published without the unit
  Text text = nullptr;          // the value's text, in the dump and published
  Text published = nullptr;     // the published text, where it differs
  Text line = nullptr;          // the whole line of the dump, its end excepted
  Condition shown = nullptr;    // without: always
  std::uint8_t min_length = 0;  // the field is zero in structures shorter than this
  std::uint8_t rank = 0;  // place among the published pairs, where these are ordered otherwise
};

struct Field {
  std::uint8_t offset;  // in the structure; of repeated items, in the item
  Label label;          // null: not in the dump
  Label key;            // null: not published
  Kind kind;
  Extras extras = {};
};

// What few classes have in addition to their fields.
struct LayoutExtras {
  // Items behind the fields, as many as the formatted area holds whole; labels get the index.
  std::span<const Field> items = {};
  // A fixed line behind the fields.
  const char* note = nullptr;
  // What no list of fields says.
  void (*show)(const StructureView& structure, TextOut& out) = nullptr;
  void (*publish)(const StructureView& structure, Attributes& list) = nullptr;
  // Number of dashes in the closing line, where that is not the banner's length.
  std::size_t closing = 0;
};

class Layout {
 public:
  static constexpr std::size_t kMaxFields = 40;
  static constexpr std::size_t kHeaderSize = 4;

  // `type` is written as the banner has it.
  constexpr Layout(const char* title, const char* type, std::span<const Field> fields,
                   LayoutExtras extras = {})
      : title_(title), type_(type), fields_(fields), extras_(extras) {
    if (fields.size() > kMaxFields) throw std::length_error("too many fields");
    end_ += CheckedSize(fields, kHeaderSize);
    item_size_ = CheckedSize(extras.items, 0);
    // The zero bytes behind every structure copy cover a layout of this size.
    if (end_ + item_size_ > 255) throw std::length_error("layout too long");
    // Published in order of rank; without ranks, in the fields' order.
    for (std::size_t rank = 0; rank <= kMaxFields; ++rank) {
      for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].key && fields[i].extras.rank == rank) {
          order_[published_++] = static_cast<std::uint8_t>(i);
        }
      }
    }
  }

  // The structure's dump between its header lines and the closing line.
  void Show(const StructureView& structure, TextOut& out) const;
  // Adds the published pairs. With `beyond`, tells per pair whether anything was read beyond the
  // structure's length.
  void Publish(const StructureView& structure, Attributes& list,
               std::vector<bool>* beyond = nullptr) const;
  void ShowBanner(TextOut& out) const;
  // As long as the banner.
  void ShowClosing(TextOut& out) const;

 private:
  // The size of fields that begin at `start` and follow one another.
  static constexpr std::size_t CheckedSize(std::span<const Field> fields, std::size_t start) {
    std::size_t end = start;
    for (const Field& field : fields) {
      const auto stands_there = [&field](const Field& other) {
        return other.kind != Kind::kNone && other.offset == field.offset;
      };
      const bool is_right = field.kind == Kind::kNone
                                ? std::any_of(fields.begin(), fields.end(), stands_there)
                                : field.offset == end;
      if (!is_right) throw std::logic_error("a field's offset is not where the one before ends");
      end += Width(field.kind, field.extras.size);
    }
    return end - start;
  }
  std::size_t ItemCount(const StructureView& structure) const;

  std::string_view title_;
  std::string_view type_;
  std::span<const Field> fields_;
  LayoutExtras extras_;
  std::array<std::uint8_t, kMaxFields> order_{};
  std::size_t published_ = 0;
  std::size_t end_ = kHeaderSize;  // of the fields, where the items begin
  std::size_t item_size_ = 0;
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_LAYOUT_H_
