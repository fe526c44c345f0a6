#include "sim/profile_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "bytes/reader.h"
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
  std::optional<std::uint64_t> qword;
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
    if (field.qword) structure.QWord(*field.qword);
    if (field.string) structure.Str(*field.string);
    structure.Bytes(field.bytes);
  }
  for (const std::string& string : text.strings) structure.ExtraString(string);
  if (text.claimed_length) structure.ClaimLength(*text.claimed_length);
  return structure;
}

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kEndOfTable = 127;

// The structures of a table with their strings; of a damaged one pieces that make it up.
std::vector<Bytes> Split(const Bytes& table) {
  std::vector<Bytes> structures;
  for (std::size_t at = kTableHeader; at + 4 <= table.size();) {
    std::size_t end = at + std::max<std::size_t>(table[at + 1], 4);
    while (end + 2 <= table.size() && (table[end] != 0 || table[end + 1] != 0)) ++end;
    end = std::min(end + 2, table.size());
    structures.emplace_back(table.begin() + static_cast<std::ptrdiff_t>(at),
                            table.begin() + static_cast<std::ptrdiff_t>(end));
    at = end;
  }
  return structures;
}

bool HasType(const Bytes& structure, std::uint8_t type) { return structure[0] == type; }

bool HaveOneHandle(const Bytes& a, const Bytes& b) {
  return std::equal(a.begin() + 2, a.begin() + 4, b.begin() + 2);
}

// Puts structures in front of those of a table.
void Prepend(const std::vector<Bytes>& structures, Bytes& table) {
  Bytes front;
  for (const Bytes& structure : structures) {
    front.insert(front.end(), structure.begin(), structure.end());
  }
  table.insert(table.begin() + kTableHeader, front.begin(), front.end());
  const std::size_t size = table.size() - kTableHeader;
  for (unsigned i = 0; i < 4; ++i) table[4 + i] = static_cast<std::uint8_t>(size >> (8 * i));
}

// A structure that the base has made itself, with the profile's texts where the base's identity
// stands in it.
Bytes Renamed(const Bytes& structure, const Profile& base, const Profile& profile) {
  constexpr std::uint8_t kLastOfIdentity = 3;  // BIOS, system, board, chassis
  constexpr std::string Profile::*kTexts[] = {&Profile::manufacturer, &Profile::product,
                                              &Profile::service_tag,  &Profile::asset_tag,
                                              &Profile::bios_version, &Profile::bios_date};
  const std::size_t formatted = structure[1];
  if (structure[0] > kLastOfIdentity || formatted > structure.size()) return structure;
  Bytes renamed(structure.begin(), structure.begin() + static_cast<std::ptrdiff_t>(formatted));
  bytes::Reader in(structure, formatted);
  while (in.Left() > 0) {
    std::string text(in.CString());
    if (!in.Ok()) return structure;
    const auto* const found =
        std::find_if(std::begin(kTexts), std::end(kTexts),
                     [&](std::string Profile::*member) { return base.*member == text; });
    if (found != std::end(kTexts) && !text.empty()) text = profile.**found;
    renamed.insert(renamed.end(), text.begin(), text.end());
    renamed.push_back(0);
  }
  return renamed;
}

// Tells the base's table what the profile says otherwise than its base: structures that the base
// has not made itself follow the profile.
void FollowProfile(const Profile& base, Profile& profile) {
  const std::vector<Bytes> before = Split(BuildFirmwareTable(base));
  const std::vector<Bytes> after = Split(BuildFirmwareTable(profile));
  const auto twin = [](const std::vector<Bytes>& structures, const Bytes& structure) {
    return std::find_if(structures.begin(), structures.end(),
                        [&](const Bytes& other) { return HaveOneHandle(structure, other); });
  };
  std::vector<Bytes> merged;
  for (const Bytes& structure : Split(base.firmware_table)) {
    if (HasType(structure, kEndOfTable)) break;
    const auto followed = twin(after, structure);
    if (std::find(before.begin(), before.end(), structure) == before.end()) {
      merged.push_back(Renamed(structure, base, profile));
    } else if (followed != after.end()) {
      merged.push_back(*followed);
    }
  }
  for (const Bytes& structure : after) {
    if (twin(before, structure) == before.end()) merged.push_back(structure);
  }
  Bytes table = SmbiosTable(profile.smbios_major, profile.smbios_minor).Finish();
  Prepend(merged, table);
  profile.firmware_table = table;
}

// The base's table with other structures in the place of those of their types.
void ReplaceStructures(Profile& profile, const std::vector<StructureText>& structures,
                       std::vector<std::uint8_t> types) {
  for (const StructureText& structure : structures) types.push_back(structure.type);
  types.push_back(kEndOfTable);
  std::vector<Bytes> kept =
      Split(profile.firmware_table.empty() ? BuildFirmwareTable(profile) : profile.firmware_table);
  std::erase_if(kept, [&types](const Bytes& structure) {
    return std::any_of(types.begin(), types.end(),
                       [&](std::uint8_t type) { return HasType(structure, type); });
  });
  SmbiosTable added(profile.smbios_major, profile.smbios_minor);
  for (const StructureText& structure : structures) added.Add(Build(structure));
  Bytes table = added.Finish();
  Prepend(kept, table);
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
    const Profile inherited = profile;
    Describe(fields, profile);
    const bool has_own_table = profile.firmware_table != inherited.firmware_table;
    if (!profile.firmware_table.empty() && !has_own_table) FollowProfile(inherited, profile);
    std::vector<StructureText> structures;
    std::vector<std::uint8_t> dropped;
    std::vector<std::optional<std::uint8_t>> dropped_types;  // bytes alone would be read as a text
    fields("structures", structures)("dropStructures", dropped_types);
    for (const std::optional<std::uint8_t> type : dropped_types) {
      fields.Require(type.has_value(), "a type in 'dropStructures' is no number");
      dropped.push_back(*type);
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
