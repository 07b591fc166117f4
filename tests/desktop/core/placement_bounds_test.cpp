#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "desktop/core/arrangement.hpp"

// Whatever a placements file says, every widget lands inside the work area where a user can see
// it, and a position that had to be moved is reported.
namespace korvo::desktop {
namespace {

using testing::HasSubstr;
using ui::WidgetFamily;

constexpr ui::Rect screen{0, 0, 1600, 900};
constexpr ui::Size small{170, 170};

Placement at(double x, double y) {
  return {"com.tessmoor.Korvo.usage", WidgetFamily::systemSmall, ui::Point{x, y}};
}

struct OffScreenCase {
  const char* name;
  ui::Point position;
  ui::Point origin;  // where the window ends up
};

class OffScreenPosition : public testing::TestWithParam<OffScreenCase> {};

TEST_P(OffScreenPosition, IsMovedInsideTheWorkAreaAndReported) {
  const auto arrangement =
      arrangeWindows({at(GetParam().position.x, GetParam().position.y)}, {small}, screen);
  EXPECT_EQ(arrangement.origins, std::vector<ui::Point>{GetParam().origin});
  ASSERT_EQ(arrangement.moved.size(), 1U);
  EXPECT_THAT(arrangement.moved.front(), HasSubstr("com.tessmoor.Korvo.usage"));
  EXPECT_THAT(arrangement.moved.front(), HasSubstr("moved"));
}

INSTANTIATE_TEST_SUITE_P(
    Table, OffScreenPosition,
    testing::Values(OffScreenCase{"PastTheRightEdge", {2000, 400}, {1430, 400}},
                    OffScreenCase{"PartlyPastTheBottom", {100, 800}, {100, 730}},
                    OffScreenCase{"BeyondWhatAWindowSystemHolds", {40000, 40000}, {1430, 730}},
                    OffScreenCase{
                        "LargestNumber", {std::numeric_limits<double>::max(), 0}, {1430, 0}},
                    OffScreenCase{"Negative", {-50, -1e308}, {0, 0}}),
    [](const auto& info) { return info.param.name; });

TEST(OnScreenPosition, StaysWhereItIsWithoutAWord) {
  const auto arrangement = arrangeWindows({at(1430, 730), at(0, 0)}, {small, small}, screen);
  EXPECT_EQ(arrangement.origins, (std::vector<ui::Point>{{1430, 730}, {0, 0}}));
  EXPECT_TRUE(arrangement.moved.empty());
}

TEST(OffScreenPosition, IsMeasuredFromAnOffsetWorkArea) {
  const auto arrangement = arrangeWindows({at(1500, 10)}, {small}, {100, 32, 1500, 868});
  EXPECT_EQ(arrangement.origins, (std::vector<ui::Point>{{1430, 42}}));
  EXPECT_EQ(arrangement.moved.size(), 1U);
}

TEST(OffScreenPosition, AWindowWiderThanTheWorkAreaStartsAtItsLeadingEdge) {
  const auto arrangement = arrangeWindows({at(10, 10)}, {{364, 170}}, {0, 0, 300, 900});
  EXPECT_EQ(arrangement.origins, (std::vector<ui::Point>{{0, 10}}));
}

TEST(OffScreenAnchor, AMarginLargerThanTheScreenKeepsTheWidgetInside) {
  Placement anchored{"com.tessmoor.Korvo.memory", WidgetFamily::systemSmall};
  anchored.margin = 1e9;
  const auto arrangement = arrangeWindows({anchored}, {small}, screen);
  EXPECT_EQ(arrangement.origins, (std::vector<ui::Point>{{0, 730}}));
  ASSERT_EQ(arrangement.moved.size(), 1U);
  EXPECT_THAT(arrangement.moved.front(), HasSubstr("com.tessmoor.Korvo.memory"));
}

}  // namespace
}  // namespace korvo::desktop
