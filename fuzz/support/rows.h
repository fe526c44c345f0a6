#ifndef MIRA_FUZZ_SUPPORT_ROWS_H_
#define MIRA_FUZZ_SUPPORT_ROWS_H_

// What the targets choose from by a byte of their input. New rows go to the end: the kept inputs
// count on the numbers of the others.

#include <cstdint>
#include <utility>

namespace mira::fuzz {

// Commands that read a file.
struct FileCommand {
  const char* name;
  const char* file_argument;
  const char* arguments = "{}";
};
// Those that change something only check: the machine is the same for every input.
inline constexpr FileCommand kFileCommands[] = {
    {"smbios", "file"},
    {"inventory", "file"},
    {"boot.decode", "file"},
    {"boot.decode", "file", R"({"path": true})"},
    {"boot.encode", "path"},
    {"attr.import", "file", R"({"whatIf": true})"},
    {"battery.set", "from", R"({"whatIf": true})"},
};

// Commands of a whole session.
struct SessionRow {
  const char* command;
  const char* arguments = "{}";
};
inline constexpr SessionRow kSessionRows[] = {
    {"info"},
    {"tokens"},
    {"attr.list"},
    {"attr.export"},
    {"attr.set", R"({"name": "WakeOnLan=LAN", "more": ["FanFloor=30"]})"},
    {"attr.reset", R"({"all": true})"},
    {"boot.list"},
    {"boot.show"},
    {"boot.order", R"({"list": "1", "order": ["0,1,2"], "force": true})"},
    {"boot.first", R"({"option": "1"})"},
    {"boot.legacy.show"},
    {"boot.legacy.set", R"({"ipl": ["3,1,0,2"], "bcv": ["0,1,2,3"]})"},
    {"tag.show"},
    {"tag.set", R"({"kind": "asset", "value": "A-1"})"},
    {"tag.set", R"({"kind": "ownership", "value": "Lab"})"},
    {"id.mac.show"},
    {"id.eppid.show"},
    {"id.thin-client.show"},
    {"id.image-server.show"},
    {"battery.show", R"({"battery": "all"})"},
    {"battery.set", R"({"mode": "custom", "start": 50, "stop": 80})"},
    {"hdd.list"},
    {"hdd.verify", R"({"handle": 1})"},
    {"hdd.set", R"({"handle": 1})"},
    {"hdd.clear", R"({"handle": 1})"},
    {"password.status"},
    {"password.verify", R"({"class": 9})"},
    {"password.change", R"({"class": 9})"},
    {"log"},
    {"thermal"},
    {"call", R"({"class": 17, "select": 22})"},
    {"call", R"({"class": 3, "select": 11, "arg1": 1})"},
};

// Commands that are answered anything: class and select.
inline constexpr std::pair<std::uint16_t, std::uint16_t> kReplyCommands[] = {
    {0, 0},  {10, 11}, {10, 28}, {10, 13}, {10, 14}, {11, 0},  {11, 6},  {11, 8},  {20, 0},
    {21, 1}, {26, 1},  {8, 18},  {8, 18},  {17, 5},  {17, 16}, {17, 18}, {17, 22}, {17, 24}};

}  // namespace mira::fuzz

#endif  // MIRA_FUZZ_SUPPORT_ROWS_H_
