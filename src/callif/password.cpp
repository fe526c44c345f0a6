#include "callif/password.h"

#include <memory>

#include "buffers/password_data.h"
#include "bytes/secure.h"
#include "callif/one_call.h"
#include "transport/operation_log.h"

using mira::transport::OperationLog;

using mira::callif::OneCall;

namespace {

constexpr std::uint16_t kStatusSelect = 3;
constexpr std::uint16_t kVerifySelect = 4;

}  // namespace

CPwdContext::CPwdContext(CCallingInterface& calling, std::uint32_t bufSize,
                         const CComBSTR& instanceKey)
    : calling_(calling),
      buffer_size_(bufSize),
      instance_key_(instanceKey),
      class10_(ReadStatus(10)),
      class9_(ReadStatus(9)),
      class12_(ReadStatus(12)) {}

CPwdContext::Entry CPwdContext::ReadStatus(std::uint16_t cls) {
  CSimpleTokenData data;
  std::uint32_t size = 0;
  OneCall call({calling_, buffer_size_, instance_key_}, {cls, kStatusSelect}, 0, size, data);
  if (!call.Succeeded()) return {};
  call.Buffer().ParseOutputBuffer(data);
  const std::uint32_t status = data.Res2;
  // One flag serves all passwords: the last status read decides.
  uses_scan_codes_ = (status >> 24 & 1) == 0;
  return {(status & 0xFF) == 0, status >> 8 & 0xFF, status >> 16 & 0xFF};
}

const CPwdContext::Entry& CPwdContext::For(std::uint16_t cls) const {
  switch (cls) {
    case 10:
      return class10_;
    case 12:
      return class12_;
    default:
      return class9_;
  }
}

std::uint32_t CPwdContext::GetSecurityKey(const std::string& password, bool class10) {
  const std::uint16_t cls = class10 ? 10 : 9;
  if (!For(cls).installed) return 0;
  const bool fits = !password.empty() && password.size() <= For(cls).max_length;
  if (fits && !uses_scan_codes_) return VerifyPassword(password, cls);
  mira::bytes::SecureString codes;
  if (fits && mira::callif::ToScanCodes(password, codes)) return VerifyPassword(codes.str(), cls);
  OperationLog& log = OperationLog::Get();
  log.BeginCall(cls, kVerifySelect);
  log.Reach(mira::Step::kRequest);
  log.FailCall();
  return kNoKey;
}

std::uint32_t CPwdContext::VerifyPassword(const std::string& password, std::uint16_t cls) {
  // Not on the stack, so that a test sees in what state its memory is given back.
  const auto data = std::make_unique<CVerifyPwdData>();
  data->Password = password;
  data->MaxPwdLen = For(cls).max_length + 1;
  std::uint32_t size = 0;
  OneCall call({calling_, buffer_size_, instance_key_}, {cls, kVerifySelect}, 0, size, *data);
  if (!call.Succeeded()) return kNoKey;
  call.Buffer().ParseOutputBuffer(*data);
  const std::uint32_t key = data->Res2;
  mira::bytes::Wipe(&data->Res2, sizeof(data->Res2));
  return key;
}

void CPwdContext::Fill(PwdInfo& info) const {
  info = PwdInfo{};
  info.installed = (class9_.installed ? PwdInfo::PWD_CLASS9 : 0u) |
                   (class10_.installed ? PwdInfo::PWD_CLASS10 : 0u) |
                   (class12_.installed ? PwdInfo::PWD_CLASS12 : 0u);
  info.class9SecondLength = class9_.second_length;
  info.class9MaxLength = class9_.max_length;
  info.class10SecondLength = class10_.second_length;
  info.class10MaxLength = class10_.max_length;
  info.class12SecondLength = class12_.second_length;
  info.class12MaxLength = class12_.max_length;
}
