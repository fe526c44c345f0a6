#include "smbios/structure_copy.h"

#include <algorithm>

namespace mira::smbios {

unsigned char* CopyStructure(bytes::ByteSpan structure) {
  unsigned char* const copy = new unsigned char[structure.size() + kStructureSlack];
  std::fill_n(std::copy(structure.begin(), structure.end(), copy), kStructureSlack,
              static_cast<unsigned char>(0));
  return copy;
}

}  // namespace mira::smbios
