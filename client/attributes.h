#ifndef MIRA_CLIENT_ATTRIBUTES_H_
#define MIRA_CLIENT_ATTRIBUTES_H_

// The BIOS attributes of a machine (DSP0247): found, read and written.
//
//   Attributes attributes(session);
//   Setting setting = attributes.ReadLive(attributes.Find("WakeOnLan"));
//   Assign(attributes, setting, "LAN", Limits::kCheck);  // throws what is wrong with it
//   attributes.Write(setting, key);

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/session.h"
#include "pldm/attribute.h"

namespace mira::client {

struct AttributeEntry {
  std::uint16_t handle;
  PLDM::ATTRIBUTE_TYPE type;
  std::string name;  // without its suffix, as UTF-8
  bool IsReadOnly() const { return PLDM::IsReadOnly(type); }
  bool IsPassword() const { return PLDM::WritableForm(type) == PLDM::BIOSPassword; }
  // The name, or the handle where the firmware gives none.
  std::string Title() const;
};

// An attribute of a snapshot.
struct KeptAttribute {
  AttributeEntry entry;
  Json item;  // all about it
  std::optional<Error> problem = std::nullopt;
  std::optional<Error> at_boot_problem = std::nullopt;
};

// An attribute with a value.
struct Setting {
  const AttributeEntry* entry = nullptr;  // lives as long as its Attributes
  std::shared_ptr<PLDM::Attribute> attribute;
  // Possible values, sources or members by place, as the firmware spells them; of values with the
  // suffix.
  std::vector<std::string> choices;
  // The default as the tables give it; of an enumeration its values, of others one text or none.
  std::vector<std::string> defaults;

  // The name with its suffix, as UTF-8, or the handle where the firmware gives no name.
  std::string Title() const;
};

class Attributes {
 public:
  // Throws Error where there are no attributes.
  explicit Attributes(Session& session, Session::Texts texts = Session::Texts::kNone);

  // In ascending order of handles.
  const std::vector<AttributeEntry>& All() const { return entries_; }
  // By name, with or without its suffix, else by handle in decimal or with 0x, else, where all
  // texts were wanted, by display name. The case of letters counts only where names differ in
  // nothing else. Throws Error.
  const AttributeEntry& Find(const std::string& text);
  // Of several attributes of one name, the one of this handle. A handle that has another name, as
  // on another machine, does not count.
  const AttributeEntry& Find(const std::string& text, std::uint64_t handle);
  const AttributeEntry* FindHandle(std::uint64_t handle) const;
  // The one that the library knows by the name, in any case of letters; null where there is none.
  const AttributeEntry* FindName(const std::string& name) const;

  // Of a snapshot's attributes what was kept, with its problem thrown; null on a machine.
  const KeptAttribute* Kept(const AttributeEntry& entry) const;

  // Throw Error.
  Setting ReadLive(const AttributeEntry& entry);
  Setting ReadAtBoot(const AttributeEntry& entry);
  // Nothing where the tables list the attribute without a value.
  std::optional<Setting> TryReadAtBoot(const AttributeEntry& entry);
  // As the tables have it; an attribute without a value in them is asked for. Nothing where neither
  // works.
  std::optional<Setting> TryReadAny(const AttributeEntry& entry);
  // Sends the setting's value with a security key, 0 for none; never with that of an earlier call.
  // A read-only attribute goes out as if it could be written: whether it can is the firmware's to
  // say. Throws Error.
  void Write(const Setting& setting, std::uint32_t security_key);

 private:
  CMiraIntf& Mira() { return session_.WithAttributes(texts_); }
  Setting Read(const AttributeEntry& entry, Status (CMiraIntf::*read)(PLDM::Attribute&));
  // The name with its suffix; empty where the attribute cannot be read.
  std::string FullName(const AttributeEntry& entry);
  // What people read in its place; empty where there is none.
  std::string DisplayName(const AttributeEntry& entry);
  // Null where no attribute is shown so. Throws Error where several are.
  const AttributeEntry* FindDisplayName(const std::string& text);

  Session& session_;
  Session::Texts texts_;
  std::vector<AttributeEntry> entries_;
  std::vector<KeptAttribute> kept_;  // of a snapshot, for each entry
};

enum class Limits { kCheck, kIgnore };

// Replaces the setting's value: a text, a number, or a list; a text may stand for a number, or with
// commas for a list. Throws Error that names the limit which the value breaks; where limits are
// ignored, only for a value that cannot be sent at all. No error quotes a password.
void Assign(const Attributes& attributes, Setting& setting, const Json& value, Limits limits);
// Takes over what `modes` has of ModesJson. Throws Error for what is no number of one byte.
void AssignModes(Setting& setting, const Json& modes);

// The place of a choice by its whole text, or by its name without suffix if only one has it. The
// text is UTF-8, or the firmware's own bytes.
std::optional<std::size_t> PlaceOf(const std::vector<std::string>& choices, std::string_view text);

}  // namespace mira::client

#endif  // MIRA_CLIENT_ATTRIBUTES_H_
