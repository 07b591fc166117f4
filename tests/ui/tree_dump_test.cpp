#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "support/ui/fake_text_measurer.hpp"
#include "ui/tree_json.hpp"
#include "ui/tree_outline.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::ui {
namespace {

WidgetLayout sample() {
  testing::FakeTextMeasurer measurer;
  const View view =
      vstack(HorizontalAlignment::leading, 6,
             {text("<b>Hi</b> & co")
                  .font(Font::system(10, FontWeight::semibold).withMonospacedDigits()),
              meter(1.7, Color::black(0.09), *Color::fromHex("#59ADC4"))
                  .accessibilityLabel("Memory used")
                  .accessibilityValue("42 percent")})
          .frame(
              {.maxWidth = infinity, .maxHeight = infinity, .alignment = Alignment::topLeading()})
          .widgetURL("korvo://resources");
  return layoutWidget("com.tessmoor.Korvo.memory", view, {.hostSuppliesContainerBackground = false},
                      measurer);
}

TEST(TreeJSON, RootHoldsWidgetFamilySizeURLAndTree) {
  const auto json = widgetJSON(sample());
  EXPECT_EQ(json["widget"], "com.tessmoor.Korvo.memory");
  EXPECT_EQ(json["family"], "systemSmall");
  EXPECT_EQ(json["width"], 170);
  EXPECT_EQ(json["height"], 170);
  EXPECT_EQ(json["url"], "korvo://resources");
  EXPECT_EQ(json["tree"]["kind"], "container");
}

TEST(TreeJSON, TextNodeCarriesItsFullStringFontAndColour) {
  const auto json = widgetJSON(sample());
  const auto& frame = json["tree"]["children"][0];
  EXPECT_EQ(frame["kind"], "frame");
  EXPECT_EQ(frame["url"], "korvo://resources");
  const auto& stack = frame["children"][0];
  const auto& text = stack["children"][0];
  EXPECT_EQ(text["kind"], "text");
  EXPECT_EQ(text["text"], "<b>Hi</b> & co");
  EXPECT_EQ(text["font"], (nlohmann::ordered_json{{"size", 10},
                                                  {"weight", "semibold"},
                                                  {"design", "default"},
                                                  {"monospacedDigits", true}}));
  EXPECT_EQ(text["color"], "#000000D9");
  EXPECT_EQ(text["frame"],
            (nlohmann::ordered_json{{"x", 0}, {"y", 0}, {"width", 70}, {"height", 12}}));
  EXPECT_FALSE(stack.contains("text"));
}

TEST(TreeJSON, MeterKeepsItsFractionAndHasTrackThenFill) {
  const auto json = widgetJSON(sample());
  const auto& meterNode = json["tree"]["children"][0]["children"][0]["children"][1];
  EXPECT_EQ(meterNode["kind"], "meter");
  EXPECT_EQ(meterNode["fraction"], 1.7);
  EXPECT_EQ(meterNode["accessibilityLabel"], "Memory used");
  EXPECT_EQ(meterNode["accessibilityValue"], "42 percent");
  ASSERT_EQ(meterNode["children"].size(), 2u);
  EXPECT_EQ(meterNode["children"][0]["kind"], "shape");
  EXPECT_EQ(meterNode["children"][0]["color"], "#00000017");
  EXPECT_EQ(meterNode["children"][1]["color"], "#59ADC4FF");
  EXPECT_EQ(meterNode["children"][1]["accentable"], true);
  EXPECT_EQ(meterNode["children"][1]["frame"]["width"], 170);
}

TEST(TreeJSON, KeysAreOnlyThoseOfTheToolInterface) {
  const std::set<std::string> allowed{"kind",
                                      "frame",
                                      "text",
                                      "symbol",
                                      "font",
                                      "color",
                                      "opacity",
                                      "url",
                                      "accentable",
                                      "accessibilityLabel",
                                      "accessibilityValue",
                                      "fraction",
                                      "children"};
  std::function<void(const nlohmann::ordered_json&)> check =
      [&](const nlohmann::ordered_json& node) {
        for (const auto& [key, value] : node.items()) EXPECT_TRUE(allowed.count(key)) << key;
        if (node.contains("children")) {
          for (const auto& child : node["children"]) check(child);
        }
      };
  check(widgetJSON(sample())["tree"]);
}

TEST(TreeOutline, OneIndentedLinePerNode) {
  const std::string outline = treeOutline(sample());
  EXPECT_NE(outline.find("com.tessmoor.Korvo.memory systemSmall -> korvo://resources\n"),
            std::string::npos);
  EXPECT_NE(
      outline.find("\n        text (0,0 70x12) \"<b>Hi</b> & co\" 10 semibold tnum #000000D9\n"),
      std::string::npos)
      << outline;
  EXPECT_NE(outline.find("meter (0,18 170x6) fraction 1.7"), std::string::npos) << outline;
}

}  // namespace
}  // namespace korvo::ui
