#include "views/monitor/temperature_content.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "base/date_text.hpp"
#include "support/views/monitor/monitor_test_data.hpp"
#include "views/monitor/monitor_widget_view.hpp"

namespace korvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using ui::Font;
using ui::FontDesign;
using ui::FontWeight;
using viewtest::drawn;
using viewtest::entryWith;
using viewtest::nodeWithText;
using viewtest::texts;

constexpr const char* settingsHint = "Settings → Monitors → CPU temperature";

WidgetSnapshot temperatureSnapshot(std::optional<double> celsius, bool enabled,
                                   std::optional<double> ageSeconds) {
  WidgetSnapshot snapshot;
  snapshot.date = viewtest::testNow;
  snapshot.temperature = celsius;
  snapshot.temperatureEnabled = enabled;
  if (ageSeconds) snapshot.temperatureDate = viewtest::testNow.addingSeconds(-*ageSeconds);
  return snapshot;
}

ui::WidgetLayout render(const MonitorEntry& entry, viewtest::Variation variation = {},
                        ui::WidgetFamily family = ui::WidgetFamily::systemSmall) {
  const ui::Environment env = viewtest::environment(family, variation);
  return viewtest::layOut(MonitorWidgetView{entry, true}.body(env), env);
}

class TemperatureVariationTest : public testing::TestWithParam<viewtest::Variation> {};

TEST_P(TemperatureVariationTest, ReadingShowsValueCaptionAndFooter) {
  const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall, GetParam());
  const ui::Palette palette = env.palette();
  const ui::WidgetLayout widget = render(entryWith(temperatureSnapshot(54.0, true, 0)), GetParam());

  EXPECT_THAT(texts(widget.root),
              ElementsAre("TEMPERATURE", "54°C", "Hottest CPU sensor", "Updated",
                          relativeSpan(viewtest::testNow, viewtest::testNow), "ago"));
  EXPECT_EQ(widget.url, "korvo://resources");

  const ui::LayoutNode* header = nodeWithText(widget.root, "TEMPERATURE");
  EXPECT_EQ(header->kind, ui::NodeKind::label);
  EXPECT_EQ(header->symbol, "thermometer.medium");
  EXPECT_EQ(header->font, Font::system(10, FontWeight::semibold));
  EXPECT_EQ(header->color, drawn(palette.secondary, env));

  const ui::LayoutNode* value = nodeWithText(widget.root, "54°C");
  EXPECT_EQ(value->font,
            Font::system(40, FontWeight::medium, FontDesign::rounded).withMonospacedDigits());
  EXPECT_EQ(value->color, drawn(palette.primary, env));

  const ui::LayoutNode* caption = nodeWithText(widget.root, "Hottest CPU sensor");
  EXPECT_EQ(caption->font, Font::caption2());
  EXPECT_EQ(caption->color, drawn(palette.secondary, env));

  const ui::LayoutNode* span = viewtest::firstOfKind(widget.root, ui::NodeKind::relativeDate);
  ASSERT_NE(span, nullptr);
  EXPECT_EQ(span->font, Font::system(9));
  EXPECT_EQ(span->color, drawn(palette.secondary, env));
  EXPECT_EQ(span->relativeTo, viewtest::testNow);

  // Leading-aligned, 6 points apart.
  EXPECT_NEAR(header->frame.x, 16, 0.5);
  EXPECT_NEAR(value->frame.x, 16, 0.5);
  EXPECT_NEAR(caption->frame.y - value->frame.maxY(), 6, 0.5);
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

TEST_P(TemperatureVariationTest, DisabledShowsEnableInKorvoAndTheSettingsHint) {
  const ui::Environment env = viewtest::environment(ui::WidgetFamily::systemSmall, GetParam());
  const ui::WidgetLayout widget = render(entryWith(std::nullopt), GetParam());
  EXPECT_THAT(texts(widget.root), ElementsAre("TEMPERATURE", "Enable in Korvo", settingsHint));
  EXPECT_EQ(nodeWithText(widget.root, "Enable in Korvo")->font, Font::headline());
  const ui::LayoutNode* hint = nodeWithText(widget.root, settingsHint);
  EXPECT_EQ(hint->font, Font::caption2());
  EXPECT_EQ(hint->color, drawn(env.palette().secondary, env));
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AllSurroundings, TemperatureVariationTest,
                         testing::ValuesIn(viewtest::allVariations()),
                         [](const auto& info) { return viewtest::variationName(info.param); });

struct ValueCase {
  double celsius;
  const char* shown;
};

class TemperatureValueTest : public testing::TestWithParam<ValueCase> {};

TEST_P(TemperatureValueTest, FormatsWholeDegreesAsPrintfRounds) {
  const ui::WidgetLayout widget =
      render(entryWith(temperatureSnapshot(GetParam().celsius, true, 60)));
  EXPECT_NE(nodeWithText(widget.root, GetParam().shown), nullptr) << GetParam().shown;
  EXPECT_THAT(viewtest::legibilityProblems(widget), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Readings, TemperatureValueTest,
                         testing::Values(ValueCase{54.0, "54°C"}, ValueCase{54.5, "54°C"},
                                         ValueCase{55.5, "56°C"}, ValueCase{54.49, "54°C"},
                                         ValueCase{-3, "-3°C"}, ValueCase{105, "105°C"},
                                         ValueCase{0, "0°C"}, ValueCase{-0.4, "-0°C"}));

TEST(TemperatureContentTest, ReadingAgeDecidesUpdatedOrStale) {
  for (const auto& [age, prefix] :
       std::vector<std::pair<double, const char*>>{{900, "Updated"}, {901, "Stale ·"}}) {
    const ui::WidgetLayout widget = render(entryWith(temperatureSnapshot(54, true, age)));
    EXPECT_THAT(
        texts(widget.root),
        ElementsAre("TEMPERATURE", "54°C", "Hottest CPU sensor", prefix,
                    relativeSpan(viewtest::testNow.addingSeconds(-age), viewtest::testNow), "ago"));
  }
}

TEST(TemperatureContentTest, SwitchedOffMonitoringHidesAStoredTemperature) {
  const ui::WidgetLayout widget = render(entryWith(temperatureSnapshot(54, false, 0)));
  EXPECT_THAT(texts(widget.root), ElementsAre("TEMPERATURE", "Enable in Korvo", settingsHint));
  EXPECT_EQ(nodeWithText(widget.root, "54°C"), nullptr);
  EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::relativeDate), nullptr);
}

TEST(TemperatureContentTest, EnabledWithoutReadingIsUnavailableWithTheSameHint) {
  const ui::WidgetLayout widget = render(entryWith(temperatureSnapshot(std::nullopt, true, 0)));
  EXPECT_THAT(texts(widget.root), ElementsAre("TEMPERATURE", "Unavailable", settingsHint));
  EXPECT_EQ(nodeWithText(widget.root, "Unavailable")->font, Font::headline());
  EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::relativeDate), nullptr);
}

TEST(TemperatureContentTest, ReadingWithoutDateHasNoFooter) {
  const ui::WidgetLayout widget = render(entryWith(temperatureSnapshot(54, true, std::nullopt)));
  EXPECT_THAT(texts(widget.root), ElementsAre("TEMPERATURE", "54°C", "Hottest CPU sensor"));
  EXPECT_EQ(viewtest::firstOfKind(widget.root, ui::NodeKind::relativeDate), nullptr);
}

TEST(TemperatureContentTest, StateTable) {
  using TemperatureContent::State;
  EXPECT_EQ(TemperatureContent::state(std::nullopt), State::disabled);
  EXPECT_EQ(TemperatureContent::state(temperatureSnapshot(54, true, 0)), State::reading);
  EXPECT_EQ(TemperatureContent::state(temperatureSnapshot(std::nullopt, true, 0)),
            State::unavailable);
  EXPECT_EQ(TemperatureContent::state(temperatureSnapshot(54, false, 0)), State::disabled);
  EXPECT_EQ(TemperatureContent::state(temperatureSnapshot(std::nullopt, false, 0)),
            State::disabled);
}

}  // namespace
}  // namespace korvo
