#pragma once

#include <gtk/gtk.h>

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "app/graph_model.hpp"
#include "dashboard/graph_view.hpp"
#include "sampling/memory_snapshot.hpp"
#include "sources/cpu_temperature.hpp"

namespace korvo {

// What the Mem tab reads each second it is in view.
struct MachineSample {
  std::optional<MemorySnapshot> memory;
  std::optional<double> cpuLoad;        // 0…1
  std::optional<double> celsius;        // the hottest sensor
  std::vector<CpuTemperature> sensors;  // every sensor of its family
};

// The Mem tab's graphs: memory used and pressure, CPU load and temperature over the last hour or
// the last day (a switch between the two), from korvo's history when the tab first comes into
// view and then from the tab's own readings each second while it stays in view; and every sensor
// of the CPU's family with its reading. A panel named "Machine graphs" for screen readers.
class HistoryGraphs {
 public:
  explicit HistoryGraphs(const gtk::AppearanceWatch& appearance);
  GtkWidget* widget() const { return box_; }
  // Adds this second's readings and draws again in `unit`.
  void sample(const MachineSample& sample, TemperatureUnit unit);

 private:
  void draw();
  void showSensors(const std::vector<CpuTemperature>& sensors);

  static constexpr std::array figures{graphs::Figure::memoryUsed, graphs::Figure::memoryPressure,
                                      graphs::Figure::cpuLoad, graphs::Figure::temperature};
  GtkWidget* box_;
  GtkWidget* graphs_;
  GtkWidget* hour_;
  GtkWidget* sensors_;
  std::array<std::unique_ptr<GraphView>, figures.size()> views_;
  std::array<std::vector<graphs::Point>, figures.size()> readings_;  // oldest first, a day at most
  bool loaded_ = false;
  TemperatureUnit unit_ = TemperatureUnit::celsius;
  std::vector<std::string> sensorLines_;
};

}  // namespace korvo
