#ifndef MIRA_TRANSPORT_BFN_METHOD_H_
#define MIRA_TRANSPORT_BFN_METHOD_H_

// The WMI method that carries a calling-interface record to the firmware and back: BFn.DoBFn in
// ROOT\WMI, with the record as "Bytes" of a BDat instance.
//
//   BfnMethod method(services);
//   if (method.Call(record, buffer_size, instance_key)) ...   // the record holds the answer

#include "platform/api.h"
#include "platform/com_ptr.h"
#include "transport/smbios_ci.h"

namespace mira::transport {

class BfnMethod {
 public:
  BfnMethod() = default;
  // Fetches the class objects and the method's signatures. A step that fails leaves the method
  // unusable.
  explicit BfnMethod(const CComPtr<IWbemServices>& services);

  // Carries one record; false when any step of the transport failed. Presets cbRES1 to -3 ("did not
  // execute").
  bool Call(SMBiosCI& ci, unsigned int buffer_size, const CComBSTR& instance_key);

 private:
  void Prepare();
  bool FillInputCIBuffer(const SMBiosCI& ci, unsigned int buffer_size);
  bool GetOutputCIBuffer(SMBiosCI& ci) const;

  CComPtr<IWbemServices> services_;
  CComPtr<IWbemClassObject> data_class_;
  CComPtr<IWbemClassObject> data_;  // the BDat instance that holds "Bytes"
  CComPtr<IWbemClassObject> method_class_;
  CComPtr<IWbemClassObject> in_signature_;
  CComPtr<IWbemClassObject> out_signature_;
  CComPtr<IWbemClassObject> in_parameters_;   // holds "Data"
  CComPtr<IWbemClassObject> out_parameters_;  // of the last call
};

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_BFN_METHOD_H_
