#include <algorithm>
#include <iterator>

#include "buffers/tag_data.h"
#include "console/call.h"
#include "console/changes.h"
#include "console/commands.h"
#include "console/key_password.h"
#include "console/passwords.h"
#include "console/text_checks.h"

namespace mira::console {
namespace {

constexpr std::uint16_t kOwnershipClasses[] = {20, 23};  // alike; either may be announced

struct Kind {
  const char* name;
  std::uint16_t cls;
  std::uint16_t read;
  std::uint16_t write;
  std::size_t longest;  // a longer text is cut; 0: as long as a call can carry
};
constexpr Kind kKinds[] = {
    {"asset", 11, 0, 1, 12},
    {"service", 11, 2, 3, 12},
    {"ownership", kOwnershipClasses[0], 0, 1, 80},
    {"extended", 11, 8, 9, 0},
};

struct Arguments {
  std::string kind;
  std::string text;
  std::string number = "0";
  std::shared_ptr<KeySource> key;
};

const Kind& FindKind(const std::string& name) {
  return *std::find_if(std::begin(kKinds), std::end(kKinds),
                       [&name](const Kind& kind) { return kind.name == name; });
}

std::vector<std::string> KindNames() {
  std::vector<std::string> names;
  for (const Kind& kind : kKinds) names.emplace_back(kind.name);
  return names;
}

// One tag of this machine.
class Tag {
 public:
  Tag(Context& context, const Kind& kind, const Arguments& a)
      : mira_(context.Ready()), kind_(kind), cls_(kind.cls) {
    if (IsExtended()) number_ = ParseNumber(a.number, "tag command value");
    if (cls_ != kOwnershipClasses[0]) return;
    if (!IsAnnounced(mira_, cls_)) cls_ = kOwnershipClasses[1];
  }

  std::string Target() const { return kind_.name + std::string(" tag"); }
  Json ToJson() const {
    Json document = {{"tag", kind_.name}};
    if (IsExtended()) document["command"] = number_;
    return document;
  }

  std::string Read() const {
    CTagData data;
    data.Arg1 = number_;
    const Status status = mira_.ExecuteDACI(cls_, kind_.read, data, "", PwdInfo::PWD_NONE);
    ThrowUnlessDone(status, data.Res1, {}, Target());
    return data.Tag.substr(0, data.Tag.find('\0'));
  }

  // The text as the firmware keeps it.
  std::string Kept(std::string text) const {
    constexpr std::size_t kRecordBesideTag = 49;
    RequireAscii(text, Target());
    if (IsExtended()) {
      const std::size_t buffer = mira_.GetACPIBufSize();
      RequireLength(text, buffer < kRecordBesideTag ? 0 : buffer - kRecordBesideTag, Target());
      return text;
    }
    text = text.substr(0, kind_.longest);
    // Ownership tags are filled up with blanks, so blanks at the end are none of theirs.
    return kind_.cls == kOwnershipClasses[0] ? text.substr(0, text.find_last_not_of(' ') + 1)
                                             : text;
  }

  void Write(const std::string& text, const KeyPassword& key) const {
    CTagData data;
    data.Arg1 = number_;
    data.Tag = text;
    const Status status = mira_.ExecuteDACI(cls_, kind_.write, data, key.text.str(), key.type);
    ThrowUnlessDone(status, data.Res1, {}, Target());
  }

 private:
  bool IsExtended() const { return kind_.longest == 0; }

  CMiraIntf& mira_;
  const Kind& kind_;
  std::uint16_t cls_;
  std::uint32_t number_ = 0;
};

ExitStatus Show(Context& context, const Arguments& a) {
  Json list = Json::array();
  Rows table;
  for (const Kind& kind : kKinds) {
    if (!a.kind.empty() && a.kind != kind.name) continue;
    const Tag tag(context, kind, a);
    Json row = tag.ToJson();
    try {
      const std::string text = ToUtf8(tag.Read());
      row["value"] = text;
      table.push_back({tag.Target(), text});
    } catch (const CommandError& error) {
      // Of several tags, one that this machine does not have is no reason to hide the others.
      if (!a.kind.empty()) throw;
      row["value"] = nullptr;
      row["problem"] = error.what();
      table.push_back({tag.Target(), std::string("(") + error.what() + ")"});
    }
    list.push_back(row);
  }
  if (context.IsJson()) {
    context.Print({{"tags", list}});
  } else {
    WriteTable(context.Out(), table);
  }
  return kDone;
}

ExitStatus Set(Context& context, const Arguments& a) {
  const Tag tag(context, FindKind(a.kind), a);
  const std::string after = tag.Kept(a.text);
  const Changes changes = {{tag.Target(), tag.Read(), after}};
  KeyPassword key;
  if (changes.front().before != after) key = ReadKeyPassword(context, *a.key);
  Json document = tag.ToJson();
  document["value"] = after;
  document["cut"] = after.size() < a.text.size();
  return MakeChanges(context, changes, document, [&] { tag.Write(after, key); });
}

}  // namespace

void AddTag(CLI::App& app, Command& command) {
  app.require_subcommand(1);
  app.footer(
      "Examples:\n  mira tag show\n  mira tag set asset NF-004712\n"
      "  mira --sim=locked tag set ownership \"Reading room\" --password-env SETUP_PW --yes");

  auto arguments = std::make_shared<Arguments>();
  CLI::App& show = *app.add_subcommand("show", "Show the tags, or one of them");
  show.add_option("KIND", arguments->kind, "asset, service, ownership or extended")
      ->check(CLI::IsMember(KindNames()));
  show.add_option("--command", arguments->number, "which extended tag: its command value");
  show.footer("Example:\n  mira --sim tag show extended --command 0 --json");
  command.Run(show, [arguments](Context& context) { return Show(context, *arguments); });

  arguments = std::make_shared<Arguments>();
  CLI::App& set = *app.add_subcommand("set", "Set a tag");
  set.add_option("KIND", arguments->kind, "asset, service, ownership or extended")
      ->required()
      ->check(CLI::IsMember(KindNames()));
  set.add_option("TEXT", arguments->text, "the new text; empty to clear the tag")->required();
  set.add_option("--command", arguments->number, "which extended tag: its command value");
  arguments->key = AddKeyOptions(set);
  set.footer(
      "Asset and service tags are cut to 12 characters, ownership tags to 80.\n"
      "Example:\n  mira --sim tag set extended \"Desk 14\" --what-if");
  command.Run(set, [arguments](Context& context) { return Set(context, *arguments); });
}

}  // namespace mira::console
