#include "console/saved_field.h"

#include "bytes/reader.h"
#include "support/files.h"

namespace mira::console {

void SaveField(const Options& options, const Face& face, const std::string& file, Json& document) {
  const char* const field = face.save_field;
  const auto found = document.find(field);
  if (found == document.end() || (face.saves_text && file == "-")) return;
  const std::string text = found->get<std::string>();
  const auto bytes = face.saves_text ? std::nullopt : client::FromHexText(text);
  const std::string_view content = face.saves_text ? std::string_view(text)
                                   : bytes         ? bytes::AsText(*bytes)
                                                   : std::string_view();
  const auto access = face.is_private ? support::FileAccess::kPrivate : support::FileAccess::kUsual;
  if (!options.what_if) {
    if (const std::error_code error = support::WriteFileSafely(ToPath(file), content, access)) {
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
