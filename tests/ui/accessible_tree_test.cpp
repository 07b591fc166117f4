#include "ui/accessible_tree.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/date_text.hpp"
#include "support/ui/fake_text_measurer.hpp"

namespace korvo::ui {
namespace {

using Role = AccessibleRole;
using Kind = AccessibleEdit::Kind;

WidgetLayout card(const View& view, Environment environment = {}) {
  testing::FakeTextMeasurer measurer;
  environment.family = WidgetFamily::systemMedium;
  return layoutWidget("com.tessmoor.Korvo.test", view.font(Font::system(10)), environment,
                      measurer);
}

const Color teal{0, 0.5, 0.5, 1};

// A card with every kind of node: decoration, a labelled header, a figure, a labelled meter,
// a divider, a lone symbol and a link, the whole card opening a widget URL.
View everyKind() {
  return zstack({linearGradient({{teal, 0}, {Color::white(), 1}}, UnitPoint::topLeading(),
                                UnitPoint::bottomTrailing()),
                 hstack({vstack(HorizontalAlignment::leading, 6,
                                {label("MEMORY", "memorychip"), text("42%"),
                                 meter(0.42, Color::black(), teal)
                                     .accessibilityLabel("Memory used")
                                     .accessibilityValue("42 percent")}),
                         divider(),
                         vstack({symbol("arrow.up.right"),
                                 link("korvo://awake",
                                      label("Keep Awake", "cup.and.saucer.fill"))})})})
      .widgetURL("korvo://resources");
}

TEST(AccessibleElements, TextsMetersAndLinksAreElementsAndDecorationIsNot) {
  const auto elements = accessibleElements(card(everyKind()));
  ASSERT_EQ(elements.size(), 4u);
  EXPECT_EQ(elements[0].role, Role::label);
  EXPECT_EQ(elements[0].name, "MEMORY");
  EXPECT_EQ(elements[1].role, Role::label);
  EXPECT_EQ(elements[1].name, "42%");
  EXPECT_EQ(elements[2].role, Role::meter);
  EXPECT_EQ(elements[2].name, "Memory used");
  EXPECT_EQ(elements[2].value, "42 percent");
  EXPECT_EQ(elements[2].level, 0.42);
  EXPECT_EQ(elements[3].role, Role::link);
  EXPECT_EQ(elements[3].name, "Keep Awake");
  EXPECT_EQ(elements[3].url, "korvo://awake");
}

const LayoutNode* findKind(const LayoutNode& node, NodeKind kind) {
  if (node.kind == kind) return &node;
  for (const LayoutNode& child : node.children) {
    if (const auto* found = findKind(child, kind)) return found;
  }
  return nullptr;
}

TEST(AccessibleElements, EachElementHasTheFrameOfItsNode) {
  const WidgetLayout widget = card(everyKind());
  const auto elements = accessibleElements(widget);
  ASSERT_EQ(elements.size(), 4u);
  EXPECT_EQ(elements[0].frame, findKind(widget.root, NodeKind::label)->frame);
  EXPECT_EQ(elements[2].frame, findKind(widget.root, NodeKind::meter)->frame);
  EXPECT_EQ(elements[3].frame, findKind(widget.root, NodeKind::link)->frame);
}

TEST(AccessibleElements, TheWidgetURLIsNoLinkElement) {
  const auto elements = accessibleElements(card(text("Keep Awake").widgetURL("korvo://awake")));
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].role, Role::label);
  EXPECT_EQ(elements[0].url, "");
}

TEST(AccessibleElements, AnUnlabelledMeterHasItsLevelAndNoName) {
  const auto elements = accessibleElements(card(meter(0.58, Color::black(), teal)));
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].role, Role::meter);
  EXPECT_EQ(elements[0].name, "");
  EXPECT_EQ(elements[0].value, "");
  EXPECT_EQ(elements[0].level, 0.58);
}

struct LevelCase {
  const char* name;
  double fraction;
  double level;
};

class MeterLevel : public ::testing::TestWithParam<LevelCase> {};

TEST_P(MeterLevel, IsTheShareTheMeterDraws) {
  const auto elements = accessibleElements(card(meter(GetParam().fraction, Color::black(), teal)));
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].level, GetParam().level);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MeterLevel,
    ::testing::Values(LevelCase{"Half", 0.5, 0.5}, LevelCase{"Overfull", 1.7, 1},
                      LevelCase{"Negative", -0.2, 0}, LevelCase{"NotANumber", std::nan(""), 0},
                      LevelCase{"Infinite", std::numeric_limits<double>::infinity(), 0}),
    [](const auto& info) { return info.param.name; });

TEST(AccessibleElements, ARelativeDateReadsAsItIsShownNow) {
  const Date now = Date::fromUnixSeconds(1'800'000'000);
  const Date fetched = now.addingSeconds(-240);
  const auto elements = accessibleElements(
      card(hstack({text("Updated"), relativeDate(fetched), text("ago")}), {.now = now}));
  ASSERT_EQ(elements.size(), 3u);
  EXPECT_EQ(elements[0].name, "Updated");
  EXPECT_EQ(elements[1].name, relativeSpan(fetched, now));
  EXPECT_EQ(elements[2].name, "ago");
}

TEST(AccessibleElements, AnEmptyAccessibilityLabelHidesTheNode) {
  const auto elements =
      accessibleElements(card(vstack({text("shown"), text("hidden").accessibilityLabel("")})));
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].name, "shown");
}

TEST(AccessibleElements, ALabelledStackIsOneElementNamedByItsLabel) {
  const auto elements = accessibleElements(
      card(hstack({text("58"), text("%")}).accessibilityLabel("58 percent remaining")));
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_EQ(elements[0].name, "58 percent remaining");
}

// Edits.

AccessibleElement labelled(std::string name) {
  return {.role = Role::label, .name = std::move(name)};
}

AccessibleElement meterAt(double level) {
  return {.role = Role::meter, .name = "Memory used", .level = level};
}

std::vector<AccessibleElement> applied(std::vector<AccessibleElement> list,
                                       const std::vector<AccessibleElement>& to,
                                       const std::vector<AccessibleEdit>& edits) {
  for (const AccessibleEdit& edit : edits) {
    const auto at = list.begin() + static_cast<std::ptrdiff_t>(edit.index);
    switch (edit.kind) {
      case Kind::remove:
        list.erase(at);
        break;
      case Kind::insert:
        list.insert(at, to[edit.index]);
        break;
      case Kind::update:
        EXPECT_EQ(at->role, to[edit.index].role) << "an update changes the role";
        *at = to[edit.index];
        break;
    }
  }
  return list;
}

struct EditCase {
  const char* name;
  std::vector<AccessibleElement> from;
  std::vector<AccessibleElement> to;
  std::vector<AccessibleEdit> edits;
};

class Edits : public ::testing::TestWithParam<EditCase> {};

TEST_P(Edits, AreTheFewestThatTurnTheOldListIntoTheNew) {
  const auto& [name, from, to, expected] = GetParam();
  const auto edits = accessibleEdits(from, to);
  EXPECT_EQ(edits, expected);
  EXPECT_EQ(applied(from, to, edits), to);
}

const std::vector<AccessibleElement> footer{labelled("Updated"), labelled("4 min"),
                                            labelled("ago")};

INSTANTIATE_TEST_SUITE_P(
    Table, Edits,
    ::testing::Values(
        EditCase{"NothingChanged", footer, footer, {}},
        EditCase{"LiveTextAdvanced",
                 footer,
                 {labelled("Updated"), labelled("5 min"), labelled("ago")},
                 {{Kind::update, 1}}},
        EditCase{"MeterMoved",
                 {labelled("42%"), meterAt(0.42)},
                 {labelled("43%"), meterAt(0.43)},
                 {{Kind::update, 0}, {Kind::update, 1}}},
        EditCase{"ReadingArrived",
                 {labelled("MEMORY"), labelled("Unavailable"), labelled("Open Korvo to retry"),
                  labelled("Updated")},
                 {labelled("MEMORY"), labelled("42%"), meterAt(0.42), labelled("9.0 GB of 16.0 GB"),
                  labelled("Updated")},
                 {{Kind::insert, 2}, {Kind::update, 1}, {Kind::update, 3}}},
        EditCase{"ReadingLost",
                 {labelled("MEMORY"), labelled("42%"), meterAt(0.42), labelled("Updated")},
                 {labelled("MEMORY"), labelled("Unavailable"), labelled("Updated")},
                 {{Kind::remove, 2}, {Kind::update, 1}}},
        EditCase{
            "EverythingNew", {}, footer, {{Kind::insert, 0}, {Kind::insert, 1}, {Kind::insert, 2}}},
        EditCase{"EverythingGone",
                 footer,
                 {},
                 {{Kind::remove, 2}, {Kind::remove, 1}, {Kind::remove, 0}}},
        EditCase{"StaleFooter",
                 footer,
                 {labelled("Stale ·"), labelled("20 min"), labelled("ago")},
                 {{Kind::update, 0}, {Kind::update, 1}}}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace korvo::ui
