#include "smbios/structure_factory.h"

#include <array>
#include <cstdint>
#include <iterator>
#include <stdexcept>

#include "callif/calling_interface.h"
#include "smbios/structure_blocks.h"
#include "smbios/structures/structures.h"

namespace mira::smbios {
namespace {

using RawBytes = std::unique_ptr<unsigned char[]>;
using Connection = CComPtr<IWbemServices>;

struct Row {
  unsigned char type;
  const char* class_name;
  // Null for the calling interface, which needs a connection. Throws only before the object owns
  // the bytes.
  CBIOSObject* (*make)(unsigned char* raw);
};

template <typename T>
CBIOSObject* Make(unsigned char* raw) {
  return new T(raw);
}

// Ascending by type. A type without a row gets a plain CBIOSObject; no type is left out of the
// registry.
constexpr Row kRows[] = {
    {0, "CBIOSInfo", Make<CBIOSInfo>},
    {1, "CSystemInfo", Make<CSystemInfo>},
    {2, "CSMBIOSBaseBrdInfo", Make<CSMBIOSBaseBrdInfo>},
    {3, "CSystemEnclosure", Make<CSystemEnclosure>},
    {4, "CProcessorInformation", Make<CProcessorInformation>},
    {7, "CCacheInfo", Make<CCacheInfo>},
    {8, "CPortConnectorInfo", Make<CPortConnectorInfo>},
    {9, "CSystemSlots", Make<CSystemSlots>},
    {10, "COnBoardDevices", Make<COnBoardDevices>},
    {11, "COEMStrings", Make<COEMStrings>},
    {12, "CSystemConfig", Make<CSystemConfig>},
    {13, "CBIOSLangInfo", Make<CBIOSLangInfo>},
    {14, "CGroupAssociations", Make<CGroupAssociations>},
    {15, "CSystemEventLog", Make<CSystemEventLog>},
    {16, "CPhyMemArray", Make<CPhyMemArray>},
    {17, "CMemoryDevice", Make<CMemoryDevice>},
    {19, "CMemArrMapAddr", Make<CMemArrMapAddr>},
    {20, "CMemDevMapAddr", Make<CMemDevMapAddr>},
    {21, "CBuiltInPointingDevice", Make<CBuiltInPointingDevice>},
    {22, "CPortableBattery", Make<CPortableBattery>},
    {23, "CSystemReset", Make<CSystemReset>},
    {24, "CHardwareSecurity", Make<CHardwareSecurity>},
    {25, "CSystemPowerControls", Make<CSystemPowerControls>},
    {26, "CVoltageProbe", Make<CVoltageProbe>},
    {27, "CCoolingDevice", Make<CCoolingDevice>},
    {28, "CTempProbe", Make<CTempProbe>},
    {29, "CElecCurrentProbe", Make<CElecCurrentProbe>},
    {32, "CSystemBootInfo", Make<CSystemBootInfo>},
    {34, "CManagementDevice", Make<CManagementDevice>},
    {35, "CMgmtDeviceComponent", Make<CMgmtDeviceComponent>},
    {36, "CMgmtDevThresholdData", Make<CMgmtDevThresholdData>},
    {39, "CSystemPowerSupply", Make<CSystemPowerSupply>},
    {41, "COnbrdDevExtInfo", Make<COnbrdDevExtInfo>},
    {129, "CIntelAMTSpecific_1", Make<CIntelAMTSpecific_1>},
    {130, "CIntelAMTSpecific_2", Make<CIntelAMTSpecific_2>},
    {131, "CIntelMgmtEng", Make<CIntelMgmtEng>},
    {136, "CEFI_MISC_OEM", Make<CEFI_MISC_OEM>},
    {176, "CVideoProcTemp", Make<CVideoProcTemp>},
    {177, "CBIOSFlags", Make<CBIOSFlags>},
    {178, "CBIOSHotKeySup", Make<CBIOSHotKeySup>},
    {208, "CRevisionsIds", Make<CRevisionsIds>},
    {209, "CParallelPort", Make<CParallelPort>},
    {210, "CSerialPort", Make<CSerialPort>},
    {213, "CProtectedValueType1", Make<CProtectedValueType1>},
    {214, "CProtectedValueType2", Make<CProtectedValueType2>},
    {216, "CBuiltInVideoBIOS", Make<CBuiltInVideoBIOS>},
    {217, "CBuiltInKeyBrd", Make<CBuiltInKeyBrd>},
    {218, "CCallingInterface", nullptr},
    {219, "CDeviceBay", Make<CDeviceBay>},
    {220, "CProbeCustomization", Make<CProbeCustomization>},
    {221, "CCoolingDeviceCustomization", Make<CCoolingDeviceCustomization>},
    {222, "CRemoteBIOSUpdate", Make<CRemoteBIOSUpdate>},
};

constexpr std::uint8_t kNoRow = 0xFF;

// Per type the number of its row.
constexpr auto kRowOfType = [] {
  std::array<std::uint8_t, 256> row_of_type{};
  row_of_type.fill(kNoRow);
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    if (i > 0 && kRows[i - 1].type >= kRows[i].type) throw std::logic_error("rows out of order");
    row_of_type[kRows[i].type] = static_cast<std::uint8_t>(i);
  }
  return row_of_type;
}();

constexpr Row kPlain = {0, "CBIOSObject", Make<CBIOSObject>};

const Row& Find(unsigned char type) {
  const std::uint8_t row = kRowOfType[type];
  return row != kNoRow ? kRows[row] : kPlain;
}

}  // namespace

CBIOSObject* MakeObject(RawBytes raw, Connection& services) {
  const Row& row = Find(raw[0]);
  // `new` allocates before it evaluates the argument, so the bytes are never lost.
  if (row.make == nullptr) return new CCallingInterface(raw.release(), services);
  CBIOSObject* const object = row.make(raw.get());
  (void)raw.release();
  return object;
}

CBIOSObject* MakeObject(bytes::ByteSpan structure, StructureBlocks& blocks) {
  const Row& row = Find(structure[0]);
  unsigned char* const raw = row.make != nullptr ? blocks.Add(structure) : nullptr;
  if (raw == nullptr) return nullptr;
  CBIOSObject* const object = row.make(raw);
  blocks.Own(*object);
  return object;
}

const char* ClassName(unsigned char type) { return Find(type).class_name; }

}  // namespace mira::smbios
