#include "sim/wmi.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "bytes/secure.h"
#include "bytes/writer.h"
#include "sim/wmi_object.h"

namespace mira::sim {
namespace {

using Bytes = WmiObject::Bytes;
using ObjectPtr = WmiObject::ObjectPtr;
using Size = std::optional<std::uint64_t>;

// The enumeration of the Windows headers is wider than an HRESULT.
constexpr HRESULT kInvalidClass = static_cast<HRESULT>(WBEM_E_INVALID_CLASS);
constexpr HRESULT kInvalidNamespace = static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE);
constexpr HRESULT kFailed = static_cast<HRESULT>(0x80041001U);
constexpr HRESULT kInvalidMethod = static_cast<HRESULT>(0x8004102EU);

constexpr wchar_t kQueryClass[] = L"WMI_Query";
constexpr wchar_t kDataClass[] = L"BDat";
constexpr wchar_t kMethodClass[] = L"BFn";
constexpr wchar_t kBytes[] = L"Bytes";
constexpr wchar_t kData[] = L"Data";

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
    constexpr std::string_view kName = "IEnumWbemClassObject::Next";
    return Noted(kName, nullptr, [&](Size&) -> HRESULT {
      if (const auto refusal = Refused(kName, kWmiInvalidParameter,
                                       {{"timeout", timeout, 1000}, {"count", count, 1}})) {
        return *refusal;
      }
      for (; *returned < count && next_ < objects_.size(); ++*returned) {
        objects[*returned] = ObjectPtr(objects_[next_++]).Detach();
      }
      return *returned == count ? S_OK : S_FALSE;
    });
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
    constexpr std::string_view kName = "IWbemServices::GetObject";
    return Noted(kName, path, [&](Size&) -> HRESULT {
      if (const auto refusal = Refused(kName, kWmiInvalidParameter,
                                       {{"flags", flags, 0},
                                        {"context", context != nullptr, 0},
                                        {"call result", result != nullptr, 0}})) {
        return *refusal;
      }
      const StatePtr& shared = shared_state();
      if (!state().profile.has_wmi_instance) return kWmiNotFound;
      if (IsSameWmiName(WmiText(path), kDataClass)) {
        *object = MakeData(shared, {}).Detach();
        return S_OK;
      }
      if (IsSameWmiName(WmiText(path), kMethodClass)) {
        CComPtr<WmiObject> in = WmiObject::Make(shared, L"__PARAMETERS");
        CComPtr<WmiObject> out = WmiObject::Make(shared, L"__PARAMETERS");
        in->Declare(kData);
        out->Declare(kData);
        CComPtr<WmiObject> method = WmiObject::Make(shared, kMethodClass);
        method->SetSignatures(ObjectPtr(in), ObjectPtr(out));
        *object = method.Detach();
        return S_OK;
      }
      return kWmiNotFound;
    });
  }

  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR filter, LONG flags, IWbemContext* context,
                                               IEnumWbemClassObject** objects) override {
    if (objects == nullptr) return E_POINTER;
    *objects = nullptr;
    constexpr std::string_view kName = "IWbemServices::CreateInstanceEnum";
    return Noted(kName, filter, [&](Size&) -> HRESULT {
      if (const auto refusal = Refused(kName, kWmiInvalidParameter,
                                       {{"flags", flags, 1}, {"context", context != nullptr, 0}})) {
        return *refusal;
      }
      if (!IsSameWmiName(WmiText(filter), kQueryClass)) return kInvalidClass;
      *objects = new Enumerator(shared_state(), QueryInstances(shared_state()));
      return S_OK;
    });
  }

  HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                       IWbemContext* context, IWbemClassObject* in,
                                       IWbemClassObject** out, IWbemCallResult** result) override {
    constexpr std::string_view kName = "IWbemServices::ExecMethod";
    return Noted(kName, path, [&](Size& size) -> HRESULT {
      if (const auto refusal = Refused(kName, kWmiInvalidParameter,
                                       {{"flags", flags, 0},
                                        {"context", context != nullptr, 0},
                                        {"call result", result != nullptr, 0}})) {
        return *refusal;
      }
      if (!IsInstance(WmiText(path))) return kWmiNotFound;
      if (!IsSameWmiName(WmiText(method), kWmiMethod)) return kInvalidMethod;
      if (out == nullptr) return E_POINTER;
      // The machine made every object that it takes parameters from.
      const auto* const parameters = dynamic_cast<WmiObject*>(in);
      const auto* const data = parameters != nullptr ? parameters->Find(kData) : nullptr;
      const auto* const object = data != nullptr ? std::get_if<ObjectPtr>(data) : nullptr;
      const auto* const block =
          object != nullptr && *object ? dynamic_cast<WmiObject*>(object->p) : nullptr;
      const auto* const value = block != nullptr ? block->Find(kBytes) : nullptr;
      const auto* const bytes = value != nullptr ? std::get_if<Bytes>(value) : nullptr;
      if (bytes == nullptr) return kWmiInvalidParameter;
      // The array has the size that the data block announces, however short the record is.
      if (!state().objections.Accept("IWbemServices::ExecMethod",
                                     {{"size of Bytes", static_cast<std::int64_t>(bytes->size()),
                                       state().profile.buffer_size}})) {
        return kWmiInvalidParameter;
      }

      Bytes reply = *bytes;
      size = reply.size();
      std::optional<HRESULT> lost;
      try {
        state().Transact([&] { lost = state().Call(reply); });
      } catch (const std::exception&) {
        lost = kFailed;
      }
      if (lost) {
        mira::bytes::Wipe(reply.data(), reply.size());
        return *lost;
      }
      CComPtr<WmiObject> answer = WmiObject::Make(shared_state(), L"__PARAMETERS");
      answer->Declare(kData, ObjectPtr(MakeData(shared_state(), std::move(reply))));
      *out = answer.Detach();
      return S_OK;
    });
  }

 private:
  // The method's instance has the key of the query instance.
  bool IsInstance(const std::wstring& path) const {
    std::wstring key = state().profile.instance_path;
    const std::size_t found = key.find(kQueryClass);
    if (found != std::wstring::npos) key.erase(0, found + std::size(kQueryClass) - 1);
    return IsSameWmiName(path, kMethodClass + key);
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
    return Noted(kName, resource, [&](Size&) -> HRESULT {
      if (const auto refusal = Refused(kName, kWmiInvalidParameter,
                                       {{"user", user != nullptr, 0},
                                        {"password", password != nullptr, 0},
                                        {"locale", locale != nullptr, 0},
                                        {"flags", flags, 0},
                                        {"authority", authority != nullptr, 0},
                                        {"context", context != nullptr, 0}})) {
        return *refusal;
      }
      const bool is_wmi = IsSameWmiName(WmiText(resource), L"ROOT\\WMI");
      if (!state().objections.Accept(kName, {{"namespace is ROOT\\WMI", is_wmi, 1}})) {
        return kInvalidNamespace;
      }
      // The first connection to another process settles the security of this one.
      state().apartments.FixSecurity();
      *services = new WmiServices(shared_state());
      return S_OK;
    });
  }
};

}  // namespace

IWbemLocator* MakeLocator(const StatePtr& state) { return new Locator(state); }

}  // namespace mira::sim
