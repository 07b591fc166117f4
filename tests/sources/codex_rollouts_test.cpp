#include "sources/codex_rollouts.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

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

// A Team plan's turn: Codex writes its token count with the limits null.
std::string nullLimits(const char* timestamp) {
  return std::string(R"({"timestamp":")") + timestamp +
         R"(","type":"event_msg","payload":{"type":"token_count","info":{"total_token_usage":{"input_tokens":5200,"output_tokens":14,"total_tokens":5214},"model_context_window":272000},"rate_limits":null}})"
         "\n";
}

std::string otherLimit(const char* timestamp, double used) {
  return std::string(R"({"timestamp":")") + timestamp +
         R"(","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"limit_id":"codex_other","limit_name":"GPT-5.1-Codex-Mini","primary":{"used_percent":)" +
         std::to_string(used) +
         R"(,"window_minutes":300,"resets_at":1794721500},"secondary":null,"credits":null,"plan_type":"pro"}}})" +
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
  // Writes bytes at `relative` under the home and dates the file `modified` (Unix seconds).
  std::filesystem::path dated(const std::string& relative, const std::string& bytes,
                              time_t modified) {
    const auto file = home.write(relative, bytes);
    date(file, modified);
    return file;
  }
  static void date(const std::filesystem::path& file, time_t modified) {
    const timespec times[2] = {{modified, 0}, {modified, 0}};
    ::utimensat(AT_FDCWD, file.c_str(), times, 0);
  }
  // Compresses `file` as Codex does a rollout idle for a week (zstd level 3, the plain file
  // removed) and dates the result `modified`.
  static std::filesystem::path compress(const std::filesystem::path& file, time_t modified) {
    const auto compressed = file.string() + ".zst";
    EXPECT_EQ(
        std::system(("zstd -3 -q -f --rm '" + file.string() + "' -o '" + compressed + "'").c_str()),
        0);
    date(compressed, modified);
    return compressed;
  }
  std::variant<CodexLimits, CodexShortfall> read() const {
    return readCodexLimits(home.path(), now);
  }
  std::optional<CodexLimits> limits() const {
    auto result = read();
    if (auto* found = std::get_if<CodexLimits>(&result)) return std::move(*found);
    return std::nullopt;
  }
  double weekly() const {
    const auto result = read();
    const auto* limits = std::get_if<CodexLimits>(&result);
    return limits ? limits->snapshot.windows.at(1).usedPercent : -1;
  }

  testing_support::TemporaryDirectory home;
  // Within eight days of every file these tests date, unless a test moves it.
  Date now = Date::fromUnixSeconds(100'000);
};

const auto noLimits = std::variant<CodexLimits, CodexShortfall>(CodexShortfall::noLimits);

TEST_F(CodexRolloutsTest, TheLastUsableEventOfTheFixtureRolloutIsRead) {
  const auto result = readCodexLimits(fixtureHome, Date::fromUnixSeconds(0));
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
  EXPECT_EQ(read(), noLimits);
}

TEST_F(CodexRolloutsTest, NullLimitRolloutsMeanNoLimitsYet) {
  rollout("2026/11/15", "team", chatter + nullLimits("2026-11-15T01:30:05Z") + chatter, 1000);
  EXPECT_EQ(read(), noLimits);
}

TEST_F(CodexRolloutsTest, OfParallelSessionsTheLatestLineWinsNotTheNewestFile) {
  // Two terminals write in turns: the file modified last holds the earlier reading.
  rollout("2026/11/15", "a", tokenCount("2026-11-15T01:00:20Z", 80, 30) + chatter, 10'000);
  rollout("2026/11/15", "b", tokenCount("2026-11-15T01:00:10Z", 75, 30) + chatter, 10'030);
  const auto found = limits();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->snapshot.windows.at(0).usedPercent, 80);
  EXPECT_EQ(found->rollout.filename(), "rollout-a.jsonl");
}

TEST_F(CodexRolloutsTest, TheGroupIsTenMinutesBeforeTheNewestFileWithAReading) {
  // Newer files without a reading do not start the group.
  rollout("2026/11/15", "chatter", chatter, 20'000);
  rollout("2026/11/15", "first", tokenCount("2026-11-15T01:00:10Z", 10, 1), 10'000);
  rollout("2026/11/15", "inside", tokenCount("2026-11-15T01:00:30Z", 20, 2), 10'000 - 600);
  rollout("2026/11/15", "outside", tokenCount("2026-11-15T01:00:50Z", 30, 3), 10'000 - 601);
  EXPECT_EQ(weekly(), 2);
}

TEST_F(CodexRolloutsTest, ACompressedRolloutIsRead) {
  compress(rollout("2026/11/08", "idle", chatter + tokenCount("2026-11-08T01:00:00Z", 9, 19), 0),
           1000);
  const auto found = limits();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->snapshot.windows.at(1).usedPercent, 19);
  EXPECT_EQ(found->rollout.filename(), "rollout-idle.jsonl.zst");
}

TEST_F(CodexRolloutsTest, APlainRolloutWinsOverItsCompressedSibling) {
  const auto plain = rollout("2026/11/08", "both", tokenCount("2026-11-08T01:00:00Z", 1, 11), 0);
  compress(plain, 2000);
  // Codex goes on writing the plain file; the compressed copy is older in content.
  rollout("2026/11/08", "both", tokenCount("2026-11-08T01:00:00Z", 1, 12), 1000);
  EXPECT_EQ(weekly(), 12);
  EXPECT_EQ(limits()->rollout.filename(), "rollout-both.jsonl");
}

TEST_F(CodexRolloutsTest, ArchivedSessionsAreReadAtAnyDepth) {
  dated("archived_sessions/rollout-flat.jsonl", tokenCount("2026-11-01T01:00:00Z", 1, 21), 1000);
  EXPECT_EQ(weekly(), 21);
  const auto deep = dated("archived_sessions/2026/10/31/rollout-deep.jsonl",
                          tokenCount("2026-11-01T02:00:00Z", 1, 22), 0);
  compress(deep, 2000);
  EXPECT_EQ(weekly(), 22);
  home.write("archived_sessions/notes.jsonl", tokenCount("2026-11-01T03:00:00Z", 1, 23));
  EXPECT_EQ(weekly(), 22);
}

TEST_F(CodexRolloutsTest, TruncatedOrCorruptCompressedRolloutsGiveNothingAndOlderOnesStand) {
  rollout("2026/11/01", "good", tokenCount("2026-11-01T01:00:00Z", 1, 31), 1000);
  std::string long_;
  for (int i = 0; i < 2000; ++i) long_ += tokenCount("2026-11-08T01:00:00Z", 2, 32) + chatter;
  const auto truncated = compress(rollout("2026/11/08", "truncated", long_, 0), 2000);
  std::filesystem::resize_file(truncated, std::filesystem::file_size(truncated) / 2);
  date(truncated, 2000);
  EXPECT_EQ(weekly(), 31);

  const auto corrupt = compress(rollout("2026/11/09", "corrupt", long_, 0), 3000);
  {
    std::fstream file(corrupt, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(std::filesystem::file_size(corrupt) / 2));
    file.write("\xde\xad\xbe\xef\xde\xad\xbe\xef", 8);
  }
  date(corrupt, 3000);
  EXPECT_EQ(weekly(), 31);

  dated("sessions/2026/11/10/rollout-garbage.jsonl.zst", "not zstd at all\n", 4000);
  dated("sessions/2026/11/10/rollout-empty.jsonl.zst", "", 5000);
  EXPECT_EQ(weekly(), 31);
}

TEST_F(CodexRolloutsTest, AZipBombIsAbandonedWithinBoundedMemory) {
  rollout("2026/11/01", "good", tokenCount("2026-11-01T01:00:00Z", 1, 41), 1000);
  // 48 frames of 64 MiB of zeros: a few kilobytes that expand to 3 GiB.
  const auto frame = home.path() / "frame.zst";
  ASSERT_EQ(
      std::system(("head -c 64M /dev/zero | zstd -3 -q -c > '" + frame.string() + "'").c_str()), 0);
  std::ifstream in(frame, std::ios::binary);
  const std::string oneFrame((std::istreambuf_iterator<char>(in)), {});
  std::string bomb;
  for (int i = 0; i < 48; ++i) bomb += oneFrame;
  ASSERT_LT(bomb.size(), 1024u * 1024);
  dated("sessions/2026/11/15/rollout-bomb.jsonl.zst", bomb, 2000);
  struct rusage before {};
  ::getrusage(RUSAGE_SELF, &before);
  EXPECT_EQ(weekly(), 41);
  struct rusage after {};
  ::getrusage(RUSAGE_SELF, &after);
  // ru_maxrss is in kibibytes: the decoder's window and buffers, never the expanded bytes.
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024);
}

TEST_F(CodexRolloutsTest, AfterTheNewestOnlyFilesOfTheLastEightDaysAreRead) {
  const time_t day = 24 * 3600;
  now = Date::fromUnixSeconds(100 * day);
  rollout("2026/11/01", "older", tokenCount("2026-11-01T01:00:00Z", 1, 51), 100 * day - 9 * day);
  rollout("2026/11/15", "newest", chatter, 100 * day - 8 * day + 10);
  EXPECT_EQ(read(), noLimits);
  rollout("2026/11/01", "older", tokenCount("2026-11-01T01:00:00Z", 1, 51), 100 * day - 8 * day);
  EXPECT_EQ(weekly(), 51);
}

TEST_F(CodexRolloutsTest, TheNewestFileIsReadHoweverOld) {
  now = Date::fromUnixSeconds(400 * 24 * 3600);
  rollout("2026/11/01", "only", tokenCount("2026-11-01T01:00:00Z", 1, 61), 1000);
  EXPECT_EQ(weekly(), 61);
}

TEST_F(CodexRolloutsTest, AtMostSixtyFourMebibytesAreReadAfterTheNewest) {
  // A heavy Team user: many rollouts of a mebibyte each, every token count null.
  std::string heavy;
  while (heavy.size() < 1024 * 1024) heavy += chatter + nullLimits("2026-11-15T01:30:05Z");
  rollout("2026/11/01", "limits", tokenCount("2026-11-01T01:00:00Z", 1, 71), 1000);
  for (int i = 0; i < 10; ++i) rollout("2026/11/15", "team-" + std::to_string(i), heavy, 2000 + i);
  EXPECT_EQ(weekly(), 71);
  for (int i = 10; i < 70; ++i) rollout("2026/11/15", "team-" + std::to_string(i), heavy, 2000 + i);
  EXPECT_EQ(read(), noLimits);
}

TEST_F(CodexRolloutsTest, OtherLimitsPlanAndCreditsComeWithTheReading) {
  rollout(
      "2026/11/15", "a",
      otherLimit("2026-11-15T01:00:00Z", 5) +
          R"({"timestamp":"2026-11-15T01:00:01Z","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"limit_id":"codex","limit_name":null,"primary":{"used_percent":20.0,"window_minutes":300,"resets_at":1794720000},"secondary":null,"credits":{"has_credits":true,"unlimited":false,"balance":"5.39"},"plan_type":"plus"}}})"
          "\n" +
          otherLimit("2026-11-15T01:00:02Z", 6) + otherLimit("2026-11-15T01:00:03Z", 7),
      1000);
  const auto found = limits();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->planType, "plus");
  EXPECT_EQ(found->credits, (codex_rollout::Credits{true, false, "5.39"}));
  ASSERT_EQ(found->otherLimits.size(), 1u);
  EXPECT_EQ(found->otherLimits[0].limitId, "codex_other");
  EXPECT_EQ(found->otherLimits[0].limitName, "GPT-5.1-Codex-Mini");
  EXPECT_EQ(found->otherLimits[0].snapshot.windows.at(0).usedPercent, 7);
  // The other figures never make the reading.
  EXPECT_EQ(found->snapshot.windows.at(0).usedPercent, 20);
}

TEST_F(CodexRolloutsTest, RolloutsReadWholeWithoutLimitsAreRememberedAndNotReadAgain) {
  const std::string team = chatter + nullLimits("2026-11-15T01:30:05Z") + chatter;
  const auto file = rollout("2026/11/15", "team", team, 1000);
  rollout("2026/11/15", "chatter", chatter, 900);
  RolloutMemo memo;
  EXPECT_EQ(readCodexLimits(home.path(), now, &memo), noLimits);
  EXPECT_TRUE(memo.changed);
  ASSERT_EQ(memo.fruitless.size(), 2u);
  EXPECT_EQ(memo.fruitless.at(file.native()).size, team.size());
  EXPECT_EQ(memo.fruitless.at(file.native()).modifiedNanoseconds, 1000LL * 1'000'000'000);

  // Same size and time: the memo is believed and the file not opened, even if it now held limits.
  std::string usable = tokenCount("2026-11-15T01:30:05Z", 10, 20);
  usable.resize(team.size() - 1, ' ');
  rollout("2026/11/15", "team", usable + "\n", 1000);
  memo.changed = false;
  EXPECT_EQ(readCodexLimits(home.path(), now, &memo), noLimits);
  EXPECT_FALSE(memo.changed);

  // Written again, the file is read again and leaves the memo.
  rollout("2026/11/15", "team", usable + "\n", 1001);
  const auto result = readCodexLimits(home.path(), now, &memo);
  ASSERT_TRUE(std::holds_alternative<CodexLimits>(result));
  EXPECT_EQ(std::get<CodexLimits>(result).snapshot.windows.at(1).usedPercent, 20);
  EXPECT_FALSE(memo.fruitless.contains(file.native()));
  EXPECT_TRUE(memo.fruitless.contains(
      (home.path() / "sessions/2026/11/15/rollout-chatter.jsonl").native()));
}

TEST_F(CodexRolloutsTest, FilesNoLongerThereLeaveTheMemoAndPartlyReadOnesNeverEnterIt) {
  RolloutMemo memo;
  memo.fruitless["/gone/rollout-x.jsonl"] = {10, 20};
  // Over the budget, the second file is read only in part: it may hold limits further up.
  rollout("2026/11/15", "newest", tokenCount("2026-11-15T01:30:05Z", 1, 2), 2000);
  const std::string big(static_cast<std::size_t>(codex_rollouts::readBudgetBytes) + 4096, '\n');
  rollout("2026/11/15", "big", tokenCount("2026-11-14T01:30:05Z", 1, 2) + big, 1000);
  ASSERT_TRUE(std::holds_alternative<CodexLimits>(readCodexLimits(home.path(), now, &memo)));
  EXPECT_TRUE(memo.changed);
  EXPECT_TRUE(memo.fruitless.empty());
}

TEST_F(CodexRolloutsTest, AThousandNullLimitRolloutsAreReadSixtyFourMebibytesAtATimeThenNoMore) {
  // A Team user's week: a thousand rollouts of a mebibyte, every token count's limits null.
  std::string body;
  while (body.size() < std::size_t{1} << 20) body += chatter + nullLimits("2026-11-15T01:30:05Z");
  for (int index = 0; index < 1000; ++index) {
    rollout("2026/11/" + std::to_string(10 + index / 200),
            "2026-11-15T01-30-00-" + std::to_string(1000 + index), body, 99'000 - index * 60);
  }
  RolloutMemo memo;
  // Each reading takes files, newest first, until the budget is spent, and remembers those it
  // read whole (the last one it read only in part).
  const std::size_t perReading = codex_rollouts::readBudgetBytes / body.size();
  EXPECT_EQ(readCodexLimits(home.path(), now, &memo), noLimits);
  EXPECT_EQ(memo.fruitless.size(), perReading);
  std::size_t readings = 1;
  while (memo.changed && readings < 100) {
    memo.changed = false;
    EXPECT_EQ(readCodexLimits(home.path(), now, &memo), noLimits);
    ++readings;
  }
  EXPECT_EQ(memo.fruitless.size(), 1000u);
  // Once all are known nothing changes: a reading is a listing.
  EXPECT_EQ(readings, (1000 + perReading - 1) / perReading + 1);
}

TEST(RolloutMemoTest, TheTextGoesBothWaysAndOddLinesAreLeftOut) {
  RolloutMemo memo;
  memo.fruitless["/home/u/.codex/sessions/2026/11/15/rollout-a b.jsonl"] = {1048576,
                                                                            1795600000123456789};
  memo.fruitless["/a/rollout-\nnewline.jsonl"] = {1, 2};
  const std::string text = memoText(memo);
  EXPECT_EQ(text,
            "1048576 1795600000123456789 /home/u/.codex/sessions/2026/11/15/rollout-a b.jsonl\n");
  RolloutMemo back =
      parseMemo(text + "x 1 /a\n1 y /a\n1 2 relative\n-1 2 /a\n1 2\n1 2 /unfinished");
  memo.fruitless.erase("/a/rollout-\nnewline.jsonl");
  EXPECT_EQ(back, memo);
}

TEST(CodexShortfallTest, MessagesAreTheShortTexts) {
  EXPECT_EQ(message(CodexShortfall::noSessions), "No Codex sessions found");
  EXPECT_EQ(message(CodexShortfall::noLimits), "No limits in Codex logs yet");
}

}  // namespace
}  // namespace korvo
