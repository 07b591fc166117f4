#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "dashboard/figure_grid.hpp"
#include "dashboard/history_graph.hpp"
#include "gtk/widget_card.hpp"
#include "sampling/display_mode.hpp"
#include "sampling/system_sampler.hpp"

namespace korvo {

// The dashboard's Mem tab: the memory reading with its breakdown, swap and pressure, the CPU
// load from the sampler's CPU reading, the CPU temperature with its sensor, and the headline
// figure in the chosen display mode.
class MemoryPage {
 public:
  explicit MemoryPage(const gtk::AppearanceWatch& appearance);
  GtkWidget* widget() const { return page_; }
  // Takes a new reading with `mode` as the headline's form.
  void refresh(DisplayMode mode);
  // The unit the page writes temperatures in, from the next refresh on.
  void setTemperatureUnit(TemperatureUnit unit) { unit_ = unit; }

 private:
  GtkWidget* page_;
  GtkWidget* headline_;
  std::string headlineMarkup_;
  FigureGrid figures_;
  std::unique_ptr<WidgetCard> card_;
  SystemSampler sampler_;
  HistoryGraphs graphs_;
  TemperatureUnit unit_ = TemperatureUnit::celsius;
};

}  // namespace korvo
