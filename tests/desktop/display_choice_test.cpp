#include "desktop/display_choice.hpp"

#include <gtest/gtest.h>

#include <ostream>

namespace korvo::desktop {
namespace {

struct Case {
  const char* name;
  DisplayFacts facts;
  DisplayChoice choice;
};

void PrintTo(const Case& one, std::ostream* out) {
  *out << one.name;
}

class DisplayChoiceTable : public testing::TestWithParam<Case> {};

TEST_P(DisplayChoiceTable, PicksLayerShellThenXWaylandThenOrdinaryWindows) {
  EXPECT_EQ(chooseDisplay(GetParam().facts), GetParam().choice);
}

INSTANTIATE_TEST_SUITE_P(
    Facts, DisplayChoiceTable,
    testing::Values(
        Case{"X11Only", {false, std::nullopt, true}, DisplayChoice::asIs},
        Case{"WaylandWithLayerShell", {false, true, true}, DisplayChoice::asIs},
        Case{"WaylandWithoutLayerShell", {false, false, true}, DisplayChoice::xwayland},
        Case{"WaylandWithNeither", {false, false, false}, DisplayChoice::ordinaryWindows},
        Case{"BackendChosenByTheUser", {true, false, true}, DisplayChoice::asIs}),
    [](const auto& info) { return info.param.name; });

TEST(DisplayChoiceNotice, SaysWhyOnceAndNothingWhenLayerShellIsThere) {
  EXPECT_EQ(displayChoiceNotice(DisplayChoice::asIs), "");
  EXPECT_NE(displayChoiceNotice(DisplayChoice::xwayland).find("no layer-shell"), std::string::npos);
  EXPECT_NE(displayChoiceNotice(DisplayChoice::ordinaryWindows).find("ordinary windows"),
            std::string::npos);
}

}  // namespace
}  // namespace korvo::desktop
