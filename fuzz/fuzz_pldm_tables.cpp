// Any bytes as BIOS tables and as the directory: parsed, looked up, converted, encoded again.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "pldm/aci_info2_record.h"
#include "pldm/attribute_convert.h"
#include "pldm/table_parser.h"

namespace {

using mira::bytes::ByteSpan;

// The bytes hold three tables, each behind its 16-bit length.
ByteSpan NextTable(mira::bytes::Reader& in) {
  const std::size_t length = in.U16();
  return in.Take(std::min(length, in.Left()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace mira::pldm;
  std::cout.setstate(std::ios::failbit);  // what the parsers print is not looked at
  auto in = mira::bytes::Reader::Lenient({data, size});
  CACIInfo2Record record;
  record.DecodeHeader({data, size});
  Tables& tables = record.Tables;
  ParseStringTable(NextTable(in), tables);
  ParseAttributeTable(NextTable(in), tables);
  ParseValueTable(NextTable(in), tables);
  ParseStringData(in.Rest(), tables.display_strings);
  for (const IntPLDMAttribute* const attribute : tables.Attributes()) {
    const IntPLDMAttributeValue* const value = tables.FindValue(attribute->handle);
    const auto caller = PLDM::MakeAttribute(attribute->type);
    if (value == nullptr || !Fill(*attribute, *value, tables, *caller)) continue;
    caller->Handle = attribute->handle;
    const auto back = ToValue(*caller, tables);
    if (!back || !IsEncodable(*back)) continue;
    std::vector<std::uint8_t> encoded(EncodedSize(*back));
    mira::bytes::Writer out(encoded);
    Encode(*back, out);
    if (!out.Ok() || out.Offset() != encoded.size()) std::abort();
  }
  return 0;
}
