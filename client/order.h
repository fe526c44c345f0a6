#ifndef MIRA_CLIENT_ORDER_H_
#define MIRA_CLIENT_ORDER_H_

// Orders of numbered things with names, as people and programs give them.
//
//   const auto entries = ParseOrder({"3", "Windows Boot Manager", "0x0001,Boot0002"}, options);
//   RequirePermutation(entries, options, "boot order");

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/error.h"

namespace mira::client {

struct Orderable {
  std::uint16_t number = 0;
  std::string name;  // UTF-8; others may have the same
};

// What can stand in an order, and how its numbers are written.
struct Orderables {
  std::vector<Orderable> things;
  std::string what = "option";  // what one of them is called
  std::string prefix = "";      // that a hexadecimal number may have in front: "Boot"
  std::uint16_t highest = 0xFFFF;
  std::string (*write)(std::uint16_t) = nullptr;  // decimal, where missing
};
std::string NumberText(const Orderables& all, std::uint16_t number);

struct OrderEntry {
  std::string text;                     // as it was given, leading zeros and all
  std::optional<std::uint16_t> number;  // nothing where it names none of the things
};

// The thing that a text names: its number in decimal, with 0x or behind the prefix, or its name in
// any case. Throws Error for a text that can be neither, and for a name that several have.
OrderEntry ParseEntry(const std::string& text, const Orderables& all);

// The entries of an order. A text is one name, or numbers and names with commas between them.
std::vector<OrderEntry> ParseOrder(const std::vector<std::string>& texts, const Orderables& all);

// The entries' numbers. Throws Error for an entry without one.
std::vector<std::uint16_t> NumbersOf(const std::vector<OrderEntry>& entries, const Orderables& all,
                                     const std::string& target);

// Throws Error that names what keeps the entries from being a permutation of the things: in its
// details, too, as "unknown", "missing" and "doubled".
void RequirePermutation(const std::vector<OrderEntry>& entries, const Orderables& all,
                        const std::string& target);

}  // namespace mira::client

#endif  // MIRA_CLIENT_ORDER_H_
