#ifndef MIRA_CONSOLE_CALL_H_
#define MIRA_CONSOLE_CALL_H_

#include <cstdint>

#include "buffers/bios_data.h"
#include "console/command.h"

namespace mira::console {

// What the program ends with after a call.
ExitStatus CallExit(Status status, std::int32_t completion);

// Shows a call's result words. Throws CommandError when the call brought none.
ExitStatus ReportCall(Context& context, std::uint16_t cls, std::uint16_t select, Status status,
                      const CSimpleTokenData& data);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_CALL_H_
