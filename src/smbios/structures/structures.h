#ifndef MIRA_SMBIOS_STRUCTURES_STRUCTURES_H_
#define MIRA_SMBIOS_STRUCTURES_STRUCTURES_H_

// One class per structure type: those of DSP0134 here, the OEM types from 128 on in
// oem_structures.h. What a class holds stands in its own source: the list of its
// fields.
//
//   for (CBIOSObject* object = mira.GetBIOSObject(17); object; object = object->getNextObj()) {
//     if (dynamic_cast<CMemoryDevice*>(object) != nullptr) object->DisplayOwn(std::cout);
//   }

#include "platform/api.h"
#include "smbios/layout_object.h"
#include "smbios/structures/oem_structures.h"

class MIRA_API CBIOSInfo : public mira::smbios::CStructure<CBIOSInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemInfo : public mira::smbios::CStructure<CSystemInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSMBIOSBaseBrdInfo : public mira::smbios::CStructure<CSMBIOSBaseBrdInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemEnclosure : public mira::smbios::CStructure<CSystemEnclosure> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CProcessorInformation : public mira::smbios::CStructure<CProcessorInformation> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CCacheInfo : public mira::smbios::CStructure<CCacheInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CPortConnectorInfo : public mira::smbios::CStructure<CPortConnectorInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemSlots : public mira::smbios::CStructure<CSystemSlots> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API COnBoardDevices : public mira::smbios::CStructure<COnBoardDevices> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API COEMStrings : public mira::smbios::CStructure<COEMStrings> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemConfig : public mira::smbios::CStructure<CSystemConfig> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CBIOSLangInfo : public mira::smbios::CStructure<CBIOSLangInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CGroupAssociations : public mira::smbios::CStructure<CGroupAssociations> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemEventLog : public mira::smbios::CStructure<CSystemEventLog> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CPhyMemArray : public mira::smbios::CStructure<CPhyMemArray> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CMemoryDevice : public mira::smbios::CStructure<CMemoryDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CMemArrMapAddr : public mira::smbios::CStructure<CMemArrMapAddr> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CMemDevMapAddr : public mira::smbios::CStructure<CMemDevMapAddr> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CBuiltInPointingDevice : public mira::smbios::CStructure<CBuiltInPointingDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CPortableBattery : public mira::smbios::CStructure<CPortableBattery> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemReset : public mira::smbios::CStructure<CSystemReset> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CHardwareSecurity : public mira::smbios::CStructure<CHardwareSecurity> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemPowerControls : public mira::smbios::CStructure<CSystemPowerControls> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CVoltageProbe : public mira::smbios::CStructure<CVoltageProbe> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CCoolingDevice : public mira::smbios::CStructure<CCoolingDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CTempProbe : public mira::smbios::CStructure<CTempProbe> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CElecCurrentProbe : public mira::smbios::CStructure<CElecCurrentProbe> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemBootInfo : public mira::smbios::CStructure<CSystemBootInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CManagementDevice : public mira::smbios::CStructure<CManagementDevice> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CMgmtDeviceComponent : public mira::smbios::CStructure<CMgmtDeviceComponent> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CMgmtDevThresholdData : public mira::smbios::CStructure<CMgmtDevThresholdData> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSystemPowerSupply : public mira::smbios::CStructure<CSystemPowerSupply> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API COnbrdDevExtInfo : public mira::smbios::CStructure<COnbrdDevExtInfo> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

#endif  // MIRA_SMBIOS_STRUCTURES_STRUCTURES_H_
