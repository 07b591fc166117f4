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

}  // namespace

WidgetLayout layoutWidget(std::string kind, const View& view, const Environment& environment,
                          TextMeasurer& measurer, double scale) {
  const Size size = familySize(environment.family);
  const double margin = environment.hostSuppliesContainerBackground ? widgetContentMargin : 0;
  const Size inner{size.width - 2 * margin, size.height - 2 * margin};

  LayoutEngine engine(environment, measurer);
  LayoutNode content = engine.layoutRoot(
      view, {AxisProposal::exact(inner.width), AxisProposal::exact(inner.height)});
  // The card centres whatever the content does not fill.
  LayoutEngine::placeAt(content, {margin + (inner.width - content.frame.width) / 2,
                                  margin + (inner.height - content.frame.height) / 2});

  WidgetLayout widget;
  widget.kind = std::move(kind);
  widget.family = environment.family;
  widget.size = size;
  widget.url = engine.widgetURL().value_or("");
  widget.root = LayoutNode{.kind = NodeKind::container, .frame = {0, 0, size.width, size.height}};
  if (environment.hostSuppliesContainerBackground && engine.containerBackground()) {
    const auto& background = *engine.containerBackground();
    LayoutNode behind =
        engine.layoutInContext(background.view, background.context,
                               {AxisProposal::exact(size.width), AxisProposal::exact(size.height)});
    LayoutEngine::placeAt(behind, {0, 0});
    widget.root.children.push_back(std::move(behind));
  }
  widget.root.children.push_back(std::move(content));
  if (environment.renderingMode == RenderingMode::accented) {
    applyAccent(widget.root, false, environment.accentColor);
  }
  snapToPixels(widget.root, scale);
  return widget;
}

}  // namespace korvo::ui
