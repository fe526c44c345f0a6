#include <iostream>
#include <memory>
#include <optional>

#include "buffers/buffer.h"
#include "buffers/buffer_factory.h"
#include "buffers/prompt_input.h"
#include "buffers/secret_prompt.h"
#include "bytes/reader.h"
#include "bytes/text.h"
#include "callif/commands.h"
#include "client/call.h"
#include "console/commands.h"
#include "console/hints.h"
#include "console/secret_input.h"
#include "console/terminal.h"

namespace mira::console {
namespace {

struct Arguments {
  std::string cls;
  std::string select;
  std::string key_arg;
  bool class10 = false;
  std::shared_ptr<SecretSource> secret;
};

// The buffers ask and show on the standard streams. Where the console was given others, these take
// their place for a scope.
class StandardStreams {
 public:
  explicit StandardStreams(Context& context)
      : in_before_(std::cin.rdbuf(context.In().rdbuf())),
        out_before_(std::cout.rdbuf(context.Out().rdbuf())) {}
  ~StandardStreams() {
    std::cin.rdbuf(in_before_);
    std::cout.rdbuf(out_before_);
  }
  StandardStreams(const StandardStreams&) = delete;
  StandardStreams& operator=(const StandardStreams&) = delete;

 private:
  std::streambuf* in_before_;
  std::streambuf* out_before_;
};

// Passwords that the buffers ask for do not show at the terminal, for a scope.
class QuietSecrets {
 public:
  QuietSecrets() {
    buffers::SetEchoSwitch([](bool shows) {
      if (!shows) {
        hidden_.emplace();
      } else if (hidden_) {
        // The line end was typed unseen.
        if (hidden_->IsOff()) WriteToTerminal("\n");
        hidden_.reset();
      }
    });
  }
  ~QuietSecrets() {
    buffers::SetEchoSwitch(nullptr);
    hidden_.reset();
  }
  QuietSecrets(const QuietSecrets&) = delete;
  QuietSecrets& operator=(const QuietSecrets&) = delete;

 private:
  static inline std::optional<NoEcho> hidden_;
};

constexpr char kNoCall[] = "No call was made.";

Error InputEnded() {
  return WithHint(Error(kUsage, "input-ended", "The input ended before everything was answered."),
                  kNoCall);
}

std::uint32_t NumberOf(const std::string& text, const std::string& what, std::uint32_t largest,
                       std::uint32_t smallest = 0) {
  const auto value = bytes::ParseNumber(text, largest);
  if (value && *value >= smallest) return static_cast<std::uint32_t>(*value);
  throw WithHint(Error(kUsage, "bad-number", "'" + text + "' is not a " + what + ".", text),
                 "A number from " + std::to_string(smallest) + " to " + std::to_string(largest) +
                     " is wanted, in decimal or with 0x.");
}

class TestConsole {
 public:
  // `key_argument` is the argument word that receives the key, 1 to 4; 0 for none.
  TestConsole(Context& context, CCallingInterface& calling, std::uint32_t key,
              std::uint32_t key_argument)
      : context_(context),
        mira_(context.GetSession().Ready()),
        out_(context.Out()),
        key_(key),
        key_argument_(key_argument),
        calling_(calling) {}

  // Asks for class and select until an empty line is typed, or the input ends behind a whole call.
  ExitStatus Loop() {
    out_ << "Each call: a class and a select, in decimal or with 0x, then what the command asks.\n"
            "An empty line instead of a class ends.\n";
    for (bool made_one = false;; made_one = true) {
      std::string line;
      out_ << "\nClass : " << std::flush;
      if (!std::getline(context_.In(), line)) {
        if (!made_one) throw InputEnded();
        out_ << '\n';
        return kDone;
      }
      if (line.empty() || line == "\r") return kDone;
      try {
        const std::uint16_t cls = Number(line, "command class");
        out_ << "Select : " << std::flush;
        if (!std::getline(context_.In(), line)) throw InputEnded();
        MakeCall(cls, Number(line, "select"));
      } catch (const Error& error) {
        if (error.name == "input-ended") throw;
        out_ << error.what() << ' ' << HintOf(error, context_.GetOptions()) << '\n';
      }
    }
  }

  ExitStatus Call(const std::string& cls, const std::string& select) {
    return MakeCall(Number(cls, "command class"), Number(select, "select"));
  }

 private:
  // A buffer with the record made of the answers.
  struct Prompted {
    std::unique_ptr<CBuffer> buffer;
    SMBiosCI* record;
  };

  ExitStatus MakeCall(std::uint16_t cls, std::uint16_t select) {
    if (cls != callif::kUncheckedClass && !client::IsAnnounced(mira_, cls)) {
      throw WithHint(Error(kNotSupported, "not-supported",
                           "The firmware does not announce class " + std::to_string(cls) + ".",
                           std::to_string(cls)),
                     "'mira info' lists the classes that it announces.");
    }
    std::uint32_t size = 0;
    Prompted call = Prompt(cls, select, key_, size, true);
    if (callif::IsProbed({cls, select}) && !context_.GetOptions().what_if) {
      const SMBiosCI asked = *call.record;
      Send(call);
      bytes::Reader answer(call.buffer->Record(), transport::kFixedRecordSize);
      size = answer.U32();
      if (!answer.Ok()) throw Error(kUnexpected, "no-size", "The answer gives no size.");
      out_ << "The answer takes " << size << " bytes.\n";
      // The call itself, with room for the answer and the words that were typed.
      call = Prompt(cls, select, key_, size, false);
      call.record->cbArg1 = asked.cbArg1;
      call.record->cbArg2 = asked.cbArg2;
      call.record->cbArg3 = asked.cbArg3;
      call.record->cbArg4 = asked.cbArg4;
    }
    PlaceKey(*call.record);
    if (context_.GetOptions().what_if) {
      out_ << "A record of " << call.buffer->Record().size() << " bytes. It was not sent.\n";
      return kDone;
    }
    const Status status = Send(call);
    context_.SetDone(WhatWasDone::kCalled);
    call.buffer->DisplayOutputBuffer();
    if (client::IsLockedOut({cls, select}, call.record->cbRES1)) out_ << client::kLockedOut;
    out_ << std::endl;
    return status == STATUS_SUCCESS ? kDone : client::ExitOf(call.record->cbRES1);
  }

  // The prompts ask for no place, so only commands with a fixed one carry the key by themselves.
  void PlaceKey(SMBiosCI& record) const {
    std::uint32_t* const words[] = {nullptr, &record.cbArg1, &record.cbArg2, &record.cbArg3,
                                    &record.cbArg4};
    if (key_argument_ != 0) *words[key_argument_] = key_;
  }

  static std::uint16_t Number(std::string text, const char* what) {
    if (text.ends_with('\r')) text.pop_back();
    constexpr std::uint32_t kLargest = 0xFFFF;
    return static_cast<std::uint16_t>(NumberOf(text, what, kLargest));
  }

  Prompted Prompt(std::uint16_t cls, std::uint16_t select, std::uint32_t key, std::uint32_t& size,
                  bool asks) {
    const std::string command = std::to_string(cls) + "/" + std::to_string(select);
    Prompted prompted{std::unique_ptr<CBuffer>(CreateBuffer(cls, select, mira_.GetACPIBufSize())),
                      nullptr};
    if (!prompted.buffer) {
      throw WithHint(Error(kNotSupported, "not-supported",
                           "The library has no command " + command + ".", command),
                     "");
    }
    if (!TraitsOf(cls, select).has_prompts) {
      throw WithHint(
          Error(kNotSupported, "no-prompts", "Command " + command + " has no prompts.", command),
          "'mira --help' lists the commands that make such calls.");
    }
    const QuietSecrets quiet;
    prompted.record = prompted.buffer->PromptInputBuffer(key, size, asks);
    if (prompted.record != nullptr) return prompted;
    if (buffers::InputEnded()) throw InputEnded();
    throw WithHint(Error(kInvalidValue, "no-record",
                         "Command " + command + " cannot be made of these answers.", command),
                   kNoCall);
  }

  Status Send(const Prompted& call) {
    const CCallingInterface::Status status =
        calling_.Execute(*call.record, mira_.GetACPIBufSize(), mira_.GetACPIInstanceName());
    return status == CCallingInterface::STATUS_SUCCESS ? STATUS_SUCCESS : STATUS_FAILURE;
  }

  Context& context_;
  CMiraIntf& mira_;
  std::ostream& out_;
  std::uint32_t key_;
  std::uint32_t key_argument_;
  CCallingInterface& calling_;
};

std::uint32_t ReadKey(Context& context, const Arguments& a) {
  CMiraIntf& mira = context.GetSession().Ready();
  PwdInfo info;
  mira.GetPwdInfo(info);
  const PwdInfo::PWDTYPE type = client::KeyType(info, a.class10);
  bytes::SecureString password;
  const bool is_installed = (info.installed & type) != 0;
  if (a.secret->Given() || (!a.key_arg.empty() && is_installed)) {
    password = ReadSecret(context, *a.secret, "Password : ");
  } else if (context.IsInteractive() && is_installed) {
    password = ReadSecret(context, *a.secret, "Password (empty: calls carry no key) : ");
  }
  if (password.empty()) return 0;
  const std::uint32_t key = mira.ValidatePwd(password.str(), type);
  if (key == CPwdContext::kNoKey) {
    throw client::KeyError();
  }
  return key;
}

ExitStatus RunTestConsole(Context& context, const Arguments& a) {
  if (context.GetOptions().IsForPrograms() || context.GetOptions().quiet) {
    throw WithHint(Error(kUsage, "usage", "The test console is for people.", "console"),
                   "'mira call --json' is for programs.");
  }
  context.CheckMachine();
  CCallingInterface* const calling = client::FindCallingInterface(context.GetSession().Ready());
  if (calling == nullptr) {
    throw Error(kNotSupported, "no-calling-interface", "This PC offers no calling interface.");
  }
  constexpr std::uint32_t kArguments = 4;
  const std::uint32_t key_argument =
      a.key_arg.empty() ? 0 : NumberOf(a.key_arg, "number of an argument word", kArguments, 1);
  const std::uint32_t key = ReadKey(context, a);
  const StandardStreams streams(context);
  TestConsole console(context, *calling, key, key_argument);
  return a.cls.empty() ? console.Loop() : console.Call(a.cls, a.select);
}

}  // namespace

void AddConsole(CLI::App& app, Command& command) {
  auto arguments = std::make_shared<Arguments>();
  CLI::Option* const cls = app.add_option("CLASS", arguments->cls, "command class");
  CLI::Option* const select =
      app.add_option("SELECT", arguments->select, "select within the class")->needs(cls);
  cls->needs(select);
  app.add_option("--key-arg", arguments->key_arg,
                 "the argument word (1 to 4) that receives the security key, whatever was typed");
  app.add_flag("--class10", arguments->class10, "the password is the class-10 one, not class 9's");
  arguments->secret = AddSecretOptions(app);
  app.footer(
      "Without CLASS and SELECT, asks for them, call after call.\n"
      "Examples:\n  mira console\n  mira --sim=pre-boot console 10 7\n"
      "  mira --sim=locked console 3 12 --key-arg 3");
  command.Run(app, [arguments](Context& context) { return RunTestConsole(context, *arguments); });
}

}  // namespace mira::console
