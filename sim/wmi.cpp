#include "sim/wmi.h"

#include <algorithm>
#include <cwctype>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "bytes/secure.h"
#include "bytes/writer.h"
#include "sim/com_object.h"
#include "sim/ole.h"

namespace mira::sim {
namespace {

using Bytes = std::vector<std::uint8_t>;
using ObjectPtr = CComPtr<IWbemClassObject>;

// The enumeration of the Windows headers is wider than an HRESULT.
constexpr HRESULT kNotFound = static_cast<HRESULT>(WBEM_E_NOT_FOUND);
constexpr HRESULT kInvalidClass = static_cast<HRESULT>(WBEM_E_INVALID_CLASS);
constexpr HRESULT kInvalidNamespace = static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE);
constexpr HRESULT kFailed = static_cast<HRESULT>(0x80041001U);
constexpr HRESULT kTypeMismatch = static_cast<HRESULT>(0x80041005U);
constexpr HRESULT kInvalidParameter = static_cast<HRESULT>(0x80041008U);
constexpr HRESULT kInvalidMethod = static_cast<HRESULT>(0x8004102EU);

constexpr wchar_t kQueryClass[] = L"WMI_Query";
constexpr wchar_t kDataClass[] = L"BDat";
constexpr wchar_t kMethodClass[] = L"BFn";
constexpr wchar_t kMethod[] = L"DoBFn";
constexpr wchar_t kBytes[] = L"Bytes";
constexpr wchar_t kData[] = L"Data";

// WMI compares names without regard to case.
struct NameLess {
  bool operator()(const std::wstring& a, const std::wstring& b) const {
    const auto lower = [](wchar_t c) { return std::towlower(static_cast<std::wint_t>(c)); };
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(),
        [lower](wchar_t x, wchar_t y) { return lower(x) < lower(y); });
  }
};

bool SameName(const std::wstring& a, const std::wstring& b) {
  return !NameLess()(a, b) && !NameLess()(b, a);
}

std::wstring Text(const OLECHAR* text) { return text != nullptr ? text : L""; }

// A class object, an instance, or a method's parameters: named properties, and for the class of the
// method its signatures.
class WmiObject : public ClassObjectBase {
 public:
  using Value = std::variant<std::monostate, std::wstring, Bytes, ObjectPtr>;

  static CComPtr<WmiObject> Make(const StatePtr& state, const std::wstring& class_name) {
    CComPtr<WmiObject> object;
    object.Attach(new WmiObject(state, class_name));
    return object;
  }

  // A property that nobody has set reads as empty.
  void Declare(const std::wstring& name, Value value = {}) {
    Set(properties_[name], std::move(value));
  }
  const Value* Find(const std::wstring& name) const {
    const auto found = properties_.find(name);
    return found != properties_.end() ? &found->second : nullptr;
  }
  void SetSignatures(ObjectPtr in, ObjectPtr out) {
    in_ = std::move(in);
    out_ = std::move(out);
  }
  const std::wstring& ClassName() const { return class_name_; }

  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                LONG* flavor) override {
    if (const auto refusal =
            Refused("IWbemClassObject::Get", kInvalidParameter, {{"flags", flags, 0}})) {
      return *refusal;
    }
    const Value* const found = Find(Text(name));
    if (found == nullptr) return kNotFound;
    if (type != nullptr) *type = 0;
    if (flavor != nullptr) *flavor = 0;
    return value != nullptr ? CopyOut(*found, *value) : S_OK;
  }

  HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override {
    if (const auto refusal = Refused("IWbemClassObject::Put", kInvalidParameter,
                                     {{"flags", flags, 0}, {"type", type, 0}})) {
      return *refusal;
    }
    const auto found = properties_.find(Text(name));
    if (found == properties_.end()) return kNotFound;
    if (value == nullptr) return E_INVALIDARG;
    Value taken;
    if (value->vt == VT_BSTR) {
      taken = Text(value->bstrVal);
    } else if (value->vt == VT_UNKNOWN && value->punkVal != nullptr) {
      void* object = nullptr;
      const HRESULT result = value->punkVal->QueryInterface(IID_IWbemClassObject, &object);
      if (FAILED(result)) return result;
      ObjectPtr held;
      held.Attach(static_cast<IWbemClassObject*>(object));
      taken = std::move(held);
    } else if (value->vt == static_cast<VARTYPE>(VT_ARRAY | VT_UI1)) {
      const auto bytes = ArrayBytes(value->parray);
      if (value->parray != nullptr &&
          !state().objections.Accept("IWbemClassObject::Put",
                                     {{"lower bound", value->parray->rgsabound[0].lLbound, 0}})) {
        return kInvalidParameter;
      }
      if (state().on_put) state().on_put(bytes);
      taken = Bytes(bytes.begin(), bytes.end());
    } else {
      return kTypeMismatch;
    }
    Set(found->second, std::move(taken));
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (const auto refusal =
            Refused("IWbemClassObject::SpawnInstance", kInvalidParameter, {{"flags", flags, 0}})) {
      return *refusal;
    }
    CComPtr<WmiObject> instance = Make(shared_state(), class_name_);
    for (const auto& [name, value] : properties_) instance->Declare(name);
    *object = instance.Detach();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in,
                                      IWbemClassObject** out) override {
    if (const auto refusal = Refused("IWbemClassObject::GetMethod", kInvalidParameter,
                                     {{"flags", flags, 0},
                                      {"asks for the input", in != nullptr, 1},
                                      {"asks for the output", out != nullptr, 1}})) {
      return *refusal;
    }
    if (!SameName(Text(name), kMethod) || !in_) return kNotFound;
    if (in != nullptr) *in = ObjectPtr(in_).Detach();
    if (out != nullptr) *out = ObjectPtr(out_).Detach();
    return S_OK;
  }

 private:
  WmiObject(const StatePtr& state, std::wstring class_name)
      : ClassObjectBase(state), class_name_(std::move(class_name)) {}
  ~WmiObject() override {
    for (auto& [name, value] : properties_) Wipe(value);
  }

  // A property may hold a whole call record. The machine keeps no secret longer than its property.
  static void Wipe(Value& value) {
    if (Bytes* const bytes = std::get_if<Bytes>(&value)) {
      mira::bytes::Wipe(bytes->data(), bytes->size());
    }
  }
  static void Set(Value& target, Value value) {
    Wipe(target);
    target = std::move(value);
  }

  HRESULT CopyOut(const Value& from, VARIANT& to) const {
    const auto& services = platform::Services();
    if (const auto* text = std::get_if<std::wstring>(&from)) {
      BSTR const copy = services.SysAllocStringLen(text->c_str(), static_cast<UINT>(text->size()));
      if (copy == nullptr) return E_OUTOFMEMORY;
      to.vt = VT_BSTR;
      to.bstrVal = copy;
    } else if (const auto* bytes = std::get_if<Bytes>(&from)) {
      SAFEARRAYBOUND bound{};
      bound.cElements = static_cast<ULONG>(bytes->size());
      SAFEARRAY* const array = Ole().SafeArrayCreate(VT_UI1, 1, &bound);
      if (array == nullptr) return E_OUTOFMEMORY;
      ++state().live.arrays;
      std::copy(bytes->begin(), bytes->end(), static_cast<std::uint8_t*>(array->pvData));
      to.vt = static_cast<VARTYPE>(VT_ARRAY | VT_UI1);
      to.parray = array;
    } else if (const auto* object = std::get_if<ObjectPtr>(&from); object != nullptr && *object) {
      to.vt = VT_UNKNOWN;
      to.punkVal = ObjectPtr(*object).Detach();
    } else {
      to.vt = VT_NULL;
    }
    return S_OK;
  }

  std::wstring class_name_;
  std::map<std::wstring, Value, NameLess> properties_;
  ObjectPtr in_;
  ObjectPtr out_;
};

CComPtr<WmiObject> MakeData(const StatePtr& state, Bytes bytes) {
  CComPtr<WmiObject> data = WmiObject::Make(state, kDataClass);
  data->Declare(kBytes, std::move(bytes));
  return data;
}

// The instances of WMI_Query: another driver's block first, as on real machines, then the machine's
// own.
std::vector<ObjectPtr> QueryInstances(const StatePtr& state) {
  const auto make = [&state](Bytes block, const std::wstring& path) {
    CComPtr<WmiObject> instance = WmiObject::Make(state, kQueryClass);
    instance->Declare(L"QDATA", ObjectPtr(MakeData(state, std::move(block))));
    instance->Declare(L"__RELPATH", path);
    return ObjectPtr(instance);
  };
  std::vector<ObjectPtr> instances;
  instances.push_back(make({'O', 'T', 'H', 'E', 'R', 'W', 'M', 'I', 0, 0, 0, 0},
                           L"WMI_Query.InstanceName=\"ACPI\\\\PNP0C14\\\\OTHER_0\""));
  if (state->profile.has_wmi_instance) {
    Bytes block = {'T', 'A', 'R', 'N', ' ', 'W', 'M', 'I'};
    for (const std::uint32_t word :
         {std::uint32_t{0x00010001}, state->profile.buffer_size, state->profile.buffer_fix}) {
      bytes::Append(block, word, sizeof(word));
    }
    instances.push_back(make(std::move(block), state->profile.instance_path));
  }
  return instances;
}

class Enumerator : public EnumeratorBase {
 public:
  Enumerator(const StatePtr& state, std::vector<ObjectPtr> objects)
      : EnumeratorBase(state), objects_(std::move(objects)) {}

  HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                 ULONG* returned) override {
    if (objects == nullptr || returned == nullptr) return E_POINTER;
    *returned = 0;
    if (const auto refusal = Refused("IEnumWbemClassObject::Next", kInvalidParameter,
                                     {{"timeout", timeout, 1000}, {"count", count, 1}})) {
      return *refusal;
    }
    for (; *returned < count && next_ < objects_.size(); ++*returned) {
      objects[*returned] = ObjectPtr(objects_[next_++]).Detach();
    }
    return *returned == count ? S_OK : S_FALSE;
  }

 private:
  std::vector<ObjectPtr> objects_;
  std::size_t next_ = 0;
};

class WmiServices : public ServicesBase {
 public:
  explicit WmiServices(const StatePtr& state) : ServicesBase(state) {}

  HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                      IWbemClassObject** object,
                                      IWbemCallResult** result) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (const auto refusal = Refused("IWbemServices::GetObject", kInvalidParameter,
                                     {{"flags", flags, 0},
                                      {"context", context != nullptr, 0},
                                      {"call result", result != nullptr, 0}})) {
      return *refusal;
    }
    const StatePtr& shared = shared_state();
    if (!state().profile.has_wmi_instance) return kNotFound;
    if (SameName(Text(path), kDataClass)) {
      *object = MakeData(shared, {}).Detach();
      return S_OK;
    }
    if (SameName(Text(path), kMethodClass)) {
      CComPtr<WmiObject> in = WmiObject::Make(shared, L"__PARAMETERS");
      CComPtr<WmiObject> out = WmiObject::Make(shared, L"__PARAMETERS");
      in->Declare(kData);
      out->Declare(kData);
      CComPtr<WmiObject> method = WmiObject::Make(shared, kMethodClass);
      method->SetSignatures(ObjectPtr(in), ObjectPtr(out));
      *object = method.Detach();
      return S_OK;
    }
    return kNotFound;
  }

  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR filter, LONG flags, IWbemContext* context,
                                               IEnumWbemClassObject** objects) override {
    if (objects == nullptr) return E_POINTER;
    *objects = nullptr;
    if (const auto refusal = Refused("IWbemServices::CreateInstanceEnum", kInvalidParameter,
                                     {{"flags", flags, 1}, {"context", context != nullptr, 0}})) {
      return *refusal;
    }
    if (!SameName(Text(filter), kQueryClass)) return kInvalidClass;
    *objects = new Enumerator(shared_state(), QueryInstances(shared_state()));
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                       IWbemContext* context, IWbemClassObject* in,
                                       IWbemClassObject** out, IWbemCallResult** result) override {
    if (const auto refusal = Refused("IWbemServices::ExecMethod", kInvalidParameter,
                                     {{"flags", flags, 0},
                                      {"context", context != nullptr, 0},
                                      {"call result", result != nullptr, 0}})) {
      return *refusal;
    }
    if (!IsInstance(Text(path))) return kNotFound;
    if (!SameName(Text(method), kMethod)) return kInvalidMethod;
    if (out == nullptr) return E_POINTER;
    // The machine made every object that it takes parameters from.
    const auto* const parameters = dynamic_cast<WmiObject*>(in);
    const auto* const data = parameters != nullptr ? parameters->Find(kData) : nullptr;
    const auto* const object = data != nullptr ? std::get_if<ObjectPtr>(data) : nullptr;
    const auto* const block =
        object != nullptr && *object ? dynamic_cast<WmiObject*>(object->p) : nullptr;
    const auto* const value = block != nullptr ? block->Find(kBytes) : nullptr;
    const auto* const bytes = value != nullptr ? std::get_if<Bytes>(value) : nullptr;
    if (bytes == nullptr) return kInvalidParameter;
    // The array has the size that the data block announces, however short the record is.
    if (!state().objections.Accept("IWbemServices::ExecMethod",
                                   {{"size of Bytes", static_cast<std::int64_t>(bytes->size()),
                                     state().profile.buffer_size}})) {
      return kInvalidParameter;
    }

    Bytes reply = *bytes;
    try {
      state().Transact([&] { state().firmware.Execute(reply, state().faults); });
    } catch (const std::exception&) {
      return kFailed;
    }
    CComPtr<WmiObject> answer = WmiObject::Make(shared_state(), L"__PARAMETERS");
    answer->Declare(kData, ObjectPtr(MakeData(shared_state(), std::move(reply))));
    *out = answer.Detach();
    return S_OK;
  }

 private:
  // The method's instance has the key of the query instance.
  bool IsInstance(const std::wstring& path) const {
    std::wstring key = state().profile.instance_path;
    const std::size_t found = key.find(kQueryClass);
    if (found != std::wstring::npos) key.erase(0, found + std::size(kQueryClass) - 1);
    return SameName(path, kMethodClass + key);
  }
};

class Locator : public ComObject<IWbemLocator> {
 public:
  explicit Locator(const StatePtr& state) : ComObject(state, IID_IWbemLocator) {}

  HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                          const BSTR locale, LONG flags, const BSTR authority,
                                          IWbemContext* context,
                                          IWbemServices** services) override {
    constexpr std::string_view kName = "IWbemLocator::ConnectServer";
    if (services == nullptr) return E_POINTER;
    *services = nullptr;
    if (const auto refusal = Refused(kName, kInvalidParameter,
                                     {{"user", user != nullptr, 0},
                                      {"password", password != nullptr, 0},
                                      {"locale", locale != nullptr, 0},
                                      {"flags", flags, 0},
                                      {"authority", authority != nullptr, 0},
                                      {"context", context != nullptr, 0}})) {
      return *refusal;
    }
    const bool is_wmi = SameName(Text(resource), L"ROOT\\WMI");
    if (!state().objections.Accept(kName, {{"namespace is ROOT\\WMI", is_wmi, 1}})) {
      return kInvalidNamespace;
    }
    // The first connection to another process settles the security of this one.
    state().apartments.FixSecurity();
    *services = new WmiServices(shared_state());
    return S_OK;
  }
};

}  // namespace

IWbemLocator* MakeLocator(const StatePtr& state) { return new Locator(state); }

}  // namespace mira::sim
