#ifndef MIRA_CLIENT_RAW_CALL_H_
#define MIRA_CLIENT_RAW_CALL_H_

// One call of the firmware's calling interface as it stands: four argument words, four result
// words. Nobody but the firmware knows what it does.

#include <array>
#include <cstdint>

#include "client/call.h"
#include "client/json.h"

namespace mira::client {

struct RawCall {
  callif::Command command = {};
  std::array<std::uint32_t, 4> arguments = {};
  std::uint32_t key_argument = 0;  // 1 to 4: the word that receives the security key; 0: none
  std::array<std::uint32_t, 4> results = {};
  std::int32_t Completion() const { return static_cast<std::int32_t>(results[0]); }
};

// Makes the call and fills its results. Throws Error when it brought none, or the firmware's
// completion code is not 0; the results are there then, too, in the error's document.
void Make(Session& session, RawCall& call, const Key& key);

// {"class", "select", "results", "completionText"}
Json ToJson(const RawCall& call);

}  // namespace mira::client

#endif  // MIRA_CLIENT_RAW_CALL_H_
