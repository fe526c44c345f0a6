#include "client/start_up.h"

#include <algorithm>
#include <iterator>

#include "bytes/text.h"
#include "client/call.h"
#include "client/commands.h"
#include "client/snapshot/snapshot.h"
#include "smbios/table.h"
#include "transport/operation_report.h"

namespace mira::client {
namespace {

struct Explanation {
  mira::Step step;
  const char* done;     // of the start-up's steps
  const char* meaning;  // of a failure
  const char* advice;
};
constexpr Explanation kExplanations[] = {
    {mira::Step::kAdministratorCheck, "This user's administrator rights are in force.",
     "This user has no administrator rights, or they are not in force.",
     "Start the program as administrator."},
    {mira::Step::kComInitialisation, "Windows' component services are set up for this thread.",
     "Windows' component services could not be set up.",
     "Restart the program; if that does not help, restart Windows."},
    {mira::Step::kComSecurity, "The security settings that the library needs are in force.",
     "Windows refused the security settings that the library needs.",
     "Another part of the program may have set them before; start the library first."},
    {mira::Step::kWmiLocator, "Windows Management Instrumentation is available.",
     "Windows Management Instrumentation is not available.",
     "Check that the service 'Windows Management Instrumentation' runs."},
    {mira::Step::kWmiConnection, "The management namespace ROOT\\WMI is open.",
     "The management namespace ROOT\\WMI could not be opened.",
     "Check that the service 'Windows Management Instrumentation' runs and that this user may use "
     "it."},
    {mira::Step::kProxyBlanket, "The connection has its security settings.",
     "Windows refused the security settings of the connection.",
     "Check that the service 'Windows Management Instrumentation' runs."},
    {mira::Step::kSmbiosTable, "The machine's SMBIOS table was read.",
     "The machine's SMBIOS table could not be read.",
     "A virtual machine may have none; update the firmware of a real one."},
    {mira::Step::kWmiInstance, "The calling interface that the firmware publishes was found.",
     "The firmware publishes no calling interface to Windows.",
     "This PC's firmware may not have one, or has it switched off in its setup. SMBIOS works all "
     "the same."},
    {mira::Step::kBufferSize, "The firmware says how much a call may carry.",
     "The firmware does not say how much a call may carry.",
     "The firmware may be too old: update it."},
    {mira::Step::kInstanceKey, "The name that addresses the firmware's interface was read.",
     "The firmware's interface has a name that cannot be used.", "Update the firmware."},
    {mira::Step::kFirmwareFlags, "The firmware says that it takes calls from Windows.",
     "The firmware says that it takes no calls from Windows.",
     "Switch it on in the firmware's setup, or update the firmware. SMBIOS works all the same."},
    {mira::Step::kBufferFix, "The firmware is recent enough for calls from Windows.",
     "The firmware is too old: its calls from Windows are known not to work.",
     "Update the firmware. SMBIOS works all the same."},
    {mira::Step::kAttributeTables, "The BIOS attributes were loaded.",
     "The BIOS attributes could not be loaded.",
     "The firmware may not have them; everything else works."},
    {mira::Step::kCallingInterface, "",
     "The machine's SMBIOS table describes no calling interface.", "Update the firmware."},
    {mira::Step::kWmiObjects, "", "The objects that carry calls are missing from ROOT\\WMI.",
     "The firmware's driver may not be installed: install this PC's chipset drivers, or update "
     "the firmware."},
};

constexpr char kNotTried[] = "It was not tried: an earlier step failed.";

constexpr const char* OutcomeName(StepOutcome outcome) {
  switch (outcome) {
    case StepOutcome::kDone:
      return "done";
    case StepOutcome::kKnown:
      return "known";
    case StepOutcome::kSkipped:
      return "skipped";
    case StepOutcome::kFailed:
      return "failed";
    case StepOutcome::kCancelled:
      return "cancelled";
    case StepOutcome::kNotReached:
      break;
  }
  return "not-tried";
}

std::string CodeText(const StepResult& result) {
  const auto word = static_cast<std::uint32_t>(result.code);
  switch (result.code_kind) {
    case CodeKind::kHresult:
      return "HRESULT 0x" + bytes::HexNumber(word, 8);
    case CodeKind::kSystemError:
      return "error " + std::to_string(result.code);
    case CodeKind::kCompletionCode:
      return "completion code " + std::to_string(result.code);
    case CodeKind::kAttributeStatus:
      return "status " + std::to_string(result.code);
    case CodeKind::kFlagsWord:
      return "flags 0x" + bytes::HexNumber(word, 8);
    case CodeKind::kNone:
      break;
  }
  return "";
}

// What a step did that did not fail.
const char* MeaningOf(const StepResult& result, const char* done) {
  switch (result.outcome) {
    case StepOutcome::kDone:
      return done;
    case StepOutcome::kKnown:
      return "Nothing was to do: an earlier step or start-up had found it out.";
    case StepOutcome::kSkipped:
      return result.step == mira::Step::kAttributeTables
                 ? "The BIOS attributes were not asked for, or this SMBIOS version has none."
                 : "Nothing was to do: the program has set this up itself.";
    case StepOutcome::kCancelled:
      return "The step was cancelled before it was done.";
    default:
      return kNotTried;
  }
}

StartUpStep StepOf(const StepResult& result, const char* name) {
  StartUpStep step = {name, OutcomeName(result.outcome), "", "", ""};
  if (result.outcome != StepOutcome::kDone || result.code != 0) step.code = CodeText(result);
  const auto* const row =
      std::find_if(std::begin(kExplanations), std::end(kExplanations),
                   [&result](const Explanation& e) { return e.step == result.step; });
  const bool is_failed = result.outcome == StepOutcome::kFailed;
  if (row == std::end(kExplanations)) {
    step.meaning = is_failed ? "" : MeaningOf(result, "");
    return step;
  }
  step.meaning = is_failed ? row->meaning : MeaningOf(result, row->done);
  if (is_failed) step.advice = row->advice;
  return step;
}

// The step of a call that is missing for all calls, found by one without effect.
StartUpStep TryCall(Session& session, StartUp& start_up) {
  constexpr char kName[] = "Calls to the firmware";
  StartUpStep step = {kName, "not-tried", "", kNotTried, ""};
  if (start_up.status != STATUS_SUCCESS) return step;
  CMiraIntf& mira = session.Mira();
  CCallingInterface* const calling = FindCallingInterface(mira);
  if (calling != nullptr && !HasUsableClasses(*calling)) {
    step.outcome = "failed";
    step.meaning = kUnusableClasses;
    step.advice = "Update the firmware.";
    start_up.problem = Error(kTransportFailed, "calls-impossible", step.meaning);
    return step;
  }
  PwdInfo info;
  mira.GetPwdInfo(info);
  const OperationReport& report = CMiraIntf::GetLastOperation();
  if (report.call.delivery == Delivery::kAnswered) {
    step.outcome = "done";
    step.meaning = "A call without effect reached the firmware, which answered it.";
    return step;
  }
  const StepResult& failure =
      report.call.failure.step != mira::Step::kNone ? report.call.failure : report.failure;
  step = StepOf({failure.step, StepOutcome::kFailed, failure.code_kind, failure.code}, kName);
  if (step.meaning.empty()) {
    step.meaning = std::string("Calls do not reach the firmware. It failed at: ") +
                   StepName(failure.step) + ".";
    step.advice = "Restart Windows; if that does not help, install this PC's chipset drivers.";
  }
  start_up.problem = Error(kTransportFailed, "calls-impossible", step.meaning);
  start_up.problem->step = StepName(failure.step);
  if (failure.code_kind == CodeKind::kHresult) {
    start_up.problem->hresult = static_cast<std::uint32_t>(failure.code);
  }
  return step;
}

void ReadTable(StartUp& start_up) {
  constexpr unsigned char kCallingInterfaceType = 0xDA;
  constexpr unsigned kClasses = 32;
  const std::vector<std::uint8_t> table = smbios::ReadFirmwareTable();
  if (table.size() < smbios::kFirmwareHeaderSize) return;
  if (table[1] != 0) {
    start_up.smbios_version = std::to_string(table[1]) + "." + std::to_string(table[2]);
  }
  smbios::StructureTable structures;
  structures.Parse(table);
  const auto found = structures.Objects().find(kCallingInterfaceType);
  if (found == structures.Objects().end()) return;
  const auto* const calling = dynamic_cast<const CCallingInterface*>(found->second);
  for (unsigned i = 0; calling != nullptr && i < kClasses; ++i) {
    if ((calling->SupportedCommands() >> i & 1) != 0) start_up.announced_classes.push_back(i);
  }
}

// The document as it was when the snapshot was taken: it says what happened then.
Json KeptInfo(const Snapshot& kept) {
  Json document = kept.Value(kStartUpSubject);
  auto problem = kept.Problem(kStartUpSubject);
  if (!problem) return document;
  problem->document = std::move(document);
  throw std::move(*problem);
}

Json Info(Request& request) {
  if (const Snapshot* const kept = request.GetSession().Kept()) return KeptInfo(*kept);
  const StartUp start_up = ReadStartUp(request.GetSession());
  Json document = {{"version", MIRA_VERSION}};
  if (request.GetSession().IsSimulated()) document["profile"] = request.GetSession().Profile();
  document.update(ToJson(start_up));
  if (!start_up.problem) return document;
  Error error = *start_up.problem;
  error.document = std::move(document);
  throw error;
}

}  // namespace

StartUp ReadStartUp(Session& session) {
  StartUp start_up;
  start_up.status = session.Start();
  start_up.status_name = Explain(start_up.status).name;
  for (const StepResult& result : CMiraIntf::GetStartUp()) {
    start_up.steps.push_back(StepOf(result, StepName(result.step)));
  }
  if (start_up.status != STATUS_SUCCESS) start_up.problem = session.StartError();
  if (start_up.problem && start_up.problem->name == "not-windows") {
    // Whatever step could not be done first, this is why.
    start_up.status = STATUS_NOT_SUPPORTED;
    start_up.status_name = start_up.problem->name;
    for (StartUpStep& step : start_up.steps) {
      if (step.outcome != "failed") continue;
      step.meaning = start_up.problem->what();
      step.advice = "Use a simulated machine here, or run the program on Windows.";
    }
  }
  start_up.steps.push_back(TryCall(session, start_up));
  start_up.diagnostics = session.StartLines();
  CMiraIntf& mira = session.Mira();
  start_up.transfer_buffer_size = mira.GetACPIBufSize();
  const CComBSTR& key = mira.GetACPIInstanceName();
  start_up.instance_key =
      ToUtf8(std::wstring_view(key.m_str != nullptr ? key.m_str : L"", key.Length()));
  ReadTable(start_up);
  return start_up;
}

Json ToJson(const StartUp& start_up) {
  Json steps = Json::array();
  for (const StartUpStep& step : start_up.steps) {
    Json row = {{"step", step.name}, {"outcome", step.outcome}};
    if (!step.code.empty()) row["code"] = step.code;
    if (!step.meaning.empty()) row["meaning"] = step.meaning;
    if (!step.advice.empty()) row["advice"] = step.advice;
    steps.push_back(std::move(row));
  }
  const StatusText& text = Explain(start_up.status);
  return {
      {"status", static_cast<int>(start_up.status)},
      {"statusName", start_up.status_name},
      {"message", start_up.problem ? start_up.problem->what() : text.meaning},
      {"diagnostics", start_up.diagnostics},
      {"steps", std::move(steps)},
      {"smbiosVersion", start_up.smbios_version.empty() ? Json() : Json(start_up.smbios_version)},
      {"transferBufferSize", start_up.transfer_buffer_size},
      {"instanceKey", start_up.instance_key},
      {"announcedClasses", start_up.announced_classes}};
}

std::optional<Error> StartProblem(Session& session) {
  if (const Snapshot* const kept = session.Kept()) {
    const bool is_failed = kept->Value(kStartUpSubject).at("status") != STATUS_SUCCESS;
    return is_failed ? kept->Problem(kStartUpSubject) : std::nullopt;
  }
  if (session.Start() == STATUS_SUCCESS) return std::nullopt;
  return session.StartError();
}

std::vector<Command> StartUpCommands() {
  return {{.name = "info", .summary = "Show what is available on this machine", .run = Info}};
}

}  // namespace mira::client
