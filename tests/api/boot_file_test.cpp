// Load options and device paths in files, decoded and encoded by the console.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "sim/device_path_builder.h"
#include "tests/support/console_program.h"

namespace mira {
namespace {

using nlohmann::json;
using test::Document;
using test::Mira;
using test::ProgramResult;
using test::TemporaryFile;

using Bytes = std::vector<std::uint8_t>;

std::string Hex(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) / 16];
    text += kDigits[static_cast<unsigned char>(c) % 16];
  }
  return text;
}

std::string Text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

// An active option called "D".
std::string Option(const std::string& paths, const std::string& optional_data = "") {
  return std::string("\1\0\0\0", 4) + static_cast<char>(paths.size()) +
         std::string("\0D\0\0\0", 5) + paths + optional_data;
}

const std::string kPath =
    Text(sim::DevicePath().PciRoot(0).Usb(1, 2).NextInstance().Usb(3, 0).Finish());
constexpr char kPathText[] = "PciRoot(0x0)/USB(0x1,0x2),/USB(0x3,0x0)";

TEST(BootFiles, AreDecodedInEachForm) {
  const std::string option = Option(kPath, std::string("-\0q\0\0\0", 6));
  json expected = json::parse(R"json({"active": true, "attributes": 1, "description": "D",
      "path": "PciRoot(0x0)/USB(0x1,0x2),/USB(0x3,0x0)",
      "optionalData": "2d0071000000", "optionalDataText": "-q"})json");
  expected["paths"] = {{{"text", kPathText}, {"bytes", Hex(kPath)}}};
  const std::string lines = Hex(option.substr(0, 16)) + "\r\n" + Hex(option.substr(16)) + "\n";
  for (const std::string& form : {option, Hex(option), "0x" + Hex(option), lines}) {
    const TemporaryFile file(form);
    EXPECT_EQ(Document(Mira({"boot", "decode", file.path(), "--json"})).at("option"), expected);
    EXPECT_EQ(Document(Mira({"boot", "decode", "-", "--json"}, form)).at("option"), expected);
  }
  EXPECT_EQ(Mira({"boot", "decode", "-"}, option).out,
            "D\n"
            "  Attributes : 0x00000001 (active)\n"
            "  Path : PciRoot(0x0)/USB(0x1,0x2),/USB(0x3,0x0)\n"
            "  Optional data : 2d0071000000\n"
            "  Optional data as text : -q\n");
  // Cut anywhere, an option decodes or is refused.
  for (std::size_t size = 0; size < option.size(); ++size) {
    const int status = Mira({"boot", "decode", "-"}, Hex(option.substr(0, size))).status;
    EXPECT_EQ(status, size < option.size() - 6 ? 6 : 0) << size;
  }
  // As Linux shows the variable.
  expected["variableAttributes"] = 7;
  const std::string variable = std::string("\7\0\0\0", 4) + option;
  EXPECT_EQ(Document(Mira({"boot", "decode", "-", "--json"}, variable)).at("option"), expected);
  EXPECT_NE(Mira({"boot", "decode", "-"}, variable).out.find("of the variable : 0x00000007\n"),
            std::string::npos);
}

TEST(BootFiles, ShowEachPathByItself) {
  const std::string second = Text(sim::DevicePath().Usb(4, 0).Finish());
  const std::string option = Option(kPath + second);
  const json decoded = Document(Mira({"boot", "decode", "-", "--json"}, option)).at("option");
  EXPECT_EQ(decoded["path"], kPathText);
  EXPECT_EQ(decoded["paths"], json::parse(R"json([
      {"text": "PciRoot(0x0)/USB(0x1,0x2),/USB(0x3,0x0)", "bytes": ")json" +
                                          Hex(kPath) +
                                          R"json("},
      {"text": "USB(0x4,0x0)", "bytes": ")json" +
                                          Hex(second) + R"json("}])json"));
  EXPECT_NE(Mira({"boot", "decode", "-"}, option)
                .out.find("  Path : PciRoot(0x0)/USB(0x1,0x2),/USB(0x3,0x0)\n"
                          "  Further path : USB(0x4,0x0)\n"),
            std::string::npos);
  EXPECT_EQ(Mira({"boot", "decode", "-", "--path"}, kPath + second).out,
            std::string(kPathText) + "\nUSB(0x4,0x0)\n");
}

TEST(BootFiles, NameWhatIsMalformed) {
  struct Case {
    const char* what;
    std::string path;
    const char* shown;
    std::size_t offset;  // in the path
  };
  const std::string pci("\1\1\6\0\2\x1F", 6);
  const std::string end("\x7F\xFF\4\0", 4);
  const Case cases[] = {
      {"length below 4", std::string("\1\1\3\0", 4) + end, "", 0},
      {"past the end", pci + std::string("\1\1\7\0\2\x1F", 6), "Pci(0x1F,0x2)", 6},
      {"no end", pci, "Pci(0x1F,0x2)", 6},
      {"end of wrong length", pci + std::string("\x7F\xFF\5\0\0", 5), "Pci(0x1F,0x2)", 6},
      {"second path", pci + end + pci, "Pci(0x1F,0x2)", 16},
  };
  constexpr std::size_t kPathsAt = 10;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    for (const bool is_path : {false, true}) {
      std::vector<std::string> arguments = {"boot", "decode", "-"};
      if (is_path) arguments.emplace_back("--path");
      const std::string input = is_path ? c.path : Option(c.path);
      const std::size_t offset = is_path ? c.offset : kPathsAt + c.offset;
      const ProgramResult text = Mira(arguments, Hex(input));
      EXPECT_EQ(text.status, 6);
      EXPECT_NE(text.out.find(c.shown), std::string::npos);
      EXPECT_NE(text.out.find("Malformed : at byte " + std::to_string(offset) + ": "),
                std::string::npos)
          << text.out;
      EXPECT_NE(text.err.find("malformed at byte " + std::to_string(offset)), std::string::npos);
      arguments.emplace_back("--json");
      const ProgramResult as_json = Mira(arguments, Hex(input));
      EXPECT_EQ(as_json.status, 6);
      const json document = Document(as_json);
      EXPECT_EQ(document["error"]["name"], "malformed-path");
      EXPECT_EQ(document["error"]["offset"], offset);
      const json& paths = is_path ? document["paths"] : document["option"]["paths"];
      EXPECT_EQ(paths[0]["text"], c.shown);
      EXPECT_EQ(paths.back()["problem"]["offset"], offset);
    }
  }
}

TEST(BootFiles, AndPathTextsThatAreNoneAreRefused) {
  const ProgramResult bytes = Mira({"boot", "encode", kPathText});
  EXPECT_EQ(bytes.out, Hex(kPath) + "\n");
  EXPECT_EQ(Mira({"boot", "decode", "--path", "-"}, bytes.out).out, kPathText + std::string("\n"));
  struct Case {
    std::vector<std::string> arguments;
    std::string input;
    int status;
    const char* said;
  };
  const Case cases[] = {
      {{"boot", "decode", "no such file"}, "", 3, "'no such file' cannot be read."},
      {{"boot", "decode", "."}, "", 3, "'.' cannot be read."},
      {{"boot", "decode", "-"}, "", 6, "neither bytes of firmware nor hexadecimal"},
      {{"boot", "decode", "-"}, "nonsense", 6, "neither bytes of firmware nor hexadecimal"},
      {{"boot", "decode", "-"}, "0100", 6, "at byte 0: "},
      {{"boot", "decode"}, "", 2, "FILE"},
      {{"boot", "encode", "PciRoot(zz)"}, "", 6, "is not a device path"},
      {{"boot", "encode", "PciRoot(0x0)/Pci(0x1F"}, "", 6, "is not a device path"},
      {{"boot", "encode", "Bogus("}, "", 6, "is not a device path"},
      {{"boot", "encode", ""}, "", 6, "is not a device path"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments) + c.input);
    const ProgramResult result = Mira(c.arguments, c.input);
    EXPECT_EQ(result.status, c.status);
    EXPECT_NE(result.err.find(c.said), std::string::npos) << result.err;
  }
}

// Load options of real machines, where the folder with them is at hand.
TEST(RealLoadOptions, AreShownInTheStandardsText) {
  const char* const folder = std::getenv("MIRA_TEST_DATA");
  if (folder == nullptr) GTEST_SKIP() << "MIRA_TEST_DATA is not set";
  std::ifstream file(std::string(folder) + "/loadoptions.json");
  const json samples = json::parse(file).at("samples");
  for (const json& sample : samples) {
    const std::string path = sample.at("text");
    SCOPED_TRACE(path);
    const std::string bytes = sample.at("device_path_hex");
    // A list of paths shows all of them, each on a line of its own.
    EXPECT_TRUE(Mira({"boot", "decode", "-", "--path"}, bytes).out.starts_with(path + "\n"));
    if (!sample.contains("load_option_hex")) continue;
    const std::string whole = sample["load_option_hex"];
    const json option = Document(Mira({"boot", "decode", "-", "--json"}, whole)).at("option");
    EXPECT_EQ(option.at("path"), path);
    EXPECT_EQ(option.at("description"), sample.at("description"));
  }
}

}  // namespace
}  // namespace mira
