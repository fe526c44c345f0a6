# The report's page is made of files that are part of the program: each as bytes, since literals are
# limited, and with the digest by which the page's own policy allows its style and its script.
file(GLOB MIRA_PAGE_FILES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/client/report/page/*)
set(MIRA_PAGE_SOURCE ${CMAKE_BINARY_DIR}/generated/report_page_files.cpp)
set(page_arrays "")
set(page_list "")
foreach(page_file ${MIRA_PAGE_FILES})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${page_file})
  get_filename_component(name ${page_file} NAME)
  string(MAKE_C_IDENTIFIER ${name} array)
  file(READ ${page_file} content)
  string(REPLACE "\r\n" "\n" content "${content}")
  string(SHA256 digest "${content}")
  file(READ ${page_file} content HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," content "${content}")
  string(REPLACE "0x0d,0x0a," "0x0a," content "${content}")
  string(APPEND page_arrays "constexpr unsigned char ${array}[] = {${content}};\n")
  string(APPEND page_list
    "      {\"${name}\", {reinterpret_cast<const char*>(${array}), sizeof(${array})},\n       \"${digest}\"},\n")
endforeach()
file(CONFIGURE OUTPUT ${MIRA_PAGE_SOURCE} @ONLY CONTENT [[
// Generated from client/report/page.
#include "client/report/page_files.h"

namespace mira::client {
namespace {

@page_arrays@
}  // namespace

const std::vector<PageFile>& PageFiles() {
  static const std::vector<PageFile> files = {
@page_list@  };
  return files;
}

}  // namespace mira::client
]])
