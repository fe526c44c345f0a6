#ifndef CONFIGURATION_H_
#define CONFIGURATION_H_

// A small configuration application: gives a PC its asset tag, its boot order and a few BIOS
// attributes, and reports what became of each.
//
//   Configuration wanted;
//   wanted.asset_tag = "NF-0042";
//   for (const Item& item : Configure(wanted, password)) Print(item);

#include <string>
#include <utility>
#include <vector>

struct Configuration {
  std::string asset_tag;
  std::string boot_order;  // of the UEFI list: "0001,0000,…"
  std::vector<std::pair<std::string, std::string>> attributes;
};

enum class Outcome {
  kDone,     // the value is there
  kNotDone,  // the old one still is
  kUnknown   // nobody knows: the PC did not answer
};

struct Item {
  std::string what;  // "asset tag", "boot order", an attribute's name
  Outcome outcome = Outcome::kUnknown;
  std::string why;  // the PC's words for an item that is not done
};

// An item for each value. Never throws: a PC that cannot be opened is in the report, too.
std::vector<Item> Configure(const Configuration& wanted, const std::string& password) noexcept;

#endif  // CONFIGURATION_H_
