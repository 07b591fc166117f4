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

TEST(DashboardLinkTest, AQueryOrFragmentLeadsWhereTheRouteLeads) {
  const std::pair<const char*, DashboardTab> cases[] = {
      {"korvo://usage?x=1", DashboardTab::ai},
      {"korvo://memory?from=widget&size=small", DashboardTab::memory},
      {"korvo://awake#controls", DashboardTab::awake},
      {"korvo://awake?", DashboardTab::awake},
  };
  for (const auto& [url, tab] : cases) {
    EXPECT_EQ(dashboardDestination(url), (DashboardDestination{tab, std::nullopt})) << url;
  }
}

// Any page can send a link: what it echoes stays one line of text.
TEST(DashboardLinkTest, ALinkIsEchoedOnOneLineWithItsControlCharactersEscaped) {
  EXPECT_EQ(dashboardDestination(std::string("korvo://weather?a=\n\0b", 21)),
            (DashboardDestination{DashboardTab::ai, "Unknown link: korvo://weather?a=\\n\\x00b"}));
  try {
    dashboardDestination("https://example.com/\r\nSet-Cookie");
    ADD_FAILURE() << "not refused";
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith(
                                  R"(not a korvo:// link: "https://example.com/\r\nSet-Cookie")"));
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
