#include "facade/mira_intf.h"

#include <algorithm>
#include <exception>
#include <span>
#include <string_view>
#include <utility>

#include "buffers/hdd_pwd_buffer.h"
#include "callif/dispatch.h"
#include "facade/process_state.h"
#include "pldm/manager.h"
#include "smbios/structure_factory.h"
#include "smbios/structures/structures.h"
#include "smbios/table.h"
#include "transport/com_error.h"
#include "transport/connection.h"

using mira::platform::Services;
using mira::pldm::Manager;
using mira::pldm::Outcome;

bool bFlagCheck = false;

std::map<unsigned char, CBIOSObject*> CMiraIntf::m_mapBIOSTable;
unsigned short CMiraIntf::m_SMBIOSMajorVersion = 0;
bool CMiraIntf::m_bIsWMIACPIBufferFixPresent = false;
CComBSTR CMiraIntf::m_bstrACPIInstanceName;
unsigned int CMiraIntf::m_dwACPIBufSize = 0;

namespace {

constexpr unsigned char kCallingInterfaceType = 0xDA;
constexpr unsigned short kFirstMajorVersionWithPLDM = 2;

struct CodeStatus {
  std::int32_t code;
  Status status;
};

// Of the completion code of an attribute's read or write; any other is STATUS_FAILURE.
constexpr CodeStatus kCompletionStatus[] = {
    {-1, STATUS_FUNCTION_ERROR},        {-2, STATUS_NOT_SUPPORTED},
    {-3, STATUS_FUNCTION_NOT_EXECUTED}, {-5, STATUS_OUTPUT_MALFORMED},
    {-6, STATUS_OUTPUT_TOO_SMALL},      {-7, STATUS_INVALID_SECURITY_KEY},
};
constexpr std::int32_t kTransportCodes = -2000000000;  // below this

// Of the firmware's status of a write; any other is STATUS_SUCCESS.
constexpr CodeStatus kWriteStatus[] = {
    {1, STATUS_ATTRIBUTE_REFUSED_1}, {2, STATUS_ATTRIBUTE_REFUSED_2},
    {3, STATUS_ATTRIBUTE_NOT_FOUND}, {4, STATUS_OUTPUT_TOO_SMALL},
    {5, STATUS_ATTRIBUTE_REFUSED_5},
};

Status Look(std::span<const CodeStatus> rows, std::int32_t code, Status other) {
  const auto found = std::find_if(rows.begin(), rows.end(),
                                  [code](const CodeStatus& row) { return row.code == code; });
  return found != rows.end() ? found->status : other;
}

Status StatusOf(const Outcome& outcome) {
  switch (outcome.kind) {
    case Outcome::kDone:
      return STATUS_SUCCESS;
    case Outcome::kNotSupported:
      return STATUS_NOT_SUPPORTED;
    case Outcome::kNotFound:
      return STATUS_ATTRIBUTE_NOT_FOUND;
    case Outcome::kNoKey:
      return STATUS_SECURITY_KEY_FAILED;
    case Outcome::kMalformed:
      return STATUS_OUTPUT_MALFORMED;
    case Outcome::kCallFailed:
      return Look(kCompletionStatus, outcome.code,
                  outcome.code < kTransportCodes ? STATUS_TRANSPORT_ERROR : STATUS_FAILURE);
    case Outcome::kAnswered:
      return Look(kWriteStatus, outcome.code, STATUS_SUCCESS);
    case Outcome::kFailed:
      break;
  }
  return STATUS_FAILURE;
}

}  // namespace

CMiraIntf::CMiraIntf(std::ostream& diag) : m_Diag(diag) { m_bIsWMIACPIBufferFixPresent = false; }

CMiraIntf::CMiraIntf(const CMiraIntf& other) = default;

CMiraIntf::~CMiraIntf() {
  m_pPLDM.reset();
  m_pServices.Release();
  if (m_bCOMInitialized) Services().CoUninitialize();
}

template <typename Result, typename Operation>
Result CMiraIntf::Guard(const char* what, Result failed, Operation operation) {
  try {
    return operation();
  } catch (const mira::transport::ComError&) {
    throw;
  } catch (const std::exception& error) {
    m_Diag << what << " failed: " << error.what() << std::endl;
  }
  return failed;
}

Status CMiraIntf::Init(bool loadPLDM, bool loadDisplayStrings, bool loadHelpStrings) {
  if (!IsUserAdmin()) return STATUS_NOT_ADMIN;
  m_bCOMInitialized = InitializeCOM();
  if (!m_bCOMInitialized) return STATUS_COM_INIT_FAILED;
  if (!Guard("Reading the SMBIOS table", false, [this] { return GetSMBIOSTables(); })) {
    return STATUS_SMBIOS_READ_FAILED;
  }
  if (!Guard("Finding the WMI instance", false, [this] { return FindInstanceAndGetData(); })) {
    return STATUS_WMI_INSTANCE_NOT_FOUND;
  }
  if (!IsACPISupported()) return STATUS_ACPI_NOT_SUPPORTED;
  if (m_SMBIOSMajorVersion < kFirstMajorVersionWithPLDM || !loadPLDM) return STATUS_SUCCESS;
  return InitPLDM(loadDisplayStrings, loadHelpStrings) ? STATUS_SUCCESS : STATUS_PLDM_INIT_FAILED;
}

bool CMiraIntf::IsUserAdmin() {
  const auto& system = Services();
  SID_IDENTIFIER_AUTHORITY nt_authority = {{0, 0, 0, 0, 0, 5}};
  PSID administrators = nullptr;
  BOOL is_member = FALSE;
  if (system.AllocateAndInitializeSid(&nt_authority, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                      DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &administrators) &&
      system.CheckTokenMembership(nullptr, administrators, &is_member)) {
    return is_member == 1;
  }
  const DWORD error = system.GetLastError();
  LPSTR text = nullptr;
  // With the allocate flag the buffer argument is the place of the pointer to the text.
  const DWORD length =
      system.FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
                            error, 0, reinterpret_cast<LPSTR>(&text), 0, nullptr);
  std::string_view line(text != nullptr ? text : "", text != nullptr ? length : 0);
  line = line.substr(0, line.find_last_not_of("\r\n") + 1);
  if (line.empty()) {
    m_Diag << "The administrator check failed with error " << error << std::endl;
  } else {
    m_Diag << line << std::endl;
  }
  system.LocalFree(text);
  return false;
}

bool CMiraIntf::InitializeCOM() {
  if (m_pServices) {
    m_pServices.Release();
    Services().CoUninitialize();
    m_bCOMInitialized = false;
  }
  return mira::transport::Connect(m_Diag, m_pServices);
}

bool CMiraIntf::GetSMBIOSTables() {
  if (!m_mapBIOSTable.empty()) return true;
  const std::vector<std::uint8_t> table = mira::smbios::ReadFirmwareTable();
  if (table.empty()) return false;
  m_SMBIOSMajorVersion = table[1];
  return mira::smbios::FillRegistry(
      mira::bytes::Slice(table, mira::smbios::kFirmwareHeaderSize),
      [this](std::unique_ptr<unsigned char[]> raw) {
        CBIOSObject* object = nullptr;
        unsigned char type = 0xFF;
        ConstructBIOSObject(raw.release(), object, type);
        return object;
      },
      m_mapBIOSTable);
}

bool CMiraIntf::ConstructBIOSObject(unsigned char* raw, CBIOSObject*& obj, unsigned char& type) {
  if (raw == nullptr || obj != nullptr) return false;
  type = raw[0];
  obj = mira::smbios::MakeObject(std::unique_ptr<unsigned char[]>(raw), m_pServices);
  return true;
}

void CMiraIntf::BIOSObjDeletor(std::pair<unsigned char, CBIOSObject*> entry) {
  if (entry.second != nullptr) CBIOSObject::Deleter{}(entry.second);
}

bool CMiraIntf::FindInstanceAndGetData() {
  if (!m_pServices) return false;
  if (m_dwACPIBufSize != 0) return true;
  mira::transport::Discovery found = mira::transport::FindInstance(m_pServices);
  if (found.found) {
    m_dwACPIBufSize = found.buffer_size;
    m_bIsWMIACPIBufferFixPresent = found.buffer_fix;
    m_bstrACPIInstanceName = std::move(found.relative_path);
    ConvertPathToInstanceName();
  }
  return m_dwACPIBufSize != 0 && m_bstrACPIInstanceName.Length() != 0;
}

void CMiraIntf::ConvertPathToInstanceName() {
  constexpr std::wstring_view kClassName = L"WMI_Query";
  if (m_bstrACPIInstanceName.m_str == nullptr) return;
  const std::wstring path(m_bstrACPIInstanceName.m_str, m_bstrACPIInstanceName.Length());
  const std::size_t found = path.find(kClassName);
  if (found == std::wstring::npos) return;
  m_bstrACPIInstanceName = mira::transport::MakeBstr(path.c_str() + found + kClassName.size());
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
  return Guard("ExecuteDACI", STATUS_FAILURE, [&] {
    const mira::transport::ComScope com;
    if (GetBIOSObject(kCallingInterfaceType) == nullptr) {
      m_Diag << "Unable to get DA Type Object!" << std::endl;
      return STATUS_FAILURE;
    }
    CCallingInterface* const calling = CallingInterface();
    if (calling == nullptr) {
      m_Diag << "Down cast failed!" << std::endl;
      return STATUS_FAILURE;
    }
    using mira::callif::Outcome;
    switch (mira::callif::Dispatch({*calling, m_dwACPIBufSize, m_bstrACPIInstanceName}, cls, sel,
                                   data, password, pwdType == PwdInfo::PWD_CLASS10)) {
      case Outcome::kDone:
        return STATUS_SUCCESS;
      case Outcome::kNotSupported:
        return STATUS_NOT_SUPPORTED;
      case Outcome::kNoKey:
        return STATUS_SECURITY_KEY_FAILED;
      case Outcome::kFailed:
        break;
    }
    return STATUS_FAILURE;
  });
}

bool CMiraIntf::GetPwdInfo(PwdInfo& info) {
  info = PwdInfo{};
  return Guard("GetPwdInfo", false, [&] {
    CCallingInterface* const calling = CallingInterface();
    if (calling == nullptr) return false;
    CPwdContext(*calling, m_dwACPIBufSize, m_bstrACPIInstanceName).Fill(info);
    return true;
  });
}

unsigned int CMiraIntf::ValidatePwd(const std::string& password, PwdInfo::PWDTYPE type) {
  return Guard("ValidatePwd", CPwdContext::kNoKey, [&] {
    CCallingInterface* const calling = CallingInterface();
    if (calling == nullptr || (type != PwdInfo::PWD_CLASS9 && type != PwdInfo::PWD_CLASS10)) {
      return std::uint32_t{0};
    }
    CPwdContext context(*calling, m_dwACPIBufSize, m_bstrACPIInstanceName);
    return context.GetSecurityKey(password, type == PwdInfo::PWD_CLASS10);
  });
}

template <typename Operation>
Status CMiraIntf::WithPLDM(const char* what, Operation operation) {
  if (!IsPLDMSupported()) return STATUS_NOT_SUPPORTED;
  return Guard(what, STATUS_FAILURE, [&] { return StatusOf(operation(*m_pPLDM)); });
}

bool CMiraIntf::IsPLDMSupported() { return m_pPLDM && m_pPLDM->IsSupported(); }

void CMiraIntf::GetAttributeHandlesAndTypes(
    std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>>& out) {
  WithPLDM("GetAttributeHandlesAndTypes", [&](const Manager& store) {
    store.GetAttributeHandlesAndTypes(out);
    return Outcome{};
  });
}

void CMiraIntf::GetAttributeNamesAndTypes(
    std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>>& out) {
  WithPLDM("GetAttributeNamesAndTypes", [&](const Manager& store) {
    store.GetAttributeNamesAndTypes(out);
    return Outcome{};
  });
}

Status CMiraIntf::GetAttributeName(std::uint16_t handle, std::string& name) {
  return WithPLDM("GetAttributeName",
                  [&](const Manager& store) { return store.GetAttributeName(handle, name); });
}

PLDM::ATTRIBUTE_TYPE CMiraIntf::GetAttributeType(std::uint16_t handle) {
  return m_pPLDM ? m_pPLDM->GetAttributeType(handle) : PLDM::BIOSUnknownType;
}

Status CMiraIntf::GetAttributeValue(PLDM::Attribute& attr) {
  return WithPLDM("GetAttributeValue",
                  [&](Manager& store) { return store.GetAttributeValue(attr); });
}

Status CMiraIntf::GetAttributeValueAtBoot(PLDM::Attribute& attr) {
  return WithPLDM("GetAttributeValueAtBoot",
                  [&](Manager& store) { return store.GetAttributeValueAtBoot(attr); });
}

Status CMiraIntf::GetAttributeValueAtBoot(std::uint16_t handle, std::string& value) {
  return WithPLDM("GetAttributeValueAtBoot", [&](const Manager& store) {
    return store.GetAttributeValueAtBoot(handle, value);
  });
}

Status CMiraIntf::SetAttributeValue(PLDM::Attribute& attr, const std::string& password,
                                    PwdInfo::PWDTYPE pwdType, unsigned int securityKey) {
  return WithPLDM("SetAttributeValue", [&](Manager& store) {
    return store.SetAttributeValue(attr, password, pwdType == PwdInfo::PWD_CLASS10, securityKey);
  });
}

Status CMiraIntf::GetAttributeDefault(std::uint16_t handle, std::string& value) {
  return WithPLDM("GetAttributeDefault",
                  [&](const Manager& store) { return store.GetAttributeDefault(handle, value); });
}

Status CMiraIntf::GetPossibleValues(std::uint16_t handle, std::list<std::string>& names) {
  return WithPLDM("GetPossibleValues",
                  [&](const Manager& store) { return store.GetPossibleValues(handle, names); });
}

bool CMiraIntf::IsACPISupported() {
  constexpr unsigned char kFlagsType = 177;
  constexpr std::uint16_t kCallsThroughWmi = 0x0002;
  constexpr std::uint16_t kProbeClass = 10;
  constexpr std::uint16_t kProbeSelect = 11;
  const auto* const flags = dynamic_cast<CBIOSFlags*>(GetBIOSObject(kFlagsType));
  if (flags == nullptr) return false;
  // Firmware that does not announce the buffer fix shows by a real call whether it has it.
  if (!bFlagCheck && !m_bIsWMIACPIBufferFixPresent) {
    CHDDPwd probe;
    m_bIsWMIACPIBufferFixPresent =
        ExecuteDACI(kProbeClass, kProbeSelect, probe, "", PwdInfo::PWD_NONE) == STATUS_SUCCESS;
  }
  return (flags->GetFlags(0) & kCallsThroughWmi) != 0 && m_bIsWMIACPIBufferFixPresent;
}

bool CMiraIntf::InitPLDM(bool loadDisplayStrings, bool loadHelpStrings) {
  CCallingInterface* const calling = CallingInterface();
  if (calling == nullptr) return false;
  if (m_pPLDM) return true;
  // Whether the tables are there shows in IsPLDMSupported.
  return Guard("Loading the attribute tables", true, [&] {
    auto store = std::make_shared<Manager>(
        mira::callif::Target{*calling, m_dwACPIBufSize, m_bstrACPIInstanceName}, loadDisplayStrings,
        loadHelpStrings);
    store->Load();
    m_pPLDM = std::move(store);
    return true;
  });
}

namespace mira {

void ResetProcessState() noexcept {
  for (const auto& [type, object] : CMiraIntf::m_mapBIOSTable) CBIOSObject::Deleter{}(object);
  CMiraIntf::m_mapBIOSTable.clear();
  CMiraIntf::m_SMBIOSMajorVersion = 0;
  CMiraIntf::m_bIsWMIACPIBufferFixPresent = false;
  CMiraIntf::m_bstrACPIInstanceName.Empty();
  CMiraIntf::m_dwACPIBufSize = 0;
}

}  // namespace mira
