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

void translate(LayoutNode& node, double dx, double dy) {
  node.frame.x += dx;
  node.frame.y += dy;
  for (LayoutNode& child : node.children) translate(child, dx, dy);
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

LayoutEngine::Measured LayoutEngine::measure(const View& view, int context, Proposal proposal) {
  auto& entries = cache_[&view.node()];
  for (const CacheEntry& entry : entries) {
    if (entry.context == context && entry.proposal == proposal) return entry.measured;
  }
  LayoutNode node = place(view, context, proposal);
  Measured measured{{node.frame.width, node.frame.height}, firstBaseline(node)};
  entries.push_back({context, proposal, measured});
  return measured;
}

std::optional<double> LayoutEngine::textBaseline(const LayoutNode& node) {
  if (node.kind == NodeKind::text || node.kind == NodeKind::relativeDate ||
      node.kind == NodeKind::label) {
    return node.frame.y + node.baseline;
  }
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    if (node.kind == NodeKind::background && i == 0) continue;
    if (const auto baseline = textBaseline(node.children[i])) return baseline;
  }
  return std::nullopt;
}

double LayoutEngine::firstBaseline(const LayoutNode& node) {
  return textBaseline(node).value_or(node.frame.maxY());
}

LayoutNode LayoutEngine::layoutRoot(const View& view, Proposal proposal, Point origin) {
  return layoutInContext(view, 0, proposal, origin);
}

LayoutNode LayoutEngine::layoutInContext(const View& view, int context, Proposal proposal,
                                         Point origin) {
  LayoutNode node = place(view, context, proposal);
  translate(node, origin.x, origin.y);
  return node;
}

// Every node is laid out with its top-leading corner at (0, 0); parents translate children.
LayoutNode LayoutEngine::place(const View& view, int contextIndex, Proposal proposal) {
  // Texts are fitted once per context and proposal: fitting asks the measurer many times and a
  // relative date formats its text, while stacks place each child repeatedly.
  const Node* key = &view.node();
  const bool textual = std::holds_alternative<Text>(key->value) ||
                       std::holds_alternative<RelativeDate>(key->value) ||
                       std::holds_alternative<Label>(key->value);
  if (textual) {
    for (const PlacedText& placed : placedTexts_[key]) {
      if (placed.context == contextIndex && placed.proposal == proposal) return placed.node;
    }
  }
  LayoutNode node = placeUncached(view, contextIndex, proposal);
  if (textual) placedTexts_[key].push_back({contextIndex, proposal, node});
  return node;
}

const std::string& LayoutEngine::relativeText(const Node* node, Date date) {
  auto found = relativeTexts_.find(node);
  if (found == relativeTexts_.end()) {
    found = relativeTexts_.emplace(node, relativeSpan(date, environment_.now)).first;
  }
  return found->second;
}

LayoutNode LayoutEngine::placeUncached(const View& view, int contextIndex, Proposal proposal) {
  const Context context = contexts_[static_cast<std::size_t>(contextIndex)];
  const std::optional<double> width = offered(proposal.width);
  const std::optional<double> height = offered(proposal.height);

  return std::visit(
      Overloaded{
          [&](const Empty&) { return LayoutNode{.kind = NodeKind::empty}; },
          [&](const Stack& stack) { return placeStack(stack, contextIndex, proposal); },
          [&](const Text& text) {
            return placeText(NodeKind::text, text.content, context, width, height);
          },
          [&](const RelativeDate& date) {
            LayoutNode node =
                placeText(NodeKind::relativeDate, relativeText(&view.node(), date.date), context,
                          width, height);
            node.relativeTo = date.date;
            return node;
          },
          [&](const Symbol& symbol) {
            const Font font = resolvedFont(context);
            const TextMetrics metrics = measurer_.measureSymbol(symbol.name, font);
            LayoutNode node{.kind = NodeKind::symbol,
                            .frame = {0, 0, metrics.width, metrics.height}};
            node.symbol = symbol.name;
            node.font = font;
            node.color = context.color;
            node.baseline = metrics.baseline;
            node.symbolHeight = metrics.height;
            return node;
          },
          [&](const Label& label) { return placeLabel(label, context, width, height); },
          [&](const Spacer& spacer) {
            const double length = spacer.minLength.value_or(defaultSpacerLength);
            LayoutNode node{.kind = NodeKind::spacer};
            if (context.axis == StackAxis::horizontal) {
              node.frame.width = std::max(length, width.value_or(length));
            } else if (context.axis == StackAxis::vertical) {
              node.frame.height = std::max(length, height.value_or(length));
            } else {
              node.frame.width = length;
              node.frame.height = length;
            }
            return node;
          },
          [&](const Divider&) {
            LayoutNode node{.kind = NodeKind::divider, .color = palette_.separator};
            if (context.axis == StackAxis::horizontal) {
              node.frame = {0, 0, dividerThickness, height.value_or(dividerThickness)};
            } else {
              node.frame = {0, 0, width.value_or(dividerThickness), dividerThickness};
            }
            return node;
          },
          [&](const Shape& shape) {
            LayoutNode node{.kind = NodeKind::shape,
                            .frame = {0, 0, width.value_or(idealShapeLength),
                                      height.value_or(idealShapeLength)},
                            .color = shape.fill.value_or(context.color)};
            node.shape = shape.kind;
            node.cornerRadius = shape.cornerRadius;
            return node;
          },
          [&](const LinearGradient& gradient) {
            LayoutNode node{.kind = NodeKind::gradient,
                            .frame = {0, 0, width.value_or(idealShapeLength),
                                      height.value_or(idealShapeLength)}};
            node.stops = gradient.stops;
            node.start = gradient.start;
            node.end = gradient.end;
            return node;
          },
          [&](const Meter& meter) { return placeMeter(meter, width); },
          [&](const Link& link) {
            LayoutNode child = place(link.content, contextIndex, proposal);
            LayoutNode node{.kind = NodeKind::link,
                            .frame = {0, 0, child.frame.width, child.frame.height}};
            node.url = link.destination;
            node.children.push_back(std::move(child));
            return node;
          },
          [&](const Padding& padding) {
            const EdgeInsets& insets = padding.insets;
            auto inner = [](AxisProposal axis, double inset) {
              if (axis.mode != SizingMode::unspecified)
                axis.length = std::max(0.0, axis.length - inset);
              return axis;
            };
            LayoutNode child = place(padding.content, contextIndex,
                                     {inner(proposal.width, insets.leading + insets.trailing),
                                      inner(proposal.height, insets.top + insets.bottom)});
            translate(child, insets.leading, insets.top);
            LayoutNode node{.kind = NodeKind::padding,
                            .frame = {0, 0, child.frame.width + insets.leading + insets.trailing,
                                      child.frame.height + insets.top + insets.bottom}};
            node.children.push_back(std::move(child));
            return node;
          },
          [&](const Frame& frame) { return placeFrame(frame, contextIndex, proposal); },
          [&](const Background& background) {
            LayoutNode content = place(background.content, contextIndex, proposal);
            const double w = content.frame.width;
            const double h = content.frame.height;
            LayoutNode behind = place(background.behind, contextIndex,
                                      {AxisProposal::exact(w), AxisProposal::exact(h)});
            translate(behind, alignOffset(background.alignment.horizontal, w, behind.frame.width),
                      alignOffset(background.alignment.vertical, h, behind.frame.height));
            LayoutNode node{.kind = NodeKind::background, .frame = {0, 0, w, h}};
            node.children.push_back(std::move(behind));
            node.children.push_back(std::move(content));
            return node;
          },
          [&](const Style& style) {
            Context inner = context;
            if (style.font) inner.font = *style.font;
            if (style.color) inner.color = *style.color;
            if (style.monospacedDigits) inner.monospacedDigits = style.monospacedDigits;
            if (style.lineLimit) inner.lineLimit = style.lineLimit;
            if (style.minimumScaleFactor) inner.minimumScaleFactor = *style.minimumScaleFactor;
            if (style.tracking) inner.tracking = *style.tracking;
            return place(style.content, intern(inner), proposal);
          },
          [&](const Annotation& annotation) {
            LayoutNode node = place(annotation.content, contextIndex, proposal);
            if (annotation.opacity) node.opacity *= *annotation.opacity;
            if (annotation.widgetURL) {
              widgetURL_ = annotation.widgetURL;  // outer modifiers finish last and win
              if (!node.url) {
                node.url = annotation.widgetURL;
                node.isWidgetURL = true;
              }
            }
            if (annotation.accentable) node.accentable = *annotation.accentable;
            if (annotation.accessibilityLabel)
              node.accessibilityLabel = annotation.accessibilityLabel;
            if (annotation.accessibilityValue)
              node.accessibilityValue = annotation.accessibilityValue;
            return node;
          },
          [&](const ContainerBackground& container) {
            if (!containerBackground_) containerBackground_ = {container.background, contextIndex};
            return place(container.content, contextIndex, proposal);
          },
      },
      view.node().value);
}

LayoutNode LayoutEngine::placeText(NodeKind kind, const std::string& content,
                                   const Context& context, std::optional<double> width,
                                   std::optional<double> height) {
  const Font font = resolvedFont(context);
  const TextFit fit = fitText(content, font, context.tracking, context.lineLimit,
                              context.minimumScaleFactor, width, height, measurer_);
  LayoutNode node{.kind = kind, .frame = {0, 0, fit.size.width, fit.size.height}};
  node.text = content;
  node.font = font;
  node.color = context.color;
  node.scale = fit.scale;
  node.tracking = context.tracking;
  node.baseline = fit.baseline;
  node.lines = fit.lines;
  return node;
}

LayoutNode LayoutEngine::placeLabel(const Label& label, const Context& context,
                                    std::optional<double> width, std::optional<double> height) {
  const Font font = resolvedFont(context);
  const TextMetrics icon = measurer_.measureSymbol(label.symbol, font);
  const double gap = labelGap(font);
  const double iconSpace = icon.width + gap;
  std::optional<double> textWidth;
  if (width) textWidth = std::max(0.0, *width - iconSpace);
  const TextFit fit = fitText(label.text, font, context.tracking, context.lineLimit,
                              context.minimumScaleFactor, textWidth, height, measurer_);
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
  return node;
}

double LayoutEngine::labelGap(const Font& font) {
  return std::round(font.size * 0.4);
}

LayoutNode LayoutEngine::placeMeter(const Meter& meter, std::optional<double> width) {
  const double w = width.value_or(idealShapeLength);
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
  translate(child, alignOffset(sizing.alignment.horizontal, w, child.frame.width),
            alignOffset(sizing.alignment.vertical, h, child.frame.height));
  LayoutNode node{.kind = NodeKind::frame, .frame = {0, 0, w, h}};
  node.children.push_back(std::move(child));
  return node;
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
 */
LayoutNode LayoutEngine::placeStack(const Stack& stack, int contextIndex, Proposal proposal) {
  Context inner = contexts_[static_cast<std::size_t>(contextIndex)];
  inner.axis = stack.axis;
  const int childContext = intern(inner);

  std::vector<const View*> children;
  for (const View& child : stack.children) {
    if (!isEmpty(child)) children.push_back(&child);
  }
  const NodeKind kind = stack.axis == StackAxis::vertical     ? NodeKind::vstack
                        : stack.axis == StackAxis::horizontal ? NodeKind::hstack
                                                              : NodeKind::zstack;
  LayoutNode node{.kind = kind};

  if (stack.axis == StackAxis::layered) {
    for (const View* child : children) {
      node.children.push_back(place(*child, childContext, proposal));
    }
    for (const LayoutNode& child : node.children) {
      node.frame.width = std::max(node.frame.width, child.frame.width);
      node.frame.height = std::max(node.frame.height, child.frame.height);
    }
    for (LayoutNode& child : node.children) {
      translate(child, alignOffset(stack.alignment.horizontal, node.frame.width, child.frame.width),
                alignOffset(stack.alignment.vertical, node.frame.height, child.frame.height));
    }
    return node;
  }

  const bool horizontal = stack.axis == StackAxis::horizontal;
  const AxisProposal mainAxis = horizontal ? proposal.width : proposal.height;
  const AxisProposal crossAxis = horizontal ? proposal.height : proposal.width;
  auto makeProposal = [&](AxisProposal main) {
    return horizontal ? Proposal{main, crossAxis} : Proposal{crossAxis, main};
  };
  auto mainLength = [&](Size size) { return horizontal ? size.width : size.height; };

  const std::size_t count = children.size();
  const double spacing = stack.spacing.value_or(defaultSpacing);
  const double totalSpacing = count > 1 ? spacing * static_cast<double>(count - 1) : 0;
  std::vector<AxisProposal> offers(count, AxisProposal::unspecified());

  if (const std::optional<double> length = offered(mainAxis)) {
    double remaining = *length - totalSpacing;
    std::vector<std::size_t> order;
    std::size_t spacers = 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (isSpacer(*children[i])) {
        ++spacers;
        remaining -= mainLength(
            measure(*children[i], childContext, makeProposal(AxisProposal::atMost(0))).size);
      } else {
        order.push_back(i);
      }
    }
    std::vector<double> flexibility(count, 0);
    for (std::size_t i : order) {
      const double most = mainLength(
          measure(*children[i], childContext, makeProposal(AxisProposal::atMost(infinite))).size);
      // A child that takes all it is offered is as flexible as can be whatever it needs at
      // least, and offering it nothing would lay out all it holds at no width.
      if (most == infinite) {
        flexibility[i] = infinite;
        continue;
      }
      const double least = horizontal && isBareText(*children[i])
                               ? 0
                               : mainLength(measure(*children[i], childContext,
                                                    makeProposal(AxisProposal::atMost(0)))
                                                .size);
      const double flexible = most - least;
      flexibility[i] = std::isnan(flexible) ? infinite : flexible;
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return flexibility[a] < flexibility[b]; });
    for (std::size_t k = 0; k < order.size(); ++k) {
      const double share = std::max(0.0, remaining / static_cast<double>(order.size() - k));
      offers[order[k]] = AxisProposal::atMost(share);
      remaining -= mainLength(
          measure(*children[order[k]], childContext, makeProposal(offers[order[k]])).size);
    }
    if (spacers > 0) {
      const double extra = std::max(0.0, remaining) / static_cast<double>(spacers);
      for (std::size_t i = 0; i < count; ++i) {
        if (!isSpacer(*children[i])) continue;
        const double minimum = mainLength(
            measure(*children[i], childContext, makeProposal(AxisProposal::atMost(0))).size);
        offers[i] = AxisProposal::atMost(minimum + extra);
      }
    }
  }

  double position = 0;
  double breadth = 0;
  for (std::size_t i = 0; i < count; ++i) {
    LayoutNode child = place(*children[i], childContext, makeProposal(offers[i]));
    if (horizontal) {
      translate(child, position, 0);
      position += child.frame.width;
      breadth = std::max(breadth, child.frame.height);
    } else {
      translate(child, 0, position);
      position += child.frame.height;
      breadth = std::max(breadth, child.frame.width);
    }
    if (i + 1 < count) position += spacing;
    node.children.push_back(std::move(child));
  }

  if (horizontal && stack.alignment.vertical == VerticalAlignment::firstTextBaseline) {
    double above = 0;
    for (const LayoutNode& child : node.children) above = std::max(above, firstBaseline(child));
    breadth = 0;
    for (LayoutNode& child : node.children) {
      translate(child, 0, above - firstBaseline(child));
      breadth = std::max(breadth, child.frame.maxY());
    }
  } else {
    for (LayoutNode& child : node.children) {
      if (horizontal) {
        translate(child, 0, alignOffset(stack.alignment.vertical, breadth, child.frame.height));
      } else {
        translate(child, alignOffset(stack.alignment.horizontal, breadth, child.frame.width), 0);
      }
    }
  }
  node.frame = horizontal ? Rect{0, 0, position, breadth} : Rect{0, 0, breadth, position};
  return node;
}

LayoutNode layout(const View& view, Proposal proposal, Point origin, const Environment& environment,
                  TextMeasurer& measurer) {
  LayoutEngine engine(environment, measurer);
  return engine.layoutRoot(view, proposal, origin);
}

}  // namespace korvo::ui
