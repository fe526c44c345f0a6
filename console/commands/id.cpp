#include <algorithm>
#include <cctype>
#include <iterator>
#include <memory>

#include "buffers/aux_mac_buffer.h"
#include "buffers/buffer_factory.h"
#include "buffers/eppid_buffer.h"
#include "buffers/tag_data.h"
#include "bytes/reader.h"
#include "bytes/writer.h"
#include "console/call.h"
#include "console/changes.h"
#include "console/commands.h"
#include "console/passwords.h"
#include "console/text_checks.h"

namespace mira::console {
namespace {

template <std::size_t N>
std::string TextOf(const std::array<char, N>& field) {
  const std::string text(field.data(), field.size());
  return text.substr(0, text.find('\0'));
}

// One call, or the error that it ended with.
void Execute(CMiraIntf& mira, std::uint16_t cls, std::uint16_t select, CSimpleTokenData& data,
             const char* target) {
  const Status status = mira.ExecuteDACI(cls, select, data, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, data.Res1, {}, target);
}

constexpr char kMac[] = "auxiliary MAC address";

std::string ReadMac(CMiraIntf& mira) {
  CMACAddr data;
  Execute(mira, 11, 6, data, kMac);
  return TextOf(data.MAC);
}

std::string CheckMac(std::string text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::erase_if(text, [](char c) { return c == ':' || c == '-'; });
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  });
  if (text.size() != std::tuple_size_v<decltype(CMACAddr::MAC)> ||
      text.find_first_not_of(kDigits) != std::string::npos) {
    throw CommandError(kInvalidValue, "not-a-mac-address",
                       "A MAC address has 12 hexadecimal digits, such as 02:A1:B2:C3:D4:E5.", kMac);
  }
  return text;
}

void WriteMac(CMiraIntf& mira, const std::string& text) {
  CMACAddr data;
  std::copy(text.begin(), text.end(), data.MAC.begin());
  Execute(mira, 11, 7, data, kMac);
}

constexpr char kEppid[] = "ePPID";

std::string ReadEppid(CMiraIntf& mira) {
  CEPPID data;
  Execute(mira, 21, 1, data, kEppid);
  return TextOf(data.EPPID);
}

std::string CheckEppid(std::string text) {
  constexpr std::size_t kSize = std::tuple_size_v<decltype(CEPPID::EPPID)>;
  RequireAscii(text, kEppid);
  if (text.size() == kSize) return text;
  throw CommandError(kInvalidValue, "wrong-length",
                     "An ePPID has " + std::to_string(kSize) + " characters, not " +
                         std::to_string(text.size()) + ".",
                     kEppid);
}

void WriteEppid(CMiraIntf& mira, const std::string& text) {
  CEPPID data;
  std::copy(text.begin(), text.end(), data.EPPID.begin());
  Execute(mira, 21, 2, data, kEppid);
}

constexpr char kImageServer[] = "image server";

// Only the console form of the request has room for the text: this program is the console, and
// instead of answering the prompt it reads and writes the record.
class ImageServerCall {
 public:
  ImageServerCall(CMiraIntf& mira, std::uint16_t select)
      : mira_(mira), buffer_(CreateBuffer(kClass, select, mira.GetACPIBufSize())) {
    std::uint32_t size = 0;
    record_ = buffer_ ? buffer_->PromptInputBuffer(0, size, false) : nullptr;
  }

  void SetText(const std::string& text) { bytes::Writer(buffer_->Record(), kText).Text(text); }
  std::string Text() const {
    bytes::Reader in(buffer_->Record(), kText);
    return std::string(in.FixedText(in.Left()));
  }

  void Send() {
    CCallingInterface* const calling = FindCallingInterface(mira_);
    if (record_ == nullptr || !IsAnnounced(mira_, kClass)) {
      ThrowUnlessDone(STATUS_NOT_SUPPORTED, 0, {}, kImageServer);
    } else if (calling->Execute(*record_, mira_.GetACPIBufSize(), mira_.GetACPIInstanceName()) !=
               CCallingInterface::STATUS_SUCCESS) {
      ThrowUnlessDone(STATUS_FAILURE, record_->cbRES1, {}, kImageServer);
    }
  }

 private:
  static constexpr std::uint16_t kClass = 11;
  static constexpr std::size_t kText = 48;  // offset in the record

  CMiraIntf& mira_;
  std::unique_ptr<CBuffer> buffer_;
  SMBiosCI* record_;
};

std::string ReadImageServer(CMiraIntf& mira) {
  ImageServerCall call(mira, 4);
  call.Send();
  return call.Text();
}

std::string CheckImageServer(std::string text) {
  constexpr std::size_t kLongest = 511;
  RequireAscii(text, kImageServer);
  RequireLength(text, kLongest, kImageServer);
  return text;
}

void WriteImageServer(CMiraIntf& mira, const std::string& text) {
  ImageServerCall call(mira, 5);
  call.SetText(text);
  call.Send();
}

constexpr char kThinClient[] = "thin client";

std::string ReadThinClient(CMiraIntf& mira) {
  CThinClientInfo data;
  Execute(mira, 26, 1, data, kThinClient);
  return data.Tag;
}

std::string CheckThinClient(std::string text) {
  constexpr std::size_t kLongest = 19;
  RequireAscii(text, kThinClient);
  RequireLength(text, kLongest, kThinClient);
  return text;
}

void WriteThinClient(CMiraIntf& mira, const std::string& text) {
  CThinClientInfo data;
  data.Arg1 = 1;
  data.Tag = text;
  Execute(mira, 26, 1, data, kThinClient);
}

struct Item {
  const char* name;
  const char* title;
  const char* example;
  std::string (*read)(CMiraIntf& mira);
  std::string (*check)(std::string text);  // gives the text in the firmware's form
  void (*write)(CMiraIntf& mira, const std::string& text);
};
constexpr Item kItems[] = {
    {"mac", kMac, "02:A1:B2:C3:D4:E5", ReadMac, CheckMac, WriteMac},
    {"eppid", kEppid, "NF0F4D1K4873461Q0012A00", ReadEppid, CheckEppid, WriteEppid},
    {"image-server", kImageServer, "images.example", ReadImageServer, CheckImageServer,
     WriteImageServer},
    {"thin-client", kThinClient, "kiosk-08", ReadThinClient, CheckThinClient, WriteThinClient},
};

struct Arguments {
  std::string verb = "show";
  std::string text;
};

ExitStatus Run(Context& context, const Item& item, const Arguments& a, bool has_text) {
  const bool is_show = a.verb == "show";
  if (is_show == has_text) {
    throw CommandError(kUsage, "usage", is_show ? "'show' takes no text." : "'set' takes a text.",
                       item.name, std::string("'mira id ") + item.name + " --help' shows how.");
  }
  CMiraIntf& mira = context.Ready();
  if (is_show) {
    const std::string text = ToUtf8(item.read(mira));
    return ReportDone(context, text, {{"item", item.name}, {"value", text}});
  }
  const std::string after = item.check(a.text);
  const Changes changes = {{item.title, item.read(mira), after}};
  return MakeChanges(context, changes, {{"item", item.name}, {"value", after}},
                     [&] { item.write(mira, after); });
}

}  // namespace

void AddId(CLI::App& app, Command& command) {
  app.require_subcommand(1);
  app.footer("Examples:\n  mira id mac\n  mira id thin-client set kiosk-08 --yes");
  for (const Item& item : kItems) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& sub = *app.add_subcommand(item.name, std::string("Show or set the ") + item.title);
    sub.add_option("VERB", arguments->verb, "show (the default) or set")
        ->check(CLI::IsMember({"show", "set"}));
    const CLI::Option* const text = sub.add_option("TEXT", arguments->text, "the new value");
    const std::string start = std::string("  mira --sim id ") + item.name;
    sub.footer("Examples:\n" + start + " show --json\n" + start + " set " + item.example +
               " --what-if");
    command.Run(sub, [arguments, text, &item](Context& context) {
      return Run(context, item, *arguments, text->count() > 0);
    });
  }
}

}  // namespace mira::console
