#include <gtest/gtest.h>

#include <algorithm>

#include "base/date_text.hpp"
#include "support/ui/fake_text_measurer.hpp"
#include "ui/layout.hpp"

namespace korvo::ui {
namespace {

// With the fake measurer at 10 points a character is 5 wide and a line 12 high.
LayoutNode lay(const View& view, Proposal proposal) {
  testing::FakeTextMeasurer measurer;
  return layout(view.font(Font::system(10)), proposal, {0, 0}, Environment{}, measurer);
}

Proposal atMost(double width, double height) {
  return {AxisProposal::atMost(width), AxisProposal::atMost(height)};
}

TEST(StackLayout, NestedStacksSpaceAndAlignTheirChildren) {
  const View view = vstack(
      HorizontalAlignment::leading, 4,
      {text("abcd"),
       hstack(VerticalAlignment::center, 6, {text("ab"), text("abcdef").font(Font::system(20))})});
  const LayoutNode root = lay(view, atMost(200, 200));
  EXPECT_EQ(root.kind, ui::NodeKind::vstack);
  EXPECT_EQ(root.frame, (Rect{0, 0, 76, 40}));
  EXPECT_EQ(root.children[0].frame, (Rect{0, 0, 20, 12}));
  const LayoutNode& row = root.children[1];
  EXPECT_EQ(row.frame, (Rect{0, 16, 76, 24}));
  EXPECT_EQ(row.children[0].frame, (Rect{0, 22, 10, 12}));
  EXPECT_EQ(row.children[1].frame, (Rect{16, 16, 60, 24}));
}

TEST(StackLayout, TrailingAlignmentMovesNarrowChildrenToTheEnd) {
  const LayoutNode root =
      lay(vstack(HorizontalAlignment::trailing, 0, {text("ab"), text("abcdef")}), atMost(200, 200));
  EXPECT_EQ(root.children[0].frame, (Rect{20, 0, 10, 12}));
  EXPECT_EQ(root.children[1].frame, (Rect{0, 12, 30, 12}));
}

TEST(StackLayout, UnspecifiedSpacingIsEightPoints) {
  const LayoutNode root = lay(hstack({text("ab"), text("cd")}), atMost(200, 200));
  EXPECT_EQ(root.children[1].frame.x, 18);
}

TEST(StackLayout, SpacerPushesContentToBothEnds) {
  const LayoutNode root = lay(hstack({text("ab"), spacer(), text("cd")}), atMost(100, 50));
  EXPECT_EQ(root.frame, (Rect{0, 0, 100, 12}));
  EXPECT_EQ(root.children[0].frame, (Rect{0, 0, 10, 12}));
  EXPECT_EQ(root.children[1].frame, (Rect{18, 6, 64, 0}));
  EXPECT_EQ(root.children[2].frame, (Rect{90, 0, 10, 12}));
}

TEST(StackLayout, SpacerKeepsItsMinimumLengthWhenSpaceIsShort) {
  const LayoutNode root =
      lay(vstack(HorizontalAlignment::leading, 0, {text("ab"), spacer(20), text("cd")}),
          atMost(100, 30));
  EXPECT_EQ(root.children[1].frame.height, 20);
}

TEST(StackLayout, SpacerWithoutOfferedLengthTakesItsMinimum) {
  const LayoutNode root =
      lay(hstack(VerticalAlignment::center, 0, {text("ab"), spacer(3), text("cd")}),
          {AxisProposal::unspecified(), AxisProposal::unspecified()});
  EXPECT_EQ(root.frame.width, 23);
}

TEST(StackLayout, EmptyChildrenTakeNoSpacing) {
  const LayoutNode root = lay(
      hstack(VerticalAlignment::center, 10, {text("ab"), View(), text("cd")}), atMost(200, 200));
  ASSERT_EQ(root.children.size(), 2u);
  EXPECT_EQ(root.children[1].frame.x, 20);
}

TEST(StackLayout, LeastFlexibleChildIsServedFirst) {
  // The bar would take anything, so the text gets its whole width first.
  const LayoutNode root =
      lay(hstack(VerticalAlignment::center, 0,
                 {meter(0.5, Color::black(), Color::white()), text("abcdefgh")}),
          atMost(100, 50));
  EXPECT_EQ(root.children[1].frame, (Rect{60, 0, 40, 12}));
  EXPECT_EQ(root.children[0].frame, (Rect{0, 3, 60, 6}));
}

TEST(StackLayout, EqualFlexibleChildrenShareEqually) {
  const View card = rectangle().frame({.maxWidth = infinity});
  const LayoutNode root = lay(hstack(VerticalAlignment::top, 16, {card, divider(), card}),
                              {AxisProposal::exact(300), AxisProposal::exact(100)});
  EXPECT_EQ(root.children[0].frame, (Rect{0, 0, 133.5, 100}));
  EXPECT_EQ(root.children[1].frame, (Rect{149.5, 0, 1, 100}));
  EXPECT_EQ(root.children[2].frame, (Rect{166.5, 0, 133.5, 100}));
}

TEST(StackLayout, FillingChildrenAreNotLaidOutAtNoWidthToRankThem) {
  // Two filling cards of texts beside a text: ranking the cards needs no probe at no width, and
  // a bare text's least width is known to be none.
  const View card =
      vstack(HorizontalAlignment::leading, 0, {text("weekly remaining"), text("five hours")})
          .frame({.maxWidth = infinity});
  testing::FakeTextMeasurer measurer;
  const LayoutNode root =
      layout(hstack(VerticalAlignment::top, 10, {card, text("ago"), card}).font(Font::system(10)),
             atMost(300, 100), {0, 0}, Environment{}, measurer);
  EXPECT_EQ(root.children[0].frame, (Rect{0, 0, 132.5, 24}));
  EXPECT_EQ(root.children[1].frame, (Rect{142.5, 0, 15, 12}));
  EXPECT_EQ(root.children[2].frame, (Rect{167.5, 0, 132.5, 24}));
  EXPECT_EQ(std::count(measurer.widthsOffered.begin(), measurer.widthsOffered.end(), 0.0), 0);
}

TEST(StackLayout, FirstTextBaselineAlignsTextsOfDifferentSizes) {
  const LayoutNode root =
      lay(hstack(VerticalAlignment::firstTextBaseline, 2,
                 {text("58").font(Font::system(30)), text("%").font(Font::system(15))}),
          atMost(200, 200));
  EXPECT_EQ(root.children[0].frame, (Rect{0, 0, 30, 36}));
  EXPECT_EQ(root.children[1].frame, (Rect{32, 13.5, 7.5, 18}));
  EXPECT_EQ(root.frame, (Rect{0, 0, 39.5, 36}));
}

TEST(StackLayout, LayeredStackAlignsChildrenInTheLargest) {
  const LayoutNode root = lay(zstack(Alignment::bottomTrailing(),
                                     {rectangle().frame({.width = 40, .height = 30}), text("ab")}),
                              atMost(200, 200));
  EXPECT_EQ(root.frame, (Rect{0, 0, 40, 30}));
  EXPECT_EQ(root.children[1].frame, (Rect{30, 18, 10, 12}));
}

TEST(FrameLayout, InfiniteMaximumFillsTheOfferAndAligns) {
  const LayoutNode root = lay(
      text("ab").frame(
          {.maxWidth = infinity, .maxHeight = infinity, .alignment = Alignment::bottomTrailing()}),
      {AxisProposal::exact(100), AxisProposal::exact(50)});
  EXPECT_EQ(root.kind, ui::NodeKind::frame);
  EXPECT_EQ(root.frame, (Rect{0, 0, 100, 50}));
  EXPECT_EQ(root.children[0].frame, (Rect{90, 38, 10, 12}));
}

TEST(FrameLayout, InfiniteMaximumHugsContentWhenNothingIsOffered) {
  const LayoutNode root = lay(text("ab").frame({.maxWidth = infinity}),
                              {AxisProposal::unspecified(), AxisProposal::unspecified()});
  EXPECT_EQ(root.frame, (Rect{0, 0, 10, 12}));
}

TEST(FrameLayout, FixedSizeCentresItsContentByDefault) {
  const LayoutNode root = lay(text("ab").frame({.width = 40, .height = 20}), atMost(200, 200));
  EXPECT_EQ(root.frame, (Rect{0, 0, 40, 20}));
  EXPECT_EQ(root.children[0].frame, (Rect{15, 4, 10, 12}));
}

TEST(PaddingLayout, InsetsGrowTheNodeAndMoveTheContent) {
  const LayoutNode root = lay(
      text("ab").padding({.top = 3, .leading = 4, .bottom = 5, .trailing = 6}), atMost(200, 200));
  EXPECT_EQ(root.kind, ui::NodeKind::padding);
  EXPECT_EQ(root.frame, (Rect{0, 0, 20, 20}));
  EXPECT_EQ(root.children[0].frame, (Rect{4, 3, 10, 12}));
}

TEST(PaddingLayout, PaddingInsideAFillingFrameLeavesTheMargins) {
  const LayoutNode root =
      lay(rectangle().padding(16), {AxisProposal::exact(170), AxisProposal::exact(170)});
  EXPECT_EQ(root.children[0].frame, (Rect{16, 16, 138, 138}));
}

TEST(TextLayout, LongTextWrapsAtBlanks) {
  const LayoutNode root = lay(text("aaa bbb ccc"), atMost(40, 100));
  EXPECT_EQ(root.frame, (Rect{0, 0, 35, 24}));
  ASSERT_EQ(root.lines.size(), 2u);
  EXPECT_EQ(root.lines[0].content, "aaa bbb");
  EXPECT_EQ(root.lines[1].content, "ccc");
  EXPECT_EQ(root.lines[1].y, 12);
}

TEST(TextLayout, TextShrinksToFitOneLineBeforeTruncating) {
  const LayoutNode root =
      lay(text("abcdefghij").lineLimit(1).minimumScaleFactor(0.5), atMost(40, 100));
  EXPECT_DOUBLE_EQ(root.scale, 0.8);
  EXPECT_DOUBLE_EQ(root.frame.width, 40);
  EXPECT_DOUBLE_EQ(root.frame.height, 9.6);
  ASSERT_EQ(root.lines.size(), 1u);
  EXPECT_EQ(root.lines[0].content, "abcdefghij");
  EXPECT_EQ(root.font->size, 10);
}

TEST(TextLayout, TextBeyondItsMinimumScaleIsTruncatedWithAnEllipsis) {
  const LayoutNode root =
      lay(text("abcdefghij").lineLimit(1).minimumScaleFactor(0.9), atMost(30, 100));
  EXPECT_DOUBLE_EQ(root.scale, 0.9);
  ASSERT_EQ(root.lines.size(), 1u);
  EXPECT_EQ(root.lines[0].content, "abcde\u2026");
  EXPECT_DOUBLE_EQ(root.frame.width, 27);
  EXPECT_EQ(*root.text, "abcdefghij");
}

TEST(TextLayout, TextThatMayNotShrinkIsTruncatedAtFullSize) {
  const LayoutNode root = lay(text("abcdefghij").lineLimit(1), atMost(30, 100));
  EXPECT_EQ(root.scale, 1);
  EXPECT_EQ(root.lines[0].content, "abcde\u2026");
  EXPECT_EQ(root.frame.width, 30);
}

TEST(TextLayout, TrackingWidensEveryCharacter) {
  const LayoutNode root = lay(text("abcd").tracking(1), atMost(200, 200));
  EXPECT_EQ(root.frame.width, 24);
}

TEST(TextLayout, InheritedStyleReachesNestedTexts) {
  Environment environment;
  testing::FakeTextMeasurer measurer;
  const Color secondary = environment.palette().secondary;
  const LayoutNode root = layout(vstack({hstack({text("a")})})
                                     .font(Font::caption2())
                                     .foregroundStyle(secondary)
                                     .monospacedDigit(),
                                 atMost(200, 200), {0, 0}, environment, measurer);
  const LayoutNode& leaf = root.children[0].children[0];
  EXPECT_EQ(leaf.font, Font::caption2().withMonospacedDigits());
  EXPECT_EQ(leaf.color, secondary);
}

// One text view may sit in a tree several times under different styles and offers; each place
// lays it out for its own font and room.
TEST(TextLayout, OneTextViewPlacedTwiceTakesEachPlacesFontAndRoom) {
  const View word = text("abcdef");
  const LayoutNode root =
      lay(vstack(HorizontalAlignment::leading, 0,
                 {word, word.font(Font::system(20)), word.lineLimit(1).frame({.width = 15})}),
          atMost(200, 200));
  ASSERT_EQ(root.children.size(), 3u);
  EXPECT_EQ(root.children[0].frame, (Rect{0, 0, 30, 12}));
  EXPECT_EQ(root.children[1].frame, (Rect{0, 12, 60, 24}));
  EXPECT_EQ(root.children[2].children[0].lines[0].content, "ab\u2026");
}

TEST(TextLayout, OneRelativeDateShowsTheSameSpanWherever) {
  const Date now = Date::fromUnixSeconds(1'800'000'000);
  const View age = relativeDate(now.addingSeconds(-240));
  testing::FakeTextMeasurer measurer;
  const LayoutNode root = layout(hstack({age, age.font(Font::system(20))}).font(Font::system(10)),
                                 atMost(300, 100), {0, 0}, Environment{.now = now}, measurer);
  ASSERT_EQ(root.children.size(), 2u);
  EXPECT_EQ(*root.children[0].text, relativeSpan(now.addingSeconds(-240), now));
  EXPECT_EQ(root.children[1].text, root.children[0].text);
  EXPECT_EQ(root.children[1].frame.width, 2 * root.children[0].frame.width);
}

TEST(TextLayout, DefaultColourIsThePrimaryOfTheScheme) {
  Environment environment{.colorScheme = ColorScheme::dark};
  testing::FakeTextMeasurer measurer;
  const LayoutNode root = layout(text("a"), atMost(200, 200), {0, 0}, environment, measurer);
  EXPECT_EQ(root.color->hex(), "#FFFFFFD9");
}

TEST(LabelLayout, SymbolThenTextOnOneNode) {
  const LayoutNode root = lay(label("MEMORY", "memorychip"), atMost(200, 200));
  EXPECT_EQ(root.kind, ui::NodeKind::label);
  // A 10-point symbol, a 4-point gap, six characters.
  EXPECT_EQ(root.frame, (Rect{0, 0, 44, 12}));
  EXPECT_EQ(*root.symbol, "memorychip");
  EXPECT_TRUE(root.children.empty());
}

}  // namespace
}  // namespace korvo::ui
