#include "console/face.h"

namespace mira::console {
namespace {

using client::Readable;

void Status(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& p : document.at("passwords")) {
    rows.push_back({Readable(p.at("class")), Readable(p.at("installed")),
                    Readable(p.at("maxLength")), Readable(p.at("secondLength"))});
  }
  RenderList(out, {"Class", "Installed", "Longest", "Second length"}, rows, {0, 2, 3});
}

void Right(const Json& document, std::ostream& out) {
  out << "The class-" << Readable(document.at("class")) << " password is right.\n";
}

void Changed(const Json& document, std::ostream& out) {
  const Json& change = document.at("changes").at(0);
  if (change.at("outcome") != "changed") return RenderChanges(document, out);
  const std::string after = Readable(change.at("after"));
  const bool is_removed = after == "not installed" || after == "no password";
  out << "The " << Escaped(Readable(change.at("target")))
      << (is_removed ? " was removed.\n" : " was changed.\n");
}

void ListDrives(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& drive : document.at("drives")) {
    rows.push_back({Hex(drive.at("handle").get<unsigned>(), 2), Readable(drive.at("description"))});
  }
  RenderList(out, {"Handle", "Description"}, rows);
}

void DriveRight(const Json& document, std::ostream& out) {
  out << "The password of drive " << Hex(document.at("handle").get<unsigned>(), 2)
      << " is right.\n";
}

}  // namespace

std::vector<Face> PasswordFaces() {
  return {
      {"password.status", "  mira --sim=locked password status --json", Status},
      {"password.verify",
       "  mira --sim=locked password verify --class 9\n"
       "  mira --sim=locked password verify --class 10 --password-env SYSTEM_PW",
       Right},
      {"password.change",
       "  mira --sim=locked password change --class 9 --password-env OLD --new-password-env NEW "
       "--yes\n"
       "  mira password change --class 9 --password-file old.txt --new-password-file new.txt "
       "--yes",
       Changed},
      {"hdd.list", "  mira --sim hdd list --json", ListDrives},
      {"hdd.verify", "  mira --sim=locked hdd verify 1", DriveRight},
      {"hdd.set", "  mira --sim hdd set 1 --new-password-env DRIVE_PW --yes", Changed},
      {"hdd.clear",
       "  mira --sim=locked hdd clear 1 --what-if\n"
       "  mira --sim=locked hdd clear 1 --password-env DRIVE_PW --admin-password-env SETUP_PW "
       "--yes",
       Changed},
  };
}

}  // namespace mira::console
