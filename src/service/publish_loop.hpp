#pragma once

#include <gio/gio.h>

#include <functional>
#include <iosfwd>

#include "app/settings.hpp"

namespace korvo {

// The service's publishing: once at start, then every publishSeconds, and at once when the
// settings file changes (the new settings count from then on). Between those it sleeps in the
// GLib main context it was started on; a GtkApplication can run it as it is.
class PublishLoop {
 public:
  // Reads the settings, and publishes with them.
  using LoadSettings = std::function<Settings()>;
  using Publish = std::function<void(const Settings&)>;

  // Publishes with the app's publisher and settings file; failures go to `log` as one line each.
  explicit PublishLoop(std::ostream& log);
  PublishLoop(LoadSettings load, Publish publish, std::ostream& log);
  PublishLoop(const PublishLoop&) = delete;
  PublishLoop& operator=(const PublishLoop&) = delete;
  ~PublishLoop();

  // Publishes now and arms the timer and the settings watch on the thread-default main context.
  void start();
  // Disarms both; nothing is published after it.
  void stop();

 private:
  static gboolean onTimer(gpointer self);
  static gboolean onSettled(gpointer self);
  static void onSettingsChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent,
                                gpointer self);
  void publishNow();
  void armTimer();

  LoadSettings load_;
  Publish publish_;
  std::ostream& log_;
  Settings settings_;
  guint timer_ = 0;
  guint settle_ = 0;
  GFileMonitor* monitor_ = nullptr;
};

}  // namespace korvo
