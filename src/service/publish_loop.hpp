#pragma once

#include <gio/gio.h>

#include <functional>
#include <iosfwd>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

#include "app/publisher.hpp"
#include "app/settings.hpp"
#include "app/usage_alerts.hpp"

namespace korvo {

// The service's publishing: once at start, then every publishSeconds, and at once when the
// settings file changes (the new settings count from then on). Each publication runs on a thread
// of its own, because it reads files and waits for the shared file's lock, and the GLib main
// context it was started on must keep answering meanwhile; the results come back to that
// context. A GtkApplication can run it as it is.
class PublishLoop {
 public:
  // Reads the settings, telling what is wrong with them to the stream; and publishes with them
  // until the token asks to stop, telling what went wrong on the way to the stream, and answers
  // the notices the figures it published call for.
  using LoadSettings = std::function<Settings(std::ostream& log)>;
  using Alerts = std::vector<usage_alerts::Alert>;
  using Publish = std::function<Alerts(const Settings&, publisher::LiveAsk, std::ostream& log,
                                       const std::stop_token&)>;

  // Publishes with the app's publisher and settings file; failures go to `log` as one line each.
  explicit PublishLoop(std::ostream& log);
  PublishLoop(LoadSettings load, Publish publish, std::ostream& log);
  PublishLoop(const PublishLoop&) = delete;
  PublishLoop& operator=(const PublishLoop&) = delete;
  ~PublishLoop();

  // Publishes now and arms the timer and the settings watch on the thread-default main context.
  void start();
  // Disarms both and stops a publication under way (one waiting for the lock gives up at once);
  // nothing is published after it.
  void stop();
  // `read` gets the settings each publication read, on the main context, after it.
  void onSettingsRead(std::function<void(const Settings&)> read) {
    settingsRead_ = std::move(read);
  }
  // `raise` gets the notices each publication calls for, on the main context, after it.
  void onAlerts(std::function<void(const Alerts&)> raise) { alertsRaised_ = std::move(raise); }
  // Publishes now, asking Codex's app-server whenever it was last asked (the AI tab opened).
  void askCodexNow();
  // Publishes now (Claude's status line was connected or disconnected).
  void publishNow();

 private:
  // What a publication hands back to the main context.
  struct Outcome {
    Settings settings;
    std::string log;  // the lines for the log, each ending in a newline
    Alerts alerts;
  };

  static gboolean onTimer(gpointer self);
  static gboolean onSettled(gpointer self);
  static gboolean onFinished(gpointer self);
  static void onSettingsChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent,
                                gpointer self);
  void work(const std::stop_token& stop, publisher::LiveAsk live);
  void armTimer();

  LoadSettings load_;
  Publish publish_;
  std::ostream& log_;
  std::function<void(const Settings&)> settingsRead_;
  std::function<void(const Alerts&)> alertsRaised_;
  Settings settings_;
  guint timer_ = 0;
  guint settle_ = 0;
  GFileMonitor* monitor_ = nullptr;
  GMainContext* context_ = nullptr;
  bool publishing_ = false;  // a publication runs on the worker
  bool again_ = false;       // another was asked for meanwhile
  bool askCodex_ = false;    // the next publication asks Codex's app-server whatever its last ask
  std::jthread worker_;
  std::mutex mutex_;                // guards the two below, which the worker sets
  std::optional<Outcome> outcome_;  // the finished publication's, not yet taken
  GSource* finished_ = nullptr;     // the idle source that brings it to the main context
};

}  // namespace korvo
