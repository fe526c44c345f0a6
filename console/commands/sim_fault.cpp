// Faults of the simulated machine, and its journal.

#include <algorithm>
#include <stdexcept>

#include "bytes/text.h"
#include "console/commands.h"
#include "console/node_json.h"
#include "sim/fault_file.h"
#include "sim/firmware/fields.h"

namespace mira::console {
namespace {

constexpr std::uint64_t kLongestDelay = 20000;  // ms; others wait for the machine meanwhile

Error BadFault(const char* argument, const std::string& message) {
  return Error(kInvalidValue, "bad-fault", message, argument);
}

// A number of 32 bits that may be signed: "-1", "4294967295", "0xFFFFFFFF".
std::optional<std::int32_t> Signed32(client::Request& request, const char* name) {
  if (!request.Has(name)) return std::nullopt;
  const std::string text = request.Text(name);
  const bool is_negative = text.starts_with('-');
  const auto number = bytes::ParseNumber(std::string_view(text).substr(is_negative ? 1 : 0));
  if (!number || *number > (is_negative ? 0x80000000U : 0xFFFFFFFFU)) {
    throw BadFault(name, "'" + text + "' is no number of 32 bits.");
  }
  const auto word = static_cast<std::uint32_t>(*number);
  return static_cast<std::int32_t>(is_negative ? 0U - word : word);
}

// "20=ffffffff": an offset into the reply, and bytes.
void TakeOverwrite(const std::string& text, sim::Fault& fault) {
  const std::size_t sign = text.find('=');
  const auto at = bytes::ParseNumber(text.substr(0, sign));
  const auto octets = sign == std::string::npos
                          ? std::nullopt
                          : bytes::ParseHexText(std::string_view(text).substr(sign + 1));
  if (!at || *at > 0xFFFFFFFFU || !octets || octets->empty()) {
    throw BadFault("corrupt", "'" + text + "' is no offset with bytes, like 20=ffffffff.");
  }
  fault.overwrite_at = static_cast<std::uint32_t>(*at);
  fault.overwrite = *octets;
}

// A name's place among the choices of an argument.
template <typename Enumeration>
Enumeration Chosen(const std::string& name, std::initializer_list<const char*> choices,
                   Enumeration otherwise) {
  const auto found = std::find(choices.begin(), choices.end(), name);
  return found != choices.end() ? static_cast<Enumeration>(found - choices.begin()) : otherwise;
}

sim::Fault FaultOf(client::Request& request) {
  sim::Fault fault;
  fault.operation = sim::Faults::NameOf(request.Text("operation"));
  fault.nth = static_cast<int>(request.Number("nth", 1));
  fault.completion = Signed32(request, "completion");
  fault.result = Signed32(request, "hresult");
  fault.delay = std::chrono::milliseconds(request.Number("delay"));
  if (request.Has("truncate")) {
    fault.truncate = static_cast<std::uint32_t>(request.Number("truncate"));
  }
  if (request.Has("corrupt")) TakeOverwrite(request.Text("corrupt"), fault);
  fault.loss =
      Chosen(request.Text("lose"), {"nothing", "connection", "power"}, sim::Loss::kNothing);
  fault.moment =
      Chosen(request.Text("moment"), {"before", "within", "after"}, sim::Moment::kBefore);
  if (!sim::Faults::DoesSomething(fault)) throw BadFault("operation", "The fault does nothing.");
  return fault;
}

Json FaultJson(sim::SharedFault shared) {
  sim::Node node;
  sim::Fields fields(sim::Fields::Pass::kSave, node);
  fields.Whole([&] { Describe(fields, shared); });
  return JsonOf(node);
}

// What the kept machine's files refuse.
template <typename Work>
auto WithFiles(Context& context, Work work) {
  try {
    return work();
  } catch (const sim::StateError& error) {
    throw Error(kUnexpected, "machine-not-kept",
                client::Sentence("The simulated machine's files cannot be used: " +
                                 std::string(error.what())),
                PathText(context.MachineFile()));
  }
}

Json AddFault(client::Request& request) {
  Context& context = ReadableContext(request);
  const sim::Fault fault = FaultOf(request);
  const bool is_dry = context.GetOptions().what_if;
  sim::SharedFault added;
  added.number = 1;
  added.fault = fault;
  try {
    sim::Faults::Check(fault);
    sim::KeptMachine* const kept = context.KeptMachine();
    if (kept != nullptr && !is_dry) {
      added = WithFiles(context, [&] { return kept->GetFaults().Add(fault); });
    }
  } catch (const std::invalid_argument& error) {
    throw BadFault("operation", "'" + fault.operation +
                                    "' cannot fail like that: " + std::string(error.what()) + ".");
  }
  return {{"whatIf", is_dry}, {"fault", FaultJson(added)}};
}

Json ListFaults(client::Request& request) {
  Context& context = SimulatedContext(request);
  Json faults = Json::array();
  if (sim::KeptMachine* const kept = context.KeptMachine()) {
    for (sim::SharedFault& fault : WithFiles(context, [&] { return kept->GetFaults().List(); })) {
      faults.push_back(FaultJson(std::move(fault)));
    }
  }
  return {{"faults", std::move(faults)}};
}

Json ClearFaults(client::Request& request) {
  Context& context = SimulatedContext(request);
  sim::KeptMachine* const kept = context.KeptMachine();
  const bool is_dry = context.GetOptions().what_if;
  std::optional<std::uint32_t> number;
  if (request.Has("number")) number = static_cast<std::uint32_t>(request.Number("number"));
  std::size_t count = 0;
  if (kept != nullptr) {
    count = WithFiles(context, [&]() -> std::size_t {
      if (!is_dry) return kept->GetFaults().Clear(number);
      const auto faults = kept->GetFaults().List();
      return static_cast<std::size_t>(std::count_if(
          faults.begin(), faults.end(),
          [&](const sim::SharedFault& fault) { return !number || fault.number == *number; }));
    });
  }
  if (number && count == 0) {
    throw Error(kNotFound, "no-such-fault",
                "There is no fault with the number " + std::to_string(*number) + ".", "number");
  }
  return {{"whatIf", is_dry}, {"cleared", count}};
}

Json Journal(client::Request& request) {
  Context& context = SimulatedContext(request);
  sim::KeptMachine* const kept = context.KeptMachine();
  const bool clears = request.Flag("clear") && !context.GetOptions().what_if;
  Json entries = Json::array();
  if (kept != nullptr) {
    for (const sim::Node& entry : WithFiles(context, [&] { return kept->Journal(); })) {
      entries.push_back(JsonOf(entry));
    }
    if (clears) {
      WithFiles(context, [&] { kept->ClearJournal(); });
    }
  }
  return {{"entries", std::move(entries)}, {"cleared", clears}};
}

}  // namespace

std::vector<client::Command> SimFaultCommands() {
  using client::Type;
  return {
      {.name = "sim.fault.add",
       .summary = "Let a call fail, in every program that uses the machine",
       .arguments = {{.name = "operation",
                      .help = "CLASS/SELECT, 'firmware' for every call, or a service like "
                              "IWbemServices::ExecMethod",
                      .required = true,
                      .positional = true},
                     {.name = "nth",
                      .type = Type::kNumber,
                      .help = "which call fails, counted from now on; 0: every call (default: 1)",
                      .max = 1000000},
                     {.name = "completion",
                      .help = "completion code of the answer; the call is not executed"},
                     {.name = "hresult", .help = "what the service returns, like 0x80041001"},
                     {.name = "delay",
                      .type = Type::kNumber,
                      .help = "milliseconds that the call takes",
                      .max = kLongestDelay},
                     {.name = "truncate",
                      .type = Type::kNumber,
                      .help = "bytes that are left of the reply"},
                     {.name = "corrupt", .help = "bytes written over the reply, OFFSET=HEX"},
                     {.name = "lose", .help = "what is lost", .choices = {"connection", "power"}},
                     {.name = "moment",
                      .help = "when it is lost: before the call, within its write, or after it",
                      .choices = {"before", "within", "after"}}},
       .run = AddFault},
      {.name = "sim.fault.list",
       .summary = "List the faults, and how often they were hit",
       .run = ListFaults},
      {.name = "sim.fault.clear",
       .summary = "Remove a fault, or all of them",
       .arguments = {{.name = "number",
                      .type = Type::kNumber,
                      .help = "the fault's number, as listed",
                      .positional = true,
                      .min = 1}},
       .run = ClearFaults},
      {.name = "sim.journal",
       .summary = "Show the calls and WMI operations that were made",
       .arguments = {{.name = "clear", .type = Type::kFlag, .help = "empty it afterwards"}},
       .run = Journal},
  };
}

}  // namespace mira::console
