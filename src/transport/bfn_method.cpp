#include "transport/bfn_method.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "bytes/secure.h"
#include "platform/variant.h"
#include "transport/com_error.h"
#include "transport/wmi_object.h"

namespace mira::transport {
namespace {

using platform::ByteArrayAccess;
using platform::Services;
using platform::Variant;

constexpr std::int32_t kDidNotExecute = -3;

// The bytes of an array may hold a password or a key: they are overwritten before the array is
// released.
class WipedVariant : public Variant {
 public:
  ~WipedVariant() {
    const ByteArrayAccess access(*this);
    bytes::Wipe(access.Bytes().data(), access.Bytes().size());
  }
};

}  // namespace

BfnMethod::BfnMethod(const CComPtr<IWbemServices>& services) : services_(services) {
  if (services_) Prepare();
}

void BfnMethod::Prepare() {
  const CComBSTR data_name = MakeBstr(L"BDat");
  const CComBSTR class_name = MakeBstr(L"BFn");
  const CComBSTR method_name = MakeBstr(L"DoBFn");
  const bool ready =
      services_->GetObject(data_name, 0, nullptr, &data_class_, nullptr) == S_OK &&
      services_->GetObject(class_name, 0, nullptr, &method_class_, nullptr) == S_OK &&
      method_class_->GetMethod(method_name, 0, &in_signature_, &out_signature_) == S_OK &&
      data_class_->SpawnInstance(0, &data_) == S_OK && in_signature_ &&
      in_signature_->SpawnInstance(0, &in_parameters_) == S_OK;
  if (ready) return;
  for (CComPtr<IWbemClassObject> BfnMethod::*object :
       {&BfnMethod::data_class_, &BfnMethod::data_, &BfnMethod::method_class_,
        &BfnMethod::in_signature_, &BfnMethod::out_signature_, &BfnMethod::in_parameters_}) {
    (this->*object).Release();
  }
}

bool BfnMethod::Call(SMBiosCI& ci, unsigned int buffer_size, const CComBSTR& instance_key) {
  if (!data_ || !in_signature_ || !in_parameters_) return false;
  ci.cbRES1 = kDidNotExecute;
  if (!FillInputCIBuffer(ci, buffer_size)) return false;
  {
    const CComBSTR name = MakeBstr(L"Data");
    Variant value(data_);
    if (FAILED(in_parameters_->Put(name, 0, &value, 0))) return false;
  }
  out_parameters_.Release();
  std::wstring path = L"BFn";
  if (instance_key.m_str != nullptr) path.append(instance_key.m_str, instance_key.Length());
  const CComBSTR path_string = MakeBstr(path.c_str());
  const CComBSTR method_name = MakeBstr(L"DoBFn");
  if (FAILED(services_->ExecMethod(path_string, method_name, 0, nullptr, in_parameters_,
                                   &out_parameters_, nullptr))) {
    return false;
  }
  return GetOutputCIBuffer(ci);
}

bool BfnMethod::FillInputCIBuffer(const SMBiosCI& ci, unsigned int buffer_size) {
  const std::uint32_t length = ci.cbLength;
  // The array is made of the size that the firmware announced, so the size is bounded before it
  // allocates; a record that does not fit fails before anything is sent.
  if (!data_ || buffer_size > kMaxTransferSize || length > buffer_size) return false;
  WipedVariant array;
  SAFEARRAYBOUND bound{};
  bound.cElements = buffer_size;
  array.OwnByteArray(Services().SafeArrayCreate(VT_UI1, 1, &bound));
  if (array.ByteArray() == nullptr) return false;
  const std::uint8_t* const record = reinterpret_cast<const std::uint8_t*>(&ci);
  for (std::uint32_t i = 0; i < length; ++i) {
    LONG index = static_cast<LONG>(i);
    std::uint8_t byte = record[i];
    if (FAILED(Services().SafeArrayPutElement(array.ByteArray(), &index, &byte))) return false;
  }
  const CComBSTR name = MakeBstr(L"Bytes");
  return data_->Put(name, 0, &array, 0) == S_OK;
}

bool BfnMethod::GetOutputCIBuffer(SMBiosCI& ci) const {
  if (!out_parameters_) return false;
  const CComPtr<IWbemClassObject> data = EmbeddedObject(out_parameters_, L"Data");
  WipedVariant value;
  if (!data || !GetProperty(data, L"Bytes", value)) return false;
  const ByteArrayAccess access(value);
  // Fewer bytes than the record is long would leave part of it unanswered: no answer at all.
  const std::uint32_t length = ci.cbLength;
  if (!access.Ok() || access.Bytes().size() < length) return false;
  std::memcpy(&ci, access.Bytes().data(), length);
  return true;
}

}  // namespace mira::transport
