#include <algorithm>

#include "buffers/uefi_boot_data.h"
#include "bytes/text.h"
#include "bytes/utf16.h"
#include "client/boot.h"
#include "client/call.h"
#include "client/order.h"

namespace mira::client {
namespace {

constexpr callif::Command kWriteOrder = {3, 12};
constexpr std::uint32_t kKeyArgument = 3;

constexpr CodeMeaning kOrderMeanings[] = {
    {-1, kRefused, "order-refused",
     "The firmware refused the order. It takes every option of the list exactly once."},
};

using OrderNumbers = std::vector<std::uint16_t>;

std::string OptionNumber(std::uint16_t number) { return "0x" + bytes::HexNumber(number, 4); }

Orderables OptionsOf(const BootOptions& present) {
  Orderables all{.things = {}, .prefix = "Boot", .write = OptionNumber};
  for (const BootOption& option : present.options) {
    all.things.push_back({*option.number, bytes::Utf8(option.description)});
  }
  return all;
}

std::string TargetOf(const BootList& list) {
  return "boot order of list " + std::to_string(list.number) + " (" + bytes::Utf8(list.name) + ")";
}

void WriteOrder(Session& session, const BootList& list, const OrderNumbers& order, const Key& key) {
  CUEFILOList data;
  data.ListEnum = list.number;
  data.IsUEFI = list.is_uefi;
  data.BootOrder = order;
  data.Count = static_cast<std::uint32_t>(order.size());
  data.KeyArgIndex = kKeyArgument;
  Execute(session, kWriteOrder, data,
          {.target = TargetOf(list), .meanings = kOrderMeanings, .key = &key});
}

Plan PlanFor(const BootOptions& present, const OrderNumbers& order) {
  const BootList list = present.list;
  Plan plan;
  plan.subject = ToJson(list);
  plan.steps.push_back(
      {.changes = {{.target = TargetOf(list), .before = present.order, .after = order}},
       .read = [list](Session& s) { return std::vector<Json>{ReadBootOptions(s, list).order}; },
       .write = [list, order](Session& s, const Key& key) { WriteOrder(s, list, order, key); }});
  return plan;
}

void RequireComplete(const BootOptions& present) {
  if (present.complete) return;
  throw Error(kUnexpected, "malformed-answer",
              "The firmware's answer is malformed, so the order cannot be checked.",
              TargetOf(present.list));
}

bool Holds(const BootOptions& present, std::uint16_t number) {
  return std::any_of(present.options.begin(), present.options.end(),
                     [number](const BootOption& option) { return option.number == number; });
}

// A list and the entry in it.
struct Place {
  BootOptions present;
  std::uint16_t number;
};

Place FindOption(Session& session, const std::string& text, const std::string& list_text) {
  BootLists lists = ReadBootLists(session);
  if (!list_text.empty()) lists.lists = {FindBootList(lists, list_text)};
  std::vector<Place> places;
  for (const BootList& list : lists.lists) {
    BootOptions present = ReadBootOptions(session, list);
    const OrderEntry entry = ParseEntry(text, OptionsOf(present));
    if (!entry.number || !Holds(present, *entry.number)) continue;
    places.push_back({std::move(present), *entry.number});
  }
  if (places.size() == 1) return std::move(places.front());
  if (places.empty()) {
    throw Error(kNotFound, "no-option", "There is no boot option '" + text + "'.", text);
  }
  std::string names;
  Json found = Json::array();
  for (const Place& place : places) {
    const BootList& list = place.present.list;
    names += (names.empty() ? "" : ", ") + std::to_string(list.number) + " (" +
             bytes::Utf8(list.name) + ")";
    found.push_back(ToJson(list));
  }
  throw Error(kInvalidValue, "ambiguous-option",
              "'" + text + "' is an option of several lists: " + names + ".", text)
      .With("lists", std::move(found));
}

}  // namespace

Plan PlanBootOrder(Session& session, const std::string& list_text,
                   const std::vector<std::string>& texts, bool force) {
  const BootList list = FindBootList(ReadBootLists(session), list_text);
  const BootOptions present = ReadBootOptions(session, list);
  const Orderables all = OptionsOf(present);
  const std::vector<OrderEntry> entries = ParseOrder(texts, all);
  const std::string target = TargetOf(list);
  if (!force) {
    RequireComplete(present);
    RequirePermutation(entries, all, target);
  }
  Plan plan = PlanFor(present, NumbersOf(entries, all, target));
  plan.force = force;
  Json given = Json::array();
  for (const OrderEntry& entry : entries) given.push_back(entry.text);
  plan.subject["given"] = std::move(given);
  return plan;
}

Plan PlanBootFirst(Session& session, const std::string& text, const std::string& list) {
  const Place place = FindOption(session, text, list);
  RequireComplete(place.present);
  OrderNumbers order = place.present.order;
  std::erase(order, place.number);
  order.insert(order.begin(), place.number);
  return PlanFor(place.present, order);
}

}  // namespace mira::client
