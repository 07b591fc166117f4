#include "desktop/accessibility.hpp"

#include <gtest/gtest.h>

namespace korvo::desktop {
namespace {

struct DescriptionCase {
  const char* name;
  std::vector<ui::AccessibilityElement> elements;
  const char* expected;
};

class AccessibleDescription : public testing::TestWithParam<DescriptionCase> {};

TEST_P(AccessibleDescription, JoinsLabelsAndValuesInDrawingOrder) {
  EXPECT_EQ(accessibleDescription(GetParam().elements), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, AccessibleDescription,
    testing::Values(
        DescriptionCase{"Nothing", {}, ""},
        DescriptionCase{
            "LabelAndValue", {{"Memory used", "42 percent"}}, "Memory used: 42 percent"},
        DescriptionCase{"Several",
                        {{"Memory used", "42 percent"}, {"Pressure", "Normal"}},
                        "Memory used: 42 percent. Pressure: Normal"},
        DescriptionCase{
            "LabelOnly", {{"Keep Awake", ""}, {"", "54 degrees"}}, "Keep Awake. 54 degrees"},
        DescriptionCase{
            "EmptyElementsSkipped", {{"", ""}, {"Codex", "58 percent"}}, "Codex: 58 percent"}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace korvo::desktop
