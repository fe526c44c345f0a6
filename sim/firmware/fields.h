#ifndef MIRA_SIM_FIRMWARE_FIELDS_H_
#define MIRA_SIM_FIRMWARE_FIELDS_H_

// What a handler keeps, declared in one place: each value with its name. The same declaration
// writes the state, reads it back, and knows what a loss of power takes away.
//
//   void TagHandler::Keep(Fields& fields) {
//     fields("assetTag", asset_tag_)("serviceTag", service_tag_);
//     fields.Later("kioskTag", kiosk_tag_, "");   // kept since a later version
//   }
//
// A value is a number, a flag, a text, bytes, a SecureString (which every other face masks), a
// class with a Keep of its own (or a function Describe(Fields&, Class&) beside it), or an optional,
// a vector, an array or a map of these.

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "bytes/secure.h"
#include "sim/state_document.h"

namespace mira::sim {

class Fields {
 public:
  enum class Pass {
    kSave,
    kLoad,
    kLoadSome,   // what the document does not have stays as it is; numbers may be "0x1F"
    kRestart,    // late values are written
    kPowerLoss,  // late values are lost
  };

  // `root` is filled, or read.
  Fields(Pass pass, Node& root);

  bool IsLoading() const { return pass_ == Pass::kLoad || pass_ == Pass::kLoadSome; }
  // Whether the document has a value of this name here; saving, always.
  bool Has(std::string_view name) const;

  template <typename T>
  Fields& operator()(std::string_view name, T& value) {
    return pass_ == Pass::kLoadSome && !Has(name) ? *this : Must(name, value);
  }
  // A value that no document may leave out.
  template <typename T>
  Fields& Must(std::string_view name, T& value) {
    Member member(*this, name);
    Value(value);
    return *this;
  }
  // A value that earlier versions did not keep: a state of theirs, which lacks it, stands for
  // `otherwise`.
  template <typename T>
  Fields& Later(std::string_view name, T& value, const std::type_identity_t<T>& otherwise) {
    if (Has(name)) return Must(name, value);
    if (pass_ == Pass::kLoad) value = otherwise;
    return *this;
  }
  // An enumeration, by the names of its values from 0 on.
  template <typename T>
  Fields& Choice(std::string_view name, T& value, std::initializer_list<std::string_view> names);
  // The root, when the document may hold nothing but what is declared.
  template <typename Declare>
  void Whole(Declare declare) {
    Object(declare);
  }
  // Values under a name of their own.
  template <typename Declare>
  Fields& Group(std::string_view name, Declare declare) {
    if (pass_ == Pass::kLoadSome && !Has(name)) return *this;
    Member member(*this, name);
    Object(declare);
    return *this;
  }
  // The same for values that the firmware writes one after another: when power is lost in the
  // middle of a write, some are new and some old. All other values of a write are old or new
  // together.
  template <typename Declare>
  Fields& Parts(std::string_view name, Declare declare) {
    Member member(*this, name);
    MarkParts();
    Object(declare);
    return *this;
  }
  // A value that the firmware writes at the next restart; `written` is what it has written.
  template <typename T>
  Fields& Late(std::string_view name, T& value, T& written) {
    if (pass_ == Pass::kRestart) written = value;
    if (pass_ == Pass::kPowerLoss) value = written;
    return Group(name, [&] { (*this)("now", value)("written", written); });
  }
  // While loading: refuses the state unless `is_sound`. `rule` says what must be so.
  void Require(bool is_sound, std::string_view rule) const;

  // Where the groups of parts stand, "/boot/legacy", after a pass that saves.
  const std::vector<std::string>& PartGroups() const { return part_groups_; }

 private:
  // The place of a declared value, for a scope.
  class Member {
   public:
    Member(Fields& fields, std::string_view name) : fields_(fields) { fields_.Enter(name); }
    ~Member() { fields_.Leave(); }
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;

   private:
    Fields& fields_;
  };

  template <typename T>
  void Value(T& value);
  template <typename Declare>
  void Object(Declare declare) {
    BeginObject();
    declare();
    EndObject();
  }

  bool Walks() const { return pass_ == Pass::kSave || IsLoading(); }
  Node& Here() { return *places_.back().node; }
  void Enter(std::string_view name);
  void Leave();
  void EnterItem(std::size_t index);
  void BeginObject();
  void EndObject();
  void MarkParts();
  // The number of items: saving, it is `count`; loading, that of the document.
  std::size_t BeginList(std::size_t count, std::size_t most);
  bool Present(bool is_present);
  std::vector<std::string> Names() const;
  void Number(std::int64_t& number, std::int64_t lowest, std::int64_t highest);
  // Above 2^63-1, its decimal digits.
  void WideNumber(std::uint64_t& number);
  void Flag(bool& flag);
  // Every byte of the text is a character of Latin-1.
  void Text(std::string& text);
  void WideText(std::u16string& text);
  void Secret(bytes::SecureString& text);
  void Octets(std::vector<std::uint8_t>& octets);
  void Expect(Node::Kind kind, const char* what);
  [[noreturn]] void Refuse(std::string_view rule) const;
  std::string Pointer() const;

  struct Place {
    Node* node;
    std::string name;
    std::set<std::string, std::less<>> taken = {};  // members of the object
  };
  static constexpr std::size_t kMostItems = 65536;

  Pass pass_;
  Node nowhere_;
  std::vector<Place> places_;
  std::vector<std::string> part_groups_;
};

// Names for things that have numbers: a number that comes again, as on hostile machines, gets
// another name.
class NumberNames {
 public:
  std::string operator()(std::uint32_t number) {
    const std::string name = std::to_string(number);
    const int count = ++counts_[name];
    return count == 1 ? name : name + "#" + std::to_string(count);
  }

 private:
  std::map<std::string, int> counts_;
};

template <typename T>
void Fields::Value(T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    Flag(value);
  } else if constexpr (std::is_same_v<T, std::uint64_t>) {
    WideNumber(value);
  } else if constexpr (std::integral<T>) {
    using Limits = std::numeric_limits<T>;
    auto number = static_cast<std::int64_t>(value);
    Number(number, static_cast<std::int64_t>(Limits::min()),
           sizeof(T) < sizeof(std::int64_t) ? static_cast<std::int64_t>(Limits::max())
                                            : std::numeric_limits<std::int64_t>::max());
    value = static_cast<T>(number);
  } else if constexpr (std::is_same_v<T, std::string>) {
    Text(value);
  } else if constexpr (std::is_same_v<T, bytes::SecureString>) {
    Secret(value);
  } else if constexpr (std::is_same_v<T, std::vector<std::uint8_t>>) {
    Octets(value);
  } else if constexpr (std::is_same_v<T, std::u16string>) {
    WideText(value);
  } else if constexpr (requires { value.Keep(*this); }) {
    Object([&] { value.Keep(*this); });
  } else if constexpr (requires { Describe(*this, value); }) {
    Object([&] { Describe(*this, value); });
  } else if constexpr (requires { value.has_value(); }) {
    if (!Present(value.has_value())) {
      value.reset();
      return;
    }
    if (!value) value.emplace();
    Value(*value);
  } else if constexpr (requires { typename T::mapped_type; }) {
    static_assert(std::is_same_v<typename T::key_type, std::string>);
    BeginObject();
    if (IsLoading()) {
      value.clear();
      for (const std::string& name : Names()) value[name];
    }
    for (auto& [name, mapped] : value) (*this)(name, mapped);
    EndObject();
  } else if constexpr (requires { value.resize(0); }) {
    const std::size_t count = BeginList(value.size(), kMostItems);
    if (IsLoading()) {
      value.clear();  // nothing of what stood there before
      value.resize(count);
    }
    for (std::size_t i = 0; i < count; ++i) {
      EnterItem(i);
      Value(value[i]);
      Leave();
    }
  } else {
    // An array.
    if (BeginList(value.size(), value.size()) != value.size()) Refuse("items are missing");
    for (std::size_t i = 0; i < value.size(); ++i) {
      EnterItem(i);
      Value(value[i]);
      Leave();
    }
  }
}

template <typename T>
Fields& Fields::Choice(std::string_view name, T& value,
                       std::initializer_list<std::string_view> names) {
  std::string text(names.begin()[static_cast<std::size_t>(value)]);
  (*this)(name, text);
  const auto found = std::find(names.begin(), names.end(), text);
  Require(found != names.end(), "'" + text + "' is none of the names");
  if (IsLoading()) value = static_cast<T>(found - names.begin());
  return *this;
}

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_FIELDS_H_
