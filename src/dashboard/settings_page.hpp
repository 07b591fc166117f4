#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <string_view>

#include "app/settings.hpp"
#include "dashboard/claude_connection.hpp"

namespace korvo {

// The preferences kept in the settings file, on three pages: Monitors (CPU temperature, its unit
// and alert, the memory figure's form), AI (Codex on or off, its sessions folder and live
// reading; Claude on or off and its status line connected or not; the usage alerts) and Keep Awake
// (the default length, the hold while agents work, its notices). Every change is written to the
// settings file at once (the service republishes on the change).
class SettingsPage {
 public:
  // `claudeChanged` runs after Claude's status line was connected or disconnected.
  explicit SettingsPage(std::function<void()> claudeChanged = {});
  GtkWidget* monitorsPage() const { return monitors_; }
  GtkWidget* aiPage() const { return ai_; }
  GtkWidget* awakePage() const { return awake_; }
  // Shows `settings` (read again after a change from anywhere).
  void show(const Settings& settings);

  // Writes one key; a failure is shown on the page.
  void write(SettingKey key, const nlohmann::ordered_json& value);
  // Writes one key from its text as the command line takes it ("80, 95" for alertPercents); a
  // text that is no value of the key is shown on the page and writes nothing.
  void writeText(SettingKey key, std::string_view text);

 private:
  // Shows a failed write's line on every page, or clears it ("").
  void say(const char* text);

  GtkWidget* monitors_;
  GtkWidget* ai_;
  GtkWidget* awake_;
  GtkWidget* temperature_;
  GtkWidget* temperatureUnit_;
  GtkWidget* temperatureAlert_;
  GtkWidget* alertPercents_;
  GtkWidget* codex_;
  GtkWidget* codexHome_;
  GtkWidget* codexLive_;
  GtkWidget* claude_;
  ClaudeConnection claudeConnection_;
  GtkWidget* awakeMinutes_;
  GtkWidget* agents_;
  GtkWidget* agentIdleMinutes_;
  GtkWidget* agentNotices_;
  GtkWidget* displayMode_;
  GtkWidget* messages_[3];  // a failed write, said on each page
  bool showing_ = false;    // changes made by show() are not the user's
};

}  // namespace korvo
