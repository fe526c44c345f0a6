#ifndef MIRA_SIM_FIRMWARE_IDENTITY_H_
#define MIRA_SIM_FIRMWARE_IDENTITY_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "sim/firmware/fields.h"
#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"
#include "sim/profile.h"

namespace mira::sim {

// Class 11: asset tag (select 0 reads, 1 writes), service tag (2, 3), image server (4, 5),
// auxiliary MAC address (6, 7), extended tags by number (8, 9). The tags' writes are protected.
// Texts are printable ASCII.
class TagHandler : public CommandHandler {
 public:
  TagHandler(std::shared_ptr<Security> security, const Profile& profile);
  void Handle(Call& call) override;
  void Keep(Fields& fields) override;

 private:
  void WriteTag(Call& call, std::string& tag) const;
  void WriteImageServer(Call& call);
  void WriteMacAddress(Call& call);
  void HandleExtendedTag(Call& call);

  std::shared_ptr<Security> security_;
  std::string asset_tag_;
  std::string service_tag_;
  std::string image_server_;
  std::string mac_address_;
  std::map<std::uint32_t, std::string> extended_tags_;
};

// Classes 20 and 23: the ownership tag, select 0 reads, 1 writes. The area read is a length and 80
// characters filled up with blanks, the area written begins with the characters; both end with a
// NUL.
class OwnershipTagHandler : public CommandHandler {
 public:
  OwnershipTagHandler(std::shared_ptr<Security> security, std::shared_ptr<std::string> tag)
      : security_(std::move(security)), tag_(std::move(tag)) {}
  void Handle(Call& call) override;
  void Keep(Fields& fields) override { fields("ownershipTag", *tag_); }

 private:
  void Write(Call& call);

  std::shared_ptr<Security> security_;
  std::shared_ptr<std::string> tag_;
};

// Class 21: the ePPID, select 1 reads, 2 writes. The area is "PPID", its size, a zero, 23
// characters and a checksum; the characters and the checksum add up to 0x55.
class EppidHandler : public CommandHandler {
 public:
  explicit EppidHandler(std::string eppid) : eppid_(std::move(eppid)) {}
  void Handle(Call& call) override;
  void Keep(Fields& fields) override { fields("eppid", eppid_); }

 private:
  std::string eppid_;
};

// Class 26 select 1: the thin client's text; argument 1 is 0 to read it.
class ThinClientHandler : public CommandHandler {
 public:
  explicit ThinClientHandler(std::string text) : text_(std::move(text)) {}
  void Handle(Call& call) override;
  void Keep(Fields& fields) override { fields("thinClient", text_); }

 private:
  std::string text_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_IDENTITY_H_
