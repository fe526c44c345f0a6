#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "sim/ole.h"

namespace mira::sim {
namespace {

constexpr HRESULT kArrayIsLocked = static_cast<HRESULT>(0x8002000DU);
constexpr USHORT kMaxLocks = 0xFFFF;

// A BSTR is preceded by its length in bytes; the block begins eight bytes before the text, so that
// the text is aligned.
constexpr std::size_t kStringHeader = 8;

unsigned char* StringBlock(BSTR text) {
  return reinterpret_cast<unsigned char*>(text) - kStringHeader;
}

BSTR AllocString(const OLECHAR* text, UINT length) {
  const std::size_t size = std::size_t{length} * sizeof(OLECHAR);
  unsigned char* const block =
      static_cast<unsigned char*>(std::calloc(1, kStringHeader + size + sizeof(OLECHAR)));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &size, sizeof(size));
  if (text != nullptr) std::memcpy(block + kStringHeader, text, size);
  return reinterpret_cast<BSTR>(block + kStringHeader);
}

void FreeString(BSTR text) {
  if (text != nullptr) std::free(StringBlock(text));
}

UINT StringLength(BSTR text) {
  if (text == nullptr) return 0;
  std::size_t size = 0;
  std::memcpy(&size, StringBlock(text), sizeof(size));
  return static_cast<UINT>(size / sizeof(OLECHAR));
}

SAFEARRAY* CreateArray(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  // Unsigned bytes in one dimension are all that travels.
  if (type != VT_UI1 || dimensions != 1 || bounds == nullptr) return nullptr;
  std::unique_ptr<SAFEARRAY> array(new SAFEARRAY{});
  array->cDims = 1;
  array->cbElements = 1;
  array->rgsabound[0] = *bounds;
  array->pvData = std::calloc(std::max<std::size_t>(bounds->cElements, 1), 1);
  return array->pvData != nullptr ? array.release() : nullptr;
}

HRESULT DestroyArray(SAFEARRAY* array) {
  if (array == nullptr) return S_OK;
  if (array->cLocks != 0) return kArrayIsLocked;
  std::free(array->pvData);
  delete array;
  return S_OK;
}

HRESULT PutElement(SAFEARRAY* array, LONG* indices, void* element) {
  if (array == nullptr || indices == nullptr || element == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND& bound = array->rgsabound[0];
  const std::int64_t index = std::int64_t{*indices} - bound.lLbound;
  if (index < 0 || index >= bound.cElements) return DISP_E_BADINDEX;
  std::memcpy(static_cast<unsigned char*>(array->pvData) + index, element, 1);
  return S_OK;
}

HRESULT AccessData(SAFEARRAY* array, void** data) {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  if (array->cLocks == kMaxLocks) return kArrayIsLocked;
  ++array->cLocks;
  *data = array->pvData;
  return S_OK;
}

HRESULT UnaccessData(SAFEARRAY* array) {
  if (array == nullptr || array->cLocks == 0) return E_INVALIDARG;
  --array->cLocks;
  return S_OK;
}

HRESULT LowerBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  if (dimension != 1) return DISP_E_BADINDEX;
  *bound = array->rgsabound[0].lLbound;
  return S_OK;
}

HRESULT UpperBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  const HRESULT result = LowerBound(array, dimension, bound);
  if (SUCCEEDED(result)) *bound += static_cast<LONG>(array->rgsabound[0].cElements) - 1;
  return result;
}

HRESULT ClearVariant(VARIANT* value) {
  if (value == nullptr) return E_INVALIDARG;
  HRESULT result = S_OK;
  if (value->vt == VT_BSTR) {
    FreeString(value->bstrVal);
  } else if (value->vt == VT_UNKNOWN) {
    if (value->punkVal != nullptr) value->punkVal->Release();
  } else if ((value->vt & VT_ARRAY) != 0) {
    result = DestroyArray(value->parray);
  }
  if (SUCCEEDED(result)) value->vt = VT_EMPTY;
  return result;
}

}  // namespace

const platform::ServiceTable& Ole() {
  static const platform::ServiceTable table = [] {
    platform::ServiceTable t{};
    t.SysAllocStringLen = AllocString;
    t.SysFreeString = FreeString;
    t.SysStringLen = StringLength;
    t.VariantClear = ClearVariant;
    t.SafeArrayCreate = CreateArray;
    t.SafeArrayDestroy = DestroyArray;
    t.SafeArrayPutElement = PutElement;
    t.SafeArrayAccessData = AccessData;
    t.SafeArrayUnaccessData = UnaccessData;
    t.SafeArrayGetDim = [](SAFEARRAY* array) -> UINT { return array ? array->cDims : 0; };
    t.SafeArrayGetLBound = LowerBound;
    t.SafeArrayGetUBound = UpperBound;
    return t;
  }();
  return table;
}

}  // namespace mira::sim
