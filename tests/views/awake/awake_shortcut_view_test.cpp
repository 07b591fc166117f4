#include "views/awake/awake_shortcut_view.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ui/view_tree_query.hpp"

namespace korvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ui::Font;
using ui::FontDesign;
using ui::FontWeight;
using viewtest::drawn;
using viewtest::nodeWithText;

constexpr const char* subtitle = "Keep the work going.\nOpen session controls.";

class AwakeShortcutVariationTest : public testing::TestWithParam<viewtest::Variation> {};

TEST_P(AwakeShortcutVariationTest, CardHasSymbolsOnTopAndTextsAtTheBottom) {
  const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall, GetParam());
  const ui::Palette palette = env.palette();
  const ui::WidgetLayout widget = viewtest::layOut(AwakeShortcutView{}.body(env), env);

  EXPECT_EQ(widget.url, "korvo://awake");
  EXPECT_THAT(viewtest::texts(widget.root), ElementsAre("Keep Awake", subtitle));

  const auto symbols = viewtest::nodesOfKind(widget.root, ui::NodeKind::symbol);
  ASSERT_EQ(symbols.size(), 2u);
  const ui::LayoutNode& cup = *symbols[0];
  const ui::LayoutNode& arrow = *symbols[1];
  EXPECT_EQ(cup.symbol, "cup.and.saucer.fill");
  EXPECT_EQ(cup.font, Font::system(28, FontWeight::light));
  EXPECT_TRUE(viewtest::inAccentGroup(widget.root, cup));
  EXPECT_EQ(cup.color, drawn(palette.teal, env, true));
  EXPECT_EQ(arrow.symbol, "arrow.up.right");
  EXPECT_EQ(arrow.font, Font::caption().withWeight(FontWeight::semibold));
  EXPECT_FALSE(viewtest::inAccentGroup(widget.root, arrow));
  EXPECT_EQ(arrow.color, drawn(palette.secondary, env));

  const ui::Rect area = viewtest::contentArea(widget);
  EXPECT_NEAR(cup.frame.x, area.x, 0.5);
  EXPECT_NEAR(cup.frame.y, area.y, 0.5);
  EXPECT_NEAR(arrow.frame.maxX(), area.maxX(), 0.5);

  const ui::LayoutNode* title = nodeWithText(widget.root, "Keep Awake");
  ASSERT_NE(title, nullptr);
  EXPECT_EQ(title->font, Font::system(20, FontWeight::semibold, FontDesign::rounded));
  EXPECT_EQ(title->color, drawn(palette.primary, env));
  EXPECT_NEAR(title->frame.x, area.x, 0.5);

  const ui::LayoutNode* lines = nodeWithText(widget.root, subtitle);
  ASSERT_NE(lines, nullptr);
  EXPECT_EQ(lines->font, Font::caption());
  EXPECT_EQ(lines->color, drawn(palette.secondary, env));
  ASSERT_EQ(lines->lines.size(), 2u);
  EXPECT_EQ(lines->lines[0].content, "Keep the work going.");
  EXPECT_EQ(lines->lines[1].content, "Open session controls.");
  // The spacer pushes the texts to the bottom; 10 points between title and subtitle.
  EXPECT_NEAR(lines->frame.maxY(), area.maxY(), 0.5);
  EXPECT_NEAR(lines->frame.y - title->frame.maxY(), 10, 0.5);
  EXPECT_GT(title->frame.y, cup.frame.maxY() + 10);
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

TEST_P(AwakeShortcutVariationTest, BackgroundFollowsTheHostCapability) {
  const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall, GetParam());
  const ui::WidgetLayout widget = viewtest::layOut(AwakeShortcutView{}.body(env), env);
  const bool fullColor = env.renderingMode == ui::RenderingMode::fullColor;
  if (env.hostSuppliesContainerBackground) {
    ASSERT_EQ(widget.root.children.size(), 2u);
    EXPECT_EQ(viewtest::firstOfKind(widget.root.children[0], ui::NodeKind::gradient) != nullptr,
              fullColor);
    EXPECT_EQ(viewtest::firstOfKind(widget.root.children[1], ui::NodeKind::padding), nullptr);
  } else {
    ASSERT_EQ(widget.root.children.size(), 1u);
    const ui::LayoutNode& background = widget.root.children[0];
    ASSERT_EQ(background.kind, ui::NodeKind::background);
    ASSERT_EQ(background.children.size(), 2u);
    EXPECT_EQ(background.children[0].kind, fullColor ? ui::NodeKind::zstack : ui::NodeKind::empty);
    const ui::LayoutNode& padding = background.children[1];
    ASSERT_EQ(padding.kind, ui::NodeKind::padding);
    EXPECT_EQ(padding.frame, (ui::Rect{0, 0, 170, 170}));
    ASSERT_EQ(padding.children.size(), 1u);
    EXPECT_EQ(padding.children[0].frame, (ui::Rect{16, 16, 138, 138}));
  }
}

INSTANTIATE_TEST_SUITE_P(AllSurroundings, AwakeShortcutVariationTest,
                         testing::ValuesIn(viewtest::allVariations()),
                         [](const auto& info) { return viewtest::variationName(info.param); });

TEST(AwakeShortcutViewTest, CardIsTheSameWhateverTheMoment) {
  ui::Environment early = viewtest::environment(ui::WidgetFamily::systemSmall);
  ui::Environment late = early;
  late.now = early.now.addingSeconds(86400 * 40);
  EXPECT_EQ(AwakeShortcutView{}.body(early), AwakeShortcutView{}.body(late));
  EXPECT_EQ(viewtest::layOut(AwakeShortcutView{}.body(early), early).root,
            viewtest::layOut(AwakeShortcutView{}.body(late), late).root);
}

}  // namespace
}  // namespace korvo
