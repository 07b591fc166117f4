#include "desktop/core/drop_snap.hpp"

#include <gtest/gtest.h>

// Where a dragged card settles when it is let go.
namespace korvo::desktop {
namespace {

constexpr ui::Rect area{0, 32, 1280, 992};  // a panel takes the top 32 pixels
constexpr ui::Size small{170, 170};
const std::vector<ui::Rect> others{{600, 400, 170, 170}};

struct DropCase {
  const char* name;
  ui::Point dropped;  // screen coordinates
  ui::Point settled;  // from the work area's top-left
};

class SnapDrop : public testing::TestWithParam<DropCase> {};

TEST_P(SnapDrop, SettlesWhereTheTableSays) {
  EXPECT_EQ(snapDrop(GetParam().dropped, small, others, area), GetParam().settled);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SnapDrop,
    testing::Values(
        // Far from everything: the nearest grid line, counted from the work area.
        DropCase{"OnTheGrid", {203, 301}, {200, 272}},
        DropCase{"HalfwayRoundsAway", {204, 300}, {208, 272}},
        // Near the other card: beside it at the usual gap, its top edge lined up.
        DropCase{"BesideAnotherCardLinedUp", {785, 405}, {782, 368}},
        DropCase{"BelowAnotherCardLinedUp", {594, 583}, {600, 550}},
        // Near the work area's edges: at the default margin.
        DropCase{"AtTheMarginOfTheRightEdge", {1090, 700}, {1094, 672}},
        DropCase{"AtTheMarginBelowThePanel", {300, 40}, {304, 16}},
        // Past the edges: inside the work area.
        DropCase{"PastTheLeftAndBottomEdges", {-100, 2000}, {0, 822}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace korvo::desktop
