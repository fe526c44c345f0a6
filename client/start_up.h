#ifndef MIRA_CLIENT_START_UP_H_
#define MIRA_CLIENT_START_UP_H_

// What the library's start-up did on this machine, step by step, and what is available.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/session.h"

namespace mira::client {

struct StartUpStep {
  std::string name;
  std::string outcome;  // "done", "known", "skipped", "failed", "cancelled", "not-tried"
  std::string code;     // "HRESULT 0x80041003"; empty where there is none
  std::string meaning;  // what the step did; of one that failed, what that means on this PC
  std::string advice;   // what to do; empty unless it failed
};

struct StartUp {
  Status status = STATUS_FAILURE;
  std::string status_name;
  std::vector<StartUpStep> steps;  // of Init, then whether calls come through
  std::vector<std::string> diagnostics;
  std::string smbios_version;              // "3.2"; empty when it is not known
  std::uint32_t transfer_buffer_size = 0;  // bytes; 0 when it is not known
  std::string instance_key;
  std::vector<unsigned> announced_classes;
  // Why nothing can be called although Init succeeded, or the error of Init.
  std::optional<Error> problem;
};

// Starts the library, and where that succeeds makes a call without effect.
StartUp ReadStartUp(Session& session);
Json ToJson(const StartUp& start_up);
// The error of an Init that failed; nothing where it succeeded.
std::optional<Error> StartProblem(Session& session);

}  // namespace mira::client

#endif  // MIRA_CLIENT_START_UP_H_
