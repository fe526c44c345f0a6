#ifndef MIRA_PLDM_TABLE_PARSER_H_
#define MIRA_PLDM_TABLE_PARSER_H_

// The tables of DSP0247 and the string-data tables, from bytes to objects, and single values both
// ways.
//
// A table of fewer than 8 bytes has no entries, and what follows an entry is looked at only while 8
// bytes are left: so the pad bytes and the checksum at the end are never read. An entry that
// overruns the data ends the walk; those before it stay. A type that does not exist is diagnosed on
// standard output and yields nothing.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "bytes/reader.h"
#include "bytes/writer.h"
#include "pldm/tables.h"

namespace mira::pldm {

void ParseStringTable(bytes::ByteSpan data, Tables& tables);
// Names an attribute whose name the string table has, so that table comes first.
void ParseAttributeTable(bytes::ByteSpan data, Tables& tables);
void ParseValueTable(bytes::ByteSpan data, Tables& tables);
void ParseStringData(bytes::ByteSpan data, Tables::WideIndex& index);

// An empty value of a type, read-only or not; null, after a line on standard output, for a type
// that does not exist.
std::unique_ptr<IntPLDMAttributeValue> MakeValue(PLDM::ATTRIBUTE_TYPE type);

// Reads the part of a value-table entry behind handle and type; null when the bytes end within
// it, and, after that line, for a type that does not exist.
std::unique_ptr<IntPLDMAttributeValue> ReadValue(bytes::Reader& in, std::uint16_t handle,
                                                 PLDM::ATTRIBUTE_TYPE type);

// A value as a write request carries it, headed by its type. Of a read-only type nothing follows
// the type, and a line on standard output says so.
std::size_t EncodedSize(const IntPLDMAttributeValue& value);
void Encode(const IntPLDMAttributeValue& value, bytes::Writer& out);
// Whether its counts and lengths fit into their fields.
bool IsEncodable(const IntPLDMAttributeValue& value);

// Prints the line for a type that does not exist or is not allowed in its place.
void DiagnoseType();

}  // namespace mira::pldm

#endif  // MIRA_PLDM_TABLE_PARSER_H_
