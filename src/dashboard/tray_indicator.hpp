#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "shared/dashboard_tab.hpp"

using AppIndicator = struct _AppIndicator;

namespace korvo {

// The status icon (StatusNotifierItem through Ayatana AppIndicator): the memory figure as its
// label, and a menu of the three tabs, Keep Awake start/stop, Settings and Quit.
class TrayIndicator {
 public:
  struct Actions {
    std::function<void(DashboardTab)> openTab;
    std::function<void()> toggleAwake;  // starts a session of the default length, or stops it
    std::function<void()> openSettings;
    std::function<void()> quit;
  };

  explicit TrayIndicator(Actions actions);
  ~TrayIndicator();
  TrayIndicator(const TrayIndicator&) = delete;
  TrayIndicator& operator=(const TrayIndicator&) = delete;

  // The label beside the icon ("47%").
  void setFigure(const std::string& figure);
  // Whether a session runs: the Keep Awake item says Start or Stop.
  void setAwake(bool running);

  const Actions& actions() const { return actions_; }

 private:
  Actions actions_;
  AppIndicator* indicator_ = nullptr;
  GtkWidget* menu_ = nullptr;
  GtkWidget* awakeItem_ = nullptr;
};

}  // namespace korvo
