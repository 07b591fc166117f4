#include "shared/usage_json.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace korvo {
namespace {

using testing::HasSubstr;

const std::string exampleState =
    R"({"enabled":true,"snapshot":{"windows":[{"title":"5-hour","usedPercent":28,"resetsAt":816407100},)"
    R"({"title":"Weekly","usedPercent":42,"resetsAt":816572700}],"fetchedAt":816399850},"isRefreshing":false})";

template <class T>
std::string failureOf(const Decoded<T>& decoded) {
  if (const auto* failure = std::get_if<DecodeFailure>(&decoded)) return failure->reason;
  return "(decoded)";
}

TEST(UsageJsonTest, ExampleStateDecodesAndEncodesBackByteForByte) {
  const auto decoded = decodeUsageState(exampleState);
  ASSERT_TRUE(std::holds_alternative<UsageState>(decoded)) << failureOf(decoded);
  const UsageState& state = std::get<UsageState>(decoded);
  EXPECT_TRUE(state.enabled);
  ASSERT_TRUE(state.snapshot);
  ASSERT_EQ(state.snapshot->windows.size(), 2u);
  EXPECT_EQ(state.snapshot->windows[1], (UsageWindow{"Weekly", 42, Date{816572700}}));
  EXPECT_EQ(state.snapshot->fetchedAt, Date{816399850});
  EXPECT_EQ(encodeUsageState(state), exampleState);
}

TEST(UsageJsonTest, WindowWithoutOrWithNullResetsAtHasNoResetMomentAndEncodesWithoutTheKey) {
  for (const char* json : {R"({"title":"Weekly","usedPercent":42})",
                           R"({"title":"Weekly","usedPercent":42,"resetsAt":null})"}) {
    const auto decoded = decodeUsageWindow(json);
    ASSERT_TRUE(std::holds_alternative<UsageWindow>(decoded)) << json;
    EXPECT_FALSE(std::get<UsageWindow>(decoded).resetsAt);
    EXPECT_EQ(encodeUsageWindow(std::get<UsageWindow>(decoded)),
              R"({"title":"Weekly","usedPercent":42})");
  }
}

TEST(UsageJsonTest, StateWithoutIsRefreshingFailsNamingTheKey) {
  EXPECT_EQ(failureOf(decodeUsageState(R"({"enabled":true})")), "missing key isRefreshing");
}

TEST(UsageJsonTest, StateWithoutEnabledFails) {
  EXPECT_EQ(failureOf(decodeUsageState(R"({"isRefreshing":false})")), "missing key enabled");
}

TEST(UsageJsonTest, DateAsIsoStringFails) {
  EXPECT_THAT(failureOf(decodeUsageWindow(
                  R"({"title":"Weekly","usedPercent":42,"resetsAt":"2026-11-15T01:45:00Z"})")),
              HasSubstr("wrong type at resetsAt"));
  EXPECT_THAT(failureOf(decodeUsageSnapshot(R"({"windows":[],"fetchedAt":"816399850"})")),
              HasSubstr("wrong type at fetchedAt"));
}

TEST(UsageJsonTest, BooleansMustBeTrueOrFalse) {
  EXPECT_EQ(failureOf(decodeUsageState(R"({"enabled":1,"isRefreshing":false})")),
            "wrong type at enabled: expected true/false, found number");
  EXPECT_EQ(failureOf(decodeUsageState(R"({"enabled":true,"isRefreshing":0})")),
            "wrong type at isRefreshing: expected true/false, found number");
}

TEST(UsageJsonTest, UsedPercentAcceptsAnyNumber) {
  for (const char* number : {"28", "28.25", "-10", "1e3", "18446744073709551615"}) {
    const std::string json = std::string(R"({"title":"t","usedPercent":)") + number + "}";
    const auto decoded = decodeUsageWindow(json);
    ASSERT_TRUE(std::holds_alternative<UsageWindow>(decoded)) << number;
    EXPECT_EQ(std::get<UsageWindow>(decoded).usedPercent, std::strtod(number, nullptr));
  }
}

TEST(UsageJsonTest, SnapshotKeepsWindowOrderAndOptionalSource) {
  const UsageSnapshot snapshot{{{"b", 1, std::nullopt}, {"a", 2, Date{3.25}}}, Date{4}, "web"};
  const auto encoded = encodeUsageSnapshot(snapshot);
  EXPECT_EQ(
      encoded,
      R"({"windows":[{"title":"b","usedPercent":1},{"title":"a","usedPercent":2,"resetsAt":3.25}],"fetchedAt":4,"source":"web"})");
  EXPECT_EQ(std::get<UsageSnapshot>(decodeUsageSnapshot(*encoded)), snapshot);
}

TEST(UsageJsonTest, AbsentOptionalsAreLeftOutNeverNull) {
  EXPECT_EQ(encodeUsageState(UsageState{}), R"({"enabled":false,"isRefreshing":false})");
  EXPECT_EQ(encodeUsageSnapshot(UsageSnapshot{{}, Date{0}, std::nullopt}),
            R"({"windows":[],"fetchedAt":0})");
}

TEST(UsageJsonTest, NonFiniteNumbersFailToEncode) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(encodeUsageWindow({"t", std::nan(""), std::nullopt}));
  EXPECT_FALSE(encodeUsageWindow({"t", 1, Date{infinity}}));
  EXPECT_FALSE(encodeUsageState(
      {true, UsageSnapshot{{}, Date{-infinity}, std::nullopt}, std::nullopt, false}));
}

TEST(UsageJsonTest, WrongTypeInsideAWindowNamesItsIndex) {
  EXPECT_EQ(
      failureOf(decodeUsageSnapshot(
          R"({"windows":[{"title":"a","usedPercent":1},{"title":2,"usedPercent":1}],"fetchedAt":0})")),
      "wrong type at windows[1].title: expected string, found number");
}

TEST(UsageJsonTest, UnknownKeysAreIgnored) {
  const auto decoded =
      decodeUsageState(R"({"enabled":false,"plan":{"tier":[1,2]},"isRefreshing":true})");
  ASSERT_TRUE(std::holds_alternative<UsageState>(decoded));
  EXPECT_EQ(std::get<UsageState>(decoded), (UsageState{false, std::nullopt, std::nullopt, true}));
}

}  // namespace
}  // namespace korvo
