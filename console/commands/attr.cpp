#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "console/attribute_import.h"
#include "console/attributes.h"
#include "console/changes.h"
#include "console/commands.h"
#include "console/key_password.h"
#include "console/passwords.h"
#include "console/secret_input.h"

namespace mira::console {
namespace {

constexpr unsigned int kNoKey = CPwdContext::kNoKey;

// Where the BIOS password for a write comes from.
struct PasswordArguments {
  bool class10 = false;
  std::shared_ptr<SecretSource> secret;
};

void AddPasswordOptions(CLI::App& app, PasswordArguments& arguments) {
  app.add_flag("--class10", arguments.class10,
               "the password is the system (class 10) one, not the setup (class 9) one");
  arguments.secret = AddSecretOptions(app);
}

// The key for writes, where a password is installed or given. `can_do_without` leaves it to the
// firmware whether one is needed.
unsigned int ObtainKey(Context& context, CMiraIntf& mira, const PasswordArguments& a,
                       bool can_do_without) {
  PwdInfo info;
  const std::uint32_t installed =
      mira.GetPwdInfo(info) ? info.installed & (PwdInfo::PWD_CLASS9 | PwdInfo::PWD_CLASS10) : 0;
  const bool is_given = a.secret->Given();
  if (!is_given && (installed == 0 || can_do_without)) return kNoKey;
  const PwdInfo::PWDTYPE type = KeyType(info, a.class10);
  const bytes::SecureString password = ReadSecret(
      context, *a.secret,
      type == PwdInfo::PWD_CLASS10 ? "System password : " : "Setup (administrator) password : ");
  const unsigned int key = mira.ValidatePwd(password.str(), type);
  if (key == kNoKey) {
    const StatusText& text = Explain(STATUS_SECURITY_KEY_FAILED);
    throw CommandError(text.exit_status, text.name, text.meaning);
  }
  return key;
}

std::string Quoted(const Json& value) { return "'" + ValueText(value) + "'"; }

// Attributes that could not be read, while others could.
class Unreadable {
 public:
  void Add(const CommandError& error) {
    if (!first_) first_ = error;
    list_.push_back(ErrorJson(error));
  }
  bool IsEmpty() const { return !first_; }
  // Ends a command: the document, or the text that stands already, and then the error, if any.
  ExitStatus End(Context& context, Json document, bool is_any_read) const {
    if (!first_) {
      if (context.IsJson()) context.Print(document);
      return kDone;
    }
    document["unreadable"] = list_;
    if (!is_any_read) return context.Fail(*first_, document);
    return context.Fail(
        CommandError(kAppliedInPart, "read-in-part",
                     std::to_string(list_.size()) +
                         " attributes could not be read. The first: " + first_->what(),
                     first_->target, first_->hint),
        document);
  }

 private:
  std::optional<CommandError> first_;
  Json list_ = Json::array();
};

// Reads every attribute that `is_wanted` names from the firmware.
template <typename Wanted, typename Use>
Unreadable ReadEach(Attributes& attributes, Wanted is_wanted, Use use) {
  Unreadable unreadable;
  std::size_t done = 0;
  for (const AttributeEntry& entry : attributes.All()) {
    attributes.GetProgress().Show("Reading attributes", done++, attributes.All().size());
    if (!is_wanted(entry)) continue;
    try {
      use(attributes.ReadLive(entry));
    } catch (const CommandError& error) {
      unreadable.Add(error);
    }
  }
  attributes.GetProgress().Clear();
  return unreadable;
}

bool Contains(const std::string& text, const std::string& part) {
  const auto equal = [](unsigned char a, unsigned char b) {
    return std::tolower(a) == std::tolower(b);
  };
  return std::search(text.begin(), text.end(), part.begin(), part.end(), equal) != text.end();
}

// A boot order's modes now and at boot.
void AddModes(Json& item, const Json& modes, const Json& at_boot) {
  item.update(modes);
  for (const auto& [name, mode] : at_boot.items()) item[name + "AtBoot"] = mode;
}

// A long value would push what is behind it out of sight; 'mira attr get' shows it whole.
std::string Shortened(std::string text) {
  constexpr std::size_t kLongest = 36;
  if (text.size() <= kLongest) return text;
  std::size_t end = kLongest - 3;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "...";
}

ExitStatus List(Context& context, const std::string& part) {
  Attributes attributes(context);
  Json list = Json::array();
  Rows table = {{"Handle", "Name", "Type", "", "Value", "Possible"}};
  const Unreadable unreadable = ReadEach(
      attributes, [&part](const AttributeEntry& entry) { return Contains(entry.name, part); },
      [&](const Setting& setting) {
        const Json value = attributes.Value(setting);
        Json item = Identity(setting);
        item["value"] = value;
        item.update(attributes.Modes(setting));
        item.update(LimitsJson(setting));
        list.push_back(item);
        table.push_back({Hex(setting.entry->handle, 4), setting.Title(),
                         TypeName(setting.entry->type),
                         setting.entry->IsReadOnly() ? "read-only" : "",
                         Shortened(ValueText(value)), LimitsText(setting)});
      });
  if (!context.IsJson()) {
    if (list.empty()) {
      context.Out() << "(none)\n";
    } else {
      WriteTable(context.Out(), table);
    }
  }
  return unreadable.End(context, {{"attributes", list}}, !list.empty());
}

ExitStatus Get(Context& context, const std::string& name) {
  Attributes attributes(context, Attributes::Texts::kAll);
  const Setting live = attributes.ReadLive(attributes.Find(name));
  const Json value = attributes.Value(live);
  const Json modes = attributes.Modes(live);
  Json at_boot;  // null where the tables list an attribute without a value
  Json modes_at_boot = Json::object();
  try {
    const Setting setting = attributes.ReadAtBoot(*live.entry);
    at_boot = attributes.Value(setting);
    modes_at_boot = attributes.Modes(setting);
  } catch (const CommandError&) {
  }
  const bool is_pending = attributes.IsRestartPending(live);
  const Json default_value = attributes.Default(live);
  attributes.GetProgress().Clear();
  if (context.IsJson()) {
    Json document = Identity(live);
    document["displayName"] = ToUtf8(live.attribute->DisplayText);
    document["help"] = ToUtf8(live.attribute->HelpText);
    document["value"] = value;
    document["atBoot"] = at_boot;
    AddModes(document, modes, modes_at_boot);
    document["default"] = default_value;
    document["restartPending"] = is_pending;
    document.update(LimitsJson(live));
    context.Print(document);
    return kDone;
  }
  Rows rows = {{"Name", live.Title()},
               {"Handle", Hex(live.entry->handle, 4)},
               {"Type", TypeName(live.entry->type)},
               {"Display name", ToUtf8(live.attribute->DisplayText)},
               {"Help", ToUtf8(live.attribute->HelpText)},
               {"Value", ValueText(value, modes)},
               {"At boot", ValueText(at_boot, modes_at_boot)}};
  if (live.entry->IsReadOnly()) rows[2][1] += ", read-only";
  if (!default_value.is_null()) rows.push_back({"Default", ValueText(default_value)});
  rows.push_back({"Possible", LimitsText(live)});
  if (is_pending) rows.push_back({"Restart", "pending: the value at boot is another"});
  WriteTable(context.Out(), rows);
  return kDone;
}

ExitStatus Diff(Context& context) {
  Attributes attributes(context);
  Json list = Json::array();
  Rows table = {{"Handle", "Name", "At boot", "Now"}};
  bool is_any_read = false;
  const Unreadable unreadable = ReadEach(
      attributes, [](const AttributeEntry& entry) { return !entry.IsPassword(); },
      [&](const Setting& live) {
        const Json now = attributes.Value(live);
        const Json modes = attributes.Modes(live);
        const Setting start = attributes.ReadAtBoot(*live.entry);
        const Json at_boot = attributes.Value(start);
        const Json modes_at_boot = attributes.Modes(start);
        is_any_read = true;
        if (now == at_boot && modes == modes_at_boot) return;
        Json item = NameJson(live);
        item.update({{"atBoot", at_boot}, {"value", now}});
        AddModes(item, modes, modes_at_boot);
        list.push_back(std::move(item));
        table.push_back({Hex(live.entry->handle, 4), live.Title(),
                         ValueText(at_boot, modes_at_boot), ValueText(now, modes)});
      });
  if (!context.IsJson()) {
    if (list.empty()) {
      context.Out() << "Every attribute has the value that it had at boot.\n";
    } else {
      WriteTable(context.Out(), table);
    }
  }
  return unreadable.End(context, {{"differences", list}}, is_any_read);
}

struct SetArguments {
  std::string name;
  std::optional<std::string> value;
  bool force = false;
  std::shared_ptr<SecretSource> value_source;
  PasswordArguments password;
};

// The new value of a password: twice at a terminal, so that no slip of the finger locks anybody
// out.
bytes::SecureString ReadNewPassword(Context& context, const SetArguments& a) {
  bytes::SecureString text = ReadSecret(context, *a.value_source, "New value : ");
  if (!a.value_source->Given() &&
      ReadSecret(context, *a.value_source, "New value again : ").str() != text.str()) {
    throw CommandError(kInvalidValue, "not-repeated", "The two new values differ.", a.name);
  }
  return text;
}

// Puts the new value into the setting.
void TakeValue(Context& context, const Attributes& attributes, const SetArguments& a,
               Setting& setting) {
  const Limits limits = a.force ? Limits::kIgnore : Limits::kCheck;
  const std::string title = setting.Title();
  if (setting.entry->IsPassword()) {
    if (a.value) {
      throw CommandError(kUsage, "secret-on-command-line",
                         title +
                             " is a password: its value is never given on the command line, "
                             "where others can read it.",
                         title, "Give it by " + OptionNames(*a.value_source) + ".");
    }
    Json secret = ReadNewPassword(context, a).str();
    try {
      attributes.Assign(setting, secret, limits);
    } catch (...) {
      bytes::Wipe(secret.get_ref<std::string&>());
      throw;
    }
    bytes::Wipe(secret.get_ref<std::string&>());
    return;
  }
  if (!a.value && !a.value_source->Given()) {
    throw CommandError(kUsage, "usage", "A value is needed for " + title + ".", title,
                       "It takes " + LimitsText(setting) + ".");
  }
  attributes.Assign(setting, a.value ? *a.value : ReadSecret(context, *a.value_source, "").str(),
                    limits);
}

ExitStatus Set(Context& context, const SetArguments& a) {
  Attributes attributes(context);
  if (a.value && a.value_source->Given()) {
    throw CommandError(kUsage, "usage", "The value is given twice.", a.name);
  }
  Setting setting = attributes.ReadLive(attributes.Find(a.name));
  const AttributeEntry& entry = *setting.entry;
  const std::string title = setting.Title();
  if (entry.IsReadOnly() && !a.force) {
    throw CommandError(kInvalidValue, "read-only", title + " is read-only.", title,
                       "--force sends the value anyway.");
  }
  const Json before = attributes.Value(setting);
  bool is_pending = attributes.IsRestartPending(setting);
  TakeValue(context, attributes, a, setting);
  const Json wanted = attributes.Value(setting);
  const bool is_dry = context.GetOptions().what_if;
  Json document = NameJson(setting);
  document["before"] = before;
  if (is_dry) document["whatIf"] = true;
  if (!entry.IsPassword() && wanted == before && !a.force) {
    document.update({{"after", before}, {"changed", false}, {"restartPending", is_pending}});
    return ReportDone(context, title + " is " + Quoted(before) + " already.", document);
  }
  const unsigned int key = ObtainKey(context, attributes.Mira(), a.password, a.force || is_dry);
  const Changes changes = {
      {title, ValueText(before), entry.IsPassword() ? "a new password" : ValueText(wanted)}};
  attributes.GetProgress().Clear();
  if (!Approve(context, changes)) {
    if (!context.IsJson()) return ReportWhatIf(context, changes);
    document.update({{"after", wanted}, {"changed", false}, {"restartPending", is_pending}});
    context.Print(document);
    return kDone;
  }
  attributes.Write(setting, key);

  Json after = wanted;
  std::string note;
  try {
    const Setting live = attributes.ReadLive(entry);
    after = attributes.Value(live);
    is_pending = attributes.IsRestartPending(live);
  } catch (const CommandError& error) {
    note = std::string(" It was written but cannot be read again: ") + error.what();
  }
  if (is_pending && note.empty())
    note = " It differs from the value at boot: a restart is pending.";
  if (after != wanted) {
    note =
        " The firmware took " + Quoted(wanted) + " but does not show it: a restart may be needed.";
  }
  document.update({{"after", after}, {"changed", true}, {"restartPending", is_pending}});
  const std::string sentence =
      entry.IsPassword() ? title + " was changed."
                         : title + ": " + Quoted(before) + " -> " + Quoted(after) + "." + note;
  return ReportDone(context, sentence, document);
}

// Writes beside the file, which then takes its place, so that no failure costs the old one.
void Replace(const std::string& path, const Json& document) {
  std::error_code error;
  std::filesystem::path target = ToPath(path);
  // A link stays a link; what is no file, like a pipe, cannot be replaced.
  if (std::filesystem::is_symlink(target, error)) {
    target = std::filesystem::weakly_canonical(target, error);
  }
  const bool is_direct =
      std::filesystem::exists(target, error) && !std::filesystem::is_regular_file(target, error);
  std::filesystem::path written = target;
  if (!is_direct) written += ".new";
  std::ofstream file(written, std::ios::binary | std::ios::trunc);
  WriteJson(file, document);
  file.close();
  bool is_written = !file.fail();
  if (is_written && !is_direct) {
    std::filesystem::rename(written, target, error);
    is_written = !error;
  }
  if (is_written) return;
  std::error_code ignored;
  if (!is_direct) std::filesystem::remove(written, ignored);
  throw CommandError(kUnexpected, "not-written", "The file '" + path + "' could not be written.",
                     path);
}

// Passwords are left out: no value of theirs is ever shown.
ExitStatus Export(Context& context, const std::string& path) {
  Attributes attributes(context);
  Json list = Json::array();
  const Unreadable unreadable = ReadEach(
      attributes, [](const AttributeEntry& entry) { return !entry.IsPassword(); },
      [&](const Setting& setting) {
        Json item = Identity(setting);
        item["value"] = attributes.Value(setting);
        item.update(attributes.Modes(setting));
        list.push_back(std::move(item));
      });
  const std::size_t count = list.size();
  const Json content = {{"attributes", std::move(list)}};
  // A file of before is worth more than an empty one.
  const bool is_lost = count == 0 && !unreadable.IsEmpty();
  if (path == "-") {
    if (!context.IsJson() && !is_lost) context.Print(content);
    return unreadable.End(context, content, count != 0);
  }
  if (is_lost) return unreadable.End(context, {{"file", path}, {"exported", 0}}, false);
  Json whole = {{"schemaVersion", 1}};
  whole.update(content);
  Replace(path, whole);
  if (!context.IsJson()) {
    context.Out() << "Exported " << count << " attributes to " << path << ".\n";
  }
  return unreadable.End(context, {{"file", path}, {"exported", count}}, count != 0);
}

}  // namespace

void AddAttr(CLI::App& app, Command& command) {
  app.require_subcommand(1);
  app.footer(
      "NAME is an attribute's name, with or without its suffix in brackets. Where no attribute is\n"
      "called so, a number, in decimal or with 0x, is a handle.\n"
      "Examples:\n  mira attr list\n  mira attr get WakeOnLan\n"
      "  mira attr set WakeOnLan LAN --password-env SETUP_PW\n"
      "  mira attr export pc.json\n  mira attr import pc.json --dry-run\n"
      "  mira --sim=pending-attributes attr diff");

  const auto part = std::make_shared<std::string>();
  CLI::App& list = *app.add_subcommand("list", "List attributes with values and limits");
  list.add_option("PART", *part, "only those with this in their names");
  list.footer("Example:\n  mira --sim attr list usb");
  command.Run(list, [part](Context& c) { return List(c, *part); });

  const auto name = std::make_shared<std::string>();
  CLI::App& get = *app.add_subcommand("get", "Show all about one attribute");
  get.add_option("NAME", *name, "name or handle")->required();
  get.footer("Example:\n  mira --sim attr get FanFloor --json");
  command.Run(get, [name](Context& c) { return Get(c, *name); });

  const auto set_arguments = std::make_shared<SetArguments>();
  CLI::App& set = *app.add_subcommand("set", "Give an attribute a new value");
  set.add_option("NAME", set_arguments->name, "name or handle")->required();
  set.add_option("VALUE", set_arguments->value,
                 "a name, several with commas, a number, or a text; of no password");
  set.add_flag("--force", set_arguments->force,
               "send the value unchecked: the firmware alone decides");
  set_arguments->value_source = AddSecretOptions(set, "value");
  AddPasswordOptions(set, set_arguments->password);
  set.footer(
      "The value is checked against the attribute's limits before it is sent.\n"
      "Examples:\n  mira --sim attr set WakeOnLan LAN --yes\n"
      "  mira --sim attr set BootOrder \"UEFI USB Device,UEFI NVMe SSD\" --what-if\n"
      "  mira --sim=locked attr set FanFloor 20 --password-env SETUP_PW --yes\n"
      "  mira --sim attr set OwnerPassword --value-file owner.txt --yes");
  command.Run(set, [set_arguments](Context& c) { return Set(c, *set_arguments); });

  const auto path = std::make_shared<std::string>();
  CLI::App& save = *app.add_subcommand("export", "Write all values to a file, but no passwords");
  save.add_option("FILE", *path, "the file, or - for standard output")->required();
  save.footer("Example:\n  mira --sim attr export pc.json");
  command.Run(save, [path](Context& c) { return Export(c, *path); });

  const auto import_options = std::make_shared<ImportOptions>();
  const auto import_password = std::make_shared<PasswordArguments>();
  CLI::App& load = *app.add_subcommand("import", "Bring the attributes to the values of a file");
  load.add_option("FILE", import_options->file, "the file, or - for standard input")->required();
  load.add_flag("--dry-run", import_options->dry_run, "show the difference, write nothing");
  load.add_flag("--stop-on-error", import_options->stop_on_error,
                "stop at the first failure; write nothing if a value breaks a limit");
  AddPasswordOptions(load, *import_password);
  load.footer(
      "The file is an export, or one written by hand:\n"
      "  {\"attributes\": {\"WakeOnLan\": \"LAN\", \"FanFloor\": 20}}\n"
      "Example:\n  mira --sim attr import pc.json --yes");
  command.Run(load, [import_options, import_password](Context& c) {
    return ImportAttributes(c, *import_options,
                            [&c, import_password](CMiraIntf& mira, bool can_do_without) {
                              return ObtainKey(c, mira, *import_password, can_do_without);
                            });
  });

  CLI::App& diff = *app.add_subcommand("diff", "Show which values differ from those at boot");
  diff.footer("Example:\n  mira --sim=pending-attributes attr diff");
  command.Run(diff, Diff);
}

}  // namespace mira::console
