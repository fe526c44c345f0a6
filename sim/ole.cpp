#include "sim/ole.h"

namespace mira::sim {

bytes::ByteSpan StringBytes(BSTR text) {
  if (text == nullptr) return {};
  return {reinterpret_cast<const std::uint8_t*>(text), Ole().SysStringLen(text) * sizeof(OLECHAR)};
}

bytes::ByteSpan ArrayBytes(SAFEARRAY* array) {
  if (array == nullptr || array->cDims != 1 || array->pvData == nullptr) return {};
  return {static_cast<const std::uint8_t*>(array->pvData),
          std::size_t{array->rgsabound[0].cElements} * array->cbElements};
}

}  // namespace mira::sim
