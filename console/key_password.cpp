#include "console/key_password.h"

namespace mira::console {

PwdInfo::PWDTYPE KeyType(const PwdInfo& info, bool wants_class10) {
  constexpr std::uint32_t kBoth = PwdInfo::PWD_CLASS9 | PwdInfo::PWD_CLASS10;
  return wants_class10 || (info.installed & kBoth) == PwdInfo::PWD_CLASS10 ? PwdInfo::PWD_CLASS10
                                                                           : PwdInfo::PWD_CLASS9;
}

std::shared_ptr<KeySource> AddKeyOptions(CLI::App& app) {
  auto source = std::make_shared<KeySource>();
  app.add_flag("--class10", source->class10,
               "the password is the class-10 one although a class-9 one is installed");
  source->secret = AddSecretOptions(app);
  return source;
}

KeyPassword ReadKeyPassword(Context& context, const KeySource& source) {
  CMiraIntf& mira = context.Ready();
  PwdInfo info;
  mira.GetPwdInfo(info);
  KeyPassword key;
  key.type = KeyType(info, source.class10);
  if (source.secret->Given() || (info.installed & key.type) != 0) {
    key.text = ReadSecret(context, *source.secret, "Password : ");
  }
  if (context.GetOptions().what_if && !key.text.empty() &&
      mira.ValidatePwd(key.text.str(), key.type) == CPwdContext::kNoKey) {
    const StatusText& text = Explain(STATUS_SECURITY_KEY_FAILED);
    throw CommandError(text.exit_status, text.name, text.meaning, "", text.hint);
  }
  return key;
}

}  // namespace mira::console
