#ifndef MIRA_CLIENT_SNAPSHOT_FIELDS_H_
#define MIRA_CLIENT_SNAPSHOT_FIELDS_H_

// What the fields of a snapshot's subjects mean, and what becomes of them where nobody may know
// whose machine it was.

#include <string>

namespace mira::client {

enum class Meaning {
  kSetting,   // what a machine is and does: what two machines are compared by
  kIdentity,  // by which one machine is told from its twins
  kReading,   // a measurement or a counter
  kMetadata,  // about the reading itself
};
// "setting", "identity", "reading", "metadata".
const char* Name(Meaning meaning);

enum class Redaction {
  kReplace,   // what is not known to be harmless: placeholders, zeros, false
  kKeep,      // a number, or a name that the program itself gives
  kCommon,    // a text that stays where it consists of common words
  kSentence,  // a sentence of the program that may quote the machine
};

struct FieldRule {
  const char* path;  // from the subject's name on; "*" for any element; "**." for any beginning
  Meaning meaning = Meaning::kSetting;
  Redaction redaction = Redaction::kReplace;
  const char* kind = "text";  // what placeholders are called
};

// The rule of a field; one that replaces a setting where none is listed. Elements of lists are "*".
const FieldRule& RuleOf(const std::string& path);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_FIELDS_H_
