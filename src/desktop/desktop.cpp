#include "desktop/desktop.hpp"

#include <glib-unix.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "base/c_format.hpp"
#include "desktop/card_menu.hpp"
#include "desktop/core/arrangement.hpp"
#include "desktop/core/drop_snap.hpp"
#include "desktop/core/host_record.hpp"
#include "desktop/core/placement_file.hpp"
#include "desktop/monitors.hpp"
#include "extension/korvo_widgets.hpp"
#include "gtk/notification.hpp"
#include "gtk/session_bus.hpp"
#include "gtk/url_opener.hpp"
#include "shared/app_identity.hpp"
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
  self(host).monitorsChanged();
}

// A compositor came or went: the windows gain or lose the room for their shadows.
void onCompositedChanged(GdkScreen*, gpointer host) {
  self(host).arrange();
}

gboolean onArrangeDue(gpointer host) {
  self(host).arrangeDue();
  return G_SOURCE_REMOVE;
}

// The primary monitor's place among `monitors`, when the desktop names one.
std::optional<std::size_t> primaryIndex(const std::vector<Monitor>& monitors) {
  GdkMonitor* primary = gdk_display_get_primary_monitor(gdk_display_get_default());
  for (std::size_t index = 0; index < monitors.size(); ++index) {
    if (monitors[index].monitor == primary) return index;
  }
  return std::nullopt;
}

}  // namespace

DesktopHost::DesktopHost(const std::vector<WidgetConfiguration>& widgets, HostOptions options)
    : widgets_(widgets), options_(std::move(options)), lookup_(kindLookup(widgets_)) {
  appearance_ =
      std::make_unique<gtk::AppearanceWatch>(options_.appearance, [this] { appearanceChanged(); });
  theme_ = std::make_unique<gtk::ThemeProbe>([this] { appearanceChanged(); });
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
  g_signal_connect(screen, "composited-changed", G_CALLBACK(onCompositedChanged), this);
}

DesktopHost::~DesktopHost() {
  if (menu_ != nullptr) gtk_widget_destroy(menu_);
  if (arrangeSource_ != 0) g_source_remove(arrangeSource_);
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
  refused_.clear();
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
    const auto& fault = std::get<PlacementError>(loaded).message;
    const char* outcome = first ? "showing the default widgets" : "keeping the widgets shown";
    std::fprintf(stderr, "korvo-widgets: %s; %s\n", fault.c_str(), outcome);
    // Nobody reads standard error of a host started at login; a notification is seen, once for
    // each version of the file, not again on every SIGHUP.
    const std::pair reported{fileStamp(*placementsFile_), fault};
    if (reported != reportedFault_) {
      reportedFault_ = reported;
      gtk::sendNotification("The widgets' placements file has a fault",
                            fault + "; " + outcome + ".");
    }
    if (first) apply(defaultPlacements(lookup_));
    return;
  }
  reportedFault_.reset();
}

void DesktopHost::watchPlacementsFile() {
  if (!placementsFile_) return;
  placementsWatch_ =
      std::make_unique<gtk::FileWatch>(*placementsFile_, [this] { reloadPlacements(); });
}

void DesktopHost::watchSharedFile() {
  const auto url = WidgetSnapshotStore::fileURL();
  if (!url) return;
  sharedFileWatch_ = std::make_unique<gtk::FileWatch>(url->path, [this] { sharedFileChanged(); });
}

void DesktopHost::sharedFileChanged() {
  for (const auto& window : windows_) {
    if (window->widget().readsSharedFile) window->requestTimeline();
  }
}

void DesktopHost::apply(std::vector<Placement> placements) {
  std::vector<std::unique_ptr<WidgetWindow>> next;
  for (std::size_t index = 0; index < placements.size(); ++index) {
    // A card that only moves keeps its window (and what it shows); a new kind or family needs
    // a window of its own.
    if (index < windows_.size() && windows_[index]->placement().kind == placements[index].kind &&
        windows_[index]->placement().family == placements[index].family) {
      windows_[index]->setPlacement(std::move(placements[index]));
      next.push_back(std::move(windows_[index]));
      continue;
    }
    const auto* widget = findWidget(widgets_, placements[index].kind);
    if (widget == nullptr) continue;
    next.push_back(std::make_unique<WidgetWindow>(
        *widget, std::move(placements[index]), static_cast<int>(index) + 1, options_, *appearance_,
        *theme_,
        WindowCallbacks{
            [this](GdkMonitor* monitor) { surfaceLost(monitor); },
            [this](WidgetWindow& window, const GdkEvent* event) { showMenu(window, event); },
            [this](WidgetWindow& window, ui::Point origin, GdkMonitor* monitor) {
              dropped(&window, origin, monitor);
            }}));
  }
  windows_ = std::move(next);
  arrange();
}

std::vector<Placement> DesktopHost::shownPlacements() const {
  std::vector<Placement> placements;
  for (const auto& window : windows_) placements.push_back(window->placement());
  return placements;
}

bool DesktopHost::holds(const WidgetWindow* window) const {
  return std::any_of(windows_.begin(), windows_.end(),
                     [window](const auto& held) { return held.get() == window; });
}

void DesktopHost::showMenu(WidgetWindow& window, const GdkEvent* event) {
  CardMenuContent content;
  content.family = window.placement().family;
  content.families = window.widget().supportedFamilies;
  if (!window.placement().position) content.anchor = window.placement().anchor;
  for (const auto& widget : widgets_) {
    const bool shown = std::any_of(windows_.begin(), windows_.end(), [&](const auto& held) {
      return held->placement().kind == widget.kind;
    });
    if (!shown) content.addable.push_back({widget.kind, widget.displayName});
  }
  // Choices name the window, not its place: by the time one runs the windows may have changed.
  const WidgetWindow* chosen = &window;
  CardMenuActions actions{[this, chosen](const PlacementEdit& change) { edit(chosen, change); },
                          [this, chosen] {
                            if (holds(chosen) && !chosen->url().empty())
                              gtk::openURL(chosen->url());
                          },
                          [this] { arrangeWidgets(); }};
  if (menu_ != nullptr) gtk_widget_destroy(menu_);
  menu_ = newCardMenu(content, std::move(actions));
  if (event != nullptr) {
    gtk_menu_popup_at_pointer(GTK_MENU(menu_), event);
  } else {
    gtk_menu_popup_at_widget(GTK_MENU(menu_), window.gtkWindow(), GDK_GRAVITY_CENTER,
                             GDK_GRAVITY_NORTH_WEST, nullptr);
  }
  gtk_menu_shell_select_first(GTK_MENU_SHELL(menu_), FALSE);
}

void DesktopHost::edit(const WidgetWindow* window, const PlacementEdit& change) {
  const auto at = std::find_if(windows_.begin(), windows_.end(),
                               [window](const auto& held) { return held.get() == window; });
  if (at == windows_.end()) return;
  auto placements = editPlacements(
      shownPlacements(), static_cast<std::size_t>(at - windows_.begin()), change, lookup_);
  // Shown with --widget the placements file is not in use: the change lasts until the host ends.
  if (options_.widgets.empty() && placementsFile_) {
    if (const auto failure = savePlacementsFile(*placementsFile_, placements)) {
      std::fprintf(stderr, "korvo-widgets: %s\n", failure->c_str());
    }
  }
  apply(std::move(placements));
}

void DesktopHost::dropped(const WidgetWindow* window, ui::Point origin, GdkMonitor* monitor) {
  const auto monitors = displayMonitors(gdk_display_get_default());
  const auto on = std::find_if(monitors.begin(), monitors.end(),
                               [monitor](const Monitor& each) { return each.monitor == monitor; });
  const ui::Rect area = on != monitors.end() ? on->workArea
                        : monitors.empty()   ? ui::Rect{0, 0, 1280, 800}
                                             : monitors.front().workArea;
  std::vector<ui::Rect> others;
  for (const auto& held : windows_) {
    if (held.get() != window) others.push_back(held->cardRect());
  }
  const auto card = window->cardRect();
  const auto position = snapDrop(origin, {card.width, card.height}, others, area);
  std::optional<std::string> output;
  if (on != monitors.end() && !on->name.empty()) output = on->name;
  edit(window, MoveToPosition{position, output});
}

namespace {

void openInEditor(const std::filesystem::path& file) {
  gchar* uri = g_filename_to_uri(file.c_str(), nullptr, nullptr);
  if (uri != nullptr) gtk::openURL(uri);
  g_free(uri);
}

}  // namespace

// Korvo's preferences at their Widgets page, through the action its application exports (the
// bus starts Korvo when it is installed and not running). Without Korvo the placements file
// opens in the desktop's editor instead.
void DesktopHost::arrangeWidgets() {
  if (!placementsFile_) return;
  if (!std::filesystem::exists(*placementsFile_)) {
    if (const auto failure = savePlacementsFile(*placementsFile_, shownPlacements())) {
      std::fprintf(stderr, "korvo-widgets: %s\n", failure->c_str());
      return;
    }
  }
  GDBusConnection* bus = gtk::sessionBus();
  if (bus == nullptr) {
    openInEditor(*placementsFile_);
    return;
  }
  GVariantBuilder page;
  g_variant_builder_init(&page, G_VARIANT_TYPE("av"));
  g_variant_builder_add(&page, "v", g_variant_new_string("widgets"));
  const std::string korvo(AppIdentity::applicationIdentifier);
  std::string path = "/" + korvo;
  std::replace(path.begin(), path.end(), '.', '/');
  g_dbus_connection_call(
      bus, korvo.c_str(), path.c_str(), "org.freedesktop.Application", "ActivateAction",
      g_variant_new("(sava{sv})", "preferences", &page, nullptr), nullptr, G_DBUS_CALL_FLAGS_NONE,
      -1, nullptr,
      +[](GObject* source, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<std::filesystem::path> file(
            static_cast<std::filesystem::path*>(data));
        GError* error = nullptr;
        GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
        if (reply != nullptr) {
          g_variant_unref(reply);
          return;
        }
        std::fprintf(stderr,
                     "korvo-widgets: Korvo did not open its Widgets page (%s); opening %s\n",
                     error->message, file->c_str());
        g_clear_error(&error);
        openInEditor(*file);
      },
      new std::filesystem::path(*placementsFile_));
}

void DesktopHost::arrange() {
  auto monitors = displayMonitors(gdk_display_get_default());
  std::erase_if(monitors, [this](const Monitor& monitor) {
    return std::find(refused_.begin(), refused_.end(), monitor.monitor) != refused_.end();
  });
  // Every output turned the widgets away: wait for the next change of monitors.
  if (monitors.empty() && !refused_.empty()) return;
  const auto primary = primaryIndex(monitors);
  std::vector<std::string> notices;
  // Each monitor arranges the windows placed on it; a window whose output is gone goes to the
  // primary monitor until it comes back.
  std::vector<std::vector<std::size_t>> onMonitor(std::max<std::size_t>(monitors.size(), 1));
  for (std::size_t index = 0; index < windows_.size(); ++index) {
    const auto& placement = windows_[index]->placement();
    const auto monitor = monitorFor(monitors, placement.output, primary).value_or(0);
    if (placement.output && (monitors.empty() || monitors[monitor].name != *placement.output)) {
      notices.push_back(
          placement.kind + ": output " + *placement.output + " is unplugged or off; shown on " +
          (monitors.empty() || monitors[monitor].name.empty() ? std::string("the primary monitor")
                                                              : monitors[monitor].name));
    }
    onMonitor[monitor].push_back(index);
  }
  const auto areaOf = [&](std::size_t monitor) {
    return monitors.empty() ? ui::Rect{0, 0, 1280, 800} : monitors[monitor].workArea;
  };
  std::vector<FittedArrangement> fitted;
  for (std::size_t monitor = 0; monitor < onMonitor.size(); ++monitor) {
    std::vector<Placement> placements;
    for (const auto index : onMonitor[monitor]) placements.push_back(windows_[index]->placement());
    fitted.push_back(arrangeToFit(placements, options_.scale, areaOf(monitor)));
    if (fitted.back().scale < options_.scale) {
      notices.push_back(cFormat("the widgets do not all fit %s at scale %g; drawn at %g",
                                monitors.empty() || monitors[monitor].name.empty()
                                    ? "the monitor"
                                    : monitors[monitor].name.c_str(),
                                options_.scale, fitted.back().scale));
    }
    notices.insert(notices.end(), fitted.back().arrangement.moved.begin(),
                   fitted.back().arrangement.moved.end());
  }
  // Said once when a widget moves over, not again each time the same monitors are arranged.
  for (const auto& notice : notices) {
    if (std::find(notices_.begin(), notices_.end(), notice) == notices_.end()) {
      std::fprintf(stderr, "korvo-widgets: %s\n", notice.c_str());
    }
  }
  notices_ = std::move(notices);
  for (std::size_t monitor = 0; monitor < onMonitor.size(); ++monitor) {
    GdkMonitor* gdkMonitor = monitors.empty() ? nullptr : monitors[monitor].monitor;
    for (std::size_t slot = 0; slot < onMonitor[monitor].size(); ++slot) {
      windows_[onMonitor[monitor][slot]]->place(fitted[monitor].arrangement.origins[slot],
                                                areaOf(monitor), gdkMonitor, fitted[monitor].scale);
    }
  }
}

void DesktopHost::monitorsChanged() {
  refused_.clear();
  arrange();
}

void DesktopHost::surfaceLost(GdkMonitor* monitor) {
  // Some compositors keep a switched-off output listed (sway 1.7 does): only the closed surface
  // tells, so that monitor is left out until the monitors change or the placements are read.
  if (monitor != nullptr &&
      std::find(refused_.begin(), refused_.end(), monitor) == refused_.end()) {
    refused_.push_back(monitor);
  }
  if (arrangeSource_ == 0) arrangeSource_ = g_idle_add(onArrangeDue, this);
}

void DesktopHost::arrangeDue() {
  arrangeSource_ = 0;
  arrange();
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
