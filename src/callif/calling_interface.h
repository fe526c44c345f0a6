#ifndef MIRA_CALLIF_CALLING_INTERFACE_H_
#define MIRA_CALLIF_CALLING_INTERFACE_H_

// The vendor structure of type 0xDA: it announces which command classes the firmware supports,
// carries the token table, and executes calls through WMI.
//
//   auto* calling = dynamic_cast<CCallingInterface*>(mira.GetBIOSObject(0xDA));
//   if (calling && calling->IsCommandSupported(11)) ...

#include <cstdint>
#include <map>
#include <ostream>
#include <span>

#include "platform/api.h"
#include "platform/com_ptr.h"
#include "smbios/bios_object.h"
#include "transport/bfn_method.h"
#include "transport/smbios_ci.h"

// One token: an id, the location (command port or CMOS index) behind it, and its value.
class MIRA_API CDAToken {
 public:
  CDAToken(std::uint16_t id, std::uint16_t location, std::uint16_t value);
  void TokenInfo(std::uint16_t& id, std::uint16_t& location, std::uint16_t& value) const;
  void Display(std::ostream& out) const;

 private:
  std::uint16_t m_wToken;
  std::uint16_t m_wLocation;
  std::uint16_t m_wValue;
};

class MIRA_API CCallingInterface : public CBIOSObject {
 public:
  // What the operations of this class answer; 0 also means success here.
  enum Status { STATUS_SUCCESS = 0, STATUS_DUPLICATE_TOKEN = 1, STATUS_FAILURE = 3 };

  // Takes ownership of `raw` (see CBIOSObject) and a reference to the connection, which may be
  // empty: then the object describes the structure and executes no calls. Raises
  // mira::transport::ComError when a COM string cannot be made.
  CCallingInterface(unsigned char* raw, CComPtr<IWbemServices>& services);
  CCallingInterface(const CCallingInterface& other);
  CCallingInterface& operator=(const CCallingInterface& other);

  void Display(std::ostream& out) const override;

  // Adds the tokens of this object and of every type-0xDA object chained behind it; of equal ids
  // the first stays.
  void GetAllDATokens(std::map<std::uint16_t, CDAToken>& out);
  // The token of that id in this object or in one chained behind it, or null. Owned by its object.
  const CDAToken* GetDAToken(std::uint16_t id);
  // Whether bit (cls mod 32) of the announced classes is set. Throws std::out_of_range for a bitmap
  // above 0x7FFFFFFF.
  bool IsCommandSupported(std::uint16_t cls);

  // One firmware call. `ci` must be a block of at least ci.cbLength bytes (44 or more); `bufSize`
  // is the size in bytes of the firmware's transfer buffer, `instanceKey` what follows the class
  // name in the path of the WMI instance. STATUS_SUCCESS only when the call was carried and cbRES1
  // is 0; the record holds the firmware's answer then, and also when cbRES1 alone failed.
  Status Execute(SMBiosCI& ci, unsigned int bufSize, const CComBSTR& instanceKey);

  // Overwrites what the transport keeps of the last call, which may have carried a security key.
  void ForgetLastCall(unsigned int bufSize) noexcept;

  std::uint16_t CommandIOAddress() const { return m_wCmdIOAddress; }
  std::uint8_t CommandIOCode() const { return m_byCmdIOCode; }
  // Bit n set: class n is announced.
  std::uint32_t SupportedCommands() const { return m_dwSupportedCmds; }

 protected:
  ~CCallingInterface() override;
  void AddAttributes(AttributeMap::mapped_type& list) const override;
  void DisplayOne(std::ostream& out) const override;
  void MarkBeyond(std::vector<bool>& beyond) const override;

 private:
  Status ConstructDATokens(unsigned char* p);
  void DisplayFields(std::ostream& out) const;
  void DisplayOwnTokens(std::ostream& out) const;
  void DisplayDATokens(std::ostream& out) const;
  CCallingInterface* NextInterface() const;

  std::uint16_t m_wCmdIOAddress = 0;
  std::uint8_t m_byCmdIOCode = 0;
  std::uint32_t m_dwSupportedCmds = 0;
  std::map<std::uint16_t, CDAToken> m_mapDATokens;
  mira::transport::BfnMethod m_Method;
};

#endif  // MIRA_CALLIF_CALLING_INTERFACE_H_
