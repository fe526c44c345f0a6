#ifndef MIRA_SIM_FIRMWARE_LAPTOP_ROWS_H_
#define MIRA_SIM_FIRMWARE_LAPTOP_ROWS_H_

// A setup attribute of the laptop as a row of its tables.

#include <cstdint>
#include <span>
#include <vector>

#include "sim/setup_attribute.h"

namespace mira::sim::laptop {

using Wide = const char16_t*;

struct Row {
  AttributeKind kind;
  const char* name;
  Wide display;
  Wide help;
  const char* choices;
  const char* default_value;
  const char* value;  // null: the default
  std::uint64_t lower;
  std::uint64_t upper;
  std::uint32_t increment = 0;
  bool read_only = false;

  // In force instead of the default.
  constexpr Row Now(const char* text) const {
    Row row = *this;
    row.value = text;
    return row;
  }
  constexpr Row ReadOnly() const {
    Row row = *this;
    row.read_only = true;
    return row;
  }
};

constexpr Row Pick(const char* name, Wide display, Wide help, const char* choices,
                   const char* default_value) {
  return {AttributeKind::kEnumeration, name, display, help, choices, default_value, nullptr, 1, 1};
}

// Up to `most` values at a time.
constexpr Row PickSome(const char* name, Wide display, Wide help, const char* choices,
                       const char* default_value, std::uint64_t most) {
  return {
      AttributeKind::kEnumeration, name, display, help, choices, default_value, nullptr, 0, most};
}

constexpr Row OnOff(const char* name, Wide display, Wide help, bool is_on) {
  return Pick(name, display, help, "Disabled|Enabled", is_on ? "Enabled" : "Disabled");
}

constexpr Row Number(const char* name, Wide display, Wide help, std::uint64_t lower,
                     std::uint64_t upper, std::uint32_t increment, const char* default_value) {
  return {AttributeKind::kInteger, name,    display, help,  "",
          default_value,           nullptr, lower,   upper, increment};
}

constexpr Row Text(const char* name, Wide display, Wide help, std::uint64_t shortest,
                   std::uint64_t longest, const char* default_value) {
  return {AttributeKind::kString, name,    display,  help,   "",
          default_value,          nullptr, shortest, longest};
}

constexpr Row Secret(const char* name, Wide display, Wide help, std::uint64_t shortest,
                     std::uint64_t longest) {
  return {AttributeKind::kPassword, name, display, help, "", "", nullptr, shortest, longest};
}

constexpr Row Order(const char* name, Wide display, Wide help, const char* sources,
                    const char* order) {
  return {AttributeKind::kBootOrder, name, display, help, sources, order, nullptr, 1, 6};
}

// `title` names the collection, beside the attribute's own name.
constexpr Row Group(const char* name, Wide display, Wide help, const char* title,
                    const char* members) {
  return {AttributeKind::kCollection, name, display, help, title, "", members, 0, 8};
}

constexpr Row OneOf(const char* name, Wide display, Wide help, const char* members,
                    const char* member) {
  return {AttributeKind::kConfigSet, name, display, help, members, "", member, 0, 0};
}

// The groups of drives, devices, USB and display.
std::vector<std::span<const Row>> DeviceGroups();
// The groups of processor, power and network.
std::vector<std::span<const Row>> PowerGroups();

}  // namespace mira::sim::laptop

#endif  // MIRA_SIM_FIRMWARE_LAPTOP_ROWS_H_
