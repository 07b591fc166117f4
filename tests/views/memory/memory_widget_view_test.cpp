#include "views/memory/memory_widget_view.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "base/date_text.hpp"
#include "support/base/fixed_clock.hpp"
#include "support/ui/view_tree_query.hpp"
#include "ui/font.hpp"
#include "views/memory/memory_widget_content.hpp"

namespace korvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ui::Font;
using ui::FontDesign;
using ui::FontWeight;
using ui::WidgetFamily;
using viewtest::drawn;
using viewtest::nodeWithText;
using viewtest::texts;

// 16 GiB with 1.7 M application pages, 250 k wired and 250 k compressed pages of 4 KiB:
// 9,011,200,000 bytes used, 52 % of the total.
MemorySnapshot sampleReading(MemoryPressure pressure = MemoryPressure::normal) {
  return MemorySnapshot::fromPageCounts(17'179'869'184, 4096, 1'500'000, 500'000, 250'000, 250'000,
                                        100'000, 200'000, std::nullopt, pressure);
}

MemoryEntry entryWith(std::optional<MemorySnapshot> memory) {
  return MemoryEntry{viewtest::testNow, std::move(memory)};
}

ui::WidgetLayout render(const MemoryEntry& entry, WidgetFamily family,
                        viewtest::Variation variation = {}) {
  const ui::Environment environment = viewtest::environment(family, variation);
  return viewtest::layOut(MemoryWidgetView{entry}.body(environment), environment);
}

class MemoryWidgetTest : public testing::Test {
 protected:
  const testing_support::FixedClock fixedClock_{viewtest::testNow};
};

class MemoryWidgetVariationTest : public testing::TestWithParam<viewtest::Variation> {
 protected:
  const testing_support::FixedClock fixedClock_{viewtest::testNow};
  ui::Environment environment(WidgetFamily family) const {
    return viewtest::environment(family, GetParam());
  }
};

TEST_P(MemoryWidgetVariationTest, SmallReadingShowsHeaderPercentMeterGigabytesAndTimeOfDay) {
  const ui::Environment env = environment(WidgetFamily::systemSmall);
  const ui::Palette palette = env.palette();
  const ui::WidgetLayout widget =
      viewtest::layOut(MemoryWidgetView{entryWith(sampleReading())}.body(env), env);

  EXPECT_THAT(texts(widget.root), ElementsAre("MEMORY", "52%", "8.4 GB of 16.0 GB", "Updated",
                                              shortTime(viewtest::testNow)));
  EXPECT_EQ(widget.url, "korvo://resources");

  const ui::LayoutNode* header = nodeWithText(widget.root, "MEMORY");
  ASSERT_NE(header, nullptr);
  EXPECT_EQ(header->kind, ui::NodeKind::label);
  EXPECT_EQ(header->symbol, "memorychip");
  EXPECT_EQ(header->font, Font::system(10, FontWeight::semibold));
  EXPECT_EQ(header->tracking, 1.0);
  EXPECT_EQ(header->color, drawn(palette.secondary, env));

  const ui::LayoutNode* percent = nodeWithText(widget.root, "52%");
  ASSERT_NE(percent, nullptr);
  EXPECT_EQ(percent->font,
            Font::system(40, FontWeight::medium, FontDesign::rounded).withMonospacedDigits());
  EXPECT_EQ(percent->color, drawn(palette.primary, env));
  EXPECT_EQ(percent->lines.size(), 1u);

  const ui::LayoutNode* gigabytes = nodeWithText(widget.root, "8.4 GB of 16.0 GB");
  ASSERT_NE(gigabytes, nullptr);
  EXPECT_EQ(gigabytes->font, Font::caption2());
  EXPECT_EQ(gigabytes->color, drawn(palette.secondary, env));

  for (const std::string& footerText :
       std::vector<std::string>{"Updated", shortTime(viewtest::testNow)}) {
    const ui::LayoutNode* footer = nodeWithText(widget.root, footerText);
    ASSERT_NE(footer, nullptr) << footerText;
    EXPECT_EQ(footer->font, Font::system(10));
    EXPECT_EQ(footer->color, drawn(palette.secondary, env));
  }

  const ui::LayoutNode* meter = viewtest::firstOfKind(widget.root, ui::NodeKind::meter);
  ASSERT_NE(meter, nullptr);
  EXPECT_DOUBLE_EQ(*meter->fraction, sampleReading().usedFraction());
  ASSERT_EQ(meter->children.size(), 2u);
  EXPECT_EQ(meter->children[1].color, drawn(palette.teal, env, true));
  EXPECT_TRUE(meter->children[1].accentable);
  EXPECT_EQ(meter->frame.height, 6);

  EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::divider), nullptr);
  EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::link), nullptr);
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

TEST_P(MemoryWidgetVariationTest, MediumReadingAddsTheDetailColumnAfterADivider) {
  const ui::Environment env = environment(WidgetFamily::systemMedium);
  const ui::Palette palette = env.palette();
  const ui::WidgetLayout widget =
      viewtest::layOut(MemoryWidgetView{entryWith(sampleReading())}.body(env), env);

  EXPECT_THAT(texts(widget.root),
              ElementsAre("MEMORY", "52%", "8.4 GB of 16.0 GB", "Updated",
                          shortTime(viewtest::testNow), "7.6 GB available", "Normal pressure",
                          "Apps", "6.5 GB", "Wired", "1.0 GB", "Keep Awake"));

  const ui::LayoutNode* divider = viewtest::firstOfKind(widget.root, ui::NodeKind::divider);
  ASSERT_NE(divider, nullptr);
  const ui::LayoutNode* available = nodeWithText(widget.root, "7.6 GB available");
  ASSERT_NE(available, nullptr);
  EXPECT_GT(available->frame.x, divider->frame.maxX());
  EXPECT_EQ(available->font, Font::subheadline().withWeight(FontWeight::semibold));
  EXPECT_EQ(available->color, drawn(palette.secondary, env));

  const ui::LayoutNode* pressure = nodeWithText(widget.root, "Normal pressure");
  ASSERT_NE(pressure, nullptr);
  EXPECT_EQ(pressure->font, Font::caption());
  EXPECT_EQ(pressure->color, drawn(palette.secondary, env));

  for (const char* rowText : {"Apps", "6.5 GB", "Wired", "1.0 GB"}) {
    const ui::LayoutNode* node = nodeWithText(widget.root, rowText);
    ASSERT_NE(node, nullptr) << rowText;
    EXPECT_EQ(node->font, Font::system(10)) << rowText;
    EXPECT_EQ(node->color, drawn(palette.secondary, env)) << rowText;
  }
  // Labels at the leading edge of the column, figures at its trailing edge.
  const ui::LayoutNode* apps = nodeWithText(widget.root, "Apps");
  const ui::LayoutNode* appBytes = nodeWithText(widget.root, "6.5 GB");
  EXPECT_NEAR(apps->frame.x, available->frame.x, 0.5);
  EXPECT_NEAR(appBytes->frame.maxX(), viewtest::contentArea(widget).maxX(), 0.5);
  EXPECT_NEAR(nodeWithText(widget.root, "1.0 GB")->frame.maxX(), appBytes->frame.maxX(), 0.5);

  const ui::LayoutNode* keepAwake = nodeWithText(widget.root, "Keep Awake");
  ASSERT_NE(keepAwake, nullptr);
  EXPECT_EQ(keepAwake->kind, ui::NodeKind::label);
  EXPECT_EQ(keepAwake->symbol, "cup.and.saucer.fill");
  EXPECT_EQ(keepAwake->font, Font::caption().withWeight(FontWeight::semibold));
  EXPECT_EQ(keepAwake->color, drawn(palette.teal, env));
  const ui::LayoutNode* link =
      viewtest::ancestorOfKind(widget.root, *keepAwake, ui::NodeKind::link);
  ASSERT_NE(link, nullptr);
  EXPECT_EQ(link->url, "korvo://awake");
  EXPECT_EQ(widget.url, "korvo://resources");
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

TEST_P(MemoryWidgetVariationTest, BackgroundFollowsTheHostCapability) {
  const ui::Environment env = environment(WidgetFamily::systemSmall);
  const ui::WidgetLayout widget =
      viewtest::layOut(MemoryWidgetView{entryWith(sampleReading())}.body(env), env);
  const ui::LayoutNode* header = nodeWithText(widget.root, "MEMORY");
  ASSERT_NE(header, nullptr);
  EXPECT_NEAR(header->frame.x, 16, 0.5);
  EXPECT_NEAR(header->frame.y, 16, 0.5);

  const bool fullColor = env.renderingMode == ui::RenderingMode::fullColor;
  if (env.hostSuppliesContainerBackground) {
    // The backdrop fills the card as its container background; the content sits in the margins.
    ASSERT_EQ(widget.root.children.size(), 2u);
    const ui::LayoutNode& backdrop = widget.root.children[0];
    if (fullColor) {
      EXPECT_EQ(backdrop.frame, (ui::Rect{0, 0, 170, 170}));
      EXPECT_NE(viewtest::firstOfKind(backdrop, ui::NodeKind::gradient), nullptr);
    } else {
      EXPECT_EQ(backdrop.kind,
                ui::NodeKind::empty);  // accented: the desktop's tinted card shows through
    }
    EXPECT_EQ(viewtest::firstOfKind(widget.root.children[1], ui::NodeKind::gradient), nullptr);
  } else {
    // The view pads itself by 16 points and lays the backdrop behind the padded content.
    ASSERT_EQ(widget.root.children.size(), 1u);
    const ui::LayoutNode& background = widget.root.children[0];
    ASSERT_EQ(background.kind, ui::NodeKind::background);
    EXPECT_EQ(background.frame, (ui::Rect{0, 0, 170, 170}));
    ASSERT_EQ(background.children.size(), 2u);
    EXPECT_EQ(background.children[1].kind, ui::NodeKind::padding);
    EXPECT_EQ(viewtest::firstOfKind(background.children[0], ui::NodeKind::gradient) != nullptr,
              fullColor);
  }
}

INSTANTIATE_TEST_SUITE_P(AllSurroundings, MemoryWidgetVariationTest,
                         testing::ValuesIn(viewtest::allVariations()),
                         [](const auto& info) { return viewtest::variationName(info.param); });

TEST_F(MemoryWidgetTest, MeterCarriesItsAccessibilityLabelAndValue) {
  const ui::WidgetLayout widget = render(entryWith(sampleReading()), WidgetFamily::systemSmall);
  const ui::LayoutNode* meter = viewtest::firstOfKind(widget.root, ui::NodeKind::meter);
  ASSERT_NE(meter, nullptr);
  const ui::LayoutNode* labelled = nullptr;
  for (const ui::LayoutNode* node : viewtest::allNodes(widget.root)) {
    if (node->accessibilityLabel) labelled = node;
  }
  ASSERT_NE(labelled, nullptr);
  EXPECT_EQ(labelled->accessibilityLabel, "Memory used");
  EXPECT_EQ(labelled->accessibilityValue, "52 percent");
  EXPECT_EQ(labelled->frame, meter->frame);
}

struct PressureCase {
  MemoryPressure pressure;
  std::string line;
  ui::Color (*tint)(const ui::Palette&);
};

class MemoryPressureTest : public MemoryWidgetTest,
                           public testing::WithParamInterface<PressureCase> {};

TEST_P(MemoryPressureTest, TintsTheMeterAndNamesTheLevelUncoloured) {
  const PressureCase& c = GetParam();
  for (const auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
    const ui::Environment env = viewtest::environment(WidgetFamily::systemMedium, {scheme});
    const ui::WidgetLayout widget =
        viewtest::layOut(MemoryWidgetView{entryWith(sampleReading(c.pressure))}.body(env), env);
    const ui::LayoutNode* meter = viewtest::firstOfKind(widget.root, ui::NodeKind::meter);
    ASSERT_NE(meter, nullptr);
    EXPECT_EQ(meter->children[1].color, c.tint(env.palette()));
    const ui::LayoutNode* line = nodeWithText(widget.root, c.line);
    ASSERT_NE(line, nullptr) << c.line;
    EXPECT_EQ(line->color, env.palette().secondary);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Levels, MemoryPressureTest,
    testing::Values(PressureCase{MemoryPressure::normal, "Normal pressure",
                                 [](const ui::Palette& p) { return p.teal; }},
                    PressureCase{MemoryPressure::warning, "Elevated pressure",
                                 [](const ui::Palette& p) { return p.orange; }},
                    PressureCase{MemoryPressure::critical, "High pressure",
                                 [](const ui::Palette& p) { return p.red; }},
                    PressureCase{MemoryPressure::unknown, "Pressure unavailable",
                                 [](const ui::Palette& p) { return p.teal; }}),
    [](const auto& info) { return std::string(rawValue(info.param.pressure)); });

TEST_F(MemoryWidgetTest, SmallWithoutReadingShowsUnavailableAndRetryHintButNoMeter) {
  for (const viewtest::Variation& variation : viewtest::allVariations()) {
    const ui::Environment env = viewtest::environment(WidgetFamily::systemSmall, variation);
    const ui::Palette palette = env.palette();
    const ui::WidgetLayout widget =
        viewtest::layOut(MemoryWidgetView{entryWith(std::nullopt)}.body(env), env);
    SCOPED_TRACE(viewtest::variationName(variation));

    EXPECT_THAT(texts(widget.root), ElementsAre("MEMORY", "Unavailable", "Open Korvo to retry",
                                                "Updated", shortTime(viewtest::testNow)));
    EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::meter), nullptr);
    const ui::LayoutNode* title = nodeWithText(widget.root, "Unavailable");
    EXPECT_EQ(title->font, Font::headline());
    EXPECT_EQ(title->color, drawn(palette.primary, env));
    const ui::LayoutNode* hint = nodeWithText(widget.root, "Open Korvo to retry");
    EXPECT_EQ(hint->font, Font::caption());
    EXPECT_EQ(hint->color, drawn(palette.secondary, env));

    // The spacer pushes the footer to the bottom of the content.
    const ui::LayoutNode* footer = nodeWithText(widget.root, "Updated");
    EXPECT_NEAR(footer->frame.maxY(), viewtest::contentArea(widget).maxY(), 1);
    EXPECT_GT(footer->frame.y, hint->frame.maxY() + 20);
    EXPECT_EQ(widget.url, "korvo://resources");
    EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
  }
}

TEST_F(MemoryWidgetTest, MediumWithoutReadingKeepsOnlyTheKeepAwakeLinkInTheDetailColumn) {
  const ui::WidgetLayout widget = render(entryWith(std::nullopt), WidgetFamily::systemMedium);
  EXPECT_THAT(texts(widget.root),
              ElementsAre("MEMORY", "Unavailable", "Open Korvo to retry", "Updated",
                          shortTime(viewtest::testNow), "Keep Awake"));
  ASSERT_NE(viewtest::firstOfKind(widget.root, ui::NodeKind::divider), nullptr);
  const std::vector<const ui::LayoutNode*> links =
      viewtest::nodesOfKind(widget.root, ui::NodeKind::link);
  ASSERT_EQ(links.size(), 1u);
  EXPECT_EQ(links[0]->url, "korvo://awake");
  EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::meter), nullptr);
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

TEST_F(MemoryWidgetTest, ZeroTotalShowsZeroPercentAndAnEmptyMeter) {
  MemorySnapshot empty;
  empty.pressure = MemoryPressure::normal;
  const ui::WidgetLayout widget = render(entryWith(empty), WidgetFamily::systemSmall);
  EXPECT_NE(nodeWithText(widget.root, "0%"), nullptr);
  EXPECT_NE(nodeWithText(widget.root, "0.0 GB of 0.0 GB"), nullptr);
  const ui::LayoutNode* meter = viewtest::firstOfKind(widget.root, ui::NodeKind::meter);
  ASSERT_NE(meter, nullptr);
  EXPECT_EQ(meter->fraction, 0);
  EXPECT_EQ(meter->children[1].frame.width, 0);
  EXPECT_GT(meter->children[0].frame.width, 100);
}

TEST_F(MemoryWidgetTest, FooterShowsTheEntryDateNotTheReadingTime) {
  const Date entryDate = viewtest::testNow.addingSeconds(-3 * 3600);
  MemorySnapshot reading = sampleReading();
  reading.timestamp = viewtest::testNow;
  const ui::WidgetLayout widget =
      render(MemoryEntry{entryDate, reading}, WidgetFamily::systemSmall);
  ASSERT_NE(shortTime(entryDate), shortTime(viewtest::testNow));
  EXPECT_NE(nodeWithText(widget.root, shortTime(entryDate)), nullptr);
  EXPECT_EQ(nodeWithText(widget.root, shortTime(viewtest::testNow)), nullptr);
}

TEST_F(MemoryWidgetTest, ContentPicksTheDetailColumnByItsFamilyArgument) {
  const ui::Environment env = viewtest::environment(WidgetFamily::systemMedium);
  const MemoryEntry entry = entryWith(sampleReading());
  const ui::WidgetLayout small =
      viewtest::layOut(MemoryWidgetContent{entry, WidgetFamily::systemSmall}.body(env), env);
  const ui::WidgetLayout medium =
      viewtest::layOut(MemoryWidgetContent{entry, WidgetFamily::systemMedium}.body(env), env);
  EXPECT_EQ(viewtest::firstOfKind(small.root, ui::NodeKind::divider), nullptr);
  EXPECT_NE(viewtest::firstOfKind(medium.root, ui::NodeKind::divider), nullptr);
  EXPECT_EQ(small.url, "korvo://resources");
}

TEST_F(MemoryWidgetTest, PercentRoundsAsPrintfDoes) {
  // Exactly 62.5 % used: printf rounds the half to even, 62 %.
  MemorySnapshot reading;
  reading.total = 1u << 20;
  reading.app = 655'360;  // 62.5 %
  reading.pressure = MemoryPressure::normal;
  const ui::WidgetLayout widget = render(entryWith(reading), WidgetFamily::systemSmall);
  EXPECT_NE(nodeWithText(widget.root, "62%"), nullptr);
  const ui::LayoutNode* labelled = nullptr;
  for (const ui::LayoutNode* node : viewtest::allNodes(widget.root)) {
    if (node->accessibilityValue) labelled = node;
  }
  ASSERT_NE(labelled, nullptr);
  EXPECT_EQ(labelled->accessibilityValue, "62 percent");
}

}  // namespace
}  // namespace korvo
