#include "ui/widget_layout.hpp"

#include <gtest/gtest.h>

#include "base/date_text.hpp"
#include "support/ui/fake_text_measurer.hpp"
#include "ui/hit_test.hpp"

namespace korvo::ui {
namespace {

WidgetLayout card(const View& view, Environment environment = {}, double scale = 2) {
  testing::FakeTextMeasurer measurer;
  return layoutWidget("com.tessmoor.Korvo.test", view.font(Font::system(10)), environment, measurer,
                      scale);
}

const View filling = text("ab").frame(
    {.maxWidth = infinity, .maxHeight = infinity, .alignment = Alignment::topLeading()});

TEST(WidgetLayout, FamiliesHaveTheirSizes) {
  EXPECT_EQ(card(filling, {.family = WidgetFamily::systemSmall}).size, (Size{170, 170}));
  EXPECT_EQ(card(filling, {.family = WidgetFamily::systemMedium}).size, (Size{364, 170}));
}

TEST(WidgetLayout, HostSuppliedBackgroundFillsTheCardAndContentKeepsMargins) {
  const View view = filling.containerBackground(colorFill(Color::black()));
  const WidgetLayout widget = card(view, {.hostSuppliesContainerBackground = true});
  EXPECT_EQ(widget.root.kind, ui::NodeKind::container);
  ASSERT_EQ(widget.root.children.size(), 2u);
  EXPECT_EQ(widget.root.children[0].frame, (Rect{0, 0, 170, 170}));
  EXPECT_EQ(widget.root.children[1].frame, (Rect{16, 16, 138, 138}));
  EXPECT_EQ(widget.root.children[1].children[0].frame, (Rect{16, 16, 10, 12}));
}

TEST(WidgetLayout, LegacyPathIgnoresTheContainerBackgroundAndHasNoMargins) {
  const View view = filling.containerBackground(colorFill(Color::black()));
  const WidgetLayout widget = card(view, {.hostSuppliesContainerBackground = false});
  ASSERT_EQ(widget.root.children.size(), 1u);
  EXPECT_EQ(widget.root.children[0].frame, (Rect{0, 0, 170, 170}));
}

TEST(WidgetLayout, ContentThatDoesNotFillIsCentred) {
  const WidgetLayout widget = card(text("abc"), {.hostSuppliesContainerBackground = false}, 2);
  EXPECT_EQ(widget.root.children[0].frame, (Rect{77.5, 79, 15, 12}));
}

TEST(WidgetLayout, FramesSnapToThePixelGridOfTheScale) {
  const WidgetLayout widget = card(text("abc"), {.hostSuppliesContainerBackground = false}, 1);
  EXPECT_EQ(widget.root.children[0].frame, (Rect{78, 79, 15, 12}));
}

TEST(WidgetLayout, WidgetURLIsTheOutermost) {
  const WidgetLayout widget =
      card(vstack({text("a").widgetURL("korvo://inner")}).widgetURL("korvo://resources"));
  EXPECT_EQ(widget.url, "korvo://resources");
}

TEST(WidgetLayout, AccentedRenderingKeepsOnlyAlphaAndTintsTheAccentGroup) {
  Environment environment{.renderingMode = RenderingMode::accented,
                          .accentColor = *Color::fromHex("#FF0000")};
  const View view =
      vstack({text("a").foregroundStyle(Color{0.2, 0.4, 0.6, 0.5}),
              circle(Color{0, 1, 0, 1}).frame({.width = 5, .height = 5}).accentable()});
  const WidgetLayout widget = card(view, environment);
  const LayoutNode& stack = widget.root.children[0];
  EXPECT_EQ(stack.children[0].color->hex(), "#FFFFFF80");
  EXPECT_EQ(stack.children[1].children[0].color->hex(), "#FF0000FF");
}

TEST(HitTest, LinkWinsOverTheWidgetURL) {
  const View view =
      vstack(HorizontalAlignment::leading, 0, {text("abcd"), link("korvo://awake", text("Keep"))})
          .frame(
              {.maxWidth = infinity, .maxHeight = infinity, .alignment = Alignment::topLeading()})
          .widgetURL("korvo://resources");
  const WidgetLayout widget = card(view, {.hostSuppliesContainerBackground = false});
  EXPECT_EQ(urlAt(widget, {5, 18}), "korvo://awake");
  EXPECT_EQ(urlAt(widget, {5, 5}), "korvo://resources");
  EXPECT_EQ(urlAt(widget, {150, 150}), "korvo://resources");
  EXPECT_EQ(urlAt(widget, {-1, 5}), std::nullopt);
}

TEST(HitTest, NoURLAnywhereOpensNothing) {
  EXPECT_EQ(urlAt(card(text("a")), {85, 85}), std::nullopt);
}

TEST(RelativeDates, LiveDatesAreFoundAndShownAgainstNow) {
  const Date now = Date::fromUnixSeconds(1'800'000'000);
  const Date data = now.addingSeconds(-300);
  const WidgetLayout widget =
      card(hstack({text("Updated"), relativeDate(data), text("ago")}), {.now = now});
  EXPECT_EQ(liveRelativeDates(widget), std::vector<Date>{data});
  const LayoutNode& date = widget.root.children[0].children[1];
  EXPECT_EQ(date.kind, ui::NodeKind::relativeDate);
  EXPECT_EQ(*date.text, relativeSpan(data, now));
}

}  // namespace
}  // namespace korvo::ui
