#include "dashboard/figure_grid.hpp"

#include <algorithm>

#include "dashboard/dashboard_widgets.hpp"

namespace korvo {

FigureGrid::FigureGrid() : grid_(gtk_grid_new()) {
  gtk_grid_set_column_spacing(GTK_GRID(grid_), 18);
  gtk_grid_set_row_spacing(GTK_GRID(grid_), 4);
}

void FigureGrid::show(const std::vector<Figure>& figures) {
  const bool sameRows =
      figures.size() == shown_.size() &&
      std::equal(figures.begin(), figures.end(), shown_.begin(),
                 [](const Figure& a, const Figure& b) { return a.name == b.name; });
  if (sameRows) {
    for (std::size_t row = 0; row < figures.size(); ++row) {
      if (figures[row].value != shown_[row].value) {
        gtk_label_set_text(GTK_LABEL(values_[row]), figures[row].value.c_str());
      }
    }
    shown_ = figures;
    return;
  }
  dashboard_widgets::clear(grid_);
  values_.clear();
  for (std::size_t row = 0; row < figures.size(); ++row) {
    const int at = static_cast<int>(row);
    gtk_grid_attach(GTK_GRID(grid_), dashboard_widgets::label(figures[row].name, "dim-label"), 0,
                    at, 1, 1);
    GtkWidget* value = dashboard_widgets::label(figures[row].value);
    gtk_widget_set_hexpand(value, TRUE);
    gtk_grid_attach(GTK_GRID(grid_), value, 1, at, 1, 1);
    values_.push_back(value);
  }
  gtk_widget_show_all(grid_);
  shown_ = figures;
}

}  // namespace korvo
