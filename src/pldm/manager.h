#ifndef MIRA_PLDM_MANAGER_H_
#define MIRA_PLDM_MANAGER_H_

// The attribute store of a facade: the tables read at start-up, and the reads and writes of single
// attributes. See the facade's operations of the same names.
//
//   Manager manager({calling, buffer_size, instance_key}, false, false);
//   manager.Load();
//   if (manager.IsSupported()) manager.GetAttributeValue(attribute);

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <utility>

#include "callif/one_call.h"
#include "pldm/aci_info2_record.h"
#include "pldm/attribute.h"

namespace mira::pldm {

// How an operation on an attribute ended.
struct AttributeResult {
  enum Kind {
    kDone,
    kFailed,
    kNotSupported,  // no tables are loaded
    kNotFound,
    kNoKey,       // a password was given but no security key could be obtained for it
    kCancelled,   // through the progress callback
    kMalformed,   // the answer ends within the value
    kCallFailed,  // `code` is the completion code
    kAnswered,    // `code` is the firmware's status of a write
  };
  Kind kind = kDone;
  std::int32_t code = 0;
};

class Manager {
 public:
  // Display and help strings are fetched when an attribute is first read, if they are wanted.
  Manager(const callif::Target& target, bool wants_display_strings, bool wants_help_strings);
  ~Manager();
  Manager(const Manager&) = delete;
  Manager& operator=(const Manager&) = delete;

  // Fetches the tables. False when it was cancelled. After that, and after an exception, the store
  // is of no use.
  bool Load();

  // Without tables the lists stay untouched and everything else is kNotSupported.
  bool IsSupported() const { return record_ != nullptr; }
  void GetAttributeHandlesAndTypes(
      std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>>& out) const;
  void GetAttributeNamesAndTypes(
      std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>>& out) const;
  AttributeResult GetAttributeName(std::uint16_t handle, std::string& name) const;
  PLDM::ATTRIBUTE_TYPE GetAttributeType(std::uint16_t handle) const;
  AttributeResult GetAttributeValue(PLDM::Attribute& attr);
  AttributeResult GetAttributeValueAtBoot(PLDM::Attribute& attr);
  AttributeResult GetAttributeValueAtBoot(std::uint16_t handle, std::string& value) const;
  AttributeResult SetAttributeValue(PLDM::Attribute& attr, const std::string& password,
                                    bool class10, std::uint32_t key);
  AttributeResult GetAttributeDefault(std::uint16_t handle, std::string& value) const;
  AttributeResult GetPossibleValues(std::uint16_t handle, std::list<std::string>& names) const;

 private:
  const IntPLDMAttribute* Find(std::uint16_t handle) const;
  // kNotSupported, kNotFound, or the attribute.
  AttributeResult Find(std::uint16_t handle, const IntPLDMAttribute*& attribute) const;
  // The handle of the attribute that the caller named; makes an empty value to be exchanged.
  AttributeResult Resolve(PLDM::Attribute& attr);
  enum Source { kLive, kAtBoot };
  AttributeResult Fill(PLDM::Attribute& attr, Source source);
  // False when it was cancelled.
  bool FetchStrings(StringKind kind);
  bool ObtainKey(const std::string& password, bool class10, std::uint32_t key);

  callif::Target target_;
  std::uint32_t key_ = 0;  // stays in force until a call brings another
  std::unique_ptr<CACIInfo2Record> record_;
  bool wants_display_strings_;
  bool wants_help_strings_;
};

}  // namespace mira::pldm

#endif  // MIRA_PLDM_MANAGER_H_
