#include "views/monitor/usage_content.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/date_text.hpp"
#include "support/base/fixed_clock.hpp"
#include "support/views/monitor/monitor_test_data.hpp"
#include "views/monitor/monitor_widget_view.hpp"
#include "views/monitor/usage_windows.hpp"

namespace korvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ui::Font;
using ui::FontWeight;
using ui::WidgetFamily;
using viewtest::drawn;
using viewtest::enabledWith;
using viewtest::entryWith;
using viewtest::nodeWithText;
using viewtest::snapshotWith;
using viewtest::texts;
using viewtest::window;

ui::WidgetLayout render(const MonitorEntry& entry, WidgetFamily family,
                        viewtest::Variation variation = {}) {
  const ui::Environment env = viewtest::environment(family, variation);
  return viewtest::layOut(MonitorWidgetView{entry, false}.body(env), env);
}

// The meters of a layout in drawing order.
std::vector<const ui::LayoutNode*> meters(const ui::WidgetLayout& widget) {
  return viewtest::nodesOfKind(widget.root, ui::NodeKind::meter);
}

class UsageTest : public testing::Test {
 protected:
  const testing_support::FixedClock fixedClock_{viewtest::testNow};
};

class UsageVariationTest : public testing::TestWithParam<viewtest::Variation> {
 protected:
  const testing_support::FixedClock fixedClock_{viewtest::testNow};
};

const MonitorEntry fullEntry =
    entryWith(snapshotWith(enabledWith({window("5-hour", 28), window("Weekly", 42)}),
                           enabledWith({window("Session", 10), window("Weekly", 75.4)}, 1200)));

TEST_P(UsageVariationTest, SmallRowsShowCodexAboveClaudeWithFiguresAndTintedMeters) {
  const ui::Environment env = viewtest::environment(WidgetFamily::systemSmall, GetParam());
  const ui::Palette palette = env.palette();
  const ui::WidgetLayout widget =
      viewtest::layOut(MonitorWidgetView{fullEntry, false}.body(env), env);

  EXPECT_THAT(texts(widget.root), ElementsAre("AI USAGE", "Codex", "58%", "Claude", "25%",
                                              "Weekly remaining · tap for details"));
  EXPECT_EQ(widget.url, "korvo://usage");

  const ui::LayoutNode* header = nodeWithText(widget.root, "AI USAGE");
  EXPECT_EQ(header->kind, ui::NodeKind::label);
  EXPECT_EQ(header->symbol, "sparkles");
  EXPECT_EQ(header->font, Font::system(10, FontWeight::semibold));
  EXPECT_EQ(header->color, drawn(palette.secondary, env));

  for (const char* name : {"Codex", "Claude"}) {
    const ui::LayoutNode* node = nodeWithText(widget.root, name);
    EXPECT_EQ(node->font, Font::caption().withWeight(FontWeight::semibold)) << name;
    EXPECT_EQ(node->color, drawn(palette.primary, env)) << name;
  }
  const ui::LayoutNode* codexFigure = nodeWithText(widget.root, "58%");
  EXPECT_EQ(codexFigure->font, Font::system(15, FontWeight::semibold).withMonospacedDigits());
  // The figure sits at the row's trailing edge, the name at its leading edge.
  EXPECT_NEAR(codexFigure->frame.maxX(), viewtest::contentArea(widget).maxX(), 0.5);
  EXPECT_NEAR(nodeWithText(widget.root, "Codex")->frame.x, 16, 0.5);

  const auto bars = meters(widget);
  ASSERT_EQ(bars.size(), 2u);
  EXPECT_DOUBLE_EQ(*bars[0]->fraction, 0.58);
  EXPECT_DOUBLE_EQ(*bars[1]->fraction, 0.246);
  EXPECT_EQ(bars[0]->children[1].color, drawn(palette.teal, env, true));
  EXPECT_EQ(bars[1]->children[1].color, drawn(palette.orange, env, true));
  EXPECT_LT(bars[0]->frame.maxY(), nodeWithText(widget.root, "Claude")->frame.y);

  const ui::LayoutNode* hint = nodeWithText(widget.root, "Weekly remaining · tap for details");
  EXPECT_EQ(hint->font, Font::system(10));
  EXPECT_EQ(hint->color, drawn(palette.secondary, env));
  EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::relativeDate), nullptr);
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

TEST_P(UsageVariationTest, MediumCardsShowCodexLeadingAndClaudeTrailing) {
  const ui::Environment env = viewtest::environment(WidgetFamily::systemMedium, GetParam());
  const ui::Palette palette = env.palette();
  const ui::WidgetLayout widget =
      viewtest::layOut(MonitorWidgetView{fullEntry, false}.body(env), env);
  const Date codexFetched = viewtest::testNow.addingSeconds(-240);
  const Date claudeFetched = viewtest::testNow.addingSeconds(-1200);

  EXPECT_THAT(texts(widget.root),
              ElementsAre("Codex", "58", "%", "Weekly remaining", "5-hour", "72% left", "Updated",
                          relativeSpan(codexFetched, viewtest::testNow), "ago", "Claude", "25", "%",
                          "Weekly remaining", "5-hour", "90% left", "Stale ·",
                          relativeSpan(claudeFetched, viewtest::testNow), "ago"));
  EXPECT_EQ(widget.url, "korvo://usage");

  const ui::LayoutNode* divider = viewtest::firstOfKind(widget.root, ui::NodeKind::divider);
  ASSERT_NE(divider, nullptr);
  EXPECT_LT(nodeWithText(widget.root, "Codex")->frame.maxX(), divider->frame.x);
  EXPECT_GT(nodeWithText(widget.root, "Claude")->frame.x, divider->frame.maxX());

  // Dots in the provider tints, each the accent part of its card head.
  const std::vector<const ui::LayoutNode*> shapes =
      viewtest::nodesOfKind(widget.root, ui::NodeKind::shape);
  std::vector<const ui::LayoutNode*> dots;
  for (const ui::LayoutNode* shape : shapes) {
    if (shape->shape == ui::ShapeKind::circle) dots.push_back(shape);
  }
  ASSERT_EQ(dots.size(), 2u);
  EXPECT_EQ(dots[0]->frame.width, 5);
  EXPECT_EQ(dots[0]->frame.height, 5);
  EXPECT_TRUE(viewtest::inAccentGroup(widget.root, *dots[0]));
  EXPECT_EQ(dots[0]->color, drawn(palette.teal, env, true));
  EXPECT_EQ(dots[1]->color, drawn(palette.orange, env, true));

  const ui::LayoutNode* name = nodeWithText(widget.root, "Codex");
  EXPECT_EQ(name->font, Font::system(11, FontWeight::semibold));
  EXPECT_EQ(name->color, drawn(palette.secondary, env));

  const ui::LayoutNode* figure = nodeWithText(widget.root, "58");
  const ui::LayoutNode* percentSign = nodeWithText(widget.root, "%");
  EXPECT_EQ(figure->font, Font::system(30, FontWeight::medium).withMonospacedDigits());
  EXPECT_EQ(percentSign->font, Font::system(15, FontWeight::medium).withMonospacedDigits());
  EXPECT_EQ(percentSign->color, drawn(palette.secondary, env, true));
  EXPECT_TRUE(viewtest::inAccentGroup(widget.root, *figure));
  EXPECT_TRUE(viewtest::inAccentGroup(widget.root, *percentSign));
  EXPECT_NEAR(percentSign->frame.x, figure->frame.maxX() + 2, 0.5);
  // The two sizes share their first baseline.
  EXPECT_NEAR(figure->frame.y + figure->baseline, percentSign->frame.y + percentSign->baseline,
              0.5);

  const ui::LayoutNode* caption = nodeWithText(widget.root, "Weekly remaining");
  EXPECT_EQ(caption->font, Font::system(10));
  EXPECT_EQ(caption->color, drawn(palette.secondary, env));
  const ui::LayoutNode* left = nodeWithText(widget.root, "72% left");
  EXPECT_EQ(left->font, Font::system(10).withMonospacedDigits());
  EXPECT_EQ(left->color, drawn(palette.secondary, env));
  EXPECT_EQ(nodeWithText(widget.root, "5-hour")->font, Font::system(10));

  const auto bars = meters(widget);
  ASSERT_EQ(bars.size(), 4u);
  EXPECT_DOUBLE_EQ(*bars[0]->fraction, 0.58);
  EXPECT_DOUBLE_EQ(*bars[1]->fraction, 0.72);
  EXPECT_DOUBLE_EQ(*bars[2]->fraction, 0.246);
  EXPECT_DOUBLE_EQ(*bars[3]->fraction, 0.90);
  for (int i : {0, 1}) EXPECT_EQ(bars[i]->children[1].color, drawn(palette.teal, env, true));
  for (int i : {2, 3}) EXPECT_EQ(bars[i]->children[1].color, drawn(palette.orange, env, true));
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AllSurroundings, UsageVariationTest,
                         testing::ValuesIn(viewtest::allVariations()),
                         [](const auto& info) { return viewtest::variationName(info.param); });

TEST_F(UsageTest, MediumCardsShareTheWidthEquallyFromTheTop) {
  const ui::WidgetLayout widget = render(fullEntry, WidgetFamily::systemMedium);
  const ui::LayoutNode* codexCard = viewtest::ancestorOfKind(
      widget.root, *nodeWithText(widget.root, "Codex"), ui::NodeKind::frame);
  const ui::LayoutNode* claudeCard = viewtest::ancestorOfKind(
      widget.root, *nodeWithText(widget.root, "Claude"), ui::NodeKind::frame);
  ASSERT_NE(codexCard, nullptr);
  ASSERT_NE(claudeCard, nullptr);
  EXPECT_NEAR(codexCard->frame.width, claudeCard->frame.width, 0.5);
  EXPECT_NEAR(codexCard->frame.y, 16, 0.5);
  EXPECT_NEAR(nodeWithText(widget.root, "Codex")->frame.y,
              nodeWithText(widget.root, "Claude")->frame.y, 0.5);
}

TEST_F(UsageTest, NoSnapshotAsksToEnableBothProviders) {
  const MonitorEntry entry = entryWith(std::nullopt);
  const ui::WidgetLayout small = render(entry, WidgetFamily::systemSmall);
  EXPECT_THAT(texts(small.root),
              ElementsAre("AI USAGE", "Codex", "—", "Enable in Korvo", "Claude", "—",
                          "Enable in Korvo", "Weekly remaining · tap for details"));
  EXPECT_THAT(meters(small), IsEmpty());
  const ui::LayoutNode* hint = nodeWithText(small.root, "Enable in Korvo");
  EXPECT_EQ(hint->font, Font::system(9));
  EXPECT_EQ(hint->color, ui::Environment{}.palette().secondary);

  const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
  EXPECT_THAT(
      texts(medium.root),
      ElementsAre("Codex", "Enable in Korvo", "Enable in Settings to connect your sign-in.",
                  "Claude", "Enable in Korvo", "Enable in Settings to connect your sign-in."));
  const ui::LayoutNode* title = nodeWithText(medium.root, "Enable in Korvo");
  EXPECT_EQ(title->font, Font::subheadline());
  const ui::LayoutNode* status =
      nodeWithText(medium.root, "Enable in Settings to connect your sign-in.");
  EXPECT_EQ(status->font, Font::caption2());
  EXPECT_EQ(status->color, ui::Environment{}.palette().secondary);
  EXPECT_THAT(meters(medium), IsEmpty());
  EXPECT_EQ(viewtest::firstOfKind(medium.root, ui::NodeKind::relativeDate), nullptr);
  EXPECT_THAT(viewtest::legibilityProblems(small), IsEmpty());
  EXPECT_THAT(viewtest::legibilityProblems(medium), IsEmpty());
}

TEST_F(UsageTest, WeeklyTitleMustMatchExactly) {
  for (const char* title : {"weekly", "WEEKLY", "Weekly ", " Weekly", "Week"}) {
    SCOPED_TRACE(title);
    const MonitorEntry entry =
        entryWith(snapshotWith(enabledWith({window(title, 10)}), enabledWith({})));
    const ui::WidgetLayout small = render(entry, WidgetFamily::systemSmall);
    EXPECT_THAT(texts(small.root),
                ElementsAre("AI USAGE", "Codex", "—", "Weekly quota unavailable", "Claude", "—",
                            "Weekly quota unavailable", "Weekly remaining · tap for details"));
    const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
    EXPECT_NE(nodeWithText(medium.root, "Weekly unavailable"), nullptr);
    EXPECT_EQ(nodeWithText(medium.root, "Weekly remaining"), nullptr);
  }
}

TEST_F(UsageTest, FirstWeeklyWindowInListOrderWins) {
  const MonitorEntry entry = entryWith(
      snapshotWith(enabledWith({window("Weekly", 10), window("Weekly", 90)}), enabledWith({})));
  const ui::WidgetLayout small = render(entry, WidgetFamily::systemSmall);
  EXPECT_NE(nodeWithText(small.root, "90%"), nullptr);
  EXPECT_EQ(nodeWithText(small.root, "10%"), nullptr);
}

struct RemainingCase {
  double usedPercent;
  const char* smallFigure;
  const char* mediumFigure;
  double fraction;
};

class UsageRemainingTest : public UsageTest, public testing::WithParamInterface<RemainingCase> {};

TEST_P(UsageRemainingTest, RemainingIsRaisedToZeroButNeverCapped) {
  const RemainingCase& c = GetParam();
  const MonitorEntry entry =
      entryWith(snapshotWith(enabledWith({window("Weekly", c.usedPercent)}), UsageState{}));
  const ui::WidgetLayout small = render(entry, WidgetFamily::systemSmall);
  EXPECT_NE(nodeWithText(small.root, c.smallFigure), nullptr) << c.smallFigure;
  const auto smallBars = meters(small);
  ASSERT_EQ(smallBars.size(), 1u);
  EXPECT_DOUBLE_EQ(*smallBars[0]->fraction, c.fraction);
  const double trackWidth = smallBars[0]->children[0].frame.width;
  const double fillWidth = smallBars[0]->children[1].frame.width;
  EXPECT_NEAR(fillWidth, trackWidth * std::clamp(c.fraction, 0.0, 1.0), 0.5);

  const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
  EXPECT_NE(nodeWithText(medium.root, c.mediumFigure), nullptr) << c.mediumFigure;
  const auto mediumBars = meters(medium);
  ASSERT_EQ(mediumBars.size(), 1u);
  EXPECT_DOUBLE_EQ(*mediumBars[0]->fraction, c.fraction);
}

INSTANTIATE_TEST_SUITE_P(
    Figures, UsageRemainingTest,
    testing::Values(RemainingCase{120, "0%", "0", 0}, RemainingCase{100, "0%", "0", 0},
                    RemainingCase{0, "100%", "100", 1}, RemainingCase{41.6, "58%", "58", 0.584},
                    RemainingCase{41.5, "58%", "58", 0.585}, RemainingCase{-20, "120%", "120", 1.2},
                    RemainingCase{-50, "150%", "150", 1.5}));

TEST_F(UsageTest, RemainingPercentKeepsTheFigureUnroundedForTheMeter) {
  EXPECT_DOUBLE_EQ(UsageWindows::remainingPercent(window("Weekly", 41.6)), 58.4);
  EXPECT_EQ(UsageWindows::remainingPercent(window("Weekly", 250)), 0);
  EXPECT_EQ(UsageWindows::remainingPercent(window("Weekly", -50)), 150);
}

TEST_F(UsageTest, DisabledProviderWithStoredWindowsShowsNoFigures) {
  UsageState disabled = enabledWith({window("5-hour", 28), window("Weekly", 42)});
  disabled.enabled = false;
  const MonitorEntry entry = entryWith(snapshotWith(disabled, disabled));
  const ui::WidgetLayout small = render(entry, WidgetFamily::systemSmall);
  EXPECT_THAT(texts(small.root),
              ElementsAre("AI USAGE", "Codex", "—", "Enable in Korvo", "Claude", "—",
                          "Enable in Korvo", "Weekly remaining · tap for details"));
  const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
  EXPECT_THAT(
      texts(medium.root),
      ElementsAre("Codex", "Enable in Korvo", "Enable in Settings to connect your sign-in.",
                  "Claude", "Enable in Korvo", "Enable in Settings to connect your sign-in."));
  EXPECT_THAT(meters(medium), IsEmpty());
}

TEST_F(UsageTest, EnabledProviderWithoutUsageShowsUsageUnavailableAndItsStatus) {
  UsageState waiting;
  waiting.enabled = true;
  UsageState refusing = waiting;
  refusing.message = "Sign-in expired <b>&</b>";
  const ui::WidgetLayout medium =
      render(entryWith(snapshotWith(waiting, refusing)), WidgetFamily::systemMedium);
  EXPECT_THAT(texts(medium.root),
              ElementsAre("Codex", "Usage unavailable", "Waiting for usage…", "Claude",
                          "Usage unavailable", "Sign-in expired <b>&</b>"));
  EXPECT_EQ(viewtest::firstOfKind(medium.root, ui::NodeKind::relativeDate), nullptr);
  const ui::WidgetLayout small =
      render(entryWith(snapshotWith(waiting, refusing)), WidgetFamily::systemSmall);
  EXPECT_THAT(texts(small.root),
              ElementsAre("AI USAGE", "Codex", "—", "Weekly quota unavailable", "Claude", "—",
                          "Weekly quota unavailable", "Weekly remaining · tap for details"));
}

TEST_F(UsageTest, UsageWithoutWeeklyWindowStillShowsFiveHourAndFooter) {
  const MonitorEntry entry =
      entryWith(snapshotWith(enabledWith({window("5-hour", 40)}), enabledWith({})));
  const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
  const std::string span = relativeSpan(viewtest::testNow.addingSeconds(-240), viewtest::testNow);
  EXPECT_THAT(texts(medium.root),
              ElementsAre("Codex", "Weekly unavailable", "5-hour", "60% left", "Updated", span,
                          "ago", "Claude", "Weekly unavailable", "Updated", span, "ago"));
  const ui::LayoutNode* missing = nodeWithText(medium.root, "Weekly unavailable");
  EXPECT_EQ(missing->font, Font::caption());
  EXPECT_EQ(missing->color, ui::Environment{}.palette().secondary);
  const auto bars = meters(medium);
  ASSERT_EQ(bars.size(), 1u);
  EXPECT_DOUBLE_EQ(*bars[0]->fraction, 0.6);
}

TEST_F(UsageTest, SessionWindowIsShownAsFiveHour) {
  const MonitorEntry entry = entryWith(
      snapshotWith(enabledWith({window("Weekly", 42), window("Session", 28)}), UsageState{}));
  const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
  EXPECT_NE(nodeWithText(medium.root, "5-hour"), nullptr);
  EXPECT_EQ(nodeWithText(medium.root, "Session"), nullptr);
  EXPECT_NE(nodeWithText(medium.root, "72% left"), nullptr);
}

TEST_F(UsageTest, FiveHourIsTheFirstOfEitherTitleInOnePass) {
  const MonitorEntry sessionFirst = entryWith(
      snapshotWith(enabledWith({window("Session", 10), window("Weekly", 0), window("5-hour", 50)}),
                   enabledWith({window("5-hour", 20), window("Session", 70)})));
  const ui::WidgetLayout medium = render(sessionFirst, WidgetFamily::systemMedium);
  EXPECT_NE(nodeWithText(medium.root, "90% left"), nullptr);
  EXPECT_NE(nodeWithText(medium.root, "80% left"), nullptr);
  EXPECT_EQ(nodeWithText(medium.root, "50% left"), nullptr);
  EXPECT_EQ(nodeWithText(medium.root, "30% left"), nullptr);
}

TEST_F(UsageTest, FiveHourRowSitsThreePointsBelowTheWeeklyMeter) {
  const ui::WidgetLayout medium = render(fullEntry, WidgetFamily::systemMedium);
  const auto bars = meters(medium);
  const ui::LayoutNode* label = nodeWithText(medium.root, "5-hour");
  const ui::LayoutNode* row = viewtest::ancestorOfKind(medium.root, *label, ui::NodeKind::hstack);
  ASSERT_NE(row, nullptr);
  // Card spacing of 4 points plus the row's top padding of 3.
  EXPECT_NEAR(row->frame.y - bars[0]->frame.maxY(), 7, 0.5);
  const ui::LayoutNode* left = nodeWithText(medium.root, "72% left");
  EXPECT_NEAR(left->frame.maxX(), bars[1]->frame.maxX(), 0.5);
}

TEST_F(UsageTest, FooterTurnsStalePastFifteenMinutesOfFetchAge) {
  for (const auto& [age, prefix] :
       std::vector<std::pair<double, const char*>>{{900, "Updated"}, {900.5, "Stale ·"}}) {
    const MonitorEntry entry =
        entryWith(snapshotWith(enabledWith({window("Weekly", 10)}, age), UsageState{}));
    const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
    EXPECT_NE(nodeWithText(medium.root, prefix), nullptr) << age;
    const ui::LayoutNode* span = viewtest::firstOfKind(medium.root, ui::NodeKind::relativeDate);
    ASSERT_NE(span, nullptr);
    EXPECT_EQ(span->relativeTo, viewtest::testNow.addingSeconds(-age));
  }
}

TEST_F(UsageTest, FetchMomentAfterTheEntryDateIsUpdatedWithTheAbsoluteSpan) {
  const MonitorEntry entry =
      entryWith(snapshotWith(enabledWith({window("Weekly", 10)}, -600), UsageState{}));
  const ui::WidgetLayout medium = render(entry, WidgetFamily::systemMedium);
  EXPECT_THAT(texts(medium.root), ElementsAre("Codex", "90", "%", "Weekly remaining", "Updated",
                                              "10 min", "ago", "Claude", "Enable in Korvo",
                                              "Enable in Settings to connect your sign-in."));
}

TEST_F(UsageTest, ProviderStateComesFromTheSnapshotOrTheDisabledDefault) {
  const WidgetSnapshot snapshot =
      snapshotWith(enabledWith({window("Weekly", 1)}), enabledWith({window("Weekly", 2)}));
  EXPECT_EQ(UsageContent::state(entryWith(snapshot), UsageProvider::codex), snapshot.codex);
  EXPECT_EQ(UsageContent::state(entryWith(snapshot), UsageProvider::claude), snapshot.claude);
  EXPECT_EQ(UsageContent::state(entryWith(std::nullopt), UsageProvider::claude), UsageState{});
}

TEST_F(UsageTest, SampleSnapshotShowsTheSameFiguresForBothProviders) {
  UsageState sample;
  sample.enabled = true;
  sample.snapshot =
      UsageSnapshot{{UsageWindow{"5-hour", 28, viewtest::testNow.addingSeconds(7200)},
                     UsageWindow{"Weekly", 42, viewtest::testNow.addingSeconds(172800)}},
                    viewtest::testNow,
                    {}};
  const ui::WidgetLayout small =
      render(entryWith(snapshotWith(sample, sample)), WidgetFamily::systemSmall);
  EXPECT_THAT(texts(small.root), ElementsAre("AI USAGE", "Codex", "58%", "Claude", "58%",
                                             "Weekly remaining · tap for details"));
}

}  // namespace
}  // namespace korvo
