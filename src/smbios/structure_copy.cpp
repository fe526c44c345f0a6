#include "smbios/structure_copy.h"

#include <algorithm>

namespace mira::smbios {

unsigned char* CopyStructure(bytes::ByteSpan structure) {
  unsigned char* const copy = new unsigned char[structure.size() + kStructureSlack]();
  std::copy(structure.begin(), structure.end(), copy);
  return copy;
}

}  // namespace mira::smbios
