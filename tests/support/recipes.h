#ifndef MIRA_TESTS_SUPPORT_RECIPES_H_
#define MIRA_TESTS_SUPPORT_RECIPES_H_

#include <span>

namespace mira::test {

// A recipe of the guide for hosts, and what the guide says that it prints on the simulated laptop.
struct Recipe {
  const char* title;
  void (*run)();
  const char* printed;
};
std::span<const Recipe> Recipes();

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_RECIPES_H_
