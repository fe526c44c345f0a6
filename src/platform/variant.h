#ifndef MIRA_PLATFORM_VARIANT_H_
#define MIRA_PLATFORM_VARIANT_H_

// Guards for VARIANT and SAFEARRAY values.
//
//   Variant value;
//   if (object->Get(name, 0, &value, nullptr, nullptr) == S_OK) {
//     const ByteArrayAccess bytes(value);
//     if (bytes.Ok()) Use(bytes.Bytes());
//   }

#include <cstdint>
#include <span>

#include "platform/com_ptr.h"

namespace mira::platform {

// A VARIANT that is cleared at the end of its scope.
class Variant {
 public:
  Variant() noexcept : value_{} { value_.vt = VT_EMPTY; }
  ~Variant() { Services().VariantClear(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  // A variant that holds a reference of its own to the object.
  explicit Variant(IUnknown* object) noexcept : Variant() {
    value_.vt = VT_UNKNOWN;
    value_.punkVal = object;
    object->AddRef();
  }
  // Takes over a byte array; the variant must be empty. A null array leaves it empty.
  void OwnByteArray(SAFEARRAY* array) noexcept {
    if (array == nullptr) return;
    value_.vt = static_cast<VARTYPE>(VT_ARRAY | VT_UI1);
    value_.parray = array;
  }

  VARIANT* operator&() noexcept { return &value_; }
  VARTYPE Type() const noexcept { return value_.vt; }
  // The text or the object held, or null when something else is.
  BSTR Text() const noexcept { return value_.vt == VT_BSTR ? value_.bstrVal : nullptr; }
  IUnknown* Object() const noexcept { return value_.vt == VT_UNKNOWN ? value_.punkVal : nullptr; }
  SAFEARRAY* ByteArray() const noexcept {
    return value_.vt == static_cast<VARTYPE>(VT_ARRAY | VT_UI1) ? value_.parray : nullptr;
  }

 private:
  VARIANT value_;
};

// The bytes of a variant that holds a one-dimensional array of unsigned bytes, locked for a scope.
class ByteArrayAccess {
 public:
  explicit ByteArrayAccess(const Variant& variant) noexcept {
    const ServiceTable& services = Services();
    SAFEARRAY* const array = variant.ByteArray();
    LONG lower = 0;
    LONG upper = -1;
    void* data = nullptr;
    if (array == nullptr || services.SafeArrayGetDim(array) != 1 ||
        FAILED(services.SafeArrayGetLBound(array, 1, &lower)) ||
        FAILED(services.SafeArrayGetUBound(array, 1, &upper)) ||
        FAILED(services.SafeArrayAccessData(array, &data))) {
      return;
    }
    array_ = array;
    const std::int64_t size = std::int64_t{upper} - lower + 1;
    if (data != nullptr && size > 0) {
      bytes_ = {static_cast<std::uint8_t*>(data), static_cast<std::size_t>(size)};
    }
  }
  ~ByteArrayAccess() {
    if (array_ != nullptr) Services().SafeArrayUnaccessData(array_);
  }
  ByteArrayAccess(const ByteArrayAccess&) = delete;
  ByteArrayAccess& operator=(const ByteArrayAccess&) = delete;

  bool Ok() const noexcept { return array_ != nullptr; }
  std::span<std::uint8_t> Bytes() const noexcept { return bytes_; }

 private:
  SAFEARRAY* array_ = nullptr;
  std::span<std::uint8_t> bytes_;
};

}  // namespace mira::platform

#endif  // MIRA_PLATFORM_VARIANT_H_
