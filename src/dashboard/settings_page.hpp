#pragma once

#include <gtk/gtk.h>

#include <nlohmann/json.hpp>
#include <string_view>

#include "app/settings.hpp"

namespace korvo {

// The dashboard's settings: Monitors → CPU temperature, the two providers (Codex's sessions
// folder; Claude's status line, installed or a button that installs it), Keep Awake's default
// length and its hold while agents work, and the memory figure's form. Every change is written to
// the settings file at once (the service republishes on the change).
class SettingsPage {
 public:
  SettingsPage();
  GtkWidget* widget() const { return page_; }
  // Shows `settings` (read again after a change from anywhere).
  void show(const Settings& settings);

  // Writes one key; a failure is shown on the page.
  void write(SettingKey key, const nlohmann::ordered_json& value);
  void installStatusLine();

 private:
  GtkWidget* page_;
  GtkWidget* temperature_;
  GtkWidget* codex_;
  GtkWidget* codexHome_;
  GtkWidget* claude_;
  GtkWidget* statusLine_;
  GtkWidget* install_;
  GtkWidget* awakeMinutes_;
  GtkWidget* agents_;
  GtkWidget* agentIdleMinutes_;
  GtkWidget* agentNotices_;
  GtkWidget* displayMode_;
  GtkWidget* message_;
  bool showing_ = false;  // changes made by show() are not the user's
};

}  // namespace korvo
