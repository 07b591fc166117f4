#include "service/publish_loop.hpp"

#include <ostream>
#include <sstream>
#include <system_error>

#include "app/publisher.hpp"
#include "app/settings_file.hpp"

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
    : PublishLoop([&log] { return settings_file::load(log); }, &publisher::publish, log) {}

PublishLoop::PublishLoop(LoadSettings load, Publish publish, std::ostream& log)
    : load_(std::move(load)), publish_(std::move(publish)), log_(log) {}

PublishLoop::~PublishLoop() {
  stop();
}

void PublishLoop::start() {
  if (const auto location = settings_file::location()) {
    std::error_code error;
    std::filesystem::create_directories(location->parent_path(), error);
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
}

void PublishLoop::publishNow() {
  settings_ = load_();
  try {
    publish_(settings_);
  } catch (const std::exception& error) {
    log_ << "korvo service: " << error.what() << std::endl;
  }
  armTimer();
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
