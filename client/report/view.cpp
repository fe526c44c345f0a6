#include "client/report/view.h"

#include <algorithm>

namespace mira::client {

const Json& At(const Json& value, const char* name) {
  static const Json kNone;
  if (!value.is_object()) return kNone;
  const auto found = value.find(name);
  return found != value.end() ? *found : kNone;
}

const Json& ListAt(const Json& value, const char* name) {
  static const Json kEmpty = Json::array();
  const Json& list = At(value, name);
  return list.is_array() ? list : kEmpty;
}

bool IsTrueAt(const Json& value, const char* name) { return At(value, name) == true; }

std::string PlainAt(const Json& value, const char* name) { return Plain(At(value, name)); }

const Json& SubjectValue(const Json& snapshot, const char* subject) {
  return At(At(At(snapshot, "subjects"), subject), "value");
}

std::string Shown(const Json& object, const ViewField& field) {
  const Json& value = At(object, field.name);
  return value.is_null() ? "" : field.show(value);
}

Json FieldsView(const Json& object, const std::vector<ViewField>& fields) {
  Json view = Json::array();
  for (const ViewField& field : fields) {
    std::string text = Shown(object, field);
    if (!text.empty()) view.push_back({{"label", field.label}, {"value", std::move(text)}});
  }
  return view;
}

ViewColumn ColumnOf(const char* heading, const char* name, std::string (*show)(const Json& value),
                    bool is_number) {
  return {heading,
          [=](const Json& object) {
            return Shown(object, {heading, name, show});
          },
          is_number};
}

Json TableView(const std::string& title, const Json& list, const std::vector<ViewColumn>& columns) {
  Json headings = Json::array();
  std::vector<Json> rows(list.size(), Json::array());
  for (const ViewColumn& column : columns) {
    std::vector<std::string> cells;
    for (const Json& object : list) cells.push_back(column.show(object));
    if (std::all_of(cells.begin(), cells.end(), [](auto& cell) { return cell.empty(); })) continue;
    headings.push_back({{"text", column.heading}, {"isNumber", column.is_number}});
    for (std::size_t i = 0; i < cells.size(); ++i) {
      rows[i].push_back({{"text", cells[i]}, {"isNumber", column.is_number}});
    }
  }
  if (headings.empty()) return nullptr;
  Json view = {{"title", title}, {"headings", std::move(headings)}, {"rows", Json::array()}};
  for (Json& cells : rows) view["rows"].push_back({{"cells", std::move(cells)}});
  return view;
}

std::string Counted(std::size_t count, const std::string& one, const std::string& several) {
  return std::to_string(count) + " " + (count == 1 ? one : several.empty() ? one + "s" : several);
}

std::string Joined(const std::vector<std::string>& texts, const char* between) {
  std::string joined;
  for (const std::string& text : texts) {
    if (!text.empty()) joined += (joined.empty() ? "" : between) + text;
  }
  return joined;
}

}  // namespace mira::client
