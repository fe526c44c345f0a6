#include "buffers/uefi_boot_buffer.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <utility>

#include "buffers/console_io.h"
#include "bytes/reader.h"
#include "bytes/writer.h"
#include "devicepath/nodes.h"

namespace {

using mira::bytes::ByteSpan;
using mira::bytes::Reader;
using mira::transport::SetArgOffset;

enum Select : std::uint16_t { kLists = 9, kOptions = 11, kSetOrder = 12 };

// The path bytes of a load option, whose other fields are read into the entry; zero and empty,
// where the option ends too early.
ByteSpan ReadOption(ByteSpan bytes, CUEFILOList::LoadOption& option) {
  Reader in = Reader::Lenient(bytes);
  option.Attributes = in.U32();
  option.FilePathListLength = in.U16();
  option.Description = mira::devicepath::TakeWideText(in);
  return in.Rest();
}

// A legacy entry has no node: numbers and a text follow one another without a length.
std::unique_ptr<CUEFILOList::LegacyFilePathList> ReadLegacy(ByteSpan path) {
  auto record = std::make_unique<CUEFILOList::LegacyFilePathList>();
  Reader in(path);
  record->Type = in.U8();
  record->SubType = in.U8();
  record->DeviceType = in.U16();
  record->StatusFlag = in.U16();
  if (!in.Ok()) return nullptr;
  record->Description = mira::devicepath::TakeText(in);
  return record;
}

// Where nobody said of which kind the list is, the bytes are asked: a legacy entry is no path, and
// begins with the boot specification's type or with what can be no node at all.
bool LooksLegacy(ByteSpan path) {
  constexpr std::uint8_t kBootSpecification = 5;
  if (mira::devicepath::IsDevicePath(path)) return false;
  Reader in(path);
  return !mira::devicepath::NextNode(in) || path[0] == kBootSpecification;
}

}  // namespace

CUEFIBootList::~CUEFIBootList() = default;
CUEFILOList::~CUEFILOList() = default;

SMBiosCI* CUEFIBootBuffer::BuildWrite(std::uint32_t room, std::uint32_t securityKey,
                                      const CUEFILOList& request) {
  if (request.BootOrder.size() < request.Count) return nullptr;
  const std::uint64_t order_size = sizeof(std::uint16_t) * std::uint64_t{request.Count};
  SMBiosCI* const record =
      NewRecord(std::uint64_t{kArea} + room + order_size, request, securityKey);
  if (record == nullptr) return nullptr;
  record->cbArg1 = request.ListEnum;
  SetArgOffset(*record, 2, kArea);
  mira::bytes::Writer out(Record(), kArea);
  for (std::uint32_t i = 0; i < request.Count; ++i) out.U16(request.BootOrder[i]);
  return out.Ok() ? record : nullptr;
}

SMBiosCI* CUEFIBootBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                           IBIOSData& data) {
  SMBiosCI* record = nullptr;
  switch (m_wSelect) {
    case kLists:
      record = NewRead(size, CSimpleTokenData(), 0, 1);
      break;
    case kOptions: {
      const CUEFILOList& request = dynamic_cast<CUEFILOList&>(data);
      m_oIsUEFI = request.IsUEFI;
      record = NewRead(size, CSimpleTokenData(), 0, 2);
      if (record != nullptr) record->cbArg1 = request.ListEnum & 0xFF;
      break;
    }
    case kSetOrder:
      record = BuildWrite(size, securityKey, dynamic_cast<CUEFILOList&>(data));
      break;
    default:
      break;
  }
  return record == nullptr ? nullptr : Sized(size);
}

SMBiosCI* CUEFIBootBuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                             bool prompt) {
  CUEFILOList data;
  if (prompt && m_wSelect != kLists &&
      !mira::console_io::AskNumber(
          "Enter the Enum Value of the Boot List (from Class 3, Select 9) : ", data.ListEnum)) {
    return nullptr;
  }
  if (prompt && m_wSelect == kSetOrder) {
    constexpr std::uint32_t kHighest = std::numeric_limits<std::uint16_t>::max();
    std::vector<std::uint32_t> numbers;
    if (!mira::console_io::AskNumber(
            "Enter the Load Option Item count (from Class 3, Select 11) : ", data.Count, 0,
            kHighest) ||
        !mira::console_io::AskNumbers(
            ("Enter " + std::to_string(data.Count) + " Elements for new Boot Order : ").c_str(),
            numbers, data.Count, kHighest)) {
      return nullptr;
    }
    for (const std::uint32_t number : numbers) {
      data.BootOrder.push_back(static_cast<std::uint16_t>(number));
    }
  }
  SMBiosCI* const record = FillInputBuffer(securityKey, size, data);
  m_oIsUEFI.reset();  // nobody said it
  return record;
}

void CUEFIBootBuffer::ReadLists(CUEFIBootList& result) const {
  result.Items.clear();
  Reader in(ReceivedData());
  const std::size_t count = in.U8();
  Reader names = in;
  names.Take(count);
  while (names.Ok() && result.Items.size() < count) {
    CUEFIBootList::Item item{in.U8(), {}};
    bool terminated = false;
    item.Name = mira::devicepath::TakeWideText(names, &terminated);
    if (!terminated) break;
    result.Items.push_back(std::move(item));
  }
  result.Count = static_cast<std::uint32_t>(result.Items.size());
  result.IsComplete = in.Ok() && result.Items.size() == count;
}

void CUEFIBootBuffer::ReadOptions(CUEFILOList& result) const {
  result.BootOrder.clear();
  result.Options.clear();
  Reader in(ReceivedData());
  const std::uint32_t count = in.U32();
  while (result.BootOrder.size() < count && in.Left() >= sizeof(std::uint16_t)) {
    result.BootOrder.push_back(in.U16());
  }
  while (result.Options.size() < count) {
    CUEFILOList::LoadOption option;
    option.Index = in.U16();
    option.EntrySize = in.U32();
    const ByteSpan bytes = in.Take(option.EntrySize);
    if (!in.Ok()) break;
    option.Option.assign(bytes.begin(), bytes.end());
    const ByteSpan path = ReadOption(bytes, option);
    if (result.IsUEFI) {
      option.FilePath = mira::devicepath::DecodeDevicePath(path);
    } else if (auto record = ReadLegacy(path)) {
      option.FilePath.push_back(std::move(record));
    }
    result.Options.push_back(std::move(option));
  }
  result.Count = static_cast<std::uint32_t>(result.Options.size());
  result.IsComplete = in.Ok() && result.Options.size() == count;
}

void CUEFIBootBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (!m_pCIBuffer) return;
  if (m_wSelect == kLists) ReadLists(dynamic_cast<CUEFIBootList&>(data));
  if (m_wSelect == kOptions) {
    CUEFILOList& options = dynamic_cast<CUEFILOList&>(data);
    m_oIsUEFI = options.IsUEFI;
    ReadOptions(options);
  }
}

void CUEFIBootBuffer::DisplayLists() const {
  CUEFIBootList lists;
  ReadLists(lists);
  std::cout << "Boot List Count : " << lists.Count << std::endl
            << "Boot List Items (Enum : Name) : " << std::endl;
  for (const CUEFIBootList::Item& item : lists.Items) {
    std::cout << std::hex << unsigned{item.Enum} << std::dec << " : ";
    mira::console_io::WriteWideLine(item.Name);
  }
}

void CUEFIBootBuffer::DisplayOptions() const {
  CUEFILOList options;
  ReadOptions(options);
  std::cout << "Load Option Item Count : " << options.Count << std::endl
            << "Boot Order Array : " << std::hex;
  for (const std::uint16_t number : options.BootOrder) std::cout << number << ' ';
  std::cout << std::endl << "EFI Load Option Item : " << std::endl;
  for (CUEFILOList::LoadOption& option : options.Options) {
    std::cout << "Index - " << option.Index << "\tAttributes : " << option.Attributes
              << "\tOption Description : ";
    mira::console_io::WriteWideLine(option.Description);
    std::cout << "File Path List :- " << std::endl;
    const ByteSpan path = ReadOption(option.Option, option);
    if (m_oIsUEFI ? *m_oIsUEFI : !LooksLegacy(path)) continue;
    if (const auto record = ReadLegacy(path)) {
      std::cout << "Type : " << unsigned{record->Type}
                << "\tSub-Type : " << unsigned{record->SubType}
                << "\tDeviceType : " << record->DeviceType
                << "\tStatus Flag : " << record->StatusFlag
                << "\tDescription String : " << record->Description << std::endl;
    }
  }
  std::cout << std::dec;
}

void CUEFIBootBuffer::DisplayOutputBuffer() {
  CBuffer::DisplayOutputBuffer();
  if (!m_pCIBuffer || CompletionCode() != 0) return;
  if (m_wSelect == kLists) DisplayLists();
  if (m_wSelect == kOptions) DisplayOptions();
}
