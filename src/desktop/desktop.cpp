#include "desktop/desktop.hpp"

#include <glib-unix.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "cli/host_record.hpp"
#include "desktop/core/placement_file.hpp"
#include "extension/korvo_widgets.hpp"
#include "shared/widget_snapshot_store.hpp"

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
  windows_.clear();
}

void DesktopHost::run() {
  // Watching before the first requests, so no publish falls between a request and the watch.
  watchSharedFile();
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
  placementsWatch_ = std::make_unique<FileWatch>(*placementsFile_, [this] { reloadPlacements(); });
}

void DesktopHost::watchSharedFile() {
  const auto url = WidgetSnapshotStore::fileURL();
  if (!url) return;
  sharedFileWatch_ = std::make_unique<FileWatch>(url->path, [this] { sharedFileChanged(); });
}

void DesktopHost::sharedFileChanged() {
  for (const auto& window : windows_) {
    if (window->widget().readsSharedFile) window->requestTimeline();
  }
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
  const auto arrangement = arrangeWindows(placements, sizes, area);
  for (const auto& moved : arrangement.moved) {
    std::fprintf(stderr, "korvo-widgets: %s\n", moved.c_str());
  }
  for (std::size_t index = 0; index < windows_.size(); ++index) {
    windows_[index]->place(arrangement.origins[index], area);
  }
}

void DesktopHost::dumpAll() {
  for (const auto& window : windows_) window->dump();
}

void DesktopHost::reloadTimelines() {
  for (const auto& window : windows_) window->requestTimeline();
}

void DesktopHost::appearanceChanged() {
  for (const auto& window : windows_) window->appearanceChanged();
}

}  // namespace korvo::desktop
