#include "ui/layout.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/date_text.hpp"
#include "ui/layout_engine.hpp"
#include "ui/meter_fill.hpp"
#include "ui/text_fit.hpp"

namespace korvo::ui {

namespace {

constexpr double defaultSpacing = 8;
constexpr double defaultSpacerLength = 8;
constexpr double idealShapeLength = 10;
constexpr double dividerThickness = 1;
constexpr double infinite = std::numeric_limits<double>::infinity();

std::optional<double> offered(AxisProposal axis) {
  if (axis.mode == SizingMode::unspecified) return std::nullopt;
  return std::max(0.0, axis.length);
}

double alignOffset(HorizontalAlignment alignment, double space, double length) {
  switch (alignment) {
    case HorizontalAlignment::leading:
      return 0;
    case HorizontalAlignment::center:
      return (space - length) / 2;
    case HorizontalAlignment::trailing:
      return space - length;
  }
  return 0;
}

double alignOffset(VerticalAlignment alignment, double space, double length) {
  switch (alignment) {
    case VerticalAlignment::top:
    case VerticalAlignment::firstTextBaseline:
      return 0;
    case VerticalAlignment::center:
      return (space - length) / 2;
    case VerticalAlignment::bottom:
      return space - length;
  }
  return 0;
}

bool isEmpty(const View& view) {
  return std::holds_alternative<Empty>(view.node().value);
}

bool isSpacer(const View& view) {
  return std::holds_alternative<Spacer>(view.node().value);
}

// Whether `view` is a text, or a text under modifiers that keep its frame: offered no width, it
// is exactly 0 points wide, which a stack can know without breaking it at every character.
bool isBareText(const View& view) {
  const NodeValue& value = view.node().value;
  if (std::holds_alternative<Text>(value) || std::holds_alternative<RelativeDate>(value)) {
    return true;
  }
  if (const auto* style = std::get_if<Style>(&value)) return isBareText(style->content);
  if (const auto* annotation = std::get_if<Annotation>(&value)) {
    return isBareText(annotation->content);
  }
  if (const auto* link = std::get_if<Link>(&value)) return isBareText(link->content);
  return false;
}

bool isTextual(const View& view) {
  const NodeValue& value = view.node().value;
  return std::holds_alternative<Text>(value) || std::holds_alternative<RelativeDate>(value) ||
         std::holds_alternative<Label>(value);
}

// Whether an answer given for `taken` on one axis is the answer for `asked`: the same proposal, or,
// for a node whose answer holds in any larger room, any room at least the `length` it took.
bool answers(AxisProposal taken, AxisProposal asked, double length, bool fitsAnyLargerRoom) {
  if (taken == asked) return true;
  if (!fitsAnyLargerRoom) return false;
  return asked.mode == SizingMode::unspecified || length <= asked.length;
}

template <class... Ts>
struct Overloaded : Ts... {
  using Ts::operator()...;
};
template <class... Ts>
Overloaded(Ts...) -> Overloaded<Ts...>;

}  // namespace

LayoutEngine::LayoutEngine(const Environment& environment, TextMeasurer& measurer)
    : environment_(environment), palette_(environment.palette()), measurer_(measurer) {
  contexts_.push_back({.font = Font::body(), .color = palette_.primary});
}

int LayoutEngine::intern(const Context& context) {
  for (std::size_t i = 0; i < contexts_.size(); ++i) {
    if (contexts_[i] == context) return static_cast<int>(i);
  }
  contexts_.push_back(context);
  return static_cast<int>(contexts_.size() - 1);
}

Font LayoutEngine::resolvedFont(const Context& context) const {
  Font font = context.font;
  if (context.monospacedDigits) font.monospacedDigits = *context.monospacedDigits;
  return font;
}

// The entry answering `proposal`, if any. As in Yoga, an answer that holds in any larger room
// (a text fitted whole, measured for the ideal size or a wider slot) answers every proposal it
// fits in, so a stack's "offered everything" measurement serves its share too.
const LayoutEngine::CacheEntry* LayoutEngine::cached(const View& view, int context,
                                                     Proposal proposal) {
  const auto found = cache_.find(&view.node());
  if (found == cache_.end()) return nullptr;
  for (const CacheEntry& entry : found->second) {
    if (entry.context == context &&
        answers(entry.proposal.width, proposal.width, entry.size.width, entry.fitsAnyLargerRoom) &&
        answers(entry.proposal.height, proposal.height, entry.size.height,
                entry.fitsAnyLargerRoom)) {
      return &entry;
    }
  }
  return nullptr;
}

Size LayoutEngine::measure(const View& view, int context, Proposal proposal) {
  if (const CacheEntry* entry = cached(view, context, proposal)) return entry->size;
  const LayoutNode node = place(view, context, proposal);
  const Size size{node.frame.width, node.frame.height};
  // Texts are entered by `place` itself, with their node.
  if (!isTextual(view)) cache_[&view.node()].push_back({context, proposal, size});
  return size;
}

std::optional<double> LayoutEngine::textBaseline(const LayoutNode& node) {
  if (node.kind == NodeKind::text || node.kind == NodeKind::relativeDate ||
      node.kind == NodeKind::label) {
    return node.frame.y + node.baseline;
  }
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    if (node.kind == NodeKind::background && i == 0) continue;
    if (const auto baseline = textBaseline(node.children[i])) return node.frame.y + *baseline;
  }
  return std::nullopt;
}

// Points from the top of the node's parent to the node's first baseline.
double LayoutEngine::firstBaseline(const LayoutNode& node) {
  return textBaseline(node).value_or(node.frame.maxY());
}

LayoutNode LayoutEngine::layoutRoot(const View& view, Proposal proposal) {
  return layoutInContext(view, 0, proposal);
}

LayoutNode LayoutEngine::layoutInContext(const View& view, int context, Proposal proposal) {
  return place(view, context, proposal);
}

void LayoutEngine::placeAt(LayoutNode& root, Point origin) {
  root.frame.x += origin.x;
  root.frame.y += origin.y;
  for (LayoutNode& child : root.children) placeAt(child, {root.frame.x, root.frame.y});
}

LayoutNode LayoutEngine::place(const View& view, int context, Proposal proposal) {
  const bool textual = isTextual(view);
  if (textual) {
    if (const CacheEntry* entry = cached(view, context, proposal)) return *entry->node;
  }
  bool fitsAnyLargerRoom = false;
  LayoutNode node = placeUncached(view, context, proposal, fitsAnyLargerRoom);
  if (textual) {
    cache_[&view.node()].push_back(
        {context, proposal, {node.frame.width, node.frame.height}, node, fitsAnyLargerRoom});
  }
  return node;
}

LayoutNode LayoutEngine::placeUncached(const View& view, int contextIndex, Proposal proposal,
                                       bool& fitsAnyLargerRoom) {
  const Context& context = contexts_[static_cast<std::size_t>(contextIndex)];
  return std::visit(
      Overloaded{
          [&](const Empty&) { return LayoutNode{.kind = NodeKind::empty}; },
          [&](const Stack& stack) { return placeStack(stack, contextIndex, proposal); },
          [&](const Text& text) {
            return placeText(NodeKind::text, text.content, context, proposal, fitsAnyLargerRoom);
          },
          [&](const RelativeDate& date) {
            return placeRelativeDate(date, &view.node(), context, proposal, fitsAnyLargerRoom);
          },
          [&](const Symbol& symbol) { return placeSymbol(symbol, context); },
          [&](const Label& label) {
            return placeLabel(label, context, proposal, fitsAnyLargerRoom);
          },
          [&](const Spacer& spacer) { return placeSpacer(spacer, context, proposal); },
          [&](const Divider&) { return placeDivider(context, proposal); },
          [&](const Shape& shape) { return placeShape(shape, context, proposal); },
          [&](const LinearGradient& gradient) { return placeGradient(gradient, proposal); },
          [&](const Meter& meter) { return placeMeter(meter, proposal); },
          [&](const Link& link) { return placeLink(link, contextIndex, proposal); },
          [&](const Padding& padding) { return placePadding(padding, contextIndex, proposal); },
          [&](const Frame& frame) { return placeFrame(frame, contextIndex, proposal); },
          [&](const Background& background) {
            return placeBackground(background, contextIndex, proposal);
          },
          [&](const Style& style) { return placeStyle(style, context, proposal); },
          [&](const Annotation& annotation) {
            return placeAnnotation(annotation, contextIndex, proposal);
          },
          [&](const ContainerBackground& container) {
            return placeContainerBackground(container, contextIndex, proposal);
          },
      },
      view.node().value);
}

LayoutNode LayoutEngine::placeText(NodeKind kind, std::string content, const Context& context,
                                   Proposal proposal, bool& fitsAnyLargerRoom) {
  const Font font = resolvedFont(context);
  const TextFit fit =
      fitText(content, font, context.tracking, context.lineLimit, context.minimumScaleFactor,
              offered(proposal.width), offered(proposal.height), measurer_);
  LayoutNode node{.kind = kind, .frame = {0, 0, fit.size.width, fit.size.height}};
  node.text = std::move(content);
  node.font = font;
  node.color = context.color;
  node.scale = fit.scale;
  node.tracking = context.tracking;
  node.baseline = fit.baseline;
  node.lines = fit.lines;
  fitsAnyLargerRoom = fit.fitsAnyLargerRoom;
  return node;
}

LayoutNode LayoutEngine::placeRelativeDate(const RelativeDate& date, const Node* key,
                                           const Context& context, Proposal proposal,
                                           bool& fitsAnyLargerRoom) {
  // The span is formatted once per node: any earlier placement holds it.
  std::string span;
  if (const auto found = cache_.find(key); found != cache_.end() && !found->second.empty()) {
    span = *found->second.front().node->text;
  } else {
    span = relativeSpan(date.date, environment_.now);
  }
  LayoutNode node =
      placeText(NodeKind::relativeDate, std::move(span), context, proposal, fitsAnyLargerRoom);
  node.relativeTo = date.date;
  return node;
}

LayoutNode LayoutEngine::placeLabel(const Label& label, const Context& context, Proposal proposal,
                                    bool& fitsAnyLargerRoom) {
  const Font font = resolvedFont(context);
  const TextMetrics icon = measurer_.measureSymbol(label.symbol, font);
  const double gap = labelGap(font);
  const double iconSpace = icon.width + gap;
  std::optional<double> textWidth;
  if (const std::optional<double> width = offered(proposal.width)) {
    textWidth = std::max(0.0, *width - iconSpace);
  }
  const TextFit fit =
      fitText(label.text, font, context.tracking, context.lineLimit, context.minimumScaleFactor,
              textWidth, offered(proposal.height), measurer_);
  const double textHeight = fit.size.height;
  LayoutNode node{.kind = NodeKind::label,
                  .frame = {0, 0, iconSpace + fit.size.width, std::max(icon.height, textHeight)}};
  // Text and icon share a centre line; the baseline moves down with the text.
  const double textTop = (node.frame.height - textHeight) / 2;
  node.text = label.text;
  node.symbol = label.symbol;
  node.font = font;
  node.color = context.color;
  node.scale = fit.scale;
  node.tracking = context.tracking;
  node.baseline = textTop + fit.baseline;
  node.lines = fit.lines;
  node.symbolHeight = icon.height;
  for (TextLine& line : node.lines) line.y += textTop;
  // Any width at least the label's leaves the text at least its width, unless the sum rounded.
  fitsAnyLargerRoom = fit.fitsAnyLargerRoom && node.frame.width - iconSpace >= fit.size.width;
  return node;
}

double LayoutEngine::labelGap(const Font& font) {
  return std::round(font.size * 0.4);
}

LayoutNode LayoutEngine::placeSymbol(const Symbol& symbol, const Context& context) {
  const Font font = resolvedFont(context);
  const TextMetrics metrics = measurer_.measureSymbol(symbol.name, font);
  LayoutNode node{.kind = NodeKind::symbol, .frame = {0, 0, metrics.width, metrics.height}};
  node.symbol = symbol.name;
  node.font = font;
  node.color = context.color;
  node.baseline = metrics.baseline;
  node.symbolHeight = metrics.height;
  return node;
}

// A spacer grows along its stack's axis only; outside a line it is a square of its minimum.
LayoutNode LayoutEngine::placeSpacer(const Spacer& spacer, const Context& context,
                                     Proposal proposal) {
  const double length = spacer.minLength.value_or(defaultSpacerLength);
  LayoutNode node{.kind = NodeKind::spacer};
  if (context.axis == StackAxis::horizontal) {
    node.frame.width = std::max(length, offered(proposal.width).value_or(length));
  } else if (context.axis == StackAxis::vertical) {
    node.frame.height = std::max(length, offered(proposal.height).value_or(length));
  } else {
    node.frame.width = length;
    node.frame.height = length;
  }
  return node;
}

// A divider is a hairline across its stack's axis.
LayoutNode LayoutEngine::placeDivider(const Context& context, Proposal proposal) {
  LayoutNode node{.kind = NodeKind::divider, .color = palette_.separator};
  if (context.axis == StackAxis::horizontal) {
    node.frame = {0, 0, dividerThickness, offered(proposal.height).value_or(dividerThickness)};
  } else {
    node.frame = {0, 0, offered(proposal.width).value_or(dividerThickness), dividerThickness};
  }
  return node;
}

LayoutNode LayoutEngine::placeShape(const Shape& shape, const Context& context, Proposal proposal) {
  LayoutNode node{.kind = NodeKind::shape,
                  .frame = {0, 0, offered(proposal.width).value_or(idealShapeLength),
                            offered(proposal.height).value_or(idealShapeLength)},
                  .color = shape.fill.value_or(context.color)};
  node.shape = shape.kind;
  node.cornerRadius = shape.cornerRadius;
  return node;
}

LayoutNode LayoutEngine::placeGradient(const LinearGradient& gradient, Proposal proposal) {
  LayoutNode node{.kind = NodeKind::gradient,
                  .frame = {0, 0, offered(proposal.width).value_or(idealShapeLength),
                            offered(proposal.height).value_or(idealShapeLength)}};
  node.stops = gradient.stops;
  node.start = gradient.start;
  node.end = gradient.end;
  return node;
}

// A meter takes the width offered and its own height: a capsule track with the fill over it.
LayoutNode LayoutEngine::placeMeter(const Meter& meter, Proposal proposal) {
  const double w = offered(proposal.width).value_or(idealShapeLength);
  const double h = meter.height;
  LayoutNode node{.kind = NodeKind::meter, .frame = {0, 0, w, h}};
  node.fraction = meter.fraction;
  LayoutNode track{.kind = NodeKind::shape, .frame = {0, 0, w, h}, .color = meter.track};
  track.shape = ShapeKind::capsule;
  LayoutNode fill{.kind = NodeKind::shape,
                  .frame = {0, 0, w * meterFillFactor(meter.fraction), h},
                  .color = meter.fill,
                  .accentable = meter.fillAccentable};
  fill.shape = ShapeKind::capsule;
  node.children.push_back(std::move(track));
  node.children.push_back(std::move(fill));
  return node;
}

LayoutNode LayoutEngine::placeLink(const Link& link, int context, Proposal proposal) {
  LayoutNode child = place(link.content, context, proposal);
  LayoutNode node{.kind = NodeKind::link, .frame = {0, 0, child.frame.width, child.frame.height}};
  node.url = link.destination;
  node.children.push_back(std::move(child));
  return node;
}

LayoutNode LayoutEngine::placePadding(const Padding& padding, int context, Proposal proposal) {
  const EdgeInsets& insets = padding.insets;
  auto inner = [](AxisProposal axis, double inset) {
    if (axis.mode != SizingMode::unspecified) axis.length = std::max(0.0, axis.length - inset);
    return axis;
  };
  LayoutNode child = place(padding.content, context,
                           {inner(proposal.width, insets.leading + insets.trailing),
                            inner(proposal.height, insets.top + insets.bottom)});
  child.frame.x += insets.leading;
  child.frame.y += insets.top;
  LayoutNode node{.kind = NodeKind::padding,
                  .frame = {0, 0, child.frame.width + insets.leading + insets.trailing,
                            child.frame.height + insets.top + insets.bottom}};
  node.children.push_back(std::move(child));
  return node;
}

// A frame answers as the SwiftUI frame does. Fixed lengths are proposed to the content and become
// the frame's own. With bounds, the content is offered the proposal clamped into [min, max] and
// the frame takes the proposal clamped into [min or content, max or content], so an infinite
// maximum takes all that is offered while an unspecified proposal hugs the content.
LayoutNode LayoutEngine::placeFrame(const Frame& frame, int contextIndex, Proposal proposal) {
  const FrameSpec& sizing = frame.sizing;
  auto childProposal = [](AxisProposal axis, std::optional<double> fixed,
                          std::optional<double> minimum, std::optional<double> maximum) {
    if (fixed) return AxisProposal::atMost(std::max(0.0, *fixed));
    if (axis.mode == SizingMode::unspecified) return axis;
    double length = axis.length;
    if (maximum) length = std::min(length, *maximum);
    if (minimum) length = std::max(length, *minimum);
    axis.length = length;
    return axis;
  };
  auto ownLength = [](AxisProposal axis, double content, std::optional<double> fixed,
                      std::optional<double> minimum, std::optional<double> maximum) {
    if (fixed) return std::max(0.0, *fixed);
    if (!minimum && !maximum) return content;
    const double lower = minimum.value_or(std::min(content, maximum.value_or(content)));
    const double upper = std::max(lower, maximum.value_or(std::max(content, lower)));
    const double wanted = axis.mode == SizingMode::unspecified ? content : axis.length;
    return std::clamp(wanted, lower, upper);
  };
  LayoutNode child =
      place(frame.content, contextIndex,
            {childProposal(proposal.width, sizing.width, sizing.minWidth, sizing.maxWidth),
             childProposal(proposal.height, sizing.height, sizing.minHeight, sizing.maxHeight)});
  const double w =
      ownLength(proposal.width, child.frame.width, sizing.width, sizing.minWidth, sizing.maxWidth);
  const double h = ownLength(proposal.height, child.frame.height, sizing.height, sizing.minHeight,
                             sizing.maxHeight);
  child.frame.x += alignOffset(sizing.alignment.horizontal, w, child.frame.width);
  child.frame.y += alignOffset(sizing.alignment.vertical, h, child.frame.height);
  LayoutNode node{.kind = NodeKind::frame, .frame = {0, 0, w, h}};
  node.children.push_back(std::move(child));
  return node;
}

// The content decides the size; what is behind is offered exactly that and aligned within it.
LayoutNode LayoutEngine::placeBackground(const Background& background, int context,
                                         Proposal proposal) {
  LayoutNode content = place(background.content, context, proposal);
  const double w = content.frame.width;
  const double h = content.frame.height;
  LayoutNode behind =
      place(background.behind, context, {AxisProposal::exact(w), AxisProposal::exact(h)});
  behind.frame.x += alignOffset(background.alignment.horizontal, w, behind.frame.width);
  behind.frame.y += alignOffset(background.alignment.vertical, h, behind.frame.height);
  LayoutNode node{.kind = NodeKind::background, .frame = {0, 0, w, h}};
  node.children.push_back(std::move(behind));
  node.children.push_back(std::move(content));
  return node;
}

LayoutNode LayoutEngine::placeStyle(const Style& style, const Context& context, Proposal proposal) {
  Context inner = context;
  if (style.font) inner.font = *style.font;
  if (style.color) inner.color = *style.color;
  if (style.monospacedDigits) inner.monospacedDigits = style.monospacedDigits;
  if (style.lineLimit) inner.lineLimit = style.lineLimit;
  if (style.minimumScaleFactor) inner.minimumScaleFactor = *style.minimumScaleFactor;
  if (style.tracking) inner.tracking = *style.tracking;
  return place(style.content, intern(inner), proposal);
}

LayoutNode LayoutEngine::placeAnnotation(const Annotation& annotation, int context,
                                         Proposal proposal) {
  LayoutNode node = place(annotation.content, context, proposal);
  if (annotation.opacity) node.opacity *= *annotation.opacity;
  if (annotation.widgetURL) {
    widgetURL_ = annotation.widgetURL;  // outer modifiers finish last and win
    if (!node.url) {
      node.url = annotation.widgetURL;
      node.isWidgetURL = true;
    }
  }
  if (annotation.accentable) node.accentable = *annotation.accentable;
  if (annotation.accessibilityLabel) node.accessibilityLabel = annotation.accessibilityLabel;
  if (annotation.accessibilityValue) node.accessibilityValue = annotation.accessibilityValue;
  return node;
}

LayoutNode LayoutEngine::placeContainerBackground(const ContainerBackground& container, int context,
                                                  Proposal proposal) {
  if (!containerBackground_) containerBackground_ = {container.background, context};
  return place(container.content, context, proposal);
}

/*
 * Stacks. A vertical or horizontal stack shares its length along its axis among its children;
 * empty children take no part (no node, no spacing).
 *
 * 1. Spacing: `spacing` (8 points when unspecified) between each pair of adjacent children,
 *    spacers included, is taken off the offered length first.
 * 2. Spacers reserve their minimum length (8 points when unspecified).
 * 3. The other children are offered what is left least flexible first, so that texts and fixed
 *    parts get what they need before bars and flexible frames, which would take anything. A
 *    child's flexibility is its length when offered everything minus its length when offered
 *    nothing. Each child is offered an equal share of what remains among the children still
 *    waiting, and what it takes is subtracted. Ties keep their order.
 * 4. The spacers then share what is left equally, each never below its minimum.
 * 5. With no length offered (ideal size) every child is asked for its ideal size.
 * The stack's length is the sum of its children's lengths plus spacing; its breadth is the
 * largest child's. On the cross axis every child is offered the stack's own cross proposal and
 * aligned by the stack's alignment; first-text-baseline alignment moves each child so that the
 * first baselines line up (a child without text counts its bottom edge as its baseline).
 * A layered stack offers every child the whole proposal, takes the largest size and aligns
 * each child within it.
 *
 * Steps 1 to 4 are `sharedOut` (with `rankedByFlexibility` for the order of step 3), `placeLine`
 * then places the children one after the other at those offers, and `alignAcross` or
 * `alignBaselines` moves each within the stack's breadth.
 */
Proposal LayoutEngine::StackLine::along(AxisProposal main) const {
  return horizontal ? Proposal{main, cross} : Proposal{cross, main};
}

double LayoutEngine::StackLine::length(Size size) const {
  return horizontal ? size.width : size.height;
}

LayoutNode LayoutEngine::placeStack(const Stack& stack, int contextIndex, Proposal proposal) {
  Context inner = contexts_[static_cast<std::size_t>(contextIndex)];
  inner.axis = stack.axis;
  const int childContext = intern(inner);

  std::vector<const View*> children;
  for (const View& child : stack.children) {
    if (!isEmpty(child)) children.push_back(&child);
  }
  if (stack.axis == StackAxis::layered) {
    return placeLayered(stack, children, childContext, proposal);
  }
  return placeLine(stack, children, childContext, proposal);
}

LayoutNode LayoutEngine::placeLayered(const Stack& stack, const std::vector<const View*>& children,
                                      int context, Proposal proposal) {
  LayoutNode node{.kind = NodeKind::zstack};
  for (const View* child : children) node.children.push_back(place(*child, context, proposal));
  for (const LayoutNode& child : node.children) {
    node.frame.width = std::max(node.frame.width, child.frame.width);
    node.frame.height = std::max(node.frame.height, child.frame.height);
  }
  for (LayoutNode& child : node.children) {
    child.frame.x += alignOffset(stack.alignment.horizontal, node.frame.width, child.frame.width);
    child.frame.y += alignOffset(stack.alignment.vertical, node.frame.height, child.frame.height);
  }
  return node;
}

LayoutNode LayoutEngine::placeLine(const Stack& stack, const std::vector<const View*>& children,
                                   int context, Proposal proposal) {
  const bool horizontal = stack.axis == StackAxis::horizontal;
  const StackLine line{.horizontal = horizontal,
                       .cross = horizontal ? proposal.height : proposal.width};
  const std::size_t count = children.size();
  const double spacing = stack.spacing.value_or(defaultSpacing);
  const double totalSpacing = count > 1 ? spacing * static_cast<double>(count - 1) : 0;
  std::vector<AxisProposal> offers(count, AxisProposal::unspecified());
  if (const std::optional<double> length = offered(horizontal ? proposal.width : proposal.height)) {
    offers = sharedOut(children, context, line, *length - totalSpacing);
  }

  LayoutNode node{.kind = line.horizontal ? NodeKind::hstack : NodeKind::vstack};
  double position = 0;
  double breadth = 0;
  for (std::size_t i = 0; i < count; ++i) {
    LayoutNode child = place(*children[i], context, line.along(offers[i]));
    if (line.horizontal) {
      child.frame.x += position;
      position += child.frame.width;
      breadth = std::max(breadth, child.frame.height);
    } else {
      child.frame.y += position;
      position += child.frame.height;
      breadth = std::max(breadth, child.frame.width);
    }
    if (i + 1 < count) position += spacing;
    node.children.push_back(std::move(child));
  }

  if (line.horizontal && stack.alignment.vertical == VerticalAlignment::firstTextBaseline) {
    breadth = alignBaselines(node);
  } else {
    alignAcross(node, stack, line, breadth);
  }
  node.frame = line.horizontal ? Rect{0, 0, position, breadth} : Rect{0, 0, breadth, position};
  return node;
}

// Steps 1 to 4: the offer along the axis to each child, given the `room` left after spacing.
std::vector<AxisProposal> LayoutEngine::sharedOut(const std::vector<const View*>& children,
                                                  int context, const StackLine& line, double room) {
  const AxisProposal nothing = AxisProposal::atMost(0);
  std::vector<AxisProposal> offers(children.size(), AxisProposal::unspecified());
  std::vector<std::size_t> ranked;
  std::size_t spacers = 0;
  for (std::size_t i = 0; i < children.size(); ++i) {
    if (isSpacer(*children[i])) {
      ++spacers;
      room -= line.length(measure(*children[i], context, line.along(nothing)));
    } else {
      ranked.push_back(i);
    }
  }
  ranked = rankedByFlexibility(children, std::move(ranked), context, line);
  for (std::size_t k = 0; k < ranked.size(); ++k) {
    const std::size_t i = ranked[k];
    const double share = std::max(0.0, room / static_cast<double>(ranked.size() - k));
    offers[i] = AxisProposal::atMost(share);
    room -= line.length(measure(*children[i], context, line.along(offers[i])));
  }
  if (spacers > 0) {
    const double extra = std::max(0.0, room) / static_cast<double>(spacers);
    for (std::size_t i = 0; i < children.size(); ++i) {
      if (!isSpacer(*children[i])) continue;
      const double minimum = line.length(measure(*children[i], context, line.along(nothing)));
      offers[i] = AxisProposal::atMost(minimum + extra);
    }
  }
  return offers;
}

// Step 3's order: the children at `ranked`, least flexible first, ties in their order.
std::vector<std::size_t> LayoutEngine::rankedByFlexibility(const std::vector<const View*>& children,
                                                           std::vector<std::size_t> ranked,
                                                           int context, const StackLine& line) {
  std::vector<double> flexibility(children.size(), 0);
  for (std::size_t i : ranked) {
    const double most =
        line.length(measure(*children[i], context, line.along(AxisProposal::atMost(infinite))));
    // A child that takes all it is offered is as flexible as can be whatever it needs at
    // least, and offering it nothing would lay out all it holds at no width.
    if (most == infinite) {
      flexibility[i] = infinite;
      continue;
    }
    const double least =
        line.horizontal && isBareText(*children[i])
            ? 0
            : line.length(measure(*children[i], context, line.along(AxisProposal::atMost(0))));
    const double flexible = most - least;
    // A child that takes all it is offered (its greatest length is infinite) ranks last.
    if (std::isnan(flexible)) {
      flexibility[i] = infinite;
    } else {
      flexibility[i] = flexible;
    }
  }
  std::stable_sort(ranked.begin(), ranked.end(),
                   [&](std::size_t a, std::size_t b) { return flexibility[a] < flexibility[b]; });
  return ranked;
}

// Each child placed within the stack's `breadth` by the stack's alignment.
void LayoutEngine::alignAcross(LayoutNode& node, const Stack& stack, const StackLine& line,
                               double breadth) {
  for (LayoutNode& child : node.children) {
    if (line.horizontal) {
      child.frame.y += alignOffset(stack.alignment.vertical, breadth, child.frame.height);
    } else {
      child.frame.x += alignOffset(stack.alignment.horizontal, breadth, child.frame.width);
    }
  }
}

// Moves a horizontal stack's children so that their first baselines line up; returns the breadth
// they then take.
double LayoutEngine::alignBaselines(LayoutNode& node) {
  double above = 0;
  for (const LayoutNode& child : node.children) above = std::max(above, firstBaseline(child));
  double breadth = 0;
  for (LayoutNode& child : node.children) {
    child.frame.y += above - firstBaseline(child);
    breadth = std::max(breadth, child.frame.maxY());
  }
  return breadth;
}

LayoutNode layout(const View& view, Proposal proposal, Point origin, const Environment& environment,
                  TextMeasurer& measurer) {
  LayoutEngine engine(environment, measurer);
  LayoutNode node = engine.layoutRoot(view, proposal);
  LayoutEngine::placeAt(node, origin);
  return node;
}

}  // namespace korvo::ui
