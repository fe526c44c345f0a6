#include "buffers/c17_buffer.h"

#include <algorithm>
#include <iterator>

#include "buffers/entry_list.h"

namespace {

using mira::buffers::ReadEntries;

struct List {
  std::uint16_t select;
  void (*read)(mira::bytes::ByteSpan bytes, IBIOSData& data);
};

constexpr List kLists[] = {
    {5, ReadEntries<CExtBatteryLife>},
    {16, ReadEntries<CFirmwareMessages>},
    {18, ReadEntries<CTabletScanCodes>},
    {22, ReadEntries<CThermalSensors>},
};

const List* FindList(std::uint16_t select) {
  const auto* const found = std::find_if(std::begin(kLists), std::end(kLists),
                                         [select](const List& l) { return l.select == select; });
  return found != std::end(kLists) ? found : nullptr;
}

}  // namespace

bool C17Buffer::HasArea(std::uint32_t) const { return FindList(m_wSelect) != nullptr; }

void C17Buffer::ParseOutputBuffer(IBIOSData& data) {
  CDataReadBuffer::ParseOutputBuffer(data);
  const List* const list = FindList(m_wSelect);
  if (list != nullptr) list->read(ReceivedData(), data);
}
