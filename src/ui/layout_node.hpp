#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.hpp"
#include "ui/color.hpp"
#include "ui/font.hpp"
#include "ui/geometry.hpp"
#include "ui/view.hpp"

namespace korvo::ui {

// One laid-out line of a text, as the painter draws it.
struct TextLine {
  std::string content{};  // the drawn characters, an ellipsis ending a truncated line
  double y = 0;           // points from the node's top edge to this line's top
  double width = 0;       // points, at the node's scale
  friend bool operator==(const TextLine&, const TextLine&) = default;
};

// What a laid-out node is, as the painter switches over it and the JSON tree names it.
enum class NodeKind {
  vstack,
  hstack,
  zstack,
  text,
  label,
  symbol,
  spacer,
  divider,
  shape,
  gradient,
  link,
  relativeDate,
  meter,
  padding,
  frame,
  background,
  container,
  empty,
};

// "vstack", "relativeDate", …: the kind's name in the JSON tree and outlines.
std::string_view nodeKindName(NodeKind kind);

// A node of the layout result: where a view ended up and everything needed to draw it, resolved
// (inherited fonts and colours applied). The view tree is never modified.
struct LayoutNode {
  NodeKind kind = NodeKind::empty;
  Rect frame{};  // points, relative to the widget's top-leading corner
  std::optional<std::string> text = std::nullopt;    // the full string, on the node that draws it
  std::optional<std::string> symbol = std::nullopt;  // the symbol name the view asked for
  std::optional<Font> font = std::nullopt;           // font as resolved, before any shrinking
  std::optional<Color> color = std::nullopt;         // fill or text colour, scheme applied
  double opacity = 1;  // 0…1, this node's own (multiplies down the tree)
  std::optional<std::string> url = std::nullopt;  // a link's destination or a widget URL
  bool accentable = false;                        // this node and its subtree are the accent group
  std::optional<std::string> accessibilityLabel = std::nullopt;
  std::optional<std::string> accessibilityValue = std::nullopt;
  std::optional<double> fraction = std::nullopt;  // meters: the fraction as given

  // Drawing details the JSON tree leaves out.
  double scale = 1;               // texts: the shrink factor applied to `font` (minimum scale…1)
  double tracking = 0;            // texts: extra points between characters, before scaling
  double baseline = 0;            // texts: points from the frame's top to the first baseline
  std::vector<TextLine> lines{};  // texts and labels: what is drawn
  double symbolHeight = 0;        // symbols and labels: points, the glyph's line height
  ShapeKind shape = ShapeKind::rectangle;         // shapes
  double cornerRadius = 0;                        // shapes: points
  std::vector<GradientStop> stops{};              // gradients
  UnitPoint start{};                              // gradients
  UnitPoint end{};                                // gradients
  std::optional<Date> relativeTo = std::nullopt;  // live relative dates: the date shown
  bool isWidgetURL = false;                       // `url` came from widgetURL, not from a link

  std::vector<LayoutNode> children{};

  friend bool operator==(const LayoutNode&, const LayoutNode&) = default;
};

}  // namespace korvo::ui
