#include "sources/codex_rollouts.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shared/moment_text.hpp"
#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

const std::filesystem::path fixtureHome = std::filesystem::path(KORVO_FIXTURES_DIR) / "codex";

std::string tokenCount(const char* timestamp, double fiveHourUsed, double weeklyUsed) {
  return std::string(R"({"timestamp":")") + timestamp +
         R"(","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"limit_id":"codex","primary":{"used_percent":)" +
         std::to_string(fiveHourUsed) +
         R"(,"window_minutes":300,"resets_at":1794721500},"secondary":{"used_percent":)" +
         std::to_string(weeklyUsed) + R"(,"window_minutes":10080,"resets_at":1795100000}}}})" +
         "\n";
}

const std::string chatter =
    R"({"timestamp":"2026-11-15T01:30:02.000Z","type":"response_item","payload":{"type":"message","role":"user","content":[{"type":"input_text","text":"hello"}]}})"
    "\n";

class CodexRolloutsTest : public testing::Test {
 protected:
  // Writes a rollout under sessions/`day` and dates it `modified` (Unix seconds).
  std::filesystem::path rollout(const std::string& day, const std::string& name,
                                const std::string& bytes, time_t modified) {
    const auto file = home.write("sessions/" + day + "/rollout-" + name + ".jsonl", bytes);
    const timespec times[2] = {{modified, 0}, {modified, 0}};
    ::utimensat(AT_FDCWD, file.c_str(), times, 0);
    return file;
  }
  std::variant<CodexLimits, CodexShortfall> read() const { return readCodexLimits(home.path()); }
  double weekly() const {
    const auto result = read();
    const auto* limits = std::get_if<CodexLimits>(&result);
    return limits ? limits->snapshot.windows.at(1).usedPercent : -1;
  }

  testing_support::TemporaryDirectory home;
};

TEST_F(CodexRolloutsTest, TheLastUsableEventOfTheFixtureRolloutIsRead) {
  const auto result = readCodexLimits(fixtureHome);
  ASSERT_TRUE(std::holds_alternative<CodexLimits>(result));
  const auto& limits = std::get<CodexLimits>(result);
  const UsageSnapshot expected{{{"5-hour", 28, Date::fromUnixSeconds(1794721500)},
                                {"Weekly", 42, Date::fromUnixSeconds(1795100000)}},
                               *parseIsoMoment("2026-11-15T01:30:21.5Z"),
                               "Codex CLI"};
  EXPECT_EQ(limits.snapshot, expected);
  EXPECT_EQ(limits.rollout.filename(),
            "rollout-2026-11-15T01-30-00-0199a0b1-0000-7000-8000-000000000001.jsonl");
}

TEST_F(CodexRolloutsTest, AHalfWrittenLastLineAndMalformedLinesAreSkipped) {
  const std::string full = tokenCount("2026-11-15T01:30:05Z", 10, 30);
  rollout(
      "2026/11/15", "a",
      full + "{not json token_count\n" + chatter + "\x01\xff\n" + full.substr(0, full.size() / 2),
      1000);
  EXPECT_EQ(weekly(), 30);
}

TEST_F(CodexRolloutsTest, TheNewestModifiedRolloutOfTheSameDayWins) {
  rollout("2026/11/15", "z-older", tokenCount("2026-11-15T09:00:00Z", 1, 11), 1000);
  rollout("2026/11/15", "a-newer", tokenCount("2026-11-15T08:00:00Z", 2, 22), 2000);
  EXPECT_EQ(weekly(), 22);
}

TEST_F(CodexRolloutsTest, TheNewestModifiedRolloutWinsAcrossAMonthBoundary) {
  rollout("2026/10/31", "october", tokenCount("2026-10-31T23:59:00Z", 1, 31), 2000);
  rollout("2026/11/01", "november", tokenCount("2026-11-01T00:01:00Z", 2, 41), 1000);
  EXPECT_EQ(weekly(), 31);
  rollout("2026/11/01", "november", tokenCount("2026-11-01T00:01:00Z", 2, 41), 3000);
  EXPECT_EQ(weekly(), 41);
}

TEST_F(CodexRolloutsTest, ARolloutWithoutLimitsPassesToTheNextNewest) {
  rollout("2026/11/15", "limits", tokenCount("2026-11-15T01:00:00Z", 5, 55), 1000);
  rollout("2026/11/15", "chatter", chatter + chatter, 2000);
  EXPECT_EQ(weekly(), 55);
}

TEST_F(CodexRolloutsTest, ALargeRolloutIsReadFromItsEnd) {
  // Thirty-two mebibytes of conversation before the event; only its end is read.
  std::string bytes;
  const std::string filler = chatter;
  while (bytes.size() < 32u * 1024 * 1024) bytes += filler;
  bytes += tokenCount("2026-11-15T02:00:00Z", 7, 77);
  rollout("2026/11/15", "large", bytes, 1000);
  EXPECT_EQ(weekly(), 77);
}

TEST_F(CodexRolloutsTest, ASparseRolloutOfTwoHundredMebibytesIsReadFromItsEnd) {
  const auto file = rollout("2026/11/15", "sparse", "", 1000);
  const std::string tail = "\n" + tokenCount("2026-11-15T02:00:00Z", 8, 88);
  const int fd = ::open(file.c_str(), O_WRONLY);
  ASSERT_GE(fd, 0);
  const off_t size = 200LL * 1024 * 1024;
  ASSERT_EQ(::pwrite(fd, tail.data(), tail.size(), size), static_cast<ssize_t>(tail.size()));
  ::close(fd);
  EXPECT_EQ(weekly(), 88);
}

TEST_F(CodexRolloutsTest, MissingOrOddSessionFoldersMeanNoSessions) {
  EXPECT_EQ(read(), (std::variant<CodexLimits, CodexShortfall>(CodexShortfall::noSessions)));
  home.write("sessions", "a regular file");
  EXPECT_EQ(read(), (std::variant<CodexLimits, CodexShortfall>(CodexShortfall::noSessions)));
}

TEST_F(CodexRolloutsTest, FilesOutsideTheDayLayoutDoNotCount) {
  home.write("sessions/rollout-top.jsonl", tokenCount("2026-11-15T01:00:00Z", 1, 1));
  home.write("sessions/2026/11/15/notes.jsonl", tokenCount("2026-11-15T01:00:00Z", 1, 1));
  home.write("sessions/26/11/15/rollout-x.jsonl", tokenCount("2026-11-15T01:00:00Z", 1, 1));
  EXPECT_EQ(read(), (std::variant<CodexLimits, CodexShortfall>(CodexShortfall::noSessions)));
}

TEST_F(CodexRolloutsTest, RolloutsWithoutUsableEventsMeanNoLimitsYet) {
  rollout("2026/11/15", "a", chatter, 1000);
  std::filesystem::create_directories(home.path() / "sessions/2026/11/16");
  ASSERT_EQ(::mkfifo((home.path() / "sessions/2026/11/16/rollout-fifo.jsonl").c_str(), 0600), 0);
  EXPECT_EQ(read(), (std::variant<CodexLimits, CodexShortfall>(CodexShortfall::noLimits)));
}

TEST(CodexShortfallTest, MessagesAreTheShortTexts) {
  EXPECT_EQ(message(CodexShortfall::noSessions), "No Codex sessions found");
  EXPECT_EQ(message(CodexShortfall::noLimits), "No limits in Codex logs yet");
}

}  // namespace
}  // namespace korvo
