#include <cstdlib>

#include "console/face.h"

namespace mira::console {
namespace {

using client::Readable;

void ShowLog(const Json& document, std::ostream& out) {
  Rows rows;
  if (document.contains("messages")) {
    for (const Json& e : document["messages"]) {
      rows.push_back({Readable(e.at("number")), Readable(e.at("severity")), Readable(e.at("seen")),
                      Readable(e.at("text"))});
    }
    RenderList(out, {"Number", "Severity", "Seen", "Text"}, rows);
  } else if (document.contains("scanCodes")) {
    for (const Json& e : document["scanCodes"]) {
      rows.push_back({Hex(e.at("scanCode").get<unsigned>(), 4), Readable(e.at("button"))});
    }
    RenderList(out, {"Scan code", "Button"}, rows);
  } else {
    for (const Json& e : document.at("entries")) {
      const std::string time = e.at("time");
      const std::size_t split = time.find('T');
      rows.push_back({time.substr(0, split), time.substr(split + 1), Readable(e.at("severity")),
                      Hex(e.at("code").get<unsigned>(), 4), Readable(e.at("text"))});
    }
    RenderList(out, {"Date", "Time", "Severity", "Code", "Text"}, rows);
  }
}

std::string Degrees(const Json& celsius) {
  const int tenths = static_cast<int>(celsius.get<double>() * 10 + (celsius < 0 ? -0.5 : 0.5));
  const int size = std::abs(tenths);
  return (tenths < 0 ? "-" : "") + std::to_string(size / 10) + "." + std::to_string(size % 10);
}

void ShowThermal(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& e : document.at("sensors")) {
    rows.push_back({Readable(e.at("number")), Readable(e.at("location")), Degrees(e.at("celsius")),
                    Degrees(e.at("limitCelsius"))});
  }
  RenderList(out, {"Sensor", "Location", "Degrees C", "Limit"}, rows);
}

}  // namespace

std::vector<Face> ListFaces() {
  return {{"log", "  mira log\n  mira --sim log messages --json", ShowLog},
          {"thermal", "  mira --sim thermal --json", ShowThermal}};
}

}  // namespace mira::console
