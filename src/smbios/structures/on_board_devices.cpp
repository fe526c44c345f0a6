#include "smbios/structures/structures.h"

namespace {

using mira::smbios::StructureView;

constexpr std::size_t kFirst = 4;
constexpr std::size_t kItemSize = 2;

std::size_t Count(const StructureView& s) {
  return s.Length() > kFirst ? (s.Length() - kFirst) / kItemSize : 0;
}

void Show(const StructureView& s, std::string& out) {
  for (std::size_t i = 0; i < Count(s); ++i) {
    const std::size_t item = kFirst + i * kItemSize;
    const std::string index = "[" + std::to_string(i) + "] : ";
    out += "Device Type" + index + std::to_string(s.Byte(item)) + '\n';
    out.append("Description String" + index).append(s.String(s.Byte(item + 1))).append("\n");
  }
}

void Publish(const StructureView& s, mira::smbios::Attributes& list) {
  for (std::size_t i = 0; i < Count(s); ++i) {
    const std::size_t item = kFirst + i * kItemSize;
    list.emplace_back("Type", std::to_string(s.Byte(item)));
    list.emplace_back("Description", s.String(s.Byte(item + 1)));
  }
}

}  // namespace

constinit const mira::smbios::Layout COnBoardDevices::kLayout("OnBoard Devices Inforamtion", "10",
                                                              {},
                                                              {.show = Show, .publish = Publish});
