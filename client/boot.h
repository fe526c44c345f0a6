#ifndef MIRA_CLIENT_BOOT_H_
#define MIRA_CLIENT_BOOT_H_

// The firmware's boot lists, the load options of each, and their order.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"
#include "devicepath/load_option.h"

namespace mira::client {

struct BootList {
  std::uint8_t number = 0;
  std::u16string name;
  bool is_uefi = false;  // only a list's name says of which kind it is
};
struct BootLists {
  std::vector<BootList> lists;
  bool complete = true;  // false where the answer ends before the last one that it announces
};

// Of a legacy option.
struct BootDevice {
  std::uint16_t type = 0;
  std::uint16_t status_flag = 0;
  std::string description;  // as the firmware has it
};

struct BootOption {
  std::optional<std::uint16_t> number;  // nothing for one from a file
  std::uint32_t attributes = 0;
  std::u16string description;
  std::vector<devicepath::Path> paths;  // of a UEFI option: what is started, then the loader's own
  std::optional<BootDevice> device;     // of a legacy one
  std::vector<std::uint8_t> optional_data;
  std::optional<devicepath::Problem> problem;        // why it cannot be taken apart as a whole
  std::optional<std::uint32_t> variable_attributes;  // of a file that has them in front

  bool IsActive() const { return (attributes & devicepath::LoadOption::kActive) != 0; }
};

struct BootOptions {
  BootList list;
  std::vector<std::uint16_t> order;
  std::vector<BootOption> options;  // in boot order, those that it leaves out at the end
  bool complete = true;             // false where the answer ends before the last option
};

// `kind` ("uefi" or "legacy") says what the options are where the lists' names do not.
BootLists ReadBootLists(Session& session, const std::string& kind = "");
// The list of a name, in any case, or of a number. Throws Error where there is none.
BootList FindBootList(const BootLists& lists, const std::string& text);
BootOptions ReadBootOptions(Session& session, const BootList& list);

// The plan to put a list into an order: option numbers (decimal, 0x, Boot####) and descriptions,
// several in one text with commas between them. Throws Error, which names unknown, missing and
// doubled ones, unless each option stands in it once; with `force` only for those without a number.
Plan PlanBootOrder(Session& session, const std::string& list,
                   const std::vector<std::string>& entries, bool force = false);
// The plan to put one option to the front. Without a list the option must be in one list alone.
Plan PlanBootFirst(Session& session, const std::string& entry, const std::string& list = "");

// The option in a file: bytes, or hexadecimal. Throws Error where there is none; one with a
// malformed path is taken apart as far as that goes.
BootOption DecodeBootOption(const std::string& content);
// The same for device paths alone.
std::vector<devicepath::Path> DecodeBootPaths(const std::string& content);

// What the BIOS boot specification calls a device type: "floppy", "network"; "type 0x7".
std::string BootDeviceName(std::uint16_t type);

// A text in UTF-16: a string, or, where that cannot say it all, with its bytes (UTF-16LE).
Json WideTextJson(std::u16string_view text);

// The text of either form.
std::u16string WideTextFromJson(const Json& json);

// {"list", "name", "kind"}
Json ToJson(const BootList& list);
BootList BootListFromJson(const Json& json);
// {"number", "active", "attributes", "description", "path", "paths", "device", "optionalData",
// "optionalDataText", "problem"}
Json ToJson(const BootOption& option);
BootOption BootOptionFromJson(const Json& json);
// {"text", "bytes", "problem"}
Json ToJson(const devicepath::Path& path);
// The list's fields with {"complete", "order", "options"}.
Json ToJson(const BootOptions& options);
BootOptions BootOptionsFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_BOOT_H_
