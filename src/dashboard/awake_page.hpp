#pragma once

#include <gtk/gtk.h>

#include <string>

#include "app/settings.hpp"
#include "service/keep_awake.hpp"

namespace korvo {

// The dashboard's Awake tab: one line that says what holds the machine awake, the inhibitors held
// and what a missing one means; start a session for 15 min, 1 h, 2 h, 4 h or indefinitely, extend
// it by the default length, stop it, with a live countdown; and whether Codex or Claude Code at
// work keeps it awake.
class AwakePage {
 public:
  // `settings` are the dashboard's current ones (the default length, the agents' watch).
  AwakePage(KeepAwake& keepAwake, const Settings& settings);
  GtkWidget* widget() const { return page_; }
  // Keep Awake or the settings changed: every line and button again.
  void refresh();
  // Advances the countdown.
  void tick();

  // Shows what a command did: a failure in words until it no longer holds.
  void act(const KeepAwake::Outcome& outcome);
  KeepAwake& keepAwake() { return keepAwake_; }
  const Settings& settings() const { return settings_; }
  // The agents' switch was flipped by the user.
  void agentsToggled(bool on);

 private:
  KeepAwake& keepAwake_;
  const Settings& settings_;
  std::string error_;     // the last command's failure, in words; empty when none
  bool refused_ = false;  // that failure was the inhibitors' refusal
  bool showing_ = false;  // refresh sets the agents' switch: that is no flip by the user
  GtkWidget* page_;
  GtkWidget* state_;
  GtkWidget* countdown_;
  GtkWidget* inhibitors_;
  GtkWidget* warning_;
  GtkWidget* errorLine_;
  GtkWidget* extend_;
  GtkWidget* stop_;
  GtkWidget* agents_;
  GtkWidget* agentsNote_;
};

}  // namespace korvo
