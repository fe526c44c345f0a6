// What a call costs in the library itself: between the record and the method, and back. The WMI
// objects here do next to nothing, and what they do is measured alone, so that it can be taken off.
// Beside it the array that a call must make and fill byte by byte.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

#include "bytes/secure.h"
#include "platform/variant.h"
#include "sim/com_object.h"
#include "sim/ole.h"
#include "transport/bfn_method.h"

namespace {

using mira::platform::Services;
using mira::sim::StatePtr;
using mira::transport::BfnMethod;

SAFEARRAY* MakeArray(std::uint32_t size) {
  SAFEARRAYBOUND bound{};
  bound.cElements = size;
  return Services().SafeArrayCreate(VT_UI1, 1, &bound);
}

// Every object that a call meets. As "Bytes" it answers with a whole buffer, as WMI does.
class Object final : public mira::sim::ClassObjectBase {
 public:
  Object(const StatePtr& state, std::uint32_t buffer) : ClassObjectBase(state), buffer_(buffer) {}

  // Without the machine's rules of apartments.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = static_cast<IWbemClassObject*>(this);
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE*, LONG*) override {
    if (name[0] == L'D') {
      value->vt = VT_UNKNOWN;
      value->punkVal = this;
      AddRef();
      return S_OK;
    }
    SAFEARRAY* const array = MakeArray(buffer_);
    std::memset(array->pvData, 1, buffer_);
    value->vt = static_cast<VARTYPE>(VT_ARRAY | VT_UI1);
    value->parray = array;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject** object) override {
    return Give(object);
  }
  HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject** in,
                                      IWbemClassObject** out) override {
    Give(out);
    return Give(in);
  }
  HRESULT Give(IWbemClassObject** object) {
    *object = this;
    AddRef();
    return S_OK;
  }

 private:
  std::uint32_t buffer_;
};

class Connection final : public mira::sim::ServicesBase {
 public:
  Connection(const StatePtr& state, std::uint32_t buffer) : ServicesBase(state) {
    object_.Attach(new Object(state, buffer));
  }
  HRESULT STDMETHODCALLTYPE GetObject(const BSTR, LONG, IWbemContext*, IWbemClassObject** object,
                                      IWbemCallResult**) override {
    return object_.p->Give(object);
  }
  HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR, LONG, IWbemContext*,
                                               IEnumWbemClassObject**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR, const BSTR, LONG, IWbemContext*,
                                       IWbemClassObject*, IWbemClassObject** out,
                                       IWbemCallResult**) override {
    return object_.p->Give(out);
  }

 private:
  CComPtr<Object> object_;
};

// A record's length and the size of the buffer that it travels in.
class Setting {
 public:
  explicit Setting(const benchmark::State& state)
      : length(static_cast<std::uint32_t>(state.range(0))),
        buffer(static_cast<std::uint32_t>(state.range(1))),
        record(mira::transport::MakeRecord(11, 0, length)),
        services_(mira::sim::Ole()) {
    services.Attach(
        new Connection(std::make_shared<mira::sim::State>(mira::sim::Profile()), buffer));
  }

  const std::uint32_t length;
  const std::uint32_t buffer;
  mira::transport::RecordPtr record;
  CComPtr<IWbemServices> services;

 private:
  mira::platform::ScopedServices services_;
};

void BM_Call(benchmark::State& state) {
  Setting setting(state);
  BfnMethod method(setting.services);
  const CComBSTR key(L".InstanceName=\"ACPI\\\\PNP0C14\\\\0_0\"");
  for (auto _ : state) {
    if (!method.Call(*setting.record, setting.buffer, key)) state.SkipWithError("no answer");
    // The answer is the reply's bytes.
    setting.record->cbLength = setting.length;
  }
}

// What the objects do in one call.
void BM_Method(benchmark::State& state) {
  Setting setting(state);
  CComPtr<IWbemClassObject> object;
  setting.services->GetObject(nullptr, 0, nullptr, &object, nullptr);
  for (auto _ : state) {
    CComPtr<IWbemClassObject> out;
    object->Put(L"Bytes", 0, nullptr, 0);
    object->Put(L"Data", 0, nullptr, 0);
    setting.services->ExecMethod(nullptr, nullptr, 0, nullptr, object, &out, nullptr);
    mira::platform::Variant data;
    out->Get(L"Data", 0, &data, nullptr, nullptr);
    void* found = nullptr;
    data.Object()->QueryInterface(IID_IWbemClassObject, &found);
    CComPtr<IWbemClassObject> embedded;
    embedded.Attach(static_cast<IWbemClassObject*>(found));
    mira::platform::Variant bytes;
    embedded->Get(L"Bytes", 0, &bytes, nullptr, nullptr);
    benchmark::DoNotOptimize(bytes.ByteArray());
  }
}

void BM_Stores(benchmark::State& state) {
  Setting setting(state);
  mira::platform::Variant array;
  array.OwnByteArray(MakeArray(setting.buffer));
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(setting.record.get());
  for (auto _ : state) {
    for (std::uint32_t i = 0; i < setting.length; ++i) {
      LONG index = static_cast<LONG>(i);
      std::uint8_t byte = bytes[i];
      Services().SafeArrayPutElement(array.ByteArray(), &index, &byte);
    }
  }
}

// The stores with the array that they need.
void BM_Array(benchmark::State& state) {
  Setting setting(state);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(setting.record.get());
  for (auto _ : state) {
    mira::platform::Variant array;
    array.OwnByteArray(MakeArray(setting.buffer));
    for (std::uint32_t i = 0; i < setting.length; ++i) {
      LONG index = static_cast<LONG>(i);
      std::uint8_t byte = bytes[i];
      Services().SafeArrayPutElement(array.ByteArray(), &index, &byte);
    }
  }
}

// Clears a whole buffer, as is done with every reply, which may hold what an earlier call left.
void BM_Wipe(benchmark::State& state) {
  Setting setting(state);
  const auto buffer = std::make_unique<std::uint8_t[]>(setting.buffer);
  for (auto _ : state) mira::bytes::Wipe(buffer.get(), setting.buffer);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  for (const int length : {44, 4096}) {
    for (const int buffer : {4, 32, 256}) benchmark->Args({length, buffer * 1024});
  }
}
BENCHMARK(BM_Call)->Apply(Sizes);
BENCHMARK(BM_Method)->Apply(Sizes);
BENCHMARK(BM_Stores)->Apply(Sizes);
BENCHMARK(BM_Array)->Apply(Sizes);
BENCHMARK(BM_Wipe)->Apply(Sizes);

}  // namespace
