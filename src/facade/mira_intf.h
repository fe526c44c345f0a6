#ifndef MIRA_FACADE_MIRA_INTF_H_
#define MIRA_FACADE_MIRA_INTF_H_

// The one class through which a host reads SMBIOS structures, drives the firmware's calling
// interface, and reads and writes BIOS attributes. One thread at a time uses it; the host needs
// administrator rights.
//
//   CMiraIntf mira(std::cerr);
//   if (Status status = mira.Init(false, false, false); status != STATUS_SUCCESS) return status;
//   mira.Display(std::cout);
//   CSimpleTokenData data;
//   data.Arg1 = 0x70;   // is this token set?
//   mira.ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE);

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "buffers/bios_data.h"
#include "callif/calling_interface.h"
#include "callif/password.h"
#include "facade/status.h"
#include "platform/api.h"
#include "platform/com_ptr.h"
#include "pldm/attribute.h"
#include "smbios/bios_object.h"
#include "transport/operation_report.h"

namespace mira::pldm {
class Manager;
}

// Set by the host before Init: when true, IsACPISupported makes no probing call. The library never
// writes it.
extern MIRA_API bool bFlagCheck;

class MIRA_API CMiraIntf {
 public:
  // `diag` receives one line per failure and must outlive the object. Forgets an earlier discovery
  // of the buffer fix.
  explicit CMiraIntf(std::ostream& diag);
  // Shares the connection and the attribute store with the copy.
  CMiraIntf(const CMiraIntf& other);
  CMiraIntf& operator=(const CMiraIntf&) = delete;
  // Releases the attribute store, the connection and COM. The structure registry stays for the rest
  // of the process.
  ~CMiraIntf();

  // Runs the start-up steps and stops at the first failure, undoing nothing; it may be repeated.
  // With `loadPLDM`, also loads the attribute tables, and with the two further flags their display
  // and help strings; that these are missing, or were cancelled, is no failure. Throws
  // mira::transport::ComError (E_OUTOFMEMORY) when a COM string cannot be made, and nothing else.
  Status Init(bool loadPLDM, bool loadDisplayStrings, bool loadHelpStrings);

  // Writes the dump of every structure, ascending by type.
  void Display(std::ostream& out);
  // The first structure of a type, or null. Owned by the library.
  CBIOSObject* GetBIOSObject(unsigned char type);
  // Size in bytes of the firmware's transfer buffer; 0 before it is known.
  unsigned int GetACPIBufSize();
  // What follows the class name in the path of the WMI instance.
  const CComBSTR& GetACPIInstanceName();
  // Replaces `out` by the tokens of all calling-interface structures.
  void GetAllDATokens(std::map<std::uint16_t, CDAToken>& out);

  // Runs one calling-interface command. The request is read and receives the results; the password,
  // if not empty, is exchanged for a security key, of the class-10 password when `pwdType` is
  // PWD_CLASS10, else of the class-9 one. Initialises COM on the calling thread. Gives
  // STATUS_SUCCESS, STATUS_FAILURE, STATUS_NOT_SUPPORTED or STATUS_SECURITY_KEY_FAILED.
  Status ExecuteDACI(std::uint16_t cls, std::uint16_t sel, IBIOSData& data,
                     const std::string& password, PwdInfo::PWDTYPE pwdType);

  // Which passwords are installed, and their lengths. False, with `info` zeroed, without a calling
  // interface. COM must be initialised on the calling thread.
  bool GetPwdInfo(PwdInfo& info);
  // The security key for a class-9 or class-10 password: 0 when that password is not installed (or
  // `type` is another), 0xFFFFFFFF when the password is wrong, empty or too long. COM must be
  // initialised on the calling thread.
  unsigned int ValidatePwd(const std::string& password, PwdInfo::PWDTYPE type);

  // BIOS attributes. Init loads their tables when it is asked to; until then, and where the
  // firmware has none, the machine counts as not supporting them: the operations with a status give
  // STATUS_NOT_SUPPORTED, the lists stay untouched. COM must be initialised on the calling thread.

  // Whether the attribute tables are loaded.
  bool IsPLDMSupported();
  // Replaces `out` by all attributes in ascending order of handles; read-only types keep their
  // mark.
  void GetAttributeHandlesAndTypes(std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>>& out);
  // The same with names, still in the order of handles; an empty text where the firmware gives
  // none.
  void GetAttributeNamesAndTypes(std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>>& out);
  // STATUS_ATTRIBUTE_NOT_FOUND for an unknown handle.
  Status GetAttributeName(std::uint16_t handle, std::string& name);
  // PLDM::BIOSUnknownType for an unknown handle.
  PLDM::ATTRIBUTE_TYPE GetAttributeType(std::uint16_t handle);

  // Reads an attribute from the firmware as it is now. The caller makes the object of the
  // attribute's type (PLDM::MakeAttribute) and sets its name or its handle; the name wins, and the
  // handle found for it, 0 for an unknown one, is written back. STATUS_ATTRIBUTE_NOT_FOUND for an
  // unknown name or handle; STATUS_FAILURE, without a call, when the object is not of the class
  // that its type names or the attribute is of another type; STATUS_OUTPUT_MALFORMED when the
  // answer ends within the value; else what the firmware's completion code stands for. A type that
  // does not exist is diagnosed on standard output; what was exchanged last is then read again.
  Status GetAttributeValue(PLDM::Attribute& attr);
  // The same from the tables that Init read: the value in force when the machine was read, whatever
  // was written since. STATUS_FAILURE when the tables have no value for the attribute.
  Status GetAttributeValueAtBoot(PLDM::Attribute& attr);
  // The value at start-up as text. An enumeration's value names, and a boot order's source names,
  // each of these followed by ";", are appended to `value`, which is not cleared: clear it first.
  // Texts and numbers replace `value`. Collections and config sets leave it alone and say so on
  // standard output. STATUS_FAILURE when the value, the attribute or one of its strings is missing.
  Status GetAttributeValueAtBoot(std::uint16_t handle, std::string& value);
  // Writes the value in `attr` (named as for reading; of a writable type) without checking it: the
  // firmware does. Enumerations send CurrentIndices. A password, if not empty, is exchanged for a
  // security key (STATUS_SECURITY_KEY_FAILED if it is wrong), of the class-10 password when
  // `pwdType` is PWD_CLASS10, else of the class-9 one; without one `securityKey` is used, from
  // ValidatePwd; if that is 0xFFFFFFFF, the key of the call before. STATUS_ATTRIBUTE_REFUSED_…,
  // STATUS_ATTRIBUTE_NOT_FOUND or STATUS_OUTPUT_TOO_SMALL when the firmware refuses the value; for
  // an object of the wrong class, or a value that no request can carry, STATUS_FAILURE without a
  // call. For a read-only or unknown type a line on standard output says that nothing of `attr` is
  // sent: what was exchanged last is sent again, and STATUS_FAILURE answered if nothing was.
  Status SetAttributeValue(PLDM::Attribute& attr, const std::string& password,
                           PwdInfo::PWDTYPE pwdType, unsigned int securityKey);

  // For front ends. The default of an attribute as text: of an enumeration the names with their
  // suffixes, joined by ", "; empty for types that have no default. STATUS_ATTRIBUTE_NOT_FOUND for
  // an unknown handle.
  Status GetAttributeDefault(std::uint16_t handle, std::string& value);
  // Replaces `names` by an enumeration's possible values, each with its suffix, a boot order's
  // possible sources or a config set's members; by nothing for other types.
  // STATUS_ATTRIBUTE_NOT_FOUND for an unknown handle.
  Status GetPossibleValues(std::uint16_t handle, std::list<std::string>& names);

  // For front ends. Which step of the last operation failed and with which code, and whether its
  // call reached the firmware: of Init, ExecuteDACI, GetPwdInfo, ValidatePwd and the operations on
  // attributes, whichever object ran it. The last Init step by step. Both stay valid for the rest
  // of the process, and change with the next operation.
  static const mira::OperationReport& GetLastOperation() noexcept;
  static const mira::StartUpReport& GetStartUp() noexcept;

  // What the process knows about the machine, shared by all objects. Read it through the operations
  // above.
  static std::map<unsigned char, CBIOSObject*> m_mapBIOSTable;
  static unsigned short m_SMBIOSMajorVersion;
  static bool m_bIsWMIACPIBufferFixPresent;
  static CComBSTR m_bstrACPIInstanceName;
  static unsigned int m_dwACPIBufSize;

 private:
  bool IsUserAdmin();
  bool InitializeCOM();
  bool GetSMBIOSTables();
  bool ConstructBIOSObject(unsigned char* raw, CBIOSObject*& obj, unsigned char& type);
  static void BIOSObjDeletor(std::pair<unsigned char, CBIOSObject*> entry);
  bool FindInstanceAndGetData();
  void ConvertPathToInstanceName();
  bool IsACPISupported();
  bool InitPLDM(bool loadDisplayStrings, bool loadHelpStrings);

  CCallingInterface* CallingInterface();
  // What `operation` makes of the attribute store; STATUS_NOT_SUPPORTED where no tables are loaded.
  template <typename Operation>
  Status WithPLDM(const char* what, Operation operation);
  // Runs `operation`; what it throws becomes one diagnostic line and `failed`. Only a COM string
  // that cannot be made passes through.
  template <typename Result, typename Operation>
  Result Guard(const char* what, Result failed, Operation operation);

  CComPtr<IWbemServices> m_pServices;
  bool m_bCOMInitialized = false;
  std::ostream& m_Diag;
  std::shared_ptr<mira::pldm::Manager> m_pPLDM;
};

#endif  // MIRA_FACADE_MIRA_INTF_H_
