#include "ui/widget_layout.hpp"

#include <utility>

#include "ui/layout_engine.hpp"
#include "ui/pixel_snap.hpp"

namespace korvo::ui {

namespace {

// Accented rendering keeps only each colour's alpha: the accent group in the accent colour,
// everything else white.
void applyAccent(LayoutNode& node, bool inAccentGroup, Color accent) {
  const bool accented = inAccentGroup || node.accentable;
  const Color base = accented ? accent : Color::white();
  if (node.color) node.color = base.opacity(node.color->alpha);
  for (GradientStop& stop : node.stops) stop.color = base.opacity(stop.color.alpha);
  for (LayoutNode& child : node.children) applyAccent(child, accented, accent);
}

void translate(LayoutNode& node, double dx, double dy) {
  node.frame.x += dx;
  node.frame.y += dy;
  for (LayoutNode& child : node.children) translate(child, dx, dy);
}

}  // namespace

WidgetLayout layoutWidget(std::string kind, const View& view, const Environment& environment,
                          TextMeasurer& measurer, double scale) {
  const Size size = familySize(environment.family);
  const double margin = environment.hostSuppliesContainerBackground ? widgetContentMargin : 0;
  const Size inner{size.width - 2 * margin, size.height - 2 * margin};

  LayoutEngine engine(environment, measurer);
  LayoutNode content = engine.layoutRoot(
      view, {AxisProposal::exact(inner.width), AxisProposal::exact(inner.height)}, {0, 0});
  // The card centres whatever the content does not fill.
  const double dx = margin + (inner.width - content.frame.width) / 2;
  const double dy = margin + (inner.height - content.frame.height) / 2;
  translate(content, dx, dy);

  WidgetLayout widget;
  widget.kind = std::move(kind);
  widget.family = environment.family;
  widget.size = size;
  widget.url = engine.widgetURL().value_or("");
  widget.root = LayoutNode{.kind = NodeKind::container, .frame = {0, 0, size.width, size.height}};
  if (environment.hostSuppliesContainerBackground && engine.containerBackground()) {
    const auto& background = *engine.containerBackground();
    widget.root.children.push_back(engine.layoutInContext(
        background.view, background.context,
        {AxisProposal::exact(size.width), AxisProposal::exact(size.height)}, {0, 0}));
  }
  widget.root.children.push_back(std::move(content));
  if (environment.renderingMode == RenderingMode::accented) {
    applyAccent(widget.root, false, environment.accentColor);
  }
  snapToPixels(widget.root, scale);
  return widget;
}

}  // namespace korvo::ui
