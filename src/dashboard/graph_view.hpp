#pragma once

#include <gtk/gtk.h>

#include "app/graph_model.hpp"
#include "gtk/appearance.hpp"

namespace korvo {

// One graph on a dashboard page: a drawing area painted by graph_painter in the card's colours,
// which a screen reader reads as an image named for the graph and described by its summary,
// with the summary as a line of text beneath it.
class GraphView {
 public:
  explicit GraphView(const gtk::AppearanceWatch& appearance, int height = 96);
  GraphView(const GraphView&) = delete;
  GraphView& operator=(const GraphView&) = delete;

  // Packs the drawing and its summary line into `box`, one after the other, so a screen reader
  // finds them among the box's children.
  void packInto(GtkWidget* box) const;
  void show(graphs::Graph graph);

 private:
  gboolean draw(cairo_t* cr);

  const gtk::AppearanceWatch& appearance_;
  GtkWidget* area_;
  GtkWidget* summary_;
  graphs::Graph graph_;
};

}  // namespace korvo
