#include "client/snapshot/redact.h"

#include <string>
#include <utility>

#include "bytes/text.h"
#include "client/attribute_file.h"
#include "client/boot.h"
#include "client/inventory_json.h"
#include "client/snapshot/fields.h"
#include "client/snapshot/placeholders.h"
#include "client/snapshot/redact_path.h"
#include "client/snapshot/redact_table.h"
#include "client/snapshot/subjects.h"
#include "client/snapshot/vocabulary.h"

namespace mira::client {
namespace {

constexpr char kLeftOut[] = "Left out.";

class Redactor {
 public:
  // What is there of a subject.
  Json Subject(const std::string& name, const Json& subject) {
    Json redacted = Json::object();
    if (subject.contains("value")) redacted["value"] = Value(name, subject["value"]);
    if (subject.contains("error")) redacted["error"] = Problem(subject["error"]);
    return redacted;
  }

  void Table(const std::vector<std::uint8_t>& table) { table_ = RedactTable(table, placeholders_); }
  const std::vector<std::uint8_t>& Table() const { return table_; }

 private:
  Json Value(const std::string& name, const Json& value) {
    // It says the same as the table, and so has the same placeholders.
    if (name == kInventorySubject) return ToJson(ReadInventory(table_));
    Json redacted = Any(name, value);
    if (name == kTableSubject) redacted["table"] = bytes::HexText(table_);
    if (name == kBootSubject) RedactOptions(value, redacted);
    if (name == kAttributesSubject) RedactAttributes(value, redacted);
    return redacted;
  }

  Json Any(const std::string& path, const Json& value) {
    if (IsProblem(value)) return Problem(value);
    if (value.is_object() && !IsText(value)) {
      Json redacted = Json::object();
      for (const auto& [key, part] : value.items()) redacted[key] = Any(path + '.' + key, part);
      return redacted;
    }
    if (value.is_array()) {
      Json redacted = Json::array();
      for (const Json& part : value) redacted.push_back(Any(path + ".*", part));
      return redacted;
    }
    return Leaf(RuleOf(path), value);
  }

  Json Leaf(const FieldRule& rule, const Json& value) {
    if (value.is_null() || rule.redaction == Redaction::kKeep) return value;
    if (rule.redaction == Redaction::kSentence) return kLeftOut;
    if (value.is_boolean()) return false;
    if (value.is_number()) return 0;
    return Text(value, rule.kind, rule.redaction == Redaction::kCommon);
  }

  Json Text(const Json& value, const char* kind, bool may_be_common) {
    const std::string text = BytesOfText(value).value_or("");
    if (may_be_common && value.is_string() && IsCommonText(text)) return text;
    const std::string placeholder = placeholders_.Of(text, kind);
    const bool has_brackets = text.starts_with('[') && text.ends_with(']');
    return has_brackets ? '[' + placeholder + ']' : placeholder;
  }

  static bool IsText(const Json& value) {
    return value.contains("text") && value.contains("bytes") && value.size() == 2;
  }

  // An error that was kept: what it was, without what it quotes.
  static bool IsProblem(const Json& value) {
    return value.is_object() && value.contains("code") && value.contains("message") &&
           value.contains("hint");
  }
  Json Problem(const Json& problem) {
    Json redacted = Json::object();
    for (const char* const key : {"code", "name"}) redacted[key] = problem.at(key);
    redacted["message"] = kLeftOut;
    redacted["target"] = "";
    redacted["hint"] = kLeftOut;
    for (const char* const key : {"step", "hresult", "completion", "handle", "type", "readOnly"}) {
      if (problem.contains(key)) redacted[key] = problem[key];
    }
    if (problem.contains("attribute")) {
      redacted["attribute"] = Text(problem["attribute"], "attribute", true);
    }
    return redacted;
  }

  // Paths and data: how a device is connected stays, what it is called by does not.
  void RedactOptions(const Json& value, Json& redacted) {
    for (std::size_t i = 0; i < value.at("lists").size(); ++i) {
      const Json& list = value["lists"][i];
      if (!list.contains("options")) continue;
      for (std::size_t j = 0; j < list["options"].size(); ++j) {
        RedactOption(list["options"][j], redacted["lists"][i]["options"][j]);
      }
    }
  }
  void RedactOption(const Json& option, Json& redacted) {
    Json& paths = redacted["paths"] = Json::array();
    for (const devicepath::Path& path : BootOptionFromJson(option).paths) {
      paths.push_back(path.bytes.empty()
                          ? Json{{"text", placeholders_.Of(path.text, "path")}, {"bytes", ""}}
                          : ToJson(RedactPath(path.bytes, placeholders_)));
    }
    if (!option.at("path").is_null()) redacted["path"] = paths.at(0).at("text");
    const std::size_t digits = option.at("optionalData").get_ref<const std::string&>().size();
    redacted["optionalData"] = std::string(digits, '0');
    redacted["optionalDataText"] = std::string(digits / 2, '.');
  }

  void RedactAttributes(const Json& value, Json& redacted) {
    for (std::size_t i = 0; i < value.at("attributes").size(); ++i) {
      const Json& item = value["attributes"][i];
      Json& shown = redacted["attributes"][i];
      shown.erase("help");
      for (const char* const key : {"value", "default", "atBoot"}) {
        if (item.contains(key)) shown[key] = AttributeValue(item, item[key]);
      }
    }
  }
  Json AttributeValue(const Json& item, const Json& value) {
    if (value.is_array()) {
      Json list = Json::array();
      for (const Json& part : value) list.push_back(AttributeValue(item, part));
      return list;
    }
    const std::string type = item.at("type");
    if (value.is_null()) return value;
    // What a collection or an enumeration has for a name that there is not is a handle or a place.
    if (type != "integer" && value.is_number()) return value;
    if (type == "integer") return IsCommonNumber(item, value) ? value : item.at("lowerBound");
    const char* kind = type == "enumeration"   ? "value"
                       : type == "boot-config" ? "source"
                       : type == "string"      ? "text"
                                               : "attribute";
    return Text(value, kind, type != "string");
  }
  // A number may be somebody's, like that of an inventory, or a day.
  static bool IsCommonNumber(const Json& item, const Json& value) {
    constexpr std::uint64_t kLargest = 99'999;
    if (ToNumber(value).value_or(kLargest + 1) > kLargest) return false;
    const std::string name = Readable(item.at("name"));
    if (!IsCommonText(name)) return false;
    for (const char* const word : {"asset", "serial", "tag", "owner", "user", "mac", "ip", "id",
                                   "address", "number", "code", "inventory"}) {
      if (bytes::ContainsText(name, word)) return false;
    }
    return true;
  }

  Placeholders placeholders_;
  std::vector<std::uint8_t> table_;
};

Json MachineOf(const std::vector<std::uint8_t>& table) { return MachineJson(ReadInventory(table)); }

}  // namespace

Json Redact(const Snapshot& snapshot) {
  if (snapshot.IsRedacted()) return snapshot.Document();
  Redactor redactor;
  try {
    redactor.Table(snapshot.Table());
  } catch (const Error&) {
    // Then there is nothing of it to be left out.
  }
  Json document = {{"schemaVersion", 1}};
  if (snapshot.IsSimulated()) document["simulated"] = true;
  document["kind"] = "snapshot";
  document["takenAt"] = snapshot.TakenAt();
  document["program"] = {{"name", "mira"}, {"version", MIRA_VERSION}};
  document["redacted"] = true;
  document["machine"] = MachineOf(redactor.Table());
  Json& subjects = document["subjects"] = Json::object();
  for (const Subject& subject : Subjects()) {
    const auto& all = snapshot.Document().at("subjects");
    if (all.contains(subject.name)) {
      subjects[subject.name] = redactor.Subject(subject.name, all[subject.name]);
    }
  }
  return document;
}

}  // namespace mira::client
