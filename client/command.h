#ifndef MIRA_CLIENT_COMMAND_H_
#define MIRA_CLIENT_COMMAND_H_

// A command: its name, typed arguments with their checks, and the handler that gives its document.
// A face fills in the arguments and shows the document; it decides nothing.
//
//   Session session;
//   NoSecrets none;
//   Request request(session, none);
//   Result result = Run(*FindCommand("tag.show"), {{"kind", "asset"}}, request);

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/error.h"
#include "client/plan.h"
#include "client/secrets.h"
#include "client/session.h"

namespace mira::client {

enum class Type {
  kText,     // a text, or a number that stands for its digits
  kNumber,   // a number, or its text in decimal or with 0x
  kFlag,     // true or false
  kTexts,    // a list of texts; one text stands for a list of one
  kContent,  // what a file holds; faces with files take its name
  kValue,    // any JSON value
};

struct Argument {
  const char* name;  // in camel case: "listKind"
  Type type = Type::kText;
  const char* help = "";
  bool required = false;
  bool positional = false;  // on a command line; others are options
  // Of a content, the words that are no file's name.
  std::vector<std::string> choices = {};
  std::uint64_t min = 0;
  std::uint64_t max = std::numeric_limits<std::uint32_t>::max();
};

// Of commands that change something under a BIOS password: which one that is.
extern const Argument kClass10;

// Of commands that read: a snapshot that stands for the machine.
extern const Argument kSnapshotArgument;

enum class Effect {
  kOffline,  // needs no machine
  kReads,
  kChanges,  // takes "whatIf", and asks first where there is somebody to ask
};

class Request;

struct Command {
  const char* name;  // words with dots between: "boot.order"
  const char* summary;
  Effect effect = Effect::kReads;
  std::vector<Argument> arguments = {};
  std::vector<const char*> secrets = {};  // the slots it may ask for, in the order of input
  Json (*run)(Request& request) = nullptr;
  // What the command is called without its last word: "id.mac.show" is also "id.mac".
  bool is_default = false;
  bool works_offline = false;  // on a snapshot in "from"; all that only read do
};

// All commands of the client layer, by subject.
const std::vector<Command>& Commands();
const Command* FindCommand(std::string_view name);

// What a handler works with.
class Request {
 public:
  // `approve` is shown the plan before anything is written and throws Error (kNeedsConfirmation) if
  // it may not be; without one everything may.
  using Approval = std::function<void(const Plan& plan)>;
  Request(Session& session, SecretProvider& secrets, Approval approve = nullptr)
      : session_(session), secrets_(secrets), approve_(std::move(approve)) {}
  // A document that it was given may hold secrets.
  ~Request() { Wipe(arguments_); }
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  Session& GetSession() { return session_; }
  CMiraIntf& Mira() { return session_.Ready(); }
  SecretProvider& Secrets() { return secrets_; }

  // The arguments, checked. Those without a value are missing.
  void SetArguments(Json arguments) { arguments_ = std::move(arguments); }
  bool Has(const char* name) const { return arguments_.contains(name); }
  std::string Text(const char* name, const std::string& otherwise = "") const;
  std::uint64_t Number(const char* name, std::uint64_t otherwise = 0) const;
  bool Flag(const char* name) const;
  std::vector<std::string> Texts(const char* name) const;
  const Json& Value(const char* name) const;
  // Checks are made and nothing is written.
  bool WhatIf() const { return Flag("whatIf"); }
  // Shows the plan to whoever is asked. Throws Error (kNeedsConfirmation).
  void Approve(const Plan& plan) const {
    if (approve_) approve_(plan);
  }
  // Where lines of a log go, each brought to the disk before this returns; throws Error where it
  // cannot be. Without it nobody keeps a log.
  void SetLog(std::function<void(const Json& line)> log) { log_ = std::move(log); }
  void Log(const Json& line) const {
    if (log_) log_(line);
  }
  // From here on nothing is written, whatever was asked for.
  void OnlyCheck() { arguments_["whatIf"] = true; }

  // Carries a plan out: stops at an impossible entry, obtains the key, has the plan approved,
  // applies it and gives its document. Throws Error, with the document in it, when it failed or
  // was applied in part. Writes nothing where nothing differs, or with "whatIf".
  Json Carry(Plan& plan);

 private:
  Session& session_;
  SecretProvider& secrets_;
  Approval approve_;
  std::function<void(const Json& line)> log_;
  Json arguments_ = Json::object();
};

struct Result {
  ExitStatus status = kDone;
  Json document;               // with "error" in it when the command failed
  std::optional<Error> error;  // the same as an object
};

// Checks the arguments, runs the command, and turns what it throws into a result.
Result Run(const Command& command, Json arguments, Request& request);

// The arguments in the form that handlers want. Throws Error (kUsage) for those that are unknown,
// missing, or whose values are not valid.
Json CheckArguments(const Command& command, const Json& arguments);

}  // namespace mira::client

#endif  // MIRA_CLIENT_COMMAND_H_
