#include "shared/dashboard_tab.hpp"

#include <gtest/gtest.h>

namespace korvo {
namespace {

TEST(DashboardTabTest, RawValuesAndShortTitlesInCaseOrder) {
  const auto tabs = allCases<DashboardTab>();
  ASSERT_EQ(tabs.size(), 3u);
  EXPECT_EQ(tabs[0], DashboardTab::ai);
  EXPECT_EQ(tabs[1], DashboardTab::memory);
  EXPECT_EQ(tabs[2], DashboardTab::awake);
  EXPECT_EQ(rawValue(DashboardTab::ai), "ai");
  EXPECT_EQ(rawValue(DashboardTab::memory), "memory");
  EXPECT_EQ(rawValue(DashboardTab::awake), "awake");
  EXPECT_EQ(shortTitle(DashboardTab::ai), "AI");
  EXPECT_EQ(shortTitle(DashboardTab::memory), "Mem");
  EXPECT_EQ(shortTitle(DashboardTab::awake), "Awake");
  EXPECT_EQ(title(DashboardTab::ai), "AI Usage");
  EXPECT_EQ(title(DashboardTab::memory), "Memory");
  EXPECT_EQ(title(DashboardTab::awake), "Keep Awake");
}

TEST(DashboardTabTest, ConstructionFromRawValueIsExact) {
  EXPECT_EQ(fromRaw<DashboardTab>("ai"), DashboardTab::ai);
  EXPECT_EQ(fromRaw<DashboardTab>("memory"), DashboardTab::memory);
  EXPECT_EQ(fromRaw<DashboardTab>("awake"), DashboardTab::awake);
  EXPECT_EQ(fromRaw<DashboardTab>("AI"), std::nullopt);
  EXPECT_EQ(fromRaw<DashboardTab>("Memory"), std::nullopt);
  EXPECT_EQ(fromRaw<DashboardTab>(""), std::nullopt);
  EXPECT_EQ(fromRaw<DashboardTab>("resources"), std::nullopt);
}

}  // namespace
}  // namespace korvo
