#ifndef MIRA_CLIENT_REPORT_PAGE_H_
#define MIRA_CLIENT_REPORT_PAGE_H_

// A machine as one page of HTML that loads nothing: for people, on a screen or on paper.

#include <string>

#include "client/json.h"

namespace mira::client {

// The page of a snapshot. The same snapshot gives the same bytes.
std::string ReportPage(const Json& snapshot);

}  // namespace mira::client

#endif  // MIRA_CLIENT_REPORT_PAGE_H_
