// The control of the simulated machine: faults, journal, states, profiles.

#include "console/face.h"

namespace mira::console {
namespace {

void RenderNothingWritten(const Json& document, std::ostream& out) {
  if (document.value("whatIf", false)) out << "Nothing was written.\n";
}

// What a fault does, in words: "completion -1, 50 ms, loses power (within)".
std::string FaultEffect(const Json& fault) {
  std::string effect;
  const auto add = [&effect](const std::string& part) {
    effect += (effect.empty() ? "" : ", ") + part;
  };
  if (!fault.at("completion").is_null()) add("completion " + fault.at("completion").dump());
  if (!fault.at("hresult").is_null()) {
    add("HRESULT " + Hex(fault.at("hresult").get<std::uint64_t>(), 8));
  }
  if (fault.at("delayMs") != 0) add(fault.at("delayMs").dump() + " ms");
  if (!fault.at("truncate").is_null()) {
    add("the reply ends after " + fault.at("truncate").dump() + " bytes");
  }
  if (fault.at("overwrite") != "") {
    add("the reply has " + client::Readable(fault.at("overwrite")) + " at " +
        fault.at("overwriteAt").dump());
  }
  if (fault.at("loses") != "nothing") {
    add("loses " + client::Readable(fault.at("loses")) + " (" +
        client::Readable(fault.at("moment")) + ")");
  }
  return effect;
}

std::string FaultCall(const Json& fault) {
  const Json& nth = fault.at("nth");
  return nth == 0 ? "every" : nth.dump();
}

void RenderFault(const Json& document, std::ostream& out) {
  const Json& fault = document.at("fault");
  out << "Fault " << fault.at("number") << ": " << Escaped(client::Readable(fault.at("operation")))
      << ", call " << FaultCall(fault) << ": " << FaultEffect(fault) << '\n';
  RenderNothingWritten(document, out);
}

void RenderFaults(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& fault : document.at("faults")) {
    rows.push_back({fault.at("number").dump(), client::Readable(fault.at("operation")),
                    FaultCall(fault), fault.at("calls").dump(), fault.at("hits").dump(),
                    FaultEffect(fault)});
  }
  RenderList(out, {"Number", "Operation", "Call", "Calls so far", "Hits", "Effect"}, rows,
             {0, 2, 3, 4});
}

void RenderCleared(const Json& document, std::ostream& out) {
  const auto count = document.at("cleared").get<std::size_t>();
  out << count << (count == 1 ? " fault" : " faults")
      << (document.value("whatIf", false) ? " would be removed.\n" : " removed.\n");
}

std::string WordsText(const Json& words) {
  std::string text;
  for (const Json& word : words) {
    text += (text.empty() ? "" : " ") +
            (word.is_null() ? std::string("[key]") : Hex(word.get<std::uint64_t>()));
  }
  return text;
}

void RenderJournal(const Json& document, std::ostream& out) {
  for (const Json& entry : document.at("entries")) {
    if (entry.at("kind") == "call") {
      out << "call " << entry.at("class") << '/' << entry.at("select") << " ("
          << WordsText(entry.at("arguments")) << "), " << entry.at("recordLength") << " bytes -> ";
      if (entry.at("completion").is_null()) {
        out << "no answer";
      } else {
        out << entry.at("completion") << " (" << WordsText(entry.at("results")) << ')';
      }
      out << (entry.at("injected") == true ? ", a fault" : "") << '\n';
      continue;
    }
    out << Escaped(client::Readable(entry.at("operation")));
    if (entry.at("about") != "") out << ' ' << Escaped(client::Readable(entry.at("about")));
    if (!entry.at("size").is_null()) out << ", " << entry.at("size") << " bytes";
    out << " -> " << Hex(entry.at("result").get<std::uint64_t>(), 8) << '\n';
  }
  if (document.at("entries").empty()) out << "(none)\n";
}

void RenderSaved(const Json& document, std::ostream& out) {
  if (!document.value("whatIf", false)) {
    out << "The state of '" << Escaped(client::Readable(document.at("profile"))) << "' is in '"
        << Escaped(client::Readable(document.at("file"))) << "'.\n";
  }
  RenderNothingWritten(document, out);
}

void RenderDifferences(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& difference : document.at("differences")) {
    rows.push_back({client::Readable(difference.at("place")),
                    client::Readable(difference.at("saved")),
                    client::Readable(difference.at("now"))});
  }
  RenderList(out, {"Place", "Saved", "Now"}, rows);
}

void RenderProfiles(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& profile : document.at("profiles")) {
    rows.push_back(
        {client::Readable(profile.at("name")), client::Readable(profile.at("description"))});
  }
  RenderList(out, {"Profile", "Machine"}, rows);
}

void RenderProfile(const Json& document, std::ostream& out) {
  WriteJson(out, document.at("profile"));
}

void RenderDescribed(const Json& document, std::ostream& out) {
  const bool is_dry = document.at("whatIf").get<bool>();
  out << (is_dry ? "Would describe" : "Described") << " the machine, with "
      << document.at("exported") << " attributes, in "
      << Escaped(client::Readable(document.at("file"))) << ".\n";
}

void RenderChecked(const Json& document, std::ostream& out) {
  out << "'" << Escaped(client::Readable(document.at("file"))) << "' describes '"
      << Escaped(client::Readable(document.at("name")))
      << "': " << Escaped(client::Readable(document.at("description"))) << ".\n";
}

}  // namespace

std::vector<Face> SimControlFaces() {
  return {
      {"sim.fault.add",
       "  mira --sim sim fault add 11/0 --completion=-1\n"
       "  mira --sim sim fault add 1/0 --nth 2 --lose power --moment within\n"
       "  mira --sim sim fault add firmware --nth 0 --delay 50\n"
       "  mira --sim sim fault add 0/0 --corrupt 20=ffffffff\n"
       "  mira --sim sim fault add IWbemServices::ExecMethod --hresult 0x80041001\n"
       "A fault is kept with the machine and hits the calls of every program that uses it, also "
       "of\n"
       "one that runs already. Calls are counted across programs. After a loss of power calls "
       "fail\n"
       "until 'sim reboot'.",
       RenderFault},
      {"sim.fault.list", "  mira --sim sim fault list", RenderFaults},
      {"sim.fault.clear", "  mira --sim sim fault clear", RenderCleared},
      {"sim.journal",
       "  mira --sim sim journal\n"
       "  mira --sim sim journal --clear --json\n"
       "Security keys are masked, and of a record only its length is told. The newest 0.5 to 1 "
       "MiB\n"
       "are kept.",
       RenderJournal},
      {"sim.save",
       "  mira --sim sim save before.state\n"
       "The file holds the machine's passwords; on Linux only its owner can read it.",
       RenderSaved},
      {"sim.load", "  mira --sim sim load before.state --yes"},
      {"sim.diff",
       "  mira --sim sim diff before.state\n"
       "  mira --sim sim diff before.state --check",
       RenderDifferences},
      {"sim.profile.list", "  mira sim profile list", RenderProfiles},
      {"sim.profile.show",
       "  mira sim profile show locked\n"
       "  mira sim profile show kiosk.json",
       RenderProfile},
      {"sim.profile.check", "  mira sim profile check kiosk.json", RenderChecked},
      {.command = "sim.profile.from-snapshot",
       .examples = "  mira sim profile from-snapshot pc.snapshot twin.json\n"
                   "  mira sim profile from-snapshot pc.snapshot --keep-identity --value name",
       .render = RenderDescribed,
       .saves = "attributes",
       .is_private = true},
  };
}

}  // namespace mira::console
