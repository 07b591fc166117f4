#include "dashboard/history_graph.hpp"

#include <chrono>
#include <iostream>

#include "app/history_store.hpp"
#include "base/clock.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "gtk/glib_bool.hpp"

namespace korvo {
namespace {

constexpr double hourSeconds = 3600;
constexpr double daySeconds = 24 * hourSeconds;
// The dashboard reads while a publication may write: it shows what it has rather than wait.
constexpr std::chrono::milliseconds historyPatience{200};

// The kernel's level of a pressure case, as the history records it.
std::optional<double> pressureLevel(MemoryPressure pressure) {
  switch (pressure) {
    case MemoryPressure::normal:
      return 1;
    case MemoryPressure::warning:
      return 2;
    case MemoryPressure::critical:
      return 4;
    case MemoryPressure::unknown:
      break;
  }
  return std::nullopt;
}

}  // namespace

HistoryGraphs::HistoryGraphs(const gtk::AppearanceWatch& appearance) {
  box_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  GtkWidget* spans = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
  gtk_style_context_add_class(gtk_widget_get_style_context(spans), "linked");
  hour_ = gtk_radio_button_new_with_label(nullptr, _("Last hour").c_str());
  GtkWidget* day =
      gtk_radio_button_new_with_label_from_widget(GTK_RADIO_BUTTON(hour_), _("Last day").c_str());
  for (GtkWidget* button : {hour_, day}) {
    gtk_toggle_button_set_mode(GTK_TOGGLE_BUTTON(button), FALSE);
    gtk_box_pack_start(GTK_BOX(spans), button, FALSE, FALSE, 0);
  }
  g_signal_connect_swapped(
      hour_, "toggled",
      G_CALLBACK(+[](gpointer self) { static_cast<HistoryGraphs*>(self)->draw(); }), this);
  gtk_box_pack_start(GTK_BOX(box_), spans, FALSE, FALSE, 0);
  graphs_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
  atk_object_set_name(gtk_widget_get_accessible(graphs_), _("Machine graphs").c_str());
  atk_object_set_role(gtk_widget_get_accessible(graphs_), ATK_ROLE_PANEL);
  for (std::size_t index = 0; index < figures.size(); ++index) {
    views_[index] = std::make_unique<GraphView>(appearance, 72);
    views_[index]->packInto(graphs_);
  }
  gtk_box_pack_start(GTK_BOX(box_), graphs_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box_), dashboard_widgets::heading(_("CPU sensors")), FALSE, FALSE, 0);
  sensors_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
  gtk_box_pack_start(GTK_BOX(box_), sensors_, FALSE, FALSE, 0);
}

void HistoryGraphs::sample(const MachineSample& sample, TemperatureUnit unit) {
  const double now = clock::now().unixSeconds();
  if (!loaded_) {
    loaded_ = true;
    if (const auto history = HistoryStore::openExisting(std::cerr, clock::now(), historyPatience)) {
      for (std::size_t index = 0; index < figures.size(); ++index) {
        for (const HistoryRow& row :
             history->rows(Date::fromUnixSeconds(now - daySeconds), std::nullopt,
                           graphs::metricOf(figures[index]))) {
          readings_[index].push_back({row.time.unixSeconds(), row.value});
        }
      }
    }
  }
  const std::array<std::optional<double>, figures.size()> values{
      sample.memory ? std::optional(sample.memory->usedFraction() * 100) : std::nullopt,
      sample.memory ? pressureLevel(sample.memory->pressure) : std::nullopt,
      sample.cpuLoad ? std::optional(*sample.cpuLoad * 100) : std::nullopt, sample.celsius};
  for (std::size_t index = 0; index < figures.size(); ++index) {
    auto& series = readings_[index];
    if (values[index]) series.push_back({now, *values[index]});
    const auto old = std::find_if(series.begin(), series.end(), [&](const graphs::Point& point) {
      return point.time >= now - daySeconds;
    });
    series.erase(series.begin(), old);
  }
  unit_ = unit;
  draw();
  showSensors(sample.sensors);
}

void HistoryGraphs::draw() {
  const Date now = clock::now();
  const double span =
      gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(hour_)) ? hourSeconds : daySeconds;
  for (std::size_t index = 0; index < figures.size(); ++index) {
    views_[index]->show(graphs::figureGraph(figures[index], readings_[index],
                                            now.addingSeconds(-span), now, unit_));
  }
}

void HistoryGraphs::showSensors(const std::vector<CpuTemperature>& sensors) {
  std::vector<std::string> lines;
  lines.reserve(sensors.size() + 1);
  for (const CpuTemperature& sensor : sensors) {
    lines.push_back(sensor.chip + (sensor.label.empty() ? "" : " · " + sensor.label) + "  " +
                    degreesText(sensor.celsius, unit_));
  }
  if (lines.empty()) lines.push_back(_("No CPU sensor found"));
  // Rebuilt only on a change: every new label is announced to screen readers.
  if (lines == sensorLines_) return;
  sensorLines_ = lines;
  dashboard_widgets::clear(sensors_);
  for (const std::string& line : lines) {
    gtk_box_pack_start(GTK_BOX(sensors_), dashboard_widgets::label(line), FALSE, FALSE, 0);
  }
  gtk_widget_show_all(sensors_);
}

}  // namespace korvo
