#ifndef MIRA_CLIENT_ERROR_H_
#define MIRA_CLIENT_ERROR_H_

// What ends an operation of the client layer early, with what a program and a person need to know.
//
//   throw Error(kNotFound, "no-battery", "The firmware knows no battery 3.", "battery 3");

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "client/json.h"
#include "facade/status.h"

namespace mira::client {

// What an operation, and a program that ran one, ends with.
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
  kDiffers = 12,  // only where a check was asked for
  kCancelled = 13,
  kBusy = 14,
};
// "done", "usage", … for programs; "unknown" for a number that is none of them.
const char* StatusName(int status) noexcept;

struct Error : std::runtime_error {
  Error(ExitStatus exit_status, std::string error_name, const std::string& message,
        std::string error_target = "")
      : std::runtime_error(message),
        status(exit_status),
        name(std::move(error_name)),
        target(std::move(error_target)) {}

  // Adds a field to the error's document, such as the list of what was unknown.
  Error& With(const char* key, Json value) &;
  Error&& With(const char* key, Json value) &&;

  ExitStatus status;
  std::string name;    // "not-found"; one name for one error
  std::string target;  // what it was about, if one thing
  // Where it failed, if that was in the library: a step of the start-up or of a call.
  std::string step;
  std::optional<std::uint32_t> hresult;    // of that step
  std::optional<std::int32_t> completion;  // the firmware's completion code
  Json details = Json::object();           // further fields of the document
  // What was found out before it failed; shown along with the error.
  Json document = Json::object();
};

// Ends an operation that nobody wants the rest of. It is no Error, so that whoever notes the error
// of one entry and goes on with the next lets it pass.
struct Cancelled : std::runtime_error {
  Cancelled() : std::runtime_error("The operation was cancelled.") {}
  // What was done before; shown beside the error.
  Json document = Json::object();
};

// {"code", "name", "message", "target", "hint"}, and where they are known "step", "hresult",
// "completion" and the details. The hint is empty: faces fill in their own.
Json ToJson(const Error& error);
// The error of such a document.
Error ErrorFromJson(const Json& json);

// What a status of the library means.
struct StatusText {
  Status status;
  ExitStatus exit_status;
  const char* name;
  const char* meaning;
};
const StatusText& Explain(Status status);
// The error that stands for a status of the library.
Error ErrorOf(Status status, std::string target = "");

// The text with one full stop at its end: texts of the system and of readers of files have one or
// none.
std::string Sentence(std::string text);

// The text of a completion code.
std::string CompletionText(std::int32_t code);

}  // namespace mira::client

#endif  // MIRA_CLIENT_ERROR_H_
