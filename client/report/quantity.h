#ifndef MIRA_CLIENT_REPORT_QUANTITY_H_
#define MIRA_CLIENT_REPORT_QUANTITY_H_

// Values of documents as people write them. What is no number stands as it is.
//
//   InMiB(8192);   // "8 GiB"
//   InMHz(4800);   // "4.8 GHz"

#include <string>

#include "client/json.h"

namespace mira::client {

// A text without the blanks around it.
std::string Plain(const Json& value);

// Numbers of bytes, KiB and MiB, in the largest unit that they reach.
std::string InBytes(const Json& value);
std::string InKiB(const Json& value);
std::string InMiB(const Json& value);

std::string InMHz(const Json& value);
std::string InMillivolts(const Json& value);
std::string InMilliwattHours(const Json& value);
std::string InTransfers(const Json& value);
std::string InRackUnits(const Json& value);
std::string InPercent(const Json& value);

}  // namespace mira::client

#endif  // MIRA_CLIENT_REPORT_QUANTITY_H_
