#include "render/painter.hpp"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>

#include "render/pango_text.hpp"
#include "render/rounded_path.hpp"

namespace korvo::render {

namespace {

using ui::Color;
using ui::Font;
using ui::GradientStop;
using ui::LayoutNode;
using ui::NodeKind;
using ui::Rect;
using ui::ShapeKind;
using ui::TextLine;

void setColor(cairo_t* cr, const Color& color) {
  cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
}

void paintShape(cairo_t* cr, const LayoutNode& node) {
  const Rect& r = node.frame;
  if (!node.color || r.width <= 0 || r.height <= 0) return;
  switch (node.shape) {
    case ShapeKind::rectangle:
      cairo_rectangle(cr, r.x, r.y, r.width, r.height);
      break;
    case ShapeKind::roundedRectangle:
      roundedRectPath(cr, r, node.cornerRadius);
      break;
    case ShapeKind::capsule:
      roundedRectPath(cr, r, std::min(r.width, r.height) / 2);
      break;
    case ShapeKind::circle:
      cairo_new_sub_path(cr);
      cairo_arc(cr, r.x + r.width / 2, r.y + r.height / 2, std::min(r.width, r.height) / 2, 0,
                2 * M_PI);
      break;
  }
  setColor(cr, *node.color);
  cairo_fill(cr);
}

void paintGradient(cairo_t* cr, const LayoutNode& node) {
  const Rect& r = node.frame;
  if (r.width <= 0 || r.height <= 0 || node.stops.empty()) return;
  cairo_pattern_t* pattern =
      cairo_pattern_create_linear(r.x + node.start.x * r.width, r.y + node.start.y * r.height,
                                  r.x + node.end.x * r.width, r.y + node.end.y * r.height);
  for (const GradientStop& stop : node.stops) {
    cairo_pattern_add_color_stop_rgba(pattern, stop.location, stop.color.red, stop.color.green,
                                      stop.color.blue, stop.color.alpha);
  }
  cairo_rectangle(cr, r.x, r.y, r.width, r.height);
  cairo_set_source(cr, pattern);
  cairo_fill(cr);
  cairo_pattern_destroy(pattern);
}

void showLayout(cairo_t* cr, PangoLayout* layout, double x, double y) {
  cairo_move_to(cr, x, y);
  pango_cairo_show_layout(cr, layout);
}

void paintTextLines(cairo_t* cr, PangoLayout* layout, const LayoutNode& node, double x) {
  Font font = *node.font;
  font.size *= node.scale;
  setColor(cr, node.color.value_or(Color::black()));
  for (const TextLine& line : node.lines) {
    pango_text::configure(layout, line.content, font, node.tracking * node.scale,
                          std::numeric_limits<double>::infinity());
    showLayout(cr, layout, x, node.frame.y + line.y);
  }
}

// The glyph centred on the node's height, as layout sized it.
void paintSymbol(cairo_t* cr, PangoLayout* layout, const LayoutNode& node) {
  pango_text::configureSymbol(layout, *node.symbol, *node.font);
  setColor(cr, node.color.value_or(Color::black()));
  showLayout(cr, layout, node.frame.x, node.frame.y + (node.frame.height - node.symbolHeight) / 2);
}

void paintNode(cairo_t* cr, PangoLayout* layout, const LayoutNode& node) {
  const bool grouped = node.opacity < 1;
  if (grouped) cairo_push_group(cr);

  switch (node.kind) {
    case NodeKind::shape:
      paintShape(cr, node);
      break;
    case NodeKind::divider:
      if (node.color && node.frame.width > 0 && node.frame.height > 0) {
        cairo_rectangle(cr, node.frame.x, node.frame.y, node.frame.width, node.frame.height);
        setColor(cr, *node.color);
        cairo_fill(cr);
      }
      break;
    case NodeKind::gradient:
      paintGradient(cr, node);
      break;
    case NodeKind::text:
    case NodeKind::relativeDate:
      if (node.font) paintTextLines(cr, layout, node, node.frame.x);
      break;
    case NodeKind::symbol:
      if (node.font && node.symbol) paintSymbol(cr, layout, node);
      break;
    case NodeKind::label:
      if (node.font && node.symbol) {
        double textWidth = 0;
        for (const TextLine& line : node.lines) textWidth = std::max(textWidth, line.width);
        paintSymbol(cr, layout, node);
        paintTextLines(cr, layout, node, node.frame.maxX() - textWidth);
      }
      break;
    default:  // containers draw nothing of their own
      break;
  }

  for (const LayoutNode& child : node.children) paintNode(cr, layout, child);

  if (grouped) {
    cairo_pop_group_to_source(cr);
    cairo_paint_with_alpha(cr, std::max(0.0, node.opacity));
  }
}

}  // namespace

void paintWidget(cairo_t* cr, const ui::WidgetLayout& widget) {
  cairo_save(cr);
  roundedRectPath(cr, {0, 0, widget.size.width, widget.size.height}, ui::widgetCornerRadius);
  cairo_clip(cr);
  // Laid out in user space like the measurer's texts; Cairo scales the glyphs to the device.
  PangoLayout* layout = pango_layout_new(pango_text::sharedContext());
  paintNode(cr, layout, widget.root);
  g_object_unref(layout);
  cairo_restore(cr);
}

}  // namespace korvo::render
