#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>

#include "app/awake_duration.hpp"
#include "shared/dashboard_tab.hpp"

using AppIndicator = struct _AppIndicator;

namespace korvo {

// What the status icon shows of Keep Awake.
struct TrayAwake {
  bool kept = false;               // the machine is kept awake, by a session or the agents
  bool session = false;            // a session runs, which Stop ends
  std::optional<int> minutesLeft;  // minutes to the session's end, rounded up; none: no end
  bool watchAgents = false;        // awake while Codex or Claude Code works
  std::string state;               // what keeps it awake, in words, for the title

  friend bool operator==(const TrayAwake&, const TrayAwake&) = default;
};

// The status icon (StatusNotifierItem through Ayatana AppIndicator): the memory figure as its
// label, an icon of its own while the machine is kept awake, and a menu of the three tabs, Keep
// Awake's lengths, Stop and the agents' switch, Settings, and Quit, which ends the service.
class TrayIndicator {
 public:
  struct Actions {
    std::function<void(DashboardTab)> openTab;
    std::function<void(AwakeDuration)> startAwake;
    std::function<void()> stopAwake;
    std::function<void(bool)> watchAgents;
    std::function<void()> openPreferences;
    std::function<void()> quit;
  };

  explicit TrayIndicator(Actions actions);
  ~TrayIndicator();
  TrayIndicator(const TrayIndicator&) = delete;
  TrayIndicator& operator=(const TrayIndicator&) = delete;

  // The label beside the icon ("47%").
  void setFigure(const std::string& figure);
  void setAwake(const TrayAwake& awake);

  const Actions& actions() const { return actions_; }
  // The agents' switch was flipped: by the user unless the indicator itself is showing a state.
  void agentsToggled(bool on) const;

 private:
  void showTitle();

  Actions actions_;
  AppIndicator* indicator_ = nullptr;
  GtkWidget* menu_ = nullptr;
  GtkWidget* stopItem_ = nullptr;
  GtkWidget* agentsItem_ = nullptr;
  std::string figure_;
  TrayAwake awake_;
  bool showing_ = false;
};

}  // namespace korvo
