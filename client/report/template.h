#ifndef MIRA_CLIENT_REPORT_TEMPLATE_H_
#define MIRA_CLIENT_REPORT_TEMPLATE_H_

// Fills the values of a document into a template of HTML.
//
//   {{name}}                  the value, escaped; the empty text where there is none
//   {{#name}} ... {{/name}}   once for each entry of a list, or once where there is a value
//   {{^name}} ... {{/name}}   where there is none
//   {{>file}}                 another template, with the same values
//   {{&file}}                 a file as it is: a style or a script
//
// A name is looked up in the innermost section, then outwards; "." is the section's own value.
// Nothing leaves a value unescaped: in an element what cannot be seen stands as a marked escape, in
// an attribute, or in the page's title, as the escape alone.

#include <string>
#include <string_view>
#include <vector>

#include "client/json.h"

namespace mira::client {

class Template {
 public:
  // Gives a file's content; throws for one that there is not.
  using Files = std::string_view (*)(std::string_view name);

  // Throws std::logic_error for a template that is malformed.
  Template(std::string_view name, Files files);
  ~Template();

  std::string Fill(const Json& values) const;

  struct Part;

 private:
  std::vector<Part> parts_;
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_REPORT_TEMPLATE_H_
