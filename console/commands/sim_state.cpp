// States of the simulated machine in files.

#include "console/commands.h"
#include "console/input_file.h"
#include "console/node_json.h"
#include "sim/node_paths.h"
#include "support/files.h"

namespace mira::console {
namespace {

// The state in a file, as the machine would have it.
sim::Node SavedState(const sim::Machine& machine, const std::string& path) {
  std::vector<std::uint8_t> content = LoadFile(path);
  bytes::SecureString text;
  text.str().assign(content.begin(), content.end());
  bytes::Wipe(content.data(), content.size());
  try {
    sim::Node tree = sim::ParseJson(text.str());
    // A kept machine's own file has this on top.
    std::erase_if(tree.Items(), [](const sim::Node& member) { return member.Name() == "stamp"; });
    sim::Machine like(machine.GetProfile());
    like.TakeState(tree);
    return like.StateTree();
  } catch (const sim::StateError& error) {
    throw Error(kInvalidValue, "bad-state",
                client::Sentence("'" + path + "' holds no state of this machine: " + error.what()),
                path);
  }
}

Json ValueOf(const sim::Node* node) { return node != nullptr ? JsonOf(*node) : Json(); }

bool IsSecretDifference(const sim::Difference& difference) {
  return (difference.before != nullptr && sim::HoldsSecret(*difference.before)) ||
         (difference.after != nullptr && sim::HoldsSecret(*difference.after));
}

Json SaveState(client::Request& request) {
  Context& context = ReadableContext(request);
  const std::string path = request.Text("file");
  const bool is_dry = context.GetOptions().what_if;
  if (!is_dry) {
    const bytes::SecureString text = context.Machine()->SaveState();
    if (const std::error_code error =
            support::WriteFileSafely(ToPath(path), text.str(), support::FileAccess::kPrivate)) {
      throw Error(kUnexpected, "not-written",
                  "The file '" + path + "' could not be written: " + error.message() + ".", path);
    }
  }
  return {{"file", path}, {"profile", context.Machine()->GetProfile().name}, {"whatIf", is_dry}};
}

Json LoadState(client::Request& request) {
  sim::Machine& machine = *ReadableContext(request).Machine();
  const sim::Node wanted = SavedState(machine, request.Text("file"));
  const sim::Node now = machine.StateTree();
  client::Step step;
  std::vector<std::string> places;
  for (const sim::Difference& difference : sim::Differences(now, wanted)) {
    const bool is_secret = IsSecretDifference(difference);
    step.changes.push_back({.target = difference.place,
                            .before = is_secret ? Json() : ValueOf(difference.before),
                            .after = is_secret ? Json() : ValueOf(difference.after),
                            .secret = is_secret});
    places.push_back(is_secret ? "" : difference.place);
  }
  step.read = [&machine, places](client::Session&) {
    const sim::Node tree = machine.StateTree();
    std::vector<Json> values;
    for (const std::string& place : places) {
      values.push_back(place.empty() ? Json() : ValueOf(sim::FindPath(tree, place)));
    }
    return values;
  };
  step.write = [&machine, &wanted](client::Session&, const client::Key&) {
    machine.LoadState(wanted);
  };
  client::Plan plan;
  plan.subject = {{"profile", machine.GetProfile().name}};
  plan.needs_key = false;
  if (!step.changes.empty()) plan.steps.push_back(std::move(step));
  return request.Carry(plan);
}

Json DiffState(client::Request& request) {
  const sim::Machine& machine = *ReadableContext(request).Machine();
  const std::string path = request.Text("file");
  const sim::Node saved = SavedState(machine, path);
  const sim::Node now = machine.StateTree();
  Json differences = Json::array();
  for (const sim::Difference& difference : sim::Differences(saved, now)) {
    differences.push_back({{"place", difference.place},
                           {"saved", ValueOf(difference.before)},
                           {"now", ValueOf(difference.after)}});
  }
  const std::size_t count = differences.size();
  Json document = {{"file", path}, {"differences", std::move(differences)}};
  if (!request.Flag("check") || count == 0) return document;
  Error error(kDiffers, "differs", std::to_string(count) + " values differ from those of the file.",
              path);
  error.document = std::move(document);
  throw error;
}

}  // namespace

std::vector<client::Command> SimStateCommands() {
  const client::Argument file = {
      .name = "file", .help = "the file", .required = true, .positional = true};
  return {
      {.name = "sim.save",
       .summary = "Save the machine's state to a file",
       .arguments = {file},
       .run = SaveState},
      {.name = "sim.load",
       .summary = "Bring the machine into a state that was saved",
       .effect = client::Effect::kChanges,
       .arguments = {file},
       .run = LoadState},
      {.name = "sim.diff",
       .summary = "Show what has changed since a state was saved",
       .arguments = {file,
                     {.name = "check",
                      .type = client::Type::kFlag,
                      .help = "end with status 12 when something differs"}},
       .run = DiffState},
  };
}

}  // namespace mira::console
