#include "shared/dashboard_tab.hpp"

#include <gtest/gtest.h>

#include <set>
#include <unordered_set>

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
}

TEST(DashboardTabTest, ConstantTitleListMatchesTheCasesShortTitles) {
  const auto tabs = allCases<DashboardTab>();
  for (std::size_t i = 0; i < tabs.size(); ++i) {
    EXPECT_EQ(dashboardTabShortTitles[i], shortTitle(tabs[i]));
  }
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

TEST(DashboardTabTest, HashIsTheHashOfTheRawValue) {
  for (const DashboardTab tab : allCases<DashboardTab>()) {
    EXPECT_EQ(std::hash<DashboardTab>{}(tab), std::hash<std::string_view>{}(rawValue(tab)));
  }
  const auto tabs = allCases<DashboardTab>();
  const std::unordered_set<DashboardTab> set(tabs.begin(), tabs.end());
  EXPECT_EQ(set.size(), 3u);
}

TEST(DashboardTabTest, OrderingsAreAllSixPermutationsInLexicographicOrder) {
  using D = DashboardTab;
  const std::array<std::array<D, 3>, 6> expected{{
      {D::ai, D::memory, D::awake},
      {D::ai, D::awake, D::memory},
      {D::memory, D::ai, D::awake},
      {D::memory, D::awake, D::ai},
      {D::awake, D::ai, D::memory},
      {D::awake, D::memory, D::ai},
  }};
  EXPECT_EQ(dashboardTabOrderings, expected);
  std::set<std::array<D, 3>> distinct(dashboardTabOrderings.begin(), dashboardTabOrderings.end());
  EXPECT_EQ(distinct.size(), 6u);
}

}  // namespace
}  // namespace korvo
