#include "sim/wmi_object.h"

#include <algorithm>
#include <utility>

#include "bytes/secure.h"
#include "sim/ole.h"

namespace mira::sim {
namespace {

constexpr HRESULT kWmiTypeMismatch = static_cast<HRESULT>(0x80041005U);

}  // namespace

bool WmiNameLess::operator()(const std::wstring& a, const std::wstring& b) const {
  const auto lower = [](wchar_t c) { return std::towlower(static_cast<std::wint_t>(c)); };
  return std::lexicographical_compare(
      a.begin(), a.end(), b.begin(), b.end(),
      [lower](wchar_t x, wchar_t y) { return lower(x) < lower(y); });
}

bool IsSameWmiName(const std::wstring& a, const std::wstring& b) {
  return !WmiNameLess()(a, b) && !WmiNameLess()(b, a);
}

CComPtr<WmiObject> WmiObject::Make(const StatePtr& state, const std::wstring& class_name) {
  CComPtr<WmiObject> object;
  object.Attach(new WmiObject(state, class_name));
  return object;
}

WmiObject::~WmiObject() {
  for (auto& [name, value] : properties_) Wipe(value);
}

void WmiObject::Wipe(Value& value) {
  if (Bytes* const bytes = std::get_if<Bytes>(&value)) {
    mira::bytes::Wipe(bytes->data(), bytes->size());
  }
}

void WmiObject::Set(Value& target, Value value) {
  Wipe(target);
  target = std::move(value);
}

void WmiObject::Declare(const std::wstring& name, Value value) {
  Set(properties_[name], std::move(value));
}

const WmiObject::Value* WmiObject::Find(const std::wstring& name) const {
  const auto found = properties_.find(name);
  return found != properties_.end() ? &found->second : nullptr;
}

HRESULT WmiObject::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) {
  constexpr std::string_view kName = "IWbemClassObject::Get";
  return Noted(kName, name, [&](std::optional<std::uint64_t>& size) -> HRESULT {
    if (const auto refusal = Refused(kName, kWmiInvalidParameter, {{"flags", flags, 0}})) {
      return *refusal;
    }
    const Value* const found = Find(WmiText(name));
    if (found == nullptr) return kWmiNotFound;
    if (type != nullptr) *type = 0;
    if (flavor != nullptr) *flavor = 0;
    if (const Bytes* const bytes = std::get_if<Bytes>(found)) size = bytes->size();
    return value != nullptr ? CopyOut(*found, *value) : S_OK;
  });
}

HRESULT WmiObject::Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) {
  constexpr std::string_view kName = "IWbemClassObject::Put";
  return Noted(kName, name, [&](std::optional<std::uint64_t>& size) -> HRESULT {
    if (const auto refusal =
            Refused(kName, kWmiInvalidParameter, {{"flags", flags, 0}, {"type", type, 0}})) {
      return *refusal;
    }
    const auto found = properties_.find(WmiText(name));
    if (found == properties_.end()) return kWmiNotFound;
    if (value == nullptr) return E_INVALIDARG;
    Value taken;
    const HRESULT result = TakeIn(*value, taken);
    if (FAILED(result)) return result;
    if (const Bytes* const bytes = std::get_if<Bytes>(&taken)) size = bytes->size();
    Set(found->second, std::move(taken));
    return S_OK;
  });
}

HRESULT WmiObject::SpawnInstance(LONG flags, IWbemClassObject** object) {
  constexpr std::string_view kName = "IWbemClassObject::SpawnInstance";
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return Noted(kName, class_name_.c_str(), [&](std::optional<std::uint64_t>&) -> HRESULT {
    if (const auto refusal = Refused(kName, kWmiInvalidParameter, {{"flags", flags, 0}})) {
      return *refusal;
    }
    CComPtr<WmiObject> instance = Make(shared_state(), class_name_);
    for (const auto& [name, value] : properties_) instance->Declare(name);
    *object = instance.Detach();
    return S_OK;
  });
}

HRESULT WmiObject::GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                             IWbemClassObject** out) {
  constexpr std::string_view kName = "IWbemClassObject::GetMethod";
  return Noted(kName, name, [&](std::optional<std::uint64_t>&) -> HRESULT {
    if (const auto refusal = Refused(kName, kWmiInvalidParameter,
                                     {{"flags", flags, 0},
                                      {"asks for the input", in != nullptr, 1},
                                      {"asks for the output", out != nullptr, 1}})) {
      return *refusal;
    }
    if (!IsSameWmiName(WmiText(name), kWmiMethod) || !in_) return kWmiNotFound;
    if (in != nullptr) *in = ObjectPtr(in_).Detach();
    if (out != nullptr) *out = ObjectPtr(out_).Detach();
    return S_OK;
  });
}

HRESULT WmiObject::CopyOut(const Value& from, VARIANT& to) const {
  const auto& services = platform::Services();
  if (const auto* text = std::get_if<std::wstring>(&from)) {
    BSTR const copy = services.SysAllocStringLen(text->c_str(), static_cast<UINT>(text->size()));
    if (copy == nullptr) return E_OUTOFMEMORY;
    to.vt = VT_BSTR;
    to.bstrVal = copy;
    state().Filled(copy);
  } else if (const auto* bytes = std::get_if<Bytes>(&from)) {
    SAFEARRAYBOUND bound{};
    bound.cElements = static_cast<ULONG>(bytes->size());
    SAFEARRAY* const array = Ole().SafeArrayCreate(VT_UI1, 1, &bound);
    if (array == nullptr) return E_OUTOFMEMORY;
    ++state().live.arrays;
    std::copy(bytes->begin(), bytes->end(), static_cast<std::uint8_t*>(array->pvData));
    to.vt = static_cast<VARTYPE>(VT_ARRAY | VT_UI1);
    to.parray = array;
    state().Filled(array);
  } else if (const auto* object = std::get_if<ObjectPtr>(&from); object != nullptr && *object) {
    to.vt = VT_UNKNOWN;
    to.punkVal = ObjectPtr(*object).Detach();
    state().Filled(to.punkVal);
  } else {
    to.vt = VT_NULL;
  }
  return S_OK;
}

HRESULT WmiObject::TakeIn(const VARIANT& from, Value& to) const {
  if (from.vt == VT_BSTR) {
    to = WmiText(from.bstrVal);
    return S_OK;
  }
  if (from.vt == VT_UNKNOWN && from.punkVal != nullptr) {
    void* object = nullptr;
    const HRESULT result = from.punkVal->QueryInterface(IID_IWbemClassObject, &object);
    if (FAILED(result)) return result;
    ObjectPtr held;
    held.Attach(static_cast<IWbemClassObject*>(object));
    to = std::move(held);
    return S_OK;
  }
  if (from.vt != static_cast<VARTYPE>(VT_ARRAY | VT_UI1)) return kWmiTypeMismatch;
  const auto bytes = ArrayBytes(from.parray);
  if (from.parray != nullptr &&
      !state().objections.Accept("IWbemClassObject::Put",
                                 {{"lower bound", from.parray->rgsabound[0].lLbound, 0}})) {
    return kWmiInvalidParameter;
  }
  if (state().on_put) state().on_put(bytes);
  to = Bytes(bytes.begin(), bytes.end());
  return S_OK;
}

}  // namespace mira::sim
