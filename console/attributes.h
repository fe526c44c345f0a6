#ifndef MIRA_CONSOLE_ATTRIBUTES_H_
#define MIRA_CONSOLE_ATTRIBUTES_H_

// BIOS attributes as the commands use them: found by what the user typed, read, written, and their
// values as JSON, of which the texts are made.
//
//   Attributes attributes(context);
//   Setting setting = attributes.ReadLive(attributes.Find("WakeOnLan"));
//   attributes.Assign(setting, "LAN", Limits::kCheck);  // throws what is wrong with it
//   attributes.Write(setting, key);

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "console/command.h"
#include "console/progress.h"
#include "pldm/attribute.h"

namespace mira::console {

struct AttributeEntry {
  std::uint16_t handle;
  PLDM::ATTRIBUTE_TYPE type;
  std::string name;  // without its suffix, as UTF-8
  bool IsReadOnly() const { return PLDM::IsReadOnly(type); }
  bool IsPassword() const { return PLDM::WritableForm(type) == PLDM::BIOSPassword; }
};

// An attribute with a value.
struct Setting {
  const AttributeEntry* entry = nullptr;
  std::unique_ptr<PLDM::Attribute> attribute;
  // Possible values, sources or members by place, as UTF-8; of values with the suffix.
  std::vector<std::string> choices;
  // The same as the firmware spells them.
  std::vector<std::string> raw_choices;

  // The name with its suffix, or the handle where the firmware gives no name.
  std::string Title() const;
};

enum class Limits { kCheck, kIgnore };

class Attributes {
 public:
  // Which texts are fetched beside the tables.
  enum class Texts { kNone, kAll };
  // Throws CommandError where there are no attributes.
  explicit Attributes(Context& context, Texts texts = Texts::kNone);

  const std::vector<AttributeEntry>& All() const { return entries_; }
  // By name, with or without its suffix, else by handle in decimal or with 0x. Throws CommandError.
  const AttributeEntry& Find(const std::string& text);
  // Of several attributes of one name, the one of this handle. A handle that has another name, as
  // on another machine, does not count.
  const AttributeEntry& Find(const std::string& text, std::uint64_t handle);

  // Throw CommandError.
  Setting ReadLive(const AttributeEntry& entry);
  Setting ReadAtBoot(const AttributeEntry& entry);
  // Whether this live value differs from the one at start-up, where the tables tell that.
  bool IsRestartPending(const Setting& live);
  // Throws CommandError when the firmware refuses.
  void Write(Setting& setting, unsigned int security_key);

  // The value: a text, a number or a list, as the type has it; null for passwords.
  Json Value(const Setting& setting) const;
  // {"bootConfigType", "failThroughMode"} of a boot order; {} for other types.
  Json Modes(const Setting& setting) const;
  // The default; null for types that have none, and for passwords.
  Json Default(const Setting& setting);
  // Replaces the value; a text may stand for a number, or with commas for a list. Throws
  // CommandError that names the limit which the value breaks; where limits are ignored, only for a
  // value that cannot be sent at all.
  void Assign(Setting& setting, const Json& value, Limits limits) const;
  // Takes over what `modes` has of Modes. Throws CommandError for what is no number of one byte.
  void AssignModes(Setting& setting, const Json& modes) const;

  CMiraIntf& Mira() { return mira_; }
  Progress& GetProgress() { return progress_; }

 private:
  Setting Read(const AttributeEntry& entry, Status (CMiraIntf::*read)(PLDM::Attribute&));
  const AttributeEntry* FindHandle(std::uint64_t handle) const;
  const AttributeEntry* FindName(const std::string& name) const;
  // The name with its suffix; empty where the attribute cannot be read.
  std::string FullName(const AttributeEntry& entry);

  Context& context_;
  Progress progress_;
  CMiraIntf& mira_;
  std::vector<AttributeEntry> entries_;  // in ascending order of handles
};

const char* TypeName(PLDM::ATTRIBUTE_TYPE type);

// {"handle", "name", "suffix"}
Json NameJson(const Setting& setting);
// The same with {"type", "readOnly"}.
Json Identity(const Setting& setting);
// {"possibleValues"}, {"minLength", "maxLength"}, …
Json LimitsJson(const Setting& setting);
// "Disabled | Enabled", "0 to 100, in steps of 5", …
std::string LimitsText(const Setting& setting);
// A value, default or list as people read it.
std::string ValueText(const Json& value);
// The same of a boot order with what Attributes::Modes gives.
std::string ValueText(const Json& value, const Json& modes);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_ATTRIBUTES_H_
