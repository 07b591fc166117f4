#include "shared/usage_provider.hpp"

#include <gtest/gtest.h>

#include "shared/usage_json.hpp"

namespace korvo {
namespace {

TEST(UsageProviderTest, CasesInOrderCodexFirst) {
  const auto cases = allCases<UsageProvider>();
  ASSERT_EQ(cases.size(), 2u);
  EXPECT_EQ(cases[0], UsageProvider::codex);
  EXPECT_EQ(cases[1], UsageProvider::claude);
}

TEST(UsageProviderTest, NamesWithMiddleDotSeparator) {
  EXPECT_EQ(rawValue(UsageProvider::codex), "codex");
  EXPECT_EQ(rawValue(UsageProvider::claude), "claude");
  EXPECT_EQ(displayName(UsageProvider::codex), "OpenAI \u00b7 Codex");
  EXPECT_EQ(displayName(UsageProvider::claude), "Anthropic \u00b7 Claude");
  EXPECT_EQ(shortName(UsageProvider::codex), "Codex");
  EXPECT_EQ(shortName(UsageProvider::claude), "Claude");
}

TEST(UsageProviderTest, UsagePagesAreHttpsWithTheirFixedPaths) {
  EXPECT_EQ(usagePageURL(UsageProvider::codex).scheme, "https");
  EXPECT_EQ(usagePageURL(UsageProvider::codex).path, "/codex/settings/usage");
  EXPECT_EQ(usagePageURL(UsageProvider::claude).scheme, "https");
  EXPECT_EQ(usagePageURL(UsageProvider::claude).path, "/settings/usage");
  EXPECT_FALSE(usagePageURL(UsageProvider::codex).host.empty());
  EXPECT_FALSE(usagePageURL(UsageProvider::claude).host.empty());
}

TEST(UsageProviderTest, ConstructionFromRawStringIsExact) {
  EXPECT_EQ(fromRaw<UsageProvider>("codex"), UsageProvider::codex);
  EXPECT_EQ(fromRaw<UsageProvider>("claude"), UsageProvider::claude);
  EXPECT_EQ(fromRaw<UsageProvider>("Codex"), std::nullopt);
  EXPECT_EQ(fromRaw<UsageProvider>(""), std::nullopt);
  EXPECT_EQ(fromRaw<UsageProvider>("gemini"), std::nullopt);
}

TEST(UsageProviderTest, CodedAloneAsItsRawValueString) {
  EXPECT_EQ(encodeUsageProvider(UsageProvider::claude), "\"claude\"");
  EXPECT_EQ(std::get<UsageProvider>(decodeUsageProvider("\"codex\"")), UsageProvider::codex);
  EXPECT_TRUE(std::holds_alternative<DecodeFailure>(decodeUsageProvider("\"Codex\"")));
  EXPECT_TRUE(std::holds_alternative<DecodeFailure>(decodeUsageProvider("0")));
}

}  // namespace
}  // namespace korvo
