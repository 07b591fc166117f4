#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace korvo {

// One "name  value" row of a dashboard page's figures.
struct Figure {
  std::string name;
  std::string value;
  bool operator==(const Figure&) const = default;
};

// A two-column grid of figures that a page shows again every second. Rows with the same names
// keep their labels and only change texts that changed, so a screen reader's focus stays put
// and nothing is announced twice.
class FigureGrid {
 public:
  FigureGrid();
  GtkWidget* widget() const { return grid_; }
  void show(const std::vector<Figure>& figures);

 private:
  GtkWidget* grid_;
  std::vector<Figure> shown_;
  std::vector<GtkWidget*> values_;  // the value label of each row shown
};

}  // namespace korvo
