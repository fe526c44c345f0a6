#include "sim/firmware/attributes.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "bytes/text.h"

namespace mira::sim {
namespace {

constexpr std::uint16_t kFirstAttribute = 1;
constexpr std::uint16_t kFirstString = 0x1000;

constexpr std::uint8_t kAsciiText = 1;

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

}  // namespace

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

}  // namespace mira::sim
