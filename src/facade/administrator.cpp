#include "facade/administrator.h"

#include <string_view>

#include "platform/services.h"
#include "transport/operation_log.h"

namespace mira {
namespace {

// The system's text for an error, without its end of line, or a sentence of our own.
void WriteError(std::ostream& diag, DWORD error) {
  const auto& system = platform::Services();
  LPSTR text = nullptr;
  // With the allocate flag the buffer argument is the place of the pointer to the text.
  const DWORD length =
      system.FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
                            error, 0, reinterpret_cast<LPSTR>(&text), 0, nullptr);
  std::string_view line(text != nullptr ? text : "", text != nullptr ? length : 0);
  line = line.substr(0, line.find_last_not_of("\r\n") + 1);
  if (line.empty()) {
    diag << "The administrator check failed with error " << error << std::endl;
  } else {
    diag << line << std::endl;
  }
  system.LocalFree(text);
}

}  // namespace

bool IsAdministrator(std::ostream& diag) {
  const auto& system = platform::Services();
  transport::OperationLog& log = transport::OperationLog::Get();
  SID_IDENTIFIER_AUTHORITY nt_authority = {{0, 0, 0, 0, 0, 5}};
  PSID administrators = nullptr;
  BOOL is_member = FALSE;
  if (system.AllocateAndInitializeSid(&nt_authority, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                      DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &administrators) &&
      system.CheckTokenMembership(nullptr, administrators, &is_member)) {
    if (is_member == 1) {
      log.Done(Step::kAdministratorCheck);
    } else {
      log.Fail(Step::kAdministratorCheck);
    }
    return is_member == 1;
  }
  const DWORD error = system.GetLastError();
  log.Fail(Step::kAdministratorCheck, CodeKind::kSystemError, static_cast<std::int32_t>(error));
  WriteError(diag, error);
  return false;
}

}  // namespace mira
