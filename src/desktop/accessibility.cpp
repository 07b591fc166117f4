#include "desktop/accessibility.hpp"

#include <gtk/gtk.h>

namespace korvo::desktop {

std::string accessibleDescription(const std::vector<ui::AccessibilityElement>& elements) {
  std::string description;
  for (const auto& element : elements) {
    if (element.label.empty() && element.value.empty()) continue;
    if (!description.empty()) description += ". ";
    description += element.label;
    if (!element.label.empty() && !element.value.empty()) description += ": ";
    description += element.value;
  }
  return description;
}

void describeToAssistiveTechnologies(GtkWidget* window, const std::string& displayName,
                                     const ui::WidgetLayout& widget) {
  AtkObject* accessible = gtk_widget_get_accessible(window);
  if (accessible == nullptr) return;
  atk_object_set_name(accessible, displayName.c_str());
  atk_object_set_description(accessible,
                             accessibleDescription(ui::accessibilityElements(widget)).c_str());
}

}  // namespace korvo::desktop
