#ifndef MIRA_CONSOLE_EXIT_STATUS_H_
#define MIRA_CONSOLE_EXIT_STATUS_H_

#include "client/error.h"

namespace mira::console {

struct ExitStatusText {
  client::ExitStatus status;
  const char* meaning;
};
// What the program ends with, as help and manual say it.
inline constexpr ExitStatusText kExitStatusTexts[] = {
    {client::kDone, "done, or already so"},
    {client::kUnexpected, "unexpected"},
    {client::kUsage, "usage"},
    {client::kNotFound, "not found"},
    {client::kNotSupported, "not supported by this machine"},
    {client::kPassword, "password needed or wrong"},
    {client::kInvalidValue, "invalid value"},
    {client::kNeedsAdministrator, "administrator rights needed"},
    {client::kNeedsConfirmation, "confirmation needed"},
    {client::kTransportFailed, "transport failed"},
    {client::kAppliedInPart, "applied in part"},
    {client::kRefused, "refused by the firmware"},
    {client::kDiffers, "a check found a difference"},
};

}  // namespace mira::console

#endif  // MIRA_CONSOLE_EXIT_STATUS_H_
