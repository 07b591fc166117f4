#pragma once

#include <string>

#include "ui/environment.hpp"
#include "ui/layout_node.hpp"
#include "ui/text_measurer.hpp"
#include "ui/view.hpp"

namespace korvo::ui {

// Radius of the card's rounded corners, points.
inline constexpr double widgetCornerRadius = 20;
// Margins between the card's edge and the content when the host supplies the container
// background, points.
inline constexpr double widgetContentMargin = 16;

// A widget laid out in its card.
struct WidgetLayout {
  std::string kind{};  // the widget kind, e.g. "com.tessmoor.Korvo.memory"
  WidgetFamily family = WidgetFamily::systemSmall;
  Size size{};        // points, the family's size
  std::string url{};  // the widget URL, empty when the view sets none
  // Kind "container", frame = the card. When the host supplies the container background its
  // children are the container background (filling the card) then the content (inset by the
  // margins); on the legacy path only the content, which fills the card.
  LayoutNode root{};
  friend bool operator==(const WidgetLayout&, const WidgetLayout&) = default;
};

// Lays `view` out in a card of `environment.family`'s size, then snaps every frame to the pixel
// grid of `scale` (device pixels per point). In accented rendering the colours are resolved
// here: the accent group takes `environment.accentColor`, everything else white, each at its
// own alpha.
WidgetLayout layoutWidget(std::string kind, const View& view, const Environment& environment,
                          TextMeasurer& measurer, double scale = 2);

}  // namespace korvo::ui
