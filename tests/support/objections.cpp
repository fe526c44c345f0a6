#include "tests/support/objections.h"

#include <gtest/gtest.h>

#include <utility>

#include "sim/objections.h"

namespace mira::test {
namespace {

bool expected = false;
std::vector<std::string> collected;

void Judge(const std::string& text) {
  if (expected) {
    collected.push_back(text);
  } else {
    ADD_FAILURE() << "the machine objects: " << text;
  }
}

[[maybe_unused]] const bool installed = [] {
  sim::Objections::Observe(Judge);
  return true;
}();

}  // namespace

ExpectedObjections::ExpectedObjections() {
  expected = true;
  collected.clear();
}

ExpectedObjections::~ExpectedObjections() { expected = false; }

std::vector<std::string> ExpectedObjections::Take() { return std::exchange(collected, {}); }

}  // namespace mira::test
