#include "sim/firmware/tokens.h"

#include <string>

namespace mira::sim {
namespace {

constexpr std::uint16_t kLastSelect = 2;
constexpr std::uint32_t kLargestValue = 0xFFFF;

}  // namespace

TokenStore::TokenStore(const std::vector<Token>& tokens) {
  for (const Token& token : tokens) values_[token.location] = {token.value, token.value};
}

TokenStore::Value* TokenStore::Find(std::uint32_t location) {
  const auto found = values_.find(location);
  return found != values_.end() ? &found->second : nullptr;
}

void TokenStore::Reboot() {
  for (auto& [location, value] : values_) value.current = value.pending;
}

void TokenStore::Keep(Fields& fields) {
  fields.Group("tokens", [&] {
    for (auto& [location, value] : values_) fields(std::to_string(location), value);
  });
}

void TokenReadHandler::Handle(Call& call) {
  if (call.Select() > kLastSelect) return call.Complete(kNotSupported);
  const TokenStore::Value* const value = store_->Find(call.Arg(1));
  if (value == nullptr) return call.Complete(kError);
  call.SetResult(2, call.Select() == 0 ? value->pending : value->current);
}

void TokenWriteHandler::Handle(Call& call) {
  if (call.Select() > kLastSelect) return call.Complete(kNotSupported);
  if (!security_->Accepts(call.Arg(3))) return call.Complete(kInvalidKey);
  TokenStore::Value* const value = store_->Find(call.Arg(1));
  if (value == nullptr || call.Arg(2) > kLargestValue) return call.Complete(kError);
  value->pending = call.Arg(2);
}

}  // namespace mira::sim
