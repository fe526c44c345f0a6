#ifndef MIRA_CLIENT_SNAPSHOT_BOOT_NAMES_H_
#define MIRA_CLIENT_SNAPSHOT_BOOT_NAMES_H_

// Boot options by what they are called: their numbers are others on every machine.

#include <initializer_list>
#include <set>
#include <string>

#include "client/json.h"

namespace mira::client {

// The field that WithBootNames gives each option.
inline constexpr char kBootOptionKey[] = "called";

// The descriptions that several options of one list have, in one of the values of the subject.
std::set<std::string> DoubledDescriptions(std::initializer_list<const Json*> boots);

// The subject's value with orders of names: an option is called by its description, and one of the
// doubled ones by its path as well.
Json WithBootNames(const Json& boot, const std::set<std::string>& doubled);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_BOOT_NAMES_H_
