// What the library tells of its steps: which one failed, with which code, and how far a call came.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "facade/mira_intf.h"
#include "pldm/progress.h"
#include "sim/machine.h"
#include "tests/support/host.h"

namespace mira {
namespace {

constexpr std::int32_t Code(std::uint32_t hresult) { return static_cast<std::int32_t>(hresult); }

void ExpectResult(const StepResult& result, Step step, StepOutcome outcome, CodeKind kind,
                  std::int32_t code) {
  EXPECT_STREQ(StepName(result.step), StepName(step));
  EXPECT_EQ(static_cast<int>(result.outcome), static_cast<int>(outcome));
  EXPECT_EQ(static_cast<int>(result.code_kind), static_cast<int>(kind));
  EXPECT_EQ(result.code, code);
}

// One letter per step of the last start-up: done, known, skipped, failed, cancelled, not reached.
std::string StartUpOutcomes() {
  std::string text;
  for (const StepResult& step : CMiraIntf::GetStartUp()) {
    text += "-dksfc"[static_cast<int>(step.outcome)];
  }
  return text;
}

TEST(StartUpReport, NamesTheStepThatFailed) {
  using enum CodeKind;
  struct Case {
    const char* operation;
    std::int32_t result;
    Step step;
    CodeKind kind;
    const char* outcomes;
  };
  const Case cases[] = {
      {"AllocateAndInitializeSid", 5, Step::kAdministratorCheck, kSystemError, "f------------"},
      {"CoInitializeEx", Code(0x80004005), Step::kComInitialisation, kHresult, "df-----------"},
      {"CoInitializeSecurity", Code(0x80070005), Step::kComSecurity, kHresult, "ddf----------"},
      {"CoCreateInstance", Code(0x80040154), Step::kWmiLocator, kHresult, "dddf---------"},
      {"IWbemLocator::ConnectServer", Code(0x8004100E), Step::kWmiConnection, kHresult,
       "ddddf--------"},
      {"CoSetProxyBlanket", Code(0x80070005), Step::kProxyBlanket, kHresult, "dddddf-------"},
      {"GetSystemFirmwareTable", 0, Step::kSmbiosTable, kSystemError, "ddddddf------"},
      {"IWbemServices::CreateInstanceEnum", Code(0x80041010), Step::kWmiInstance, kHresult,
       "dddddddf-----"},
      {"IEnumWbemClassObject::Next", Code(0x80041001), Step::kWmiInstance, kHresult,
       "dddddddf-----"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.operation);
    sim::Machine machine;
    machine.GetFaults().Add({.operation = c.operation, .nth = 1, .result = c.result});
    const sim::Session session(machine);
    std::ostringstream diagnostics;
    CMiraIntf mira(diagnostics);
    EXPECT_NE(mira.Init(true, false, false), STATUS_SUCCESS);
    const OperationReport& report = CMiraIntf::GetLastOperation();
    EXPECT_STREQ(report.operation, "Init");
    ExpectResult(report.failure, c.step, StepOutcome::kFailed, c.kind, c.result);
    EXPECT_EQ(StartUpOutcomes(), c.outcomes);
    EXPECT_EQ(mira.Init(true, false, false), STATUS_SUCCESS);
    ExpectResult(CMiraIntf::GetLastOperation().failure, Step::kNone, StepOutcome::kNotReached,
                 CodeKind::kNone, 0);
  }
}

TEST(StartUpReport, TellsWhatEachKindOfMachineAnswers) {
  struct Case {
    const char* what;
    void (*change)(sim::Profile&);
    bool forbids_probe;
    const char* outcomes;
    StepResult failure;
  };
  using enum StepOutcome;
  const Case cases[] = {
      {"laptop", [](sim::Profile&) {}, false, "dddddddddddkd", {}},
      {"no administrator",
       [](sim::Profile& p) { p.is_administrator = false; },
       false,
       "f------------",
       {Step::kAdministratorCheck, kFailed, CodeKind::kNone, 0}},
      {"no instance",
       [](sim::Profile& p) { p.has_wmi_instance = false; },
       false,
       "dddddddf-----",
       {Step::kWmiInstance, kFailed, CodeKind::kHresult, 1}},
      {"no buffer",
       [](sim::Profile& p) { p.buffer_size = 0; },
       false,
       "ddddddddfd---",
       {Step::kBufferSize, kFailed, CodeKind::kNone, 0}},
      {"no key",
       [](sim::Profile& p) { p.instance_path = L"WMI_Query"; },
       false,
       "dddddddddf---",
       {Step::kInstanceKey, kFailed, CodeKind::kNone, 0}},
      {"flags say no",
       [](sim::Profile& p) { p.bios_flags0 = 0xFFFD; },
       false,
       "ddddddddddfk-",
       {Step::kFirmwareFlags, kFailed, CodeKind::kFlagsWord, 0xFFFD}},
      {"probed", [](sim::Profile& p) { p.buffer_fix = 0; }, false, "ddddddddddddd", {}},
      {"not to be probed",
       [](sim::Profile& p) { p.buffer_fix = 0; },
       true,
       "dddddddddddf-",
       {Step::kBufferFix, kFailed, CodeKind::kNone, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::Profile profile;
    c.change(profile);
    sim::Machine machine(profile);
    const sim::Session session(machine);
    std::ostringstream diagnostics;
    CMiraIntf mira(diagnostics);
    bFlagCheck = c.forbids_probe;
    mira.Init(true, false, false);
    bFlagCheck = false;
    EXPECT_EQ(StartUpOutcomes(), c.outcomes);
    const StepResult& failure = CMiraIntf::GetLastOperation().failure;
    ExpectResult(failure, c.failure.step, c.failure.outcome, c.failure.code_kind, c.failure.code);
  }
}

TEST(StartUpReport, TellsWhatWasKnownAlready) {
  test::Host host;
  EXPECT_EQ(StartUpOutcomes(), "dddddddddddks");
  EXPECT_EQ(host->Init(true, false, false), STATUS_SUCCESS);
  EXPECT_EQ(StartUpOutcomes(), "ddddddkkkkdkd");
  EXPECT_EQ(host->Init(true, false, false), STATUS_SUCCESS);
  EXPECT_EQ(StartUpOutcomes(), "ddddddkkkkdkk");
}

TEST(StartUpReport, TellsWhyTheProbeFailed) {
  sim::Profile profile;
  profile.buffer_fix = 0;
  sim::Machine machine(profile);
  machine.GetFaults().Add({.operation = "firmware 10/11", .completion = -1});
  const sim::Session session(machine);
  std::ostringstream diagnostics;
  CMiraIntf mira(diagnostics);
  EXPECT_EQ(mira.Init(false, false, false), STATUS_ACPI_NOT_SUPPORTED);
  const OperationReport& report = CMiraIntf::GetLastOperation();
  EXPECT_STREQ(report.operation, "Init");
  ExpectResult(report.failure, Step::kBufferFix, StepOutcome::kFailed, CodeKind::kCompletionCode,
               -1);
  EXPECT_EQ(report.call.cls, 10);
  EXPECT_EQ(report.call.select, 11);
  EXPECT_EQ(report.call.delivery, Delivery::kAnswered);
}

// The answer -3 and a transport that failed are the same to the caller's record.
TEST(CallReport, TellsHowFarACallCame) {
  using enum CodeKind;
  struct Case {
    const char* what;
    sim::Fault fault;
    Delivery delivery;
    Step step;
    CodeKind kind;
    std::int32_t code;
  };
  const auto cut = [](std::vector<std::uint8_t>& reply) { reply.resize(40); };
  const Case cases[] = {
      {"put",
       {.operation = "IWbemClassObject::Put", .result = Code(0x80041005)},
       Delivery::kNotSent,
       Step::kInputBytes,
       kHresult,
       Code(0x80041005)},
      {"array",
       {.operation = "SafeArrayCreate", .result = 0},
       Delivery::kNotSent,
       Step::kInputBytes,
       kHresult,
       Code(0x8007000E)},
      {"second put",
       {.operation = "IWbemClassObject::Put", .nth = 2, .result = Code(0x80041005)},
       Delivery::kNotSent,
       Step::kInputParameters,
       kHresult,
       Code(0x80041005)},
      {"method",
       {.operation = "IWbemServices::ExecMethod", .result = Code(0x80041001)},
       Delivery::kNoAnswer,
       Step::kMethodCall,
       kHresult,
       Code(0x80041001)},
      {"get",
       {.operation = "IWbemClassObject::Get", .result = Code(0x80041002)},
       Delivery::kNoAnswer,
       Step::kReply,
       kHresult,
       Code(0x80041002)},
      {"cut reply",
       {.operation = "firmware", .corrupt = cut},
       Delivery::kNoAnswer,
       Step::kReply,
       kNone,
       0},
      {"not executed",
       {.operation = "firmware", .completion = -3},
       Delivery::kAnswered,
       Step::kCompletion,
       kCompletionCode,
       -3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    test::Host host;
    host.machine().GetFaults().Add(c.fault);
    CSimpleTokenData data;
    data.Arg1 = 0x70;
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
    EXPECT_EQ(data.Res1, -3);
    const OperationReport& report = CMiraIntf::GetLastOperation();
    EXPECT_STREQ(report.operation, "ExecuteDACI");
    EXPECT_EQ(report.call.delivery, c.delivery);
    ExpectResult(report.failure, c.step, StepOutcome::kFailed, c.kind, c.code);
    ExpectResult(report.call.failure, c.step, StepOutcome::kFailed, c.kind, c.code);
    EXPECT_EQ(host->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
    ExpectResult(CMiraIntf::GetLastOperation().failure, Step::kNone, StepOutcome::kNotReached,
                 CodeKind::kNone, 0);
    EXPECT_EQ(CMiraIntf::GetLastOperation().call.delivery, Delivery::kAnswered);
  }
}

TEST(CallReport, TellsWhatKeepsACallFromBeingMade) {
  struct Case {
    const char* what;
    int cls;
    int select;
    const char* password;
    Status status;
    Step step;
    CodeKind kind;
    std::int32_t code;
    int last_class;
    int last_select;
  };
  using enum CodeKind;
  const Case cases[] = {
      {"class", 30, 0, "", STATUS_NOT_SUPPORTED, Step::kCommandClass, kNone, 0, 30, 0},
      {"buffer", 3, 99, "", STATUS_NOT_SUPPORTED, Step::kRequest, kNone, 0, 3, 99},
      {"request", 10, 13, "", STATUS_FAILURE, Step::kRequest, kNone, 0, 10, 13},
      {"wrong password", 0, 0, "wrong", STATUS_SECURITY_KEY_FAILED, Step::kSecurityKey,
       kCompletionCode, 2, 9, 4},
      {"long password", 0, 0, "123456789012345678901234567890123", STATUS_SECURITY_KEY_FAILED,
       Step::kSecurityKey, kNone, 0, 9, 4},
  };
  sim::Profile profile;
  profile.class9.text = "right";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    test::Host host(profile);
    CSimpleTokenData data;
    EXPECT_EQ(
        host->ExecuteDACI(static_cast<std::uint16_t>(c.cls), static_cast<std::uint16_t>(c.select),
                          data, c.password, PwdInfo::PWD_CLASS9),
        c.status);
    const OperationReport& report = CMiraIntf::GetLastOperation();
    ExpectResult(report.failure, c.step, StepOutcome::kFailed, c.kind, c.code);
    EXPECT_EQ(report.call.cls, c.last_class);
    EXPECT_EQ(report.call.select, c.last_select);
  }
}

TEST(AttributeReport, NamesTheStepThatFailed) {
  test::Host host(sim::Profile(), true);
  PLDM::String attribute;
  attribute.Name = "NoSuchAttribute";
  EXPECT_EQ(host->GetAttributeValue(attribute), STATUS_ATTRIBUTE_NOT_FOUND);
  EXPECT_STREQ(CMiraIntf::GetLastOperation().operation, "GetAttributeValue");
  ExpectResult(CMiraIntf::GetLastOperation().failure, Step::kRequest, StepOutcome::kFailed,
               CodeKind::kNone, 0);
  test::Host without;
  EXPECT_EQ(without->GetAttributeValue(attribute), STATUS_NOT_SUPPORTED);
  ExpectResult(CMiraIntf::GetLastOperation().failure, Step::kAttributeTables, StepOutcome::kFailed,
               CodeKind::kNone, 0);
}

// A host's window that wants no more after some calls.
struct Impatient {
  int patience = 0;
  int told = 0;
};

pldm::ProgressAnswer Ask(void* context, unsigned, unsigned, std::uint32_t, std::uint32_t) {
  auto& window = *static_cast<Impatient*>(context);
  return ++window.told > window.patience ? pldm::ProgressAnswer::kCancel
                                         : pldm::ProgressAnswer::kContinue;
}

TEST(Cancelling, LeavesNothingHalfLoadedWhereverItComes) {
  Impatient window{1000};
  pldm::SetProgress(Ask, &window);
  std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> expected;
  {
    test::Host host(sim::Profile(), true);
    host->GetAttributeNamesAndTypes(expected);
    EXPECT_GT(expected.size(), 10u);
  }
  const int calls = window.told;
  EXPECT_GE(calls, 3);
  for (int patience = 0; patience < calls; ++patience) {
    SCOPED_TRACE(patience);
    window = {patience};
    test::Host host(sim::Profile(), true);
    EXPECT_EQ(host.init_status(), STATUS_SUCCESS);
    EXPECT_FALSE(host->IsPLDMSupported());
    EXPECT_EQ(window.told, patience + 1) << "nothing is fetched after the answer";
    ExpectResult(CMiraIntf::GetLastOperation().failure, Step::kAttributeTables,
                 StepOutcome::kCancelled, CodeKind::kNone, 0);
    EXPECT_EQ(StartUpOutcomes(), "dddddddddddkc");
    window = {1000};
    EXPECT_EQ(host->Init(true, true, true), STATUS_SUCCESS);
    std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> names;
    host->GetAttributeNamesAndTypes(names);
    EXPECT_EQ(names, expected);
  }
  pldm::SetProgress(nullptr);
}

TEST(Cancelling, KeepsTheTablesWhenTextsAreFetched) {
  Impatient window{1000};
  test::Host host(sim::Profile(), true);
  std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> names;
  host->GetAttributeNamesAndTypes(names);
  const auto attribute = PLDM::MakeAttribute(names.front().second);
  ASSERT_TRUE(attribute);
  attribute->Name = names.front().first;
  pldm::SetProgress(Ask, &window);
  window = {0};
  EXPECT_EQ(host->GetAttributeValueAtBoot(*attribute), STATUS_FAILURE);
  ExpectResult(CMiraIntf::GetLastOperation().failure, Step::kAttributeTables,
               StepOutcome::kCancelled, CodeKind::kNone, 0);
  EXPECT_EQ(window.told, 1);
  pldm::SetProgress(nullptr, nullptr);
  EXPECT_EQ(host->GetAttributeValueAtBoot(*attribute), STATUS_SUCCESS);
  EXPECT_FALSE(attribute->DisplayText.empty());
  EXPECT_FALSE(attribute->HelpText.empty());
}

}  // namespace
}  // namespace mira
