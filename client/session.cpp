#include "client/session.h"

#include <algorithm>
#include <chrono>

#include "client/call.h"
#include "client/snapshot/snapshot.h"
#include "pldm/progress.h"
#include "transport/com_error.h"

namespace mira::client {
namespace {

// Tells the session how far the library's fetching of attribute tables is.
pldm::ProgressAnswer ShowTables(void* session, unsigned table, unsigned tables,
                                std::uint32_t received, std::uint32_t total) {
  const std::string what =
      "Reading attribute table " + std::to_string(table) + " of " + std::to_string(tables);
  return static_cast<Session*>(session)->Continues(what, received, total)
             ? pldm::ProgressAnswer::kContinue
             : pldm::ProgressAnswer::kCancel;
}

}  // namespace

Session::~Session() { Restart(); }

Status Session::Open(bool attributes, bool texts) {
  if (kept_ != nullptr) {
    throw Error(kNotFound, "not-in-snapshot", "The snapshot does not hold what was asked for.");
  }
  if (mira_ && has_attributes_ >= attributes && has_texts_ >= texts) return status_;
  Restart();
  mira_ = std::make_unique<CMiraIntf>(diagnostics_);
  has_attributes_ = attributes;
  has_texts_ = texts;
  // It stays: texts are fetched when the first attribute is read.
  if (attributes) pldm::SetProgress(ShowTables, this);
  try {
    status_ = mira_->Init(attributes, texts, texts);
  } catch (const transport::ComError&) {
    throw Error(kUnexpected, "out-of-memory", "The system ran out of memory.");
  }
  start_lines_ = TakeDiagnostics();
  return status_;
}

Status Session::Start() { return Open(false, false); }

CMiraIntf& Session::Mira() {
  Start();
  return *mira_;
}

CMiraIntf& Session::Ready() {
  if (Start() != STATUS_SUCCESS) throw StartError();
  return *mira_;
}

CMiraIntf& Session::WithAttributes(Texts texts) {
  Open(true, texts == Texts::kAll);
  Ready();
  const StepResult& tables =
      CMiraIntf::GetStartUp()[static_cast<std::size_t>(mira::Step::kAttributeTables)];
  if (tables.outcome == StepOutcome::kCancelled) {
    Restart();
    throw Cancelled();
  }
  // Where the firmware does not announce the class, there are none.
  constexpr std::uint16_t kAttributeClass = 5;
  if (tables.outcome == StepOutcome::kFailed && IsAnnounced(*mira_, kAttributeClass)) {
    // A question that got no answer counts more than what the firmware said of the next.
    const StepResult& lost = CMiraIntf::GetLastOperation().unanswered.failure;
    const bool is_lost = tables.code_kind == CodeKind::kHresult || lost.step != mira::Step::kNone;
    Error error(is_lost ? kTransportFailed : kRefused, "attributes-unreadable",
                "The tables of BIOS attributes could not be read.");
    error.step = StepName(tables.step);
    if (is_lost) {
      const StepResult& failure = lost.step != mira::Step::kNone ? lost : tables;
      if (failure.code_kind == CodeKind::kHresult) {
        error.hresult = static_cast<std::uint32_t>(failure.code);
      }
    } else if (tables.code_kind == CodeKind::kCompletionCode) {
      error.completion = tables.code;
    }
    throw error;
  }
  if (!mira_->IsPLDMSupported()) {
    throw Error(kNotSupported, "no-attributes", "This machine has no BIOS attributes.");
  }
  return *mira_;
}

std::string Session::Now() const {
  if (kept_ != nullptr) return kept_->TakenAt();
  if (clock_) return clock_();
  const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
  const auto today = std::chrono::floor<std::chrono::days>(now);
  const std::chrono::year_month_day date(today);
  const std::chrono::hh_mm_ss time(now - today);
  const auto digits = [](long long number, std::size_t count) {
    const std::string text = std::to_string(number);
    return std::string(count - std::min(count, text.size()), '0') + text;
  };
  return digits(static_cast<int>(date.year()), 4) + "-" +
         digits(static_cast<unsigned>(date.month()), 2) + "-" +
         digits(static_cast<unsigned>(date.day()), 2) + "T" + digits(time.hours().count(), 2) +
         ":" + digits(time.minutes().count(), 2) + ":" + digits(time.seconds().count(), 2) + "Z";
}

void Session::Restart() {
  if (has_attributes_) pldm::SetProgress(nullptr, nullptr);
  mira_.reset();
  has_attributes_ = has_texts_ = false;
}

std::vector<std::string> Session::TakeDiagnostics() {
  std::vector<std::string> lines;
  std::istringstream text(diagnostics_.str());
  for (std::string line; std::getline(text, line);) lines.push_back(ToUtf8(line));
  diagnostics_.str("");
  return lines;
}

Error Session::StartError() const {
#if !defined(_WIN32)
  if (!IsSimulated()) {
    return Error(kNotSupported, "not-windows",
                 "This system is not Windows: it carries no calls to "
                 "the firmware.");
  }
#endif
  Error error = ErrorOf(status_);
  const StepResult& failure = CMiraIntf::GetLastOperation().failure;
  if (failure.step != mira::Step::kNone) error.step = StepName(failure.step);
  if (failure.code_kind == CodeKind::kHresult) {
    error.hresult = static_cast<std::uint32_t>(failure.code);
  }
  if (start_lines_.empty()) return error;
  std::string message = error.what();
  for (const std::string& line : start_lines_) message += " (" + line + ")";
  Error with_lines(error.status, error.name, message);
  with_lines.step = error.step;
  with_lines.hresult = error.hresult;
  return with_lines;
}

bool Session::Continues(const std::string& what, std::size_t done, std::size_t total) const {
  return uninterrupted_ != 0 || !progress_ || progress_(what, done, total);
}

void Session::Report(const std::string& what, std::size_t done, std::size_t total) const {
  if (!Continues(what, done, total)) throw Cancelled();
}

void Session::CheckCancelled() const { Report("", 0, 0); }

}  // namespace mira::client
