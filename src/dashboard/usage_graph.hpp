#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <vector>

#include "dashboard/graph_view.hpp"
#include "shared/widget_snapshot.hpp"

namespace korvo {

// The AI tab's graphs: each enabled provider's windows, their use since the window began from
// korvo's history, with the forecast to the reset and the line at 100 %. A panel named "Usage
// graphs" for screen readers.
class UsageGraphs {
 public:
  explicit UsageGraphs(const gtk::AppearanceWatch& appearance);
  GtkWidget* widget() const { return box_; }
  // Draws the windows `snapshot` holds (none without one), as the history has them now.
  void show(const std::optional<WidgetSnapshot>& snapshot);

 private:
  const gtk::AppearanceWatch& appearance_;
  GtkWidget* box_;
  GtkWidget* graphs_;
  std::vector<std::unique_ptr<GraphView>> views_;
};

}  // namespace korvo
