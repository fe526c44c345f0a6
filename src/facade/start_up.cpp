// The steps of CMiraIntf::Init.

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "buffers/hdd_pwd_buffer.h"
#include "callif/dispatch.h"
#include "facade/administrator.h"
#include "facade/com_ownership.h"
#include "facade/guard.h"
#include "pldm/manager.h"
#include "smbios/structure_factory.h"
#include "smbios/structures/structures.h"
#include "smbios/table.h"
#include "transport/connection.h"

using mira::CodeKind;
using mira::Step;
using mira::StepOutcome;
using mira::platform::Services;
using mira::pldm::Manager;
using mira::transport::OperationLog;
using mira::transport::OperationScope;

namespace {

constexpr unsigned short kFirstMajorVersionWithPLDM = 2;

}  // namespace

Status CMiraIntf::Init(bool loadPLDM, bool loadDisplayStrings, bool loadHelpStrings) {
  const OperationScope scope("Init", OperationScope::kStartUp);
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
  if (m_SMBIOSMajorVersion < kFirstMajorVersionWithPLDM || !loadPLDM) {
    OperationLog::Get().Pass(Step::kAttributeTables, StepOutcome::kSkipped);
    return STATUS_SUCCESS;
  }
  return InitPLDM(loadDisplayStrings, loadHelpStrings) ? STATUS_SUCCESS : STATUS_PLDM_INIT_FAILED;
}

bool CMiraIntf::IsUserAdmin() { return mira::IsAdministrator(m_Diag); }

bool CMiraIntf::InitializeCOM() {
  if (m_pServices) {
    mira::PrepareToUninitialize(this, m_pServices);
    m_pServices.Release();
    Services().CoUninitialize();
    m_bCOMInitialized = false;
  }
  mira::transport::Attempt attempt = mira::transport::Connect(m_Diag);
  if (attempt.services && attempt.initialized == S_OK && !Guard("Connecting", false, [&] {
        mira::AddOwner(this, attempt.services);
        return true;
      })) {
    attempt.services.Release();
  }
  if (attempt.EndsCom()) {
    if (attempt.initialized != S_OK) mira::PrepareToUninitialize(this, {});
    Services().CoUninitialize();
  }
  m_pServices = attempt.services;
  if (!m_pServices) return false;
  mira::transport::BfnMethod::Reconnect(m_pServices);
  return true;
}

bool CMiraIntf::GetSMBIOSTables() {
  OperationLog& log = OperationLog::Get();
  if (!m_mapBIOSTable.empty()) {
    log.Pass(Step::kSmbiosTable, StepOutcome::kKnown);
    return true;
  }
  const std::vector<std::uint8_t> table = mira::smbios::ReadFirmwareTable();
  if (table.empty()) {
    log.Fail(Step::kSmbiosTable, CodeKind::kSystemError,
             static_cast<std::int32_t>(Services().GetLastError()));
    return false;
  }
  m_SMBIOSMajorVersion = table[1];
  const bool filled = mira::smbios::FillRegistry(
      mira::bytes::Slice(table, mira::smbios::kFirmwareHeaderSize),
      [this](std::unique_ptr<unsigned char[]> raw) {
        CBIOSObject* object = nullptr;
        unsigned char type = 0xFF;
        ConstructBIOSObject(raw.release(), object, type);
        return object;
      },
      m_mapBIOSTable);
  if (filled) {
    log.Done(Step::kSmbiosTable);
  } else {
    log.Fail(Step::kSmbiosTable);
  }
  return filled;
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
  OperationLog& log = OperationLog::Get();
  if (!m_pServices) return false;
  if (m_dwACPIBufSize != 0) {
    for (const Step step : {Step::kWmiInstance, Step::kBufferSize, Step::kInstanceKey}) {
      log.Pass(step, StepOutcome::kKnown);
    }
    return true;
  }
  mira::transport::Discovery found = mira::transport::FindInstance(m_pServices);
  if (!found.found) {
    log.Fail(Step::kWmiInstance, CodeKind::kHresult, found.result);
    return false;
  }
  log.Done(Step::kWmiInstance);
  const auto report = [&log](bool has_size, bool has_key) {
    for (const auto& [step, is_there] :
         {std::pair(Step::kBufferSize, has_size), std::pair(Step::kInstanceKey, has_key)}) {
      if (is_there) {
        log.Done(step);
      } else {
        log.Fail(step);
      }
    }
    return has_size && has_key;
  };
  // Size, flag and key are stored together or, where the key cannot be had, not at all: a size that
  // is known ends the search of every later Init.
  if (found.relative_path.m_str == nullptr) return report(found.buffer_size != 0, false);
  CComBSTR path = std::move(m_bstrACPIInstanceName);
  m_bstrACPIInstanceName = std::move(found.relative_path);
  try {
    ConvertPathToInstanceName();
  } catch (...) {
    m_bstrACPIInstanceName = std::move(path);
    throw;
  }
  m_dwACPIBufSize = found.buffer_size;
  m_bIsWMIACPIBufferFixPresent = found.buffer_fix;
  return report(m_dwACPIBufSize != 0, m_bstrACPIInstanceName.Length() != 0);
}

void CMiraIntf::ConvertPathToInstanceName() {
  constexpr std::wstring_view kClassName = L"WMI_Query";
  if (m_bstrACPIInstanceName.m_str == nullptr) return;
  const std::wstring path(m_bstrACPIInstanceName.m_str, m_bstrACPIInstanceName.Length());
  const std::size_t found = path.find(kClassName);
  if (found == std::wstring::npos) return;
  m_bstrACPIInstanceName = mira::transport::MakeBstr(path.c_str() + found + kClassName.size());
}

bool CMiraIntf::IsACPISupported() {
  constexpr unsigned char kFlagsType = 177;
  constexpr std::uint16_t kCallsThroughWmi = 0x0002;
  constexpr std::uint16_t kProbeClass = 10;
  constexpr std::uint16_t kProbeSelect = 11;
  OperationLog& log = OperationLog::Get();
  const auto* const flags = dynamic_cast<CBIOSFlags*>(GetBIOSObject(kFlagsType));
  if (flags == nullptr) {
    log.Fail(Step::kFirmwareFlags);
    return false;
  }
  const std::uint16_t word = flags->GetFlags(0);
  const bool calls_through_wmi = (word & kCallsThroughWmi) != 0;
  if (calls_through_wmi) {
    log.Done(Step::kFirmwareFlags, CodeKind::kFlagsWord, word);
  } else {
    log.Fail(Step::kFirmwareFlags, CodeKind::kFlagsWord, word);
  }
  // Firmware that does not announce the buffer fix shows by a real call whether it has it.
  if (m_bIsWMIACPIBufferFixPresent) {
    log.Pass(Step::kBufferFix, StepOutcome::kKnown);
  } else if (bFlagCheck) {
    log.Fail(Step::kBufferFix);
  } else {
    CHDDPwd probe;
    m_bIsWMIACPIBufferFixPresent =
        ExecuteDACI(kProbeClass, kProbeSelect, probe, "", PwdInfo::PWD_NONE) == STATUS_SUCCESS;
    if (m_bIsWMIACPIBufferFixPresent) {
      log.Done(Step::kBufferFix);
    } else {
      const mira::StepResult& failure = log.LastOperation().call.failure;
      log.Fail(Step::kBufferFix, failure.code_kind, failure.code);
    }
  }
  return calls_through_wmi && m_bIsWMIACPIBufferFixPresent;
}

bool CMiraIntf::InitPLDM(bool loadDisplayStrings, bool loadHelpStrings) {
  OperationLog& log = OperationLog::Get();
  CCallingInterface* const calling = CallingInterface();
  if (calling == nullptr) {
    log.Fail(Step::kAttributeTables);
    return false;
  }
  if (m_pPLDM) {
    log.Pass(Step::kAttributeTables, StepOutcome::kKnown);
    return true;
  }
  // Whether the tables are there shows in IsPLDMSupported.
  return Guard("Loading the attribute tables", true, [&] {
    auto store = std::make_shared<Manager>(
        mira::callif::Target{*calling, m_dwACPIBufSize, m_bstrACPIInstanceName}, loadDisplayStrings,
        loadHelpStrings);
    if (!store->Load()) {
      // Without a store, the next Init loads the tables.
      log.Fail(Step::kAttributeTables, CodeKind::kNone, 0, StepOutcome::kCancelled);
      return true;
    }
    if (store->IsSupported()) {
      log.Done(Step::kAttributeTables);
    } else {
      const mira::StepResult& failure = log.LastOperation().call.failure;
      log.Fail(Step::kAttributeTables, failure.code_kind, failure.code);
    }
    m_pPLDM = std::move(store);
    return true;
  });
}
