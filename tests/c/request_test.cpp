// Requests: what they say, what is refused, and what becomes of their secrets.

#include <gtest/gtest.h>

#include "client/command.h"
#include "tests/support/client_library.h"
#include "tests/support/console_program.h"

namespace mira::test {
namespace {

using nlohmann::json;

TEST(CInterface, ToldItsVersionAndTheNamesOfStatuses) {
  EXPECT_EQ(Client().abi(), MIRA_ABI);
  EXPECT_STREQ(Client().version(), MIRA_VERSION);
  EXPECT_STREQ(Client().status_name(MIRA_DONE), "done");
  EXPECT_STREQ(Client().status_name(MIRA_CANCELLED), "cancelled");
  EXPECT_STREQ(Client().status_name(MIRA_BUSY), "busy");
  EXPECT_STREQ(Client().status_name(15), "unknown");
  EXPECT_STREQ(Client().status_name(-1), "unknown");
  Client().free(nullptr);
}

TEST(CInterface, RefusesOptionsThatItDoesNotKnow) {
  struct Case {
    std::string options;
    std::int32_t status;
    const char* error;
  };
  const Case cases[] = {
      {"{", MIRA_USAGE, "bad-request"},
      {"[]", MIRA_USAGE, "bad-request"},
      {"\xC3\x28", MIRA_USAGE, "bad-request"},
      {R"({"simulated": 7})", MIRA_USAGE, "bad-option"},
      {R"({"machine": "laptop"})", MIRA_USAGE, "bad-option"},
      {R"({"state": "here"})", MIRA_USAGE, "bad-option"},
      {R"({"simulated": "laptop", "simulated": "desktop"})", MIRA_USAGE, "bad-request"},
      {R"({"simulated": "lapdog"})", MIRA_NOT_FOUND, "unknown-profile"},
      {R"({"simulated": "missing.json"})", MIRA_INVALID_VALUE, "bad-profile"},
      {R"({"simulated": {"base": "lapdog"}})", MIRA_INVALID_VALUE, "bad-profile"},
  };
  for (const Case& c : cases) {
    const OpenAnswer answer = Open(c.options);
    EXPECT_EQ(answer.status, c.status) << c.options;
    EXPECT_EQ(answer.Error(), c.error) << c.options;
  }
  mira_handle handle = 77;
  EXPECT_EQ(Client().open(nullptr, 5, &handle, nullptr, nullptr), MIRA_USAGE);
  EXPECT_EQ(handle, 0u);
  EXPECT_EQ(Client().open("{}", 2, nullptr, nullptr, nullptr), MIRA_USAGE);
}

TEST(CInterface, OpensAMachineThatIsDescribed) {
  const OpenAnswer opened =
      Open(R"({"simulated": {"name": "kiosk", "base": "desktop", "assetTag": "K-7"}})");
  ASSERT_EQ(opened.status, MIRA_DONE) << opened.text;
  EXPECT_EQ(opened.document.at("abi"), 1);
  const Answer tag = Send(opened.handle, R"({"command": "tag.show", "kind": "asset"})");
  EXPECT_EQ(tag.document.at("tags").at(0).at("value"), "K-7");
  EXPECT_EQ(Send(opened.handle, R"({"command": "info"})").document.at("profile"), "kiosk");
  EXPECT_EQ(Client().close(opened.handle), MIRA_DONE);
}

TEST(CInterface, RefusesRequestsThatAreNone) {
  struct Case {
    std::string request;
    const char* error;
  };
  const std::string deep(100000, '[');
  const Case cases[] = {
      {"", "bad-request"},
      {"{", "bad-request"},
      {"null", "bad-request"},
      {"[{\"command\": \"info\"}]", "bad-request"},
      {"{\"command\": \"info\"} more", "bad-request"},
      {"{\"command\": \"inf\xFF\"}", "bad-request"},
      {std::string("\xFF\xFE{\0}\0", 6), "bad-request"},
      {std::string("{\"command\": \"info\"}\0", 20), "bad-request"},
      {"{\"a\": " + deep, "bad-request"},
      {"{\"command\": \"info\", \"a\": 1e999}", "bad-request"},
      {R"({"command": "info", "command": "info"})", "bad-request"},
      {"{}", "missing-argument"},
      {R"({"command": 5})", "missing-argument"},
      {R"({"command": "tag.sho"})", "unknown-command"},
      {R"({"command": "tag.show", "colour": "red"})", "unknown-argument"},
      {R"({"command": "tag.show", "kind": "red"})", "bad-argument"},
      {R"({"command": "tag.show", "kind": ["asset"]})", "bad-argument"},
      {R"({"command": "tag.show", "kind": "asset", "arguments": {"kind": "asset"}})",
       "bad-argument"},
      {R"({"command": "tag.show", "arguments": ["asset"]})", "unknown-argument"},
      {R"({"command": "tag.set", "kind": "asset"})", "missing-argument"},
      {R"({"command": "tag.set", "kind": "asset", "text": "A", "whatIf": "yes"})", "bad-argument"},
      {R"({"command": "smbios", "type": -1})", "bad-argument"},
      {R"({"command": "smbios", "type": 1.5})", "bad-argument"},
  };
  const OpenMachine machine;
  for (const Case& c : cases) {
    const Answer answer = Send(machine.Handle(), c.request);
    EXPECT_EQ(answer.status, MIRA_USAGE) << c.request.substr(0, 100);
    EXPECT_EQ(answer.Error(), c.error) << c.request.substr(0, 100);
    EXPECT_EQ(answer.document.value("simulated", false), true);
  }
  EXPECT_EQ(Client().request(machine.Handle(), nullptr, 3, nullptr, 0, nullptr, nullptr, nullptr,
                             nullptr),
            MIRA_USAGE);
  EXPECT_EQ(
      Client().request(machine.Handle(), "{}", 2, nullptr, 1, nullptr, nullptr, nullptr, nullptr),
      MIRA_USAGE);
}

TEST(CInterface, WorksWithoutADocument) {
  const OpenMachine machine;
  const std::string request = R"({"command": "tag.show"})";
  const auto size = static_cast<std::uint32_t>(request.size());
  EXPECT_EQ(Client().request(machine.Handle(), request.data(), size, nullptr, 0, nullptr, nullptr,
                             nullptr, nullptr),
            MIRA_DONE);
  std::uint32_t document_size = 9;
  EXPECT_EQ(Client().request(machine.Handle(), request.data(), size, nullptr, 0, nullptr, nullptr,
                             nullptr, &document_size),
            MIRA_DONE);
  EXPECT_EQ(document_size, 0u);
  char* document = nullptr;
  EXPECT_EQ(Client().request(machine.Handle(), request.data(), size, nullptr, 0, nullptr, nullptr,
                             &document, nullptr),
            MIRA_DONE);
  EXPECT_EQ(json::parse(document).at("schemaVersion"), 1);
  Client().free(document);
}

TEST(CInterface, ChecksAndWritesNothingWithWhatIf) {
  const OpenMachine machine;
  const auto value = [&] {
    return machine.Send({{"command", "tag.show"}, {"kind", "asset"}}).document["tags"][0]["value"];
  };
  json request = {{"command", "tag.set"}, {"kind", "asset"}, {"text", "NF-1"}, {"whatIf", true}};
  const Answer planned = machine.Send(request);
  EXPECT_EQ(planned.status, MIRA_DONE) << planned.text;
  EXPECT_EQ(planned.document.at("changed"), false);
  EXPECT_EQ(planned.document.at("changes").at(0).at("after"), "NF-1");
  EXPECT_EQ(value(), "NF-004711");
  request["whatIf"] = false;
  EXPECT_EQ(machine.Send(request).document.at("changed"), true);
  EXPECT_EQ(value(), "NF-1");
  EXPECT_EQ(machine.Send(request).document.at("changed"), false) << "it is so already";
  EXPECT_EQ(machine.Send({{"command", "tag.show"}, {"whatIf", true}}).status, MIRA_DONE)
      << "what only reads writes nothing anyway";
}

TEST(CInterface, TakesArgumentsThatAreCalledLikeItsOwnMembers) {
  const OpenMachine machine;
  const Answer answer = machine.Send(
      {{"command", "tag.show"}, {"arguments", {{"kind", "extended"}, {"command", 0}}}});
  EXPECT_EQ(answer.document["tags"][0]["value"], "Reading room, desk 12") << answer.text;
}

TEST(CInterface, TakesWhatFilesHoldAsContent) {
  const OpenMachine machine;
  const Answer dump = machine.Send({{"command", "smbios"}, {"form", "rsmb"}});
  ASSERT_EQ(dump.status, MIRA_DONE) << dump.text;
  const Answer own = machine.Send({{"command", "inventory"}});
  const Answer file =
      machine.Send({{"command", "inventory"}, {"file", {{"bytes", dump.document.at("table")}}}});
  EXPECT_EQ(file.status, MIRA_DONE) << file.text;
  EXPECT_EQ(own.document.at("system"), file.document.at("system"));

  json saved = machine.Send({{"command", "attr.export"}}).document;
  ASSERT_TRUE(saved.contains("attributes")) << saved;
  const Answer same = machine.Send({{"command", "attr.import"}, {"file", saved}, {"check", true}});
  EXPECT_EQ(same.status, MIRA_DONE) << same.text;
  EXPECT_EQ(machine.Send({{"command", "attr.import"}, {"file", saved.dump()}}).status, MIRA_DONE);
  EXPECT_EQ(machine.Send({{"command", "attr.import"}, {"file", "[}"}}).status, MIRA_INVALID_VALUE);

  const json snapshot = machine.Send({{"command", "snapshot"}}).document;
  const Answer then = machine.Send({{"command", "report"}, {"from", snapshot}});
  ASSERT_EQ(then.status, MIRA_DONE) << then.text;
  EXPECT_EQ(then.document.at("html"), machine.Send({{"command", "report"}}).document.at("html"));
}

// Every command that reads shows the same as the program with --json.
TEST(CInterface, GivesTheDocumentsThatTheProgramPrints) {
  struct Case {
    json request;
    std::vector<std::string> arguments;
  };
  const Case more[] = {
      {{{"command", "smbios"}, {"type", 17}, {"attributes", true}},
       {"smbios", "--type", "17", "--attributes"}},
      {{{"command", "boot.show"}, {"list", 77}}, {"boot", "show", "77"}},
      {{{"command", "tag.show"}, {"kind", "service"}}, {"tag", "show", "service"}},
      {{{"command", "attr.get"}, {"names", {"WakeOnLan", "FanFloor"}}},
       {"attr", "get", "WakeOnLan", "FanFloor"}},
      {{{"command", "attr.export"}}, {"attr", "export", "-"}},
      {{{"command", "boot.encode"}, {"path", "PciRoot(0x0)/Pci(0x1F,0x2)"}},
       {"boot", "encode", "PciRoot(0x0)/Pci(0x1F,0x2)"}},
      {{{"command", "tag.set"}, {"kind", "asset"}, {"text", "NF-1"}, {"whatIf", true}},
       {"tag", "set", "asset", "NF-1", "--what-if"}},
  };
  for (const char* const profile : {"laptop", "desktop", "old-firmware", "no-calling-interface"}) {
    std::vector<Case> cases;
    for (const client::Command& command : client::Commands()) {
      const bool needs = std::any_of(command.arguments.begin(), command.arguments.end(),
                                     [](const client::Argument& a) { return a.required; });
      const std::string name = command.name;
      if (command.effect != client::Effect::kReads || needs || name == "attr.export") continue;
      // It tells of a start-up that other requests have made before.
      if (name == "snapshot") continue;
      Case c{{{"command", name}}, {}};
      std::istringstream words(name);
      for (std::string word; std::getline(words, word, '.');) c.arguments.push_back(word);
      cases.push_back(std::move(c));
    }
    cases.insert(cases.end(), std::begin(more), std::end(more));
    // Each on a machine that is opened for it: start-up finds less to do where there was one
    // before, and what shows whole machines says so.
    std::vector<Answer> answers;
    for (const Case& c : cases) answers.push_back(OpenMachine(profile).Send(c.request));
    for (std::size_t i = 0; i < cases.size(); ++i) {
      std::vector<std::string> arguments = {"--sim=" + std::string(profile), "--json"};
      arguments.insert(arguments.end(), cases[i].arguments.begin(), cases[i].arguments.end());
      const ProgramResult printed = Mira(arguments);
      EXPECT_EQ(answers[i].status, printed.status) << profile << cases[i].request;
      // Hints are a face's own.
      const auto without_hints = [](json document) {
        const std::function<void(json&)> clear = [&clear](json& value) {
          if (!value.is_structured()) return;
          if (value.is_object()) value.erase("hint");
          for (json& part : value) clear(part);
        };
        clear(document);
        return document;
      };
      EXPECT_EQ(without_hints(answers[i].document), without_hints(Document(printed)))
          << profile << cases[i].request;
    }
  }
}

// The guide's table has a row for every command.
TEST(CInterface, IsDescribedInTheGuide) {
  std::ifstream file(MIRA_C_GUIDE, std::ios::binary);
  const std::string guide{std::istreambuf_iterator<char>(file), {}};
  std::string missing;
  for (const client::Command& command : client::Commands()) {
    std::string row = std::string("| `") + command.name + "` |";
    for (const bool is_required : {true, false}) {
      for (const client::Argument& argument : command.arguments) {
        if (argument.required != is_required) continue;
        row += std::string(row.ends_with('|') ? " " : ", ") + (is_required ? "**`" : "`") +
               argument.name + (is_required ? "`**" : "`");
      }
    }
    row += " |";
    for (const char* const slot : command.secrets) {
      row += std::string(row.ends_with('|') ? " `" : ", `") + slot + '`';
    }
    row += " |\n";
    if (guide.find(row) == std::string::npos) missing += row;
  }
  EXPECT_EQ(missing, "");
}

TEST(CInterface, BringsAMachineIntoAState) {
  const OpenMachine machine("locked");
  const json state = {{"attributes", {{"FanFloor", 30}, {"OwnerPassword", {{"secret", "owner"}}}}},
                      {"tags", {{"asset", "NF-1"}}}};
  const json request = {{"command", "apply"}, {"state", state}, {"writeSecrets", true}};
  EXPECT_EQ(machine.Send(request).Error(), "value-needed");
  EXPECT_EQ(
      machine.Send(request, {{"secrets", R"({"password": "wrong", "owner": "geheim-77"})"}}).status,
      MIRA_PASSWORD);
  const Answer done =
      machine.Send(request, {{"secrets", R"({"password": "setup1", "owner": "geheim-77"})"}});
  EXPECT_EQ(done.status, MIRA_DONE) << done.text;
  EXPECT_EQ(done.document.at("changed"), true);
  EXPECT_EQ(done.text.find("geheim"), std::string::npos);
  const Answer again = machine.Send({{"command", "apply"}, {"state", state.dump()}});
  EXPECT_EQ(again.document.at("changed"), false) << again.text;
  const Answer check = machine.Send(
      {{"command", "apply"}, {"state", {{"attributes", {{"FanFloor", 40}}}}}, {"check", true}});
  EXPECT_EQ(check.status, MIRA_DIFFERS) << check.text;
  const Answer beside =
      machine.Send({{"command", "apply"},
                    {"state", {{"state", state}, {"secrets", {{"password", "geheim-77"}}}}}});
  EXPECT_EQ(beside.Error(), "secret-in-request");
  EXPECT_EQ(beside.text.find("geheim"), std::string::npos);
}

TEST(Secrets, AreRefusedInARequest) {
  const OpenMachine machine("locked");
  for (const char* const name :
       {"password", "setup", "new", "newPassword", "SetupPassword", "secrets", "pwd"}) {
    for (const bool is_inner : {false, true}) {
      json request = {{"command", "hdd.set"}, {"handle", 1}};
      (is_inner ? request["arguments"] : request)[name] = "geheim-77";
      const Answer answer = machine.Send(request);
      EXPECT_EQ(answer.status, MIRA_USAGE) << name;
      EXPECT_EQ(answer.Error(), "secret-in-request") << name;
      EXPECT_EQ(answer.text.find("geheim"), std::string::npos) << "is not repeated";
    }
  }
  const Answer value =
      machine.Send({{"command", "attr.set"}, {"name", "OwnerPassword"}, {"value", "geheim-77"}});
  EXPECT_EQ(value.Error(), "secret-in-the-open");
  EXPECT_EQ(value.text.find("geheim"), std::string::npos);
}

TEST(Secrets, AreCheckedBeforeTheyAreUsed) {
  const OpenMachine machine("locked");
  const json request = {{"command", "password.verify"}, {"class", 9}};
  const std::string long_text(1025, 'x');
  const std::vector<std::pair<std::vector<Secret>, const char*>> cases = {
      {{{"new", "geheim"}}, "unknown-secret"},
      {{{"geheim", "setup1"}}, "unknown-secret"},
      {{{"password", "setup1"}, {"password", "setup1"}}, "bad-secret"},
      {{{"password", long_text}}, "bad-secret"},
      {{{"password", std::string("setup1\0", 7)}}, "bad-secret"},
  };
  for (const auto& [secrets, error] : cases) {
    const Answer answer = machine.Send(request, secrets);
    EXPECT_EQ(answer.status, MIRA_USAGE) << answer.text;
    EXPECT_EQ(answer.Error(), error);
    EXPECT_EQ(answer.text.find("geheim"), std::string::npos);
  }
  EXPECT_EQ(machine.Send({{"command", "info"}}, {{"password", "setup1"}}).Error(),
            "unknown-secret");
  const std::string text = request.dump();
  const mira_secret broken[] = {{nullptr, "setup1", 6}, {"password", nullptr, 6}};
  for (const mira_secret& secret : broken) {
    EXPECT_EQ(
        Client().request(machine.Handle(), text.data(), static_cast<std::uint32_t>(text.size()),
                         &secret, 1, nullptr, nullptr, nullptr, nullptr),
        MIRA_USAGE);
  }
}

TEST(Secrets, ServeOneRequestAlone) {
  const OpenMachine machine("locked");
  const json tag = {{"command", "tag.set"}, {"kind", "asset"}, {"text", "NF-1"}};
  const Answer needed = machine.Send(tag);
  EXPECT_EQ(needed.status, MIRA_PASSWORD) << needed.text;
  EXPECT_EQ(needed.Error(), "password-needed");
  EXPECT_NE(needed.document["error"]["hint"], "");
  EXPECT_EQ(machine.Send(tag, {{"password", "wrong77"}}).status, MIRA_PASSWORD);
  EXPECT_EQ(machine.Send(tag, {{"password", "setup1"}}).status, MIRA_DONE);
  EXPECT_EQ(machine.Send({{"command", "tag.set"}, {"kind", "asset"}, {"text", "NF-2"}}).status,
            MIRA_PASSWORD);

  // An attribute's write has a key of its own, too.
  const auto set = [](int value) {
    return json{{"command", "attr.set"}, {"name", "FanFloor"}, {"value", value}};
  };
  EXPECT_EQ(machine.Send(set(30), {{"password", "setup1"}}).status, MIRA_DONE);
  EXPECT_EQ(machine.Send(set(40)).status, MIRA_PASSWORD);
  const Answer secret = machine.Send({{"command", "attr.set"}, {"name", "OwnerPassword"}},
                                     {{"value", "geheim-77"}, {"password", "setup1"}});
  EXPECT_EQ(secret.status, MIRA_DONE) << secret.text;
  EXPECT_EQ(secret.text.find("geheim"), std::string::npos);
}

}  // namespace
}  // namespace mira::test
