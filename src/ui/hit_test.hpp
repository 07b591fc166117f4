#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/date.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::ui {

// The URL a click at `point` (points, widget coordinates) opens: the innermost link containing
// it, else the widget URL; nothing outside the card or when neither exists.
std::optional<std::string> urlAt(const WidgetLayout& widget, Point point);

// The dates of the live relative texts in the widget, in drawing order: the host repaints when
// the text of one of them would change.
std::vector<Date> liveRelativeDates(const WidgetLayout& widget);

}  // namespace korvo::ui
