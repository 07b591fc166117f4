#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/core/placement_edit.hpp"

namespace korvo::desktop {

// What a card's menu shows: the card's family and corner, and the widgets not yet shown.
struct CardMenuContent {
  ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
  std::vector<ui::WidgetFamily> families{};  // those the card's kind offers
  std::optional<ScreenAnchor> anchor{};      // none for a card at a position
  struct Addable {
    std::string kind;  // full kind
    std::string name;  // "AI Usage"
  };
  std::vector<Addable> addable{};
};

// What the menu's choices do. Each runs once the menu has closed, from the main loop.
struct CardMenuActions {
  std::function<void(const PlacementEdit&)> edit;
  std::function<void()> openDashboard;
  std::function<void()> arrangeWidgets;
};

// The card's menu: Small / Medium, Move to ▸ corners, Add widget ▸ the widgets not shown,
// Remove, Open dashboard and Arrange widgets…, with mnemonics. The caller destroys it.
GtkWidget* newCardMenu(const CardMenuContent& content, CardMenuActions actions);

}  // namespace korvo::desktop
