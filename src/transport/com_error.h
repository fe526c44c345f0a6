#ifndef MIRA_TRANSPORT_COM_ERROR_H_
#define MIRA_TRANSPORT_COM_ERROR_H_

#include "platform/com_ptr.h"

namespace mira::transport {

// A COM failure raised as an exception: only E_OUTOFMEMORY, when a COM string cannot be made.
class ComError {
 public:
  explicit ComError(HRESULT code) : code_(code) {}
  HRESULT Error() const { return code_; }

 private:
  HRESULT code_;
};

// A BSTR of the text. Throws ComError(E_OUTOFMEMORY).
inline CComBSTR MakeBstr(const wchar_t* text) {
  CComBSTR result(text);
  if (result.m_str == nullptr) throw ComError(E_OUTOFMEMORY);
  return result;
}

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_COM_ERROR_H_
