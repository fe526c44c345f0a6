// The report: a page for people, which shows a machine and lets nothing of its firmware act.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "client/error.h"
#include "client/report/page.h"
#include "client/report/view.h"
#include "tests/support/console_program.h"

namespace mira {
namespace {

using client::Json;
using test::Document;
using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;

std::string PageOf(const std::string& machine) {
  const ProgramResult shown = Mira({machine, "report", "--html", "-"});
  EXPECT_EQ(shown.status, 0) << shown.err;
  return shown.out;
}

std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(Report, ShowsWhatThereIsAndWhatIsMissing) {
  const struct {
    const char* machine;
    std::vector<const char*> shown;
  } cases[] = {
      {"--sim",
       {"<h1>Northfield Systems Meridian 14 G3</h1>", "simulated machine", "2026-04-09 23:05 UTC",
        "2 of 2 slots filled, room for 64 GiB", "<strong>8 GiB</strong><span>DDR4 SODIMM</span>",
        "NVMe drive, namespace 1 › partition 1 › \\EFI\\Microsoft\\Boot\\bootmgfw.efi",
        "SATA port 0 › partition 2 › \\EFI\\BOOT\\BOOTX64.EFI",
        "<rect class=\"bar\" x=\"480\" width=\"540\"", "our reading", "0x00004420", "None is set",
        "Fan 1 stalled once", "47.3 °C", "Everything that a report shows could be read."}},
      {"--sim=locked", {"<li class=\"set\"><strong>Setup password</strong> <span>set</span>"}},
      {"--sim=pending-attributes",
       {"2 waiting for a restart",
        "after a restart; now: ", "class=\"a changed pending writable\""}},
      {"--sim=workstation", {"24 slots filled", "2 × "}},
      {"--sim=standard-user", {"BIOS attributes, Firmware lists</b> could not be read: "}},
      {"--sim=no-attributes", {"<b>BIOS attributes</b>: "}},
      {"--sim=no-calling-interface",
       {"This PC offers no calling interface through WMI.",
        "<p class=\"state absent\"><b>Tokens, Passwords, Drives, ", "Meridian 14 G3"}},
      {"--sim=hostile", {"Malformed path: The bytes end within a node&#39;s header."}},
      {"--sim=old-firmware", {"Legacy Boot", "<b>Batteries</b>: "}},
  };
  for (const auto& c : cases) {
    const std::string page = PageOf(c.machine);
    for (const char* const text : c.shown) EXPECT_TRUE(Has(page, text)) << c.machine << text;
  }
  const std::string page = PageOf("--sim");
  EXPECT_FALSE(Has(page, "could not be read:")) << "and nothing is missing of the laptop";
}

// A profile whose every text tries to get out of its place.
constexpr char kHostile[] = R"profile({"name": "page", "base": "laptop",
  "manufacturer": "</title><script>alert(1)</script>", "product": "x\" onload=\"alert(2)",
  "assetTag": "<img src=x>", "ownershipTag": "a\u001b[31mred\u0007",
  "imageServer": "javascript:alert(3)",
  "bootLists": [{"value": 1, "name": "UEFI <b>", "order": [0, 1], "options": [
    {"number": 0, "attributes": 1, "description": "\u202Egnp.exe\u2066 </li><svg onload=alert(4)>",
     "path": "PciRoot(0x0)/Pci(0x1,0x0)"},
    {"number": 1, "attributes": 1, "description": "tag\u200Bless\u2028{{name}}{{/options}}"}]}],
  "attributes": [
    {"kind": "string", "name": "</style><style>*{display:none}", "display": "<iframe src=//x>",
     "help": "--><!--", "value": "]]>", "lower": 0, "upper": 40},
    {"kind": "enumeration", "name": "Quote'\"", "choices": ["<", "&lt;"], "value": "<",
     "default": "<", "lower": 1, "upper": 1}]
})profile";

TEST(Report, LetsNothingOfTheFirmwareAct) {
  const std::string file = "hostile_page.json";
  std::ofstream(file, std::ios::binary) << kHostile;
  const std::string page = PageOf("--sim=" + file);
  std::remove(file.c_str());
  for (const char* const tag : {"<script", "</script", "<style", "</style", "<title", "</title"}) {
    EXPECT_EQ(CountOf(page, tag), 1u) << tag;
  }
  for (const char* const tag : {"<img", "<svg onload", "<iframe", "<b>\"", "\" onload", "<!--"}) {
    EXPECT_FALSE(Has(page, tag)) << tag;
  }
  EXPECT_TRUE(Has(page, "<title>&lt;/title&gt;&lt;script&gt;alert(1)"));
  EXPECT_TRUE(Has(page, "<span class=\"unseen\">\\u202e</span>gnp.exe"));
  EXPECT_TRUE(Has(page, "{{name}}{{/options}}"));
  EXPECT_TRUE(Has(page, "&amp;lt;"));
  for (const char* const unseen :
       {"\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x80\x8B", "\xE2\x80\xA8"}) {
    EXPECT_FALSE(Has(page, unseen));
  }
  EXPECT_TRUE(std::none_of(page.begin(), page.end(), [](char c) {
    return (static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F;
  }));
}

TEST(Report, LoadsNothing) {
  const std::string page = PageOf("--sim");
  EXPECT_EQ(CountOf(page,
                    "http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                    "style-src 'sha256-"),
            1u);
  for (const char* const loads : {" src=", "<link", "@import", "url(", " style=", " onclick"}) {
    EXPECT_FALSE(Has(page, loads)) << loads;
  }
}

TEST(Report, IsTheSameForTheSameSnapshot) {
  const TemporaryFile snapshot(Mira({"--sim=pending-attributes", "snapshot"}).out);
  const ProgramResult first = Mira({"report", "--from", snapshot.path()});
  EXPECT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out, Mira({"report", "--from", snapshot.path()}).out);
  EXPECT_EQ(first.out, PageOf("--sim=pending-attributes"));
  EXPECT_EQ(first.out, Document(Mira({"report", "--from", snapshot.path(), "--json"})).at("html"));

  const TemporaryFile page;
  const Json saved =
      Json::parse(Mira({"report", "--from", snapshot.path(), "--html", page.path(), "--json"}).out);
  EXPECT_EQ(saved.at("savedTo"), page.path());
  EXPECT_EQ(saved.at("savedBytes"), first.out.size());
  EXPECT_EQ(page.Content(), first.out);

  const ProgramResult none = Mira({"report", "--from", page.path()});
  EXPECT_EQ(none.status, static_cast<int>(client::kInvalidValue)) << none.out;
}

// Subjects of a snapshot that somebody wrote by hand.
TEST(Report, IsMadeOfWhateverASnapshotHolds) {
  for (const char* const value :
       {"null", "[]", "{}", "7", "\"x\"", R"({"lists": 1, "attributes": [1, null, {}],
        "batteries": [{"charging": {"days": [{}, {"begin": "99:99", "end": "24:01"}]}}],
        "memorySlots": [[], {"sizeMiB": "x"}], "options": {}, "passwords": [[]], "steps": [0]})"}) {
    Json subjects = Json::object();
    for (const char* const name :
         {"startUp", "inventory", "table", "tokens", "passwords", "drives", "tags", "identifiers",
          "batteries", "boot", "legacyBoot", "attributes", "firmwareLists"}) {
      subjects[name] = {{"value", Json::parse(value)}};
    }
    const std::string page = client::ReportPage({{"kind", "snapshot"}, {"subjects", subjects}});
    EXPECT_TRUE(page.ends_with("</html>\n")) << value;
  }
}

TEST(Report, SortsAttributesIntoTopics) {
  const struct {
    const char* name;
    const char* topic;
  } cases[] = {
      {"SecureBoot", "Security"},     {"BootOrder", "Start-up and boot"},
      {"UsbWake", "USB and docking"}, {"WakeOnLan", "Power and cooling"},
      {"SMMProtection", "Security"},  {"wireless_lan_controller", "Network"},
      {"Attr00017", "Other"},         {"", "Other"},
      {"TpmVersion", "Security"},     {"PanelBrightnessBattery", "Display and graphics"},
  };
  for (const auto& c : cases) EXPECT_EQ(client::TopicOf(c.name), c.topic) << c.name;
}

}  // namespace
}  // namespace mira
