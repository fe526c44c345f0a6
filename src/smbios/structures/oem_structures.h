#ifndef MIRA_SMBIOS_STRUCTURES_OEM_STRUCTURES_H_
#define MIRA_SMBIOS_STRUCTURES_OEM_STRUCTURES_H_

// The classes of the OEM structure types, from 128 on. Include structures.h, which has all classes.
//
//   const auto* flags = dynamic_cast<CBIOSFlags*>(mira.GetBIOSObject(177));
//   if (flags != nullptr) std::cout << flags->GetFlags(0);

#include <cstdint>

#include "platform/api.h"
#include "smbios/layout_object.h"

class MIRA_API CIntelAMTSpecific_1 : public mira::smbios::CStructure<CIntelAMTSpecific_1> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CIntelAMTSpecific_2 : public mira::smbios::CStructure<CIntelAMTSpecific_2> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CIntelMgmtEng : public mira::smbios::CStructure<CIntelMgmtEng> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CEFI_MISC_OEM : public mira::smbios::CStructure<CEFI_MISC_OEM> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CVideoProcTemp : public mira::smbios::CStructure<CVideoProcTemp> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CBIOSFlags : public mira::smbios::CStructure<CBIOSFlags> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
  // Flags word 0 to 3; 0 for any other index.
  std::uint16_t GetFlags(unsigned index) const;
};

class MIRA_API CBIOSHotKeySup : public mira::smbios::CStructure<CBIOSHotKeySup> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CRevisionsIds : public mira::smbios::CStructure<CRevisionsIds> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CParallelPort : public mira::smbios::CStructure<CParallelPort> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CSerialPort : public mira::smbios::CStructure<CSerialPort> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CBuiltInVideoBIOS : public mira::smbios::CStructure<CBuiltInVideoBIOS> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CBuiltInKeyBrd : public mira::smbios::CStructure<CBuiltInKeyBrd> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CDeviceBay : public mira::smbios::CStructure<CDeviceBay> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CProbeCustomization : public mira::smbios::CStructure<CProbeCustomization> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CCoolingDeviceCustomization
    : public mira::smbios::CStructure<CCoolingDeviceCustomization> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

class MIRA_API CRemoteBIOSUpdate : public mira::smbios::CStructure<CRemoteBIOSUpdate> {
 public:
  using CStructure::CStructure;
  static const mira::smbios::Layout kLayout;
};

// Both hold protected values: neither shown nor published, so an object of either class is as plain
// as its base.
class MIRA_API CProtectedValueType1 : public CBIOSObject {
 public:
  using CBIOSObject::CBIOSObject;
};

class MIRA_API CProtectedValueType2 : public CBIOSObject {
 public:
  using CBIOSObject::CBIOSObject;
};

#endif  // MIRA_SMBIOS_STRUCTURES_OEM_STRUCTURES_H_
