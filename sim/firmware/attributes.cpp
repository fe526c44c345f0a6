#include "sim/firmware/attributes.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include "bytes/text.h"

namespace mira::sim {
namespace {

constexpr std::uint16_t kFirstAttribute = 1;
constexpr std::uint16_t kFirstString = 0x1000;

constexpr std::uint8_t kAsciiText = 1;
constexpr std::uint8_t kDefaultBootConfig = 1;
constexpr std::uint8_t kOrderedWithFailThrough = 3;  // also the highest mode

// The numbers by which the tables are read.
constexpr std::uint8_t kAttributeTable = 1;
constexpr std::uint8_t kValueTable = 2;
constexpr std::uint8_t kDisplayTable = 3;
constexpr std::uint8_t kHelpTable = 4;

// Offsets in the block in which an attribute travels.
constexpr std::string_view kBlockSignature = "$ACIPLDM";
constexpr std::uint32_t kBlockVersion = 0x00020001;
constexpr std::size_t kBlockLength = 12;
constexpr std::size_t kBlockStatus = 24;  // of a read; the value follows
constexpr std::size_t kBlockValue = 24;   // of a write; the status follows

// Kinds whose choices are names of other attributes. A host finds the place of such a choice
// through the handle of that attribute, so the string of its name has the same handle.
bool ChoosesAttributes(AttributeKind kind) {
  return kind == AttributeKind::kBootOrder || kind == AttributeKind::kConfigSet;
}

bool HasText(AttributeKind kind) {
  return kind == AttributeKind::kString || kind == AttributeKind::kPassword;
}

[[noreturn]] void Refuse(const SetupAttribute& setup, const std::string& text) {
  throw std::invalid_argument("Setup attribute " + setup.name + " cannot have '" + text + "'");
}

std::uint64_t NumberOf(const SetupAttribute& setup, const std::string& text) {
  const auto number = bytes::ParseDigits(text, 10);
  if (!number) Refuse(setup, text);
  return *number;
}

// The strings of the string table: equal texts share one.
class Strings {
 public:
  void Place(std::uint16_t handle, const std::string& text) { handles_[text] = handle; }
  std::uint16_t HandleOf(const std::string& text) {
    return handles_.try_emplace(text, static_cast<std::uint16_t>(kFirstString + handles_.size()))
        .first->second;
  }
  std::vector<std::uint8_t> Table() const {
    std::map<std::uint16_t, const std::string*> texts;
    for (const auto& [text, handle] : handles_) texts[handle] = &text;
    BiosTable table;
    for (const auto& [handle, text] : texts) table.Word(handle).Text(std::string_view(*text));
    return table.Finish();
  }

 private:
  std::map<std::string, std::uint16_t> handles_;
};

bool IsPrintable(std::string_view text) {
  // Latin-1.
  return std::all_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x20 && byte <= 0x7E) || byte >= 0xA0;
  });
}

template <typename List>
bool HasDoubles(const List& list) {
  return std::set<typename List::value_type>(list.begin(), list.end()).size() != list.size();
}

}  // namespace

std::vector<std::string> Parts(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('|'), text.size());
    parts.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

AttributeHandler::AttributeHandler(std::shared_ptr<Security> security, const Profile& profile)
    : security_(std::move(security)), profile_(std::make_unique<const Profile>(profile)) {
  if (!profile.attributes.empty() || !profile.pending_attributes.empty()) Prepare();
}

void AttributeHandler::Prepare() {
  if (!profile_) return;
  const std::unique_ptr<const Profile> profile = std::move(profile_);
  std::uint16_t handle = kFirstAttribute;
  for (const SetupAttribute& setup :
       profile->attributes.empty() ? LaptopAttributes(*profile) : profile->attributes) {
    attributes_.emplace_back().setup = setup;
    attributes_.back().handle = handle++;
  }
  for (Stored& attribute : attributes_) {
    attribute.value = Encode(attribute, attribute.setup.value);
  }
  CheckRules();
  BuildTables();
  for (const auto& [name, value] : profile->pending_attributes) {
    const Stored* const changed = Find(HandleOf(name));
    if (changed == nullptr) throw std::invalid_argument("No setup attribute is called " + name);
    attributes_[changed->handle - kFirstAttribute].value = Encode(*changed, value);
  }
  for (Stored& attribute : attributes_) {
    attribute.first = attribute.value;
    attribute.first_at_start = attribute.at_start;
  }
}

void AttributeHandler::Handle(Call& call) {
  Prepare();
  switch (call.Select()) {
    case 3:
      call.AnswerData(BuildTableList(tables_));
      return;
    case 4:
      return ReadTable(call);
    case 5:
      return ReadValue(call);
    case 6:
      return WriteValue(call);
    default:
      return call.Complete(kNotSupported);
  }
}

void AttributeHandler::Reboot() {
  if (!profile_) TakeValues();
}

void AttributeHandler::Keep(Fields& fields) {
  std::map<std::string, Kept> kept;
  for (const Stored& a : attributes_) {
    if (a.value == a.first && a.at_start == a.first_at_start && a.awaited.empty()) continue;
    kept[a.setup.name] = {Decode(a, a.value), Decode(a, a.at_start), std::nullopt};
    if (!a.awaited.empty()) kept[a.setup.name].awaited = Decode(a, a.awaited);
  }
  fields("attributes", kept);
  if (!fields.IsLoading()) return;
  if (!kept.empty()) Prepare();
  for (Stored& a : attributes_) {
    a.value = a.first;
    a.at_start = a.first_at_start;
    a.awaited.clear();
  }
  for (const auto& [name, texts] : kept) {
    const std::uint16_t handle = HandleOf(name);
    fields.Require(handle != 0, "an attribute is unknown");
    Stored& a = attributes_[std::size_t{handle} - kFirstAttribute];
    try {
      a.value = Encode(a, texts.now);
      a.at_start = Encode(a, texts.at_start);
      if (texts.awaited) a.awaited = Encode(a, *texts.awaited);
    } catch (const std::logic_error& error) {
      fields.Require(false, error.what());
    }
  }
  if (!attributes_.empty()) {
    BuildAttributeTable();
    BuildValueTable();
  }
}

const AttributeHandler::Stored* AttributeHandler::Find(std::uint16_t handle) const {
  const std::size_t place = std::size_t{handle} - kFirstAttribute;
  return place < attributes_.size() ? &attributes_[place] : nullptr;
}

std::uint16_t AttributeHandler::HandleOf(std::string_view name) const {
  const auto found = std::find_if(attributes_.begin(), attributes_.end(),
                                  [name](const Stored& a) { return a.setup.name == name; });
  return found != attributes_.end() ? found->handle : 0;
}

std::vector<std::uint8_t> AttributeHandler::Positions(const Stored& attribute,
                                                      const std::string& text) const {
  std::vector<std::uint8_t> positions;
  const auto& choices = attribute.setup.choices;
  for (const std::string& part : Parts(text)) {
    const auto found = std::find(choices.begin(), choices.end(), part);
    if (found == choices.end()) Refuse(attribute.setup, part);
    positions.push_back(static_cast<std::uint8_t>(found - choices.begin()));
  }
  return positions;
}

AttributeHandler::Value AttributeHandler::Encode(const Stored& attribute,
                                                 const std::string& text) const {
  BiosTable value;
  switch (attribute.setup.kind) {
    case AttributeKind::kEnumeration:
      value.ByteList(Positions(attribute, text));
      break;
    case AttributeKind::kString:
      value.Text(text);
      break;
    case AttributeKind::kPassword:
      value.Text(std::string_view());
      break;
    case AttributeKind::kInteger:
      value.QWord(NumberOf(attribute.setup, text));
      break;
    case AttributeKind::kBootOrder: {
      const bool has_mode = text.size() > 1 && text[1] == ':';
      const int mode = has_mode ? text[0] - '0' : kOrderedWithFailThrough;
      value.Byte(kDefaultBootConfig).Byte(static_cast<std::uint8_t>(mode));
      value.ByteList(Positions(attribute, has_mode ? text.substr(2) : text));
      break;
    }
    case AttributeKind::kCollection: {
      std::vector<std::uint16_t> members;
      for (const std::string& part : Parts(text)) members.push_back(HandleOf(part));
      value.WordList(members);
      break;
    }
    case AttributeKind::kConfigSet:
      value.Bytes(Positions(attribute, text));
      break;
  }
  if (Check(attribute, value.Entries()) != WriteStatus::kDone &&
      attribute.setup.kind != AttributeKind::kPassword) {
    Refuse(attribute.setup, text);
  }
  return value.Entries();
}

std::string AttributeHandler::Decode(const Stored& attribute, const Value& value) const {
  bytes::Reader in(value);
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : "|") + part; };
  const auto add_choices = [&](bytes::ByteSpan positions) {
    for (const std::uint8_t position : positions) add(attribute.setup.choices.at(position));
  };
  switch (attribute.setup.kind) {
    case AttributeKind::kEnumeration:
      add_choices(in.Take(in.U8()));
      break;
    case AttributeKind::kString:
      text = bytes::AsText(in.Take(in.U16()));
      break;
    case AttributeKind::kPassword:
      break;
    case AttributeKind::kInteger:
      text = std::to_string(in.U64());
      break;
    case AttributeKind::kBootOrder: {
      in.U8();
      const std::uint8_t mode = in.U8();
      add_choices(in.Take(in.U8()));
      if (mode != kOrderedWithFailThrough) text = std::to_string(mode) + ":" + text;
      break;
    }
    case AttributeKind::kCollection:
      for (unsigned left = in.U8(); left > 0; --left) {
        if (const Stored* const member = Find(in.U16())) add(member->setup.name);
      }
      break;
    case AttributeKind::kConfigSet:
      add_choices(in.Rest());
      break;
  }
  if (!in.Ok()) throw std::logic_error(attribute.setup.name + " has no value of its kind");
  return text;
}

void AttributeHandler::BuildTables() {
  Strings strings;
  for (const Stored& attribute : attributes_) {
    if (!ChoosesAttributes(attribute.setup.kind)) continue;
    for (const std::string& choice : attribute.setup.choices) {
      if (HandleOf(choice) == 0) Refuse(attribute.setup, choice);
      strings.Place(HandleOf(choice), choice);
    }
  }
  BiosTable display;
  BiosTable help;
  for (Stored& attribute : attributes_) {
    const SetupAttribute& setup = attribute.setup;
    attribute.name_handle = strings.HandleOf(setup.name);
    for (const std::string& choice : setup.choices) {
      attribute.choice_handles.push_back(strings.HandleOf(choice));
    }
    display.Word(attribute.name_handle).Text(setup.display);
    help.Word(attribute.name_handle).Text(setup.help);
  }
  tables_ = {
      {ListedTable::kStrings, {}, 0, strings.Table()},
      {ListedTable::kAttributes, {}, kAttributeTable, {}},
      {ListedTable::kValues, {}, kValueTable, {}},
      {ListedTable::kStringData, ListedTable::kDisplay, kDisplayTable, display.Finish()},
      {ListedTable::kStringData, ListedTable::kHelp, kHelpTable, help.Finish()},
  };
  TakeValues();
}

void AttributeHandler::BuildAttributeTable() {
  BiosTable table;
  for (const Stored& attribute : attributes_) {
    const SetupAttribute& setup = attribute.setup;
    table.Word(attribute.handle).Byte(TypeOf(attribute)).Word(attribute.name_handle);
    if (HasText(setup.kind)) {
      table.Byte(kAsciiText).Word(setup.lower).Word(setup.upper).Text(setup.default_value);
    } else if (setup.kind == AttributeKind::kInteger) {
      table.QWord(setup.lower).QWord(setup.upper).DWord(setup.increment);
      table.QWord(NumberOf(setup, setup.default_value));
    } else if (setup.kind == AttributeKind::kCollection) {
      table.Word(attribute.choice_handles.at(0)).Byte(setup.upper).Byte(0);
    } else {
      if (setup.kind == AttributeKind::kBootOrder) {
        table.Byte(kDefaultBootConfig).Byte(kOrderedWithFailThrough);
        table.Byte(setup.lower).Byte(setup.upper);
      }
      table.WordList(attribute.choice_handles);
      if (setup.kind == AttributeKind::kEnumeration) {
        table.ByteList(Positions(attribute, setup.default_value));
      }
    }
  }
  if (kAttributeTable < tables_.size()) tables_[kAttributeTable].bytes = table.Finish();
}

void AttributeHandler::TakeValues() {
  for (Stored& attribute : attributes_) {
    if (!attribute.awaited.empty()) attribute.value = std::exchange(attribute.awaited, {});
    attribute.at_start = attribute.value;
  }
  BuildAttributeTable();
  BuildValueTable();
}

void AttributeHandler::BuildValueTable() {
  BiosTable values;
  for (const Stored& attribute : attributes_) {
    values.Word(attribute.handle).Byte(TypeOf(attribute)).Bytes(attribute.at_start);
  }
  if (kValueTable < tables_.size()) tables_[kValueTable].bytes = values.Finish();
}

void AttributeHandler::ReadTable(Call& call) const {
  const std::uint32_t index = call.Arg(3);
  const std::uint32_t received = call.Arg(4);
  const auto area = call.DataArea();
  if (!area) return call.Complete(kBadFormat);
  if (index >= tables_.size() || received >= tables_[index].bytes.size()) {
    return call.Complete(kError);
  }
  // Without room, the length is all that is asked for; else as much comes as there is room for.
  const bytes::ByteSpan rest = bytes::Slice(tables_[index].bytes, received);
  call.AnswerData(area->empty() ? rest : rest.first(std::min(rest.size(), area->size())));
}

std::optional<AttributeHandler::Request> AttributeHandler::ReadRequest(Call& call) {
  bytes::Reader in(call.Record(), call.IsOffset(1) ? call.Arg(1) : call.Record().size());
  in.U32();
  const std::size_t start = in.Offset();
  const std::string_view signature = bytes::AsText(in.Take(kBlockSignature.size()));
  in.Seek(start + kBlockLength);
  const std::uint32_t length = in.U32();
  const std::uint32_t version = in.U32();
  Request request{{}, in.U16(), in.U16()};
  if (in.Ok() && signature == kBlockSignature && version == kBlockVersion &&
      length <= call.Record().size() - start && length > kBlockStatus) {
    request.block = call.Record().subspan(start, length);
    if (ZeroSumByte(request.block) == 0) return request;
  }
  call.Complete(kBadFormat);
  return std::nullopt;
}

void AttributeHandler::ReadValue(Call& call) const {
  const auto request = ReadRequest(call);
  if (!request) return;
  const Stored* const attribute = Find(request->handle);
  const bool is_known = attribute != nullptr;
  bytes::Writer out(request->block, kBlockStatus);
  out.U8(static_cast<std::uint8_t>(is_known ? WriteStatus::kDone : WriteStatus::kUnknown));
  if (is_known) out.Bytes(attribute->value);
  if (!out.Ok() || (is_known && attribute->value.size() > request->size)) {
    return call.Complete(kTooSmall);
  }
  if (!is_known) call.Complete(kError);
}

void AttributeHandler::WriteValue(Call& call) {
  const auto request = ReadRequest(call);
  if (!request) return;
  if (request->block.size() != kBlockValue + request->size + 1) return call.Complete(kBadFormat);
  request->block.back() = static_cast<std::uint8_t>(Write(*request, call.Arg(2)));
}

WriteStatus AttributeHandler::Write(const Request& request, std::uint32_t key) {
  const Stored* const attribute = Find(request.handle);
  if (attribute == nullptr) return WriteStatus::kUnknown;
  if (!security_->Accepts(key)) return WriteStatus::kNoKey;
  if (IsReadOnly(*attribute)) return WriteStatus::kReadOnly;
  bytes::Reader in(request.block.subspan(kBlockValue, request.size));
  const std::uint8_t kind = in.U8();
  if (!in.Ok() || kind != static_cast<std::uint8_t>(attribute->setup.kind)) {
    return WriteStatus::kMalformed;
  }
  const bytes::ByteSpan value = in.Rest();
  const WriteStatus verdict = Check(*attribute, value);
  // Passwords are never given back, so there is nothing to keep.
  if (verdict == WriteStatus::kDone && attribute->setup.kind != AttributeKind::kPassword) {
    Store(attributes_[attribute->handle - kFirstAttribute], value);
  }
  return verdict;
}

WriteStatus AttributeHandler::Check(const Stored& attribute, bytes::ByteSpan value) const {
  const SetupAttribute& setup = attribute.setup;
  const auto is_within = [&setup](std::uint64_t n) { return n >= setup.lower && n <= setup.upper; };
  const auto are_choices = [&setup](bytes::ByteSpan list) {
    const bool are_known = std::all_of(list.begin(), list.end(), [&setup](std::uint8_t position) {
      return position < setup.choices.size();
    });
    return are_known && !HasDoubles(std::vector<std::uint8_t>(list.begin(), list.end()));
  };
  bytes::Reader in(value);
  bool is_good = false;
  switch (setup.kind) {
    case AttributeKind::kEnumeration: {
      const bytes::ByteSpan list = in.Take(in.U8());
      is_good = is_within(list.size()) && are_choices(list);
      break;
    }
    case AttributeKind::kString:
    case AttributeKind::kPassword: {
      const std::string_view text = bytes::AsText(in.Take(in.U16()));
      is_good = is_within(text.size()) && IsPrintable(text);
      break;
    }
    case AttributeKind::kInteger: {
      const std::uint64_t number = in.U64();
      is_good = is_within(number) &&
                (setup.increment == 0 || (number - setup.lower) % setup.increment == 0);
      break;
    }
    case AttributeKind::kBootOrder: {
      const bool is_default = in.U8() == kDefaultBootConfig;
      const bool has_mode = in.U8() <= kOrderedWithFailThrough;
      const bytes::ByteSpan list = in.Take(in.U8());
      is_good = is_default && has_mode && is_within(list.size()) && are_choices(list);
      break;
    }
    case AttributeKind::kCollection: {
      std::vector<std::uint16_t> members(in.U8());
      for (std::uint16_t& member : members) member = in.U16();
      const bool are_known = std::all_of(members.begin(), members.end(),
                                         [this](std::uint16_t m) { return Find(m) != nullptr; });
      is_good = is_within(members.size()) && are_known && !HasDoubles(members);
      break;
    }
    case AttributeKind::kConfigSet:
      is_good = in.U8() < setup.choices.size();
      break;
  }
  if (!in.Ok() || in.Left() != 0) return WriteStatus::kMalformed;
  return is_good ? WriteStatus::kDone : WriteStatus::kBadValue;
}

}  // namespace mira::sim
