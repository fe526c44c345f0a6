#ifndef MIRA_CALLIF_DISPATCH_H_
#define MIRA_CALLIF_DISPATCH_H_

// Runs one command from end to end: key, preparatory calls, the call itself, decoding.

#include <cstdint>
#include <string>

#include "buffers/bios_data.h"
#include "callif/one_call.h"

namespace mira::callif {

enum class DispatchResult {
  kDone,
  kFailed,        // the transport or the firmware reported failure; the result words say which
  kNotSupported,  // class not announced, no buffer for the pair, or no record from the request
  kNoKey,         // a password was given but no security key could be obtained for it
};

// Class 64 is served without being announced, and its answer is decoded even when the call failed.
// Throws std::bad_cast for a request of another type than the command's, and std::out_of_range for
// a class bitmap that cannot be read.
DispatchResult Dispatch(const Target& target, std::uint16_t cls, std::uint16_t select,
                        IBIOSData& data, const std::string& password, bool class10);

}  // namespace mira::callif

#endif  // MIRA_CALLIF_DISPATCH_H_
