#include "client/attribute_plan.h"

#include <utility>

namespace mira::client {
namespace {

Error ReadOnlyError(const Setting& setting) {
  const std::string title = setting.Title();
  return Error(kInvalidValue, "read-only", title + " is read-only.", title);
}

// The modes that are wished for, in the order of their rows.
std::vector<std::string> WishedModes(const AttributeWish& wish, const Json& modes) {
  std::vector<std::string> names;
  for (const auto& [name, mode] : modes.items()) {
    if (wish.modes.contains(name)) names.push_back(name);
  }
  return names;
}

std::vector<Json> Values(const Attributes& attributes, const Setting& setting,
                         const std::vector<std::string>& modes) {
  std::vector<Json> values = {ValueJson(attributes, setting)};
  const Json all = ModesJson(setting);
  for (const std::string& mode : modes) values.push_back(all.at(mode));
  return values;
}

ValueForm FormOf(const AttributeEntry& entry) {
  switch (PLDM::WritableForm(entry.type)) {
    case PLDM::BIOSInteger:
      return ValueForm::kNumber;
    case PLDM::BIOSString:
      return ValueForm::kText;
    default:
      return ValueForm::kChoice;
  }
}

}  // namespace

Json NameOf(Attributes& attributes, const AttributeEntry& entry) {
  if (const auto setting = attributes.TryReadAny(entry)) return NameJson(*setting);
  return {{"handle", entry.handle}, {"name", entry.name}, {"suffix", ""}};
}

void AttributeWriter::Write(const Setting& setting, const Key& key) {
  if (key_error_) throw *key_error_;
  if (!security_key_) {
    security_key_ = 0;
    if (!key.text.empty()) {
      try {
        security_key_ = SecurityKeyOf(session_, key);
      } catch (const Error& error) {
        security_key_.reset();
        key_error_ = error;
        throw;
      }
    }
  }
  attributes_.Write(setting, *security_key_);
}

Step PlanAttribute(const AttributeWriterPtr& writer, const AttributeWish& wish) {
  Attributes& attributes = writer->All();
  const AttributeEntry& entry = *wish.entry;
  const auto wanted = std::make_shared<Setting>(attributes.ReadLive(entry));
  const std::optional<Setting> at_boot = attributes.TryReadAtBoot(entry);
  const std::vector<std::string> modes = WishedModes(wish, ModesJson(*wanted));
  const std::vector<Json> before = Values(attributes, *wanted, modes);
  const bool is_fixed = entry.IsReadOnly() && wish.limits == Limits::kCheck;
  try {
    Assign(attributes, *wanted, wish.value, wish.limits);
    AssignModes(*wanted, wish.modes);
  } catch (const Error&) {
    // That it cannot be written at all says more than the limit that the value breaks.
    if (is_fixed) throw ReadOnlyError(*wanted);
    throw;
  }
  const std::vector<Json> after = Values(attributes, *wanted, modes);
  const std::vector<Json> start = at_boot ? Values(attributes, *at_boot, modes) : before;
  const std::string title = wanted->Title();

  Step step;
  step.may_wait = true;
  step.is_exact = true;
  for (std::size_t i = 0; i < before.size(); ++i) {
    step.changes.push_back({.target = i == 0 ? title : title + " " + modes[i - 1],
                            .before = before[i],
                            .after = after[i],
                            .secret = entry.IsPassword(),
                            .form = i == 0 ? FormOf(entry) : ValueForm::kChoice,
                            .details = NameJson(*wanted)});
    if (at_boot && !entry.IsPassword()) step.changes.back().at_boot = start[i];
    if (i > 0) step.changes.back().details["field"] = modes[i - 1];
  }
  const bool is_other = entry.IsPassword() || before != after;
  if (is_fixed && is_other) {
    step.changes.front().problem = ReadOnlyError(*wanted);
  }
  // A password cannot be read back.
  if (!entry.IsPassword()) {
    step.read = [writer, &entry, modes](Session&) {
      return Values(writer->All(), writer->All().ReadLive(entry), modes);
    };
  }
  step.write = [writer, wanted](Session&, const Key& key) { writer->Write(*wanted, key); };
  return step;
}

Step ImpossibleStep(Attributes& attributes, const AttributeEntry* entry, const std::string& target,
                    const Error& error) {
  Step step;
  step.changes.push_back({.target = target, .before = nullptr, .after = nullptr});
  step.changes.back().problem = error;
  if (entry != nullptr) step.changes.back().details = NameOf(attributes, *entry);
  return step;
}

Step PlanDefault(const AttributeWriterPtr& writer, const AttributeEntry& entry) {
  const Setting setting = writer->All().ReadLive(entry);
  const Json value = DefaultJson(setting);
  if (value.is_null()) {
    const std::string title = setting.Title();
    throw Error(
        kInvalidValue, "no-default",
        title + (entry.IsPassword() ? " is a password: passwords are never set to a default."
                                    : ": the machine's tables give no default for it."),
        title);
  }
  return PlanAttribute(writer, {.entry = &entry, .value = value});
}

}  // namespace mira::client
