#ifndef MIRA_CONSOLE_CALL_H_
#define MIRA_CONSOLE_CALL_H_

#include <cstdint>

#include "buffers/bios_data.h"
#include "console/command.h"

namespace mira::console {

// The calling interface, or null.
CCallingInterface* FindCallingInterface(CMiraIntf& mira);
// Whether the firmware announces a class. A bitmap that the library cannot convert announces none.
bool IsAnnounced(CMiraIntf& mira, std::uint16_t cls);

// What the program ends with after a call.
ExitStatus CallExit(Status status, std::int32_t completion);

// The error of a call that did not succeed.
CommandError CallError(Context& context, std::uint16_t cls, std::uint16_t select, Status status,
                       std::int32_t completion);

// Shows a call's result words, and ends with the error when it failed. Throws CommandError when the
// call brought no result words.
ExitStatus ReportCall(Context& context, std::uint16_t cls, std::uint16_t select, Status status,
                      const CSimpleTokenData& data);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_CALL_H_
