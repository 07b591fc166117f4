#include "app/dashboard_link.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/exit_codes.hpp"

namespace korvo {
namespace {

TEST(DashboardLinkTest, EveryRouteOpensItsTab) {
  const std::pair<const char*, DashboardTab> cases[] = {
      {"korvo://usage", DashboardTab::ai},         {"korvo://ai", DashboardTab::ai},
      {"korvo://resources", DashboardTab::memory}, {"korvo://memory", DashboardTab::memory},
      {"korvo://awake", DashboardTab::awake},
  };
  for (const auto& [url, tab] : cases) {
    EXPECT_EQ(dashboardDestination(url), (DashboardDestination{tab, std::nullopt})) << url;
  }
}

TEST(DashboardLinkTest, AnUnknownRouteOpensAiWithTheLink) {
  EXPECT_EQ(dashboardDestination("korvo://weather"),
            (DashboardDestination{DashboardTab::ai, "Unknown link: korvo://weather"}));
  EXPECT_EQ(dashboardDestination("korvo://Awake"),
            (DashboardDestination{DashboardTab::ai, "Unknown link: korvo://Awake"}));
}

TEST(DashboardLinkTest, AnythingButAKorvoLinkIsAUsageError) {
  for (const char* url :
       {"https://example.com", "korvo", "korvo:awake", "", "korvo://a b", "file:///etc/passwd"}) {
    EXPECT_THROW(dashboardDestination(url), UsageError) << url;
  }
  try {
    dashboardDestination("https://example.com");
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith("not a korvo:// link: \"https://example.com\""));
  }
}

}  // namespace
}  // namespace korvo
