#include "client/snapshot/snapshot.h"

#include <utility>

namespace mira::client {
namespace {

constexpr char kSnapshotFile[] = "The snapshot";
constexpr std::uint64_t kSnapshotVersion = 1;

}  // namespace

Snapshot::Snapshot(Json document) : document_(std::move(document)) {
  if (!IsOne(document_)) {
    throw Error(kInvalidValue, "no-snapshot", "The file holds no snapshot of a machine.");
  }
  const auto version = document_.find("schemaVersion");
  const auto number =
      version != document_.end() ? ToNumber(*version) : std::optional(kSnapshotVersion);
  if (!number || *number > kSnapshotVersion) {
    throw Error(
        kInvalidValue, "newer-snapshot",
        "The snapshot has the schemaVersion " + version->dump() + "; this program knows version 1.",
        "schemaVersion");
  }
  const auto subjects = document_.find("subjects");
  if (subjects == document_.end() || !subjects->is_object()) {
    throw MalformedSnapshot("It has no \"subjects\".");
  }
  for (const auto& [name, subject] : subjects->items()) {
    if (subject.is_object() && (subject.contains("value") || subject.contains("error"))) continue;
    throw MalformedSnapshot("Its subject '" + name + "' has neither a value nor an error.");
  }
  for (const char* const flag : {"simulated", "redacted"}) {
    if (document_.contains(flag) && !document_[flag].is_boolean()) {
      throw MalformedSnapshot("'" + std::string(flag) + "' is neither true nor false.");
    }
  }
}

Snapshot Snapshot::FromText(const std::string& content) {
  return Snapshot(ParseJson(content, kSnapshotFile));
}

bool Snapshot::IsOne(const Json& document) {
  if (!document.is_object()) return false;
  const auto kind = document.find("kind");
  return kind != document.end() && *kind == "snapshot";
}

const Json& Snapshot::Machine() const {
  static const Json kNone = Json::object();
  const auto machine = document_.find("machine");
  return machine != document_.end() && machine->is_object() ? *machine : kNone;
}

std::string Snapshot::TakenAt() const {
  const auto taken = document_.find("takenAt");
  return taken != document_.end() && taken->is_string() ? taken->get<std::string>() : "";
}

const Json& Snapshot::Value(const char* subject) const {
  const Json& subjects = document_.at("subjects");
  const auto found = subjects.find(subject);
  if (found == subjects.end()) throw NotInSnapshot(subject);
  if (found->contains("value")) return found->at("value");
  throw *Problem(subject);
}

std::optional<Error> Snapshot::Problem(const char* subject) const {
  const Json& subjects = document_.at("subjects");
  const auto found = subjects.find(subject);
  if (found == subjects.end()) return NotInSnapshot(subject);
  if (!found->contains("error")) return std::nullopt;
  return ErrorFromJson(found->at("error"));
}

std::vector<std::uint8_t> Snapshot::Table() const {
  const Json& table = Value(kTableSubject).at("table");
  if (auto bytes = FromHexText(table.get<std::string>()); bytes && !bytes->empty()) {
    return std::move(*bytes);
  }
  throw MalformedSnapshot("Its SMBIOS table is not hexadecimal.");
}

const Json& Snapshot::Field(const char* subject, const char* field) const {
  const Json& value = Value(subject);
  if (!value.is_object()) throw MalformedSnapshot("A subject's value is not an object.");
  const auto found = value.find(field);
  if (found != value.end() && found->is_array()) return *found;
  const auto problems = value.find("problems");
  if (problems != value.end() && problems->contains(field)) {
    throw ErrorFromJson(problems->at(field));
  }
  throw NotInSnapshot(field);
}

Error NotInSnapshot(const std::string& what) {
  return Error(kNotFound, "not-in-snapshot", "The snapshot does not hold this: " + what + ".",
               what);
}

Error MalformedSnapshot(const std::string& why) {
  return Error(kInvalidValue, "malformed-snapshot", "The snapshot is malformed. " + why);
}

}  // namespace mira::client
