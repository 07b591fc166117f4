#pragma once

#include <string>

#include "ui/layout_node.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::ui {

// The laid-out tree as indented lines, two spaces per level, for reading and diffing:
//   vstack (16,16 138x138)
//     text "MEMORY" 10 semibold #00000080
std::string treeOutline(const LayoutNode& node);
std::string treeOutline(const WidgetLayout& widget);

}  // namespace korvo::ui
