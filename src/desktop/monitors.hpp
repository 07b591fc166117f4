#pragma once

#include <gdk/gdk.h>

#include <optional>
#include <string>
#include <vector>

#include "ui/geometry.hpp"

namespace korvo::desktop {

// One monitor of the display, as the host places widgets on it.
struct Monitor {
  GdkMonitor* monitor = nullptr;
  std::string name{};  // connector ("DP-1", "HEADLESS-2"); empty where the desktop gives none
  ui::Rect workArea{};
  friend bool operator==(const Monitor&, const Monitor&) = default;
};

// The display's monitors in GDK's order.
std::vector<Monitor> displayMonitors(GdkDisplay* display);

// The monitor named `output`, else the primary one, else the first; nothing without monitors.
std::optional<std::size_t> monitorFor(const std::vector<Monitor>& monitors,
                                      const std::optional<std::string>& output,
                                      std::optional<std::size_t> primary);

}  // namespace korvo::desktop
