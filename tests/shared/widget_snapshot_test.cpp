#include "shared/widget_snapshot.hpp"

#include <gtest/gtest.h>

#include "base/clock.hpp"

namespace korvo {
namespace {

TEST(WidgetSnapshotTest, DefaultIsNowWithNothingAndBothProvidersDisabled) {
  clock::setFixed(Date{816399900});
  const WidgetSnapshot snapshot;
  clock::reset();
  EXPECT_EQ(snapshot.date, Date{816399900});
  EXPECT_FALSE(snapshot.temperature);
  EXPECT_FALSE(snapshot.temperatureDate);
  EXPECT_FALSE(snapshot.temperatureEnabled);
  EXPECT_EQ(snapshot.codex, UsageState{});
  EXPECT_EQ(snapshot.claude, UsageState{});
}

TEST(WidgetSnapshotTest, BuiltFieldByFieldFromAllSixValues) {
  const UsageState on{true, std::nullopt, "hi", false};
  const WidgetSnapshot snapshot{Date{1}, 52.5, Date{2}, true, on, UsageState{}};
  EXPECT_EQ(snapshot.date, Date{1});
  EXPECT_EQ(snapshot.temperature, 52.5);
  EXPECT_EQ(snapshot.temperatureDate, Date{2});
  EXPECT_TRUE(snapshot.temperatureEnabled);
  EXPECT_EQ(snapshot.codex, on);
  EXPECT_EQ(snapshot.claude, UsageState{});
}

}  // namespace
}  // namespace korvo
