#include "client/report/page.h"

#include <algorithm>
#include <stdexcept>

#include "bytes/text.h"
#include "client/report/page_files.h"
#include "client/report/template.h"
#include "client/report/view.h"

namespace mira::client {
namespace {

const PageFile& FindPageFile(std::string_view name) {
  const auto& files = PageFiles();
  const auto found = std::find_if(files.begin(), files.end(),
                                  [name](const PageFile& file) { return file.name == name; });
  if (found == files.end()) throw std::logic_error("There is no page file " + std::string(name));
  return *found;
}

std::string_view ContentOf(std::string_view name) { return FindPageFile(name).content; }

// RFC 4648; a digest is never a multiple of three bytes long.
std::string Base64(const std::vector<std::uint8_t>& bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  constexpr unsigned kBits = 6;
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? bytes[i + k] : 0U);
    const std::size_t digits = std::min<std::size_t>(bytes.size() - i, 3) + 1;
    for (unsigned k = 0; k < 4; ++k) {
      text += k < digits ? kDigits[group >> (kBits * (3 - k)) & 0x3F] : '=';
    }
  }
  return text;
}

std::string DigestOf(std::string_view name) {
  return "sha256-" + Base64(*bytes::ParseHexText(FindPageFile(name).sha256));
}

// "2026-04-09T23:05:00Z" as "2026-04-09 23:05 UTC".
std::string TimeText(const std::string& time) {
  constexpr std::size_t kDate = 10;
  constexpr std::size_t kMinutes = 16;
  if (time.size() <= kMinutes || time[kDate] != 'T') return time;
  return time.substr(0, kDate) + " " + time.substr(kDate + 1, kMinutes - kDate - 1) +
         (time.ends_with('Z') ? " UTC" : "");
}

Json HeadView(const Json& snapshot) {
  const Json& machine = At(snapshot, "machine");
  const Json& inventory = SubjectValue(snapshot, "inventory");
  const std::string taken = PlainAt(snapshot, "takenAt");
  const Json& program = At(snapshot, "program");
  std::string name = Joined({PlainAt(machine, "manufacturer"), PlainAt(machine, "product")}, " ");
  if (name.empty()) name = "A machine that does not say its name";
  Json asset;
  for (const Json& tag : ListAt(SubjectValue(snapshot, "tags"), "tags")) {
    if (At(tag, "tag") == "asset") asset = At(tag, "value");
  }
  Json facts = FieldsView({{"serial", At(machine, "serialNumber")},
                           {"asset", asset},
                           {"bios", At(machine, "biosVersion")},
                           {"smbios", At(inventory, "smbiosVersion")}},
                          {{"Serial number", "serial"},
                           {"Asset tag", "asset"},
                           {"Firmware", "bios"},
                           {"SMBIOS", "smbios"}});
  return {{"name", name},
          {"facts", std::move(facts)},
          {"takenAt", taken},
          {"taken", TimeText(taken)},
          {"program", Joined({PlainAt(program, "name"), PlainAt(program, "version")}, " ")},
          {"isSimulated", IsTrueAt(snapshot, "simulated")},
          {"isRedacted", IsTrueAt(snapshot, "redacted")}};
}

}  // namespace

std::string ReportPage(const Json& snapshot) {
  static const Template page("page.html", ContentOf);
  const auto value = [&snapshot](const char* subject) -> const Json& {
    return SubjectValue(snapshot, subject);
  };
  Json view = HeadView(snapshot);
  view["styleDigest"] = DigestOf("style.css");
  view["scriptDigest"] = DigestOf("script.js");
  view["missing"] = MissingView(snapshot);
  view["tiles"] = GlanceView(snapshot);
  view["memory"] = MemoryView(value("inventory"));
  view["boot"] = BootView(value("boot"), value("legacyBoot"));
  view["battery"] = BatteriesView(value("batteries"));
  view["hardware"] = HardwareView(value("inventory"));
  view["passwords"] = PasswordsView(value("passwords"));
  view["drives"] = TableView("Drives", ListAt(value("drives"), "drives"),
                             {ColumnOf("Drive", "description"), ColumnOf("Handle", "handle")});
  view["identity"] = IdentityView(value("tags"), value("identifiers"));
  view["access"] = !view["passwords"].empty() || !view["drives"].is_null();
  view["lists"] = FirmwareListsView(value("firmwareLists"));
  view["hasLists"] = !view["lists"].empty();
  view["attributes"] = AttributesView(value("attributes"));
  view["startUp"] = StartUpView(value("startUp"));
  view["tokens"] = TokensView(value("tokens"));
  return page.Fill(view);
}

}  // namespace mira::client
