#ifndef MIRA_CLIENT_REPORT_PAGE_FILES_H_
#define MIRA_CLIENT_REPORT_PAGE_FILES_H_

#include <string_view>
#include <vector>

namespace mira::client {

// A file of client/report/page, which is part of the program.
struct PageFile {
  std::string_view name;     // "page.html"
  std::string_view content;  // its lines end with a line feed alone
  std::string_view sha256;   // of the content, in hexadecimal
};

const std::vector<PageFile>& PageFiles();

}  // namespace mira::client

#endif  // MIRA_CLIENT_REPORT_PAGE_FILES_H_
