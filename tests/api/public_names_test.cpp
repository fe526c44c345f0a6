// Every name that the headers promise is in the library: each is used once, so that this program
// would not link without it.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <typeinfo>

#include "buffers/aux_mac_buffer.h"
#include "buffers/battery_data.h"
#include "buffers/buffer.h"
#include "buffers/buffer_factory.h"
#include "buffers/eppid_buffer.h"
#include "buffers/generic_data.h"
#include "buffers/hdd_pwd_buffer.h"
#include "buffers/legacy_bbs_data.h"
#include "buffers/password_data.h"
#include "buffers/prompt_input.h"
#include "buffers/received_data.h"
#include "buffers/secret_prompt.h"
#include "buffers/tag_data.h"
#include "buffers/uefi_boot_data.h"
#include "bytes/utf16.h"
#include "callif/scan_codes.h"
#include "devicepath/load_option.h"
#include "devicepath/text.h"
#include "facade/mira_intf.h"
#include "facade/process_state.h"
#include "platform/services.h"
#include "pldm/progress.h"
#include "smbios/structure_copy.h"
#include "smbios/structure_factory.h"
#include "smbios/structures/structures.h"
#include "smbios/table.h"
#include "transport/operation_report.h"

namespace mira {
namespace {

template <typename... T>
void Use(const T&... values) {
  const void* const addresses[] = {&values...};
  for (const void* const address : addresses) EXPECT_NE(address, nullptr);
}

// The class can be told from others, which takes its type information.
template <typename... T>
void UseClasses(CBIOSObject* object) {
  ((static_cast<void>(dynamic_cast<T*>(object))), ...);
  Use(&typeid(T)...);
}
template <typename... T>
void UseRecords() {
  Use(T()...);
}

TEST(PublicNames, AreInTheLibrary) {
  UseClasses<CBIOSObject, CCallingInterface, mira::smbios::CLayoutObject, CBIOSInfo, CSystemInfo,
             CSMBIOSBaseBrdInfo, CSystemEnclosure, CProcessorInformation, CCacheInfo,
             CPortConnectorInfo, CSystemSlots, COnBoardDevices, COEMStrings, CSystemConfig,
             CBIOSLangInfo, CGroupAssociations, CSystemEventLog, CPhyMemArray, CMemoryDevice,
             CMemArrMapAddr, CMemDevMapAddr, CBuiltInPointingDevice, CPortableBattery, CSystemReset,
             CHardwareSecurity, CSystemPowerControls, CVoltageProbe, CCoolingDevice, CTempProbe,
             CElecCurrentProbe, CSystemBootInfo, CManagementDevice, CMgmtDeviceComponent,
             CMgmtDevThresholdData, CSystemPowerSupply, COnbrdDevExtInfo, CIntelAMTSpecific_1,
             CIntelAMTSpecific_2, CIntelMgmtEng, CEFI_MISC_OEM, CVideoProcTemp, CBIOSFlags,
             CBIOSHotKeySup, CRevisionsIds, CParallelPort, CSerialPort, CBuiltInVideoBIOS,
             CBuiltInKeyBrd, CDeviceBay, CProbeCustomization, CCoolingDeviceCustomization,
             CRemoteBIOSUpdate, CProtectedValueType1, CProtectedValueType2>(nullptr);
  UseRecords<CSimpleTokenData, CTagData, CVerifyPwdData, CChangePwdData, CHDDPwd, CGenericData,
             CEPPID, CMACAddr, CExtBatteryLife, CFirmwareMessages, CTabletScanCodes,
             CThermalSensors, CLogEntries, CReceivedData, CUEFIBootList, CUEFILOList,
             CLegacyBBSIPLPriority, BATTERY_INFO, ADV_BATT_CONFIG, PEAK_SHIFT_CONFIG,
             PLDM::Attribute, PLDM::Enumeration, PLDM::String, PLDM::Password, PLDM::Integer,
             PLDM::BootConfigSetting, PLDM::Collection, PLDM::ConfigSet,
             devicepath::NodeRecords::GenericDevicePath>();
  Use(&CMiraIntf::Display, &CMiraIntf::ExecuteDACI, &CMiraIntf::GetACPIBufSize,
      &CMiraIntf::GetACPIInstanceName, &CMiraIntf::GetAllDATokens, &CMiraIntf::GetAttributeDefault,
      &CMiraIntf::GetAttributeHandlesAndTypes, &CMiraIntf::GetAttributeName,
      &CMiraIntf::GetAttributeNamesAndTypes, &CMiraIntf::GetAttributeType,
      &CMiraIntf::GetAttributeValue,
      static_cast<Status (CMiraIntf::*)(PLDM::Attribute&)>(&CMiraIntf::GetAttributeValueAtBoot),
      static_cast<Status (CMiraIntf::*)(std::uint16_t, std::string&)>(
          &CMiraIntf::GetAttributeValueAtBoot),
      &CMiraIntf::GetBIOSObject, &CMiraIntf::GetLastOperation, &CMiraIntf::GetPossibleValues,
      &CMiraIntf::GetPwdInfo, &CMiraIntf::GetStartUp, &CMiraIntf::Init, &CMiraIntf::IsPLDMSupported,
      &CMiraIntf::SetAttributeValue, &CMiraIntf::ValidatePwd);
  Use(CMiraIntf::m_SMBIOSMajorVersion, CMiraIntf::m_bIsWMIACPIBufferFixPresent,
      CMiraIntf::m_bstrACPIInstanceName, CMiraIntf::m_dwACPIBufSize, CMiraIntf::m_mapBIOSTable,
      bFlagCheck);
  Use(&CBIOSObject::Append, &CBIOSObject::AttributesBeyond, &CBIOSObject::Display,
      &CBIOSObject::DisplayOwn, &CBIOSObject::GetAttributes, &CBIOSObject::OwnAttributes);
  Use(&CCallingInterface::Execute, &CCallingInterface::ForgetLastCall,
      &CCallingInterface::GetAllDATokens, &CCallingInterface::GetDAToken,
      &CCallingInterface::IsCommandSupported, &CDAToken::Display, &CDAToken::TokenInfo);
  Use(&CBuffer::DisplayOutputBuffer, &CBuffer::DisplayReturnCode, &CBuffer::FillInputBuffer,
      &CBuffer::ParseOutputBuffer, &CBuffer::PromptInputBuffer);
  Use(&CreateBuffer, &PLDM::MakeAttribute, &TraitsOf, &ResetProcessState, &StepName,
      &battery::DayText, &battery::PackDay, &battery::TimeText, &battery::UnpackDay,
      &battery::VersionText, &buffers::InputEnded, &buffers::SetEchoSwitch, &bytes::AppendUtf8,
      &bytes::IsSurrogate, &bytes::IsUtf8, &bytes::Latin1OfUtf8, &bytes::PairOf, &bytes::Utf16,
      &bytes::Utf8OfLatin1, &bytes::Wide,
      static_cast<std::string (*)(std::u16string_view)>(&bytes::Utf8),
      static_cast<std::string (*)(std::wstring_view)>(&bytes::Utf8), &callif::ToScanCodes,
      &devicepath::DecodeLoadOption, &devicepath::DecodePaths, &devicepath::DevicePathFromText,
      static_cast<std::string (*)(bytes::ByteSpan)>(&devicepath::DevicePathToText),
      &devicepath::EncodeLoadOption, &platform::Services, &platform::SetServices,
      &platform::SystemServices,
      static_cast<void (*)(pldm::ProgressCallback, void*)>(&pldm::SetProgress),
      static_cast<void (*)(pldm::Progress)>(&pldm::SetProgress), &smbios::ClassName,
      &smbios::CopyStructure, &smbios::ReadFirmwareTable, &smbios::StructureTable::Parse,
      &smbios::TableWalk::Next);
}

// A new export is used above, too.
TEST(PublicNames, AreAllUsed) {
  std::ifstream source(MIRA_SOURCES "/tests/api/public_names_test.cpp");
  const std::string text((std::istreambuf_iterator<char>(source)), {});
  ASSERT_FALSE(text.empty());
  // Those that headers keep to the classes themselves and to what derives from them.
  const std::set<std::string> inner = {"AddAttributes",
                                       "BuildDWord",
                                       "BuildQWord",
                                       "BuildString",
                                       "BuildWord",
                                       "DisplayChain",
                                       "DisplayHeader",
                                       "DisplayOne",
                                       "GetStrFromDouble",
                                       "GetStrFromInt",
                                       "MarkBeyond",
                                       "WriteHeader",
                                       "GetFlags",
                                       "CompletionCode",
                                       "DataArea",
                                       "InitExtendedBuffer",
                                       "NewRecord",
                                       "ConstructDATokens",
                                       "DisplayDATokens",
                                       "DisplayFields",
                                       "DisplayOwnTokens",
                                       "NextInterface",
                                       "BIOSObjDeletor",
                                       "CallingInterface",
                                       "ConstructBIOSObject",
                                       "ConvertPathToInstanceName",
                                       "FindInstanceAndGetData",
                                       "GetSMBIOSTables",
                                       "InitPLDM",
                                       "InitializeCOM",
                                       "IsACPISupported",
                                       "IsUserAdmin",
                                       "ChainLink",
                                       "Detach",
                                       "SharedBytes",
                                       "Share",
                                       "View",
                                       "IBIOSData"};
  std::ifstream list(MIRA_EXPORTS_FILE);
  ASSERT_TRUE(list.good());
  for (std::string line; std::getline(list, line);) {
    if (line.ends_with('\r')) line.pop_back();
    // "A::B::Name[abi:cxx11](…)", "vtable for A::Name", "typeinfo for A::Name"
    std::string name = line.substr(0, line.find_first_of("[("));
    name = name.substr(name.rfind(' ') + 1);
    name = name.substr(name.rfind(':') + 1);
    const bool is_special = line.starts_with('#') || line.find('~') != std::string::npos ||
                            name.starts_with("operator") || name == "kLayout";
    if (is_special || inner.contains(name)) continue;
    EXPECT_NE(text.find(name), std::string::npos) << line;
  }
}

}  // namespace
}  // namespace mira
