#include "sources/codex_app_server_answer.hpp"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "shared/moment_text.hpp"

namespace korvo::codex_app_server {
namespace {

const Date answeredAt = *parseIsoMoment("2026-11-25T10:00:00Z");

std::optional<Answer> read(const std::string& line, std::int64_t id = rateLimitsId) {
  return readAnswer(line, id, answeredAt);
}

// The answer exactly as the app-server's README shows it.
constexpr const char* readmeAnswer =
    R"({ "id": 2, "result": { "rateLimits": { "primary": { "usedPercent": 25, "windowDurationMins": 15, "resetsAt": 1730947200 }, "secondary": null } } })";

TEST(CodexAppServerAnswerTest, TheDocumentedAnswerGivesItsWindowAtTheMomentItCame) {
  const auto answer = read(readmeAnswer);
  ASSERT_TRUE(answer);
  ASSERT_TRUE(answer->limits);
  EXPECT_FALSE(answer->error);
  const UsageSnapshot& snapshot = answer->limits->snapshot;
  ASSERT_EQ(snapshot.windows.size(), 1u);
  EXPECT_EQ(snapshot.windows[0].title, "1-hour");
  EXPECT_EQ(snapshot.windows[0].usedPercent, 25);
  EXPECT_EQ(snapshot.windows[0].resetsAt, Date::fromUnixSeconds(1730947200));
  EXPECT_EQ(snapshot.fetchedAt, answeredAt);
  EXPECT_EQ(snapshot.source, "Codex app-server");
  EXPECT_TRUE(answer->limits->rollout.empty());
}

TEST(CodexAppServerAnswerTest, TheMapGivesCodexsOwnLimitAndKeepsTheOthersByIdWithPlanAndCredits) {
  const std::string line =
      R"({"id":2,"result":{"rateLimits":{"limitId":"codex_bengalfox","primary":{"usedPercent":99,"windowDurationMins":300,"resetsAt":null},"secondary":null},)"
      R"("rateLimitsByLimitId":{"codex_bengalfox":{"limitId":"codex_bengalfox","limitName":"GPT-5.1-Codex-Max","primary":{"usedPercent":7,"windowDurationMins":300,"resetsAt":1795650000},"secondary":null,"credits":null,"planType":"pro"},)"
      R"("codex":{"limitId":"codex","limitName":null,"primary":{"usedPercent":25,"windowDurationMins":300,"resetsAt":1795650000},"secondary":{"usedPercent":61,"windowDurationMins":10079,"resetsAt":1796000000},"credits":{"hasCredits":true,"unlimited":false,"balance":"12.50"},"planType":"pro"}}}})";
  const auto answer = read(line);
  ASSERT_TRUE(answer && answer->limits);
  const CodexLimits& limits = *answer->limits;
  ASSERT_EQ(limits.snapshot.windows.size(), 2u);
  EXPECT_EQ(limits.snapshot.windows[0].title, "5-hour");
  EXPECT_EQ(limits.snapshot.windows[0].usedPercent, 25);
  EXPECT_EQ(limits.snapshot.windows[1].title, "Weekly");
  EXPECT_EQ(limits.snapshot.windows[1].usedPercent, 61);
  EXPECT_EQ(limits.planType, "pro");
  ASSERT_TRUE(limits.credits);
  EXPECT_EQ(limits.credits->balance, "12.50");
  EXPECT_TRUE(limits.credits->hasCredits);
  ASSERT_EQ(limits.otherLimits.size(), 1u);
  EXPECT_EQ(limits.otherLimits[0].limitId, "codex_bengalfox");
  EXPECT_EQ(limits.otherLimits[0].limitName, "GPT-5.1-Codex-Max");
  EXPECT_EQ(limits.otherLimits[0].snapshot.windows[0].usedPercent, 7);
}

TEST(CodexAppServerAnswerTest, AnErrorAnswerGivesItsMessageOnOneShortLine) {
  const auto answer = read(
      R"({"error":{"code":-32600,"message":"codex account authentication required to read rate limits"},"id":2})");
  ASSERT_TRUE(answer);
  EXPECT_FALSE(answer->limits);
  EXPECT_EQ(answer->error, "codex account authentication required to read rate limits");

  const auto hostile = read(R"({"id":2,"error":{"message":"two\nlines\u0000and )" +
                            std::string(400, 'x') + R"("}})");
  ASSERT_TRUE(hostile && hostile->error);
  EXPECT_EQ(hostile->error->find('\n'), std::string::npos);
  EXPECT_NE(hostile->error->find("two\\nlines\\x00and"), std::string::npos);
  EXPECT_LE(hostile->error->size(), 210u);

  const auto bare = read(R"({"id":2,"error":"no"})");
  ASSERT_TRUE(bare && bare->error);
  EXPECT_EQ(*bare->error, "no message");
}

TEST(CodexAppServerAnswerTest, NotificationsOtherAnswersAndGarbageAreNotTheAnswer) {
  for (const std::string& line : std::vector<std::string>{
           R"({"method":"remoteControl/status/changed","params":{"status":"disabled"}})",
           R"({"id":1,"result":{"userAgent":"korvo/0.1"}})",
           R"({"id":"2","result":{"rateLimits":{"primary":{"usedPercent":1}}}})",
           R"({"id":2.5,"result":{}})",
           "",
           "not json",
           "[2]",
           std::string(100000, '['),
           "{\"id\":2,\"result\":{\"rateLimits\":",
       }) {
    EXPECT_FALSE(read(line)) << line.substr(0, 80);
  }
  EXPECT_TRUE(read(R"({"id":1,"result":{}})", initializeId));
}

TEST(CodexAppServerAnswerTest, AnAnswerWithoutUsableWindowsHasNeitherLimitsNorError) {
  for (
      const std::string& line : std::vector<std::string>{
          R"({"id":2,"result":{"rateLimits":{"primary":null,"secondary":null},"rateLimitsByLimitId":null}})",
          R"({"id":2,"result":{"rateLimits":{"primary":{"usedPercent":"25"}}}})",
          R"({"id":2,"result":{"rateLimits":{"limitId":"other","primary":{"usedPercent":5}}}})",
          R"({"id":2,"result":null})",
          R"({"id":2,"result":[]})",
      }) {
    const auto answer = read(line);
    ASSERT_TRUE(answer) << line;
    EXPECT_FALSE(answer->limits) << line;
    EXPECT_FALSE(answer->error) << line;
  }
}

TEST(CodexAppServerAnswerTest, OnlyFiguresAndShortLabelsAreKept) {
  const auto answer = read(
      R"({"id":2,"result":{"rateLimitsByLimitId":{"codex":{"primary":{"usedPercent":5},"planType":"Plus plan for /home/user","credits":{"hasCredits":true,"unlimited":false,"balance":"rm -rf /"}},)"
      R"("codex_x":{"limitName":"a\nb","primary":{"usedPercent":1}},"Not A Word":{"primary":{"usedPercent":2}}}}})");
  ASSERT_TRUE(answer && answer->limits);
  EXPECT_FALSE(answer->limits->planType);
  ASSERT_TRUE(answer->limits->credits);
  EXPECT_FALSE(answer->limits->credits->balance);
  ASSERT_EQ(answer->limits->otherLimits.size(), 1u);
  EXPECT_EQ(answer->limits->otherLimits[0].limitId, "codex_x");
  EXPECT_FALSE(answer->limits->otherLimits[0].limitName);
}

TEST(CodexAppServerAnswerTest, TheRequestsAreThreeJsonRpcLinesNamingKorvo) {
  const std::string lines = requestLines("1.2.3");
  std::vector<nlohmann::json> requests;
  std::size_t start = 0;
  for (std::size_t end = lines.find('\n'); end != std::string::npos;
       start = end + 1, end = lines.find('\n', start)) {
    requests.push_back(nlohmann::json::parse(lines.substr(start, end - start)));
  }
  ASSERT_EQ(requests.size(), 3u);
  EXPECT_EQ(requests[0]["method"], "initialize");
  EXPECT_EQ(requests[0]["id"], initializeId);
  EXPECT_EQ(requests[0]["params"]["clientInfo"],
            (nlohmann::json{{"name", "korvo"}, {"title", "Korvo"}, {"version", "1.2.3"}}));
  EXPECT_EQ(requests[1]["method"], "initialized");
  EXPECT_FALSE(requests[1].contains("id"));
  EXPECT_EQ(requests[2]["method"], "account/rateLimits/read");
  EXPECT_EQ(requests[2]["id"], rateLimitsId);
}

}  // namespace
}  // namespace korvo::codex_app_server
