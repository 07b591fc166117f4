#include "views/monitor/monitor_widget_view.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/base/fixed_clock.hpp"
#include "support/views/monitor/monitor_test_data.hpp"
#include "views/monitor/monitor_widget_content.hpp"

namespace korvo {
namespace {

using testing::IsEmpty;
using ui::WidgetFamily;
using viewtest::enabledWith;
using viewtest::entryWith;
using viewtest::nodeWithText;
using viewtest::snapshotWith;
using viewtest::window;

struct LayoutCase {
  bool temperatureOnly;
  WidgetFamily family;
  const char* header;      // the first text, naming the layout
  ui::NodeKind stackKind;  // the stack the frame holds
  const char* url;
};

class MonitorLayoutChoiceTest : public testing::TestWithParam<LayoutCase> {
 protected:
  const testing_support::FixedClock fixedClock_{viewtest::testNow};
};

TEST_P(MonitorLayoutChoiceTest, FlagThenFamilyPickTheLayoutAndTheTapURL) {
  const LayoutCase& c = GetParam();
  WidgetSnapshot snapshot =
      snapshotWith(enabledWith({window("Weekly", 40)}), enabledWith({window("Weekly", 60)}));
  snapshot.temperature = 61;
  snapshot.temperatureEnabled = true;
  const ui::Environment env = viewtest::environment(c.family);
  const ui::WidgetLayout widget =
      viewtest::layOut(MonitorWidgetView{entryWith(snapshot), c.temperatureOnly}.body(env), env);

  EXPECT_EQ(widget.url, c.url);
  const std::vector<std::string> texts = viewtest::texts(widget.root);
  ASSERT_FALSE(texts.empty());
  EXPECT_EQ(texts.front(), c.header);
  // The chosen stack fills the content area from its leading edge.
  const ui::LayoutNode* frame = viewtest::firstOfKind(widget.root, ui::NodeKind::frame);
  ASSERT_NE(frame, nullptr);
  EXPECT_EQ(frame->frame, viewtest::contentArea(widget));
  ASSERT_EQ(frame->children.size(), 1u);
  EXPECT_EQ(frame->children[0].kind, c.stackKind);
  EXPECT_NEAR(frame->children[0].frame.x, 16, 0.5);
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Choices, MonitorLayoutChoiceTest,
                         testing::Values(LayoutCase{true, WidgetFamily::systemSmall, "TEMPERATURE",
                                                    ui::NodeKind::vstack, "korvo://resources"},
                                         LayoutCase{true, WidgetFamily::systemMedium, "TEMPERATURE",
                                                    ui::NodeKind::vstack, "korvo://resources"},
                                         LayoutCase{false, WidgetFamily::systemMedium, "Codex",
                                                    ui::NodeKind::hstack, "korvo://usage"},
                                         LayoutCase{false, WidgetFamily::systemSmall, "AI USAGE",
                                                    ui::NodeKind::vstack, "korvo://usage"}));

TEST(MonitorWidgetTest, StackSpacingPerLayout) {
  const testing_support::FixedClock fixedClock{viewtest::testNow};
  const MonitorEntry entry = entryWith(std::nullopt);
  const ui::Environment small = viewtest::environment(WidgetFamily::systemSmall);
  const ui::Environment medium = viewtest::environment(WidgetFamily::systemMedium);

  const ui::WidgetLayout usageSmall = viewtest::layOut(
      MonitorWidgetContent{entry, false, WidgetFamily::systemSmall}.body(small), small);
  const ui::LayoutNode* header = nodeWithText(usageSmall.root, "AI USAGE");
  const ui::LayoutNode* codex = nodeWithText(usageSmall.root, "Codex");
  const ui::LayoutNode* codexRow =
      viewtest::ancestorOfKind(usageSmall.root, *codex, ui::NodeKind::vstack);
  EXPECT_NEAR(codexRow->frame.y - header->frame.maxY(), 8, 0.5);

  const ui::WidgetLayout temperature = viewtest::layOut(
      MonitorWidgetContent{entry, true, WidgetFamily::systemSmall}.body(small), small);
  const ui::LayoutNode* title = nodeWithText(temperature.root, "Enable in Korvo");
  EXPECT_NEAR(title->frame.y - nodeWithText(temperature.root, "TEMPERATURE")->frame.maxY(), 6, 0.5);

  const ui::WidgetLayout usageMedium = viewtest::layOut(
      MonitorWidgetContent{entry, false, WidgetFamily::systemMedium}.body(medium), medium);
  const ui::LayoutNode* divider = viewtest::firstOfKind(usageMedium.root, ui::NodeKind::divider);
  const ui::LayoutNode* claude = nodeWithText(usageMedium.root, "Claude");
  const ui::LayoutNode* claudeCard =
      viewtest::ancestorOfKind(usageMedium.root, *claude, ui::NodeKind::frame);
  EXPECT_NEAR(claudeCard->frame.x - divider->frame.maxX(), 16, 0.5);
}

TEST(MonitorWidgetTest, ContentReadsTheFamilyItIsGivenNotTheEnvironments) {
  const testing_support::FixedClock fixedClock{viewtest::testNow};
  const ui::Environment medium = viewtest::environment(WidgetFamily::systemMedium);
  const ui::WidgetLayout widget = viewtest::layOut(
      MonitorWidgetContent{entryWith(std::nullopt), false, WidgetFamily::systemSmall}.body(medium),
      medium);
  EXPECT_NE(nodeWithText(widget.root, "AI USAGE"), nullptr);
}

TEST(MonitorWidgetTest, BackgroundFollowsTheHostCapability) {
  const testing_support::FixedClock fixedClock{viewtest::testNow};
  for (const bool hostBackground : {true, false}) {
    const ui::Environment env =
        viewtest::environment(WidgetFamily::systemMedium, {.hostBackground = hostBackground});
    const ui::WidgetLayout widget =
        viewtest::layOut(MonitorWidgetView{entryWith(std::nullopt), false}.body(env), env);
    ASSERT_EQ(widget.root.children.size(), hostBackground ? 2u : 1u);
    const ui::LayoutNode& first = widget.root.children[0];
    EXPECT_EQ(first.kind, hostBackground ? ui::NodeKind::zstack : ui::NodeKind::background);
    EXPECT_EQ(first.frame, (ui::Rect{0, 0, 364, 170}));
    EXPECT_NE(viewtest::firstOfKind(first, ui::NodeKind::gradient), nullptr);
    EXPECT_NEAR(nodeWithText(widget.root, "Codex")->frame.y, 16, 0.5);
  }
}

}  // namespace
}  // namespace korvo
