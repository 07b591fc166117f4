#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/date.hpp"
#include "ui/environment.hpp"
#include "ui/layout_node.hpp"
#include "ui/text_measurer.hpp"
#include "ui/view.hpp"
#include "ui/widget_layout.hpp"

// Shared by the memory, monitor and keep-awake view tests: laying a view out as a widget and
// finding nodes in the result.
namespace korvo::viewtest {

// The moment every view test treats as now: 2026-11-15T01:45:00Z.
inline constexpr Date testNow = Date::fromUnixSeconds(1'794'707'100);

// The surroundings a widget is drawn in, varied by the tests that hold for all of them.
struct Variation {
  ui::ColorScheme scheme = ui::ColorScheme::light;
  ui::RenderingMode rendering = ui::RenderingMode::fullColor;
  bool hostBackground = true;  // the host supplies the container background
};

// light/dark × full colour/accented × host background/legacy padding.
std::vector<Variation> allVariations();
std::string variationName(const Variation& variation);

ui::Environment environment(ui::WidgetFamily family, Variation variation = {});

// The view laid out in its card at 2×, its texts measured by `measurer`: by default the fake one
// of fixed advances, so that a tree test does not depend on the fonts installed.
ui::WidgetLayout layOut(const ui::View& view, const ui::Environment& environment);
ui::WidgetLayout layOut(const ui::View& view, const ui::Environment& environment,
                        ui::TextMeasurer& measurer);

// The colour a node is drawn in: as the view chose in full colour; in accented rendering white
// (or the accent colour inside the accent group) at the chosen colour's alpha.
ui::Color drawn(ui::Color chosen, const ui::Environment& environment, bool inAccentGroup = false);

// Every node, depth first in drawing order.
std::vector<const ui::LayoutNode*> allNodes(const ui::LayoutNode& root);
std::vector<const ui::LayoutNode*> nodesOfKind(const ui::LayoutNode& root, ui::NodeKind kind);
// The first node drawing exactly `text`; nullptr when none does.
const ui::LayoutNode* nodeWithText(const ui::LayoutNode& root, std::string_view text);
// The first node of `kind` at or below `root`; nullptr when none.
const ui::LayoutNode* firstOfKind(const ui::LayoutNode& root, ui::NodeKind kind);
// The nearest node above `node` in `root` whose kind is `kind`; nullptr when none.
const ui::LayoutNode* ancestorOfKind(const ui::LayoutNode& root, const ui::LayoutNode& node,
                                     ui::NodeKind kind);
// True when `node` or one of its ancestors in `root` is marked accentable.
bool inAccentGroup(const ui::LayoutNode& root, const ui::LayoutNode& node);
// The texts drawn by text, label and relative-date nodes, in drawing order.
std::vector<std::string> texts(const ui::LayoutNode& root);

// The part of the card the content may use: inset by 16 points on every edge.
ui::Rect contentArea(const ui::WidgetLayout& widget);
bool contains(const ui::Rect& outer, const ui::Rect& inner);
bool overlaps(const ui::Rect& a, const ui::Rect& b);

// Whether the widget reads cleanly: every text drawn whole at its own size (not truncated, not
// shrunk), inside the content area, and no two texts, symbols or meters overlapping. Returns the
// problems found, empty when there are none.
std::vector<std::string> legibilityProblems(const ui::WidgetLayout& widget);

}  // namespace korvo::viewtest
