#include "shared/usage_state.hpp"

#include <gtest/gtest.h>

#include "base/clock.hpp"
#include "support/english_in_utc.hpp"

namespace korvo {
namespace {

// 1:44 AM UTC on 2026-11-15.
constexpr Date fetchedAt{816399840};

class UsageStateTest : public testing::Test {
 protected:
  void SetUp() override { testing_support::useEnglishInUtc(); }
  void TearDown() override { clock::reset(); }

  static UsageState fetched(std::optional<std::string> source = std::nullopt) {
    return {true, UsageSnapshot{{{"Weekly", 42, std::nullopt}}, fetchedAt, std::move(source)},
            std::nullopt, false};
  }
  static void ageBy(double seconds) { clock::setFixed(fetchedAt.addingSeconds(seconds)); }
};

TEST_F(UsageStateTest, DefaultIsDisabledWithNothing) {
  const UsageState state;
  EXPECT_FALSE(state.enabled);
  EXPECT_FALSE(state.snapshot);
  EXPECT_FALSE(state.message);
  EXPECT_FALSE(state.isRefreshing);
}

TEST_F(UsageStateTest, StaleOnlyBeyondNineHundredSeconds) {
  ageBy(900);
  EXPECT_FALSE(fetched().isStale());
  ageBy(901);
  EXPECT_TRUE(fetched().isStale());
  ageBy(900.5);
  EXPECT_TRUE(fetched().isStale());
}

TEST_F(UsageStateTest, WithoutASnapshotNeverStale) {
  ageBy(1e9);
  EXPECT_FALSE((UsageState{true, std::nullopt, std::nullopt, false}).isStale());
}

TEST_F(UsageStateTest, DisabledShowsTheSettingsHintEvenWithAMessage) {
  EXPECT_EQ((UsageState{false, std::nullopt, "Signed out", true}).statusText(),
            "Enable in Settings to connect your sign-in.");
}

TEST_F(UsageStateTest, MessageWinsOverRefreshing) {
  EXPECT_EQ((UsageState{true, std::nullopt, "Signed out", true}).statusText(), "Signed out");
}

TEST_F(UsageStateTest, EmptyMessageGivesAnEmptyStatus) {
  auto state = fetched();
  state.message = "";
  EXPECT_EQ(state.statusText(), "");
}

TEST_F(UsageStateTest, RefreshingAndWaitingUseTheEllipsisCharacter) {
  EXPECT_EQ((UsageState{true, std::nullopt, std::nullopt, true}).statusText(), "Refreshing\u2026");
  EXPECT_EQ((UsageState{true, std::nullopt, std::nullopt, false}).statusText(),
            "Waiting for usage\u2026");
}

TEST_F(UsageStateTest, UpdatedWithShortTimeSourceAndStaleness) {
  ageBy(60);
  EXPECT_EQ(fetched().statusText(), "Updated 1:44 AM");
  EXPECT_EQ(fetched("web").statusText(), "Updated 1:44 AM · web");
  ageBy(901);
  EXPECT_EQ(fetched().statusText(), "Updated 1:44 AM · Stale");
  EXPECT_EQ(fetched("web").statusText(), "Updated 1:44 AM · web · Stale");
}

}  // namespace
}  // namespace korvo
