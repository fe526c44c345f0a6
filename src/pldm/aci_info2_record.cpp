#include "pldm/aci_info2_record.h"

#include <algorithm>

using mira::bytes::Reader;
using mira::pldm::TableDescriptor;

CACIInfo2Record::~CACIInfo2Record() = default;

const TableDescriptor* CACIInfo2Record::CurrentDescriptor() const {
  return CurrentTable < Descriptors.size() ? &Descriptors[CurrentTable] : nullptr;
}

void CACIInfo2Record::DecodeHeader(mira::bytes::ByteSpan data) {
  constexpr std::size_t kDescriptorSize = 16;
  constexpr std::size_t kSignatureSize = 4;
  Descriptors.clear();
  Reader in(data);
  const auto signature = in.Take(kSignatureSize);
  const std::array<std::uint8_t, 2> version{in.U8(), in.U8()};
  in.U16();  // only the second such word is kept
  const auto signature2 = in.Take(kSignatureSize);
  const std::uint32_t header_size = in.U32();
  const std::uint32_t features = in.U32();
  const std::uint16_t word = in.U16();
  const std::uint8_t checksum = in.U8();
  const std::size_t count = in.U8();
  if (!in.Ok()) return;
  std::copy(signature.begin(), signature.end(), Signature.begin());
  std::copy(signature2.begin(), signature2.end(), Signature2.begin());
  Version = version;
  HeaderWord = word;
  HeaderSize = header_size;
  Features = features;
  Checksum = checksum;
  Descriptors.resize(std::min(count, in.Left() / kDescriptorSize));
  for (TableDescriptor& table : Descriptors) {
    table.type = in.U8();
    table.string_kind = in.U8();
    for (std::uint8_t& byte : table.reserved) byte = in.U8();
    table.unused = in.U8();
    table.index = in.U8();
    table.size = in.U32();
    table.address = in.U32();
  }
}
