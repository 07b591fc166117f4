#pragma once

#include <gio/gio.h>

#include <memory>
#include <optional>

#include "app/host_command.hpp"
#include "gtk/notifier.hpp"
#include "service/keep_awake.hpp"
#include "service/publish_loop.hpp"

namespace korvo {

class DashboardWindow;
class TrayIndicator;

// korvo's one instance per session: the GtkApplication com.tessmoor.Korvo (a plain
// GApplication when there is no display). The first invocation becomes the service (publishing,
// Keep Awake sessions, the tray indicator) and stays; every later one hands its command line
// to it and exits with the answer.
class HostApplication {
 public:
  // `graphical`: a display is there, so the dashboard and the indicator can be shown.
  // `unique`: a session bus is there to be the one instance on.
  HostApplication(bool graphical, bool unique, double clockRate);
  ~HostApplication();
  HostApplication(const HostApplication&) = delete;
  HostApplication& operator=(const HostApplication&) = delete;

  int run(int argc, char** argv);

  void startup();
  int commandLine(GApplicationCommandLine* invocation);
  void quit();

 private:
  // The tray's Quit: ends the service and says that the widgets stop updating until it is back.
  void quitFromMenu();
  int carryOut(const AwakeCommand& command, GApplicationCommandLine* invocation);
  int open(const OpenDashboard& command, GApplicationCommandLine* invocation);
  DashboardWindow* dashboard();
  void addActions();
  void showAbout();
  void awakeChanged();
  // The tray's Keep Awake: icon, title, Stop's minutes and the agents' switch.
  void showAwake();
  // A failed command from the tray, in a notification.
  void told(const KeepAwake::Outcome& outcome);
  void watchAgents(bool on);
  void sessionRanOut();
  void agentsHold(bool started, const std::vector<Agent>& agents);
  void showFigure();
  // Each notice a publication called for, with an action that opens its tab.
  void raise(const PublishLoop::Alerts& alerts);

  GApplication* application_;
  bool graphical_;
  double clockRate_;
  Settings settings_;  // as the last publication read them
  std::unique_ptr<gtk::Notifier> notifier_;
  std::unique_ptr<PublishLoop> publishing_;
  std::unique_ptr<KeepAwake> keepAwake_;
  std::unique_ptr<DashboardWindow> dashboard_;
  std::unique_ptr<TrayIndicator> tray_;
  guint figureTimer_ = 0;
  guint signals_[2] = {0, 0};
};

}  // namespace korvo
