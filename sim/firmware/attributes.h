#ifndef MIRA_SIM_FIRMWARE_ATTRIBUTES_H_
#define MIRA_SIM_FIRMWARE_ATTRIBUTES_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sim/attribute_tables.h"
#include "sim/firmware/fields.h"
#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"
#include "sim/profile.h"

namespace mira::sim {

// The verdict on a write, a byte of its answer.
enum class WriteStatus : std::uint8_t {
  kDone = 0,
  kBadValue = 1,  // bounds, increment, length, characters, no possible value
  kReadOnly = 2,
  kUnknown = 3,    // no attribute has this handle
  kMalformed = 4,  // of another type, or the entry's own lengths do not fit
  kNoKey = 5,      // a password is installed and the security key is none or wrong
};

// The parts of a text of SetupAttribute.
std::vector<std::string> Parts(std::string_view text);

// The setup attributes of the laptop.
std::vector<SetupAttribute> LaptopAttributes(const Profile& profile);

// Class 5: the list of the BIOS tables (select 3), a table or a part of it (4), an attribute's
// value in force (5), a new value (6; argument 2 is the security key). A new value shows at once;
// the tables keep those of the last start.
class AttributeHandler : public CommandHandler {
 public:
  // Throws std::invalid_argument for attributes of the profile whose texts do not fit together.
  AttributeHandler(std::shared_ptr<Security> security, const Profile& profile);
  void Handle(Call& call) override;
  void Reboot() override;
  void Keep(Fields& fields) override;

 private:
  // A value as the tables and the answers hold it, behind handle and type.
  using Value = std::vector<std::uint8_t>;
  struct Stored {
    SetupAttribute setup;
    std::uint16_t handle = 0;
    std::uint16_t name_handle = 0;
    std::vector<std::uint16_t> choice_handles;
    Value value;
    Value at_start;  // what the tables say
    Value awaited;   // taken, to show at the next start; empty: none
    Value first;     // both on a new machine
    Value first_at_start;
  };
  // What is kept of an attribute that is no longer as on a new machine: texts as in a profile.
  struct Kept {
    std::string now;
    std::string at_start;
    std::optional<std::string> awaited;
    void Keep(Fields& fields) {
      fields("now", now)("atStart", at_start);
      if (fields.IsLoading() ? fields.Has("awaited") : awaited.has_value()) {
        fields("awaited", awaited);
      }
    }
  };
  // The block in which an attribute is named and its value travels.
  struct Request {
    std::span<std::uint8_t> block;
    std::uint16_t handle;
    std::uint16_t size;  // of the value, or the room for it
  };

  static constexpr std::uint8_t kDefaultBootConfig = 1;
  static constexpr std::uint8_t kOrderedWithFailThrough = 3;  // also the highest mode

  // Throw std::invalid_argument for a text that is no value of the attribute.
  [[noreturn]] static void Refuse(const SetupAttribute& setup, const std::string& text);
  static std::uint64_t NumberOf(const SetupAttribute& setup, const std::string& text);

  // Takes the profile's attributes, at the first call at the latest: most machines get none.
  void Prepare();
  // Throws std::invalid_argument for rules that name what there is not.
  void CheckRules();
  bool IsReadOnly(const Stored& attribute) const;
  std::uint8_t TypeOf(const Stored& attribute) const;
  // What is kept of a value that is written.
  Value Normal(const Stored& attribute, bytes::ByteSpan value) const;
  void Store(Stored& attribute, bytes::ByteSpan value);
  // The tables' texts; the table of attributes, whose read-only marks may change.
  void BuildTables();
  void BuildAttributeTable();
  // The machine starts: the tables take the values of now.
  void TakeValues();
  void BuildValueTable();
  void ReadTable(Call& call) const;
  void ReadValue(Call& call) const;
  void WriteValue(Call& call);
  WriteStatus Write(const Request& request, std::uint32_t key);
  // Nothing, the call being completed, when the record holds no sound block.
  static std::optional<Request> ReadRequest(Call& call);

  const Stored* Find(std::uint16_t handle) const;
  std::uint16_t HandleOf(std::string_view name) const;
  // What stands for a text of SetupAttribute.
  Value Encode(const Stored& attribute, const std::string& text) const;
  // The text that stands for a value. A boot order may begin with the number of its mode.
  std::string Decode(const Stored& attribute, const Value& value) const;
  std::vector<std::uint8_t> Positions(const Stored& attribute, const std::string& text) const;
  WriteStatus Check(const Stored& attribute, bytes::ByteSpan value) const;

  std::shared_ptr<Security> security_;
  std::unique_ptr<const Profile> profile_;  // until it is prepared
  std::vector<Stored> attributes_;
  std::vector<ListedTable> tables_;
  bool has_locks_ = false;  // an attribute depends on another
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_ATTRIBUTES_H_
