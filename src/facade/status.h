#ifndef MIRA_FACADE_STATUS_H_
#define MIRA_FACADE_STATUS_H_

// The result of every facade operation that returns a status.
enum Status {
  STATUS_SUCCESS = 0,
  // The calling-interface structure is missing or of another class, or a call ran and the transport
  // or the firmware reported failure.
  STATUS_FAILURE = 1,
  // An attribute read or write ended with completion code -1.
  STATUS_FUNCTION_ERROR = 2,
  // The command class is not announced, the command has no buffer, or no attribute tables are
  // loaded.
  STATUS_NOT_SUPPORTED = 3,
  // An attribute read or write ended with completion code -3, -5 (or an answer that ends within the
  // value), -6 (or status byte 4), -7.
  STATUS_FUNCTION_NOT_EXECUTED = 4,
  STATUS_OUTPUT_MALFORMED = 5,
  STATUS_OUTPUT_TOO_SMALL = 6,
  STATUS_INVALID_SECURITY_KEY = 7,
  // An attribute read or write ended with a completion code below -2000000000.
  STATUS_TRANSPORT_ERROR = 8,
  // Init: COM or the WMI connection could not be set up.
  STATUS_COM_INIT_FAILED = 9,
  // Init: no WMI instance carries the calling-interface signature.
  STATUS_WMI_INSTANCE_NOT_FOUND = 10,
  // Init: the SMBIOS table could not be read and parsed.
  STATUS_SMBIOS_READ_FAILED = 11,
  // A password was given but no security key could be obtained for it.
  STATUS_SECURITY_KEY_FAILED = 12,
  // Init: the caller is not a member of the local Administrators group.
  STATUS_NOT_ADMIN = 13,
  // Init: attributes were requested and there is no calling-interface structure.
  STATUS_PLDM_INIT_FAILED = 15,
  // Init: the firmware does not offer the WMI-ACPI calling interface.
  STATUS_ACPI_NOT_SUPPORTED = 16,
  // An attribute write was refused with status byte 1, 2, 3 (or: the attribute is unknown), 5.
  STATUS_ATTRIBUTE_REFUSED_1 = 17,
  STATUS_ATTRIBUTE_REFUSED_2 = 18,
  STATUS_ATTRIBUTE_NOT_FOUND = 19,
  STATUS_ATTRIBUTE_REFUSED_5 = 20,
};

#endif  // MIRA_FACADE_STATUS_H_
