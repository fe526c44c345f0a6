#include "sim/profile_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "sim/firmware/attributes.h"
#include "sim/profile_fields.h"
#include "sim/smbios_builder.h"
#include "sim/smbios_tables.h"

namespace mira::sim {

// A field of a structure: one of its values, by the name of its kind.
struct StructureField {
  std::optional<std::uint8_t> byte;
  std::optional<std::uint16_t> word;
  std::optional<std::uint32_t> dword;
  std::optional<std::int64_t> qword;
  std::optional<std::string> string;
  std::vector<std::uint8_t> bytes;
};

struct StructureText {
  std::uint8_t type = 0;
  std::uint16_t handle = 0;
  std::optional<std::uint8_t> claimed_length;
  std::vector<StructureField> fields;
  std::vector<std::string> strings;
};

void Describe(Fields& f, StructureField& field) {
  f("byte", field.byte)("word", field.word)("dword", field.dword)("qword", field.qword);
  f("string", field.string)("bytes", field.bytes);
}

void Describe(Fields& f, StructureText& structure) {
  f.Must("type", structure.type).Must("handle", structure.handle);
  f("claimedLength", structure.claimed_length)("fields", structure.fields);
  f("strings", structure.strings);
}

namespace {

constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kTableHeader = 8;

Structure Build(const StructureText& text) {
  Structure structure(text.type, text.handle);
  for (const StructureField& field : text.fields) {
    if (field.byte) structure.Byte(*field.byte);
    if (field.word) structure.Word(*field.word);
    if (field.dword) structure.DWord(*field.dword);
    if (field.qword) structure.QWord(static_cast<std::uint64_t>(*field.qword));
    if (field.string) structure.Str(*field.string);
    structure.Bytes(field.bytes);
  }
  for (const std::string& string : text.strings) structure.ExtraString(string);
  if (text.claimed_length) structure.ClaimLength(*text.claimed_length);
  return structure;
}

// The structures of a table that the builder has made, less those of some types.
std::vector<std::uint8_t> Without(const std::vector<std::uint8_t>& table,
                                  const std::vector<std::uint8_t>& types) {
  std::vector<std::uint8_t> rest;
  for (std::size_t at = kTableHeader; at + 4 <= table.size();) {
    std::size_t end = at + table[at + 1];
    while (end + 2 <= table.size() && (table[end] != 0 || table[end + 1] != 0)) ++end;
    end = std::min(end + 2, table.size());
    if (std::find(types.begin(), types.end(), table[at]) == types.end()) {
      rest.insert(rest.end(), table.begin() + static_cast<std::ptrdiff_t>(at),
                  table.begin() + static_cast<std::ptrdiff_t>(end));
    }
    at = end;
  }
  return rest;
}

// The base's table with other structures in the place of those of their types.
void ReplaceStructures(Profile& profile, const std::vector<StructureText>& structures,
                       std::vector<std::uint8_t> types) {
  constexpr std::uint8_t kEndOfTable = 127;
  for (const StructureText& structure : structures) types.push_back(structure.type);
  types.push_back(kEndOfTable);
  const std::vector<std::uint8_t> base =
      profile.firmware_table.empty() ? BuildFirmwareTable(profile) : profile.firmware_table;
  const std::vector<std::uint8_t> kept = Without(base, types);
  SmbiosTable added(profile.smbios_major, profile.smbios_minor);
  for (const StructureText& structure : structures) added.Add(Build(structure));
  std::vector<std::uint8_t> table = added.Finish();
  table.insert(table.begin() + kTableHeader, kept.begin(), kept.end());
  const std::size_t size = table.size() - kTableHeader;
  for (unsigned i = 0; i < 4; ++i) table[4 + i] = static_cast<std::uint8_t>(size >> (8 * i));
  profile.firmware_table = table;
}

}  // namespace

Profile ReadProfile(std::string_view json, const ProfileBases& bases) {
  Node root = ParseJson(json);
  Fields fields(Fields::Pass::kLoadSome, root);
  Profile profile;
  fields.Whole([&] {
    std::uint32_t version = kVersion;
    std::string schema;
    std::string base;
    fields("$schema", schema)("schemaVersion", version)("base", base);
    fields.Require(version == kVersion, "this program does not know the version");
    if (!base.empty()) {
      const auto found = std::find_if(bases.begin(), bases.end(),
                                      [&base](const Profile& p) { return p.name == base; });
      fields.Require(found != bases.end(), "there is no profile '" + base + "'");
      profile = *found;
    }
    Describe(fields, profile);
    std::vector<StructureText> structures;
    std::vector<std::uint8_t> dropped;
    std::vector<std::uint16_t> dropped_types;
    fields("structures", structures)("dropStructures", dropped_types);
    for (const std::uint16_t type : dropped_types) {
      dropped.push_back(static_cast<std::uint8_t>(type));
    }
    if (!structures.empty() || !dropped.empty()) ReplaceStructures(profile, structures, dropped);
    try {
      if (!profile.attributes.empty() || !profile.pending_attributes.empty()) {
        AttributeHandler(nullptr, profile);
      }
    } catch (const std::logic_error& error) {
      fields.Require(false, error.what());
    }
  });
  return profile;
}

Profile ReadProfile(std::string_view json) { return ReadProfile(json, Profiles()); }

Profile LoadProfile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  if (!in) throw StateError("the file cannot be read");
  Profile profile = ReadProfile(text);
  return profile;
}

std::string WriteProfile(const Profile& profile) {
  Node root;
  Fields fields(Fields::Pass::kSave, root);
  std::uint32_t version = kVersion;
  fields("schemaVersion", version);
  Profile copy = profile;
  Describe(fields, copy);
  return WriteJson(root).str();
}

}  // namespace mira::sim
