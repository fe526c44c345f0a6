#ifndef MIRA_TRANSPORT_BFN_METHOD_H_
#define MIRA_TRANSPORT_BFN_METHOD_H_

// The WMI method that carries a calling-interface record to the firmware and back: BFn.DoBFn in
// ROOT\WMI, with the record as "Bytes" of a BDat instance.
//
//   BfnMethod method(services);
//   if (method.Call(record, buffer_size, instance_key)) ...   // the record holds the answer
//
// A method may outlive its connection: whoever ends that calls LetGo first, and Reconnect when
// there is another.

#include "platform/api.h"
#include "platform/com_ptr.h"
#include "transport/smbios_ci.h"

namespace mira::transport {

class OperationLog;

class BfnMethod {
 public:
  BfnMethod() = default;
  // Fetches the class objects and the method's signatures. A step that fails leaves the method
  // unusable.
  explicit BfnMethod(const CComPtr<IWbemServices>& services);
  BfnMethod(const BfnMethod& other);
  BfnMethod& operator=(const BfnMethod& other);
  ~BfnMethod();

  // Carries one record; false when any step of the transport failed. Presets cbRES1 to -3 ("did not
  // execute").
  bool Call(SMBiosCI& ci, unsigned int buffer_size, const CComBSTR& instance_key);

  // Overwrites what the WMI objects keep of the last record, and releases its answer. Call does so
  // itself where the command carries a password; a key can stand in any record.
  void ForgetRecord(unsigned int buffer_size) noexcept;

  // Releases the WMI objects of all methods of the process that have this connection.
  static void LetGo(const IWbemServices* services) noexcept;
  // Gives the connection to all methods that had to let go of theirs; those that never had one stay
  // without.
  static void Reconnect(const CComPtr<IWbemServices>& services) noexcept;

 private:
  bool Prepare();
  void ReleaseObjects() noexcept;
  bool Carry(SMBiosCI& ci, unsigned int buffer_size, const CComBSTR& instance_key,
             OperationLog& log);
  bool FillInputCIBuffer(const SMBiosCI& ci, unsigned int buffer_size);
  bool GetOutputCIBuffer(SMBiosCI& ci) const;
  void Link() noexcept;
  void Unlink() noexcept;

  CComPtr<IWbemServices> services_;
  CComPtr<IWbemClassObject> data_class_;
  CComPtr<IWbemClassObject> data_;  // the BDat instance that holds "Bytes"
  CComPtr<IWbemClassObject> method_class_;
  CComPtr<IWbemClassObject> in_signature_;
  CComPtr<IWbemClassObject> out_signature_;
  CComPtr<IWbemClassObject> in_parameters_;   // holds "Data"
  CComPtr<IWbemClassObject> out_parameters_;  // of the last call

  // All methods that have or had a connection.
  static BfnMethod* first_;
  BfnMethod* previous_ = nullptr;
  BfnMethod* next_ = nullptr;
  bool is_linked_ = false;
};

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_BFN_METHOD_H_
