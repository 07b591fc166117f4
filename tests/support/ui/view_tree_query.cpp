#include "support/ui/view_tree_query.hpp"

#include <algorithm>

#include "base/c_format.hpp"
#include "support/ui/fake_text_measurer.hpp"

namespace korvo::viewtest {
namespace {

void collect(const ui::LayoutNode& node, std::vector<const ui::LayoutNode*>& out) {
  out.push_back(&node);
  for (const ui::LayoutNode& child : node.children) collect(child, out);
}

bool pathTo(const ui::LayoutNode& root, const ui::LayoutNode& target,
            std::vector<const ui::LayoutNode*>& path) {
  path.push_back(&root);
  if (&root == &target) return true;
  for (const ui::LayoutNode& child : root.children) {
    if (pathTo(child, target, path)) return true;
  }
  path.pop_back();
  return false;
}

bool drawsText(const ui::LayoutNode& node) {
  return node.kind == ui::NodeKind::text || node.kind == ui::NodeKind::label ||
         node.kind == ui::NodeKind::relativeDate;
}

std::string describe(const ui::LayoutNode& node) {
  const std::string name =
      node.text ? "\"" + *node.text + "\"" : std::string(ui::nodeKindName(node.kind));
  return name +
         cFormat(" (%g,%g %gx%g)", node.frame.x, node.frame.y, node.frame.width, node.frame.height);
}

}  // namespace

std::vector<Variation> allVariations() {
  std::vector<Variation> variations;
  for (const auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
    for (const auto rendering : {ui::RenderingMode::fullColor, ui::RenderingMode::accented}) {
      for (const bool hostBackground : {true, false}) {
        variations.push_back({scheme, rendering, hostBackground});
      }
    }
  }
  return variations;
}

std::string variationName(const Variation& variation) {
  std::string name = variation.scheme == ui::ColorScheme::light ? "Light" : "Dark";
  name += variation.rendering == ui::RenderingMode::fullColor ? "FullColor" : "Accented";
  name += variation.hostBackground ? "HostBackground" : "LegacyPadding";
  return name;
}

ui::Environment environment(ui::WidgetFamily family, Variation variation) {
  ui::Environment environment;
  environment.family = family;
  environment.colorScheme = variation.scheme;
  environment.renderingMode = variation.rendering;
  environment.hostSuppliesContainerBackground = variation.hostBackground;
  environment.now = testNow;
  return environment;
}

ui::WidgetLayout layOut(const ui::View& view, const ui::Environment& environment) {
  ui::testing::FakeTextMeasurer measurer;
  return layOut(view, environment, measurer);
}

ui::WidgetLayout layOut(const ui::View& view, const ui::Environment& environment,
                        ui::TextMeasurer& measurer) {
  return ui::layoutWidget("test", view, environment, measurer, 2);
}

ui::Color drawn(ui::Color chosen, const ui::Environment& environment, bool inAccentGroup) {
  if (environment.renderingMode != ui::RenderingMode::accented) return chosen;
  const ui::Color base = inAccentGroup ? environment.accentColor : ui::Color::white();
  return base.opacity(chosen.alpha);
}

std::vector<const ui::LayoutNode*> allNodes(const ui::LayoutNode& root) {
  std::vector<const ui::LayoutNode*> nodes;
  collect(root, nodes);
  return nodes;
}

std::vector<const ui::LayoutNode*> nodesOfKind(const ui::LayoutNode& root, ui::NodeKind kind) {
  std::vector<const ui::LayoutNode*> nodes = allNodes(root);
  std::erase_if(nodes, [kind](const ui::LayoutNode* node) { return node->kind != kind; });
  return nodes;
}

const ui::LayoutNode* nodeWithText(const ui::LayoutNode& root, std::string_view text) {
  for (const ui::LayoutNode* node : allNodes(root)) {
    if (node->text && *node->text == text) return node;
  }
  return nullptr;
}

const ui::LayoutNode* firstOfKind(const ui::LayoutNode& root, ui::NodeKind kind) {
  const std::vector<const ui::LayoutNode*> nodes = nodesOfKind(root, kind);
  return nodes.empty() ? nullptr : nodes.front();
}

const ui::LayoutNode* ancestorOfKind(const ui::LayoutNode& root, const ui::LayoutNode& node,
                                     ui::NodeKind kind) {
  std::vector<const ui::LayoutNode*> path;
  if (!pathTo(root, node, path)) return nullptr;
  path.pop_back();
  for (auto it = path.rbegin(); it != path.rend(); ++it) {
    if ((*it)->kind == kind) return *it;
  }
  return nullptr;
}

bool inAccentGroup(const ui::LayoutNode& root, const ui::LayoutNode& node) {
  std::vector<const ui::LayoutNode*> path;
  if (!pathTo(root, node, path)) return false;
  return std::any_of(path.begin(), path.end(),
                     [](const ui::LayoutNode* step) { return step->accentable; });
}

std::vector<std::string> texts(const ui::LayoutNode& root) {
  std::vector<std::string> out;
  for (const ui::LayoutNode* node : allNodes(root)) {
    if (drawsText(*node) && node->text) out.push_back(*node->text);
  }
  return out;
}

ui::Rect contentArea(const ui::WidgetLayout& widget) {
  return {16, 16, widget.size.width - 32, widget.size.height - 32};
}

bool contains(const ui::Rect& outer, const ui::Rect& inner) {
  constexpr double slack = 0.5;  // pixel snapping at 2× moves an edge by at most half a point
  return inner.x >= outer.x - slack && inner.y >= outer.y - slack &&
         inner.maxX() <= outer.maxX() + slack && inner.maxY() <= outer.maxY() + slack;
}

bool overlaps(const ui::Rect& a, const ui::Rect& b) {
  constexpr double slack = 0.01;
  return a.x < b.maxX() - slack && b.x < a.maxX() - slack && a.y < b.maxY() - slack &&
         b.y < a.maxY() - slack;
}

std::vector<std::string> legibilityProblems(const ui::WidgetLayout& widget) {
  std::vector<std::string> problems;
  std::vector<const ui::LayoutNode*> marks;
  const ui::Rect area = contentArea(widget);
  for (const ui::LayoutNode* node : allNodes(widget.root)) {
    const bool isText = drawsText(*node);
    if (!isText && node->kind != ui::NodeKind::symbol && node->kind != ui::NodeKind::meter)
      continue;
    marks.push_back(node);
    if (!contains(area, node->frame)) problems.push_back(describe(*node) + " leaves the content");
    if (!isText || !node->text) continue;
    for (const ui::TextLine& line : node->lines) {
      if (line.content.find("…") != std::string::npos &&
          node->text->find("…") == std::string::npos) {
        problems.push_back(describe(*node) + " is truncated");
      }
    }
    if (node->scale < 1) problems.push_back(describe(*node) + " had to shrink");
  }
  for (std::size_t i = 0; i < marks.size(); ++i) {
    for (std::size_t j = i + 1; j < marks.size(); ++j) {
      if (overlaps(marks[i]->frame, marks[j]->frame)) {
        problems.push_back(describe(*marks[i]) + " overlaps " + describe(*marks[j]));
      }
    }
  }
  return problems;
}

}  // namespace korvo::viewtest
