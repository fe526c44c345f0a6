#include "client/order.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "bytes/text.h"

namespace mira::client {
namespace {

std::vector<std::uint16_t> Named(const std::string& name, const Orderables& all) {
  std::vector<std::uint16_t> numbers;
  for (const Orderable& thing : all.things) {
    if (bytes::SameText(thing.name, name)) numbers.push_back(thing.number);
  }
  return numbers;
}

std::optional<std::uint64_t> ParseEntryNumber(const std::string& text, const Orderables& all) {
  const std::size_t prefix = all.prefix.size();
  const bool has_prefix = prefix != 0 && bytes::SameText(text.substr(0, prefix), all.prefix);
  return has_prefix ? bytes::ParseDigits(std::string_view(text).substr(prefix), 16, all.highest)
                    : bytes::ParseNumber(text, all.highest);
}

Json EntryJson(const OrderEntry& entry) {
  return entry.number ? Json(*entry.number) : Json(entry.text);
}

// What is wrong with an order, as a sentence and as a field.
struct Fault {
  const char* word;
  const char* field;
  std::string texts = "";
  Json list = Json::array();

  void Add(const std::string& text, Json value) {
    texts += (texts.empty() ? "" : ", ") + text;
    list.push_back(std::move(value));
  }
};

Error BadOrder(const Orderables& all, const std::string& target,
               std::initializer_list<Fault> faults) {
  std::string message = "The order must name every " + all.what + " of the list once.";
  for (const Fault& fault : faults) {
    if (!fault.texts.empty()) message += std::string(" ") + fault.word + ": " + fault.texts + ".";
  }
  Error error(kInvalidValue, "no-permutation", message, target);
  for (const Fault& fault : faults) error.With(fault.field, fault.list);
  return error;
}

}  // namespace

std::string NumberText(const Orderables& all, std::uint16_t number) {
  return all.write != nullptr ? all.write(number) : std::to_string(number);
}

OrderEntry ParseEntry(const std::string& text, const Orderables& all) {
  if (const auto number = ParseEntryNumber(text, all)) {
    return {text, static_cast<std::uint16_t>(*number)};
  }
  const std::vector<std::uint16_t> named = Named(text, all);
  if (named.size() == 1) return {text, named.front()};
  if (named.size() > 1) {
    std::string numbers;
    for (const std::uint16_t number : named) {
      numbers += (numbers.empty() ? "" : ", ") + NumberText(all, number);
    }
    throw Error(kInvalidValue, "ambiguous-entry", "'" + text + "' is the name of " + numbers + ".",
                text)
        .With("ambiguous", named);
  }
  const bool is_like_number = text.empty() || (text[0] >= '0' && text[0] <= '9');
  if (is_like_number) {
    throw Error(kUsage, "bad-number", "'" + text + "' is not a valid " + all.what + " number.",
                text);
  }
  return {text, std::nullopt};
}

std::vector<OrderEntry> ParseOrder(const std::vector<std::string>& texts, const Orderables& all) {
  std::vector<OrderEntry> entries;
  for (const std::string& text : texts) {
    if (!Named(text, all).empty()) {
      entries.push_back(ParseEntry(text, all));
      continue;
    }
    std::istringstream parts(text + ',');
    for (std::string part; std::getline(parts, part, ',');) {
      entries.push_back(ParseEntry(std::string(bytes::Trimmed(part, " ")), all));
    }
  }
  return entries;
}

std::vector<std::uint16_t> NumbersOf(const std::vector<OrderEntry>& entries, const Orderables& all,
                                     const std::string& target) {
  Fault unknown{"Unknown", "unknown"};
  std::vector<std::uint16_t> numbers;
  for (const OrderEntry& entry : entries) {
    if (entry.number) {
      numbers.push_back(*entry.number);
    } else {
      unknown.Add(entry.text, entry.text);
    }
  }
  if (!unknown.texts.empty()) throw BadOrder(all, target, {unknown});
  return numbers;
}

void RequirePermutation(const std::vector<OrderEntry>& entries, const Orderables& all,
                        const std::string& target) {
  Fault unknown{"Unknown", "unknown"};
  Fault missing{"Missing", "missing"};
  Fault doubled{"Doubled", "doubled"};
  std::set<std::uint16_t> seen;
  for (const OrderEntry& entry : entries) {
    const bool is_known =
        entry.number && std::any_of(all.things.begin(), all.things.end(),
                                    [&](const Orderable& t) { return t.number == *entry.number; });
    if (entry.number && !seen.insert(*entry.number).second) {
      doubled.Add(entry.text, *entry.number);
    } else if (!is_known) {
      unknown.Add(entry.text, EntryJson(entry));
    }
  }
  std::vector<Orderable> things = all.things;
  std::sort(things.begin(), things.end(),
            [](const Orderable& a, const Orderable& b) { return a.number < b.number; });
  for (const Orderable& thing : things) {
    if (seen.contains(thing.number)) continue;
    missing.Add(NumberText(all, thing.number) + " (" + thing.name + ")", thing.number);
  }
  if (unknown.texts.empty() && missing.texts.empty() && doubled.texts.empty()) return;
  throw BadOrder(all, target, {unknown, missing, doubled});
}

}  // namespace mira::client
