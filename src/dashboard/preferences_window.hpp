#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "app/settings.hpp"
#include "dashboard/settings_page.hpp"
#include "dashboard/widgets_preferences.hpp"

namespace korvo {

// Korvo's preferences in a window of their own, beside the dashboard: Monitors, AI, Keep Awake
// and Widgets, switched from its header bar. Closing it hides it, and the next opening shows it
// again as it was.
class PreferencesWindow {
 public:
  // The page names present() takes, in the switcher's order.
  static constexpr const char* pages[] = {"monitors", "ai", "awake", "widgets"};

  // `claudeChanged` runs after Claude's status line was connected or disconnected.
  PreferencesWindow(GtkApplication* application, GtkWindow* dashboard,
                    std::function<void()> claudeChanged = {});
  ~PreferencesWindow();
  PreferencesWindow(const PreferencesWindow&) = delete;
  PreferencesWindow& operator=(const PreferencesWindow&) = delete;

  // Shows the window at `page` (one of pages; another name keeps the page in view).
  void present(const std::string& page);
  // The settings file was read again.
  void show(const Settings& settings);

  GtkWidget* window() const { return window_; }
  std::string page() const;

 private:
  GtkWidget* window_;
  GtkWidget* stack_;
  SettingsPage settings_;
  WidgetsPreferences widgets_;
};

}  // namespace korvo
