#include "views/monitor/last_updated_footer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/date_text.hpp"
#include "support/ui/fake_text_measurer.hpp"
#include "support/ui/view_tree_query.hpp"
#include "ui/layout.hpp"

namespace korvo {
namespace {

using testing::ElementsAre;

// Fixed advances, so frames do not depend on the fonts installed.
ui::testing::FakeTextMeasurer measurer;

struct AgeCase {
  double ageSeconds;
  const char* prefix;
};

class LastUpdatedFooterAgeTest : public testing::TestWithParam<AgeCase> {};

TEST_P(LastUpdatedFooterAgeTest, PrefixIsStaleOnlyPastFifteenMinutes) {
  const Date now = viewtest::testNow;
  const Date data = now.addingSeconds(-GetParam().ageSeconds);
  const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall);
  const ui::LayoutNode tree = ui::layout(
      LastUpdatedFooter{now, data}.body(env),
      {ui::AxisProposal::exact(138), ui::AxisProposal::exact(20)}, {0, 0}, env, measurer);
  EXPECT_THAT(viewtest::texts(tree),
              ElementsAre(GetParam().prefix, relativeSpan(data, env.now), "ago"));
}

INSTANTIATE_TEST_SUITE_P(Ages, LastUpdatedFooterAgeTest,
                         testing::Values(AgeCase{0, "Updated"}, AgeCase{240, "Updated"},
                                         AgeCase{900, "Updated"}, AgeCase{900.5, "Stale ·"},
                                         AgeCase{901, "Stale ·"}, AgeCase{2 * 3600, "Stale ·"},
                                         AgeCase{-600, "Updated"}));

TEST(LastUpdatedFooterTest, FutureDataMomentShowsTheAbsoluteSpanFollowedByAgo) {
  const Date now = viewtest::testNow;
  const Date data = now.addingSeconds(300);
  const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall);
  const ui::LayoutNode tree =
      ui::layout(LastUpdatedFooter{now, data}.body(env), {}, {0, 0}, env, measurer);
  EXPECT_THAT(viewtest::texts(tree), ElementsAre("Updated", "5 min", "ago"));
}

TEST(LastUpdatedFooterTest, RowOfThreeSmallSecondaryTextsWithALiveSpan) {
  const Date data = viewtest::testNow.addingSeconds(-240);
  for (const auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
    const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall, {scheme});
    const ui::LayoutNode tree =
        ui::layout(LastUpdatedFooter{viewtest::testNow, data}.body(env), {}, {0, 0}, env, measurer);
    const ui::LayoutNode* row = viewtest::firstOfKind(tree, ui::NodeKind::hstack);
    ASSERT_NE(row, nullptr);
    ASSERT_EQ(row->children.size(), 3u);
    EXPECT_EQ(row->children[1].kind, ui::NodeKind::relativeDate);
    EXPECT_EQ(row->children[1].relativeTo, data);
    EXPECT_EQ(row->children[1].text, "4 min");
    for (const ui::LayoutNode& piece : row->children) {
      EXPECT_EQ(piece.font, ui::Font::system(9));
      EXPECT_EQ(piece.color, env.palette().secondary);
    }
    EXPECT_NEAR(row->children[1].frame.x, row->children[0].frame.maxX() + 3, 1e-9);
    EXPECT_NEAR(row->children[2].frame.x, row->children[1].frame.maxX() + 3, 1e-9);
  }
}

TEST(LastUpdatedFooterTest, ShrinksOnOneLineBeforeTruncating) {
  const Date data = viewtest::testNow.addingSeconds(-(3 * 86400 + 4 * 3600));
  const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall);
  const ui::LayoutNode roomy =
      ui::layout(LastUpdatedFooter{viewtest::testNow, data}.body(env), {}, {0, 0}, env, measurer);
  const double natural = roomy.frame.width;
  const ui::LayoutNode tight = ui::layout(
      LastUpdatedFooter{viewtest::testNow, data}.body(env),
      {ui::AxisProposal::atMost(natural * 0.85), ui::AxisProposal::atMost(roomy.frame.height)},
      {0, 0}, env, measurer);
  bool shrunk = false;
  for (const ui::LayoutNode* node : viewtest::allNodes(tight)) {
    if (!node->text) continue;
    if (node->scale < 1) shrunk = true;
    EXPECT_GE(node->scale, 0.7);
    ASSERT_EQ(node->lines.size(), 1u);
    EXPECT_EQ(node->lines[0].content, *node->text);
  }
  EXPECT_TRUE(shrunk);
}

}  // namespace
}  // namespace korvo
