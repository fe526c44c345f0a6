#include "sim/objections.h"

namespace mira::sim {
namespace {

Objections::Observer in_force = nullptr;

}  // namespace

void Objections::Add(std::string_view operation, std::string_view why) {
  texts_.push_back(std::string(operation) + ": " + std::string(why));
  if (in_force != nullptr) in_force(texts_.back());
}

bool Objections::Accept(std::string_view operation, std::initializer_list<Argument> arguments) {
  bool accepted = true;
  for (const Argument& argument : arguments) {
    if (argument.given == argument.wanted) continue;
    accepted = false;
    Add(operation, std::string(argument.name) + " is " + std::to_string(argument.given) + ", not " +
                       std::to_string(argument.wanted));
  }
  return accepted;
}

void Objections::Observe(Observer observer) { in_force = observer; }

}  // namespace mira::sim
