// The recipes of the guide for hosts do what the guide says.

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "facade/process_state.h"
#include "sim/machine.h"
#include "tests/support/recipes.h"

namespace mira {
namespace {

// What is written to a stream, as long as this lives.
class Redirected {
 public:
  explicit Redirected(std::ostream& stream) : stream_(stream), old_(stream.rdbuf(text_.rdbuf())) {}
  ~Redirected() { stream_.rdbuf(old_); }
  std::string Text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::ostream& stream_;
  std::streambuf* old_;
};

TEST(HostGuide, RecipesPrintWhatItSays) {
  EXPECT_GE(test::Recipes().size(), 10u);
  for (const test::Recipe& recipe : test::Recipes()) {
    SCOPED_TRACE(recipe.title);
    sim::Machine machine;
    {
      const sim::Session session(machine);
      const std::ios state(nullptr);
      const Redirected out(std::cout);
      const Redirected diagnostics(std::cerr);
      recipe.run();
      std::cout.copyfmt(state);
      EXPECT_EQ(out.Text(), recipe.printed);
      EXPECT_EQ(diagnostics.Text(), "");
      ResetProcessState();
    }
  }
}

}  // namespace
}  // namespace mira
