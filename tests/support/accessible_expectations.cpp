#include "support/accessible_expectations.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace korvo::desktop_test {
namespace {

using Json = nlohmann::json;

// What a screen reader should find for one node of the tree JSON.
struct Expected {
  std::string role{};  // AT-SPI's role name
  std::string name{};
  std::string valueText{};
  std::optional<double> percent = std::nullopt;  // meters: the share drawn, 0…100
  Json frame{};
  std::string url{};
};

void appendTexts(const Json& node, std::string& out) {
  if (!node.value("text", "").empty()) {
    if (!out.empty()) out += ' ';
    out += node["text"].get<std::string>();
  }
  for (const auto& child : node.value("children", Json::array())) appendTexts(child, out);
}

// A node with an accessibility label or value, a meter, a link or a text is read out (named by
// its label, else its texts) and hides what it holds.
void expectedElements(const Json& node, std::vector<Expected>& out) {
  const std::string kind = node["kind"];
  const bool labelled = node.contains("accessibilityLabel") || node.contains("accessibilityValue");
  const bool drawsText = !node.value("text", "").empty();
  if (!labelled && !drawsText && kind != "meter" && kind != "link") {
    for (const auto& child : node.value("children", Json::array())) expectedElements(child, out);
    return;
  }
  Expected element{.role = kind == "meter" ? "level bar" : kind == "link" ? "link" : "label"};
  if (node.contains("accessibilityLabel")) {
    element.name = node["accessibilityLabel"];
  } else {
    appendTexts(node, element.name);
  }
  element.valueText = node.value("accessibilityValue", "");
  if (kind == "meter") {
    const auto& fraction = node["fraction"];
    element.percent = fraction.is_number() ? std::clamp(fraction.get<double>(), 0.0, 1.0) * 100 : 0;
  }
  element.frame = node["frame"];
  if (kind == "link") element.url = node["url"];
  if (element.role == "label" && element.name.empty() && element.valueText.empty()) return;
  out.push_back(element);
}

}  // namespace

std::vector<std::string> readableNames(const Json& tree) {
  std::vector<Expected> expected;
  expectedElements(tree, expected);
  std::vector<std::string> names;
  for (const auto& element : expected) names.push_back(element.name);
  return names;
}

void expectReadsAsTree(const Json& card, const Json& tree, const std::string& what) {
  std::vector<Expected> expected;
  expectedElements(tree, expected);
  const auto& children = card["children"];
  ASSERT_EQ(children.size(), expected.size()) << card.dump(1) << "\n" << tree.dump(1);
  const auto& corner = card["bounds"];
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto& child = children[i];
    const auto& want = expected[i];
    SCOPED_TRACE(what + " element " + std::to_string(i) + " " + want.name);
    EXPECT_EQ(child["role"], want.role);
    EXPECT_EQ(child["name"], want.name);
    if (want.percent) {
      EXPECT_NEAR(child["value"].get<double>(), *want.percent, 1e-9);
      EXPECT_EQ(child["valueText"], want.valueText);
    }
    EXPECT_EQ(child["actions"].size(), want.url.empty() ? 0U : 1U);
    // Both edges are rounded, as the host rounds them.
    const auto pixel = [](double points) { return std::lround(points); };
    const double x = want.frame["x"];
    const double y = want.frame["y"];
    const double width = want.frame["width"];
    const double height = want.frame["height"];
    EXPECT_EQ(child["bounds"]["x"], corner["x"].get<long>() + pixel(x));
    EXPECT_EQ(child["bounds"]["y"], corner["y"].get<long>() + pixel(y));
    EXPECT_EQ(child["bounds"]["width"], pixel(x + width) - pixel(x));
    EXPECT_EQ(child["bounds"]["height"], pixel(y + height) - pixel(y));
  }
}

}  // namespace korvo::desktop_test
