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
//   mira.ExecuteDACI(17, 0, data, "", PwdInfo::PWD_NONE);

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
#include "smbios/bios_object.h"

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
  // and help strings. Throws mira::transport::ComError (E_OUTOFMEMORY) when a COM string cannot be
  // made, and nothing else.
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
