#include "facade/mira_intf.h"

#include <string>
#include <utility>

#include "buffers/hdd_pwd_buffer.h"
#include "callif/dispatch.h"
#include "facade/com_ownership.h"
#include "facade/guard.h"
#include "facade/process_state.h"
#include "pldm/manager.h"
#include "transport/connection.h"

using mira::Step;
using mira::platform::Services;
using mira::transport::OperationLog;
using mira::transport::OperationScope;

bool bFlagCheck = false;

std::map<unsigned char, CBIOSObject*> CMiraIntf::m_mapBIOSTable;
unsigned short CMiraIntf::m_SMBIOSMajorVersion = 0;
bool CMiraIntf::m_bIsWMIACPIBufferFixPresent = false;
CComBSTR CMiraIntf::m_bstrACPIInstanceName;
unsigned int CMiraIntf::m_dwACPIBufSize = 0;

namespace {

constexpr unsigned char kCallingInterfaceType = 0xDA;

}  // namespace

CMiraIntf::CMiraIntf(std::ostream& diag) : m_Diag(diag) { m_bIsWMIACPIBufferFixPresent = false; }

CMiraIntf::CMiraIntf(const CMiraIntf& other) = default;

CMiraIntf::~CMiraIntf() {
  m_pPLDM.reset();
  if (m_bCOMInitialized) mira::PrepareToUninitialize(this, m_pServices);
  m_pServices.Release();
  if (m_bCOMInitialized) Services().CoUninitialize();
}

CCallingInterface* CMiraIntf::CallingInterface() {
  return dynamic_cast<CCallingInterface*>(GetBIOSObject(kCallingInterfaceType));
}

void CMiraIntf::Display(std::ostream& out) {
  Guard("Display", false, [&out] {
    for (const auto& [type, object] : m_mapBIOSTable) object->Display(out);
    return true;
  });
}

CBIOSObject* CMiraIntf::GetBIOSObject(unsigned char type) {
  const auto found = m_mapBIOSTable.find(type);
  return found != m_mapBIOSTable.end() ? found->second : nullptr;
}

unsigned int CMiraIntf::GetACPIBufSize() { return m_dwACPIBufSize; }

const CComBSTR& CMiraIntf::GetACPIInstanceName() { return m_bstrACPIInstanceName; }

void CMiraIntf::GetAllDATokens(std::map<std::uint16_t, CDAToken>& out) {
  out.clear();
  Guard("GetAllDATokens", false, [&] {
    if (CCallingInterface* const calling = CallingInterface()) calling->GetAllDATokens(out);
    return true;
  });
}

Status CMiraIntf::ExecuteDACI(std::uint16_t cls, std::uint16_t sel, IBIOSData& data,
                              const std::string& password, PwdInfo::PWDTYPE pwdType) {
  const OperationScope scope("ExecuteDACI");
  const Status status = Guard("ExecuteDACI", STATUS_FAILURE, [&] {
    const mira::transport::ComScope com;
    if (CallingInterface() == nullptr) OperationLog::Get().FailOperation(Step::kCallingInterface);
    if (GetBIOSObject(kCallingInterfaceType) == nullptr) {
      m_Diag << "Unable to get DA Type Object!" << std::endl;
      return STATUS_FAILURE;
    }
    CCallingInterface* const calling = CallingInterface();
    if (calling == nullptr) {
      m_Diag << "Down cast failed!" << std::endl;
      return STATUS_FAILURE;
    }
    using mira::callif::DispatchResult;
    switch (mira::callif::Dispatch({*calling, m_dwACPIBufSize, m_bstrACPIInstanceName}, cls, sel,
                                   data, password, pwdType == PwdInfo::PWD_CLASS10)) {
      case DispatchResult::kDone:
        return STATUS_SUCCESS;
      case DispatchResult::kNotSupported:
        return STATUS_NOT_SUPPORTED;
      case DispatchResult::kNoKey:
        return STATUS_SECURITY_KEY_FAILED;
      case DispatchResult::kFailed:
        break;
    }
    return STATUS_FAILURE;
  });
  return scope.Ended(status, STATUS_SUCCESS);
}

bool CMiraIntf::GetPwdInfo(PwdInfo& info) {
  const OperationScope scope("GetPwdInfo");
  info = PwdInfo{};
  return Guard("GetPwdInfo", false, [&] {
    CCallingInterface* const calling = CallingInterface();
    if (calling == nullptr) {
      OperationLog::Get().FailOperation(Step::kCallingInterface);
      return false;
    }
    CPwdContext(*calling, m_dwACPIBufSize, m_bstrACPIInstanceName).Fill(info);
    return true;
  });
}

unsigned int CMiraIntf::ValidatePwd(const std::string& password, PwdInfo::PWDTYPE type) {
  const OperationScope scope("ValidatePwd");
  return Guard("ValidatePwd", CPwdContext::kNoKey, [&] {
    CCallingInterface* const calling = CallingInterface();
    if (calling == nullptr) OperationLog::Get().FailOperation(Step::kCallingInterface);
    if (calling == nullptr || (type != PwdInfo::PWD_CLASS9 && type != PwdInfo::PWD_CLASS10)) {
      return std::uint32_t{0};
    }
    CPwdContext context(*calling, m_dwACPIBufSize, m_bstrACPIInstanceName);
    const std::uint32_t key = context.GetSecurityKey(password, type == PwdInfo::PWD_CLASS10);
    if (key == CPwdContext::kNoKey) OperationLog::Get().FailWithCall(Step::kSecurityKey);
    return key;
  });
}

const mira::OperationReport& CMiraIntf::GetLastOperation() noexcept {
  return OperationLog::Get().LastOperation();
}

const mira::StartUpReport& CMiraIntf::GetStartUp() noexcept {
  return OperationLog::Get().StartUp();
}

namespace mira {

void ResetProcessState() noexcept {
  for (const auto& [type, object] : CMiraIntf::m_mapBIOSTable) CBIOSObject::Deleter{}(object);
  CMiraIntf::m_mapBIOSTable.clear();
  CMiraIntf::m_SMBIOSMajorVersion = 0;
  CMiraIntf::m_bIsWMIACPIBufferFixPresent = false;
  CMiraIntf::m_bstrACPIInstanceName.Empty();
  CMiraIntf::m_dwACPIBufSize = 0;
  ForgetOwners();
  OperationLog::Get().Clear();
}

}  // namespace mira
