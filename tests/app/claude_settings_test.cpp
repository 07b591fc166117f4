#include "app/claude_settings.hpp"

#include <gtest/gtest.h>

#include "app/json_text.hpp"
#include "app/shell_words.hpp"
#include "support/files.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

namespace korvo::claude_settings {
namespace {

TEST(ShellWordsTest, QuotedWordsSplitBackToThemselves) {
  const std::string words[] = {"plain", "/usr/bin/korvo", "two words", "it's", "$HOME `x`", ""};
  for (const auto& word : words) {
    const auto split = shell_words::split("cmd " + shell_words::quote(word) + " end");
    ASSERT_TRUE(split) << word;
    EXPECT_EQ(*split, (std::vector<std::string>{"cmd", word, "end"})) << word;
  }
  EXPECT_EQ(shell_words::quote("/usr/bin/korvo"), "/usr/bin/korvo");
  EXPECT_EQ(shell_words::quote("a b"), "'a b'");
}

TEST(ShellWordsTest, ShellSyntaxSplitsAsTheShellDoes) {
  EXPECT_EQ(*shell_words::split(R"(a "b c" d\ e 'f')"),
            (std::vector<std::string>{"a", "b c", "d e", "f"}));
  EXPECT_FALSE(shell_words::split("a 'b"));
  EXPECT_FALSE(shell_words::split("a \"b"));
}

const std::filesystem::path korvo = "/usr/bin/korvo";

std::string installed(std::string_view text, const std::filesystem::path& program = korvo) {
  auto result = install(text, program);
  EXPECT_TRUE(std::holds_alternative<std::string>(result)) << text;
  return std::holds_alternative<std::string>(result) ? std::get<std::string>(result) : "";
}

TEST(ClaudeSettingsTest, InstallAddsTheStatusLineAndKeepsEveryOtherByte) {
  EXPECT_EQ(installed(R"({"model":"opus","env":{"A":"1"},"permissions":{"allow":["Bash"]}})"),
            R"({"model":"opus","env":{"A":"1"},"permissions":{"allow":["Bash"]},)"
            R"("statusLine":{"type":"command","command":"/usr/bin/korvo claude-statusline"}})");
  EXPECT_EQ(installed("{\n  \"model\" : \"opus\",\n  \"n\": 1\n}\n"),
            "{\n  \"model\" : \"opus\",\n  \"n\": 1,\n  \"statusLine\" : "
            "{\"type\":\"command\",\"command\":\"/usr/bin/korvo claude-statusline\"}\n}\n");
  EXPECT_EQ(installed("{}\n"),
            R"({"statusLine": {"type":"command","command":"/usr/bin/korvo claude-statusline"}})"
            "\n");
  EXPECT_EQ(
      installed(R"({"statusLine": null, "z": 1})"),
      R"({"statusLine": {"type":"command","command":"/usr/bin/korvo claude-statusline"}, "z": 1})");
}

TEST(ClaudeSettingsTest, BigIntegersNegativeZeroEscapesAndOrderSurviveInstallAndUninstall) {
  const std::string original =
      "\xEF\xBB\xBF{\n"
      "    \"zeta\": 123456789012345678901234567890,\n"
      "    \"minusZero\": -0, \"tiny\": 1e-400, \"float\": 1.10,\n"
      "    \"text\": \"\\u00e9 \\\"statusLine\\\": {}\",\n"
      "    \"nested\": {\"statusLine\": [1, {\"a\": \"}\"}]},\n"
      "    \"alpha\": [ ]\n"
      "}";
  const std::string withKorvo = installed(original);
  EXPECT_EQ(withKorvo,
            original.substr(0, original.size() - 2) +
                ",\n    \"statusLine\": "
                "{\"type\":\"command\",\"command\":\"/usr/bin/korvo claude-statusline\"}\n}");
  EXPECT_TRUE(runsKorvo(Document::parse(withKorvo), korvo));
  EXPECT_EQ(uninstall(withKorvo, original, korvo), original);
  EXPECT_EQ(uninstall(withKorvo, std::nullopt, korvo), original);
}

TEST(ClaudeSettingsTest, InstallChainsAnEarlierCommandEditingOnlyTheCommand) {
  const std::string original =
      "{\"statusLine\": {\n  \"type\": \"command\",\n  \"command\": \"~/.claude/line.sh 'x y'\",\n"
      "  \"padding\": 0\n}, \"big\": 18446744073709551616}";
  const std::string withKorvo = installed(original, "/opt/korvo dir/korvo");
  EXPECT_EQ(
      withKorvo,
      "{\"statusLine\": {\n  \"type\": \"command\",\n  \"command\": "
      R"("'/opt/korvo dir/korvo' claude-statusline --chain '~/.claude/line.sh '\\''x y'\\'''",)"
      "\n  \"padding\": 0\n}, \"big\": 18446744073709551616}");
  EXPECT_EQ(uninstall(withKorvo, original, "/opt/korvo dir/korvo"), original);
  EXPECT_EQ(uninstall(withKorvo, std::nullopt, "/opt/korvo dir/korvo"), original);
}

TEST(ClaudeSettingsTest, InstallRefusesAStatusLineThatIsNotACommand) {
  for (const char* text : {R"({"statusLine":"line.sh"})", R"({"statusLine":{"type":"static"}})",
                           R"({"statusLine":{"type":"command","command":7}})", "[]", "{"}) {
    EXPECT_TRUE(std::holds_alternative<DecodeFailure>(install(text, korvo))) << text;
  }
}

TEST(ClaudeSettingsTest, InstallLeavesAKorvoStatusLineAsItIs) {
  const std::string text =
      R"({"statusLine":{"type":"command","command":"korvo claude-statusline"}})";
  EXPECT_EQ(installed(text), text);
}

TEST(ClaudeSettingsTest, RunsKorvoRecognisesKorvoByWhatItRuns) {
  testing_support::TemporaryDirectory directory;
  const auto real = directory.write("bin/korvo-1.0", "#!/bin/sh\n");
  std::filesystem::create_symlink("korvo-1.0", directory.path() / "bin/korvo");
  std::filesystem::create_symlink(real, directory.path() / "my-status");
  const auto other = directory.write("bin/korvo-widgets", "#!/bin/sh\n");
  const std::string bin = (directory.path() / "bin").string();
  testing_support::ScopedEnvironment environment;
  environment.set("PATH", bin + ":/usr/bin:/bin");
  const auto command = [](const std::string& line) {
    return Document{{"statusLine", {{"type", "command"}, {"command", line}}}};
  };
  const std::pair<std::string, bool> cases[] = {
      {real.string() + " claude-statusline", true},
      {bin + "/korvo claude-statusline --chain x", true},
      {(directory.path() / "my-status").string() + " claude-statusline", true},
      {"korvo-1.0 claude-statusline", true},
      {"'/a b/korvo' claude-statusline --chain x", true},
      {"korvo claude-statusline", true},
      {real.string() + " publish", false},
      {other.string() + " claude-statusline", false},
      {"korvo-widgets claude-statusline", false},
      {"line.sh", false},
  };
  for (const auto& [line, runs] : cases) EXPECT_EQ(runsKorvo(command(line), real), runs) << line;
  EXPECT_FALSE(runsKorvo(Document::parse("{}"), real));
}

TEST(ClaudeSettingsTest, UninstallPutsBackTheBackupsStatusLineAsWritten) {
  const std::string now =
      R"({"model":"sonnet","statusLine":{"type":"command","command":"korvo claude-statusline --chain line.sh"}})";
  EXPECT_EQ(
      uninstall(now,
                R"({"statusLine" : { "type":"command", "command":"line.sh", "padding":2.50 }})",
                korvo),
      R"({"model":"sonnet","statusLine":{ "type":"command", "command":"line.sh", "padding":2.50 }})");
  EXPECT_EQ(uninstall(now, R"({"model":"opus"})", korvo), R"({"model":"sonnet"})");
}

TEST(ClaudeSettingsTest, UninstallWithoutBackupFollowsTheChain) {
  EXPECT_EQ(
      uninstall(
          R"({"statusLine":{"type":"command","command":"korvo claude-statusline --chain 'a b'"}})",
          std::nullopt, korvo),
      R"({"statusLine":{"type":"command","command":"a b"}})");
  EXPECT_EQ(uninstall(R"({"statusLine":{"type":"command","command":"korvo claude-statusline"}})",
                      std::nullopt, korvo),
            "{}");
}

TEST(ClaudeSettingsTest, UninstallLeavesAForeignStatusLineAlone) {
  const std::string foreign = R"({"statusLine":{"type":"command","command":"line.sh"}})";
  EXPECT_EQ(uninstall(foreign, "{}", korvo), foreign);
}

TEST(JsonTextTest, MembersAreFoundAtTheTopLevelOnly) {
  const std::string text = R"( {"a": {"b": "x"}, "b" :[1,"]"] , "c\u0022": -0} )";
  const auto top = json_text::topObject(text);
  EXPECT_EQ(top, 1u);
  const auto b = json_text::memberValue(text, top, "b");
  ASSERT_TRUE(b);
  EXPECT_EQ(text.substr(b->begin, b->end - b->begin), R"([1,"]"])");
  const auto c = json_text::memberValue(text, top, "c\"");
  ASSERT_TRUE(c);
  EXPECT_EQ(text.substr(c->begin, c->end - c->begin), "-0");
  EXPECT_EQ(json_text::memberValue(text, top, "x"), std::nullopt);
  const auto inner =
      json_text::memberValue(text, json_text::memberValue(text, top, "a")->begin, "b");
  ASSERT_TRUE(inner);
  EXPECT_EQ(text.substr(inner->begin, inner->end - inner->begin), "\"x\"");
}

TEST(JsonTextTest, RemovingUndoesAddingWhereverTheMemberGoes) {
  for (const std::string text :
       {"{}", "{ }", "{\n}", R"({"a":1})", "{\n\t\"a\" :1,\n\t\"b\": 2\n}"}) {
    const std::string added = json_text::withMember(text, "k", "[0]");
    EXPECT_EQ(nlohmann::json::parse(added)["k"], nlohmann::json::array({0})) << added;
    EXPECT_EQ(json_text::withoutMember(added, "k"), text) << added;
  }
  EXPECT_EQ(json_text::withoutMember(R"({"k": 1, "a": 2})", "k"), R"({"a": 2})");
  EXPECT_EQ(json_text::withoutMember(R"({"a": 2, "k": 1, "b": 3})", "k"), R"({"a": 2, "b": 3})");
  EXPECT_EQ(json_text::withMember(R"({"a": 2, "k": 1, "b": 3})", "k", "true"),
            R"({"a": 2, "k": true, "b": 3})");
}

TEST(ClaudeSettingsTest, ParseRefusesWhatIsNotAnObjectOfJson) {
  for (const char* text : {"", "{", "[]", "\"x\"", R"({"a":1,"a":2})", "{} {}"}) {
    EXPECT_TRUE(std::holds_alternative<DecodeFailure>(parse(text))) << text;
  }
  EXPECT_TRUE(std::holds_alternative<Document>(parse("\xEF\xBB\xBF{\"a\":1}")));
}

}  // namespace
}  // namespace korvo::claude_settings
