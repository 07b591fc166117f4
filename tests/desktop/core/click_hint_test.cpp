#include "desktop/core/click_hint.hpp"

#include <gtest/gtest.h>

// A card's tooltip names what a click on it opens.
namespace korvo::desktop {
namespace {

struct HintCase {
  const char* url;
  const char* hint;
};

class ClickHint : public testing::TestWithParam<HintCase> {};

TEST_P(ClickHint, NamesWhatTheClickOpens) {
  EXPECT_EQ(clickHint(GetParam().url), GetParam().hint);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ClickHint,
    testing::Values(HintCase{"korvo://usage", "Open AI usage in Korvo"},
                    HintCase{"korvo://ai", "Open AI usage in Korvo"},
                    HintCase{"korvo://awake", "Open Keep Awake in Korvo"},
                    HintCase{"korvo://resources", "Open memory and CPU in Korvo"},
                    HintCase{"korvo://memory/details?x=1", "Open memory and CPU in Korvo"},
                    HintCase{"korvo://settings", "Open Korvo"}, HintCase{"korvo://", "Open Korvo"},
                    HintCase{"https://chatgpt.com/codex/settings/usage",
                             "Open https://chatgpt.com/codex/settings/usage"}));

}  // namespace
}  // namespace korvo::desktop
