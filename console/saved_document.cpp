#include "console/saved_document.h"

#include <system_error>

#include "support/files.h"

namespace mira::console {
namespace {

void Write(const std::string& path, const Json& document, support::FileAccess access) {
  Json whole = {{"schemaVersion", 1}};
  whole.update(document);
  if (const std::error_code error =
          support::WriteFileSafely(ToPath(path), client::ToText(whole), access)) {
    throw Error(kUnexpected, "not-written",
                "The file '" + path + "' could not be written: " + error.message() + ".", path);
  }
}

}  // namespace

ExitStatus SaveDocument(Context& context, const Face& face, const client::Result& result,
                        const std::string& file) {
  if (file == "-" && context.GetOptions().quiet) {
    throw Error(kUsage, "usage", "--quiet leaves nothing of a file on standard output.", file);
  }
  Json content = result.document;
  content.erase("error");
  const auto list = content.find(face.saves);
  const bool is_worth = !result.error || result.status == kAppliedInPart;
  const bool is_dry = context.GetOptions().what_if;
  Json report = Json::object();
  if (file == "-") {
    if (context.GetOptions().IsForPrograms()) {
      report = content;
    } else if (is_worth) {
      context.Print(content);
    }
  } else {
    const auto access =
        face.is_private ? support::FileAccess::kPrivate : support::FileAccess::kUsual;
    if (is_worth && !is_dry) Write(file, content, access);
    report = {{"file", file},
              {"exported", is_worth && list != content.end() ? list->size() : 0},
              {"whatIf", is_dry}};
    if (content.contains("unreadable")) report["unreadable"] = content["unreadable"];
    if (is_worth && !context.GetOptions().IsForPrograms()) face.render(report, context.Out());
  }
  if (result.error) return context.Fail(*result.error, report);
  if (context.GetOptions().IsForPrograms()) context.Print(report);
  return kDone;
}

}  // namespace mira::console
