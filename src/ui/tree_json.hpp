#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "ui/layout_node.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::ui {

// One laid-out node in the tool-facing JSON form: kind, frame, then text, symbol, font, color
// (#RRGGBBAA), opacity (when not 1), url, accentable (when set), accessibilityLabel,
// accessibilityValue, fraction, children (when any) where they apply.
nlohmann::ordered_json nodeJSON(const LayoutNode& node);

// {"widget", "family", "width", "height", "url", "tree"}.
nlohmann::ordered_json widgetJSON(const WidgetLayout& widget);

// widgetJSON indented by two spaces, ending in a newline.
std::string widgetJSONText(const WidgetLayout& widget);

}  // namespace korvo::ui
