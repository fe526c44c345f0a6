#include <algorithm>
#include <iterator>

#include "console/command.h"

namespace mira::console {

const StatusText& Explain(Status status) {
  static constexpr StatusText kTexts[] = {
      {STATUS_SUCCESS, kDone, "success", "Everything is available.", ""},
      {STATUS_FAILURE, kRefused, "call-failed", "The call failed.",
       "The completion code tells why."},
      {STATUS_FUNCTION_ERROR, kRefused, "function-error",
       "The firmware ended the command in error.", ""},
      {STATUS_NOT_SUPPORTED, kNotSupported, "not-supported",
       "This machine or this library does not support the command.",
       "'mira info' lists the command classes that the firmware announces."},
      {STATUS_FUNCTION_NOT_EXECUTED, kTransportFailed, "not-executed",
       "The firmware did not execute the command.", ""},
      {STATUS_OUTPUT_MALFORMED, kUnexpected, "output-malformed",
       "The firmware could not use the output buffer that it was given.", ""},
      {STATUS_OUTPUT_TOO_SMALL, kRefused, "output-too-small",
       "The output buffer was too small, or the firmware refused the value.", ""},
      {STATUS_INVALID_SECURITY_KEY, kPassword, "password-needed",
       "The firmware wants a password for this.",
       "Give it by --password-stdin, --password-file "
       "or --password-env."},
      {STATUS_TRANSPORT_ERROR, kTransportFailed, "transport-failed",
       "The call did not reach the firmware.", ""},
      {STATUS_COM_INIT_FAILED, kTransportFailed, "com-failed",
       "COM or the WMI connection could not be set up.",
       "Check that the Windows Management Instrumentation service runs."},
      {STATUS_WMI_INSTANCE_NOT_FOUND, kNotSupported, "no-calling-interface",
       "This PC offers no calling interface through WMI.", "Only SMBIOS commands work here."},
      {STATUS_SMBIOS_READ_FAILED, kTransportFailed, "smbios-failed",
       "The SMBIOS table could not be read.", ""},
      {STATUS_SECURITY_KEY_FAILED, kPassword, "password-wrong", "The password was not accepted.",
       ""},
      {STATUS_NOT_ADMIN, kNeedsAdministrator, "not-administrator",
       "Administrator rights are needed.", "Start the program from an elevated prompt."},
      {STATUS_PLDM_INIT_FAILED, kNotSupported, "no-attributes",
       "The BIOS attributes could not be loaded.", ""},
      {STATUS_ACPI_NOT_SUPPORTED, kNotSupported, "acpi-not-supported",
       "The firmware does not support calls through WMI.", "Only SMBIOS commands work here."},
      {STATUS_ATTRIBUTE_REFUSED_1, kRefused, "attribute-refused",
       "The firmware refused the value (status 1).",
       "It breaks one of the attribute's limits; 'mira attr get' shows them."},
      {STATUS_ATTRIBUTE_REFUSED_2, kRefused, "attribute-refused",
       "The firmware refused the write (status 2).", "The attribute is read-only."},
      {STATUS_ATTRIBUTE_NOT_FOUND, kNotFound, "attribute-not-found", "There is no such attribute.",
       ""},
      {STATUS_ATTRIBUTE_REFUSED_5, kPassword, "password-needed",
       "The firmware refused the write (status 5).",
       "It wants a password: give it by --password-stdin, --password-file or --password-env."},
  };
  static constexpr StatusText kUnknown = {STATUS_FAILURE, kUnexpected, "unexpected",
                                          "The library gave an unexpected status.", ""};
  const auto* const found =
      std::find_if(std::begin(kTexts), std::end(kTexts),
                   [status](const StatusText& t) { return t.status == status; });
  return found != std::end(kTexts) ? *found : kUnknown;
}

CommandError InitError(const Opened& opened) {
  const StatusText& text = Explain(opened.status);
  std::string message = text.meaning;
  for (const std::string& line : opened.diagnostics) message += " (" + line + ")";
  return CommandError(text.exit_status, text.name, message, "", text.hint);
}

std::string CompletionText(std::int32_t code) {
  struct Row {
    std::int32_t code;
    const char* text;
  };
  static constexpr Row kRows[] = {
      {0, "The function completed successfully."},
      {-1, "The function ended in error (possibly function-specific)."},
      {-2, "The function is not supported by the system."},
      {-3, "The function did not execute."},
      {-5, "The output buffer used by the function was not properly formatted."},
      {-6, "The output buffer used by the function was not large enough."},
      {-7, "Invalid security key."},
  };
  for (const Row& row : kRows) {
    if (row.code == code) return row.text;
  }
  return code > 0 ? "A code of this function's own." : "A code without a text.";
}

}  // namespace mira::console
