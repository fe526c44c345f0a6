#include "transport/bfn_method.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "bytes/secure.h"
#include "platform/variant.h"
#include "transport/com_error.h"
#include "transport/operation_log.h"
#include "transport/wmi_object.h"

namespace mira::transport {
namespace {

using platform::ByteArrayAccess;
using platform::Services;
using platform::Variant;

constexpr std::int32_t kDidNotExecute = -3;

// The bytes of an array may hold a password or a key: they are overwritten before the array is
// released, by its own fields, since a service could fail.
class WipedVariant : public Variant {
 public:
  WipedVariant() = default;
  // Of an array that is filled here only the first bytes are ever other than zero: a buffer may be
  // thousands of times as long as the record.
  explicit WipedVariant(std::size_t written) : written_(written) {}
  ~WipedVariant() {
    const SAFEARRAY* const array = ByteArray();
    if (array == nullptr || array->pvData == nullptr || array->cDims != 1) return;
    const std::size_t size = std::size_t{array->rgsabound[0].cElements} * array->cbElements;
    bytes::Wipe(array->pvData, std::min(size, written_));
  }

 private:
  std::size_t written_ = std::numeric_limits<std::size_t>::max();
};

// Whether the record's command carries a password, or what is exchanged for one.
bool MayHoldPassword(const SMBiosCI& ci) {
  constexpr std::uint16_t kAttributes = 5;
  constexpr std::uint16_t kWriteAttribute = 6;
  switch (ci.cbClass) {
    case 9:
    case 10:
    case 12:
      return ci.cbLength > kFixedRecordSize;
    case kAttributes:
      return ci.cbSelect == kWriteAttribute;
    default:
      return false;
  }
}

}  // namespace

BfnMethod* BfnMethod::first_ = nullptr;

BfnMethod::BfnMethod(const CComPtr<IWbemServices>& services) : services_(services) {
  if (!services_) return;
  Prepare();
  Link();
}

BfnMethod::BfnMethod(const BfnMethod& other) { *this = other; }

BfnMethod& BfnMethod::operator=(const BfnMethod& other) {
  if (this == &other) return *this;
  services_ = other.services_;
  data_class_ = other.data_class_;
  data_ = other.data_;
  method_class_ = other.method_class_;
  in_signature_ = other.in_signature_;
  out_signature_ = other.out_signature_;
  in_parameters_ = other.in_parameters_;
  out_parameters_ = other.out_parameters_;
  if (other.is_linked_) {
    Link();
  } else {
    Unlink();
  }
  return *this;
}

BfnMethod::~BfnMethod() { Unlink(); }

void BfnMethod::Link() noexcept {
  if (is_linked_) return;
  is_linked_ = true;
  previous_ = nullptr;
  next_ = first_;
  if (next_ != nullptr) next_->previous_ = this;
  first_ = this;
}

void BfnMethod::Unlink() noexcept {
  if (!is_linked_) return;
  is_linked_ = false;
  if (next_ != nullptr) next_->previous_ = previous_;
  (previous_ != nullptr ? previous_->next_ : first_) = next_;
}

void BfnMethod::LetGo(const IWbemServices* services) noexcept {
  for (BfnMethod* method = first_; method != nullptr; method = method->next_) {
    if (method->services_.p != services) continue;
    method->ReleaseObjects();
    method->services_.Release();
  }
}

void BfnMethod::Reconnect(const CComPtr<IWbemServices>& services) noexcept {
  for (BfnMethod* method = first_; method != nullptr; method = method->next_) {
    if (method->services_) continue;
    method->services_ = services;
    try {
      method->Prepare();
    } catch (const ComError&) {
      // Without memory it stays as it was, for the connection after this one.
      method->ReleaseObjects();
      method->services_.Release();
    }
  }
}

bool BfnMethod::Prepare() {
  const CComBSTR data_name = MakeBstr(L"BDat");
  const CComBSTR class_name = MakeBstr(L"BFn");
  const CComBSTR method_name = MakeBstr(L"DoBFn");
  // A service may also succeed and give nothing.
  const bool ready =
      services_->GetObject(data_name, 0, nullptr, &data_class_, nullptr) == S_OK && data_class_ &&
      services_->GetObject(class_name, 0, nullptr, &method_class_, nullptr) == S_OK &&
      method_class_ &&
      method_class_->GetMethod(method_name, 0, &in_signature_, &out_signature_) == S_OK &&
      data_class_->SpawnInstance(0, &data_) == S_OK && data_ && in_signature_ &&
      in_signature_->SpawnInstance(0, &in_parameters_) == S_OK && in_parameters_;
  if (!ready) ReleaseObjects();
  return ready;
}

void BfnMethod::ReleaseObjects() noexcept {
  for (CComPtr<IWbemClassObject> BfnMethod::*object :
       {&BfnMethod::data_class_, &BfnMethod::data_, &BfnMethod::method_class_,
        &BfnMethod::in_signature_, &BfnMethod::out_signature_, &BfnMethod::in_parameters_,
        &BfnMethod::out_parameters_}) {
    (this->*object).Release();
  }
}

bool BfnMethod::Call(SMBiosCI& ci, unsigned int buffer_size, const CComBSTR& instance_key) {
  OperationLog& log = OperationLog::Get();
  const OperationScope operation("Execute");
  log.BeginCall(ci.cbClass, ci.cbSelect);
  const bool holds_password = MayHoldPassword(ci);
  const bool answered = Carry(ci, buffer_size, instance_key, log);
  if (holds_password) ForgetRecord(buffer_size);
  if (answered) {
    log.AnswerCall(ci.cbRES1);
  } else if (log.LastOperation().call.failure.outcome == StepOutcome::kNotReached) {
    log.FailCall();
  }
  return operation.Ended(answered, true);
}

bool BfnMethod::Carry(SMBiosCI& ci, unsigned int buffer_size, const CComBSTR& instance_key,
                      OperationLog& log) {
  const auto fail = [&log](HRESULT result) {
    log.FailCall(CodeKind::kHresult, result);
    return false;
  };
  log.Reach(Step::kWmiObjects);
  if (!data_ || !in_signature_ || !in_parameters_) return false;
  ci.cbRES1 = kDidNotExecute;
  log.Reach(Step::kInputBytes);
  if (!FillInputCIBuffer(ci, buffer_size)) return false;
  log.Reach(Step::kInputParameters);
  {
    const CComBSTR name = MakeBstr(L"Data");
    Variant value(data_);
    const HRESULT result = in_parameters_->Put(name, 0, &value, 0);
    if (FAILED(result)) return fail(result);
  }
  out_parameters_.Release();
  log.Reach(Step::kMethodCall);
  std::wstring path = L"BFn";
  if (instance_key.m_str != nullptr) path.append(instance_key.m_str, instance_key.Length());
  const CComBSTR path_string = MakeBstr(path.c_str());
  const CComBSTR method_name = MakeBstr(L"DoBFn");
  log.SentCall();
  const HRESULT result = services_->ExecMethod(path_string, method_name, 0, nullptr, in_parameters_,
                                               &out_parameters_, nullptr);
  if (FAILED(result)) return fail(result);
  log.Reach(Step::kReply);
  return GetOutputCIBuffer(ci);
}

bool BfnMethod::FillInputCIBuffer(const SMBiosCI& ci, unsigned int buffer_size) {
  OperationLog& log = OperationLog::Get();
  const std::uint32_t length = ci.cbLength;
  // The array is made of the size that the firmware announced, so the size is bounded before it
  // allocates; a record that does not fit fails before anything is sent.
  if (!data_ || buffer_size > kMaxTransferSize || length > buffer_size) return false;
  const platform::ServiceTable& services = Services();
  WipedVariant array(length);
  SAFEARRAYBOUND bound{};
  bound.cElements = buffer_size;
  array.OwnByteArray(services.SafeArrayCreate(VT_UI1, 1, &bound));
  if (array.ByteArray() == nullptr) {
    log.FailCall(CodeKind::kHresult, E_OUTOFMEMORY);
    return false;
  }
  const std::uint8_t* const record = reinterpret_cast<const std::uint8_t*>(&ci);
  SAFEARRAY* const elements = array.ByteArray();
  HRESULT result = S_OK;
  for (std::uint32_t i = 0; i < length && SUCCEEDED(result); ++i) {
    LONG index = static_cast<LONG>(i);
    std::uint8_t byte = record[i];
    result = services.SafeArrayPutElement(elements, &index, &byte);
  }
  if (SUCCEEDED(result)) {
    const CComBSTR name = MakeBstr(L"Bytes");
    result = data_->Put(name, 0, &array, 0);
    if (result == S_OK) return true;
  }
  log.FailCall(CodeKind::kHresult, result);
  return false;
}

bool BfnMethod::GetOutputCIBuffer(SMBiosCI& ci) const {
  OperationLog& log = OperationLog::Get();
  if (!out_parameters_) return false;
  HRESULT result = S_OK;
  const CComPtr<IWbemClassObject> data = EmbeddedObject(out_parameters_, L"Data", result);
  WipedVariant value;
  if (data) result = GetProperty(data, L"Bytes", value);
  if (!data || FAILED(result)) {
    log.FailCall(CodeKind::kHresult, result);
    return false;
  }
  const ByteArrayAccess access(value);
  // Fewer bytes than the record is long would leave part of it unanswered: no answer at all.
  const std::uint32_t length = ci.cbLength;
  if (!access.Ok() || access.Bytes().size() < length) return false;
  std::memcpy(&ci, access.Bytes().data(), length);
  return true;
}

void BfnMethod::ForgetRecord(unsigned int buffer_size) noexcept {
  out_parameters_.Release();
  if (!data_ || !in_parameters_ || buffer_size > kMaxTransferSize) return;
  Variant zeros;
  SAFEARRAYBOUND bound{};
  bound.cElements = buffer_size;
  zeros.OwnByteArray(Services().SafeArrayCreate(VT_UI1, 1, &bound));
  if (zeros.ByteArray() == nullptr) return;
  try {
    const CComBSTR bytes = MakeBstr(L"Bytes");
    const CComBSTR data = MakeBstr(L"Data");
    data_->Put(bytes, 0, &zeros, 0);
    // What was put as "Data" may be a copy.
    Variant value(data_);
    in_parameters_->Put(data, 0, &value, 0);
  } catch (const ComError&) {
    // Without memory for the names the record stays until the next call.
    return;
  }
}

}  // namespace mira::transport
