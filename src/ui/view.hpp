#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/date.hpp"
#include "ui/color.hpp"
#include "ui/font.hpp"
#include "ui/geometry.hpp"

namespace korvo::ui {

struct Node;

// Fixed lengths replace the content's; min/max bound it; the content sits at `alignment`.
struct FrameSpec {
  std::optional<double> width = std::nullopt;      // points, fixed
  std::optional<double> height = std::nullopt;     // points, fixed
  std::optional<double> minWidth = std::nullopt;   // points
  std::optional<double> maxWidth = std::nullopt;   // points; `infinity` takes all the width offered
  std::optional<double> minHeight = std::nullopt;  // points
  std::optional<double> maxHeight =
      std::nullopt;  // points; `infinity` takes all the height offered
  Alignment alignment{};
  friend bool operator==(const FrameSpec&, const FrameSpec&) = default;
};

// A view: an immutable value describing what to draw, never where. Copies share their nodes;
// equality compares the whole tree. Build views with the functions below and chain modifiers:
//   vstack(HorizontalAlignment::leading, 6, {text("Hi").font(Font::headline()), spacer()})
//       .padding(16)
//       .widgetURL("korvo://resources")
class View {
 public:
  View();  // an empty view (takes no space, draws nothing)
  explicit View(Node node);

  const Node& node() const { return *node_; }

  // Modifiers; each returns a new view wrapping this one.
  View padding(double length) const;
  View padding(EdgeInsets insets) const;
  View frame(const FrameSpec& sizing) const;
  View background(View behind, Alignment alignment = Alignment::center()) const;
  View foregroundStyle(Color color) const;  // default colour of texts, symbols and shapes inside
  View font(Font font) const;               // default font of texts and symbols inside
  View monospacedDigit() const;             // tabular digits for every font inside
  View lineLimit(int lines) const;          // at most this many lines per text inside
  View minimumScaleFactor(double factor) const;  // texts inside may shrink to this share (0…1)
  View tracking(double points) const;            // extra space between characters, points
  View opacity(double opacity) const;            // 0…1, multiplies with the colours inside
  View widgetURL(std::string url) const;         // the URL a click on the whole widget opens
  View accentable(bool on = true) const;         // this subtree is the widget's accent group
  View accessibilityLabel(std::string label) const;
  View accessibilityValue(std::string value) const;
  // The view painted filling the whole card when the host supplies the container background;
  // ignored otherwise.
  View containerBackground(View background) const;

  friend bool operator==(const View& a, const View& b);

 private:
  std::shared_ptr<const Node> node_;
};

enum class StackAxis { vertical, horizontal, layered };

// Children along an axis (or on top of each other), aligned on the other axis.
struct Stack {
  StackAxis axis = StackAxis::vertical;
  Alignment alignment{};  // vertical stacks use its horizontal part, horizontal its vertical
  std::optional<double> spacing = std::nullopt;  // points between adjacent children; absent = 8
  std::vector<View> children{};
  friend bool operator==(const Stack&, const Stack&) = default;
};

struct Text {
  std::string content{};  // drawn as plain text, never markup
  friend bool operator==(const Text&, const Text&) = default;
};

// A symbol by its platform name ("memorychip"), drawn from the icon font at the current font size.
struct Symbol {
  std::string name{};
  friend bool operator==(const Symbol&, const Symbol&) = default;
};

// A symbol followed by a text, in the current font and colour.
struct Label {
  std::string text{};
  std::string symbol{};
  friend bool operator==(const Label&, const Label&) = default;
};

// Flexible space along the enclosing stack's axis.
struct Spacer {
  std::optional<double> minLength = std::nullopt;  // points; absent = 8
  friend bool operator==(const Spacer&, const Spacer&) = default;
};

// A hairline across the enclosing stack's axis (vertical in a horizontal stack).
struct Divider {
  friend bool operator==(const Divider&, const Divider&) = default;
};

enum class ShapeKind { rectangle, roundedRectangle, capsule, circle };

// A filled shape taking the space offered.
struct Shape {
  ShapeKind kind = ShapeKind::rectangle;
  double cornerRadius = 0;                   // points, rounded rectangles only
  std::optional<Color> fill = std::nullopt;  // absent = the current foreground colour
  friend bool operator==(const Shape&, const Shape&) = default;
};

struct GradientStop {
  Color color{};        // opacity included in its alpha
  double location = 0;  // 0…1 along the gradient line
  friend bool operator==(const GradientStop&, const GradientStop&) = default;
};

// A linear gradient filling the space offered.
struct LinearGradient {
  std::vector<GradientStop> stops{};
  UnitPoint start = UnitPoint::top();
  UnitPoint end = UnitPoint::bottom();
  friend bool operator==(const LinearGradient&, const LinearGradient&) = default;
};

// Content that opens `destination` when clicked (wins over the widget URL).
struct Link {
  std::string destination{};
  View content{};
  friend bool operator==(const Link&, const Link&) = default;
};

// The span from `date` to the environment's "now", as a live text ("5 min").
struct RelativeDate {
  Date date{};
  friend bool operator==(const RelativeDate&, const RelativeDate&) = default;
};

// A bar of the full offered width showing `fraction`: a track capsule and a fill capsule of
// width × clamp(fraction, 0, 1) (NaN and infinities fill nothing).
struct Meter {
  double fraction = 0;  // as given, unclamped
  double height = 6;    // points
  Color track{};
  Color fill{};
  bool fillAccentable = true;  // the fill belongs to the accent group
  friend bool operator==(const Meter&, const Meter&) = default;
};

struct Padding {
  EdgeInsets insets{};
  View content{};
  friend bool operator==(const Padding&, const Padding&) = default;
};

struct Frame {
  FrameSpec sizing{};
  View content{};
  friend bool operator==(const Frame&, const Frame&) = default;
};

// `behind` gets exactly the content's size and is drawn first.
struct Background {
  View behind{};
  Alignment alignment{};
  View content{};
  friend bool operator==(const Background&, const Background&) = default;
};

// Defaults inherited by the texts, symbols and shapes inside; absent fields inherit further.
struct Style {
  std::optional<Font> font = std::nullopt;
  std::optional<Color> color = std::nullopt;
  std::optional<bool> monospacedDigits = std::nullopt;
  std::optional<int> lineLimit = std::nullopt;
  std::optional<double> minimumScaleFactor = std::nullopt;  // 0…1
  std::optional<double> tracking = std::nullopt;            // points
  View content{};
  friend bool operator==(const Style&, const Style&) = default;
};

// Layout-neutral facts about the content: opacity, URL, accent group, accessibility.
struct Annotation {
  std::optional<double> opacity = std::nullopt;  // 0…1
  std::optional<std::string> widgetURL = std::nullopt;
  std::optional<bool> accentable = std::nullopt;
  std::optional<std::string> accessibilityLabel = std::nullopt;
  std::optional<std::string> accessibilityValue = std::nullopt;
  View content{};
  friend bool operator==(const Annotation&, const Annotation&) = default;
};

struct ContainerBackground {
  View background{};
  View content{};
  friend bool operator==(const ContainerBackground&, const ContainerBackground&) = default;
};

struct Empty {
  friend bool operator==(const Empty&, const Empty&) = default;
};

using NodeValue = std::variant<Empty, Stack, Text, Symbol, Label, Spacer, Divider, Shape,
                               LinearGradient, Link, RelativeDate, Meter, Padding, Frame,
                               Background, Style, Annotation, ContainerBackground>;

struct Node {
  NodeValue value;
  friend bool operator==(const Node&, const Node&) = default;
};

// Builders.
View vstack(HorizontalAlignment alignment, std::optional<double> spacing,
            std::vector<View> children);
View vstack(std::vector<View> children);  // centred, default spacing
View hstack(VerticalAlignment alignment, std::optional<double> spacing, std::vector<View> children);
View hstack(std::vector<View> children);  // centred, default spacing
View zstack(Alignment alignment, std::vector<View> children);
View zstack(std::vector<View> children);  // centred
View text(std::string content);
View symbol(std::string name);
View label(std::string text, std::string symbolName);
View spacer(std::optional<double> minLength = std::nullopt);
View divider();
View shape(ShapeKind kind, std::optional<Color> fill = std::nullopt, double cornerRadius = 0);
View rectangle(std::optional<Color> fill = std::nullopt);
View capsule(std::optional<Color> fill = std::nullopt);
View circle(std::optional<Color> fill = std::nullopt);
View roundedRectangle(double cornerRadius, std::optional<Color> fill = std::nullopt);
View colorFill(Color color);  // a rectangle of one colour filling the space offered
View linearGradient(std::vector<GradientStop> stops, UnitPoint start, UnitPoint end);
View link(std::string destination, View content);
View relativeDate(Date date);
View meter(double fraction, Color track, Color fill, bool fillAccentable = true);

}  // namespace korvo::ui
