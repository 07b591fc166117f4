#include "desktop/desktop.hpp"

#include <glib-unix.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "cli/host_record.hpp"
#include "desktop/core/placement_file.hpp"
#include "extension/korvo_widgets.hpp"

namespace korvo::desktop {
namespace {

DesktopHost& self(gpointer host) {
  return *static_cast<DesktopHost*>(host);
}

gboolean onHangUp(gpointer host) {
  self(host).reloadPlacements();
  return G_SOURCE_CONTINUE;
}

gboolean onDumpRequest(gpointer host) {
  self(host).dumpAll();
  return G_SOURCE_CONTINUE;
}

gboolean onReloadRequest(gpointer host) {
  self(host).reloadTimelines();
  return G_SOURCE_CONTINUE;
}

gboolean onStop(gpointer) {
  gtk_main_quit();
  return G_SOURCE_CONTINUE;
}

void onScreenChanged(GdkScreen*, gpointer host) {
  self(host).arrange();
}

bool namesFile(GFile* file, const std::string& name) {
  if (file == nullptr) return false;
  char* base = g_file_get_basename(file);
  const bool same = base != nullptr && name == base;
  g_free(base);
  return same;
}

struct Watch {
  DesktopHost* host;
  std::string fileName;
};

void onDirectoryChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent event,
                        gpointer data) {
  const auto& watch = *static_cast<Watch*>(data);
  if (!namesFile(file, watch.fileName) && !namesFile(other, watch.fileName)) return;
  switch (event) {
    case G_FILE_MONITOR_EVENT_CHANGES_DONE_HINT:
    case G_FILE_MONITOR_EVENT_CREATED:
    case G_FILE_MONITOR_EVENT_DELETED:
    case G_FILE_MONITOR_EVENT_MOVED_IN:
    case G_FILE_MONITOR_EVENT_MOVED_OUT:
    case G_FILE_MONITOR_EVENT_RENAMED:
      watch.host->reloadPlacements();
      break;
    default:
      break;
  }
}

ui::Rect workArea() {
  GdkDisplay* display = gdk_display_get_default();
  GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
  if (monitor == nullptr) monitor = gdk_display_get_monitor(display, 0);
  if (monitor == nullptr) return {0, 0, 1280, 800};
  GdkRectangle area;
  gdk_monitor_get_workarea(monitor, &area);
  return {static_cast<double>(area.x), static_cast<double>(area.y), static_cast<double>(area.width),
          static_cast<double>(area.height)};
}

}  // namespace

DesktopHost::DesktopHost(const std::vector<WidgetConfiguration>& widgets, HostOptions options)
    : widgets_(widgets), options_(std::move(options)), lookup_(kindLookup(widgets_)) {
  appearance_ =
      std::make_unique<AppearanceWatch>(options_.appearance, [this] { appearanceChanged(); });
  if (options_.widgets.empty()) {
    placementsFile_ = options_.placementsFile
                          ? options_.placementsFile
                          : placementsPath(std::getenv("XDG_CONFIG_HOME"), std::getenv("HOME"));
  }
  signalSources_.push_back(g_unix_signal_add(SIGHUP, onHangUp, this));
  signalSources_.push_back(g_unix_signal_add(SIGUSR1, onDumpRequest, this));
  signalSources_.push_back(g_unix_signal_add(HostRecord::reloadSignal, onReloadRequest, this));
  signalSources_.push_back(g_unix_signal_add(SIGINT, onStop, this));
  signalSources_.push_back(g_unix_signal_add(SIGTERM, onStop, this));
  GdkScreen* screen = gdk_screen_get_default();
  g_signal_connect(screen, "monitors-changed", G_CALLBACK(onScreenChanged), this);
  g_signal_connect(screen, "size-changed", G_CALLBACK(onScreenChanged), this);
}

DesktopHost::~DesktopHost() {
  g_signal_handlers_disconnect_by_data(gdk_screen_get_default(), this);
  for (const auto source : signalSources_) g_source_remove(source);
  if (monitor_ != nullptr) {
    g_file_monitor_cancel(monitor_);
    g_object_unref(monitor_);
  }
  windows_.clear();
}

void DesktopHost::run() {
  if (!options_.widgets.empty()) {
    auto parsed = parseWidgetArguments(options_.widgets, lookup_);
    if (auto* placements = std::get_if<std::vector<Placement>>(&parsed)) {
      apply(std::move(*placements));
    }
  } else {
    reloadPlacements();
    watchPlacementsFile();
  }
  gtk_main();
}

void DesktopHost::reloadPlacements() {
  if (!options_.widgets.empty()) return;
  if (!placementsFile_) {
    if (windows_.empty()) apply(defaultPlacements(lookup_));
    return;
  }
  auto loaded = loadPlacementsFile(*placementsFile_, lookup_);
  if (auto* placements = std::get_if<std::vector<Placement>>(&loaded)) {
    apply(std::move(*placements));
  } else if (std::holds_alternative<NoPlacementsFile>(loaded)) {
    apply(defaultPlacements(lookup_));
  } else {
    const bool first = windows_.empty();
    std::fprintf(stderr, "korvo-widgets: %s; %s\n",
                 std::get<PlacementError>(loaded).message.c_str(),
                 first ? "showing the default widgets" : "keeping the widgets shown");
    if (first) apply(defaultPlacements(lookup_));
  }
}

void DesktopHost::watchPlacementsFile() {
  if (!placementsFile_) return;
  // Watching the folder (created if need be) catches the file appearing, being replaced by a
  // rename or vanishing, without the polling GIO falls back to for a missing folder.
  const auto folder = placementsFile_->parent_path();
  if (g_mkdir_with_parents(folder.c_str(), 0700) != 0) return;
  GFile* directory = g_file_new_for_path(folder.c_str());
  monitor_ = g_file_monitor_directory(directory, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr);
  g_object_unref(directory);
  if (monitor_ == nullptr) return;
  auto* watch = new Watch{this, placementsFile_->filename().string()};
  g_signal_connect_data(
      monitor_, "changed", G_CALLBACK(onDirectoryChanged), watch,
      [](gpointer data, GClosure*) { delete static_cast<Watch*>(data); }, GConnectFlags{});
}

void DesktopHost::apply(std::vector<Placement> placements) {
  std::vector<std::unique_ptr<WidgetWindow>> next;
  for (std::size_t index = 0; index < placements.size(); ++index) {
    if (index < windows_.size() && windows_[index]->placement() == placements[index]) {
      next.push_back(std::move(windows_[index]));
      continue;
    }
    const auto* widget = findWidget(widgets_, placements[index].kind);
    if (widget == nullptr) continue;
    next.push_back(std::make_unique<WidgetWindow>(*widget, std::move(placements[index]),
                                                  static_cast<int>(index) + 1, options_,
                                                  *appearance_));
  }
  windows_ = std::move(next);
  arrange();
}

void DesktopHost::arrange() {
  std::vector<Placement> placements;
  std::vector<ui::Size> sizes;
  for (const auto& window : windows_) {
    placements.push_back(window->placement());
    sizes.push_back(window->logicalSize());
  }
  const auto area = workArea();
  const auto origins = arrangeWindows(placements, sizes, area);
  for (std::size_t index = 0; index < windows_.size(); ++index) {
    windows_[index]->place(origins[index], area);
  }
}

void DesktopHost::dumpAll() {
  for (const auto& window : windows_) window->dump();
}

void DesktopHost::reloadTimelines() {
  for (const auto& window : windows_) window->reload();
}

void DesktopHost::appearanceChanged() {
  for (const auto& window : windows_) window->appearanceChanged();
}

}  // namespace korvo::desktop
