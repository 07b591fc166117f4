#include "app/claude_settings.hpp"

#include <gtest/gtest.h>

#include "app/shell_words.hpp"

namespace korvo::claude_settings {
namespace {

Document json(const char* text) {
  return Document::parse(text);
}

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

TEST(ClaudeSettingsTest, InstallSetsTheStatusLineAndKeepsEveryOtherKey) {
  const auto installed =
      install(json(R"({"model":"opus","env":{"A":"1"},"permissions":{"allow":["Bash"]}})"),
              "/usr/bin/korvo");
  EXPECT_EQ(std::get<Document>(installed).dump(),
            R"({"model":"opus","env":{"A":"1"},"permissions":{"allow":["Bash"]},)"
            R"("statusLine":{"type":"command","command":"/usr/bin/korvo claude-statusline"}})");
}

TEST(ClaudeSettingsTest, InstallChainsAnEarlierCommandAndKeepsItsOtherKeys) {
  const auto installed = install(
      json(R"({"statusLine":{"type":"command","command":"~/.claude/line.sh 'x y'","padding":0}})"),
      "/opt/korvo dir/korvo");
  const auto& document = std::get<Document>(installed);
  EXPECT_EQ(document["statusLine"]["command"],
            R"('/opt/korvo dir/korvo' claude-statusline --chain '~/.claude/line.sh '\''x y'\''')");
  EXPECT_EQ(document["statusLine"]["padding"], 0);
  EXPECT_TRUE(runsKorvo(document));
}

TEST(ClaudeSettingsTest, InstallRefusesAStatusLineThatIsNotACommand) {
  for (const char* text : {R"({"statusLine":"line.sh"})", R"({"statusLine":{"type":"static"}})",
                           R"({"statusLine":{"type":"command","command":7}})"}) {
    EXPECT_TRUE(std::holds_alternative<DecodeFailure>(install(json(text), "/usr/bin/korvo")))
        << text;
  }
}

TEST(ClaudeSettingsTest, RunsKorvoRecognisesAnyPathToKorvo) {
  const std::pair<const char*, bool> cases[] = {
      {R"({"statusLine":{"type":"command","command":"korvo claude-statusline"}})", true},
      {R"({"statusLine":{"type":"command","command":"'/a b/korvo' claude-statusline --chain x"}})",
       true},
      {R"({"statusLine":{"type":"command","command":"korvo publish"}})", false},
      {R"({"statusLine":{"type":"command","command":"korvo-widgets claude-statusline"}})", false},
      {R"({"statusLine":{"type":"command","command":"line.sh"}})", false},
      {R"({})", false},
  };
  for (const auto& [text, runs] : cases) EXPECT_EQ(runsKorvo(json(text)), runs) << text;
}

TEST(ClaudeSettingsTest, UninstallPutsBackTheBackupsStatusLine) {
  const Document installed = json(
      R"({"model":"sonnet","statusLine":{"type":"command","command":"korvo claude-statusline --chain line.sh"}})");
  EXPECT_EQ(
      uninstall(installed,
                json(R"({"statusLine":{"type":"command","command":"line.sh","padding":2}})"))
          .dump(),
      R"({"model":"sonnet","statusLine":{"type":"command","command":"line.sh","padding":2}})");
  EXPECT_EQ(uninstall(installed, json(R"({"model":"opus"})")).dump(), R"({"model":"sonnet"})");
}

TEST(ClaudeSettingsTest, UninstallWithoutBackupFollowsTheChain) {
  EXPECT_EQ(
      uninstall(
          json(
              R"({"statusLine":{"type":"command","command":"korvo claude-statusline --chain 'a b'"}})"),
          std::nullopt)
          .dump(),
      R"({"statusLine":{"type":"command","command":"a b"}})");
  EXPECT_EQ(
      uninstall(json(R"({"statusLine":{"type":"command","command":"korvo claude-statusline"}})"),
                std::nullopt)
          .dump(),
      "{}");
}

TEST(ClaudeSettingsTest, UninstallLeavesAForeignStatusLineAlone) {
  const Document foreign = json(R"({"statusLine":{"type":"command","command":"line.sh"}})");
  EXPECT_EQ(uninstall(foreign, json("{}")), foreign);
}

TEST(ClaudeSettingsTest, ParseRefusesWhatIsNotAnObjectOfJson) {
  for (const char* text : {"", "{", "[]", "\"x\"", R"({"a":1,"a":2})", "{} {}"}) {
    EXPECT_TRUE(std::holds_alternative<DecodeFailure>(parse(text))) << text;
  }
  EXPECT_TRUE(std::holds_alternative<Document>(parse("\xEF\xBB\xBF{\"a\":1}")));
}

}  // namespace
}  // namespace korvo::claude_settings
