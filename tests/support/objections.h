#ifndef MIRA_TESTS_SUPPORT_OBJECTIONS_H_
#define MIRA_TESTS_SUPPORT_OBJECTIONS_H_

#include <string>
#include <vector>

namespace mira::test {

// Every objection of a simulated machine fails the test that caused it, except while an object of
// this class lives: it collects them.
class ExpectedObjections {
 public:
  ExpectedObjections();
  ~ExpectedObjections();
  ExpectedObjections(const ExpectedObjections&) = delete;
  ExpectedObjections& operator=(const ExpectedObjections&) = delete;

  // What has been collected since the last call.
  std::vector<std::string> Take();
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_OBJECTIONS_H_
