#ifndef MIRA_CONSOLE_EXIT_STATUS_H_
#define MIRA_CONSOLE_EXIT_STATUS_H_

namespace mira::console {

// What the program ends with.
enum ExitStatus {
  kDone = 0,  // done, or already so
  kUnexpected = 1,
  kUsage = 2,
  kNotFound = 3,
  kNotSupported = 4,  // by this machine
  kPassword = 5,      // needed or wrong
  kInvalidValue = 6,
  kNeedsAdministrator = 7,
  kNeedsConfirmation = 8,
  kTransportFailed = 9,
  kAppliedInPart = 10,
  kRefused = 11,  // by the firmware
};

}  // namespace mira::console

#endif  // MIRA_CONSOLE_EXIT_STATUS_H_
