#ifndef MIRA_CLIENT_STATE_SECRET_TEXT_H_
#define MIRA_CLIENT_STATE_SECRET_TEXT_H_

// Secrets in a JSON text. They are taken out, and blanked in the text, before a reader of JSON sees
// it, whose memory nobody wipes.
//
//   {"state": {"attributes": {…}}, "secrets": {"password": "…"}}

#include <map>
#include <optional>
#include <string>

#include "bytes/secure.h"

namespace mira::client {

using SecretTexts = std::map<std::string, bytes::SecureString>;

// Of the object that is the whole text. Throws Error for what is none.
SecretTexts TakeSecrets(std::string& text);

// Of the member "secrets" of the text's object; nothing where it has none.
std::optional<SecretTexts> TakeSecretsBeside(std::string& text);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_SECRET_TEXT_H_
