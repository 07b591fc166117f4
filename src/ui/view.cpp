#include "ui/view.hpp"

#include <utility>

namespace korvo::ui {

View::View() : node_(std::make_shared<const Node>(Node{Empty{}})) {}

View::View(Node node) : node_(std::make_shared<const Node>(std::move(node))) {}

bool operator==(const View& a, const View& b) {
  return a.node_ == b.node_ || *a.node_ == *b.node_;
}

View View::padding(double length) const {
  return padding(EdgeInsets::all(length));
}

View View::padding(EdgeInsets insets) const {
  return View(Node{Padding{insets, *this}});
}

View View::frame(const FrameSpec& sizing) const {
  return View(Node{Frame{sizing, *this}});
}

View View::background(View behind, Alignment alignment) const {
  return View(Node{Background{std::move(behind), alignment, *this}});
}

View View::foregroundStyle(Color color) const {
  Style style{.color = color, .content = *this};
  return View(Node{std::move(style)});
}

View View::font(Font font) const {
  Style style{.font = font, .content = *this};
  return View(Node{std::move(style)});
}

View View::monospacedDigit() const {
  Style style{.monospacedDigits = true, .content = *this};
  return View(Node{std::move(style)});
}

View View::lineLimit(int lines) const {
  Style style{.lineLimit = lines, .content = *this};
  return View(Node{std::move(style)});
}

View View::minimumScaleFactor(double factor) const {
  Style style{.minimumScaleFactor = factor, .content = *this};
  return View(Node{std::move(style)});
}

View View::tracking(double points) const {
  Style style{.tracking = points, .content = *this};
  return View(Node{std::move(style)});
}

View View::opacity(double opacity) const {
  Annotation annotation{.opacity = opacity, .content = *this};
  return View(Node{std::move(annotation)});
}

View View::widgetURL(std::string url) const {
  Annotation annotation{.widgetURL = std::move(url), .content = *this};
  return View(Node{std::move(annotation)});
}

View View::accentable(bool on) const {
  Annotation annotation{.accentable = on, .content = *this};
  return View(Node{std::move(annotation)});
}

View View::accessibilityLabel(std::string label) const {
  Annotation annotation{.accessibilityLabel = std::move(label), .content = *this};
  return View(Node{std::move(annotation)});
}

View View::accessibilityValue(std::string value) const {
  Annotation annotation{.accessibilityValue = std::move(value), .content = *this};
  return View(Node{std::move(annotation)});
}

View View::containerBackground(View background) const {
  return View(Node{ContainerBackground{std::move(background), *this}});
}

View vstack(HorizontalAlignment alignment, std::optional<double> spacing,
            std::vector<View> children) {
  return View(Node{Stack{
      StackAxis::vertical, {alignment, VerticalAlignment::center}, spacing, std::move(children)}});
}

View vstack(std::vector<View> children) {
  return vstack(HorizontalAlignment::center, std::nullopt, std::move(children));
}

View hstack(VerticalAlignment alignment, std::optional<double> spacing,
            std::vector<View> children) {
  return View(Node{Stack{StackAxis::horizontal,
                         {HorizontalAlignment::center, alignment},
                         spacing,
                         std::move(children)}});
}

View hstack(std::vector<View> children) {
  return hstack(VerticalAlignment::center, std::nullopt, std::move(children));
}

View zstack(Alignment alignment, std::vector<View> children) {
  return View(Node{Stack{StackAxis::layered, alignment, std::nullopt, std::move(children)}});
}

View zstack(std::vector<View> children) {
  return zstack(Alignment::center(), std::move(children));
}

View text(std::string content) {
  return View(Node{Text{std::move(content)}});
}

View symbol(std::string name) {
  return View(Node{Symbol{std::move(name)}});
}

View label(std::string text, std::string symbolName) {
  return View(Node{Label{std::move(text), std::move(symbolName)}});
}

View spacer(std::optional<double> minLength) {
  return View(Node{Spacer{minLength}});
}

View divider() {
  return View(Node{Divider{}});
}

View shape(ShapeKind kind, std::optional<Color> fill, double cornerRadius) {
  return View(Node{Shape{kind, cornerRadius, fill}});
}

View rectangle(std::optional<Color> fill) {
  return shape(ShapeKind::rectangle, fill);
}

View capsule(std::optional<Color> fill) {
  return shape(ShapeKind::capsule, fill);
}

View circle(std::optional<Color> fill) {
  return shape(ShapeKind::circle, fill);
}

View roundedRectangle(double cornerRadius, std::optional<Color> fill) {
  return shape(ShapeKind::roundedRectangle, fill, cornerRadius);
}

View colorFill(Color color) {
  return rectangle(color);
}

View linearGradient(std::vector<GradientStop> stops, UnitPoint start, UnitPoint end) {
  return View(Node{LinearGradient{std::move(stops), start, end}});
}

View link(std::string destination, View content) {
  return View(Node{Link{std::move(destination), std::move(content)}});
}

View relativeDate(Date date) {
  return View(Node{RelativeDate{date}});
}

View meter(double fraction, Color track, Color fill, bool fillAccentable) {
  return View(Node{Meter{fraction, 6, track, fill, fillAccentable}});
}

}  // namespace korvo::ui
