#ifndef MIRA_SIM_COM_OBJECT_H_
#define MIRA_SIM_COM_OBJECT_H_

// Reference counting and interface queries, and the methods of the WMI interfaces that the machine
// does not serve.

#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include "bytes/utf16.h"
#include "platform/com_ptr.h"
#include "sim/state.h"

namespace mira::sim {

// A COM object of one interface, made with one reference. Every reference counts into the machine's
// live references, and into those of the apartment in which the object was made: once that has
// ended the object can only be released.
template <typename Interface>
class ComObject : public Interface {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!(riid == IID_IUnknown) && !(riid == iid_)) return E_NOINTERFACE;
    if (const auto refusal = Refused("IUnknown::QueryInterface")) return *refusal;
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    Count(1);
    return ++references_;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    Count(-1);
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  // Why a call is not served, if it is not: the object cannot be reached, an argument is wrong (the
  // caller gets `wrong_argument`), or a fault answers. Each call asks once: that counts it.
  std::optional<HRESULT> Refused(std::string_view operation, HRESULT wrong_argument = E_INVALIDARG,
                                 std::initializer_list<Argument> arguments = {}) const {
    auto forced = state_->faults.Fails(operation);
    if (!forced) forced = Lost(operation);
    const HRESULT reached = state_->apartments.Reach(home_);
    if (FAILED(reached)) {
      state_->objections.Add(operation, "the object's apartment has ended or is another thread's");
      return reached;
    }
    if (!state_->objections.Accept(operation, arguments)) return wrong_argument;
    return forced;
  }

  // Runs a method and notes it, with what it is asked for, in the machine's journal. The method
  // says how many bytes it moves.
  template <typename Method>
  HRESULT Noted(std::string_view operation, const OLECHAR* about, Method method) const {
    // The method may be the last to hold the object.
    const StatePtr state = state_;
    OperationEntry entry;
    entry.result = method(entry.size);
    if (state->storage == nullptr) return entry.result;
    entry.operation = operation;
    if (about != nullptr) entry.about = bytes::Utf8(std::wstring_view(about));
    state->storage->Note(entry);
    return entry.result;
  }

 protected:
  ComObject(StatePtr state, REFIID iid)
      : state_(std::move(state)), iid_(iid), home_(state_->apartments.Current()) {
    Count(1);
  }
  virtual ~ComObject() = default;

  State& state() const { return *state_; }
  const StatePtr& shared_state() const { return state_; }

 private:
  // Why a method cannot reach the machine, if it needs to.
  std::optional<HRESULT> Lost(std::string_view operation) const {
    constexpr std::string_view kConnect = "IWbemLocator::ConnectServer";
    if (operation == kConnect) {
      if (state_->IsOff()) return kServerUnavailable;
      state_->faults.Reconnect();
      return std::nullopt;
    }
    if (!NeedsConnection(operation)) return std::nullopt;
    if (state_->faults.IsCut() || state_->IsOff()) return kConnectionLost;
    return std::nullopt;
  }
  void Count(int change) {
    state_->live.references += change;
    if (home_) home_->references += change;
  }

  StatePtr state_;
  IID iid_;
  ApartmentPtr home_;
  ULONG references_ = 1;
};

// What the library never calls.
class ClassObjectBase : public ComObject<IWbemClassObject> {
 public:
  HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE EndEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*,
                                      IWbemClassObject*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**,
                                       IWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }

 protected:
  explicit ClassObjectBase(StatePtr state) : ComObject(std::move(state), IID_IWbemClassObject) {}
};

class EnumeratorBase : public ComObject<IEnumWbemClassObject> {
 public:
  HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return E_NOTIMPL; }

 protected:
  explicit EnumeratorBase(StatePtr state) : ComObject(std::move(state), IID_IEnumWbemClassObject) {}
};

class ServicesBase : public ComObject<IWbemServices> {
 public:
  HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR, LONG, IWbemContext*, IWbemServices**,
                                          IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*,
                                           IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                     IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                          IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*,
                                        IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR, LONG, IWbemContext*,
                                            IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                 IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject*, LONG, IWbemContext*,
                                        IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR, LONG, IWbemContext*,
                                           IWbemCallResult**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                    IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                      IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                           IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                  IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                       IWbemObjectSink*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                            IWbemClassObject*, IWbemObjectSink*) override {
    return E_NOTIMPL;
  }

 protected:
  explicit ServicesBase(StatePtr state) : ComObject(std::move(state), IID_IWbemServices) {}
};

}  // namespace mira::sim

#endif  // MIRA_SIM_COM_OBJECT_H_
