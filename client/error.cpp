#include "client/error.h"

#include <algorithm>
#include <iterator>

namespace mira::client {

const char* StatusName(int status) noexcept {
  static constexpr const char* kNames[] = {
      "done",
      "unexpected",
      "usage",
      "not-found",
      "not-supported",
      "password",
      "invalid-value",
      "administrator-needed",
      "confirmation",
      "transport-failed",
      "applied-in-part",
      "refused",
      "differs",
      "cancelled",
      "busy",
  };
  const auto index = static_cast<std::size_t>(status);
  return status >= 0 && index < std::size(kNames) ? kNames[index] : "unknown";
}

Error& Error::With(const char* key, Json value) & {
  details[key] = std::move(value);
  return *this;
}

Error&& Error::With(const char* key, Json value) && {
  details[key] = std::move(value);
  return std::move(*this);
}

Json ToJson(const Error& error) {
  Json json = {{"code", static_cast<int>(error.status)},
               {"name", error.name},
               {"message", ToUtf8(error.what())},
               {"target", ToUtf8(error.target)},
               {"hint", ""}};
  if (!error.step.empty()) json["step"] = error.step;
  if (error.hresult) json["hresult"] = *error.hresult;
  if (error.completion) json["completion"] = *error.completion;
  json.update(error.details);
  return json;
}

Error ErrorFromJson(const Json& json) {
  const auto code = json.at("code").get<int>();
  const bool is_known = code > kDone && code <= kBusy;
  Error error(is_known ? static_cast<ExitStatus>(code) : kUnexpected, json.at("name"),
              json.at("message").get<std::string>(), json.value("target", ""));
  for (const auto& [key, value] : json.items()) {
    if (key == "step") {
      error.step = value;
    } else if (key == "hresult") {
      error.hresult = value.get<std::uint32_t>();
    } else if (key == "completion") {
      error.completion = value.get<std::int32_t>();
    } else if (key != "code" && key != "name" && key != "message" && key != "target" &&
               key != "hint") {
      error.details[key] = value;
    }
  }
  return error;
}

const StatusText& Explain(Status status) {
  static constexpr StatusText kTexts[] = {
      {STATUS_SUCCESS, kDone, "success", "Everything is available."},
      {STATUS_FAILURE, kRefused, "call-failed", "The call failed."},
      {STATUS_FUNCTION_ERROR, kRefused, "function-error",
       "The firmware ended the command in error."},
      {STATUS_NOT_SUPPORTED, kNotSupported, "not-supported",
       "This machine or this library does not support the command."},
      {STATUS_FUNCTION_NOT_EXECUTED, kTransportFailed, "not-executed",
       "The firmware did not execute the command."},
      {STATUS_OUTPUT_MALFORMED, kUnexpected, "output-malformed",
       "The firmware could not use the output buffer that it was given."},
      {STATUS_OUTPUT_TOO_SMALL, kRefused, "output-too-small",
       "The output buffer was too small, or the firmware refused the value."},
      {STATUS_INVALID_SECURITY_KEY, kPassword, "password-needed",
       "The firmware wants a password for this."},
      {STATUS_TRANSPORT_ERROR, kTransportFailed, "transport-failed",
       "The call did not reach the firmware."},
      {STATUS_COM_INIT_FAILED, kTransportFailed, "com-failed",
       "COM or the WMI connection could not be set up."},
      {STATUS_WMI_INSTANCE_NOT_FOUND, kNotSupported, "no-calling-interface",
       "This PC offers no calling interface through WMI."},
      {STATUS_SMBIOS_READ_FAILED, kTransportFailed, "smbios-failed",
       "The SMBIOS table could not be read."},
      {STATUS_SECURITY_KEY_FAILED, kPassword, "password-wrong", "The password was not accepted."},
      {STATUS_NOT_ADMIN, kNeedsAdministrator, "not-administrator",
       "Administrator rights are needed."},
      {STATUS_PLDM_INIT_FAILED, kNotSupported, "no-attributes",
       "The BIOS attributes could not be loaded."},
      {STATUS_ACPI_NOT_SUPPORTED, kNotSupported, "acpi-not-supported",
       "The firmware does not support calls through WMI."},
      {STATUS_ATTRIBUTE_REFUSED_1, kRefused, "attribute-limits",
       "The firmware refused the value (status 1)."},
      {STATUS_ATTRIBUTE_REFUSED_2, kRefused, "attribute-read-only",
       "The firmware refused the write (status 2)."},
      {STATUS_ATTRIBUTE_NOT_FOUND, kNotFound, "attribute-not-found", "There is no such attribute."},
      {STATUS_ATTRIBUTE_REFUSED_5, kPassword, "password-needed",
       "The firmware refused the write (status 5)."},
  };
  static constexpr StatusText kUnknown = {STATUS_FAILURE, kUnexpected, "unexpected",
                                          "The library gave an unexpected status."};
  const auto* const found =
      std::find_if(std::begin(kTexts), std::end(kTexts),
                   [status](const StatusText& t) { return t.status == status; });
  return found != std::end(kTexts) ? *found : kUnknown;
}

Error ErrorOf(Status status, std::string target) {
  const StatusText& text = Explain(status);
  return Error(text.exit_status, text.name, text.meaning, std::move(target));
}

std::string Sentence(std::string text) {
  while (text.ends_with('\n') || text.ends_with('.')) text.pop_back();
  return text + '.';
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

}  // namespace mira::client
