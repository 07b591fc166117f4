#include "dashboard/graph_view.hpp"

#include "base/clock.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "dashboard/graph_painter.hpp"

namespace korvo {

GraphView::GraphView(const gtk::AppearanceWatch& appearance, int height) : appearance_(appearance) {
  area_ = gtk_drawing_area_new();
  gtk_widget_set_size_request(area_, -1, height);
  gtk_widget_set_hexpand(area_, TRUE);
  g_signal_connect(area_, "draw", G_CALLBACK(+[](GtkWidget*, cairo_t* cr, gpointer self) {
                     return static_cast<GraphView*>(self)->draw(cr);
                   }),
                   this);
  atk_object_set_role(gtk_widget_get_accessible(area_), ATK_ROLE_IMAGE);
  summary_ = dashboard_widgets::label("", "dim-label");
  gtk_widget_set_margin_bottom(summary_, 6);
  // The drawing's description says what the line beneath says: read once, as the image.
  atk_object_set_role(gtk_widget_get_accessible(summary_), ATK_ROLE_CAPTION);
}

void GraphView::packInto(GtkWidget* box) const {
  gtk_box_pack_start(GTK_BOX(box), area_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), summary_, FALSE, FALSE, 0);
}

void GraphView::show(graphs::Graph graph) {
  AtkObject* accessible = gtk_widget_get_accessible(area_);
  // Set only on a change: every set is announced to screen readers.
  if (graph.name != graph_.name) atk_object_set_name(accessible, graph.name.c_str());
  if (graph.summary != graph_.summary) {
    atk_object_set_description(accessible, graph.summary.c_str());
    gtk_label_set_text(GTK_LABEL(summary_), graph.summary.c_str());
  }
  graph_ = std::move(graph);
  gtk_widget_queue_draw(area_);
}

gboolean GraphView::draw(cairo_t* cr) {
  ui::Environment environment;
  environment.colorScheme = appearance_.scheme();
  environment.theme = gtk::themeColors(area_, environment.colorScheme);
  graph_painter::paint(cr, graph_, gtk_widget_get_allocated_width(area_),
                       gtk_widget_get_allocated_height(area_), environment.palette(),
                       clock::now().unixSeconds());
  return TRUE;
}

}  // namespace korvo
