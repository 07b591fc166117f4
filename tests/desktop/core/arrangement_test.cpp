#include "desktop/core/arrangement.hpp"

#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "desktop/core/widget_lookup.hpp"
#include "extension/korvo_widgets.hpp"

// Whatever widgets are shown, in whichever families, at whatever scale and on whatever work area:
// no card covers another and every card stays inside the work area.
namespace korvo::desktop {
namespace {

using ui::WidgetFamily;

const std::vector<WidgetConfiguration>& bundle() {
  static const auto widgets = KorvoWidgets{}.body();
  return widgets;
}

bool overlap(const ui::Rect& first, const ui::Rect& second) {
  return first.x < second.maxX() && second.x < first.maxX() && first.y < second.maxY() &&
         second.y < first.maxY();
}

bool inside(const ui::Rect& window, const ui::Rect& area) {
  return window.x >= area.x && window.y >= area.y && window.maxX() <= area.maxX() &&
         window.maxY() <= area.maxY();
}

// Every non-empty choice of the four widgets, each in every family it offers, in bundle order.
std::vector<std::vector<Placement>> everyChoiceOfWidgets(std::optional<ScreenAnchor> anchor) {
  std::vector<std::vector<Placement>> choices{{}};
  for (const auto& widget : bundle()) {
    const auto before = choices;
    for (const auto family : widget.supportedFamilies) {
      for (auto choice : before) {
        Placement placement{widget.kind, family};
        if (anchor) placement.anchor = *anchor;
        choice.push_back(std::move(placement));
        choices.push_back(std::move(choice));
      }
    }
  }
  choices.erase(choices.begin());
  return choices;
}

// The same widgets, spread over the four corners in turn.
std::vector<Placement> spreadOverCorners(std::vector<Placement> placements) {
  constexpr std::array corners{ScreenAnchor::topRight, ScreenAnchor::bottomLeft,
                               ScreenAnchor::topLeft, ScreenAnchor::bottomRight};
  for (std::size_t index = 0; index < placements.size(); ++index) {
    placements[index].anchor = corners[index % corners.size()];
  }
  return placements;
}

std::string describe(const std::vector<Placement>& placements, double scale, ui::Rect area) {
  std::ostringstream text;
  text << "scale " << scale << " on " << area.width << "x" << area.height << "+" << area.x << "+"
       << area.y << ":";
  for (const auto& placement : placements) {
    text << " " << placement.kind << (placement.family == WidgetFamily::systemSmall ? "/S" : "/M")
         << "@" << static_cast<int>(placement.anchor);
  }
  return text.str();
}

void expectClearAndInside(const std::vector<Placement>& placements, double scale, ui::Rect area) {
  const auto fitted = arrangeToFit(placements, scale, area);
  const auto& origins = fitted.arrangement.origins;
  ASSERT_EQ(origins.size(), placements.size());
  EXPECT_TRUE(fitted.arrangement.fits) << describe(placements, scale, area);
  std::vector<ui::Rect> windows;
  for (std::size_t index = 0; index < origins.size(); ++index) {
    const ui::Size expected = cardSize(placements[index].family, fitted.scale);
    ASSERT_EQ(fitted.sizes[index], expected);
    windows.push_back({origins[index].x, origins[index].y, expected.width, expected.height});
    EXPECT_TRUE(inside(windows.back(), area))
        << placements[index].kind << " leaves the work area; " << describe(placements, scale, area);
    for (std::size_t other = 0; other < index; ++other) {
      EXPECT_FALSE(overlap(windows[other], windows.back()))
          << placements[other].kind << " and " << placements[index].kind << " overlap; "
          << describe(placements, scale, area);
    }
  }
}

constexpr std::array scales{1.0, 1.5, 2.0};
// Common screens, and work areas a panel takes a strip of.
constexpr std::array workAreas{
    ui::Rect{0, 0, 1280, 720},  ui::Rect{0, 0, 1366, 768},     ui::Rect{0, 32, 1280, 688},
    ui::Rect{0, 0, 1440, 900},  ui::Rect{1920, 0, 1920, 1080}, ui::Rect{48, 0, 1872, 1080},
    ui::Rect{0, 0, 2560, 1440}, ui::Rect{0, 0, 3840, 2160},    ui::Rect{-1280, 0, 1280, 1024},
};

class EveryWidgetChoice : public testing::TestWithParam<double> {};

TEST_P(EveryWidgetChoice, InOneCornerNeverOverlapsAndStaysInside) {
  for (const auto anchor : {ScreenAnchor::topRight, ScreenAnchor::topLeft,
                            ScreenAnchor::bottomRight, ScreenAnchor::bottomLeft}) {
    for (const auto& placements : everyChoiceOfWidgets(anchor)) {
      for (const auto& area : workAreas) expectClearAndInside(placements, GetParam(), area);
    }
  }
}

TEST_P(EveryWidgetChoice, OverAllFourCornersNeverOverlapsAndStaysInside) {
  for (const auto& placements : everyChoiceOfWidgets(std::nullopt)) {
    for (const auto& area : workAreas) {
      expectClearAndInside(spreadOverCorners(placements), GetParam(), area);
    }
  }
}

TEST_P(EveryWidgetChoice, BesidePositionedCardsNeverOverlapsAndStaysInside) {
  for (auto placements : everyChoiceOfWidgets(ScreenAnchor::topRight)) {
    // The first card dragged to where the column would start; the others flow around it.
    placements.front().position = ui::Point{1100, 16};
    for (const auto& area : workAreas) expectClearAndInside(placements, GetParam(), area);
  }
}

INSTANTIATE_TEST_SUITE_P(Scales, EveryWidgetChoice, testing::ValuesIn(scales),
                         [](const auto& info) {
                           return "Scale" + std::to_string(static_cast<int>(info.param * 10));
                         });

TEST(ArrangeWindows, TheDefaultColumnHugsTheRightEdgeWithTwelvePixelGaps) {
  const auto placements = defaultPlacements(kindLookup(bundle()));
  const std::vector<ui::Size> sizes{{170, 170}, {170, 170}, {364, 170}, {170, 170}};
  const auto origins = arrangeWindows(placements, sizes, {0, 0, 1280, 1024}).origins;
  EXPECT_EQ(origins, (std::vector<ui::Point>{{1094, 16}, {1094, 198}, {900, 380}, {1094, 562}}));
}

TEST(ArrangeWindows, BottomCornersStackUpwardsAndTheWorkAreaOffsetApplies) {
  const std::vector<Placement> placements{
      {"a", WidgetFamily::systemSmall, std::nullopt, ScreenAnchor::bottomLeft, 10},
      {"b", WidgetFamily::systemSmall, std::nullopt, ScreenAnchor::bottomLeft, 10},
      {"c", WidgetFamily::systemSmall, std::nullopt, ScreenAnchor::bottomRight, 0},
  };
  const std::vector<ui::Size> sizes{{170, 170}, {364, 170}, {170, 170}};
  const auto origins = arrangeWindows(placements, sizes, {0, 32, 1000, 768}).origins;
  EXPECT_EQ(origins, (std::vector<ui::Point>{{10, 620}, {10, 438}, {830, 630}}));
}

TEST(ArrangeWindows, APositionIsFromTheWorkAreaAndLeavesTheColumnsAlone) {
  const std::vector<Placement> placements{
      {"a", WidgetFamily::systemSmall, ui::Point{40, 50}},
      {"b", WidgetFamily::systemSmall},
  };
  const std::vector<ui::Size> sizes{{170, 170}, {170, 170}};
  const auto origins = arrangeWindows(placements, sizes, {100, 20, 800, 600}).origins;
  EXPECT_EQ(origins, (std::vector<ui::Point>{{140, 70}, {714, 36}}));
}

TEST(ArrangeToFit, TheDefaultCardsAtScaleTwoOnFullHDWrapIntoASecondColumnAtFullSize) {
  const auto placements = defaultPlacements(kindLookup(bundle()));
  const auto fitted = arrangeToFit(placements, 2, {0, 0, 1920, 1080});
  EXPECT_EQ(fitted.scale, 2);
  // Memory, Keep Awake and AI Usage fill the right-edge column; CPU Temperature starts the next
  // one inward, beside the widest card of the first.
  EXPECT_EQ(fitted.arrangement.origins,
            (std::vector<ui::Point>{{1564, 16}, {1564, 368}, {1176, 720}, {824, 16}}));
  EXPECT_TRUE(fitted.arrangement.moved.empty());
}

TEST(ArrangeToFit, AWideCardStartsTheNextColumnBesideTheNarrowOnesBeforeIt) {
  const auto placements = defaultPlacements(kindLookup(bundle()));
  const auto fitted = arrangeToFit(placements, 2, {0, 0, 1280, 1024});
  EXPECT_EQ(fitted.scale, 2);
  // Memory and Keep Awake fill the first column; AI Usage opens the second one right beside
  // them, and CPU Temperature follows it there.
  EXPECT_EQ(fitted.arrangement.origins,
            (std::vector<ui::Point>{{924, 16}, {924, 368}, {184, 16}, {572, 368}}));
}

TEST(ArrangeToFit, CardsThatCannotFitAtTheirScaleShrinkUntilTheyDo) {
  std::vector<Placement> placements{{"a", WidgetFamily::systemMedium},
                                    {"b", WidgetFamily::systemMedium},
                                    {"c", WidgetFamily::systemSmall},
                                    {"d", WidgetFamily::systemSmall}};
  const auto fitted = arrangeToFit(placements, 2, {0, 0, 1280, 720});
  EXPECT_LT(fitted.scale, 2);
  EXPECT_TRUE(fitted.arrangement.fits);
  // The largest such scale: one sixteenth more and they would not fit.
  EXPECT_FALSE(arrangeWindows(placements,
                              {cardSize(WidgetFamily::systemMedium, fitted.scale + 0.125),
                               cardSize(WidgetFamily::systemMedium, fitted.scale + 0.125),
                               cardSize(WidgetFamily::systemSmall, fitted.scale + 0.125),
                               cardSize(WidgetFamily::systemSmall, fitted.scale + 0.125)},
                              {0, 0, 1280, 720})
                   .fits);
}

TEST(ArrangeWindows, APositionOnAnotherCardMovesBesideItAndSaysSo) {
  const std::vector<Placement> placements{
      {"a", WidgetFamily::systemSmall, ui::Point{100, 100}},
      {"b", WidgetFamily::systemSmall, ui::Point{150, 120}},
  };
  const auto arrangement = arrangeWindows(placements, {{170, 170}, {170, 170}}, {0, 0, 1280, 720});
  EXPECT_EQ(arrangement.origins, (std::vector<ui::Point>{{100, 100}, {282, 120}}));
  ASSERT_EQ(arrangement.moved.size(), 1U);
  EXPECT_EQ(arrangement.moved.front(),
            "b at 150, 120 would cover another widget; moved to 282, 120");
}

TEST(ArrangeWindows, AColumnStepsOverAPositionedCardInItsWay) {
  const std::vector<Placement> placements{
      {"a", WidgetFamily::systemSmall},
      {"dragged", WidgetFamily::systemSmall, ui::Point{1000, 200}},
      {"b", WidgetFamily::systemSmall},
  };
  const std::vector<ui::Size> sizes{{170, 170}, {170, 170}, {170, 170}};
  const auto arrangement = arrangeWindows(placements, sizes, {0, 0, 1280, 1024});
  EXPECT_EQ(arrangement.origins, (std::vector<ui::Point>{{1094, 16}, {1000, 200}, {1094, 382}}));
  EXPECT_TRUE(arrangement.fits);
}

}  // namespace
}  // namespace korvo::desktop
