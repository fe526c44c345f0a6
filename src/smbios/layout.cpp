#include "smbios/layout.h"

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

}  // namespace

void AppendDecimal(std::string& out, std::uint64_t value) { AppendChars(out, value); }
void AppendHex(std::string& out, std::uint64_t value) { AppendChars(out, value, 16); }
void AppendDouble(std::string& out, double value) {
  AppendChars(out, value, std::chars_format::general, 6);
}

void AppendHexBytes(std::string& out, bytes::ByteSpan bytes) {
  for (const std::uint8_t byte : bytes) {
    AppendHex(out, byte);
    out += ' ';
  }
}

std::string_view StructureView::String(std::size_t number) const {
  std::string_view text;
  const char* next = reinterpret_cast<const char*>(raw_ + length_);
  for (; number > 0; --number) {
    text = next;
    next += text.size() + 1;
  }
  return text;
}

void Layout::AppendBanner(std::string& out) const {
  out.append(kBannerDashes, '-').append(" ").append(title_).append(kTypeText).append(type_);
  out.append(" ").append(kBannerDashes, '-');
}

void Layout::AppendClosing(std::string& out) const {
  const std::size_t banner =
      2 * kBannerDashes + 2 + title_.size() + kTypeText.size() + type_.size();
  out.append(closing_ != 0 ? closing_ : banner, '-');
}

bool Layout::AppendValue(const StructureView& structure, std::size_t index, bool publish,
                         std::string& out) const {
  const Field& field = fields_[index];
  const Extras& extras = field.extras;
  const std::size_t offset = offsets_[index];
  const bool is_read = structure.Length() >= extras.min_length;
  const bool is_number = field.kind != Kind::kBytes && field.kind != Kind::kCharacters;
  const std::uint64_t value =
      is_read && is_number ? structure.Number(offset, Width(field.kind, 0)) : 0;
  const Text text = publish && extras.published != nullptr ? extras.published : extras.text;
  if (text != nullptr) {
    if (!text(structure, value, out)) return false;
  } else if (field.kind == Kind::kString) {
    out.append(structure.String(static_cast<std::size_t>(value)));
  } else if (field.kind == Kind::kCharacters) {
    out.append(bytes::Reader(structure.Bytes(offset, 4)).FixedText(4));
  } else if (field.kind == Kind::kBytes) {
    AppendHexBytes(out, structure.Bytes(offset, extras.size));
  } else if (extras.hex && !publish) {
    AppendHex(out, value);
  } else {
    AppendDecimal(out, value);
  }
  out.append(extras.unit);
  return true;
}

void Layout::Show(const StructureView& structure, std::string& out) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const Field& field = fields_[i];
    if (field.extras.shown != nullptr && !field.extras.shown(structure)) continue;
    if (field.extras.line != nullptr) {
      if (field.extras.line(structure, 0, out)) out += '\n';
    } else if (field.label != nullptr) {
      out.append(field.label).append(" : ");
      AppendValue(structure, i, false, out);
      out += '\n';
    }
  }
  if (items_.show != nullptr) items_.show(structure, out);
}

void Layout::Publish(const StructureView& structure, Attributes& list) const {
  std::string value;
  for (std::size_t i = 0; i < published_; ++i) {
    const std::size_t index = order_[i];
    value.clear();
    if (AppendValue(structure, index, true, value)) list.emplace_back(fields_[index].key, value);
  }
  if (items_.publish != nullptr) items_.publish(structure, list);
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
