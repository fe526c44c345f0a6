#include "smbios/layout.h"

#include <algorithm>
#include <charconv>

namespace mira::smbios {
namespace {

constexpr std::size_t kBannerDashes = 36;
constexpr std::string_view kTypeText = " : Type ";

template <typename... Arguments>
void AppendChars(std::string& out, Arguments... arguments) {
  char digits[32];
  const auto result = std::to_chars(digits, digits + sizeof(digits), arguments...);
  out.append(digits, result.ptr);
}

// What a field that is not read holds.
constexpr std::array<std::uint8_t, 255> kZeros{};

// Appends the value of the field at `offset`; false when its text leaves it out.
bool AppendValue(const StructureView& structure, const Field& field, std::size_t offset,
                 bool publish, std::string& out) {
  const Extras& extras = field.extras;
  const std::size_t width = Width(field.kind, extras.size);
  const bool is_read = structure.Length() >= extras.min_length;
  const bytes::ByteSpan bytes =
      is_read ? structure.Bytes(offset, width) : bytes::ByteSpan(kZeros).first(width);
  const Value value{bytes, bytes::Reader(bytes).Number(std::min<std::size_t>(width, 8))};
  const Text text = publish && extras.published != nullptr ? extras.published : extras.text;
  if (text != nullptr) {
    if (!text(structure, value, out)) return false;
  } else if (field.kind == Kind::kString) {
    out.append(structure.String(static_cast<std::size_t>(value.number)));
  } else if (field.kind == Kind::kCharacters) {
    out.append(bytes::Reader(bytes).FixedText(width));
  } else if (field.kind == Kind::kBytes) {
    AppendHexBytes(out, bytes);
  } else if (extras.hex && !publish) {
    AppendHex(out, value.number);
  } else {
    AppendDecimal(out, value.number);
  }
  if (!publish || !extras.bare) out.append(extras.unit);
  return true;
}

}  // namespace

void AppendDecimal(std::string& out, std::uint64_t value) { AppendChars(out, value); }
void AppendHex(std::string& out, std::uint64_t value) { AppendChars(out, value, 16); }
void AppendDouble(std::string& out, double value) {
  AppendChars(out, value, std::chars_format::general, 6);
}

void AppendHexBytes(std::string& out, bytes::ByteSpan bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0) out += ' ';
    AppendHex(out, bytes[i]);
  }
}

// Terminated always, by the zero bytes behind the copy at the latest.
std::string_view StructureView::String(std::size_t number) const {
  if (number == 0) return {};
  std::string_view text = reinterpret_cast<const char*>(raw_ + length_);
  while (--number > 0) text = NextString(text);
  return text;
}

std::string_view StructureView::NextString(std::string_view text) const {
  return text.data() + text.size() + 1;
}

void Layout::AppendBanner(std::string& out) const {
  out.append(kBannerDashes, '-').append(" ").append(title_).append(kTypeText).append(type_);
  out.append(" ").append(kBannerDashes, '-');
}

void Layout::AppendClosing(std::string& out) const {
  const std::size_t banner =
      2 * kBannerDashes + 2 + title_.size() + kTypeText.size() + type_.size();
  out.append(besides_.closing != 0 ? besides_.closing : banner, '-');
}

std::size_t Layout::ItemCount(const StructureView& structure) const {
  if (item_size_ == 0 || structure.Length() < end_) return 0;
  return (structure.Length() - end_) / item_size_;
}

void Layout::Show(const StructureView& structure, std::string& out) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const Field& field = fields_[i];
    if (field.extras.shown != nullptr && !field.extras.shown(structure)) continue;
    if (field.extras.line != nullptr) {
      if (field.extras.line(structure, {}, out)) out += '\n';
    } else if (field.label != nullptr) {
      out.append(field.label).append(" : ");
      AppendValue(structure, field, offsets_[i], false, out);
      out += '\n';
    }
  }
  const std::size_t count = ItemCount(structure);
  std::size_t offset = end_;
  for (std::size_t i = 0; i < count; ++i) {
    for (const Field& field : besides_.items) {
      out.append(field.label) += '[';
      AppendDecimal(out, i);
      out.append("] : ");
      AppendValue(structure, field, offset, false, out);
      out += '\n';
      offset += Width(field.kind, field.extras.size);
    }
  }
  if (besides_.show != nullptr) besides_.show(structure, out);
  if (besides_.note != nullptr) out.append(besides_.note) += '\n';
}

void Layout::Publish(const StructureView& structure, Attributes& list) const {
  std::string value;
  const auto publish = [&](const Field& field, std::size_t offset) {
    value.clear();
    if (AppendValue(structure, field, offset, true, value)) list.emplace_back(field.key, value);
  };
  for (std::size_t i = 0; i < published_; ++i) publish(fields_[order_[i]], offsets_[order_[i]]);
  const std::size_t count = ItemCount(structure);
  std::size_t offset = end_;
  for (std::size_t i = 0; i < count; ++i) {
    for (const Field& field : besides_.items) {
      if (field.key != nullptr) publish(field, offset);
      offset += Width(field.kind, field.extras.size);
    }
  }
  if (besides_.publish != nullptr) besides_.publish(structure, list);
}

void CLayoutObject::AddAttributes(AttributeMap::mapped_type& list) const {
  m_pLayout->Publish(View(), list);
}

void CLayoutObject::DisplayOne(std::ostream& os) const {
  std::string text;
  text.reserve(1024);
  m_pLayout->AppendBanner(text);
  text += '\n';
  AppendHeader(text);
  m_pLayout->Show(View(), text);
  m_pLayout->AppendClosing(text);
  text += '\n';
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
  // As after every number in a dump.
  os << std::dec;
}

}  // namespace mira::smbios
