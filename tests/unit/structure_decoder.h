#ifndef MIRA_TESTS_UNIT_STRUCTURE_DECODER_H_
#define MIRA_TESTS_UNIT_STRUCTURE_DECODER_H_

// The dumps of a table's structures by a small decoder that has nothing in common with the library:
// it walks the bytes by itself and knows what stands in tests/data/structure_lines.txt.
//
//   for (const auto& [type, dumps] : DecodeTable(bytes)) ...

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace mira::test {

// By type, in the order of the table, whose bytes are those of the firmware table service.
std::map<unsigned, std::vector<std::string>> DecodeTable(const std::vector<std::uint8_t>& table);

}  // namespace mira::test

#endif  // MIRA_TESTS_UNIT_STRUCTURE_DECODER_H_
