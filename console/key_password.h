#ifndef MIRA_CONSOLE_KEY_PASSWORD_H_
#define MIRA_CONSOLE_KEY_PASSWORD_H_

// The password that a protected change is made with.
//
//   auto source = AddKeyOptions(app);  // --class10, --password-stdin, --password-file, ...
//   const KeyPassword key = ReadKeyPassword(context, *source);
//   mira.ExecuteDACI(11, 1, data, key.text.str(), key.type);

#include <memory>

#include "bytes/secure.h"
#include "callif/password.h"
#include "console/command.h"
#include "console/secret_input.h"

namespace mira::console {

struct KeySource {
  bool class10 = false;
  std::shared_ptr<SecretSource> secret;
};

struct KeyPassword {
  bytes::SecureString text;  // empty: none is needed
  PwdInfo::PWDTYPE type = PwdInfo::PWD_CLASS9;
};

// Which installed password gives the key: class 9's, or the class-10 one where it alone is
// installed or was asked for.
PwdInfo::PWDTYPE KeyType(const PwdInfo& info, bool wants_class10);

std::shared_ptr<KeySource> AddKeyOptions(CLI::App& app);

// The password that was given, or, when one is installed, one that is asked for. With --what-if it
// is checked at once. Throws CommandError.
KeyPassword ReadKeyPassword(Context& context, const KeySource& source);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_KEY_PASSWORD_H_
