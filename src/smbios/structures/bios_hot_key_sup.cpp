#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Decimal;
using mira::smbios::StructureView;
using mira::smbios::TextOut;

constexpr std::size_t kFirst = mira::smbios::Layout::kHeaderSize;
constexpr std::size_t kItemSize = 4;

std::size_t Count(const StructureView& s) {
  return s.Length() > kFirst ? (s.Length() - kFirst) / kItemSize : 0;
}

void Show(const StructureView& s, TextOut& out) {
  out << "BIOS Hot Key List (KeyCode, Function/Feature/Action Code) : \n";
  for (std::size_t i = 0; i < Count(s); ++i) {
    const std::size_t item = kFirst + i * kItemSize;
    out << '[' << Decimal(i) << "] : (" << Decimal(s.Word(item)) << ", "
        << Decimal(s.Word(item + 2)) << ")\n";
  }
}

// The keys lose a character with each entry, on purpose: hosts know them so.
std::string_view Without(std::string_view text, std::size_t count) {
  return text.substr(count < text.size() ? count : text.size());
}

void Publish(const StructureView& s, mira::smbios::Attributes& list) {
  for (std::size_t i = 0; i < Count(s); ++i) {
    const std::size_t item = kFirst + i * kItemSize;
    list.emplace_back(Without("Key", i), std::to_string(s.Word(item)));
    list.emplace_back(Without("Code", i), std::to_string(s.Word(item + 2)));
  }
}

}  // namespace

constinit const mira::smbios::Layout CBIOSHotKeySup::kLayout("BIOS Hot-Key Support", "178", {},
                                                             {.show = Show, .publish = Publish});
