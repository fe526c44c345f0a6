#ifndef MIRA_CLIENT_CALL_H_
#define MIRA_CLIENT_CALL_H_

// Firmware calls as the subjects make them: what failed becomes an Error that says why.
//
//   CTagData data;
//   Execute(session, {11, 0}, data, {.target = "asset tag"});

#include <cstdint>
#include <span>
#include <string>

#include "bytes/secure.h"
#include "callif/commands.h"
#include "callif/password.h"
#include "client/secrets.h"
#include "client/session.h"

namespace mira::client {

// The calling interface, or null.
CCallingInterface* FindCallingInterface(CMiraIntf& mira);
// Whether the firmware's bitmap of classes can be used: with bit 31 set the library cannot convert
// it, and makes no call.
bool HasUsableClasses(const CCallingInterface& calling);
inline constexpr char kUnusableClasses[] =
    "The firmware announces its command classes in a way that cannot be used.";
// Whether the firmware announces a class. A bitmap that cannot be used announces none.
bool IsAnnounced(CMiraIntf& mira, std::uint16_t cls);

// The password that a protected call is made with.
struct Key {
  bytes::SecureString text;  // empty: none is needed
  PwdInfo::PWDTYPE type = PwdInfo::PWD_CLASS9;
};

// Which installed password gives the key: class 9's, or the class-10 one where it alone is
// installed or was asked for.
PwdInfo::PWDTYPE KeyType(const PwdInfo& info, bool wants_class10);

enum class Check { kNo, kYes };
// The password for a protected change: the one in the slot "password", which is asked for where one
// is installed. `check` has the firmware verify it before anything else. Throws Error.
Key ObtainKey(Session& session, SecretProvider& secrets, bool wants_class10, Check check);

// What the firmware hands out for the password; 0 where it needs none. Throws Error where it is
// wrong, or the firmware could not be asked.
std::uint32_t SecurityKeyOf(Session& session, const Key& key);

// Throws the error of the last operation's first call that the firmware did not answer, if there is
// one: what the operation found out then is not the firmware's word.
void CheckAnswered(Session& session, const std::string& target);
// What it means that firmware refuses to verify a password.
inline constexpr char kLockedOut[] =
    "The firmware verifies no password: after several wrong ones it verifies none until the "
    "machine "
    "restarts.";
// Whether a call that verifies or changes a BIOS password ended so.
bool IsLockedOut(callif::Command command, std::int32_t completion);
// The error of a password that no key was given for: wrong, or not looked at. Call it right after
// the operation that failed.
Error KeyError();

// What stands for a completion code that a function has no meaning of its own for.
ExitStatus ExitOf(std::int32_t completion);

// What a completion code of one function means.
struct CodeMeaning {
  std::int32_t code;
  ExitStatus exit_status;
  const char* name;
  const char* message;
};

// What is known of a call, or a write, that was sent and brought no answer: "call 11/3".
std::string NoAnswerText(const Session& session, const std::string& what);

struct CallOptions {
  std::string target = "";
  std::span<const CodeMeaning> meanings = {};
  const Key* key = nullptr;
};
// Makes a call. Throws Error, with the completion code in it, unless it succeeded.
void Execute(Session& session, callif::Command command, CSimpleTokenData& data,
             const CallOptions& options);
// The error of a call that ended so.
Error CallError(Session& session, callif::Command command, Status status, std::int32_t completion,
                const CallOptions& options);

}  // namespace mira::client

#endif  // MIRA_CLIENT_CALL_H_
