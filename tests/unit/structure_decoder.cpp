#include "tests/unit/structure_decoder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

namespace mira::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string Printed(const char* format, std::uint64_t value) {
  char text[32];
  std::snprintf(text, sizeof(text), format, static_cast<unsigned long long>(value));
  return text;
}
std::string Decimal(std::uint64_t value) { return Printed("%llu", value); }
std::string Hex(std::uint64_t value) { return Printed("%llx", value); }

// ---- The rows ----

std::vector<std::string> Cells(const std::string& line, char separator) {
  std::vector<std::string> cells;
  std::istringstream in(line);
  for (std::string cell; std::getline(in, cell, separator);) cells.push_back(cell);
  return cells;
}

std::size_t FromHex(const std::string& text) { return std::stoul(text, nullptr, 16); }

struct Row {
  std::string label;
  std::vector<std::string> format;  // its name, and what it needs to know
  std::size_t offset = 0;
  std::string unit;
  std::vector<std::string> condition;
  std::size_t from = 0;

  std::size_t Number(std::size_t cell) const { return std::stoul(format.at(cell)); }
};

struct Type {
  std::string title;
  std::size_t closing = 0;  // dashes, where they are not as many as the banner's characters
  std::vector<Row> rows;
  std::vector<Row> items;
  std::size_t items_at = 0;
  std::size_t item_size = 0;
  std::string note;
};

Row ParseRow(const std::string& line) {
  std::vector<std::string> cells = Cells(line, '|');
  cells.resize(5);
  Row row{cells[0], Cells(cells[1], ' '), FromHex(cells[2]), cells[3], Cells(cells[4], ' ')};
  const std::size_t words = row.format.size();
  if (words > 2 && row.format[words - 2] == "from") row.from = row.Number(words - 1);
  return row;
}

std::ifstream OpenData(const std::string& name) {
  std::ifstream file(std::string(MIRA_TEST_SOURCES) + "/data/" + name);
  EXPECT_TRUE(file.good()) << name;
  return file;
}

std::map<unsigned, Type> ReadTypes() {
  std::map<unsigned, Type> types;
  Type* type = nullptr;
  std::ifstream file = OpenData("structure_lines.txt");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    std::istringstream rest(line.substr(2));
    if (line.starts_with('>')) {
      unsigned number = 0;
      rest >> number >> std::ws;
      type = &types[number];
      std::getline(rest, type->title);
      if (const std::size_t closing = type->title.find(" = "); closing != std::string::npos) {
        type->closing = std::stoul(type->title.substr(closing + 3));
        type->title.resize(closing);
      }
    } else if (line.starts_with('*')) {
      rest >> std::hex >> type->items_at >> type->item_size;
    } else if (line.starts_with('!')) {
      type->note = rest.str();
    } else {
      (type->item_size == 0 ? type->rows : type->items).push_back(ParseRow(line));
    }
  }
  return types;
}

// ---- A structure ----

struct Raw {
  Bytes bytes;  // with the string set, and zeros behind it
  std::size_t length = 0;

  std::uint64_t Number(std::size_t offset, std::size_t width) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
      value |= std::uint64_t{bytes.at(offset + i)} << (8 * i);
    }
    return value;
  }
  std::string String(std::size_t number) const {
    std::string text;
    std::size_t at = length;
    for (std::size_t i = 0; i < number; ++i) {
      text.clear();
      while (at < bytes.size() && bytes[at] != 0) text += static_cast<char>(bytes[at++]);
      ++at;
    }
    return text;
  }
};

std::vector<Raw> Split(const Bytes& table) {
  std::vector<Raw> structures;
  std::size_t at = 8;
  while (at + 4 <= table.size() && table[at + 1] >= 4) {
    std::size_t end = at + table[at + 1];
    while (end + 1 < table.size() && (table[end] != 0 || table[end + 1] != 0)) ++end;
    if (end + 1 >= table.size()) break;
    const auto byte = [&table](std::size_t i) {
      return table.begin() + static_cast<std::ptrdiff_t>(i);
    };
    Raw raw{Bytes(byte(at), byte(end + 1)), table[at + 1]};
    raw.bytes.resize(raw.bytes.size() + 600);
    structures.push_back(raw);
    if (table[at] == 127) break;
    at = end + 2;
  }
  return structures;
}

// ---- The formats ----

const std::map<unsigned, std::string>& Families() {
  static const std::map<unsigned, std::string> names = [] {
    std::map<unsigned, std::string> read;
    std::ifstream file = OpenData("processor_families.txt");
    for (std::string line; std::getline(file, line);) {
      const std::size_t blank = line.find(' ');
      if (!line.starts_with('#')) read.emplace(std::stoul(line), line.substr(blank + 1));
    }
    return read;
  }();
  return names;
}

std::string Family(const Row& row, const Raw& raw) {
  const auto name = Families().find(static_cast<unsigned>(raw.Number(row.offset, 2)));
  return name != Families().end() ? row.label + " : " + name->second : "Didn't get Proc Family";
}

std::string Strings(const Row& row, const Raw& raw) {
  std::string lines;
  for (std::size_t i = 0; i < raw.Number(row.offset, 1); ++i) {
    if (i > 0) lines += '\n';
    lines += row.label + "[" + Decimal(i) + "] : " + raw.String(i + 1);
  }
  return lines;
}

// Some bytes, each written so, with the separator between them.
std::string Each(const Raw& raw, std::size_t offset, std::size_t count, const char* format,
                 const std::string& separator) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) text += separator;
    text += Printed(format, raw.Number(offset + i, 1));
  }
  return text;
}

using Format = std::string (*)(const Row& row, const Raw& raw);

// What stands behind the label.
const std::map<std::string, Format> kFormats = {
    {"number",
     [](const Row& r, const Raw& raw) { return Decimal(raw.Number(r.offset, r.Number(1))); }},
    {"hex", [](const Row& r, const Raw& raw) { return Hex(raw.Number(r.offset, r.Number(1))); }},
    {"string",
     [](const Row& r, const Raw& raw) {
       return raw.String(static_cast<std::size_t>(raw.Number(r.offset, 1)));
     }},
    {"characters",
     [](const Row& r, const Raw& raw) {
       std::string text;
       for (std::size_t i = 0; i < r.Number(1) && raw.bytes[r.offset + i] != 0; ++i) {
         text += static_cast<char>(raw.bytes[r.offset + i]);
       }
       return text;
     }},
    {"rom",
     [](const Row& r, const Raw& raw) {
       return Decimal((raw.Number(r.offset, 1) + 1) * 65536) + " Bytes";
     }},
    {"downward",
     [](const Row& r, const Raw& raw) {
       std::string text;
       for (std::size_t i = r.Number(1); i-- > 0;) text += Hex(raw.bytes[r.offset + i]) + ' ';
       return text;
     }},
    {"upward",
     [](const Row& r, const Raw& raw) { return Each(raw, r.offset, r.Number(1), "%llx", " "); }},
    {"uuid", [](const Row& r, const Raw& raw) { return Each(raw, r.offset, 16, "%llX", ""); }},
    {"dotted",
     [](const Row& r, const Raw& raw) {
       std::string text;
       for (std::size_t i = 0; i < r.Number(2); ++i) {
         if (i > 0) text += '.';
         text += Decimal(raw.Number(r.offset + i * r.Number(1), r.Number(1)));
       }
       return text;
     }},
    {"date",
     [](const Row& r, const Raw& raw) {
       return Each(raw, r.offset, 3, "%02llx", "/") + ' ' +
              Each(raw, r.offset + 3, 2, "%02llx", ":");
     }},
    {"size",
     [](const Row& r, const Raw& raw) {
       const std::uint64_t size = raw.Number(r.offset, 2);
       return size < 0x8000 ? Decimal(size) + "MB" : Decimal(size - 0x8000) + "KB";
     }},
    {"thousandths",
     [](const Row& r, const Raw& raw) {
       char text[32];
       std::snprintf(text, sizeof(text), "%g", static_cast<double>(raw.Number(r.offset, 2)) / 1000);
       return std::string(text);
     }},
    {"name",
     [](const Row& r, const Raw& raw) {
       const std::vector<std::string> names = Cells(r.unit, ',');
       const std::uint64_t value = raw.Number(r.offset, 1);
       return value < names.size() ? names[static_cast<std::size_t>(value)] : "Unknown";
     }},
};

bool Applies(const Row& row, const Raw& raw) {
  if (row.condition.empty()) return true;
  const std::size_t offset = FromHex(row.condition.at(1));
  const std::size_t width = std::stoul(row.condition.at(2));
  const bool is_equal = raw.Number(offset, width) == FromHex(row.condition.at(3));
  return is_equal == (row.condition.at(0) == "if");
}

std::string Line(const Row& row, const Raw& raw) {
  if (!Applies(row, raw)) return "";
  const std::string& format = row.format.at(0);
  if (format == "family") return Family(row, raw) + '\n';
  if (format == "strings") {
    const std::string lines = Strings(row, raw);
    return lines.empty() ? "" : lines + '\n';
  }
  Raw seen = raw;
  if (raw.length < row.from) seen.bytes.assign(raw.bytes.size(), 0);
  const std::string unit = format != "name" ? row.unit : "";
  return row.label + " : " + kFormats.at(format)(row, seen) + unit + '\n';
}

std::string Dump(const Raw& raw, const std::map<unsigned, Type>& types) {
  const std::string head = "Type : " + Hex(raw.bytes[0]) + "\nLength : " + Hex(raw.length) +
                           "\nHandle : " + Hex(raw.Number(2, 2)) + '\n';
  const auto found = types.find(raw.bytes[0]);
  if (found == types.end()) return head;
  const Type& type = found->second;
  const std::string dashes(36, '-');
  const std::string banner = dashes + ' ' + type.title + ' ' + dashes;
  std::string dump = banner + '\n' + head;
  for (const Row& row : type.rows) dump += Line(row, raw);
  for (std::size_t i = 0; type.item_size != 0; ++i) {
    const std::size_t at = type.items_at + i * type.item_size;
    if (at + type.item_size > raw.length) break;
    for (Row row : type.items) {
      row.label += "[" + Decimal(i) + "]";
      row.offset += at;
      dump += Line(row, raw);
    }
  }
  if (!type.note.empty()) dump += type.note + '\n';
  return dump + std::string(type.closing != 0 ? type.closing : banner.size(), '-') + '\n';
}

}  // namespace

std::map<unsigned, std::vector<std::string>> DecodeTable(const Bytes& table) {
  const std::map<unsigned, Type> types = ReadTypes();
  std::map<unsigned, std::vector<std::string>> dumps;
  for (const Raw& raw : Split(table)) dumps[raw.bytes[0]].push_back(Dump(raw, types));
  return dumps;
}

}  // namespace mira::test
