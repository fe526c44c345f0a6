#include "smbios/layout.h"

#include <algorithm>

namespace mira::smbios {
namespace {

constexpr std::size_t kBannerDashes = 36;
constexpr std::string_view kTypeText = " : Type ";

void ShowDashes(TextOut& out, std::size_t count) {
  constexpr std::string_view kDashes =
      "----------------------------------------------------------------";
  for (; count > kDashes.size(); count -= kDashes.size()) out << kDashes;
  out << kDashes.substr(0, count);
}

// What a field that is not read holds.
constexpr std::array<std::uint8_t, 255> kZeros{};

// Writes the value of the field at `offset`; false when its text leaves it out.
bool WriteValue(const StructureView& structure, const Field& field, std::size_t offset,
                bool publish, TextOut& out) {
  const Extras& extras = field.extras;
  const std::size_t width = Width(field.kind, extras.size);
  const bool is_read = structure.Length() >= extras.min_length;
  const bytes::ByteSpan bytes =
      is_read ? structure.Bytes(offset, width) : bytes::ByteSpan(kZeros).first(width);
  const Value value{bytes, bytes::LittleEndian(bytes.first(std::min<std::size_t>(width, 8)))};
  const Text text = publish && extras.published != nullptr ? extras.published : extras.text;
  if (text != nullptr) {
    if (!text(structure, value, out)) return false;
  } else if (field.kind == Kind::kString) {
    out << structure.String(static_cast<std::size_t>(value.number));
  } else if (field.kind == Kind::kCharacters) {
    out << bytes::FixedText(bytes::AsText(bytes));
  } else if (field.kind == Kind::kBytes) {
    out << bytes;
  } else if (extras.hex && !publish) {
    out << Hex(value.number);
  } else {
    out << Decimal(value.number);
  }
  if (!publish || !extras.bare) out << extras.unit.text;
  return true;
}

}  // namespace

// Terminated always, by the zero bytes behind the copy at the latest.
std::string_view StructureView::String(std::size_t number) const {
  if (number == 0) return {};
  if (known_number_ == 0 || number < known_number_) {
    known_number_ = 1;
    known_ = FirstString();
  }
  for (; known_number_ < number; ++known_number_) known_ = NextString(known_);
  return known_;
}

void Layout::ShowBanner(TextOut& out) const {
  ShowDashes(out, kBannerDashes);
  out << ' ' << title_ << kTypeText << type_ << ' ';
  ShowDashes(out, kBannerDashes);
  out << '\n';
}

void Layout::ShowClosing(TextOut& out) const {
  const std::size_t banner =
      2 * kBannerDashes + 2 + title_.size() + kTypeText.size() + type_.size();
  ShowDashes(out, extras_.closing != 0 ? extras_.closing : banner);
  out << '\n';
}

std::size_t Layout::ItemCount(const StructureView& structure) const {
  if (item_size_ == 0 || structure.Length() < end_) return 0;
  return (structure.Length() - end_) / item_size_;
}

void Layout::Show(const StructureView& structure, TextOut& out) const {
  for (const Field& field : fields_) {
    if (field.extras.shown != nullptr && !field.extras.shown(structure)) continue;
    if (field.extras.line != nullptr) {
      if (field.extras.line(structure, {}, out)) out << '\n';
    } else if (field.label) {
      out << field.label.text << " : ";
      WriteValue(structure, field, field.offset, false, out);
      out << '\n';
    }
  }
  const std::size_t count = ItemCount(structure);
  for (std::size_t i = 0; i < count; ++i) {
    for (const Field& field : extras_.items) {
      out << field.label.text << '[' << Decimal(i) << "] : ";
      WriteValue(structure, field, end_ + i * item_size_ + field.offset, false, out);
      out << '\n';
    }
  }
  if (extras_.show != nullptr) extras_.show(structure, out);
  if (extras_.note != nullptr) out << extras_.note << '\n';
}

void Layout::Publish(const StructureView& structure, Attributes& list,
                     std::vector<bool>* beyond) const {
  TextOut value;
  const auto publish = [&](const Field& field, std::size_t offset) {
    value.Clear();
    structure.TakeReach();
    if (!WriteValue(structure, field, offset, true, value)) return;
    list.emplace_back(field.key.text, value.Text());
    if (beyond != nullptr) {
      const bool is_left_out = structure.Length() < field.extras.min_length;
      beyond->push_back(is_left_out || structure.TakeReach() > structure.Length());
    }
  };
  for (std::size_t i = 0; i < published_; ++i) {
    const Field& field = fields_[order_[i]];
    publish(field, field.offset);
  }
  const std::size_t count = ItemCount(structure);
  for (std::size_t i = 0; i < count; ++i) {
    for (const Field& field : extras_.items) {
      if (field.key) publish(field, end_ + i * item_size_ + field.offset);
    }
  }
  if (extras_.publish != nullptr) extras_.publish(structure, list);
}

CLayoutObject::CLayoutObject(unsigned char* raw, const Layout& layout)
    : CBIOSObject(raw), m_pLayout(&layout) {}

CLayoutObject::~CLayoutObject() = default;

CLayoutObject& CLayoutObject::operator=(const CLayoutObject& other) {
  const ChainLink chain = m_pNextObj;
  CBIOSObject::operator=(other);
  m_pLayout = other.m_pLayout;
  return *this;
}

void CLayoutObject::Display(std::ostream& os) const { DisplayChain(os); }

StructureView CLayoutObject::View() const { return {raw(), m_byLength}; }

void CLayoutObject::AddAttributes(AttributeMap::mapped_type& list) const {
  m_pLayout->Publish(View(), list);
}

void CLayoutObject::MarkBeyond(std::vector<bool>& beyond) const {
  AttributeMap::mapped_type list;
  m_pLayout->Publish(View(), list, &beyond);
}

void CLayoutObject::DisplayOne(std::ostream& os) const {
  TextOut out(os);
  m_pLayout->ShowBanner(out);
  WriteHeader(out);
  m_pLayout->Show(View(), out);
  m_pLayout->ShowClosing(out);
  out.Flush();
  // As after every number in a dump.
  os << std::dec;
}

}  // namespace mira::smbios
