// Redacted snapshots: markers stand wherever a machine can hold a text or an identifier, and are
// sought in every form that a text or bytes can take.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bytes/text.h"
#include "tests/support/console_program.h"

namespace mira {
namespace {

using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;
using Json = nlohmann::json;

// A text that no firmware has, a MAC address and a GUID. Places add digits to the text.
constexpr char kMarker[] = "Qzvj";
constexpr char kMac[] = "D1E2F3A4B5C6";
constexpr char kGuid[] = "D1E2F3A4-B5C6-47D8-89E9-FAFBFCFDFEF7";
constexpr char kIp[] = "203.0.113.77";

std::string Hex(std::string_view text) { return bytes::HexText(bytes::AsBytes(text)); }

// Each character with a zero behind it.
std::string Wide(std::string_view text) {
  std::string wide;
  for (const char c : text) wide += std::string{c, '\0'};
  return wide;
}

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i + 2 < bytes.size(); i += 3) {
    const auto byte = [&](std::size_t at) {
      return static_cast<unsigned>(static_cast<unsigned char>(bytes[i + at]));
    };
    const unsigned bits = byte(0) << 16U | byte(1) << 8U | byte(2);
    for (const unsigned shift : {18U, 12U, 6U, 0U}) text += kDigits[bits >> shift & 63U];
  }
  return text;
}

std::string Lower(std::string text) {
  for (char& c : text) c = bytes::Lower(c);
  return text;
}

// What would tell the markers, in lower case.
std::vector<std::string> Traces() {
  const std::string marker = kMarker;
  std::string reversed(marker.rbegin(), marker.rend());
  std::vector<std::string> traces = {marker, reversed};
  for (const std::string& text : {marker, Lower(marker), bytes::Upper(marker), reversed}) {
    traces.push_back(Hex(text));
    traces.push_back(Hex(Wide(text)));
    for (const char* const before : {"", "x", "xx"}) {
      // The first group holds what stands before.
      traces.push_back(Base64(before + text + "xx").substr(*before == 0 ? 0 : 4, 4));
    }
  }
  for (const char* const mac :
       {"d1e2f3a4b5c6", "d1:e2:f3:a4:b5:c6", "d1-e2-f3-a4-b5-c6", "c6b5a4f3e2d1"}) {
    traces.emplace_back(mac);
  }
  for (const char* const guid : {"d1e2f3a4-b5c6", "a4f3e2d1c6b5d847", "d1e2f3a4b5c647d8",
                                 "89e9fafbfcfdfef7", "fafbfcfdfef7"}) {
    traces.emplace_back(guid);
  }
  for (const char* const ip : {kIp, "cb00714d", "4d7100cb"}) traces.emplace_back(ip);
  for (std::string& trace : traces) trace = Lower(trace);
  return traces;
}

// A machine with a marker in each text, and each identifier a marker.
std::string MarkedProfile() {
  int count = 10;
  const auto text = [&count] { return kMarker + std::to_string(count++); };
  const auto structure = [](int type, Json fields, Json strings = Json::array()) {
    return Json{
        {"type", type}, {"handle", 0x3000 + type}, {"fields", fields}, {"strings", strings}};
  };
  const auto string = [&] { return Json{{"string", text()}}; };
  const auto raw = [](const std::string& hex) { return Json{{"bytes", hex}}; };
  const std::string guid_bytes = "a4f3e2d1c6b5d84789e9fafbfcfdfef7";
  const std::string marker_bytes = Hex(kMarker);
  Json profile = {{"name", text()}, {"description", text()}, {"base", "workstation"}};
  for (const char* const key : {"manufacturer", "product", "serviceTag", "assetTag", "ownershipTag",
                                "imageServer", "thinClient", "biosVersion", "biosDate"}) {
    profile[key] = text();
  }
  profile["macAddress"] = kMac;
  profile["eppid"] = text() + "ABCDEFGHIJKLMNOPQ";
  profile["extendedTags"] = {{"0", text()}, {"1", text()}};
  profile["instancePath"] = "WMI_Query.InstanceName=\"" + text() + "\"";
  profile["drives"] = Json::array({{{"handle", 1}, {"description", text()}}});
  profile["messages"] = Json::array({{{"number", 1}, {"text", text()}}});
  profile["tabletButtons"] = Json::array({{{"scanCode", 1}, {"name", text()}}});
  profile["thermalSensors"] = Json::array({{{"number", 1}, {"location", text()}}});
  profile["log"] = Json::array({{{"year", 2026}, {"month", 1}, {"day", 2}, {"text", text()}}});
  profile["structures"] = {
      structure(1, {string(), string(), string(), string(), raw(guid_bytes), raw("06"), string(),
                    string()}),
      structure(2, {string(), string(), string(), string(), string(), raw("00"), string(),
                    raw("00000a02"), raw(marker_bytes)}),
      structure(3, {string(), raw("03"), string(), string(), string(), raw("03030303"),
                    raw(marker_bytes), raw("01010000"), string()}),
      structure(8, {string(), raw("00"), string(), raw("1210")}),
      structure(9, {string(), raw("0605040301000c010000001f"), raw(marker_bytes)}),
      structure(10, {raw("83"), string(), raw(marker_bytes)}),
      structure(11, Json::array({raw("02")}), {text(), std::string("MAC ") + kMac}),
      structure(12, Json::array({raw("01")}), Json::array({text()})),
      structure(14, {string(), raw(marker_bytes)}),
      structure(22, {string(), string(), string(), string(), string(),
                     raw("0200000000000000517a0000"), string(), raw("01"), raw(marker_bytes)}),
      structure(39,
                {raw("01"), string(), string(), string(), string(), string(), string(), string()}),
      structure(41, {string(), raw("850100000010")}),
      structure(43, {raw(marker_bytes), raw("02000000000000000000"), string(),
                     raw("0000000000000000"), raw(marker_bytes)}),
      structure(130, {raw(marker_bytes), raw("d1e2f3a4b5c6")}, Json::array({text()})),
      structure(221, {raw(guid_bytes), raw(Hex(Wide(kMarker)))}, Json::array({text()})),
  };
  const std::string ids = std::string("PciRoot(0x0)/Pci(0x1F,0x6)/MAC(") + kMac + ",0x1)/IPv4(" +
                          kIp + ",TCP,Static," + kIp + "," + kIp + "," + kIp + ")/Uri(https://" +
                          kIp + "/" + text() + ")";
  const std::string file = std::string("NVMe(0x1,FA-FB-FC-FD-FE-F7-D1-E2)/HD(1,GPT,") + kGuid +
                           ",0x800,0x100000)/\\EFI\\" + text() + "\\boot.efi";
  // A serial number of USB, and a name of a network.
  const std::string vendor = std::string("VenHw(") + kGuid + "," + marker_bytes + ")/VenMedia(" +
                             kGuid + "," + marker_bytes + ")/Path(3,16,000001000200" +
                             Hex(Wide(text())) + ")/Path(3,28," + Hex(text()) + ")";
  const auto option = [&](int number, Json more) {
    more.update(
        {{"number", number}, {"description", text()}, {"optionalData", Hex(Wide(kMarker))}});
    return more;
  };
  profile["bootLists"] = {
      {{"value", 0},
       {"name", "Legacy " + text()},
       {"order", Json::array({9})},
       {"options",
        Json::array({option(9, {{"device", {{"type", 2}, {"status", 0}, {"name", text()}}}})})}},
      {{"value", 1},
       {"name", "UEFI " + text()},
       {"order", {1, 2, 3, 4}},
       {"options",
        {option(1, {{"path", ids}}), option(2, {{"path", file}}), option(3, {{"path", vendor}}),
         option(4, {{"pathBytes", "0101ff00" + marker_bytes}})}}}};
  const auto attribute = [&](const char* kind, const Json& more) {
    Json whole = {{"kind", kind}, {"name", text()}, {"display", text()}, {"help", text()}};
    whole.update(more);
    return whole;
  };
  const std::string choice = text();
  const std::string source = text();  // sources are attributes
  profile["attributes"] = {
      attribute("string", {{"value", text()}, {"default", text()}, {"upper", 40}}),
      attribute("enumeration", {{"name", source},
                                {"choices", {choice, text()}},
                                {"value", choice},
                                {"default", choice},
                                {"lower", 1},
                                {"upper", 1}}),
      attribute("password", {{"value", text()}, {"upper", 20}}),
      attribute(
          "bootOrder",
          {{"choices", Json::array({source})}, {"value", source}, {"lower", 1}, {"upper", 2}}),
  };
  return profile.dump();
}

TEST(Redaction, LeavesNoMarkerInAnyForm) {
  const TemporaryFile profile(MarkedProfile());
  std::string machine = "--sim=" + profile.path();
  // A file is known by its ending.
  const std::string name = profile.path() + ".json";
  std::ofstream(name, std::ios::binary) << profile.Content();
  machine = "--sim=" + name;
  const ProgramResult plain = Mira({machine, "snapshot", "--json"});
  const ProgramResult redacted = Mira({machine, "snapshot", "--redact", "--json"});
  const TemporaryFile kept(plain.out);
  const ProgramResult later = Mira({"snapshot", "--redact", "--json", "--from", kept.path()});
  std::remove(name.c_str());
  ASSERT_EQ(plain.status, 0) << plain.out.substr(0, 2000);
  ASSERT_EQ(redacted.status, 0) << redacted.out.substr(0, 2000);
  EXPECT_EQ(later.out, redacted.out) << "a snapshot can be redacted later";
  const std::string before = Lower(plain.out);
  const std::string after = Lower(redacted.out);
  EXPECT_NE(before.find(Lower(kMarker)), std::string::npos);
  EXPECT_NE(before.find(Hex(Wide(kMarker))), std::string::npos);
  for (const std::string& trace : Traces()) {
    const std::size_t found = after.find(trace);
    EXPECT_EQ(found, std::string::npos)
        << trace << " in "
        << after.substr(found > 200 && found != std::string::npos ? found - 200 : 0, 300);
  }
  // Every marker but a password's is in the snapshot, or the test would seek in vain.
  std::string missing;
  for (int i = 12; i < 90; ++i) {
    const std::string text = Lower(kMarker) + std::to_string(i);
    if (before.find(text) == std::string::npos &&
        before.find(Hex(kMarker + std::to_string(i))) == std::string::npos)
      missing += text + ' ';
  }
  EXPECT_LE(std::count(missing.begin(), missing.end(), ' '), 4) << missing;
}

TEST(Redaction, KeepsWhatIsHarmlessAndTellsEqualValues) {
  const Json redacted = Json::parse(Mira({"--sim", "snapshot", "--redact"}).out);
  EXPECT_EQ(redacted.at("redacted"), true);
  const Json& subjects = redacted.at("subjects");
  const auto value = [&subjects](const char* name) -> const Json& {
    return subjects.at(name).at("value");
  };
  const Json system = value("inventory").at("system");
  EXPECT_EQ(system.at("serialNumber"), "serial-1");
  EXPECT_EQ(value("tags").at("tags").at(1).at("value"), "serial-1")
      << "the service tag is the same";
  EXPECT_EQ(system.at("uuid"), "00000000-0000-0000-0000-000000000001");
  EXPECT_EQ(redacted.at("machine").at("serialNumber"), "serial-1");
  EXPECT_EQ(
      value("identifiers").at("identifiers").at(0).at("value").get<std::string>().substr(0, 4),
      "iden");
  EXPECT_EQ(value("inventory").at("bios").at("version"), "1.8.2");
  EXPECT_EQ(value("inventory").at("memorySlots").at(0).contains("sizeMiB"), true);
  bool has_setting = false;
  for (const Json& item : value("attributes").at("attributes")) {
    has_setting = has_setting || (item.at("name") == "WakeOnLan" && item.at("value") == "Disabled");
    EXPECT_FALSE(item.contains("help"));
  }
  EXPECT_TRUE(has_setting);
}

// What is redacted is a snapshot still, with a table that every reader takes.
TEST(Redaction, LeavesASnapshotThatCanBeRead) {
  for (const char* const machine : {"--sim=laptop", "--sim=workstation", "--sim=hostile"}) {
    const ProgramResult redacted = Mira({machine, "snapshot", "--redact"});
    const TemporaryFile file(redacted.out);
    for (const char* const noun : {"info", "smbios", "inventory", "tokens", "log", "thermal"}) {
      const ProgramResult live = Mira({machine, noun});
      const ProgramResult kept = Mira({noun, "--from", file.path()});
      EXPECT_EQ(kept.status, live.status) << machine << noun << kept.err;
      EXPECT_EQ(std::count(kept.out.begin(), kept.out.end(), '\n') > 0, !live.out.empty());
    }
    for (const char* const verb : {"boot show", "attr list", "tag show", "battery show"}) {
      const std::string words = verb;
      const std::size_t blank = words.find(' ');
      EXPECT_EQ(
          Mira({words.substr(0, blank), words.substr(blank + 1), "--from", file.path()}).status,
          Mira({machine, words.substr(0, blank), words.substr(blank + 1)}).status)
          << machine << verb;
    }
    EXPECT_EQ(Mira({"state", "from", file.path()}).status, 6) << "its values are gone";
  }
}

}  // namespace
}  // namespace mira
