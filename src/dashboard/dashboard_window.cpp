#include "dashboard/dashboard_window.hpp"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>

#include "app/settings_file.hpp"
#include "base/text.hpp"
#include "dashboard/window_keys.hpp"
#include "gtk/glib_bool.hpp"
#include "shared/app_identity.hpp"
#include "shared/widget_snapshot_store.hpp"

namespace korvo {
namespace {

// The widest the notice asks to be, in characters; longer texts are ellipsized.
constexpr int noticeWidthChars = 60;
// Room for the medium card and the figures below it, points.
constexpr int windowWidth = 520;
constexpr int windowHeight = 640;

// The header bar's menu: Preferences, About and Quit, with their keys shown.
GtkWidget* menuButton() {
  GMenu* menu = g_menu_new();
  GMenu* first = g_menu_new();
  GMenuItem* preferences = g_menu_item_new(_("_Preferences").c_str(), nullptr);
  g_menu_item_set_action_and_target_value(preferences, "app.preferences",
                                          g_variant_new_string("monitors"));
  g_menu_append_item(first, preferences);
  g_object_unref(preferences);
  g_menu_append_section(menu, nullptr, G_MENU_MODEL(first));
  GMenu* last = g_menu_new();
  g_menu_append(last, _("_About Korvo").c_str(), "app.about");
  g_menu_append(last, _("_Quit").c_str(), "app.close");
  g_menu_append_section(menu, nullptr, G_MENU_MODEL(last));
  g_object_unref(first);
  g_object_unref(last);
  GtkWidget* button = gtk_menu_button_new();
  gtk_menu_button_set_menu_model(GTK_MENU_BUTTON(button), G_MENU_MODEL(menu));
  g_object_unref(menu);
  gtk_button_set_image(GTK_BUTTON(button),
                       gtk_image_new_from_icon_name("open-menu-symbolic", GTK_ICON_SIZE_BUTTON));
  atk_object_set_name(gtk_widget_get_accessible(button), _("Main menu").c_str());
  gtk_widget_set_tooltip_text(button, _("Main menu").c_str());
  return button;
}

}  // namespace

DashboardWindow::DashboardWindow(GtkApplication* application, KeepAwake& keepAwake,
                                 std::function<void()> aiOpened,
                                 const std::function<void()>& claudeChanged)
    : window_(application != nullptr ? gtk_application_window_new(application)
                                     : gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      loginOffer_([this](bool) { dump(); }),
      notice_(gtk_label_new("")),
      stack_(gtk_stack_new()),
      appearance_(std::nullopt, [this] { appearanceChanged(); }),
      ai_(appearance_, claudeChanged),
      memory_(appearance_),
      awake_(keepAwake, current_),
      application_(application),
      claudeChanged_(claudeChanged),
      aiOpened_(std::move(aiOpened)) {
  gtk_window_set_title(GTK_WINDOW(window_), std::string(AppIdentity::applicationTitle).c_str());
  gtk_window_set_default_size(GTK_WINDOW(window_), windowWidth, windowHeight);
  gtk_window_set_icon_name(GTK_WINDOW(window_), "com.tessmoor.Korvo");
  appearanceChanged();

  GtkWidget* pages[] = {ai_.widget(), memory_.widget(), awake_.widget()};
  for (const DashboardTab tab : allCases<DashboardTab>()) {
    gtk_stack_add_titled(GTK_STACK(stack_), pages[static_cast<int>(tab)],
                         std::string(rawValue(tab)).c_str(), title(tab).c_str());
  }
  GtkWidget* header = gtk_header_bar_new();
  gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(header), TRUE);
  // The window takes its title from its header bar's, which the switcher covers.
  gtk_header_bar_set_title(GTK_HEADER_BAR(header),
                           std::string(AppIdentity::applicationTitle).c_str());
  GtkWidget* switcher = gtk_stack_switcher_new();
  gtk_stack_switcher_set_stack(GTK_STACK_SWITCHER(switcher), GTK_STACK(stack_));
  gtk_header_bar_set_custom_title(GTK_HEADER_BAR(header), switcher);
  gtk_header_bar_pack_end(GTK_HEADER_BAR(header), menuButton());
  gtk_window_set_titlebar(GTK_WINDOW(window_), header);
  gtk_widget_show_all(header);
  window_keys::closeOnKeys(GTK_WINDOW(window_));
  window_keys::switchPagesOnKeys(GTK_WINDOW(window_), GTK_STACK(stack_));

  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  // The notice quotes a link any web page can send: its length must not size the window, so it
  // stays one line, cut in the middle, and the whole of it is in the tooltip.
  gtk_label_set_ellipsize(GTK_LABEL(notice_), PANGO_ELLIPSIZE_MIDDLE);
  gtk_label_set_max_width_chars(GTK_LABEL(notice_), noticeWidthChars);
  g_object_set(notice_, "margin", 8, nullptr);
  gtk_box_pack_start(GTK_BOX(box), loginOffer_.widget(), FALSE, FALSE, 0);
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
  if (preferences_) g_signal_handlers_disconnect_by_data(preferences_->window(), this);
  if (ticker_ != 0) g_source_remove(ticker_);
  gtk_widget_destroy(window_);
}

void DashboardWindow::present(const DashboardDestination& destination) {
  gtk_label_set_text(GTK_LABEL(notice_), destination.notice.value_or("").c_str());
  gtk_widget_set_tooltip_text(notice_, destination.notice ? destination.notice->c_str() : nullptr);
  gtk_widget_set_visible(notice_, gtk::glibBool(destination.notice.has_value()));
  loginOffer_.offerIfDue();
  show(std::string(rawValue(destination.tab)).c_str());
}

void DashboardWindow::presentPreferences(const std::string& page) {
  preferences().present(page);
  dump();
}

PreferencesWindow& DashboardWindow::preferences() {
  if (!preferences_) {
    preferences_ =
        std::make_unique<PreferencesWindow>(application_, GTK_WINDOW(window_), claudeChanged_);
    for (const char* change : {"map", "unmap"}) {
      g_signal_connect_swapped(
          preferences_->window(), change,
          G_CALLBACK(+[](gpointer self) { static_cast<DashboardWindow*>(self)->dump(); }), this);
    }
    preferences_->show(current_);
  }
  return *preferences_;
}

void DashboardWindow::close() {
  if (preferences_) gtk_window_close(GTK_WINDOW(preferences_->window()));
  gtk_window_close(GTK_WINDOW(window_));
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
  dump();
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
  if (name != nullptr && std::string_view(name) == rawValue(DashboardTab::ai)) {
    refreshAiIfShown();
    // Rollouts change only while Codex works: the app-server says the figures of this moment.
    if (aiOpened_) aiOpened_();
  }
  dump();
}

void DashboardWindow::reloadShared() {
  aiStale_ = true;
  refreshAiIfShown();
}

void DashboardWindow::refreshAiIfShown() {
  // The AI page reads the history for its graphs: a hidden page need not, every minute.
  const char* name = gtk_stack_get_visible_child_name(GTK_STACK(stack_));
  if (!aiStale_ || !mapped_ || name == nullptr ||
      std::string_view(name) != rawValue(DashboardTab::ai)) {
    return;
  }
  aiStale_ = false;
  ai_.refresh();
}

void DashboardWindow::reloadSettings() {
  current_ = settings_file::load(std::cerr);
  memory_.setTemperatureUnit(current_.temperatureUnit);
  if (preferences_) preferences_->show(current_);
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
  // The meters take the cards' colours of the scheme now in force.
  ai_.refresh();
  gtk_widget_queue_draw(window_);
}

// For tests and tools: KORVO_DASHBOARD_DUMP names a file that always holds the page in view,
// the notice, the offer to start at login and the window, rewritten whenever they change.
void DashboardWindow::dump() const {
  const char* file = std::getenv("KORVO_DASHBOARD_DUMP");
  if (file == nullptr || *file == '\0') return;
  nlohmann::ordered_json document;
  const char* page = gtk_stack_get_visible_child_name(GTK_STACK(stack_));
  document["page"] = page != nullptr ? page : "";
  document["notice"] = gtk_widget_get_visible(notice_)
                           ? nlohmann::ordered_json(gtk_label_get_text(GTK_LABEL(notice_)))
                           : nlohmann::ordered_json(nullptr);
  document["loginOffer"] = loginOffer_.shown();
  document["mapped"] = mapped_;
  document["preferences"] = preferences_ && gtk_widget_get_mapped(preferences_->window())
                                ? nlohmann::ordered_json(preferences_->page())
                                : nlohmann::ordered_json(nullptr);
  const std::string temporary = std::string(file) + ".tmp";
  std::ofstream(temporary, std::ios::trunc) << document.dump() << '\n';
  std::rename(temporary.c_str(), file);
}

}  // namespace korvo
