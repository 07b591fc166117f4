#include "shared/deep_link.hpp"

#include <gtest/gtest.h>

#include "shared/app_identity.hpp"
#include "shared/dashboard_tab.hpp"

namespace korvo {
namespace {

TEST(DeepLinkTest, AwakeIsSchemeKorvoHostAwakeEmptyPath) {
  const Url url = deepLinkURL("awake");
  EXPECT_EQ(url.string(), "korvo://awake");
  EXPECT_EQ(url.scheme, "korvo");
  EXPECT_EQ(url.host, "awake");
  EXPECT_EQ(url.path, "");
}

TEST(DeepLinkTest, RoutesInUse) {
  EXPECT_EQ(deepLinkURL("resources").string(), "korvo://resources");
  EXPECT_EQ(deepLinkURL(rawValue(DashboardTab::awake)).string(), "korvo://awake");
  EXPECT_EQ(Url::parse("korvo://usage")->string(), "korvo://usage");
  EXPECT_EQ(Url::parse("korvo://resources"), deepLinkURL("resources"));
}

TEST(DeepLinkTest, RouteIsAppendedWithoutEscaping) {
  const Url url = deepLinkURL("usage/codex");
  EXPECT_EQ(url.host, "usage");
  EXPECT_EQ(url.path, "/codex");
  EXPECT_EQ(url.string(), "korvo://usage/codex");
}

TEST(DeepLinkDeathTest, RouteThatIsNoUrlStopsTheProcessWithAMessage) {
  EXPECT_DEATH(deepLinkURL("two words"), "deep link does not parse as a URL: korvo://two words");
}

TEST(AppIdentityTest, Constants) {
  EXPECT_EQ(AppIdentity::urlScheme, "korvo");
  EXPECT_EQ(AppIdentity::applicationIdentifier, "com.tessmoor.Korvo");
  EXPECT_EQ(AppIdentity::applicationTitle, "Korvo · Resources, AI usage & Keep Awake");
}

}  // namespace
}  // namespace korvo
