#include "client/smbios.h"

#include "console/face.h"

namespace mira::console {
namespace {

void WriteAttributes(const Json& structure, std::ostream& out) {
  out << client::Readable(structure.at("class")) << " : Type "
      << client::Readable(structure.at("type")) << " : Handle "
      << Hex(structure.at("handle").get<unsigned>(), 4) << '\n';
  for (const Json& attribute : structure.at("attributes")) {
    out << "  " << Escaped(client::Readable(attribute.at("key"))) << " : "
        << Escaped(client::Readable(attribute.at("value"))) << '\n';
  }
}

void ShowSmbios(const Json& document, std::ostream& out) {
  const Json& structures = document.at("structures");
  const bool is_saved = document.contains("savedTo");
  if (is_saved) {
    const bool is_written = !document.at("whatIf").get<bool>();
    out << (is_written ? "Saved " : "Would save ") << client::Readable(document.at("savedBytes"))
        << " bytes to " << Escaped(client::Readable(document["savedTo"])) << ".\n"
        << (is_written ? "" : "Nothing was written.\n");
  }
  for (const Json& structure : structures) {
    if (!structure.contains("bytes")) {
      WriteAttributes(structure, out);
    } else if (!is_saved || !document.at("selection").empty()) {
      const auto bytes = client::FromHexText(structure["bytes"].get_ref<const std::string&>());
      client::WriteDump(bytes.value_or(std::vector<std::uint8_t>()), Escaped, out);
    }
  }
  if (document.contains("limit")) {
    out << "\nOnly SMBIOS is available here: "
        << Escaped(client::Readable(document["limit"].at("message"))) << ' '
        << client::Readable(document["limit"].at("hint")) << '\n';
  }
}

}  // namespace

std::vector<Face> SmbiosFaces() {
  return {{.command = "smbios",
           .examples = "  mira smbios --type 17\n"
                       "  mira smbios --handle 0x1100 --attributes\n"
                       "  mira smbios --save pc.rsmb\n"
                       "  mira smbios --save pc.bin --form=dump\n"
                       "  mira smbios --file pc.rsmb --json\n"
                       "Numbers are decimal, or hexadecimal with 0x. --file takes the firmware "
                       "table as --save\n"
                       "writes it, a dump that begins with its entry point, a bare structure "
                       "table, and\n"
                       "hexadecimal text of these. 'dmidecode --from-dump' reads what "
                       "--form=dump saves.",
           .render = ShowSmbios,
           .save_field = "table",
           .save_help = "save the table to a file; shows structures only when asked for some"}};
}

}  // namespace mira::console
