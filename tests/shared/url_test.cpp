#include "shared/url.hpp"

#include <gtest/gtest.h>

namespace korvo {
namespace {

TEST(UrlTest, ParsesSchemeHostAndPath) {
  const auto url = Url::parse("https://claude.ai/settings/usage");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->scheme, "https");
  EXPECT_EQ(url->host, "claude.ai");
  EXPECT_EQ(url->path, "/settings/usage");
  EXPECT_EQ(url->string(), "https://claude.ai/settings/usage");
}

TEST(UrlTest, RefusesTextThatIsNoAbsoluteUrl) {
  for (const char* text :
       {"", "korvo", "korvo:awake", "://awake", "1korvo://awake", "korvo://two words",
        "korvo://a%zz", "korvo://a%4", "korvo://a?b=c", "korvo://a#top", "korvo://\xc3\xa9"}) {
    EXPECT_FALSE(Url::parse(text)) << text;
  }
}

TEST(UrlTest, FileUrlEscapesWhatAUrlCannotHoldAndParsesBack) {
  const auto url = Url::file("/home/a b/ü/usage-snapshot.json");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->string(), "file:///home/a%20b/%C3%BC/usage-snapshot.json");
  EXPECT_EQ(Url::parse(url->string()), url);
}

TEST(UrlTest, FileUrlNeedsAnAbsolutePath) {
  EXPECT_FALSE(Url::file(""));
  EXPECT_FALSE(Url::file("relative/usage-snapshot.json"));
}

}  // namespace
}  // namespace korvo
