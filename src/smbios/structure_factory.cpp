#include "smbios/structure_factory.h"

#include <algorithm>
#include <iterator>

#include "callif/calling_interface.h"

namespace mira::smbios {
namespace {

using RawBytes = std::unique_ptr<unsigned char[]>;
using Connection = CComPtr<IWbemServices>;

struct Row {
  unsigned char type;
  const char* class_name;
  CBIOSObject* (*make)(RawBytes raw, Connection& services);
};

// `new` allocates before it evaluates the argument, so the bytes are never lost.
template <typename T>
CBIOSObject* Make(RawBytes raw, Connection&) {
  return new T(raw.release());
}

CBIOSObject* MakeCallingInterface(RawBytes raw, Connection& services) {
  return new CCallingInterface(raw.release(), services);
}

// Ascending by type. A type without a row gets a plain CBIOSObject; no type is left out of the
// registry.
constexpr Row kRows[] = {
    {218, "CCallingInterface", MakeCallingInterface},
};

const Row* Find(unsigned char type) {
  const Row* const row = std::lower_bound(std::begin(kRows), std::end(kRows), type,
                                          [](const Row& r, unsigned char t) { return r.type < t; });
  return row != std::end(kRows) && row->type == type ? row : nullptr;
}

}  // namespace

CBIOSObject* MakeObject(RawBytes raw, Connection& services) {
  const Row* const row = Find(raw[0]);
  return row ? row->make(std::move(raw), services) : Make<CBIOSObject>(std::move(raw), services);
}

const char* ClassName(unsigned char type) {
  const Row* const row = Find(type);
  return row ? row->class_name : "CBIOSObject";
}

}  // namespace mira::smbios
