#include "console/saved_field.h"

#include "bytes/reader.h"
#include "support/files.h"

namespace mira::console {

void SaveField(const Options& options, const char* field, const std::string& file, Json& document) {
  const auto found = document.find(field);
  if (found == document.end()) return;
  const auto bytes = client::FromHexText(found->get_ref<const std::string&>());
  const std::string_view content = bytes ? bytes::AsText(*bytes) : std::string_view();
  if (!options.what_if) {
    if (const std::error_code error = support::WriteFileSafely(ToPath(file), content)) {
      throw Error(kUnexpected, "not-written",
                  "The file '" + file + "' could not be written: " + error.message() + ".", file);
    }
  }
  document.erase(field);
  document["savedTo"] = ToUtf8(file);
  document["savedBytes"] = content.size();
  document["whatIf"] = options.what_if;
}

}  // namespace mira::console
