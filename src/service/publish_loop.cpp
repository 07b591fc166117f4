#include "service/publish_loop.hpp"

#include <ostream>
#include <sstream>
#include <utility>

#include "app/publication_alerts.hpp"
#include "app/publisher.hpp"
#include "app/settings_file.hpp"
#include "shared/atomic_file.hpp"

namespace korvo {
namespace {

// A settings save arrives as several file events; they are taken together after this pause.
constexpr guint settleMilliseconds = 100;

bool namesSettings(GFile* file) {
  if (file == nullptr) return false;
  char* name = g_file_get_basename(file);
  const bool matches = name != nullptr && std::string_view(name) == "settings.json";
  g_free(name);
  return matches;
}

}  // namespace

PublishLoop::PublishLoop(std::ostream& log)
    : PublishLoop([](std::ostream& out) { return settings_file::load(out); },
                  [](const Settings& settings, publisher::LiveAsk live, std::ostream& notes,
                     const std::stop_token& stop) {
                    const auto snapshot = publisher::publish(settings, notes, stop, live);
                    return publication_alerts::raise(snapshot, settings, notes);
                  },
                  log) {}

PublishLoop::PublishLoop(LoadSettings load, Publish publish, std::ostream& log)
    : load_(std::move(load)), publish_(std::move(publish)), log_(log) {}

PublishLoop::~PublishLoop() {
  stop();
  if (context_ != nullptr) g_main_context_unref(context_);
}

void PublishLoop::start() {
  if (context_ == nullptr) context_ = g_main_context_ref_thread_default();
  if (const auto location = settings_file::location()) {
    createPrivateDirectories(location->parent_path());
    GFile* directory = g_file_new_for_path(location->parent_path().c_str());
    monitor_ = g_file_monitor_directory(directory, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr);
    g_object_unref(directory);
    if (monitor_ != nullptr) {
      g_signal_connect(monitor_, "changed", G_CALLBACK(&PublishLoop::onSettingsChanged), this);
    }
  }
  publishNow();
}

void PublishLoop::stop() {
  for (guint* source : {&timer_, &settle_}) {
    if (*source != 0) g_source_remove(*source);
    *source = 0;
  }
  if (monitor_ != nullptr) {
    g_signal_handlers_disconnect_by_data(monitor_, this);
    g_file_monitor_cancel(monitor_);
    g_object_unref(monitor_);
    monitor_ = nullptr;
  }
  worker_.request_stop();
  if (worker_.joinable()) worker_.join();
  // The worker is gone: what it handed over is dropped unread.
  if (finished_ != nullptr) {
    g_source_destroy(finished_);
    g_source_unref(finished_);
    finished_ = nullptr;
  }
  outcome_.reset();
  publishing_ = false;
  again_ = false;
}

void PublishLoop::publishNow() {
  if (publishing_) {
    again_ = true;
    return;
  }
  publishing_ = true;
  // The previous worker has handed its outcome over and is at most returning.
  if (worker_.joinable()) worker_.join();
  const auto live =
      std::exchange(askCodex_, false) ? publisher::LiveAsk::now : publisher::LiveAsk::whenDue;
  worker_ = std::jthread([this, live](const std::stop_token& stop) { work(stop, live); });
}

void PublishLoop::askCodexNow() {
  askCodex_ = true;
  publishNow();
}

void PublishLoop::work(const std::stop_token& stop, publisher::LiveAsk live) {
  std::ostringstream log;
  Outcome outcome{load_(log), {}, {}};
  try {
    outcome.alerts = publish_(outcome.settings, live, log, stop);
  } catch (const std::exception& error) {
    if (!stop.stop_requested()) log << "korvo service: " << error.what() << '\n';
  }
  outcome.log = log.str();
  GSource* source = g_idle_source_new();
  g_source_set_callback(source, &PublishLoop::onFinished, this, nullptr);
  {
    const std::lock_guard guard(mutex_);
    outcome_ = std::move(outcome);
    finished_ = source;
  }
  g_source_attach(source, context_);
}

gboolean PublishLoop::onFinished(gpointer self) {
  auto* loop = static_cast<PublishLoop*>(self);
  Outcome outcome;
  {
    const std::lock_guard guard(loop->mutex_);
    outcome = std::move(*loop->outcome_);
    loop->outcome_.reset();
    // The context keeps its own reference while it dispatches.
    g_source_unref(std::exchange(loop->finished_, nullptr));
  }
  loop->settings_ = std::move(outcome.settings);
  loop->log_ << outcome.log << std::flush;
  if (loop->settingsRead_) loop->settingsRead_(loop->settings_);
  if (loop->alertsRaised_ && !outcome.alerts.empty()) loop->alertsRaised_(outcome.alerts);
  loop->publishing_ = false;
  if (loop->again_) {
    loop->again_ = false;
    loop->publishNow();
  } else {
    loop->armTimer();
  }
  return G_SOURCE_REMOVE;
}

void PublishLoop::armTimer() {
  if (timer_ != 0) g_source_remove(timer_);
  timer_ = g_timeout_add_seconds(static_cast<guint>(settings_.publishSeconds),
                                 &PublishLoop::onTimer, this);
}

gboolean PublishLoop::onTimer(gpointer self) {
  auto* loop = static_cast<PublishLoop*>(self);
  loop->timer_ = 0;
  loop->publishNow();
  return G_SOURCE_REMOVE;
}

gboolean PublishLoop::onSettled(gpointer self) {
  auto* loop = static_cast<PublishLoop*>(self);
  loop->settle_ = 0;
  loop->publishNow();
  return G_SOURCE_REMOVE;
}

void PublishLoop::onSettingsChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent,
                                    gpointer self) {
  auto* loop = static_cast<PublishLoop*>(self);
  if (!namesSettings(file) && !namesSettings(other)) return;
  if (loop->settle_ == 0) {
    loop->settle_ = g_timeout_add(settleMilliseconds, &PublishLoop::onSettled, loop);
  }
}

}  // namespace korvo
