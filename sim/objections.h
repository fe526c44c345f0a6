#ifndef MIRA_SIM_OBJECTIONS_H_
#define MIRA_SIM_OBJECTIONS_H_

// What the simulated machine objects to: calls that a real system would not take, or whose
// arguments are not those that this interface is used with. The caller gets an error; the objection
// tells why.
//
//   for (const std::string& text : machine.GetObjections().Texts()) std::cerr << text << '\n';

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace mira::sim {

// An argument of a service, and the only value that it is used with.
struct Argument {
  const char* name;
  std::int64_t given;
  std::int64_t wanted;
};

class Objections {
 public:
  using Observer = void (*)(const std::string& text);

  void Add(std::string_view operation, std::string_view why);
  // Adds an objection for each argument that is not as wanted; true when there is none.
  bool Accept(std::string_view operation, std::initializer_list<Argument> arguments);
  // "OPERATION: why", in the order of the calls.
  const std::vector<std::string>& Texts() const { return texts_; }

  // Told of the objections of all machines of the process; null: nobody is.
  static void Observe(Observer observer);

 private:
  std::vector<std::string> texts_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_OBJECTIONS_H_
