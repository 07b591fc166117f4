#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <optional>

#include "app/dashboard_link.hpp"
#include "dashboard/ai_page.hpp"
#include "dashboard/awake_page.hpp"
#include "dashboard/login_offer_bar.hpp"
#include "dashboard/memory_page.hpp"
#include "dashboard/preferences_window.hpp"
#include "gtk/appearance.hpp"
#include "gtk/file_watch.hpp"

namespace korvo {

// The one dashboard window: a header bar switching the pages in DashboardTab order by their
// titles, with the menu (Preferences, About, Quit), and the preferences window beside it.
// Closing it (Escape, Ctrl+W) hides it, so every link reuses the same window. While it is mapped
// one timer a second advances the countdowns and the readings of the page in view.
class DashboardWindow {
 public:
  // `aiOpened` runs each time the AI tab comes into view; `claudeChanged` after Claude's status
  // line was connected or disconnected.
  DashboardWindow(GtkApplication* application, KeepAwake& keepAwake, std::function<void()> aiOpened,
                  const std::function<void()>& claudeChanged);
  ~DashboardWindow();
  DashboardWindow(const DashboardWindow&) = delete;
  DashboardWindow& operator=(const DashboardWindow&) = delete;

  // Shows the window at the destination's tab, with its notice when it has one.
  void present(const DashboardDestination& destination);
  // Shows the preferences window at `page` ("monitors", "ai", "awake", "widgets").
  void presentPreferences(const std::string& page);
  // Hides both windows; the service goes on.
  void close();
  // The Keep Awake session changed.
  void awakeChanged();

  void mapped();
  void unmapped();
  gboolean tick();
  void pageChanged();
  void reloadShared();
  void reloadSettings();
  void appearanceChanged();

 private:
  void show(const char* page);
  // Builds the AI page anew when the shared file changed since and the page is in view.
  void refreshAiIfShown();
  PreferencesWindow& preferences();
  void dump() const;

  GtkWidget* window_;
  LoginOfferBar loginOffer_;
  GtkWidget* notice_;
  GtkWidget* stack_;
  gtk::AppearanceWatch appearance_;
  AiPage ai_;
  MemoryPage memory_;
  AwakePage awake_;
  // Built when first asked for: its folder chooser alone would make the dashboard's first showing
  // slower by half.
  std::unique_ptr<PreferencesWindow> preferences_;
  GtkApplication* application_;
  std::function<void()> claudeChanged_;
  Settings current_;
  std::optional<gtk::FileWatch> sharedWatch_;
  std::optional<gtk::FileWatch> settingsWatch_;
  std::function<void()> aiOpened_;
  guint ticker_ = 0;
  bool mapped_ = false;
  bool aiStale_ = true;  // the shared file changed since the AI page was built
};

}  // namespace korvo
