#include "dashboard/preferences_window.hpp"

#include "base/text.hpp"
#include "dashboard/window_keys.hpp"

namespace korvo {
namespace {

// Room for the Widgets page's rows: a name, three choices and three buttons.
constexpr int windowWidth = 720;
constexpr int windowHeight = 520;

}  // namespace

PreferencesWindow::PreferencesWindow(GtkApplication* application, GtkWindow* dashboard,
                                     std::function<void()> claudeChanged)
    : window_(application != nullptr ? gtk_application_window_new(application)
                                     : gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      stack_(gtk_stack_new()),
      settings_(std::move(claudeChanged)) {
  gtk_window_set_title(GTK_WINDOW(window_), _("Korvo Preferences").c_str());
  gtk_window_set_default_size(GTK_WINDOW(window_), windowWidth, windowHeight);
  gtk_window_set_icon_name(GTK_WINDOW(window_), "com.tessmoor.Korvo");
  gtk_window_set_transient_for(GTK_WINDOW(window_), dashboard);

  const std::string titles[] = {_("Monitors"), _("AI"), _("Keep Awake"), _("Widgets")};
  GtkWidget* contents[] = {settings_.monitorsPage(), settings_.aiPage(), settings_.awakePage(),
                           widgets_.widget()};
  for (std::size_t index = 0; index < std::size(pages); ++index) {
    gtk_stack_add_titled(GTK_STACK(stack_), contents[index], pages[index], titles[index].c_str());
  }
  GtkWidget* header = gtk_header_bar_new();
  gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(header), TRUE);
  // The window takes its title from its header bar's, which the switcher covers.
  gtk_header_bar_set_title(GTK_HEADER_BAR(header), _("Korvo Preferences").c_str());
  GtkWidget* switcher = gtk_stack_switcher_new();
  gtk_stack_switcher_set_stack(GTK_STACK_SWITCHER(switcher), GTK_STACK(stack_));
  gtk_header_bar_set_custom_title(GTK_HEADER_BAR(header), switcher);
  gtk_window_set_titlebar(GTK_WINDOW(window_), header);
  gtk_container_add(GTK_CONTAINER(window_), stack_);
  gtk_widget_show_all(header);
  gtk_widget_show_all(stack_);
  window_keys::closeOnKeys(GTK_WINDOW(window_));
  g_signal_connect(window_, "delete-event", G_CALLBACK(gtk_widget_hide_on_delete), nullptr);
}

PreferencesWindow::~PreferencesWindow() {
  gtk_widget_destroy(window_);
}

void PreferencesWindow::present(const std::string& page) {
  if (gtk_stack_get_child_by_name(GTK_STACK(stack_), page.c_str()) != nullptr) {
    gtk_stack_set_visible_child_name(GTK_STACK(stack_), page.c_str());
  }
  if (page == "widgets") widgets_.reload();
  gtk_window_present(GTK_WINDOW(window_));
}

void PreferencesWindow::show(const Settings& settings) {
  settings_.show(settings);
}

std::string PreferencesWindow::page() const {
  const char* name = gtk_stack_get_visible_child_name(GTK_STACK(stack_));
  return name != nullptr ? name : "";
}

}  // namespace korvo
