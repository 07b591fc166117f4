#pragma once

#include <gtk/gtk.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/core/options.hpp"
#include "desktop/core/placement.hpp"
#include "desktop/core/placement_edit.hpp"
#include "desktop/core/placement_file.hpp"
#include "desktop/core/widget_lookup.hpp"
#include "desktop/window.hpp"
#include "extension/widget_configuration.hpp"
#include "gtk/appearance.hpp"
#include "gtk/file_watch.hpp"
#include "gtk/theme_probe.hpp"

namespace korvo::desktop {

// The desktop host: one window per placement, re-placed when the placements file changes or on
// SIGHUP, repainted when the desktop's appearance changes. Runs GTK's main loop until SIGINT or
// SIGTERM.
class DesktopHost {
 public:
  // `widgets` must outlive the host; GTK must be initialised.
  DesktopHost(const std::vector<WidgetConfiguration>& widgets, HostOptions options);
  ~DesktopHost();
  DesktopHost(const DesktopHost&) = delete;
  DesktopHost& operator=(const DesktopHost&) = delete;

  // Shows the widgets and runs until asked to stop.
  void run();

  // Reads the placements again (SIGHUP, file changes); a bad file keeps what is shown.
  void reloadPlacements();
  // Repositions every window on its monitor (monitors, screen or work area changed).
  void arrange();
  // Monitors came, went or changed: every monitor may take widgets again.
  void monitorsChanged();
  // The compositor took a window's surface away on `monitor` (its output went): arranges again
  // on the next idle turn of the main loop, without that monitor.
  void surfaceLost(GdkMonitor* monitor);
  void arrangeDue();
  // Writes every window's tree to the dump directory.
  void dumpAll();
  // Asks every widget's provider again now (`korvo-widgets reload`).
  void reloadTimelines();
  void appearanceChanged();
  // The shared file changed: the widgets that show it ask their providers again at once.
  void sharedFileChanged();
  // Pops up `window`'s menu at the pointer (`event`) or over the card (the Menu key).
  void showMenu(WidgetWindow& window, const GdkEvent* event);
  // Makes `change` to `window`'s placement, saves the placements and shows them.
  void edit(const WidgetWindow* window, const PlacementEdit& change);
  // Opens the placements file in the user's editor, written first when there is none.
  void arrangeWidgets();
  // `window` was dragged and let go at `origin` on `monitor`: it settles there as a position,
  // snapped to the grid and to the cards nearby.
  void dropped(const WidgetWindow* window, ui::Point origin, GdkMonitor* monitor);

 private:
  void apply(std::vector<Placement> placements);
  // The placements shown, in order.
  std::vector<Placement> shownPlacements() const;
  // Whether `window` is still one of the host's.
  bool holds(const WidgetWindow* window) const;
  void watchPlacementsFile();
  void watchSharedFile();

  const std::vector<WidgetConfiguration>& widgets_;
  HostOptions options_;
  KindLookup lookup_;
  std::unique_ptr<gtk::AppearanceWatch> appearance_;
  std::unique_ptr<gtk::ThemeProbe> theme_;
  std::optional<std::filesystem::path> placementsFile_;
  std::vector<std::unique_ptr<WidgetWindow>> windows_;
  std::unique_ptr<gtk::FileWatch> placementsWatch_;
  std::unique_ptr<gtk::FileWatch> sharedFileWatch_;
  std::vector<guint> signalSources_;
  GtkWidget* menu_ = nullptr;  // the last card menu popped up
  guint arrangeSource_ = 0;
  std::vector<GdkMonitor*> refused_;  // monitors whose output closed a widget's surface
  std::vector<std::string> notices_;  // widgets shown away from their output, as last said
  // The version of the placements file and its fault last notified, while it is bad.
  std::optional<std::pair<std::optional<FileStamp>, std::string>> reportedFault_;
};

}  // namespace korvo::desktop
