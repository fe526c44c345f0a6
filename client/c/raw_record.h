#ifndef MIRA_CLIENT_C_RAW_RECORD_H_
#define MIRA_CLIENT_C_RAW_RECORD_H_

// A firmware call with a data area, for what no command does.

#include <span>

#include "client/c/call_queue.h"
#include "client/c/given_secrets.h"
#include "client/c/mira_client.h"

namespace mira::client::c {

// Throws Error (kUsage, or kNotSupported for a record of a later version) unless it can be sent.
void CheckRecord(const mira_record* record);

// Makes the call. The record and the data get what the firmware answered. Throws Error when it
// brought no answer, or the completion code is not 0.
Reply CallRecord(Session& session, mira_record& record, std::span<std::uint8_t> data,
                 GivenSecrets& secrets);

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_RAW_RECORD_H_
