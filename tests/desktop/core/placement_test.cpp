#include "desktop/core/placement.hpp"

#include <gtest/gtest.h>

#include "desktop/core/widget_lookup.hpp"
#include "extension/korvo_widgets.hpp"
#include "ui/words.hpp"

namespace korvo::desktop {
namespace {

using ui::WidgetFamily;

const std::vector<WidgetConfiguration>& bundle() {
  static const auto widgets = KorvoWidgets{}.body();
  return widgets;
}

PlacementsResult parse(std::string_view json) {
  return parsePlacements(json, kindLookup(bundle()));
}

std::vector<Placement> placementsOf(const PlacementsResult& result) {
  if (const auto* failure = std::get_if<PlacementError>(&result)) {
    ADD_FAILURE() << failure->message;
    return {};
  }
  return std::get<std::vector<Placement>>(result);
}

std::string errorOf(const PlacementsResult& result) {
  const auto* failure = std::get_if<PlacementError>(&result);
  return failure != nullptr ? failure->message : "(no error)";
}

TEST(PlacementsDocument, ReadsKindFamilyAnchorMarginAndPosition) {
  const auto placements = placementsOf(parse(R"([
    {"kind": "memory", "family": "medium", "anchor": "bottom-left", "margin": 40},
    {"kind": "com.tessmoor.Korvo.usage", "family": "systemSmall", "position": {"x": 100, "y": 50.5}}
  ])"));
  ASSERT_EQ(placements.size(), 2U);
  EXPECT_EQ(placements[0], (Placement{"com.tessmoor.Korvo.memory", WidgetFamily::systemMedium,
                                      std::nullopt, ScreenAnchor::bottomLeft, 40}));
  EXPECT_EQ(placements[1], (Placement{"com.tessmoor.Korvo.usage", WidgetFamily::systemSmall,
                                      ui::Point{100, 50.5}, ScreenAnchor::topRight, 16}));
}

TEST(PlacementsDocument, OmittedFieldsTakeTheKindsFirstFamilyTopRightAndSixteen) {
  const auto placements = placementsOf(parse(R"([{"kind": "temperature"}])"));
  ASSERT_EQ(placements.size(), 1U);
  EXPECT_EQ(placements[0], (Placement{"com.tessmoor.Korvo.temperature", WidgetFamily::systemSmall,
                                      std::nullopt, ScreenAnchor::topRight, 16}));
}

TEST(PlacementsDocument, AnOutputNamesTheMonitorByItsConnector) {
  const auto placements = placementsOf(parse(R"([{"kind": "awake", "output": "HDMI-A-1"}])"));
  ASSERT_EQ(placements.size(), 1U);
  EXPECT_EQ(placements[0].output, "HDMI-A-1");
}

TEST(PlacementsDocument, AnEmptyArrayPlacesNothing) {
  EXPECT_TRUE(placementsOf(parse("[]")).empty());
}

struct BadDocument {
  const char* name;
  const char* json;
  const char* message;  // the one line the user reads
};

class PlacementsDocumentErrors : public testing::TestWithParam<BadDocument> {};

TEST_P(PlacementsDocumentErrors, NameTheKeyAndTheProblem) {
  EXPECT_EQ(errorOf(parse(GetParam().json)), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PlacementsDocumentErrors,
    testing::Values(
        BadDocument{"NotJSON", R"([{"kind": "memory",])", "not valid JSON (byte 20)"},
        BadDocument{"NumberOutOfRange", R"([{"kind": "memory", "margin": 2e308}])",
                    "not valid JSON (a number out of range)"},
        BadDocument{"NotAnArray", R"({"kind": "memory"})", "expected a JSON array of placements"},
        BadDocument{"ItemNotAnObject", R"(["memory"])", "[0]: expected an object with a \"kind\""},
        BadDocument{"MissingKind", R"([{"family": "small"}])",
                    "[0].kind: expected a widget kind string"},
        BadDocument{"UnknownKind", R"([{"kind": "memory"}, {"kind": "weather"}])",
                    "[1].kind: unknown widget \"weather\" (memory, awake, usage, temperature)"},
        BadDocument{"FamilyNotOffered", R"([{"kind": "awake", "family": "medium"}])",
                    "[0].family: \"medium\" is not offered by awake (small)"},
        BadDocument{"UnknownFamily", R"([{"kind": "memory", "family": "large"}])",
                    "[0].family: \"large\" is not offered by memory (small, medium)"},
        BadDocument{"FamilyNotAString", R"([{"kind": "memory", "family": 2}])",
                    "[0].family: expected \"small\" or \"medium\""},
        BadDocument{"BadAnchor", R"([{"kind": "memory", "anchor": "middle"}])",
                    "[0].anchor: expected top-left, top-right, bottom-left or bottom-right"},
        BadDocument{"PositionAndAnchor",
                    R"([{"kind": "memory", "anchor": "top-left", "position": {"x": 1, "y": 2}}])",
                    "[0].position: give either a position or an anchor, not both"},
        BadDocument{"PositionWithoutY", R"([{"kind": "memory", "position": {"x": 1}}])",
                    "[0].position: expected {\"x\": number, \"y\": number}"},
        BadDocument{"PositionNotNumbers", R"([{"kind": "memory", "position": {"x": "1", "y": 2}}])",
                    "[0].position: expected {\"x\": number, \"y\": number}"},
        BadDocument{"NegativeMargin", R"([{"kind": "memory", "margin": -3}])",
                    "[0].margin: expected a number of pixels, 0 or more"},
        BadDocument{"UnknownKey", R"([{"kind": "memory", "colour": "red"}])",
                    "[0].colour: unknown key (kind, family, position, anchor, margin, output)"},
        BadDocument{"EmptyOutput", R"([{"kind": "memory", "output": ""}])",
                    "[0].output: expected a monitor's connector name such as \"DP-1\""},
        BadDocument{"OutputNotAString", R"([{"kind": "memory", "output": 2}])",
                    "[0].output: expected a monitor's connector name such as \"DP-1\""}),
    [](const auto& info) { return info.param.name; });

TEST(WidgetArguments, KindWithOrWithoutFamilyStackAtTheTopRight) {
  const auto placements = placementsOf(
      parseWidgetArguments({"memory:medium", "usage", "temperature:small"}, kindLookup(bundle())));
  ASSERT_EQ(placements.size(), 3U);
  EXPECT_EQ(placements[0], (Placement{"com.tessmoor.Korvo.memory", WidgetFamily::systemMedium}));
  EXPECT_EQ(placements[1], (Placement{"com.tessmoor.Korvo.usage", WidgetFamily::systemSmall}));
  EXPECT_EQ(placements[2],
            (Placement{"com.tessmoor.Korvo.temperature", WidgetFamily::systemSmall}));
}

TEST(WidgetArguments, AFamilyTheWidgetDoesNotOfferIsRefusedWithItsFamilies) {
  EXPECT_EQ(errorOf(parseWidgetArguments({"memory", "temperature:medium"}, kindLookup(bundle()))),
            "--widget temperature:medium: \"medium\" is not offered by temperature (small)");
}

TEST(WidgetArguments, AnUnknownKindNamesTheValidOnes) {
  EXPECT_EQ(errorOf(parseWidgetArguments({"clock:small"}, kindLookup(bundle()))),
            "--widget clock:small: unknown widget \"clock\" (memory, awake, usage, temperature)");
}

TEST(DefaultPlacements, AllFourWidgetsInBundleOrderWithUsageMedium) {
  const auto placements = defaultPlacements(kindLookup(bundle()));
  ASSERT_EQ(placements.size(), 4U);
  EXPECT_EQ(placements[0], (Placement{"com.tessmoor.Korvo.memory", WidgetFamily::systemSmall}));
  EXPECT_EQ(placements[1], (Placement{"com.tessmoor.Korvo.awake", WidgetFamily::systemSmall}));
  EXPECT_EQ(placements[2], (Placement{"com.tessmoor.Korvo.usage", WidgetFamily::systemMedium}));
  EXPECT_EQ(placements[3],
            (Placement{"com.tessmoor.Korvo.temperature", WidgetFamily::systemSmall}));
}

TEST(Names, FamiliesAndAnchorsReadBothSpellingsAndNothingElse) {
  EXPECT_EQ(ui::familyNamed("small"), WidgetFamily::systemSmall);
  EXPECT_EQ(ui::familyNamed("systemMedium"), WidgetFamily::systemMedium);
  EXPECT_EQ(ui::familyNamed("Medium"), std::nullopt);
  EXPECT_EQ(anchorFromName("bottom-right"), ScreenAnchor::bottomRight);
  EXPECT_EQ(anchorFromName("top_right"), std::nullopt);
}

}  // namespace
}  // namespace korvo::desktop
