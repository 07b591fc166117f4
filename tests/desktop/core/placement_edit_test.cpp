#include "desktop/core/placement_edit.hpp"

#include <gtest/gtest.h>

#include "desktop/core/widget_lookup.hpp"
#include "extension/korvo_widgets.hpp"

// What each choice of a card's menu, and a drop after a drag, does to the placements.
namespace korvo::desktop {
namespace {

using ui::WidgetFamily;

constexpr const char* memory = "com.tessmoor.Korvo.memory";
constexpr const char* awake = "com.tessmoor.Korvo.awake";
constexpr const char* usage = "com.tessmoor.Korvo.usage";

const KindLookup& lookup() {
  static const auto widgets = KorvoWidgets{}.body();
  static const auto found = kindLookup(widgets);
  return found;
}

const std::vector<Placement> shown{
    {memory, WidgetFamily::systemSmall, std::nullopt, ScreenAnchor::bottomLeft, 24, "DP-2"},
    {awake, WidgetFamily::systemSmall, ui::Point{300, 200}},
};

struct EditCase {
  const char* name;
  std::size_t index;
  PlacementEdit edit;
  std::vector<Placement> expected;
};

class EditPlacements : public testing::TestWithParam<EditCase> {};

TEST_P(EditPlacements, ChangesWhatTheChoiceSays) {
  EXPECT_EQ(editPlacements(shown, GetParam().index, GetParam().edit, lookup()),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, EditPlacements,
    testing::Values(EditCase{"Medium",
                             0,
                             SetFamily{WidgetFamily::systemMedium},
                             {{memory, WidgetFamily::systemMedium, std::nullopt,
                               ScreenAnchor::bottomLeft, 24, "DP-2"},
                              shown[1]}},
                    EditCase{"AFamilyTheKindDoesNotOfferChangesNothing", 1,
                             SetFamily{WidgetFamily::systemMedium}, shown},
                    EditCase{
                        "APositionedCardMovedToACornerLosesItsPosition",
                        1,
                        MoveToCorner{ScreenAnchor::topLeft},
                        {shown[0],
                         {awake, WidgetFamily::systemSmall, std::nullopt, ScreenAnchor::topLeft}}},
                    EditCase{"ADropIsAPositionOnTheMonitorDroppedOn",
                             0,
                             MoveToPosition{{96, 48}, "HDMI-1"},
                             {{memory, WidgetFamily::systemSmall, ui::Point{96, 48},
                               ScreenAnchor::bottomLeft, 24, "HDMI-1"},
                              shown[1]}},
                    EditCase{"AnAddedWidgetJoinsTheCardsCornerAndMonitor",
                             0,
                             AddWidget{usage},
                             {shown[0],
                              shown[1],
                              {usage, WidgetFamily::systemSmall, std::nullopt,
                               ScreenAnchor::bottomLeft, 24, "DP-2"}}},
                    EditCase{"AWidgetAddedBesideAPositionedCardGoesToTheTopRight",
                             1,
                             AddWidget{usage},
                             {shown[0], shown[1], {usage, WidgetFamily::systemSmall}}},
                    EditCase{"AnUnknownKindAddsNothing", 0, AddWidget{"clock"}, shown},
                    EditCase{"Remove", 0, RemoveWidget{}, {shown[1]}},
                    EditCase{"AnIndexPastTheEndChangesNothing", 2, RemoveWidget{}, shown}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace korvo::desktop
