#ifndef MIRA_CALLIF_SCAN_CODES_H_
#define MIRA_CALLIF_SCAN_CODES_H_

// Some firmware takes passwords as the keys that were pressed and not as characters.
//
//   mira::bytes::SecureString codes;
//   if (mira::callif::ToScanCodes("secret", codes)) Send(codes.str());

#include <string>

#include "bytes/secure.h"
#include "platform/api.h"

namespace mira::callif {

// Replaces each character by the make code (set 1) of the key that types it on a US keyboard,
// whatever shift and control do. False, with an empty result, for characters that no key types.
MIRA_API bool ToScanCodes(const std::string& text, bytes::SecureString& codes);

}  // namespace mira::callif

#endif  // MIRA_CALLIF_SCAN_CODES_H_
