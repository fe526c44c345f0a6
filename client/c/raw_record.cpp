#include "client/c/raw_record.h"

#include <algorithm>

#include "client/call.h"
#include "client/raw_call.h"
#include "transport/smbios_ci.h"

namespace mira::client::c {
namespace {

// The slot for the password of command class 10; given instead of "password".
constexpr char kClass10Slot[] = "class10";

// The one secret of the call under the name that keys are obtained by.
class KeySecret : public SecretProvider {
 public:
  explicit KeySecret(GivenSecrets& secrets)
      : secrets_(secrets), slot_(secrets.IsGiven(kClass10Slot) ? kClass10Slot : "password") {}
  bool IsGiven(const std::string&) const override { return secrets_.IsGiven(slot_); }
  bool CanAsk() const override { return false; }
  std::optional<bytes::SecureString> Get(const std::string&, const std::string& purpose) override {
    return secrets_.Get(slot_, purpose);
  }
  bool IsClass10() const { return slot_ == kClass10Slot; }

 private:
  GivenSecrets& secrets_;
  std::string slot_;
};

// The security key: 0 where no password is installed.
std::uint32_t ObtainKeyWord(Session& session, const mira_record& record, GivenSecrets& secrets) {
  KeySecret secret(secrets);
  if (record.key_arg == 0 && !secret.IsGiven("")) return 0;
  const Key key = ObtainKey(session, secret, secret.IsClass10(), Check::kNo);
  if (key.text.empty()) return 0;
  return SecurityKeyOf(session, key);
}

transport::RecordPtr MakeRecord(const mira_record& record, std::span<const std::uint8_t> data,
                                std::uint32_t key) {
  const auto length = static_cast<std::uint32_t>(transport::kFixedRecordSize + data.size());
  transport::RecordPtr made = transport::MakeRecord(record.cls, record.select, length);
  for (unsigned i = 0; i < std::size(record.arg); ++i) {
    transport::SetArg(*made, i + 1, record.arg[i]);
  }
  transport::SetArg(*made, record.key_arg, key);
  made->cbArgKinds = record.arg_flags;
  const auto area = transport::RecordBytes(made).subspan(transport::kFixedRecordSize);
  std::copy(data.begin(), data.end(), area.begin());
  return made;
}

}  // namespace

void CheckRecord(const mira_record* record) {
  constexpr std::uint32_t kWords = 4;
  if (record == nullptr) throw Error(kUsage, "bad-record", "The record is missing.");
  if (record->struct_size < sizeof(mira_record)) {
    throw Error(kUsage, "bad-record", "The record's struct_size is too small.", "struct_size");
  }
  if (record->struct_size > sizeof(mira_record)) {
    throw Error(kNotSupported, "newer-record",
                "The record is of a later version than this library.", "struct_size");
  }
  if (record->key_arg > kWords) {
    throw Error(kUsage, "bad-record", "There is no argument word of that number for the key.",
                "key_arg");
  }
}

Reply CallRecord(Session& session, mira_record& record, std::span<std::uint8_t> data,
                 GivenSecrets& secrets) {
  RawCall call{.command = {record.cls, record.select}, .key_argument = record.key_arg};
  const std::string target = std::to_string(record.cls) + "/" + std::to_string(record.select);
  CMiraIntf& mira = session.Ready();
  CCallingInterface* const calling = FindCallingInterface(mira);
  if (calling == nullptr ||
      (record.cls != callif::kUncheckedClass && !IsAnnounced(mira, record.cls))) {
    throw ErrorOf(STATUS_NOT_SUPPORTED, target);
  }
  const std::uint32_t buffer_size = mira.GetACPIBufSize();
  if (buffer_size < transport::kFixedRecordSize ||
      data.size() > buffer_size - transport::kFixedRecordSize) {
    throw Error(kUsage, "data-too-large", "The data do not fit into the firmware's buffer.", target)
        .With("bufferSize", buffer_size);
  }
  const std::uint32_t key = ObtainKeyWord(session, record, secrets);
  session.CheckCancelled();
  const transport::RecordPtr sent = MakeRecord(record, data, key);
  const auto status = calling->Execute(*sent, buffer_size, mira.GetACPIInstanceName());
  calling->ForgetLastCall(buffer_size);
  record.completion = sent->cbRES1;
  const Session::Changing changing(session);
  const bool is_answered = CMiraIntf::GetLastOperation().call.delivery == Delivery::kAnswered;
  if (!is_answered) throw CallError(session, call.command, STATUS_FAILURE, 0, {.target = target});
  call.results = {static_cast<std::uint32_t>(sent->cbRES1), sent->cbRES2, sent->cbRES3,
                  sent->cbRES4};
  std::copy(call.results.begin() + 1, call.results.end(), std::begin(record.result));
  const auto area = transport::RecordBytes(sent).subspan(transport::kFixedRecordSize);
  std::copy(area.begin(), area.end(), data.begin());
  Reply reply{.document = ToJson(call)};
  if (status == CCallingInterface::STATUS_SUCCESS) return reply;
  Error error = CallError(session, call.command, STATUS_FAILURE, sent->cbRES1, {.target = target});
  error.document = std::move(reply.document);
  throw error;
}

}  // namespace mira::client::c
