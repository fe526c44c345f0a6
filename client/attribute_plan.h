#ifndef MIRA_CLIENT_ATTRIBUTE_PLAN_H_
#define MIRA_CLIENT_ATTRIBUTE_PLAN_H_

// Changes of BIOS attributes, alike for one value, for many, for a file and for the defaults.

#include <memory>
#include <optional>
#include <string>

#include "client/attribute_value.h"
#include "client/plan.h"

namespace mira::client {

// The attributes that a plan reads and writes, and the security key for its writes: obtained with
// the first, so that a wrong password is tried once.
class AttributeWriter {
 public:
  explicit AttributeWriter(Session& session, Session::Texts texts = Session::Texts::kNone)
      : session_(session), attributes_(session, texts) {}

  Attributes& All() { return attributes_; }
  // Throws Error.
  void Write(const Setting& setting, const Key& key);

 private:
  Session& session_;
  Attributes attributes_;
  std::optional<std::uint32_t> security_key_;
  std::optional<Error> key_error_;
};
using AttributeWriterPtr = std::shared_ptr<AttributeWriter>;

// The same as NameJson, also of an attribute that cannot be read now.
Json NameOf(Attributes& attributes, const AttributeEntry& entry);

// What one attribute is to become.
struct AttributeWish {
  const AttributeEntry* entry = nullptr;
  Json value = nullptr;         // wiped by whoever made it, where it is a password
  Json modes = Json::object();  // of a boot order, what of ModesJson is to change
  Limits limits = Limits::kCheck;
};

// The step that writes it: the value's change, and one of each mode that is wished for. Throws
// Error for what the attribute cannot become.
Step PlanAttribute(const AttributeWriterPtr& writer, const AttributeWish& wish);
// A step that stands for an entry of which the error says why it is impossible. The entry's
// attribute is null where there is none.
Step ImpossibleStep(Attributes& attributes, const AttributeEntry* entry, const std::string& target,
                    const Error& error);

// The plan to give the attribute its default. Throws Error where the tables have none.
Step PlanDefault(const AttributeWriterPtr& writer, const AttributeEntry& entry);

}  // namespace mira::client

#endif  // MIRA_CLIENT_ATTRIBUTE_PLAN_H_
