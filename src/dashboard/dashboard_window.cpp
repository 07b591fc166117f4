#include "dashboard/dashboard_window.hpp"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>

#include "app/settings_file.hpp"
#include "base/text.hpp"
#include "gtk/glib_bool.hpp"
#include "shared/app_identity.hpp"
#include "shared/widget_snapshot_store.hpp"

namespace korvo {
namespace {

// The widest the notice asks to be, in characters; longer texts are ellipsized.
constexpr int noticeWidthChars = 60;

}  // namespace
namespace {

constexpr const char* settingsPage = "settings";
// Room for the medium card and the figures below it, points.
constexpr int windowWidth = 520;
constexpr int windowHeight = 640;

}  // namespace

DashboardWindow::DashboardWindow(GtkApplication* application, KeepAwake& keepAwake,
                                 std::function<void()> aiOpened)
    : window_(application != nullptr ? gtk_application_window_new(application)
                                     : gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      notice_(gtk_label_new("")),
      stack_(gtk_stack_new()),
      appearance_(std::nullopt, [this] { appearanceChanged(); }),
      ai_(appearance_),
      memory_(appearance_),
      awake_(keepAwake, current_),
      aiOpened_(std::move(aiOpened)) {
  gtk_window_set_title(GTK_WINDOW(window_), std::string(AppIdentity::applicationTitle).c_str());
  gtk_window_set_default_size(GTK_WINDOW(window_), windowWidth, windowHeight);
  gtk_window_set_icon_name(GTK_WINDOW(window_), "com.tessmoor.Korvo");
  appearanceChanged();

  gtk_stack_add_titled(GTK_STACK(stack_), ai_.widget(),
                       std::string(rawValue(DashboardTab::ai)).c_str(),
                       shortTitle(DashboardTab::ai).c_str());
  gtk_stack_add_titled(GTK_STACK(stack_), memory_.widget(),
                       std::string(rawValue(DashboardTab::memory)).c_str(),
                       shortTitle(DashboardTab::memory).c_str());
  gtk_stack_add_titled(GTK_STACK(stack_), awake_.widget(),
                       std::string(rawValue(DashboardTab::awake)).c_str(),
                       shortTitle(DashboardTab::awake).c_str());
  gtk_stack_add_titled(GTK_STACK(stack_), settings_.widget(), settingsPage, _("Settings").c_str());
  GtkWidget* switcher = gtk_stack_switcher_new();
  gtk_stack_switcher_set_stack(GTK_STACK_SWITCHER(switcher), GTK_STACK(stack_));
  gtk_widget_set_halign(switcher, GTK_ALIGN_CENTER);
  g_object_set(switcher, "margin", 8, nullptr);

  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  // The notice quotes a link any web page can send: its length must not size the window, so it
  // stays one line, cut in the middle, and the whole of it is in the tooltip.
  gtk_label_set_ellipsize(GTK_LABEL(notice_), PANGO_ELLIPSIZE_MIDDLE);
  gtk_label_set_max_width_chars(GTK_LABEL(notice_), noticeWidthChars);
  g_object_set(notice_, "margin", 8, nullptr);
  gtk_box_pack_start(GTK_BOX(box), switcher, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), notice_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box), stack_, TRUE, TRUE, 0);
  gtk_container_add(GTK_CONTAINER(window_), box);
  gtk_widget_show_all(box);
  gtk_widget_hide(notice_);

  // Closing hides: the next link shows the same window.
  g_signal_connect(window_, "delete-event", G_CALLBACK(gtk_widget_hide_on_delete), nullptr);
  g_signal_connect(window_, "map", G_CALLBACK(+[](GtkWidget*, gpointer self) {
                     static_cast<DashboardWindow*>(self)->mapped();
                   }),
                   this);
  g_signal_connect(window_, "unmap", G_CALLBACK(+[](GtkWidget*, gpointer self) {
                     static_cast<DashboardWindow*>(self)->unmapped();
                   }),
                   this);
  g_signal_connect_swapped(
      stack_, "notify::visible-child",
      G_CALLBACK(+[](gpointer self) { static_cast<DashboardWindow*>(self)->pageChanged(); }), this);

  if (const auto url = WidgetSnapshotStore::fileURL()) {
    sharedWatch_.emplace(url->path, [this] { reloadShared(); });
  }
  if (const auto location = settings_file::location()) {
    settingsWatch_.emplace(*location, [this] { reloadSettings(); });
  }
  reloadSettings();
  reloadShared();
  awake_.refresh();
}

DashboardWindow::~DashboardWindow() {
  // Destroying unmaps: nothing of this object may run from here on.
  g_signal_handlers_disconnect_by_data(window_, this);
  g_signal_handlers_disconnect_by_data(stack_, this);
  if (ticker_ != 0) g_source_remove(ticker_);
  gtk_widget_destroy(window_);
}

void DashboardWindow::present(const DashboardDestination& destination) {
  gtk_label_set_text(GTK_LABEL(notice_), destination.notice.value_or("").c_str());
  gtk_widget_set_tooltip_text(notice_, destination.notice ? destination.notice->c_str() : nullptr);
  gtk_widget_set_visible(notice_, gtk::glibBool(destination.notice.has_value()));
  show(std::string(rawValue(destination.tab)).c_str());
}

void DashboardWindow::presentSettings() {
  gtk_widget_hide(notice_);
  show(settingsPage);
}

void DashboardWindow::show(const char* page) {
  gtk_stack_set_visible_child_name(GTK_STACK(stack_), page);
  gtk_window_present(GTK_WINDOW(window_));
  dump();
}

void DashboardWindow::awakeChanged() {
  awake_.refresh();
}

void DashboardWindow::mapped() {
  mapped_ = true;
  pageChanged();
  if (ticker_ == 0) {
    ticker_ = g_timeout_add_seconds(
        1, +[](gpointer self) -> gboolean { return static_cast<DashboardWindow*>(self)->tick(); },
        this);
  }
}

void DashboardWindow::unmapped() {
  mapped_ = false;
  if (ticker_ != 0) g_source_remove(ticker_);
  ticker_ = 0;
}

gboolean DashboardWindow::tick() {
  const std::string page = gtk_stack_get_visible_child_name(GTK_STACK(stack_));
  if (page == rawValue(DashboardTab::ai)) ai_.tick();
  if (page == rawValue(DashboardTab::memory)) memory_.refresh(current_.memoryDisplayMode);
  if (page == rawValue(DashboardTab::awake)) awake_.tick();
  return G_SOURCE_CONTINUE;
}

void DashboardWindow::pageChanged() {
  const char* name = gtk_stack_get_visible_child_name(GTK_STACK(stack_));
  // The notice speaks of the link that opened AI; another page leaves it behind.
  if (name != nullptr && std::string_view(name) != rawValue(DashboardTab::ai)) {
    gtk_widget_hide(notice_);
  }
  if (!mapped_) return;
  if (name != nullptr && std::string_view(name) == rawValue(DashboardTab::memory)) {
    memory_.refresh(current_.memoryDisplayMode);
  }
  // Rollouts change only while Codex works: the app-server says the figures of this moment.
  if (name != nullptr && std::string_view(name) == rawValue(DashboardTab::ai) && aiOpened_) {
    aiOpened_();
  }
  dump();
}

void DashboardWindow::reloadShared() {
  ai_.refresh();
}

void DashboardWindow::reloadSettings() {
  current_ = settings_file::load(std::cerr);
  memory_.setTemperatureUnit(current_.temperatureUnit);
  settings_.show(current_);
  awake_.refresh();
  if (mapped_) memory_.refresh(current_.memoryDisplayMode);
}

void DashboardWindow::appearanceChanged() {
  // GTK's own widgets follow the scheme the cards follow. Set only on a change: every set
  // reloads the theme and tells the watch again.
  GtkSettings* settings = gtk_settings_get_default();
  const gboolean dark = gtk::glibBool(appearance_.scheme() == ui::ColorScheme::dark);
  gboolean prefersDark = FALSE;
  if (settings != nullptr) {
    g_object_get(settings, "gtk-application-prefer-dark-theme", &prefersDark, nullptr);
    if (prefersDark != dark)
      g_object_set(settings, "gtk-application-prefer-dark-theme", dark, nullptr);
  }
  gtk_widget_queue_draw(window_);
}

// For tests and tools: KORVO_DASHBOARD_DUMP names a file that always holds the page in view,
// the notice and the window, rewritten whenever they change.
void DashboardWindow::dump() const {
  const char* file = std::getenv("KORVO_DASHBOARD_DUMP");
  if (file == nullptr || *file == '\0') return;
  nlohmann::ordered_json document;
  const char* page = gtk_stack_get_visible_child_name(GTK_STACK(stack_));
  document["page"] = page != nullptr ? page : "";
  document["notice"] = gtk_widget_get_visible(notice_)
                           ? nlohmann::ordered_json(gtk_label_get_text(GTK_LABEL(notice_)))
                           : nlohmann::ordered_json(nullptr);
  document["mapped"] = mapped_;
  const std::string temporary = std::string(file) + ".tmp";
  std::ofstream(temporary, std::ios::trunc) << document.dump() << '\n';
  std::rename(temporary.c_str(), file);
}

}  // namespace korvo
