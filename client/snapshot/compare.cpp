#include "client/snapshot/compare.h"

#include <algorithm>
#include <map>
#include <utility>

#include "bytes/text.h"
#include "client/snapshot/differences.h"
#include "client/snapshot/identity_values.h"
#include "client/snapshot/snapshot.h"
#include "client/snapshot/state_differences.h"
#include "client/snapshot/subjects.h"

namespace mira::client {
namespace {

// What was compared, for people and programs.
Json Label(const Json& side) {
  if (!Snapshot::IsOne(side)) {
    Json label = {{"kind", "state"}};
    if (side.contains("name")) label["name"] = side["name"];
    return label;
  }
  const Snapshot snapshot(side);
  return {{"kind", "snapshot"}, {"takenAt", snapshot.TakenAt()}, {"machine", snapshot.Machine()}};
}

// Whether a text fits a pattern, in which "*" stands for any characters.
bool FitsPattern(std::string_view pattern, std::string_view text) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) return pattern == text;
  if (!text.starts_with(pattern.substr(0, star))) return false;
  const std::string_view rest = pattern.substr(star + 1);
  for (std::size_t at = star; at <= text.size(); ++at) {
    if (FitsPattern(rest, text.substr(at))) return true;
  }
  return false;
}

// Whether a path is one of those that were named, or below one. In any case of letters.
bool IsAtOrBelow(const std::vector<std::string>& named, const std::string& path) {
  const auto lower = [](std::string text) {
    for (char& c : text) c = bytes::Lower(c);
    return text;
  };
  const std::string place = lower(path);
  return std::any_of(named.begin(), named.end(), [&](const std::string& name) {
    const std::string wanted = lower(name);
    return FitsPattern(wanted, place) || FitsPattern(wanted + ".*", place);
  });
}

bool Counts(const Difference& difference, const CompareOptions& options) {
  if (difference.meaning != Meaning::kSetting && !options.all) return false;
  if (!options.only.empty() && !IsAtOrBelow(options.only, difference.path)) return false;
  return !IsAtOrBelow(options.ignore, difference.path);
}

// A subject that one side could read and the other could not is a difference of its own.
std::vector<Difference> SubjectDifferences(const std::string& name, const Json& a, const Json& b) {
  const auto part = [](const Json& subject, const char* key) {
    return subject.contains(key) ? subject[key] : Json();
  };
  const Json before = part(a, "value");
  const Json after = part(b, "value");
  if (!before.is_null() && !after.is_null()) return FindDifferences(name, before, after);
  const auto problem = [&part](const Json& subject) {
    const Json error = part(subject, "error");
    return error.is_null() ? Json() : error.at("name");
  };
  if (before.is_null() && after.is_null() && problem(a) == problem(b)) return {};
  const DifferenceKind kind = before.is_null() && !after.is_null()   ? DifferenceKind::kAdded
                              : !before.is_null() && after.is_null() ? DifferenceKind::kRemoved
                                                                     : DifferenceKind::kChanged;
  return {{name, kind, Meaning::kSetting, problem(a), problem(b)}};
}

std::vector<Difference> SnapshotDifferences(const Json& a, const Json& b) {
  std::vector<Difference> found;
  for (const Subject& subject : Subjects()) {
    const Json none = Json::object();
    const auto of = [&](const Json& side) -> const Json& {
      const auto place = side.at("subjects").find(subject.name);
      return place != side["subjects"].end() ? *place : none;
    };
    for (Difference& one : SubjectDifferences(subject.name, of(a), of(b))) {
      found.push_back(std::move(one));
    }
  }
  // Attributes that show a serial number or a tag are no settings either.
  const IdentityValues identity_a(a.at("subjects"));
  const IdentityValues identity_b(b.at("subjects"));
  for (Difference& one : found) {
    const bool is_text = one.before.is_string() || one.after.is_string();
    if (is_text && one.path.starts_with(kAttributesSubject) &&
        (identity_a.Has(one.before) || identity_b.Has(one.after))) {
      one.meaning = Meaning::kIdentity;
    }
  }
  return found;
}

std::string TitleOf(const std::string& subject) {
  const Subject* const known = FindSubject(subject);
  return known != nullptr ? known->title : subject;
}

}  // namespace

Json SideOf(Session& session, const std::string& content) {
  if (content == kLiveSide) return TakeSnapshot(session);
  Json side = ParseJson(content, "The file");
  if (Snapshot::IsOne(side)) return Snapshot(std::move(side)).Document();
  if (IsState(side)) return side;
  throw Error(kInvalidValue, "no-side",
              "The file holds neither a snapshot of a machine nor a desired state.");
}

Json Compare(const Json& a, const Json& b, const CompareOptions& options) {
  const bool are_snapshots = Snapshot::IsOne(a) && Snapshot::IsOne(b);
  std::map<std::string, Json> subjects;
  std::vector<std::string> order;
  Json counts = {{"added", 0}, {"removed", 0}, {"changed", 0}};
  for (const Difference& one : are_snapshots ? SnapshotDifferences(a, b) : StateDifferences(a, b)) {
    if (!Counts(one, options)) continue;
    const std::string subject = one.path.substr(0, one.path.find('.'));
    const auto [place, is_new] = subjects.try_emplace(subject, Json::array());
    if (is_new) order.push_back(subject);
    place->second.push_back(ToJson(one));
    Json& count = counts[Name(one.kind)];
    count = count.get<std::size_t>() + 1;
  }
  Json list = Json::array();
  for (const std::string& subject : order) {
    list.push_back({{"subject", subject},
                    {"title", TitleOf(subject)},
                    {"differences", std::move(subjects[subject])}});
  }
  return {{"a", Label(a)},
          {"b", Label(b)},
          {"same", list.empty()},
          {"counts", std::move(counts)},
          {"subjects", std::move(list)}};
}

}  // namespace mira::client
