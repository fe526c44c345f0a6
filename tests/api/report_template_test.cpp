// The templates of the report: what is filled in, and that nothing of a value is ever markup.

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>

#include "client/report/template.h"

namespace mira::client {
namespace {

std::map<std::string, std::string, std::less<>>& Files() {
  static std::map<std::string, std::string, std::less<>> files;
  return files;
}

std::string_view FileOf(std::string_view name) {
  const auto found = Files().find(name);
  if (found == Files().end()) throw std::logic_error("no such file");
  return found->second;
}

std::string Filled(const std::string& text, const Json& values) {
  Files()["page"] = text;
  return Template("page", FileOf).Fill(values);
}

TEST(ReportTemplate, FillsValuesSectionsAndParts) {
  Files()["part"] = "<i>{{name}}</i>";
  Files()["raw"] = "a { b: c }  \n  {{name}}";
  const Json values = {{"name", "outer"},
                       {"empty", ""},
                       {"zero", 0},
                       {"yes", true},
                       {"list", {{{"name", "one"}}, {{"other", 2}}}},
                       {"texts", {"x", "y"}},
                       {"none", Json::array()}};
  const struct {
    const char* text;
    const char* filled;
  } cases[] = {
      {"<p>{{name}}{{missing}}</p>", "<p>outer</p>\n"},
      {"{{#list}}[{{name}}]{{/list}}", "[one][outer]\n"},
      {"{{#texts}}{{.}},{{/texts}}", "x,y,\n"},
      {"{{#empty}}a{{/empty}}{{^empty}}b{{/empty}}", "b\n"},
      {"{{#zero}}a{{/zero}}{{#yes}}b{{/yes}}{{#none}}c{{/none}}{{^missing}}d{{/missing}}", "abd\n"},
      {"{{>part}}", "<i>outer</i>\n"},
      {"<style>{{&raw}}</style>", "<style>a { b: c }  \n  {{name}}</style>\n"},
      {"  {{#yes}}\n    <p>\n\n    {{/yes}}\n", "<p>\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(Filled(c.text, values), c.filled) << c.text;
}

TEST(ReportTemplate, MakesNothingOfAValueMarkup) {
  const struct {
    const char* value;
    const char* in_element;
    const char* in_attribute;
  } cases[] = {
      {"<script>alert(1)</script>", "&lt;script&gt;alert(1)&lt;/script&gt;", nullptr},
      {"\" onclick='x' &", "&quot; onclick=&#39;x&#39; &amp;", nullptr},
      {"{{name}}", "{{name}}", nullptr},
      {"a\nb\x1b[31m",
       "a<span class=\"unseen\">\\x0a</span>b<span class=\"unseen\">\\x1b</span>[31m",
       "a\\x0ab\\x1b[31m"},
      {"\xE2\x80\xAE"
       "cod",
       "<span class=\"unseen\">\\u202e</span>cod", "\\u202ecod"},
      {"pa\xE2\x80\x8Bss", "pa<span class=\"unseen\">\\u200b</span>ss", "pa\\u200bss"},
      {"\xF3\xA0\x81\x81", "<span class=\"unseen\">\\ue0041</span>", "\\ue0041"},
      {"\xE9", "é", "é"},  // Latin-1
      {"ディスク 💾", "ディスク 💾", "ディスク 💾"},
  };
  for (const auto& c : cases) {
    const Json values = {{"name", c.value}};
    EXPECT_EQ(Filled("<p>{{name}}</p>", values), std::string("<p>") + c.in_element + "</p>\n");
    const std::string plain = c.in_attribute != nullptr ? c.in_attribute : c.in_element;
    EXPECT_EQ(Filled("<a title=\"{{name}}\">", values), "<a title=\"" + plain + "\">\n");
    EXPECT_EQ(Filled("<title>{{name}}</title>", values), "<title>" + plain + "</title>\n");
  }
}

TEST(ReportTemplate, IsRefusedWhereItIsMalformed) {
  for (const char* const text :
       {"{{#a}}", "{{/a}}", "{{#a}}{{/b}}", "{{", "{{}}", "{{>missing}}", "{{&missing}}"}) {
    EXPECT_THROW(Filled(text, Json::object()), std::logic_error) << text;
  }
}

}  // namespace
}  // namespace mira::client
