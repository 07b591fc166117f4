#include "gtk/widget_card.hpp"

#include "base/clock.hpp"
#include "gtk/accessibility.hpp"
#include "gtk/accessible_card.hpp"
#include "render/painter.hpp"
#include "render/pango_text_measurer.hpp"
#include "ui/widget_layout.hpp"

namespace korvo {

WidgetCard::WidgetCard(const WidgetConfiguration& widget, ui::WidgetFamily family,
                       const gtk::AppearanceWatch& appearance)
    : widget_(widget), family_(family), appearance_(appearance), area_(gtk::newCardArea()) {
  const ui::Size size = ui::familySize(family);
  gtk_widget_set_size_request(area_, static_cast<int>(size.width), static_cast<int>(size.height));
  gtk_widget_set_halign(area_, GTK_ALIGN_CENTER);
  g_signal_connect(area_, "draw", G_CALLBACK(+[](GtkWidget*, cairo_t* cr, gpointer self) {
                     return static_cast<WidgetCard*>(self)->draw(cr);
                   }),
                   this);
}

void WidgetCard::refresh() {
  TimelineContext context;
  context.family = family_;
  widget_.getSnapshot(context, [this](AnyEntry entry) { entry_ = std::move(entry); });
  gtk_widget_queue_draw(area_);
}

ui::ColorScheme WidgetCard::scheme() const {
  // The card takes the look of the window around it: a dark GTK theme makes a dark card even
  // where no preference says dark.
  return gtk::schemeOfBackground(gtk::readThemeColors(area_).background)
      .value_or(appearance_.scheme());
}

gboolean WidgetCard::draw(cairo_t* cr) {
  if (!entry_) return FALSE;
  ui::Environment environment;
  environment.family = family_;
  environment.colorScheme = scheme();
  environment.hostSuppliesContainerBackground = true;
  environment.now = clock::now();
  environment.theme = gtk::themeColors(area_, environment.colorScheme);
  const int scale = gtk_widget_get_scale_factor(area_);
  const auto layout = ui::layoutWidget(widget_.kind, entry_->view(environment), environment,
                                       render::PangoTextMeasurer::shared(), scale);
  render::paintWidget(cr, layout);
  // What is drawn is what a screen reader reads, live texts as they read now.
  gtk::describeToAssistiveTechnologies(area_, widget_.displayName, layout, {}, false);
  return TRUE;
}

}  // namespace korvo
