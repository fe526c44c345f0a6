#ifndef MIRA_CLIENT_SNAPSHOT_SNAPSHOT_H_
#define MIRA_CLIENT_SNAPSHOT_SNAPSHOT_H_

// A machine as it was: a document with the value of each subject, or the error that kept it from
// being read.
//
//   const Snapshot snapshot = Snapshot::FromText(content_of_the_file);
//   const Session::Offline offline(session, snapshot);
//   for (const Token& token : ReadTokens(session)) ...

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/error.h"
#include "client/json.h"

namespace mira::client {

// The subjects by name.
inline constexpr char kStartUpSubject[] = "startUp";
inline constexpr char kInventorySubject[] = "inventory";
inline constexpr char kTableSubject[] = "table";
inline constexpr char kTokensSubject[] = "tokens";
inline constexpr char kPasswordsSubject[] = "passwords";
inline constexpr char kDrivesSubject[] = "drives";
inline constexpr char kTagsSubject[] = "tags";
inline constexpr char kIdentifiersSubject[] = "identifiers";
inline constexpr char kBatteriesSubject[] = "batteries";
inline constexpr char kBootSubject[] = "boot";
inline constexpr char kLegacyBootSubject[] = "legacyBoot";
inline constexpr char kAttributesSubject[] = "attributes";
inline constexpr char kFirmwareListsSubject[] = "firmwareLists";

class Snapshot {
 public:
  // Throws Error (kInvalidValue) for what is no snapshot.
  explicit Snapshot(Json document);
  static Snapshot FromText(const std::string& content);
  // Whether a document calls itself a snapshot.
  static bool IsOne(const Json& document);

  const Json& Document() const { return document_; }
  const Json& Machine() const;
  std::string TakenAt() const;
  bool IsSimulated() const { return document_.value("simulated", false); }
  bool IsRedacted() const { return document_.value("redacted", false); }

  // Throws the subject's error where it has no value.
  const Json& Value(const char* subject) const;
  // The subject's error, beside a value where it was read in part.
  std::optional<Error> Problem(const char* subject) const;
  // The bytes of the SMBIOS table, in the form of the firmware table service. Throws Error.
  std::vector<std::uint8_t> Table() const;

  // A list of a subject's value. Throws the error that kept it from being read.
  template <typename FromJson>
  auto List(const char* subject, const char* field, FromJson from_json) const {
    std::vector<decltype(from_json(Json()))> list;
    for (const Json& entry : Field(subject, field)) list.push_back(from_json(entry));
    return list;
  }

 private:
  const Json& Field(const char* subject, const char* field) const;

  Json document_;
};

// The error of what a snapshot does not hold.
Error NotInSnapshot(const std::string& what);
// The error of a snapshot that is malformed.
Error MalformedSnapshot(const std::string& why);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_SNAPSHOT_H_
