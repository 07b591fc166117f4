#include "app/awake_session.hpp"

#include <gtest/gtest.h>

namespace korvo {
namespace {

constexpr Date now{816399900};

TEST(AwakeSessionTest, StartEndsAfterTheDurationOrNever) {
  EXPECT_EQ(startedSession(now, AwakeDuration{120}), AwakeSession{Date{816400020}});
  EXPECT_EQ(startedSession(now, AwakeDuration{}), AwakeSession{});
}

TEST(AwakeSessionTest, ExtendAddsToTheEnd) {
  const AwakeSession running{Date{816400020}};
  EXPECT_EQ(extendedSession(running, now, AwakeDuration{5400}), AwakeSession{Date{816405420}});
  EXPECT_EQ(extendedSession(running, now, AwakeDuration{}), AwakeSession{});
  EXPECT_EQ(extendedSession(AwakeSession{}, now, AwakeDuration{60}), AwakeSession{});
}

TEST(AwakeSessionTest, ExtendStartsASessionWhenNoneRunsOrItsEndPassed) {
  EXPECT_EQ(extendedSession(std::nullopt, now, AwakeDuration{60}), AwakeSession{Date{816399960}});
  EXPECT_EQ(extendedSession(AwakeSession{Date{816399000}}, now, AwakeDuration{60}),
            AwakeSession{Date{816399960}});
}

TEST(AwakeSessionTest, TheStateFileReadsBackWhatWasWritten) {
  for (const AwakeSession& session : {AwakeSession{Date{816400020.5}}, AwakeSession{}}) {
    EXPECT_EQ(std::get<AwakeSession>(parseAwakeState(awakeStateDocument(session))), session);
  }
  EXPECT_EQ(awakeStateDocument(AwakeSession{Date{816400020}}),
            "{\"endsAt\":816400020.0,\"indefinite\":false}\n");
}

TEST(AwakeSessionTest, ABadStateFileNamesItsFault) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "empty"},
      {"[]", "object"},
      {R"({"endsAt":1})", "indefinite"},
      {R"({"indefinite":false})", "endsAt"},
      {R"({"indefinite":false,"endsAt":"soon"})", "endsAt"},
      {R"({"indefinite":1,"endsAt":5})", "indefinite"},
  };
  for (const auto& [json, fault] : cases) {
    const auto parsed = parseAwakeState(json);
    ASSERT_TRUE(std::holds_alternative<DecodeFailure>(parsed)) << json;
    EXPECT_NE(std::get<DecodeFailure>(parsed).reason.find(fault), std::string::npos)
        << json << ": " << std::get<DecodeFailure>(parsed).reason;
  }
}

TEST(AwakeSessionTest, StatusDocumentSaysWhatHoldsUntilWhenAndWhy) {
  const AgentHold codex{{Agent::codex}, Date{816400320}};
  EXPECT_EQ(awakeStatusDocument(AwakeSession{Date{816400020}}, std::nullopt,
                                {Inhibitor::logind, Inhibitor::session})
                .dump(),
            R"({"active":true,"endsAt":816400020.0,"endsAtISO":"2026-11-15T01:47:00Z",)"
            R"("indefinite":false,"inhibitors":["logind","session"],"reason":"session",)"
            R"("agents":[]})");
  EXPECT_EQ(awakeStatusDocument(AwakeSession{}, codex, {Inhibitor::session}).dump(),
            R"({"active":true,"endsAt":null,"endsAtISO":null,"indefinite":true,)"
            R"("inhibitors":["session"],"reason":"session","agents":["Codex"]})");
  EXPECT_EQ(awakeStatusDocument(std::nullopt, std::nullopt, {}).dump(),
            R"({"active":false,"endsAt":null,"endsAtISO":null,"indefinite":false,)"
            R"("inhibitors":[],"reason":null,"agents":[]})");
  EXPECT_EQ(awakeStatusDocument(std::nullopt,
                                AgentHold{{Agent::codex, Agent::claudeCode}, Date{816400020}},
                                {Inhibitor::logind})
                .dump(),
            R"({"active":true,"endsAt":816400020.0,"endsAtISO":"2026-11-15T01:47:00Z",)"
            R"("indefinite":false,"inhibitors":["logind"],"reason":"agents",)"
            R"("agents":["Codex","Claude Code"]})");
}

TEST(AwakeSessionTest, ASessionAndTheAgentsHoldCombineTheLaterEndWinning) {
  const AgentHold hold{{Agent::claudeCode}, Date{1000}};
  EXPECT_EQ(awakeUntil(AwakeSession{Date{900}}, hold), Date{1000});
  EXPECT_EQ(awakeUntil(AwakeSession{Date{1100}}, hold), Date{1100});
  EXPECT_EQ(awakeUntil(AwakeSession{}, hold), std::nullopt);
  EXPECT_EQ(awakeUntil(std::nullopt, hold), Date{1000});
  EXPECT_EQ(awakeReason(AwakeSession{Date{900}}, hold), AwakeReason::session);
  EXPECT_EQ(awakeReason(std::nullopt, hold), AwakeReason::agents);
  EXPECT_EQ(awakeReason(std::nullopt, std::nullopt), std::nullopt);
}

TEST(AwakeSessionTest, TheAgentsReasonNamesThem) {
  EXPECT_EQ(agentsWorkingText({Agent::codex}), "Codex is working");
  EXPECT_EQ(agentsWorkingText({Agent::claudeCode}), "Claude Code is working");
  EXPECT_EQ(agentsWorkingText({Agent::codex, Agent::claudeCode}),
            "Codex and Claude Code are working");
  EXPECT_EQ(agentsQuietText({Agent::claudeCode}), "Claude Code is quiet");
  EXPECT_EQ(agentsQuietText({Agent::codex, Agent::claudeCode}), "Codex and Claude Code are quiet");
}

}  // namespace
}  // namespace korvo
