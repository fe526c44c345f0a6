#include "client/attributes.h"

#include <algorithm>
#include <list>
#include <set>
#include <string_view>
#include <utility>

#include "bytes/text.h"
#include "client/nearest.h"
#include "client/snapshot/kept_attributes.h"
#include "transport/com_error.h"

namespace mira::client {
namespace {

constexpr std::uint16_t kAttributeClass = 5;

std::string_view WithoutSuffix(std::string_view text) { return text.substr(0, text.find('[')); }

std::string HandleText(std::uint16_t handle) { return "0x" + bytes::HexNumber(handle, 4); }

// The error of the facade's operation that has just failed.
Error OperationError(Session& session, Status status, const std::string& title) {
  const OperationReport& report = CMiraIntf::GetLastOperation();
  // Behind a question that got no answer, a refusal only says what the write lacked: its key, say.
  const CallReport& lost = report.unanswered;
  const bool is_lost = lost.failure.step != mira::Step::kNone;
  const bool is_call = report.call.cls == kAttributeClass;
  const bool is_sent = lost.delivery == Delivery::kNoAnswer && lost.cls == kAttributeClass;
  const Error plain = ErrorOf(status, title);
  std::string message = title + ": " + plain.what();
  if (is_sent) {
    message = title + ": " + NoAnswerText(session, "The call");
  } else if (is_lost) {
    message = title + ": a call that it takes did not reach the firmware, or its answer was lost.";
  }
  for (const std::string& line : session.TakeDiagnostics()) message += " (" + line + ")";
  Error error(is_lost ? kTransportFailed : plain.status,
              is_sent   ? "no-answer"
              : is_lost ? "call-not-made"
                        : plain.name,
              message, title);
  const StepResult& failure = is_lost ? lost.failure : report.failure;
  if (failure.step != mira::Step::kNone) error.step = StepName(failure.step);
  if (failure.code_kind == CodeKind::kHresult) {
    error.hresult = static_cast<std::uint32_t>(failure.code);
  }
  if (!is_lost && is_call && report.call.delivery == Delivery::kAnswered) {
    error.completion = report.call.completion;
  }
  return error;
}

// The values that a default names, which stand in its text with ", " between them.
std::vector<std::string> SplitDefaults(std::string_view text,
                                       const std::vector<std::string>& choices) {
  constexpr std::string_view kBetween = ", ";
  std::vector<std::string> defaults;
  while (!text.empty()) {
    const std::string* longest = nullptr;
    for (const std::string& choice : choices) {
      const bool fits = text == choice || text.starts_with(choice + std::string(kBetween));
      if (fits && (longest == nullptr || choice.size() > longest->size())) longest = &choice;
    }
    if (longest == nullptr || longest->empty()) return {};
    defaults.push_back(*longest);
    text.remove_prefix(std::min(text.size(), longest->size() + kBetween.size()));
  }
  return defaults;
}

std::vector<std::string> ReadDefaults(CMiraIntf& mira, const AttributeEntry& entry,
                                      const std::vector<std::string>& choices) {
  std::string text;
  const PLDM::ATTRIBUTE_TYPE type = PLDM::WritableForm(entry.type);
  const bool has_default =
      type == PLDM::BIOSEnumeration || type == PLDM::BIOSString || type == PLDM::BIOSInteger;
  if (!has_default || mira.GetAttributeDefault(entry.handle, text) != STATUS_SUCCESS) return {};
  if (type == PLDM::BIOSEnumeration) return SplitDefaults(text, choices);
  return {text};
}

}  // namespace

std::string AttributeEntry::Title() const { return name.empty() ? HandleText(handle) : name; }

std::string Setting::Title() const {
  const std::string name = ToUtf8(attribute->Name) + ToUtf8(attribute->Suffix);
  return name.empty() ? HandleText(entry->handle) : name;
}

std::optional<std::size_t> PlaceOf(const std::vector<std::string>& choices, std::string_view text) {
  const auto place = [&choices](auto found) {
    return static_cast<std::size_t>(found - choices.begin());
  };
  const auto is_it = [text](const std::string& c) { return c == text || ToUtf8(c) == text; };
  const auto exact = std::find_if(choices.begin(), choices.end(), is_it);
  if (exact != choices.end()) return place(exact);
  const auto has_name = [text](const std::string& c) {
    return WithoutSuffix(c) == text || ToUtf8(WithoutSuffix(c)) == text;
  };
  const auto found = std::find_if(choices.begin(), choices.end(), has_name);
  if (found == choices.end() || std::count_if(found, choices.end(), has_name) != 1) {
    return std::nullopt;
  }
  return place(found);
}

Attributes::Attributes(Session& session, Session::Texts texts) : session_(session), texts_(texts) {
  if (const Snapshot* const kept = session.Kept()) {
    kept_ = KeptAttributes(*kept);
    for (const KeptAttribute& attribute : kept_) entries_.push_back(attribute.entry);
    return;
  }
  std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> names;
  std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>> handles;
  CMiraIntf& mira = Mira();
  mira.GetAttributeNamesAndTypes(names);
  mira.GetAttributeHandlesAndTypes(handles);
  auto name = names.begin();
  for (const auto& [handle, type] : handles) {
    entries_.push_back({handle, type, ToUtf8((name++)->first)});
  }
}

const KeptAttribute* Attributes::Kept(const AttributeEntry& entry) const {
  if (kept_.empty()) return nullptr;
  const KeptAttribute& kept = kept_.at(static_cast<std::size_t>(&entry - entries_.data()));
  if (kept.problem) throw *kept.problem;
  return &kept;
}

const AttributeEntry* Attributes::FindHandle(std::uint64_t handle) const {
  const auto found =
      std::lower_bound(entries_.begin(), entries_.end(), handle,
                       [](const AttributeEntry& e, std::uint64_t h) { return e.handle < h; });
  return found != entries_.end() && found->handle == handle ? &*found : nullptr;
}

// Of several attributes of one name the last is the one that the library knows by it.
const AttributeEntry* Attributes::FindName(const std::string& name) const {
  if (name.empty()) return nullptr;
  const auto find = [this](auto is_it) {
    const auto found = std::find_if(entries_.rbegin(), entries_.rend(), is_it);
    return found != entries_.rend() ? &*found : nullptr;
  };
  if (const auto* const exact = find([&](const AttributeEntry& e) { return e.name == name; })) {
    return exact;
  }
  std::set<std::string> alike;
  for (const AttributeEntry& entry : entries_) {
    if (bytes::SameText(entry.name, name)) alike.insert(entry.name);
  }
  if (alike.size() > 1) {
    Json names(alike);
    throw Error(kNotFound, "ambiguous-name",
                "'" + name + "' may be one of " + Readable(names) + ": the case of letters counts.",
                name)
        .With("names", std::move(names));
  }
  return find([&](const AttributeEntry& e) { return bytes::SameText(e.name, name); });
}

std::optional<Setting> Attributes::TryReadAny(const AttributeEntry& entry) {
  for (const auto read : {&Attributes::ReadAtBoot, &Attributes::ReadLive}) {
    try {
      return (this->*read)(entry);
    } catch (const Error&) {
      // Then by the other way, or not at all.
    }
  }
  return std::nullopt;
}

std::string Attributes::FullName(const AttributeEntry& entry) {
  if (const KeptAttribute* const kept = Kept(entry)) {
    if (kept->problem) return "";
    return ToUtf8(TextFromJson(kept->item.at("name")) + TextFromJson(kept->item.at("suffix")));
  }
  const std::optional<Setting> setting = TryReadAny(entry);
  return setting ? setting->Title() : "";
}

std::string Attributes::DisplayName(const AttributeEntry& entry) {
  if (const KeptAttribute* const kept = Kept(entry)) {
    return kept->item.is_object() ? Readable(kept->item.value("displayName", Json())) : "";
  }
  const std::optional<Setting> setting = TryReadAny(entry);
  return setting ? ToUtf8(setting->attribute->DisplayText) : "";
}

const AttributeEntry* Attributes::FindDisplayName(const std::string& text) {
  const AttributeEntry* found = nullptr;
  Json names = Json::array();
  for (const AttributeEntry& entry : entries_) {
    if (!bytes::SameText(DisplayName(entry), text)) continue;
    found = &entry;
    names.push_back(FullName(entry));
  }
  if (names.size() <= 1) return found;
  throw Error(kNotFound, "ambiguous-name",
              "'" + text + "' is the display name of several attributes: " + Readable(names) + ".",
              text)
      .With("names", std::move(names));
}

const AttributeEntry& Attributes::Find(const std::string& text, std::uint64_t handle) {
  const AttributeEntry* const entry = FindHandle(handle);
  if (entry != nullptr && text.starts_with(entry->name) && FullName(*entry) == text) return *entry;
  return Find(text);
}

const AttributeEntry& Attributes::Find(const std::string& text) {
  if (const AttributeEntry* const entry = FindName(text)) return *entry;
  const std::string_view name = WithoutSuffix(text);
  for (const bool any_case : {false, true}) {
    const auto is_it = [any_case](std::string_view a, std::string_view b) {
      return any_case ? bytes::SameText(a, b) : a == b;
    };
    for (const AttributeEntry& entry : entries_) {
      if (name.size() < text.size() && is_it(entry.name, name) && is_it(FullName(entry), text)) {
        return entry;
      }
    }
  }
  const std::optional<std::uint64_t> handle = bytes::ParseNumber(text);
  const AttributeEntry* const entry = handle ? FindHandle(*handle) : nullptr;
  if (entry != nullptr) return *entry;
  if (texts_ == Session::Texts::kAll) {
    if (const AttributeEntry* const shown = FindDisplayName(text)) return *shown;
  }
  std::vector<std::string> names;
  for (const AttributeEntry& e : entries_) names.push_back(e.name);
  const std::optional<std::string> nearest = Nearest(text, names);
  throw Error(kNotFound, "attribute-not-found",
              "There is no attribute '" + text + "'." +
                  (nearest ? " Did you mean '" + *nearest + "'?" : ""),
              text)
      .With("unknown", Json::array({text}));
}

namespace {

// Runs an operation of the facade. The one exception that leaves it becomes an error, so that what
// was done before is reported.
template <typename Operation>
Status InMemory(const std::string& title, Operation operation) {
  try {
    return operation();
  } catch (const transport::ComError&) {
    throw Error(kUnexpected, "out-of-memory", "The system ran out of memory.", title);
  }
}

}  // namespace

Setting Attributes::Read(const AttributeEntry& entry, Status (CMiraIntf::*read)(PLDM::Attribute&)) {
  CMiraIntf& mira = Mira();
  Setting setting;
  setting.entry = &entry;
  setting.attribute = PLDM::MakeAttribute(entry.type);
  setting.attribute->Handle = entry.handle;
  const Status status = InMemory(entry.Title(), [&] { return (mira.*read)(*setting.attribute); });
  // The first read fetches the texts.
  const StepResult& failure = CMiraIntf::GetLastOperation().failure;
  if (status != STATUS_SUCCESS && failure.outcome == StepOutcome::kCancelled) throw Cancelled();
  if (status != STATUS_SUCCESS) throw OperationError(session_, status, entry.Title());
  std::list<std::string> names;
  mira.GetPossibleValues(entry.handle, names);
  setting.choices.assign(names.begin(), names.end());
  setting.defaults = ReadDefaults(mira, entry, setting.choices);
  return setting;
}

Setting Attributes::ReadLive(const AttributeEntry& entry) {
  return Read(entry, &CMiraIntf::GetAttributeValue);
}

Setting Attributes::ReadAtBoot(const AttributeEntry& entry) {
  return Read(entry, &CMiraIntf::GetAttributeValueAtBoot);
}

std::optional<Setting> Attributes::TryReadAtBoot(const AttributeEntry& entry) {
  try {
    return ReadAtBoot(entry);
  } catch (const Error&) {
    return std::nullopt;
  }
}

void Attributes::Write(const Setting& setting, std::uint32_t security_key) {
  // The handle alone names it: a name may belong to several.
  PLDM::Attribute& attribute = *setting.attribute;
  const std::string name = std::exchange(attribute.Name, "");
  attribute.Type = PLDM::WritableForm(attribute.Type);
  CMiraIntf& mira = Mira();
  const Status status = InMemory(setting.Title(), [&] {
    return mira.SetAttributeValue(attribute, "", PwdInfo::PWD_NONE, security_key);
  });
  attribute.Name = name;
  if (status != STATUS_SUCCESS) throw OperationError(session_, status, setting.Title());
}

}  // namespace mira::client
