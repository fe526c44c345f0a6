#ifndef MIRA_SMBIOS_STRUCTURES_STRUCTURES_H_
#define MIRA_SMBIOS_STRUCTURES_STRUCTURES_H_

// One class per structure type. What a class holds stands in its own source: the list of its
// fields.

#include <cstdint>

#include "smbios/layout.h"

class CBIOSInfo : public mira::smbios::CStructure<CBIOSInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemInfo : public mira::smbios::CStructure<CSystemInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSMBIOSBaseBrdInfo : public mira::smbios::CStructure<CSMBIOSBaseBrdInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemEnclosure : public mira::smbios::CStructure<CSystemEnclosure> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CProcessorInformation : public mira::smbios::CStructure<CProcessorInformation> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CCacheInfo : public mira::smbios::CStructure<CCacheInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CPortConnectorInfo : public mira::smbios::CStructure<CPortConnectorInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemSlots : public mira::smbios::CStructure<CSystemSlots> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class COnBoardDevices : public mira::smbios::CStructure<COnBoardDevices> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class COEMStrings : public mira::smbios::CStructure<COEMStrings> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemConfig : public mira::smbios::CStructure<CSystemConfig> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CBIOSLangInfo : public mira::smbios::CStructure<CBIOSLangInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CGroupAssociations : public mira::smbios::CStructure<CGroupAssociations> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemEventLog : public mira::smbios::CStructure<CSystemEventLog> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CPhyMemArray : public mira::smbios::CStructure<CPhyMemArray> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CMemoryDevice : public mira::smbios::CStructure<CMemoryDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CMemArrMapAddr : public mira::smbios::CStructure<CMemArrMapAddr> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CMemDevMapAddr : public mira::smbios::CStructure<CMemDevMapAddr> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CBuiltInPointingDevice : public mira::smbios::CStructure<CBuiltInPointingDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CPortableBattery : public mira::smbios::CStructure<CPortableBattery> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemReset : public mira::smbios::CStructure<CSystemReset> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CHardwareSecurity : public mira::smbios::CStructure<CHardwareSecurity> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemPowerControls : public mira::smbios::CStructure<CSystemPowerControls> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CVoltageProbe : public mira::smbios::CStructure<CVoltageProbe> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CCoolingDevice : public mira::smbios::CStructure<CCoolingDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CTempProbe : public mira::smbios::CStructure<CTempProbe> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CElecCurrentProbe : public mira::smbios::CStructure<CElecCurrentProbe> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemBootInfo : public mira::smbios::CStructure<CSystemBootInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CManagementDevice : public mira::smbios::CStructure<CManagementDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CMgmtDeviceComponent : public mira::smbios::CStructure<CMgmtDeviceComponent> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CMgmtDevThresholdData : public mira::smbios::CStructure<CMgmtDevThresholdData> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSystemPowerSupply : public mira::smbios::CStructure<CSystemPowerSupply> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class COnbrdDevExtInfo : public mira::smbios::CStructure<COnbrdDevExtInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CIntelAMTSpecific_1 : public mira::smbios::CStructure<CIntelAMTSpecific_1> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CIntelAMTSpecific_2 : public mira::smbios::CStructure<CIntelAMTSpecific_2> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CIntelMgmtEng : public mira::smbios::CStructure<CIntelMgmtEng> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CEFI_MISC_OEM : public mira::smbios::CStructure<CEFI_MISC_OEM> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CVideoProcTemp : public mira::smbios::CStructure<CVideoProcTemp> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CBIOSFlags : public mira::smbios::CStructure<CBIOSFlags> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
  // Flags word 0 to 3; 0 for any other index.
  std::uint16_t GetFlags(unsigned index) const;
};

class CBIOSHotKeySup : public mira::smbios::CStructure<CBIOSHotKeySup> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CRevisionsIds : public mira::smbios::CStructure<CRevisionsIds> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CParallelPort : public mira::smbios::CStructure<CParallelPort> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CSerialPort : public mira::smbios::CStructure<CSerialPort> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CBuiltInVideoBIOS : public mira::smbios::CStructure<CBuiltInVideoBIOS> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CBuiltInKeyBrd : public mira::smbios::CStructure<CBuiltInKeyBrd> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CDeviceBay : public mira::smbios::CStructure<CDeviceBay> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CProbeCustomization : public mira::smbios::CStructure<CProbeCustomization> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CCoolingDeviceCustomization : public mira::smbios::CStructure<CCoolingDeviceCustomization> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class CRemoteBIOSUpdate : public mira::smbios::CStructure<CRemoteBIOSUpdate> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

// Both hold protected values: neither shown nor published, so an object of either class is as plain
// as its base.
class CProtectedValueType1 : public CBIOSObject {
 public:
  using CBIOSObject::CBIOSObject;
};

class CProtectedValueType2 : public CBIOSObject {
 public:
  using CBIOSObject::CBIOSObject;
};

#endif  // MIRA_SMBIOS_STRUCTURES_STRUCTURES_H_
