#include "sim/firmware/identity.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <string_view>

#include "bytes/text.h"

namespace mira::sim {
namespace {

constexpr std::size_t kLongestTag = 12;
constexpr std::size_t kLongestExtendedTag = 256;
constexpr std::size_t kLongestThinClientText = 19;
constexpr std::size_t kMacDigits = 12;

bool IsPrintable(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// The text of a data area that must hold its NUL; nothing when it does not, or is not printable.
std::optional<std::string> AreaText(const Call& call, unsigned index) {
  const auto area = call.DataArea(index);
  if (!area) return std::nullopt;
  bytes::Reader in(*area);
  const std::string_view text = in.CString();
  if (!in.Ok() || !IsPrintable(text)) return std::nullopt;
  return std::string(text);
}

void AnswerText(Call& call, const std::string& text, unsigned index) {
  call.AnswerData({reinterpret_cast<const std::uint8_t*>(text.c_str()), text.size() + 1}, index);
}

void AnswerTag(Call& call, const std::string& tag) {
  std::uint8_t packed[kLongestTag] = {};
  std::copy(tag.begin(),
            tag.begin() + static_cast<std::ptrdiff_t>(std::min(tag.size(), kLongestTag)), packed);
  for (unsigned i = 0; i < 3; ++i) {
    call.SetResult(2 + i, static_cast<std::uint32_t>(
                              bytes::LittleEndian(bytes::Slice(packed, std::size_t{4} * i, 4))));
  }
}

}  // namespace

TagHandler::TagHandler(std::shared_ptr<Security> security, const Profile& profile)
    : security_(std::move(security)),
      asset_tag_(profile.asset_tag),
      service_tag_(profile.service_tag),
      image_server_(profile.image_server),
      mac_address_(profile.mac_address),
      extended_tags_(profile.extended_tags) {}

void TagHandler::Keep(Fields& fields) {
  fields.Group("tags", [&] {
    fields("asset", asset_tag_)("service", service_tag_);
    fields("imageServer", image_server_)("macAddress", mac_address_);
    fields.Group("extended", [&] {
      for (auto& [number, text] : extended_tags_) fields(std::to_string(number), text);
    });
  });
}

void TagHandler::Handle(Call& call) {
  switch (call.Select()) {
    case 0:
      return AnswerTag(call, asset_tag_);
    case 1:
      return WriteTag(call, asset_tag_);
    case 2:
      return AnswerTag(call, service_tag_);
    case 3:
      return WriteTag(call, service_tag_);
    case 4:
      return AnswerText(call, image_server_, 1);
    case 5:
      return WriteImageServer(call);
    case 6:
      return AnswerText(call, mac_address_, 1);
    case 7:
      return WriteMacAddress(call);
    case 8:
    case 9:
      return HandleExtendedTag(call);
    default:
      return call.Complete(kNotSupported);
  }
}

void TagHandler::WriteTag(Call& call, std::string& tag) const {
  if (!security_->Accepts(call.Arg(4))) return call.Complete(kInvalidKey);
  std::string text;
  for (unsigned i = 0; i < kLongestTag; ++i) {
    text += static_cast<char>(call.Arg(1 + i / 4) >> (8 * (i % 4)) & 0xFF);
  }
  const std::size_t end = std::min(text.find('\0'), text.size());
  if (text.find_first_not_of('\0', end) != std::string::npos) return call.Complete(kError);
  text.resize(end);
  if (!IsPrintable(text)) return call.Complete(kError);
  tag = text;
}

void TagHandler::WriteImageServer(Call& call) {
  const auto text = AreaText(call, 1);
  if (!text) return call.Complete(kBadFormat);
  image_server_ = *text;
}

void TagHandler::WriteMacAddress(Call& call) {
  const auto text = AreaText(call, 1);
  if (!text) return call.Complete(kBadFormat);
  if (text->size() != kMacDigits || !std::all_of(text->begin(), text->end(), bytes::IsHexDigit)) {
    return call.Complete(kError);
  }
  mac_address_ = *text;
}

void TagHandler::HandleExtendedTag(Call& call) {
  constexpr std::uint16_t kRead = 8;
  const bool is_read = call.Select() == kRead;
  if (!is_read && !security_->Accepts(call.Arg(3))) return call.Complete(kInvalidKey);
  const auto found = extended_tags_.find(call.Arg(1));
  if (found == extended_tags_.end()) return call.Complete(kError);
  if (is_read) {
    call.AnswerData(bytes::AsBytes(found->second), 2);
    return;
  }
  const auto text = call.Text(2);
  if (!text) return call.Complete(kBadFormat);
  if (text->size() > kLongestExtendedTag || !IsPrintable(*text)) return call.Complete(kError);
  found->second = *text;
}

void OwnershipTagHandler::Handle(Call& call) {
  constexpr std::size_t kTextSize = 80;
  if (call.Select() == 0) {
    std::string text = *tag_;
    text.resize(kTextSize, ' ');
    AnswerText(call, text, 1);
  } else if (call.Select() == 1) {
    Write(call);
  } else {
    call.Complete(kNotSupported);
  }
}

void OwnershipTagHandler::Write(Call& call) {
  constexpr std::size_t kTextSize = 80;
  constexpr std::size_t kBlanks = 4;
  if (!security_->Accepts(call.Arg(2))) return call.Complete(kInvalidKey);
  bytes::Reader in(call.Record(), call.Arg(1));
  const std::string_view text = bytes::AsText(in.Take(kTextSize));
  const std::string_view blanks = bytes::AsText(in.Take(kBlanks));
  const std::uint8_t end = in.U8();
  if (!in.Ok() || !call.IsOffset(1) || end != 0 || !IsPrintable(text) ||
      blanks.find_first_not_of(' ') != std::string_view::npos) {
    return call.Complete(kBadFormat);
  }
  *tag_ = text.substr(0, text.find_last_not_of(' ') + 1);
}

void EppidHandler::Handle(Call& call) {
  constexpr std::uint8_t kAreaSize = 30;
  constexpr std::size_t kTextSize = 23;
  constexpr unsigned kSum = 0x55;
  constexpr std::uint16_t kWrite = 2;
  if (call.Select() < 1 || call.Select() > kWrite) return call.Complete(kNotSupported);
  bytes::Reader in(call.Record(), call.Arg(1));
  const bool is_area = bytes::AsText(in.Take(4)) == "PPID" && in.U8() == kAreaSize && in.U8() == 0;
  const std::size_t offset = in.Offset();
  const auto text = in.Take(kTextSize);
  const unsigned checksum = in.U8();
  if (!in.Ok() || !call.IsOffset(1) || !is_area) return call.Complete(kBadFormat);
  const auto sum = [](bytes::ByteSpan bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), 0u);
  };
  if (call.Select() == kWrite) {
    if (((sum(text) + checksum) & 0xFF) != kSum) return call.Complete(kBadFormat);
    eppid_ = bytes::AsText(text);
    return;
  }
  bytes::Writer out(call.Record(), offset);
  out.Bytes(bytes::AsBytes(eppid_));
  out.U8(static_cast<std::uint8_t>(kSum - sum(bytes::AsBytes(eppid_))));
  if (!out.Ok()) call.Complete(kTooSmall);
}

void ThinClientHandler::Handle(Call& call) {
  if (call.Select() != 1) return call.Complete(kNotSupported);
  if (call.Arg(1) == 0) return AnswerText(call, text_, 3);
  const auto text = AreaText(call, 3);
  if (!text) return call.Complete(kBadFormat);
  if (text->size() > kLongestThinClientText) return call.Complete(kError);
  text_ = *text;
}

}  // namespace mira::sim
