#pragma once

#include <string>
#include <vector>

#include "ui/hit_test.hpp"
#include "ui/widget_layout.hpp"

using GtkWidget = struct _GtkWidget;

namespace korvo::desktop {

// The tree's accessibility labels and values read as one sentence list:
// "Memory used: 42 percent. Pressure: Normal". A label without a value stands alone.
std::string accessibleDescription(const std::vector<ui::AccessibilityElement>& elements);

// Gives the window's accessible object the widget's display name and the description of what
// it currently shows, so screen readers announce the card as one object.
void describeToAssistiveTechnologies(GtkWidget* window, const std::string& displayName,
                                     const ui::WidgetLayout& widget);

}  // namespace korvo::desktop
